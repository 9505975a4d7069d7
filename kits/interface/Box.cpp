// BBox: the fancy border is an etched line (shadow, then light one pixel in),
// the plain border a raised one. A label sits ten pixels from the left with the
// top border through the middle of its line, the border broken where it is.
#include <Box.h>

#include <Window.h>

#include <math.h>
#include <stdlib.h>
#include <string.h>

namespace {

const float kLabelLeft = 10.0f;
const float kLabelPadding = 2.0f;

} // namespace

BBox::BBox(BRect frame, const char* name, uint32 resizingMode, uint32 flags, border_style border)
    : BView(frame, name, resizingMode, flags | B_WILL_DRAW), fLabel(NULL), fLabelView(NULL),
      fStyle(border) {}

BBox::~BBox() {
    free(fLabel);
}

void BBox::SetBorder(border_style border) {
    if (border == fStyle)
        return;
    fStyle = border;
    Invalidate();
}

border_style BBox::Border() const {
    return fStyle;
}

void BBox::_ClearLabel() {
    free(fLabel);
    fLabel = NULL;
    if (fLabelView != NULL) {
        fLabelView->RemoveSelf();
        delete fLabelView;
        fLabelView = NULL;
    }
}

void BBox::SetLabel(const char* string) {
    _ClearLabel();
    if (string != NULL)
        fLabel = strdup(string);
    Invalidate();
}

status_t BBox::SetLabel(BView* viewLabel) {
    if (viewLabel == NULL)
        return B_BAD_VALUE;
    if (viewLabel == fLabelView)
        return B_OK;
    _ClearLabel();
    fLabelView = viewLabel;
    fLabelView->MoveTo(kLabelLeft, 0);
    AddChild(fLabelView);
    Invalidate();
    return B_OK;
}

const char* BBox::Label() const {
    return fLabel;
}

BView* BBox::LabelView() const {
    return fLabelView;
}

float BBox::_TopBorderOffset() const {
    if (fLabelView != NULL)
        return floorf(fLabelView->Bounds().Height() / 2);
    if (fLabel == NULL)
        return 0.0f;
    font_height height;
    GetFontHeight(&height);
    return floorf(ceilf(height.ascent + height.descent) / 2);
}

void BBox::Draw(BRect updateRect) {
    BRect frame = Bounds();
    frame.top += _TopBorderOffset();
    rgb_color background = ViewColor();
    rgb_color light = tint_color(background, B_LIGHTEN_MAX_TINT);
    rgb_color shadow = tint_color(background, B_DARKEN_2_TINT);

    switch (fStyle) {
    case B_FANCY_BORDER:
        SetHighColor(shadow);
        StrokeRect(BRect(frame.left, frame.top, frame.right - 1, frame.bottom - 1));
        SetHighColor(light);
        StrokeRect(BRect(frame.left + 1, frame.top + 1, frame.right, frame.bottom));
        break;
    case B_PLAIN_BORDER:
        BeginLineArray(4);
        AddLine(frame.LeftBottom(), frame.LeftTop(), light);
        AddLine(frame.LeftTop(), frame.RightTop(), light);
        AddLine(frame.RightTop(), frame.RightBottom(), shadow);
        AddLine(frame.RightBottom(), frame.LeftBottom(), shadow);
        EndLineArray();
        break;
    case B_NO_BORDER:
    default:
        break;
    }

    if (fLabel == NULL)
        return;
    font_height height;
    GetFontHeight(&height);
    float width = StringWidth(fLabel);
    // The border is broken under the label.
    SetHighColor(background);
    FillRect(BRect(kLabelLeft - kLabelPadding, 0, kLabelLeft + ceilf(width) + kLabelPadding,
                   ceilf(height.ascent + height.descent)));
    SetHighColor(ui_color(B_PANEL_TEXT_COLOR));
    SetDrawingMode(B_OP_OVER);
    DrawString(fLabel, BPoint(kLabelLeft, ceilf(height.ascent)));
    SetDrawingMode(B_OP_COPY);
}

void BBox::AttachedToWindow() {
    rgb_color color = ui_color(B_PANEL_BACKGROUND_COLOR);
    if (BView* parent = Parent())
        color = parent->ViewColor();
    SetViewColor(color);
    SetLowColor(color);
}

void BBox::FrameResized(float width, float height) {
    // The right and bottom edges moved.
    Invalidate();
}
