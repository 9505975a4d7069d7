// TextLayout: the one place where text meets pango (kit-private). Fonts are
// resolved through fontconfig by family and style name and sized in pixels;
// measuring, truncating and rendering all go through the same process-wide pango
// context, so a string measures the same everywhere it is drawn. Every call may
// come from any thread: the context and its caches sit behind one lock.
#ifndef _TEXT_LAYOUT_H
#define _TEXT_LAYOUT_H

#include <Font.h>
#include <Rect.h>

#include "CairoPointers.h"

class BString;

namespace BPrivate {

// Glyph coverage of a drawn string, ready to be composited.
struct TextMask {
    // An A8 surface, or NULL when nothing of the string is visible.
    SurfacePointer surface;
    // Where the mask's top-left pixel lies on the target.
    int32 left = 0;
    int32 top = 0;
};

class TextLayout {
public:
    // Width of the first length bytes (stopping at a NUL; a negative length
    // means the whole string), as the pen would advance drawing them.
    static float StringWidth(const BFont& font, const char* text, int32 length);

    // Advances of numChars UTF-8 characters, in fractions of the font size.
    static void GetEscapements(const BFont& font, const char* text, int32 numChars,
                               const escapement_delta* delta, float* escapements);

    static void GetHeight(const BFont& font, font_height* height);

    static void Truncate(const BFont& font, const char* text, uint32 mode, float width,
                         BString* result);

    // Renders the string with its baseline origin at the given pixel of a target
    // surface (the glyphs sit on that pixel's row), turned by the font's rotation
    // and slanted by its shear, keeping only what falls inside visible (target
    // coordinates). Returns the distance the pen moves along the baseline.
    static float RenderMask(const BFont& font, const char* text, int32 length,
                            const escapement_delta* delta, BPoint baseline, BRect visible,
                            TextMask* mask);

    // Font families and their styles, sorted by name.
    static int32 CountFamilies();
    static status_t GetFamily(int32 index, font_family* name, uint32* flags);
    static int32 CountStyles(const char* family);
    static status_t GetStyle(const char* family, int32 index, font_style* name, uint16* face,
                             uint32* flags);

    // Whether the family exists, and whether it has the style (a NULL style
    // asks only for the family).
    static bool HasFamilyAndStyle(const char* family, const char* style);
    // The family's style closest to the bold and italic wishes; false when the
    // family is unknown.
    static bool FindStyle(const char* family, bool bold, bool italic, font_style* style);
    static bool IsFixed(const char* family);
};

} // namespace BPrivate

#endif // _TEXT_LAYOUT_H
