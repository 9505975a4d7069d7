// BCheckBox: a white box with a sunken edge and the label beside it; a checked
// box is crossed in the control mark colour. While the button is held over the
// control the box is outlined, and releasing it there toggles the value.
#include <CheckBox.h>

#include "interface/ControlDrawing.h"

#include <OS.h>
#include <Window.h>

#include <math.h>

using BPrivate::centered_baseline;
using BPrivate::control_label_color;
using BPrivate::draw_focus_mark;
using BPrivate::shows_focus;

namespace {

const float kBoxSize = 12.0f;
const float kLabelGap = 6.0f;

} // namespace

BCheckBox::BCheckBox(BRect frame, const char* name, const char* label, BMessage* message,
                     uint32 resizingMode, uint32 flags)
    : BControl(frame, name, label, message, resizingMode, flags | B_WILL_DRAW), fOutlined(false) {
    float height;
    GetPreferredSize(NULL, &height);
    if (Bounds().Height() < height)
        ResizeTo(Bounds().Width(), height);
}

BCheckBox::~BCheckBox() {}

BRect BCheckBox::_BoxFrame() const {
    float top = floorf((Bounds().Height() + 1 - kBoxSize) / 2);
    return BRect(1, top, kBoxSize, top + kBoxSize - 1);
}

void BCheckBox::Draw(BRect updateRect) {
    rgb_color background = LowColor();
    bool enabled = IsEnabled();
    BRect box = _BoxFrame();

    // The sunken edge: dark above and left, light below and right.
    rgb_color shadow = tint_color(background, enabled ? B_DARKEN_1_TINT : B_NO_TINT);
    rgb_color light = tint_color(background, B_LIGHTEN_MAX_TINT);
    BeginLineArray(4);
    AddLine(box.LeftBottom(), box.LeftTop(), shadow);
    AddLine(box.LeftTop(), box.RightTop(), shadow);
    AddLine(box.RightTop() + BPoint(0, 1), box.RightBottom(), light);
    AddLine(box.RightBottom(), box.LeftBottom() + BPoint(1, 0), light);
    EndLineArray();

    BRect inner = box.InsetByCopy(1, 1);
    SetHighColor(fOutlined ? keyboard_navigation_color()
                           : tint_color(background, enabled ? B_DARKEN_4_TINT : B_DARKEN_2_TINT));
    StrokeRect(inner);
    inner.InsetBy(1, 1);
    SetHighColor(enabled ? make_color(255, 255, 255) : tint_color(background, B_LIGHTEN_1_TINT));
    FillRect(inner);

    if (Value() != B_CONTROL_OFF) {
        rgb_color mark = ui_color(B_CONTROL_MARK_COLOR);
        if (!enabled)
            mark = tint_color(mark, B_DISABLED_MARK_TINT);
        SetHighColor(mark);
        BRect cross = inner.InsetByCopy(1, 1);
        // Two pixels wide: each stroke beside its twin.
        StrokeLine(cross.LeftTop(), cross.RightBottom());
        StrokeLine(cross.LeftTop() + BPoint(1, 0), cross.RightBottom() - BPoint(0, 1));
        StrokeLine(cross.LeftBottom(), cross.RightTop());
        StrokeLine(cross.LeftBottom() + BPoint(1, 0), cross.RightTop() + BPoint(0, 1));
    }

    const char* label = Label();
    if (label == NULL)
        return;
    float x = box.right + kLabelGap;
    float baseline = centered_baseline(this, Bounds());
    SetHighColor(control_label_color(background, enabled));
    SetDrawingMode(B_OP_OVER);
    DrawString(label, BPoint(x, baseline));
    SetDrawingMode(B_OP_COPY);

    if (shows_focus(this) && enabled) {
        float y = fminf(baseline + 2, Bounds().bottom - 1);
        draw_focus_mark(this, x - 1, x + StringWidth(label), y);
    }
}

void BCheckBox::AttachedToWindow() {
    BControl::AttachedToWindow();
}

void BCheckBox::MouseDown(BPoint where) {
    if (!IsEnabled())
        return;
    fOutlined = true;
    Invalidate();
    BWindow* window = Window();
    if ((window->Flags() & B_ASYNCHRONOUS_CONTROLS) != 0) {
        SetTracking(true);
        SetMouseEventMask(B_POINTER_EVENTS, B_LOCK_WINDOW_FOCUS);
        return;
    }

    BRect bounds = Bounds();
    uint32 buttons;
    do {
        window->UpdateIfNeeded();
        snooze(20000);
        GetMouse(&where, &buttons, true);
        bool inside = bounds.Contains(where);
        if (fOutlined != inside) {
            fOutlined = inside;
            Invalidate();
        }
    } while (buttons != 0);
    if (fOutlined) {
        fOutlined = false;
        SetValue(Value() != B_CONTROL_OFF ? B_CONTROL_OFF : B_CONTROL_ON);
        Invoke();
    }
    Invalidate();
}

void BCheckBox::MouseUp(BPoint where) {
    if (!IsTracking())
        return;
    SetTracking(false);
    bool inside = Bounds().Contains(where);
    fOutlined = false;
    if (inside) {
        SetValue(Value() != B_CONTROL_OFF ? B_CONTROL_OFF : B_CONTROL_ON);
        Invoke();
    }
    Invalidate();
}

void BCheckBox::MouseMoved(BPoint where, uint32 code, const BMessage* dragMessage) {
    if (!IsTracking())
        return;
    bool inside = Bounds().Contains(where);
    if (fOutlined != inside) {
        fOutlined = inside;
        Invalidate();
    }
}

void BCheckBox::KeyDown(const char* bytes, int32 numBytes) {
    BControl::KeyDown(bytes, numBytes);
}

void BCheckBox::SetValue(int32 value) {
    // Any value but 0 checks the box.
    BControl::SetValue(value != B_CONTROL_OFF ? B_CONTROL_ON : B_CONTROL_OFF);
}

void BCheckBox::GetPreferredSize(float* width, float* height) {
    font_height fontHeight;
    GetFontHeight(&fontHeight);
    if (width != NULL) {
        float labelWidth = Label() != NULL ? StringWidth(Label()) : 0.0f;
        *width = ceilf(kBoxSize + kLabelGap + labelWidth + 2);
    }
    if (height != NULL)
        *height = fmaxf(ceilf(fontHeight.ascent + fontHeight.descent) + 4, kBoxSize + 2);
}

void BCheckBox::ResizeToPreferred() {
    BControl::ResizeToPreferred();
}

status_t BCheckBox::Invoke(BMessage* message) {
    return BControl::Invoke(message);
}
