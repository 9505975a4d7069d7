// A BFont is only a description; TextLayout turns it into pango fonts when text
// is measured or drawn. The system fonts are DejaVu faces found through
// fontconfig, so that text looks and measures the same on every machine.
#include <Font.h>

#include "TextEngine.h"
#include "TextLayout.h"

#include <String.h>

#include <math.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>

namespace BPrivate {

class FontPrivate {
public:
    static constexpr BFont Make(const char* family, const char* style, float size) {
        return BFont(family, style, size);
    }
};

} // namespace BPrivate

namespace {

const float kMinimumSize = 1.0f;
const float kMaximumSize = 10000.0f;

// Constant-initialised: usable before any other code runs, never destroyed.
constinit const BFont sPlainFont = BPrivate::FontPrivate::Make("DejaVu Sans", "Book", 10.0f);
constinit const BFont sBoldFont = BPrivate::FontPrivate::Make("DejaVu Sans", "Bold", 12.0f);
constinit const BFont sFixedFont = BPrivate::FontPrivate::Make("DejaVu Sans Mono", "Book", 12.0f);

bool style_is_bold(const char* style) {
    return strstr(style, "Bold") != NULL || strstr(style, "Heavy") != NULL ||
           strstr(style, "Black") != NULL;
}

bool style_is_italic(const char* style) {
    return strstr(style, "Italic") != NULL || strstr(style, "Oblique") != NULL;
}

// The face bits that are drawn as decorations rather than chosen by style.
const uint16 kDecorationFaces =
    B_UNDERSCORE_FACE | B_NEGATIVE_FACE | B_OUTLINED_FACE | B_STRIKEOUT_FACE;

} // namespace

const BFont* be_plain_font = &sPlainFont;
const BFont* be_bold_font = &sBoldFont;
const BFont* be_fixed_font = &sFixedFont;

BFont::BFont() : BFont(*be_plain_font) {}

BFont::BFont(const BFont* font) : BFont(font != NULL ? *font : *be_plain_font) {}

bool BFont::operator==(const BFont& font) const {
    return strcmp(fFamily, font.fFamily) == 0 && strcmp(fStyle, font.fStyle) == 0 &&
           fSize == font.fSize && fShear == font.fShear && fRotation == font.fRotation &&
           fSpacing == font.fSpacing && fEncoding == font.fEncoding && fFace == font.fFace &&
           fFlags == font.fFlags;
}

bool BFont::operator!=(const BFont& font) const {
    return !(*this == font);
}

status_t BFont::SetFamilyAndStyle(const font_family family, const font_style style) {
    const char* familyName = family != NULL ? family : fFamily;
    if (strnlen(familyName, sizeof(font_family)) > B_FONT_FAMILY_LENGTH)
        return B_BAD_VALUE;
    if (style != NULL && strnlen(style, sizeof(font_style)) > B_FONT_STYLE_LENGTH)
        return B_BAD_VALUE;

    font_style chosen;
    if (style != NULL && BPrivate::is_system_face(familyName, style)) {
        snprintf(chosen, sizeof(chosen), "%s", style);
    } else if (style != NULL) {
        if (!BPrivate::TextLayout::HasFamilyAndStyle(familyName, style))
            return B_NAME_NOT_FOUND;
        snprintf(chosen, sizeof(chosen), "%s", style);
    } else if (!BPrivate::TextLayout::FindStyle(familyName, false, false, &chosen)) {
        return B_NAME_NOT_FOUND;
    }

    font_family copy;
    snprintf(copy, sizeof(copy), "%s", familyName);
    memcpy(fFamily, copy, sizeof(fFamily));
    memcpy(fStyle, chosen, sizeof(fStyle));
    return B_OK;
}

status_t BFont::SetFamilyAndFace(const font_family family, uint16 face) {
    const char* familyName = family != NULL ? family : fFamily;
    if (strnlen(familyName, sizeof(font_family)) > B_FONT_FAMILY_LENGTH)
        return B_BAD_VALUE;

    font_style chosen;
    if (!BPrivate::TextLayout::FindStyle(familyName, (face & B_BOLD_FACE) != 0,
                                         (face & B_ITALIC_FACE) != 0, &chosen)) {
        return B_NAME_NOT_FOUND;
    }
    font_family copy;
    snprintf(copy, sizeof(copy), "%s", familyName);
    memcpy(fFamily, copy, sizeof(fFamily));
    memcpy(fStyle, chosen, sizeof(fStyle));
    fFace = face & kDecorationFaces;
    return B_OK;
}

void BFont::GetFamilyAndStyle(font_family* family, font_style* style) const {
    if (family != NULL)
        memcpy(*family, fFamily, sizeof(fFamily));
    if (style != NULL)
        memcpy(*style, fStyle, sizeof(fStyle));
}

void BFont::SetSize(float size) {
    if (isnan(size))
        return;
    fSize = std::clamp(size, kMinimumSize, kMaximumSize);
}

void BFont::SetShear(float shear) {
    if (isnan(shear))
        return;
    fShear = std::clamp(shear, 45.0f, 135.0f);
}

void BFont::SetRotation(float rotation) {
    if (!isfinite(rotation))
        return;
    fRotation = fmodf(rotation, 360.0f);
}

void BFont::SetSpacing(uint8 spacing) {
    fSpacing = spacing;
}

void BFont::SetEncoding(uint8 encoding) {
    fEncoding = encoding;
}

void BFont::SetFace(uint16 face) {
    bool bold = (face & B_BOLD_FACE) != 0;
    bool italic = (face & B_ITALIC_FACE) != 0;
    if (bold != style_is_bold(fStyle) || italic != style_is_italic(fStyle)) {
        font_style chosen;
        if (BPrivate::TextLayout::FindStyle(fFamily, bold, italic, &chosen))
            memcpy(fStyle, chosen, sizeof(fStyle));
    }
    fFace = face & kDecorationFaces;
}

void BFont::SetFlags(uint32 flags) {
    fFlags = flags;
}

float BFont::Size() const {
    return fSize;
}

float BFont::Shear() const {
    return fShear;
}

float BFont::Rotation() const {
    return fRotation;
}

uint8 BFont::Spacing() const {
    return fSpacing;
}

uint8 BFont::Encoding() const {
    return fEncoding;
}

uint16 BFont::Face() const {
    uint16 face = fFace;
    if (style_is_bold(fStyle))
        face |= B_BOLD_FACE;
    if (style_is_italic(fStyle))
        face |= B_ITALIC_FACE;
    if ((face & (B_BOLD_FACE | B_ITALIC_FACE)) == 0)
        face |= B_REGULAR_FACE;
    return face;
}

uint32 BFont::Flags() const {
    return fFlags;
}

font_direction BFont::Direction() const {
    return B_FONT_LEFT_TO_RIGHT;
}

bool BFont::IsFixed() const {
    return BPrivate::TextLayout::IsFixed(fFamily);
}

BRect BFont::BoundingBox() const {
    font_height height;
    GetHeight(&height);
    return BRect(0.0f, -height.ascent, fSize, height.descent);
}

void BFont::TruncateString(BString* inOut, uint32 mode, float width) const {
    if (inOut == NULL)
        return;
    BPrivate::TextLayout::Truncate(*this, inOut->String(), mode, width, inOut);
}

void BFont::GetTruncatedStrings(const char* stringArray[], int32 numStrings, uint32 mode,
                                float width, BString resultArray[]) const {
    if (stringArray == NULL || resultArray == NULL)
        return;
    for (int32 i = 0; i < numStrings; i++)
        BPrivate::TextLayout::Truncate(*this, stringArray[i], mode, width, &resultArray[i]);
}

void BFont::GetTruncatedStrings(const char* stringArray[], int32 numStrings, uint32 mode,
                                float width, char* resultArray[]) const {
    if (stringArray == NULL || resultArray == NULL)
        return;
    for (int32 i = 0; i < numStrings; i++) {
        if (resultArray[i] == NULL)
            continue;
        BString result;
        BPrivate::TextLayout::Truncate(*this, stringArray[i], mode, width, &result);
        // The caller's buffer holds the original plus 3 bytes: the ellipsis
        // replaces at least one character, so the result always fits.
        size_t room = stringArray[i] != NULL ? strlen(stringArray[i]) + 3 : 1;
        snprintf(resultArray[i], room, "%s", result.String());
    }
}

float BFont::StringWidth(const char* string) const {
    if (string == NULL)
        return 0.0f;
    return BPrivate::TextLayout::StringWidth(*this, string, -1);
}

float BFont::StringWidth(const char* string, int32 length) const {
    if (string == NULL || length <= 0)
        return 0.0f;
    return BPrivate::TextLayout::StringWidth(*this, string, length);
}

void BFont::GetStringWidths(const char* stringArray[], const int32 lengthArray[], int32 numStrings,
                            float widthArray[]) const {
    if (stringArray == NULL || lengthArray == NULL || widthArray == NULL)
        return;
    for (int32 i = 0; i < numStrings; i++)
        widthArray[i] = StringWidth(stringArray[i], lengthArray[i]);
}

void BFont::GetEscapements(const char charArray[], int32 numChars, float escapementArray[]) const {
    BPrivate::TextLayout::GetEscapements(*this, charArray, numChars, NULL, escapementArray);
}

void BFont::GetEscapements(const char charArray[], int32 numChars, escapement_delta* delta,
                           float escapementArray[]) const {
    BPrivate::TextLayout::GetEscapements(*this, charArray, numChars, delta, escapementArray);
}

void BFont::GetHeight(font_height* height) const {
    BPrivate::TextLayout::GetHeight(*this, height);
}

void BFont::PrintToStream() const {
    printf("BFont { %s (%s), size %.1f, shear %.1f, rotation %.1f, spacing %u, encoding %u, "
           "face 0x%04x, flags 0x%08x }\n",
           fFamily, fStyle, fSize, fShear, fRotation, (unsigned)fSpacing, (unsigned)fEncoding,
           (unsigned)Face(), (unsigned)fFlags);
}

// #pragma mark - Font families

int32 count_font_families() {
    return BPrivate::TextLayout::CountFamilies();
}

status_t get_font_family(int32 index, font_family* name, uint32* flags) {
    return BPrivate::TextLayout::GetFamily(index, name, flags);
}

int32 count_font_styles(font_family name) {
    return BPrivate::TextLayout::CountStyles(name);
}

status_t get_font_style(font_family family, int32 index, font_style* name, uint32* flags) {
    return BPrivate::TextLayout::GetStyle(family, index, name, NULL, flags);
}

status_t get_font_style(font_family family, int32 index, font_style* name, uint16* face,
                        uint32* flags) {
    return BPrivate::TextLayout::GetStyle(family, index, name, face, flags);
}

bool update_font_families(bool checkOnly) {
    // Families are read once per process; nothing changes under a running program.
    return false;
}
