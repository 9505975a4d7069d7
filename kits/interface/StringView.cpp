// BStringView: draws its text on one line, aligned left, right or centred and
// centred vertically in its bounds.
#include <StringView.h>

#include "interface/ControlDrawing.h"

#include <math.h>
#include <stdlib.h>
#include <string.h>

BStringView::BStringView(BRect frame, const char* name, const char* text, uint32 resizingMode,
                         uint32 flags)
    : BView(frame, name, resizingMode, flags | B_WILL_DRAW),
      fText(text != NULL ? strdup(text) : NULL), fAlign(B_ALIGN_LEFT) {}

BStringView::~BStringView() {
    free(fText);
}

void BStringView::SetText(const char* text) {
    if (text == fText || (text != NULL && fText != NULL && strcmp(text, fText) == 0))
        return;
    free(fText);
    fText = text != NULL ? strdup(text) : NULL;
    Invalidate();
}

const char* BStringView::Text() const {
    return fText;
}

void BStringView::SetAlignment(alignment flag) {
    if (flag == fAlign)
        return;
    fAlign = flag;
    Invalidate();
}

alignment BStringView::Alignment() const {
    return fAlign;
}

void BStringView::AttachedToWindow() {
    rgb_color color = ui_color(B_PANEL_BACKGROUND_COLOR);
    if (BView* parent = Parent())
        color = parent->ViewColor();
    SetViewColor(color);
    SetLowColor(color);
}

void BStringView::Draw(BRect updateRect) {
    if (fText == NULL)
        return;
    BRect bounds = Bounds();
    float width = StringWidth(fText);
    float x = bounds.left;
    if (fAlign == B_ALIGN_RIGHT)
        x = bounds.right + 1 - width;
    else if (fAlign == B_ALIGN_CENTER)
        x = bounds.left + (bounds.Width() + 1 - width) / 2;
    SetDrawingMode(B_OP_OVER);
    DrawString(fText, BPoint(floorf(x), BPrivate::centered_baseline(this, bounds)));
    SetDrawingMode(B_OP_COPY);
}

void BStringView::SetFont(const BFont* font, uint32 mask) {
    BView::SetFont(font, mask);
    Invalidate();
}

void BStringView::GetPreferredSize(float* width, float* height) {
    font_height fontHeight;
    GetFontHeight(&fontHeight);
    if (width != NULL)
        *width = fText != NULL ? ceilf(StringWidth(fText)) : 0.0f;
    if (height != NULL)
        *height = ceilf(fontHeight.ascent + fontHeight.descent + fontHeight.leading);
}

void BStringView::ResizeToPreferred() {
    BView::ResizeToPreferred();
}
