// BView text: drawing strings from the pen location, the view's font, and
// measuring with it.
#include <View.h>

#include "interface/ViewData.h"
#include "interface/WindowData.h"

#include <String.h>

#include <string.h>

using BPrivate::Painter;

// #pragma mark - Text

void BView::DrawChar(char aChar) {
    DrawChar(aChar, fPrivate->state.penLocation);
}

void BView::DrawChar(char aChar, BPoint location) {
    char text[2] = {aChar, '\0'};
    DrawString(text, 1, location, NULL);
}

void BView::DrawString(const char* string, escapement_delta* delta) {
    if (string == NULL)
        return;
    DrawString(string, (int32)strlen(string), fPrivate->state.penLocation, delta);
}

void BView::DrawString(const char* string, BPoint location, escapement_delta* delta) {
    if (string == NULL)
        return;
    DrawString(string, (int32)strlen(string), location, delta);
}

void BView::DrawString(const char* string, int32 length, escapement_delta* delta) {
    DrawString(string, length, fPrivate->state.penLocation, delta);
}

void BView::DrawString(const char* string, int32 length, BPoint location, escapement_delta* delta) {
    if (string == NULL || length <= 0)
        return;
    Painter* painter = _PrepareDrawing();
    if (painter != NULL) {
        fPrivate->state.penLocation =
            painter->DrawString(string, length, location, fPrivate->state.font, delta);
    } else {
        fPrivate->state.penLocation =
            location + BPoint(fPrivate->state.font.StringWidth(string, length), 0);
    }
}

void BView::SetFont(const BFont* font, uint32 mask) {
    if (font == NULL || mask == 0)
        return;
    _CheckLock();
    BFont& current = fPrivate->state.font;
    if (mask == B_FONT_ALL) {
        current = *font;
    } else {
        if ((mask & B_FONT_FAMILY_AND_STYLE) != 0) {
            font_family family;
            font_style style;
            font->GetFamilyAndStyle(&family, &style);
            current.SetFamilyAndStyle(family, style);
        }
        if ((mask & B_FONT_SIZE) != 0)
            current.SetSize(font->Size());
        if ((mask & B_FONT_SHEAR) != 0)
            current.SetShear(font->Shear());
        if ((mask & B_FONT_ROTATION) != 0)
            current.SetRotation(font->Rotation());
        if ((mask & B_FONT_SPACING) != 0)
            current.SetSpacing(font->Spacing());
        if ((mask & B_FONT_ENCODING) != 0)
            current.SetEncoding(font->Encoding());
        if ((mask & B_FONT_FACE) != 0)
            current.SetFace(font->Face());
        if ((mask & B_FONT_FLAGS) != 0)
            current.SetFlags(font->Flags());
    }
    _StateChanged();
}

void BView::GetFont(BFont* font) const {
    if (font != NULL)
        *font = fPrivate->state.font;
}

void BView::SetFontSize(float size) {
    BFont font;
    font.SetSize(size);
    SetFont(&font, B_FONT_SIZE);
}

void BView::ForceFontAliasing(bool enable) {
    _CheckLock();
    uint32 flags = fPrivate->state.font.Flags();
    flags = enable ? (flags | B_DISABLE_ANTIALIASING) : (flags & ~B_DISABLE_ANTIALIASING);
    fPrivate->state.font.SetFlags(flags);
    _StateChanged();
}

void BView::TruncateString(BString* string, uint32 mode, float width) const {
    fPrivate->state.font.TruncateString(string, mode, width);
}

float BView::StringWidth(const char* string) const {
    return string != NULL ? fPrivate->state.font.StringWidth(string) : 0.0f;
}

float BView::StringWidth(const char* string, int32 length) const {
    return string != NULL ? fPrivate->state.font.StringWidth(string, length) : 0.0f;
}

void BView::GetStringWidths(char* stringArray[], int32 lengthArray[], int32 numStrings,
                            float widthArray[]) const {
    if (stringArray == NULL || lengthArray == NULL || widthArray == NULL || numStrings <= 0)
        return;
    fPrivate->state.font.GetStringWidths(const_cast<const char**>(stringArray), lengthArray,
                                         numStrings, widthArray);
}

void BView::GetFontHeight(font_height* height) const {
    if (height != NULL)
        fPrivate->state.font.GetHeight(height);
}
