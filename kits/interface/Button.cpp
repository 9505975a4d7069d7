// BButton: a push button in the Be look. The default button is framed by a
// three-pixel ring; making a button the default grows its frame by the ring on
// every side, so its face stays where it was.
//
// Windows with B_ASYNCHRONOUS_CONTROLS track the pointer through MouseMoved()
// and MouseUp(); other windows are polled from MouseDown() until the button is
// released, as Be did, with the window still drawing in between.
#include <Button.h>

#include "interface/ButtonPrivate.h"
#include "interface/ControlDrawing.h"

#include <OS.h>
#include <TextView.h>
#include <Window.h>

#include <math.h>

using BPrivate::centered_baseline;
using BPrivate::control_label_color;
using BPrivate::draw_focus_mark;
using BPrivate::shows_focus;

namespace {

const float kRingInset = 3.0f;
const float kLabelMargin = 10.0f;
const float kMinimumWidth = 75.0f;

float face_height(const BView* view) {
    font_height height;
    view->GetFontHeight(&height);
    return 12.0f + ceilf(height.ascent + height.descent);
}

} // namespace

BButton::BButton(BRect frame, const char* name, const char* label, BMessage* message,
                 uint32 resizingMode, uint32 flags)
    : BControl(frame, name, label, message, resizingMode, flags | B_WILL_DRAW),
      fDrawAsDefault(false) {
    float height = face_height(this);
    if (Bounds().Height() < height)
        ResizeTo(Bounds().Width(), height);
}

BButton::~BButton() {}

void BButton::Draw(BRect updateRect) {
    BRect rect = Bounds();
    rgb_color background = LowColor();
    bool enabled = IsEnabled();
    bool pressed = Value() != B_CONTROL_OFF;

    if (IsDefault()) {
        SetHighColor(tint_color(background, B_DARKEN_1_TINT));
        FillRect(rect);
        SetHighColor(tint_color(background, enabled ? B_DARKEN_4_TINT : B_DARKEN_2_TINT));
        StrokeRect(rect);
        rect.InsetBy(kRingInset, kRingInset);
    }

    SetHighColor(tint_color(background, enabled ? B_DARKEN_4_TINT : B_DARKEN_2_TINT));
    StrokeRect(rect);
    rect.InsetBy(1, 1);

    rgb_color face = background;
    if (pressed)
        face = tint_color(background, B_DARKEN_3_TINT);
    else if (enabled)
        face = tint_color(background, B_LIGHTEN_1_TINT);
    SetHighColor(face);
    FillRect(rect);

    rgb_color light = pressed ? tint_color(background, B_DARKEN_4_TINT)
                              : tint_color(background, B_LIGHTEN_MAX_TINT);
    rgb_color dark = tint_color(background, B_DARKEN_2_TINT);
    BeginLineArray(4);
    AddLine(rect.LeftBottom(), rect.LeftTop(), light);
    AddLine(rect.LeftTop(), rect.RightTop(), light);
    AddLine(rect.RightTop(), rect.RightBottom(), dark);
    AddLine(rect.RightBottom(), rect.LeftBottom(), dark);
    EndLineArray();

    const char* label = Label();
    if (label == NULL)
        return;
    float width = StringWidth(label);
    float x = floorf(rect.left + (rect.Width() + 1 - width) / 2);
    float baseline = centered_baseline(this, rect);
    SetHighColor(pressed ? make_color(255, 255, 255) : control_label_color(background, enabled));
    SetDrawingMode(B_OP_OVER);
    DrawString(label, BPoint(x, baseline));
    SetDrawingMode(B_OP_COPY);

    if (shows_focus(this) && enabled) {
        float y = fminf(baseline + 2, rect.bottom - 2);
        draw_focus_mark(this, x - 1, x + width, y);
    }
}

void BButton::MouseDown(BPoint where) {
    if (!IsEnabled())
        return;
    SetValue(B_CONTROL_ON);
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
        if ((Value() == B_CONTROL_ON) != inside)
            SetValue(inside ? B_CONTROL_ON : B_CONTROL_OFF);
    } while (buttons != 0);
    if (Value() == B_CONTROL_ON)
        Invoke();
}

void BButton::MouseUp(BPoint where) {
    if (!IsTracking())
        return;
    SetTracking(false);
    if (Bounds().Contains(where) && Value() == B_CONTROL_ON)
        Invoke();
    else
        SetValue(B_CONTROL_OFF);
}

void BButton::MouseMoved(BPoint where, uint32 code, const BMessage* dragMessage) {
    if (!IsTracking())
        return;
    bool inside = Bounds().Contains(where);
    if ((Value() == B_CONTROL_ON) != inside)
        SetValue(inside ? B_CONTROL_ON : B_CONTROL_OFF);
}

void BButton::AttachedToWindow() {
    BControl::AttachedToWindow();
    if (fDrawAsDefault)
        Window()->SetDefaultButton(this);
}

void BButton::DetachedFromWindow() {
    if (Window()->DefaultButton() == this)
        Window()->SetDefaultButton(NULL);
    BControl::DetachedFromWindow();
}

void BButton::KeyDown(const char* bytes, int32 numBytes) {
    if (bytes == NULL || numBytes < 1)
        return;
    if (bytes[0] != B_ENTER && bytes[0] != B_SPACE) {
        BControl::KeyDown(bytes, numBytes);
        return;
    }
    if (IsEnabled())
        _Press();
}

void BButton::MakeFocus(bool focus) {
    BControl::MakeFocus(focus);
}

void BButton::MakeDefault(bool flag) {
    BWindow* window = Window();
    if (window != NULL) {
        BButton* current = window->DefaultButton();
        if (flag && current != this) {
            if (current != NULL && current->Window() == window)
                current->MakeDefault(false);
            window->SetDefaultButton(this);
        } else if (!flag && current == this) {
            window->SetDefaultButton(NULL);
        }
    }
    if (flag == fDrawAsDefault)
        return;
    fDrawAsDefault = flag;
    // The ring goes around the face, which stays in place.
    float inset = flag ? -kRingInset : kRingInset;
    MoveBy(inset, inset);
    ResizeBy(-2 * inset, -2 * inset);
    Invalidate();
}

bool BButton::IsDefault() const {
    return fDrawAsDefault;
}

void BButton::SetLabel(const char* string) {
    BControl::SetLabel(string);
}

void BButton::SetValue(int32 value) {
    BControl::SetValue(value);
}

void BButton::GetPreferredSize(float* width, float* height) {
    float ring = IsDefault() ? 2 * kRingInset : 0.0f;
    if (width != NULL) {
        float labelWidth = Label() != NULL ? StringWidth(Label()) : 0.0f;
        *width = fmaxf(ceilf(labelWidth + 2 * kLabelMargin), kMinimumWidth) + ring;
    }
    if (height != NULL)
        *height = face_height(this) + ring;
}

void BButton::ResizeToPreferred() {
    BControl::ResizeToPreferred();
}

status_t BButton::Invoke(BMessage* message) {
    status_t status = BControl::Invoke(message);
    SetValue(B_CONTROL_OFF);
    return status;
}

void BButton::_Press() {
    SetValue(B_CONTROL_ON);
    // Show the pressed face once before the button lets go.
    if (Window() != NULL)
        Window()->UpdateIfNeeded();
    Invoke();
}

// #pragma mark - Kit-private

namespace BPrivate {

bool press_default_button(BWindow* window) {
    BButton* button = window != NULL ? window->DefaultButton() : NULL;
    if (button == NULL || button->Window() != window || !button->IsEnabled() || button->IsHidden())
        return false;
    BTextView* textView = dynamic_cast<BTextView*>(window->CurrentFocus());
    if (textView != NULL && textView->IsEditable())
        return false;
    const char enter = B_ENTER;
    button->KeyDown(&enter, 1);
    return true;
}

} // namespace BPrivate
