// One pango font map and context serve the whole process. Pango contexts and
// layouts must not be used by two threads at once, while every window thread
// measures and draws text; rather than a context per thread (each loading its
// own fonts), all text work is short and goes through one lock. Measurements
// and rendered strings are cached by font and string, since windows measure
// and draw the same labels again and again.
//
// Hinted metrics make every advance a whole number of pixels, so a string is as
// wide when measured as when drawn, and pixels are the same on every machine
// with the same fonts.
#include "TextEngine.h"

#include "TextLibrary.h"

#include <math.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>

namespace BPrivate {

namespace {

const size_t kWidthCacheLimit = 4096;
const size_t kRenderedCacheLimit = 1024;
const int64 kRenderedCacheBytes = 8 << 20;
// Strings whose glyphs would cover more than this are drawn only where they are
// visible, and not kept.
const int64 kLargestKeptMask = 1 << 20;

bool style_name_is_bold(const char* style) {
    return strstr(style, "Bold") != NULL || strstr(style, "Heavy") != NULL ||
           strstr(style, "Black") != NULL;
}

bool style_name_is_italic(const char* style) {
    return strstr(style, "Italic") != NULL || strstr(style, "Oblique") != NULL;
}

// The start of the character after the one at position, in valid UTF-8: the
// lead byte tells how long its sequence is.
const char* next_character(const char* position) {
    uint8 lead = (uint8)*position;
    if (lead < 0xc0)
        return position + 1;
    if (lead < 0xe0)
        return position + 2;
    if (lead < 0xf0)
        return position + 3;
    return position + 4;
}

} // namespace

std::string valid_text(const char* text, int32 length) {
    if (text == NULL)
        return std::string();
    size_t size = length < 0 ? strlen(text) : strnlen(text, (size_t)length);
    const TextLibrary& library = TextLibrary::Get();
    if (library.g_utf8_validate(text, (gssize)size, NULL))
        return std::string(text, size);
    gchar* fixed = library.g_utf8_make_valid(text, (gssize)size);
    std::string result(fixed);
    library.g_free(fixed);
    return result;
}

void copy_name(char* target, const char* name, size_t size) {
    snprintf(target, size, "%s", name);
}

std::vector<size_t> character_boundaries(const std::string& text) {
    std::vector<size_t> boundaries;
    const char* start = text.c_str();
    const char* end = start + text.size();
    for (const char* position = start; position < end; position = next_character(position))
        boundaries.push_back((size_t)(position - start));
    boundaries.push_back(text.size());
    return boundaries;
}

std::string font_key(const BFont& font) {
    font_family family;
    font_style style;
    font.GetFamilyAndStyle(&family, &style);
    char key[sizeof(family) + sizeof(style) + 64];
    snprintf(key, sizeof(key), "%s\x1f%s\x1f%.3f\x1f%u\x1f%u", family, style, font.Size(),
             (unsigned)font.Face(), (unsigned)(font.Flags() & B_DISABLE_ANTIALIASING));
    return key;
}

bool is_system_face(const char* family, const char* style) {
    for (const BFont* font : {be_plain_font, be_bold_font, be_fixed_font}) {
        font_family systemFamily;
        font_style systemStyle;
        font->GetFamilyAndStyle(&systemFamily, &systemStyle);
        if (strcmp(family, systemFamily) == 0 && strcmp(style, systemStyle) == 0)
            return true;
    }
    return false;
}

TextEngine& TextEngine::Default() {
    static TextEngine* sEngine = new TextEngine;
    return *sEngine;
}

TextEngine::TextEngine() : fLibrary(TextLibrary::Get()) {
    fFontMap = fLibrary.pango_cairo_font_map_new();
    for (int32 aliased = 0; aliased < 2; aliased++) {
        PangoContext* context = fLibrary.pango_font_map_create_context(fFontMap);
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_font_options_set_antialias(options,
                                         aliased ? CAIRO_ANTIALIAS_NONE : CAIRO_ANTIALIAS_GRAY);
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_SLIGHT);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_ON);
        fLibrary.pango_cairo_context_set_font_options(context, options);
        cairo_font_options_destroy(options);
        fLibrary.pango_context_set_language(context, fLibrary.pango_language_from_string("en"));
        fLibrary.pango_context_set_base_dir(context, PANGO_DIRECTION_LTR);
        fContexts[aliased] = context;

        PangoLayout* layout = fLibrary.pango_layout_new(context);
        fLibrary.pango_layout_set_single_paragraph_mode(layout, TRUE);
        fLibrary.pango_layout_set_width(layout, -1);
        fLayouts[aliased] = layout;
    }
}

PangoContext* TextEngine::ContextFor(const BFont& font) {
    return fContexts[(font.Flags() & B_DISABLE_ANTIALIASING) != 0 ? 1 : 0];
}

const std::vector<FamilyInfo>& TextEngine::Families() {
    if (fFamiliesLoaded)
        return fFamilies;
    fFamiliesLoaded = true;

    PangoFontFamily** families = NULL;
    int familyCount = 0;
    fLibrary.pango_font_map_list_families(fFontMap, &families, &familyCount);
    for (int i = 0; i < familyCount; i++) {
        FamilyInfo family;
        family.name = fLibrary.pango_font_family_get_name(families[i]);
        if (family.name.size() > B_FONT_FAMILY_LENGTH)
            continue;
        family.fixed = fLibrary.pango_font_family_is_monospace(families[i]);

        PangoFontFace** faces = NULL;
        int faceCount = 0;
        fLibrary.pango_font_family_list_faces(families[i], &faces, &faceCount);
        for (int j = 0; j < faceCount; j++) {
            const char* name = fLibrary.pango_font_face_get_face_name(faces[j]);
            if (fLibrary.pango_font_face_is_synthesized(faces[j]) || name == NULL ||
                strlen(name) > B_FONT_STYLE_LENGTH) {
                continue;
            }
            PangoFontDescription* description = fLibrary.pango_font_face_describe(faces[j]);
            StyleInfo style;
            style.name = name;
            style.weight = fLibrary.pango_font_description_get_weight(description);
            style.bold = style.weight >= PANGO_WEIGHT_SEMIBOLD;
            style.italic =
                fLibrary.pango_font_description_get_style(description) != PANGO_STYLE_NORMAL;
            style.normalStretch =
                fLibrary.pango_font_description_get_stretch(description) == PANGO_STRETCH_NORMAL;
            style.description = description;
            family.styles.push_back(style);
        }
        fLibrary.g_free(faces);
        std::sort(family.styles.begin(), family.styles.end(),
                  [](const StyleInfo& a, const StyleInfo& b) { return a.name < b.name; });
        fFamilies.push_back(std::move(family));
    }
    fLibrary.g_free(families);
    std::sort(fFamilies.begin(), fFamilies.end(),
              [](const FamilyInfo& a, const FamilyInfo& b) { return a.name < b.name; });
    return fFamilies;
}

const FamilyInfo* TextEngine::FindFamily(const char* name) {
    if (name == NULL)
        return NULL;
    for (const FamilyInfo& family : Families()) {
        if (family.name == name)
            return &family;
    }
    return NULL;
}

const FontEntry& TextEngine::EntryFor(const BFont& font) {
    std::string key = font_key(font);
    auto found = fFonts.find(key);
    if (found != fFonts.end())
        return found->second;

    font_family familyName;
    font_style styleName;
    font.GetFamilyAndStyle(&familyName, &styleName);

    PangoFontDescription* description = NULL;
    if (is_system_face(familyName, styleName)) {
        // Fontconfig picks the very face that the font list would name.
        description = fLibrary.pango_font_description_new();
        fLibrary.pango_font_description_set_family(description, familyName);
        if (style_name_is_bold(styleName))
            fLibrary.pango_font_description_set_weight(description, PANGO_WEIGHT_BOLD);
    } else if (const FamilyInfo* family = FindFamily(familyName)) {
        for (const StyleInfo& style : family->styles) {
            if (style.name == styleName) {
                description = fLibrary.pango_font_description_copy(style.description);
                break;
            }
        }
    }
    if (description == NULL) {
        // Not an installed face: let fontconfig find the closest one.
        description = fLibrary.pango_font_description_new();
        fLibrary.pango_font_description_set_family(description, familyName);
        if (style_name_is_bold(styleName))
            fLibrary.pango_font_description_set_weight(description, PANGO_WEIGHT_BOLD);
        if (style_name_is_italic(styleName))
            fLibrary.pango_font_description_set_style(description, PANGO_STYLE_ITALIC);
    }
    fLibrary.pango_font_description_set_absolute_size(description, font.Size() * PANGO_SCALE);

    FontEntry entry;
    entry.description = description;
    PangoFontMetrics* metrics =
        fLibrary.pango_context_get_metrics(ContextFor(font), description, NULL);
    entry.height.ascent = (float)fLibrary.pango_font_metrics_get_ascent(metrics) / PANGO_SCALE;
    entry.height.descent = (float)fLibrary.pango_font_metrics_get_descent(metrics) / PANGO_SCALE;
    float lineHeight = (float)fLibrary.pango_font_metrics_get_height(metrics) / PANGO_SCALE;
    entry.height.leading = std::max(0.0f, lineHeight - entry.height.ascent - entry.height.descent);
    fLibrary.pango_font_metrics_unref(metrics);

    return fFonts.emplace(key, entry).first->second;
}

PangoLayout* TextEngine::Prepare(const BFont& font, const std::string& text,
                                 const escapement_delta* delta) {
    const FontEntry& entry = EntryFor(font);
    PangoLayout* layout = fLayouts[(font.Flags() & B_DISABLE_ANTIALIASING) != 0 ? 1 : 0];
    fLibrary.pango_layout_set_font_description(layout, entry.description);
    fLibrary.pango_layout_set_text(layout, text.c_str(), (int)text.size());

    PangoAttrList* attributes = NULL;
    uint16 face = font.Face();
    if ((face & (B_UNDERSCORE_FACE | B_STRIKEOUT_FACE)) != 0) {
        attributes = fLibrary.pango_attr_list_new();
        if ((face & B_UNDERSCORE_FACE) != 0)
            fLibrary.pango_attr_list_insert(
                attributes, fLibrary.pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
        if ((face & B_STRIKEOUT_FACE) != 0)
            fLibrary.pango_attr_list_insert(attributes,
                                            fLibrary.pango_attr_strikethrough_new(TRUE));
    }
    if (delta != NULL && (delta->nonspace != 0.0f || delta->space != 0.0f) &&
        isfinite(delta->nonspace) && isfinite(delta->space)) {
        if (attributes == NULL)
            attributes = fLibrary.pango_attr_list_new();
        std::vector<size_t> boundaries = character_boundaries(text);
        for (size_t i = 0; i + 1 < boundaries.size(); i++) {
            float extra = text[boundaries[i]] == ' ' ? delta->space : delta->nonspace;
            if (extra == 0.0f)
                continue;
            PangoAttribute* spacing =
                fLibrary.pango_attr_letter_spacing_new((int)(extra * PANGO_SCALE));
            spacing->start_index = (guint)boundaries[i];
            spacing->end_index = (guint)boundaries[i + 1];
            fLibrary.pango_attr_list_insert(attributes, spacing);
        }
    }
    fLibrary.pango_layout_set_attributes(layout, attributes);
    if (attributes != NULL)
        fLibrary.pango_attr_list_unref(attributes);
    return layout;
}

float TextEngine::Width(const BFont& font, const std::string& text) {
    if (text.empty())
        return 0.0f;
    std::string key = font_key(font);
    key += '\x1e';
    key += text;
    auto found = fWidths.find(key);
    if (found != fWidths.end())
        return found->second;

    PangoLayout* layout = Prepare(font, text, NULL);
    PangoRectangle logical;
    fLibrary.pango_layout_get_extents(layout, NULL, &logical);
    float width = (float)logical.width / PANGO_SCALE;

    if (fWidths.size() >= kWidthCacheLimit)
        fWidths.clear();
    fWidths.emplace(std::move(key), width);
    return width;
}

TextEngine::RenderedText TextEngine::Render(const BFont& font, const std::string& text,
                                            const escapement_delta* delta, double fractionX,
                                            double fractionY, const BRect* clipping) {
    PangoLayout* layout = Prepare(font, text, delta);
    PangoRectangle ink;
    PangoRectangle logical;
    fLibrary.pango_layout_get_extents(layout, &ink, &logical);
    double ascent = (double)fLibrary.pango_layout_get_baseline(layout) / PANGO_SCALE;

    RenderedText rendered;
    rendered.advance = (float)logical.width / PANGO_SCALE;

    // Shear slants the glyphs about the baseline (below 90 degrees the tops lean
    // right); rotation turns counter-clockwise on the screen, whose y grows down.
    float rotationDegrees = fmodf(font.Rotation(), 360.0f);
    bool level = rotationDegrees == 0.0f && font.Shear() == 90.0f;
    double shear = font.Shear() * M_PI / 180.0;
    double rotation = rotationDegrees * M_PI / 180.0;
    cairo_matrix_t slant;
    cairo_matrix_init(&slant, 1.0, 0.0, -cos(shear) / sin(shear), 1.0, 0.0, 0.0);
    cairo_matrix_t turn;
    cairo_matrix_init_rotate(&turn, -rotation);
    // The point names a pixel, and the string starts at that pixel's corner
    // that lies left and below in the string's own direction: glyphs sit on the
    // pixel's row and begin in its column, however the string is turned.
    cairo_matrix_t place;
    cairo_matrix_init_translate(&place, fractionX + 0.5, fractionY + 0.5);
    cairo_matrix_t lift;
    cairo_matrix_init_translate(&lift, -0.5, 0.5);
    cairo_matrix_t transform;
    cairo_matrix_multiply(&transform, &lift, &slant);
    cairo_matrix_multiply(&transform, &transform, &turn);
    cairo_matrix_multiply(&transform, &transform, &place);

    // The glyphs' box around the baseline origin, with a pixel to spare for
    // antialiasing, turned onto the target.
    double left = std::min(ink.x, logical.x) / (double)PANGO_SCALE - 1.0;
    double right =
        std::max(ink.x + ink.width, logical.x + logical.width) / (double)PANGO_SCALE + 1.0;
    double top = std::min(ink.y, logical.y) / (double)PANGO_SCALE - ascent - 1.0;
    double bottom = std::max(ink.y + ink.height, logical.y + logical.height) / (double)PANGO_SCALE -
                    ascent + 1.0;
    double corners[4][2] = {{left, top}, {right, top}, {left, bottom}, {right, bottom}};
    double minimumX = INFINITY, minimumY = INFINITY, maximumX = -INFINITY, maximumY = -INFINITY;
    for (auto& corner : corners) {
        cairo_matrix_transform_point(&transform, &corner[0], &corner[1]);
        minimumX = std::min(minimumX, floor(corner[0]));
        minimumY = std::min(minimumY, floor(corner[1]));
        maximumX = std::max(maximumX, ceil(corner[0]));
        maximumY = std::max(maximumY, ceil(corner[1]));
    }
    if (clipping == NULL) {
        if ((maximumX - minimumX) * (maximumY - minimumY) > (double)kLargestKeptMask) {
            rendered.advance = -1.0f;
            return rendered;
        }
    } else {
        minimumX = std::max(minimumX, (double)floorf(clipping->left));
        minimumY = std::max(minimumY, (double)floorf(clipping->top));
        maximumX = std::min(maximumX, (double)floorf(clipping->right) + 1.0);
        maximumY = std::min(maximumY, (double)floorf(clipping->bottom) + 1.0);
    }
    if (!(minimumX < maximumX && minimumY < maximumY) || ink.width <= 0)
        return rendered;

    SurfacePointer surface(cairo_image_surface_create(CAIRO_FORMAT_A8, (int)(maximumX - minimumX),
                                                      (int)(maximumY - minimumY)));
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
        return rendered;

    cairo_t* context = cairo_create(surface.get());
    cairo_translate(context, -minimumX, -minimumY);
    cairo_transform(context, &transform);
    // A turned or slanted string is laid out anew for its transformation (for
    // its hinting); level text keeps the layout as measured.
    if (!level)
        fLibrary.pango_cairo_update_layout(context, layout);
    cairo_move_to(context, 0.0, -ascent);
    fLibrary.pango_cairo_show_layout(context, layout);
    cairo_destroy(context);
    if (!level)
        fLibrary.pango_context_set_matrix(fLibrary.pango_layout_get_context(layout), NULL);

    cairo_surface_flush(surface.get());
    rendered.surface = std::move(surface);
    rendered.left = (int32)minimumX;
    rendered.top = (int32)minimumY;
    return rendered;
}

const TextEngine::RenderedText* TextEngine::FindRendered(const std::string& key) {
    auto found = fRendered.find(key);
    return found != fRendered.end() ? &found->second : NULL;
}

const TextEngine::RenderedText* TextEngine::StoreRendered(const std::string& key,
                                                          RenderedText&& rendered) {
    int64 bytes = (int64)key.size();
    if (rendered.surface != NULL) {
        bytes += (int64)cairo_image_surface_get_stride(rendered.surface.get()) *
                 cairo_image_surface_get_height(rendered.surface.get());
    }
    if (fRendered.size() >= kRenderedCacheLimit || fRenderedBytes + bytes > kRenderedCacheBytes) {
        // Painters hold their own references to surfaces they still use.
        fRendered.clear();
        fRenderedBytes = 0;
    }
    fRenderedBytes += bytes;
    return &fRendered.insert_or_assign(key, std::move(rendered)).first->second;
}

} // namespace BPrivate
