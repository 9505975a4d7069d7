// BTextView's text, runs and lines: the parts of BTextView::Private that know
// nothing of the view.
#include "interface/TextViewData.h"

#include <algorithm>
#include <math.h>
#include <string.h>

using BPrivate::StyleRun;
using BPrivate::TextLine;
using BPrivate::TextStyle;

namespace {

const char* const kBullet = "\xE2\x80\xA2";

bool is_continuation(char byte) {
    return ((uint8)byte & 0xc0) == 0x80;
}

bool is_space(char byte) {
    return byte == ' ' || byte == '\t';
}

} // namespace

namespace BPrivate {

bool TextStyle::operator==(const TextStyle& other) const {
    return font == other.font && color.red == other.color.red && color.green == other.color.green &&
           color.blue == other.color.blue && color.alpha == other.color.alpha;
}

void apply_font(BFont* target, const BFont& source, uint32 mode) {
    if ((mode & B_FONT_FAMILY_AND_STYLE) != 0) {
        font_family family;
        font_style style;
        source.GetFamilyAndStyle(&family, &style);
        target->SetFamilyAndStyle(family, style);
    }
    if ((mode & B_FONT_SIZE) != 0)
        target->SetSize(source.Size());
    if ((mode & B_FONT_SHEAR) != 0)
        target->SetShear(source.Shear());
    if ((mode & B_FONT_ROTATION) != 0)
        target->SetRotation(source.Rotation());
    if ((mode & B_FONT_SPACING) != 0)
        target->SetSpacing(source.Spacing());
    if ((mode & B_FONT_ENCODING) != 0)
        target->SetEncoding(source.Encoding());
    if ((mode & B_FONT_FACE) != 0)
        target->SetFace(source.Face());
    if ((mode & B_FONT_FLAGS) != 0)
        target->SetFlags(source.Flags());
}

} // namespace BPrivate

// #pragma mark - Characters

int32 BTextView::Private::Clamp(int32 offset) const {
    return std::clamp(offset, (int32)0, Length());
}

int32 BTextView::Private::NextCharacter(int32 offset) const {
    if (offset >= Length())
        return Length();
    offset++;
    while (offset < Length() && is_continuation(text[offset]))
        offset++;
    return offset;
}

int32 BTextView::Private::PreviousCharacter(int32 offset) const {
    if (offset <= 0)
        return 0;
    offset = std::min(offset, Length()) - 1;
    while (offset > 0 && is_continuation(text[offset]))
        offset--;
    return offset;
}

int32 BTextView::Private::AlignToCharacter(int32 offset) const {
    offset = Clamp(offset);
    while (offset > 0 && offset < Length() && is_continuation(text[offset]))
        offset--;
    return offset;
}

// #pragma mark - Styles

int32 BTextView::Private::RunIndexAt(int32 offset) const {
    auto position =
        std::upper_bound(runs.begin(), runs.end(), offset,
                         [](int32 value, const StyleRun& run) { return value < run.offset; });
    if (position == runs.begin())
        return 0;
    return (int32)(position - runs.begin()) - 1;
}

const TextStyle& BTextView::Private::StyleAt(int32 offset) const {
    return runs[RunIndexAt(offset)].style;
}

void BTextView::Private::SplitAt(int32 offset) {
    int32 index = RunIndexAt(offset);
    if (runs[index].offset == offset)
        return;
    runs.insert(runs.begin() + index + 1, StyleRun{offset, runs[index].style});
}

void BTextView::Private::SetStyle(int32 start, int32 end, const TextStyle& style) {
    if (start >= end)
        return;
    SplitAt(start);
    SplitAt(end);
    for (StyleRun& run : runs) {
        if (run.offset >= start && run.offset < end)
            run.style = style;
    }
    NormalizeRuns();
}

void BTextView::Private::ChangeStyle(int32 start, int32 end, const BFont* font, uint32 mode,
                                     const rgb_color* color) {
    if (start >= end)
        return;
    SplitAt(start);
    SplitAt(end);
    for (StyleRun& run : runs) {
        if (run.offset < start || run.offset >= end)
            continue;
        if (font != NULL)
            BPrivate::apply_font(&run.style.font, *font, mode);
        if (color != NULL)
            run.style.color = *color;
    }
    NormalizeRuns();
}

void BTextView::Private::ApplyRuns(int32 start, int32 end, const text_run_array* array) {
    if (array == NULL || array->count <= 0 || start >= end)
        return;
    const text_run* entries = array->runs;
    for (int32 index = 0; index < array->count; index++) {
        int32 from = start + std::max(entries[index].offset, (int32)0);
        int32 to = index + 1 < array->count ? start + entries[index + 1].offset : end;
        from = AlignToCharacter(std::min(from, end));
        to = AlignToCharacter(std::min(to, end));
        // The first run covers the start even when its offset says otherwise.
        if (index == 0)
            from = start;
        SetStyle(from, to, TextStyle{entries[index].font, entries[index].color});
    }
}

void BTextView::Private::NormalizeRuns() {
    std::vector<StyleRun> result;
    result.reserve(runs.size());
    for (const StyleRun& run : runs) {
        if (!result.empty() && (run.offset >= Length() || run.offset <= result.back().offset)) {
            // A run that starts where the previous one does replaces it.
            if (run.offset == result.back().offset && run.offset < Length())
                result.back().style = run.style;
            continue;
        }
        if (!result.empty() && result.back().style == run.style)
            continue;
        result.push_back(run);
    }
    if (result.empty())
        result.push_back(StyleRun{0, runs.empty() ? TextStyle{BFont(), make_color(0, 0, 0)}
                                                  : runs.front().style});
    result.front().offset = 0;
    runs = std::move(result);
}

void BTextView::Private::InsertBytes(int32 offset, const char* bytes, int32 length,
                                     const TextStyle& style) {
    if (length <= 0)
        return;
    text.insert((size_t)offset, bytes, (size_t)length);
    // Runs move with their text; the first run stays at 0 and its old text
    // gets a run of its own when SetStyle() splits there.
    for (StyleRun& run : runs) {
        if (run.offset >= offset && run.offset > 0)
            run.offset += length;
    }
    SetStyle(offset, offset + length, style);
}

void BTextView::Private::DeleteBytes(int32 start, int32 end) {
    if (start >= end)
        return;
    // The text after the deletion keeps its style; with nothing left, the text
    // that was deleted lends its style to what is typed next.
    bool keepFollowing = end < Length();
    TextStyle following = StyleAt(keepFollowing ? end : start);
    int32 length = end - start;
    text.erase((size_t)start, (size_t)length);
    std::vector<StyleRun> kept;
    for (const StyleRun& run : runs) {
        if (run.offset < start)
            kept.push_back(run);
        else if (run.offset > end)
            kept.push_back(StyleRun{run.offset - length, run.style});
    }
    if (kept.empty() || kept.front().offset != 0)
        kept.insert(kept.begin(), StyleRun{0, following});
    runs = std::move(kept);
    if (keepFollowing && runs[RunIndexAt(start)].style != following)
        runs.insert(runs.begin() + RunIndexAt(start) + 1, StyleRun{start, following});
    NormalizeRuns();
}

// #pragma mark - Layout

std::string BTextView::Private::Shown(int32 from, int32 to) const {
    if (!typingHidden)
        return text.substr((size_t)from, (size_t)(to - from));
    std::string shown;
    for (int32 offset = from; offset < to; offset = NextCharacter(offset))
        shown += text[offset] == '\t' ? "\t" : kBullet;
    return shown;
}

float BTextView::Private::Advance(int32 from, int32 to, float x) const {
    while (from < to) {
        if (text[from] == '\t') {
            float stop = tabWidth > 0 ? (floorf(x / tabWidth) + 1) * tabWidth : x;
            x = stop;
            from++;
            continue;
        }
        const StyleRun& run = runs[RunIndexAt(from)];
        int32 runIndex = RunIndexAt(from);
        int32 runEnd =
            runIndex + 1 < (int32)runs.size() ? std::min(runs[runIndex + 1].offset, to) : to;
        int32 chunkEnd = from;
        while (chunkEnd < runEnd && text[chunkEnd] != '\t' && text[chunkEnd] != '\n')
            chunkEnd++;
        if (chunkEnd > from) {
            std::string shown = Shown(from, chunkEnd);
            x += run.style.font.StringWidth(shown.c_str(), (int32)shown.size());
        }
        // A line break takes no room.
        if (chunkEnd < runEnd && text[chunkEnd] == '\n')
            chunkEnd++;
        from = std::max(chunkEnd, from + 1);
    }
    return x;
}

void BTextView::Private::Layout() {
    lines.clear();
    float maxWidth = wordWrap ? std::max(textRect.Width(), 1.0f) : HUGE_VALF;
    int32 length = Length();
    int32 start = 0;
    float top = 0;
    while (true) {
        // Find where the line ends: after a line break, or at the last place it
        // may wrap before a character that does not fit.
        int32 end = start;
        int32 lastBreak = -1;
        float x = 0;
        while (end < length) {
            if (text[end] == '\n') {
                end++;
                break;
            }
            int32 next = NextCharacter(end);
            float nextX = Advance(end, next, x);
            if (nextX > maxWidth && !is_space(text[end])) {
                if (lastBreak > start)
                    end = lastBreak;
                else if (end == start)
                    end = next;
                break;
            }
            x = nextX;
            if (is_space(text[end]))
                lastBreak = next;
            end = next;
        }

        TextLine line{start, top, 0, 0, 0};
        font_height height{};
        float descent = 0;
        float leading = 0;
        int32 last = std::max(end, start + 1);
        int32 first = RunIndexAt(start);
        for (int32 index = first; index < (int32)runs.size(); index++) {
            if (index > first && runs[index].offset >= last)
                break;
            runs[index].style.font.GetHeight(&height);
            line.ascent = std::max(line.ascent, ceilf(height.ascent));
            descent = std::max(descent, ceilf(height.descent));
            leading = std::max(leading, ceilf(height.leading));
        }
        line.height = line.ascent + descent + leading;
        int32 visibleEnd = end > start && text[end - 1] == '\n' ? end - 1 : end;
        line.width = Advance(start, visibleEnd, 0);
        lines.push_back(line);
        top += line.height;

        if (end >= length) {
            if (length > 0 && text[length - 1] == '\n' && end == length && start != length) {
                // The caret's line after a final line break.
                start = length;
                continue;
            }
            break;
        }
        start = end;
    }
}

int32 BTextView::Private::LineIndexAt(int32 offset) const {
    auto position =
        std::upper_bound(lines.begin(), lines.end(), offset,
                         [](int32 value, const TextLine& line) { return value < line.offset; });
    if (position == lines.begin())
        return 0;
    int32 index = (int32)(position - lines.begin()) - 1;
    return index;
}

int32 BTextView::Private::LineIndexAtY(float y) const {
    y -= textRect.top;
    for (int32 index = 0; index < (int32)lines.size(); index++) {
        if (y < lines[index].top + lines[index].height)
            return index;
    }
    return (int32)lines.size() - 1;
}

int32 BTextView::Private::LineLimit(int32 index) const {
    return index + 1 < (int32)lines.size() ? lines[index + 1].offset : Length();
}

int32 BTextView::Private::LineEnd(int32 index) const {
    int32 limit = LineLimit(index);
    if (limit > lines[index].offset && text[limit - 1] == '\n')
        return limit - 1;
    // A wrapped line's caret stays before the next line's first character.
    if (index + 1 < (int32)lines.size() && limit > lines[index].offset && is_space(text[limit - 1]))
        return limit - 1;
    return limit;
}

float BTextView::Private::LineLeft(int32 index) const {
    float left = textRect.left;
    float room = textRect.Width() - lines[index].width;
    if (align == B_ALIGN_RIGHT)
        left += std::max(room, 0.0f);
    else if (align == B_ALIGN_CENTER)
        left += std::max(floorf(room / 2), 0.0f);
    return left;
}

float BTextView::Private::XAt(int32 offset) const {
    int32 index = LineIndexAt(offset);
    return LineLeft(index) + Advance(lines[index].offset, offset, 0);
}

int32 BTextView::Private::OffsetAtX(int32 index, float x) const {
    int32 start = lines[index].offset;
    int32 end = LineEnd(index);
    x -= LineLeft(index);
    float previousX = 0;
    for (int32 offset = start; offset < end;) {
        int32 next = NextCharacter(offset);
        float nextX = Advance(start, next, 0);
        if (x < (previousX + nextX) / 2)
            return offset;
        previousX = nextX;
        offset = next;
    }
    return end;
}
