// BFont: a font family and style with size, rotation, shear and other settings.
// Sizes are in pixels. Fonts are plain values: copying one copies its settings.
#ifndef _FONT_H
#define _FONT_H

#include <InterfaceDefs.h>
#include <Rect.h>
#include <SupportDefs.h>

class BString;

namespace BPrivate {
class FontPrivate;
}

#define B_FONT_FAMILY_LENGTH 63
#define B_FONT_STYLE_LENGTH 63
typedef char font_family[B_FONT_FAMILY_LENGTH + 1];
typedef char font_style[B_FONT_STYLE_LENGTH + 1];

enum { B_CHAR_SPACING = 0, B_STRING_SPACING = 1, B_BITMAP_SPACING = 2, B_FIXED_SPACING = 3 };

enum font_direction { B_FONT_LEFT_TO_RIGHT = 0, B_FONT_RIGHT_TO_LEFT = 1 };

enum { B_DISABLE_ANTIALIASING = 0x00000001, B_FORCE_ANTIALIASING = 0x00000002 };

enum { B_TRUNCATE_END = 0, B_TRUNCATE_BEGINNING = 1, B_TRUNCATE_MIDDLE = 2, B_TRUNCATE_SMART = 3 };

enum {
    B_UNICODE_UTF8 = 0,
    B_ISO_8859_1 = 1,
    B_ISO_8859_2 = 2,
    B_ISO_8859_3 = 3,
    B_ISO_8859_4 = 4,
    B_ISO_8859_5 = 5,
    B_ISO_8859_6 = 6,
    B_ISO_8859_7 = 7,
    B_ISO_8859_8 = 8,
    B_ISO_8859_9 = 9,
    B_ISO_8859_10 = 10,
    B_MACINTOSH_ROMAN = 11
};

enum { B_HAS_TUNED_FONT = 0x0001, B_IS_FIXED = 0x0002 };

enum {
    B_ITALIC_FACE = 0x0001,
    B_UNDERSCORE_FACE = 0x0002,
    B_NEGATIVE_FACE = 0x0004,
    B_OUTLINED_FACE = 0x0008,
    B_STRIKEOUT_FACE = 0x0010,
    B_BOLD_FACE = 0x0020,
    B_REGULAR_FACE = 0x0040
};

enum {
    B_FONT_FAMILY_AND_STYLE = 0x00000001,
    B_FONT_SIZE = 0x00000002,
    B_FONT_SHEAR = 0x00000004,
    B_FONT_ROTATION = 0x00000008,
    B_FONT_SPACING = 0x00000010,
    B_FONT_ENCODING = 0x00000020,
    B_FONT_FACE = 0x00000040,
    B_FONT_FLAGS = 0x00000080,
    B_FONT_ALL = 0x000000FF
};

struct font_height {
    float ascent;
    float descent;
    float leading;
};

// Extra advance added after every character that is not a space, and after every space.
struct escapement_delta {
    float nonspace;
    float space;
};

struct edge_info {
    float left;
    float right;
};

class BFont {
public:
    // A copy of be_plain_font.
    BFont();
    BFont(const BFont& font) = default;
    BFont(const BFont* font);

    BFont& operator=(const BFont& font) = default;
    bool operator==(const BFont& font) const;
    bool operator!=(const BFont& font) const;

    // B_NAME_NOT_FOUND when no installed font has that family (or style); a NULL
    // family keeps the current one, a NULL style picks the family's regular style.
    status_t SetFamilyAndStyle(const font_family family, const font_style style);
    status_t SetFamilyAndFace(const font_family family, uint16 face);
    void GetFamilyAndStyle(font_family* family, font_style* style) const;

    // Sizes are clamped to 1..10000 pixels.
    void SetSize(float size);
    // Degrees, 90 being upright; clamped to 45..135.
    void SetShear(float shear);
    // Degrees counter-clockwise.
    void SetRotation(float rotation);
    void SetSpacing(uint8 spacing);
    void SetEncoding(uint8 encoding);
    // Picks the family's style for the bold and italic bits; underscore and
    // strikeout are drawn as lines.
    void SetFace(uint16 face);
    void SetFlags(uint32 flags);

    float Size() const;
    float Shear() const;
    float Rotation() const;
    uint8 Spacing() const;
    uint8 Encoding() const;
    uint16 Face() const;
    uint32 Flags() const;

    font_direction Direction() const;
    bool IsFixed() const;
    // The box holding every glyph of the font, relative to the baseline origin.
    BRect BoundingBox() const;

    // Shortens the string to fit the width, replacing what is cut by an
    // ellipsis ("\xE2\x80\xA6"); a string that fits is kept. Never cuts inside a
    // character. B_TRUNCATE_SMART cuts in the middle.
    void TruncateString(BString* inOut, uint32 mode, float width) const;
    void GetTruncatedStrings(const char* stringArray[], int32 numStrings, uint32 mode, float width,
                             BString resultArray[]) const;
    // Each result buffer must hold the string's length plus 3 bytes.
    void GetTruncatedStrings(const char* stringArray[], int32 numStrings, uint32 mode, float width,
                             char* resultArray[]) const;

    float StringWidth(const char* string) const;
    float StringWidth(const char* string, int32 length) const;
    void GetStringWidths(const char* stringArray[], const int32 lengthArray[], int32 numStrings,
                         float widthArray[]) const;

    // The advance of each of numChars characters (UTF-8), in fractions of the size.
    void GetEscapements(const char charArray[], int32 numChars, float escapementArray[]) const;
    void GetEscapements(const char charArray[], int32 numChars, escapement_delta* delta,
                        float escapementArray[]) const;

    void GetHeight(font_height* height) const;

    void PrintToStream() const;

private:
    friend class BPrivate::FontPrivate;

    constexpr BFont(const char* family, const char* style, float size)
        : fFamily(), fStyle(), fSize(size), fShear(90.0f), fRotation(0.0f),
          fSpacing(B_BITMAP_SPACING), fEncoding(B_UNICODE_UTF8), fFace(0), fFlags(0) {
        for (int32 i = 0; i < B_FONT_FAMILY_LENGTH && family[i] != '\0'; i++)
            fFamily[i] = family[i];
        for (int32 i = 0; i < B_FONT_STYLE_LENGTH && style[i] != '\0'; i++)
            fStyle[i] = style[i];
    }

    font_family fFamily;
    font_style fStyle;
    float fSize;
    float fShear;
    float fRotation;
    uint8 fSpacing;
    uint8 fEncoding;
    // Underscore, strikeout and the other decorations; bold and italic come from the style.
    uint16 fFace;
    uint32 fFlags;
};

// The system fonts: a sans-serif face at 10 pixels (the size the program's
// 15-pixel cells are made for), its bold face at 12 and a monospaced face at 12.
extern const BFont* be_plain_font;
extern const BFont* be_bold_font;
extern const BFont* be_fixed_font;

int32 count_font_families();
status_t get_font_family(int32 index, font_family* name, uint32* flags = NULL);
int32 count_font_styles(font_family name);
status_t get_font_style(font_family family, int32 index, font_style* name, uint32* flags = NULL);
status_t get_font_style(font_family family, int32 index, font_style* name, uint16* face,
                        uint32* flags = NULL);
bool update_font_families(bool checkOnly);

#endif // _FONT_H
