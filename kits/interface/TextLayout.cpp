// Measuring, truncating and rendering text for the kits, on top of the shared
// TextEngine.
#include "TextLayout.h"

#include "TextEngine.h"

#include <String.h>

#include <math.h>
#include <stdio.h>

#include <algorithm>

namespace BPrivate {

namespace {

const char* const kEllipsis = "\xE2\x80\xA6";
// Baselines far outside any surface are treated as lying at this distance.
const double kBaselineLimit = 1 << 24;

// The longest candidate (of count) that fits: candidates grow with their index,
// and candidate 0 always fits.
template <typename MakeCandidate>
std::string longest_fitting(TextEngine& engine, const BFont& font, float width, size_t count,
                            MakeCandidate makeCandidate) {
    size_t low = 0;
    size_t high = count - 1;
    while (low < high) {
        size_t middle = (low + high + 1) / 2;
        if (engine.Width(font, makeCandidate(middle)) <= width)
            low = middle;
        else
            high = middle - 1;
    }
    return makeCandidate(low);
}

} // namespace

float TextLayout::StringWidth(const BFont& font, const char* text, int32 length) {
    std::string valid = valid_text(text, length);
    TextEngine& engine = TextEngine::Default();
    std::lock_guard<std::mutex> guard(engine.fLock);
    return engine.Width(font, valid);
}

void TextLayout::GetEscapements(const BFont& font, const char* text, int32 numChars,
                                const escapement_delta* delta, float* escapements) {
    if (text == NULL || escapements == NULL || numChars <= 0)
        return;
    std::string valid = valid_text(text, -1);
    std::vector<size_t> boundaries = character_boundaries(valid);
    float size = font.Size();

    TextEngine& engine = TextEngine::Default();
    std::lock_guard<std::mutex> guard(engine.fLock);
    for (int32 i = 0; i < numChars; i++) {
        if ((size_t)i + 1 >= boundaries.size()) {
            escapements[i] = 0.0f;
            continue;
        }
        std::string character = valid.substr(boundaries[i], boundaries[i + 1] - boundaries[i]);
        float advance = engine.Width(font, character);
        if (delta != NULL)
            advance += character == " " ? delta->space : delta->nonspace;
        escapements[i] = advance / size;
    }
}

void TextLayout::GetHeight(const BFont& font, font_height* height) {
    if (height == NULL)
        return;
    TextEngine& engine = TextEngine::Default();
    std::lock_guard<std::mutex> guard(engine.fLock);
    *height = engine.EntryFor(font).height;
}

void TextLayout::Truncate(const BFont& font, const char* text, uint32 mode, float width,
                          BString* result) {
    if (result == NULL)
        return;
    std::string valid = valid_text(text, -1);

    TextEngine& engine = TextEngine::Default();
    std::lock_guard<std::mutex> guard(engine.fLock);
    if (!(width >= 0.0f) || engine.Width(font, kEllipsis) > width) {
        // Not even the ellipsis fits (or the width is nonsense).
        if (engine.Width(font, valid) <= width)
            result->SetTo(valid.c_str());
        else
            result->SetTo("");
        return;
    }
    if (engine.Width(font, valid) <= width) {
        result->SetTo(valid.c_str());
        return;
    }

    std::vector<size_t> boundaries = character_boundaries(valid);
    size_t characters = boundaries.size() - 1;
    auto prefix = [&](size_t count) { return valid.substr(0, boundaries[count]); };
    auto suffix = [&](size_t count) { return valid.substr(boundaries[characters - count]); };

    std::string truncated;
    switch (mode) {
    case B_TRUNCATE_BEGINNING:
        truncated = longest_fitting(engine, font, width, characters,
                                    [&](size_t count) { return kEllipsis + suffix(count); });
        break;
    case B_TRUNCATE_MIDDLE:
    case B_TRUNCATE_SMART:
        // The start keeps the extra character when the count is odd.
        truncated = longest_fitting(engine, font, width, characters, [&](size_t count) {
            return prefix((count + 1) / 2) + kEllipsis + suffix(count / 2);
        });
        break;
    case B_TRUNCATE_END:
    default:
        truncated = longest_fitting(engine, font, width, characters,
                                    [&](size_t count) { return prefix(count) + kEllipsis; });
        break;
    }
    result->SetTo(truncated.c_str());
}

float TextLayout::RenderMask(const BFont& font, const char* text, int32 length,
                             const escapement_delta* delta, BPoint baseline, BRect visible,
                             TextMask* mask) {
    mask->surface.reset();
    std::string valid = valid_text(text, length);
    if (valid.empty())
        return 0.0f;

    // Glyphs are rendered for the baseline's place within its pixel; the pixel
    // itself only moves the result.
    double originX = std::clamp(floor((double)baseline.x), -kBaselineLimit, kBaselineLimit);
    double originY = std::clamp(floor((double)baseline.y), -kBaselineLimit, kBaselineLimit);
    double fractionX = isfinite(baseline.x) ? std::clamp(baseline.x - originX, 0.0, 1.0) : 0.0;
    double fractionY = isfinite(baseline.y) ? std::clamp(baseline.y - originY, 0.0, 1.0) : 0.0;

    char settings[160];
    snprintf(settings, sizeof(settings), "\x1f%.3f\x1f%.3f\x1f%.3f\x1f%.3f\x1f%.4f\x1f%.4f\x1e",
             font.Rotation(), font.Shear(), delta != NULL ? delta->nonspace : 0.0f,
             delta != NULL ? delta->space : 0.0f, fractionX, fractionY);
    std::string key = font_key(font) + settings + valid;

    TextEngine& engine = TextEngine::Default();
    std::lock_guard<std::mutex> guard(engine.fLock);
    const TextEngine::RenderedText* rendered = engine.FindRendered(key);
    TextEngine::RenderedText unkept;
    if (rendered == NULL) {
        BRect clipping = visible.OffsetByCopy(-originX, -originY);
        TextEngine::RenderedText fresh =
            engine.Render(font, valid, delta, fractionX, fractionY, NULL);
        if (fresh.surface == NULL && fresh.advance < 0.0f) {
            // Too large to keep whole: only the visible part.
            unkept = engine.Render(font, valid, delta, fractionX, fractionY, &clipping);
            rendered = &unkept;
        } else {
            rendered = engine.StoreRendered(key, std::move(fresh));
        }
    }

    if (rendered->surface != NULL) {
        mask->surface.reset(cairo_surface_reference(rendered->surface.get()));
        mask->left = (int32)originX + rendered->left;
        mask->top = (int32)originY + rendered->top;
    }
    return rendered->advance;
}

int32 TextLayout::CountFamilies() {
    TextEngine& engine = TextEngine::Default();
    std::lock_guard<std::mutex> guard(engine.fLock);
    return (int32)engine.Families().size();
}

status_t TextLayout::GetFamily(int32 index, font_family* name, uint32* flags) {
    if (name == NULL)
        return B_BAD_VALUE;
    TextEngine& engine = TextEngine::Default();
    std::lock_guard<std::mutex> guard(engine.fLock);
    const std::vector<FamilyInfo>& families = engine.Families();
    if (index < 0 || index >= (int32)families.size())
        return B_BAD_VALUE;
    copy_name(*name, families[index].name.c_str(), sizeof(font_family));
    if (flags != NULL)
        *flags = families[index].fixed ? B_IS_FIXED : 0;
    return B_OK;
}

int32 TextLayout::CountStyles(const char* family) {
    TextEngine& engine = TextEngine::Default();
    std::lock_guard<std::mutex> guard(engine.fLock);
    const FamilyInfo* info = engine.FindFamily(family);
    return info != NULL ? (int32)info->styles.size() : 0;
}

status_t TextLayout::GetStyle(const char* family, int32 index, font_style* name, uint16* face,
                              uint32* flags) {
    if (name == NULL)
        return B_BAD_VALUE;
    TextEngine& engine = TextEngine::Default();
    std::lock_guard<std::mutex> guard(engine.fLock);
    const FamilyInfo* info = engine.FindFamily(family);
    if (info == NULL)
        return B_NAME_NOT_FOUND;
    if (index < 0 || index >= (int32)info->styles.size())
        return B_BAD_VALUE;
    const StyleInfo& style = info->styles[index];
    copy_name(*name, style.name.c_str(), sizeof(font_style));
    if (face != NULL) {
        uint16 bits = (style.bold ? B_BOLD_FACE : 0) | (style.italic ? B_ITALIC_FACE : 0);
        *face = bits != 0 ? bits : (uint16)B_REGULAR_FACE;
    }
    if (flags != NULL)
        *flags = info->fixed ? B_IS_FIXED : 0;
    return B_OK;
}

bool TextLayout::HasFamilyAndStyle(const char* family, const char* style) {
    TextEngine& engine = TextEngine::Default();
    std::lock_guard<std::mutex> guard(engine.fLock);
    const FamilyInfo* info = engine.FindFamily(family);
    if (info == NULL)
        return false;
    if (style == NULL)
        return true;
    for (const StyleInfo& candidate : info->styles) {
        if (candidate.name == style)
            return true;
    }
    return false;
}

bool TextLayout::FindStyle(const char* family, bool bold, bool italic, font_style* style) {
    TextEngine& engine = TextEngine::Default();
    std::lock_guard<std::mutex> guard(engine.fLock);
    const FamilyInfo* info = engine.FindFamily(family);
    if (info == NULL || info->styles.empty())
        return false;

    // Prefer the wished bold and italic, then a normal width, then the weight
    // nearest to regular (400) or bold (700).
    int wantedWeight = bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL;
    const StyleInfo* best = NULL;
    int bestScore = 0;
    for (const StyleInfo& candidate : info->styles) {
        int score = (candidate.bold != bold ? 100000 : 0) +
                    (candidate.italic != italic ? 10000 : 0) +
                    (candidate.normalStretch ? 0 : 1000) + abs(candidate.weight - wantedWeight);
        if (best == NULL || score < bestScore) {
            best = &candidate;
            bestScore = score;
        }
    }
    copy_name(*style, best->name.c_str(), sizeof(font_style));
    return true;
}

bool TextLayout::IsFixed(const char* family) {
    TextEngine& engine = TextEngine::Default();
    std::lock_guard<std::mutex> guard(engine.fLock);
    const FamilyInfo* info = engine.FindFamily(family);
    return info != NULL && info->fixed;
}

} // namespace BPrivate
