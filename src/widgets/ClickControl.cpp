#include "ClickControl.h"

#include <InterfaceDefs.h>
#include <Message.h>
#include <OS.h>
#include <Window.h>

#include <math.h>

namespace {

const bigtime_t kPollInterval = 20000;

} // namespace

ClickControl::ClickControl(BRect frame, const char* name, const char* label, float imageWidth,
                           float imageHeight, BMessage* message, uint32 resizingMode, uint32 flags)
    : BControl(frame, name, label, message, resizingMode, flags),
      fImageRect(0.0f, 2.0f, imageWidth, imageHeight + 2.0f) {
    SetTracking(true);
}

ClickControl::~ClickControl() {}

void ClickControl::SetImageSize(float width, float height) {
    fImageRect.Set(0.0f, 2.0f, width, height + 2.0f);
    if (Window() != NULL)
        Invalidate();
}

void ClickControl::GetImageSize(float* width, float* height) const {
    if (width != NULL)
        *width = fImageRect.right - fImageRect.left;
    if (height != NULL)
        *height = fImageRect.bottom - fImageRect.top;
}

BRect ClickControl::ImageRect() const {
    return fImageRect;
}

void ClickControl::GetPreferredSize(float* width, float* height) {
    BFont font;
    GetFont(&font);
    const char* label = Label();
    float labelWidth = label != NULL ? StringWidth(label) : 0.0f;
    if (width != NULL)
        *width = labelWidth + fImageRect.right + 6.0f;
    if (height != NULL)
        *height = fmaxf(font.Size() + 7.0f, fImageRect.bottom + 2.0f);
}

void ClickControl::AttachedToWindow() {
    BControl::AttachedToWindow();
    float height = 0.0f;
    GetPreferredSize(NULL, &height);
    BRect bounds = Bounds();
    if (bounds.Height() < height)
        ResizeTo(bounds.Width(), height);
}

void ClickControl::MouseDown(BPoint where) {
    if (!fImageRect.Contains(where))
        return;
    BWindow* window = Window();
    if (window == NULL)
        return;
    if ((window->Flags() & B_ASYNCHRONOUS_CONTROLS) != 0) {
        SetMouseEventMask(B_POINTER_EVENTS);
        _ChangeValue(ValueForPoint(where, fImageRect));
        return;
    }

    // A synchronous control follows the pointer itself until the button is up.
    BPoint point = where;
    uint32 buttons = 0;
    bool first = true;
    BPoint last = where;
    do {
        if ((first || point != last) && fImageRect.Contains(point))
            _ChangeValue(ValueForPoint(point, fImageRect));
        first = false;
        last = point;
        snooze(kPollInterval);
        GetMouse(&point, &buttons, true);
    } while (buttons != 0);
}

void ClickControl::MouseMoved(BPoint where, uint32 code, const BMessage* dragMessage) {
    uint32 buttons = 0;
    BMessage* current = Window() != NULL ? Window()->CurrentMessage() : NULL;
    int32 fieldButtons = 0;
    if (current != NULL && current->FindInt32("buttons", &fieldButtons) == B_OK) {
        buttons = (uint32)fieldButtons;
    } else {
        BPoint point;
        GetMouse(&point, &buttons, false);
    }
    if (buttons == 0 || !Bounds().Contains(where))
        return;
    _ChangeValue(ValueForPoint(where, fImageRect));
}

void ClickControl::KeyDown(const char* bytes, int32 numBytes) {
    if (bytes == NULL || numBytes < 1)
        return;
    if (bytes[0] == B_TAB) {
        BControl::KeyDown(bytes, numBytes);
        return;
    }
    _ChangeValue(ValueForKey(bytes, numBytes));
}

void ClickControl::Draw(BRect updateRect) {
    rgb_color high = HighColor();
    rgb_color low = LowColor();

    const char* label = Label();
    float labelLeft = fImageRect.right + 6.0f;
    if (label != NULL)
        DrawString(label, BPoint(labelLeft, fImageRect.bottom - 3.0f));

    float labelRight = labelLeft + (label != NULL ? StringWidth(label) : 0.0f);
    BPoint start(labelLeft - 1.0f, fImageRect.bottom);
    BPoint end(labelRight + 1.0f, fImageRect.bottom);
    if (IsFocus()) {
        SetHighColor(255, 255, 255);
        StrokeLine(start + BPoint(0.0f, 1.0f), end + BPoint(0.0f, 1.0f));
        SetHighColor(keyboard_navigation_color());
        StrokeLine(start, end);
        SetHighColor(high);
    } else if (IsFocusChanging()) {
        StrokeLine(start + BPoint(0.0f, 1.0f), end + BPoint(0.0f, 1.0f), B_SOLID_LOW);
        StrokeLine(start, end, B_SOLID_LOW);
    }

    if (updateRect.Intersects(fImageRect))
        DrawImage(fImageRect);

    if (!IsEnabled()) {
        drawing_mode mode = DrawingMode();
        SetDrawingMode(B_OP_BLEND);
        SetHighColor(ViewColor());
        FillRect(updateRect);
        FillRect(updateRect);
        SetDrawingMode(mode);
    }

    SetHighColor(high);
    SetLowColor(low);
}

void ClickControl::_ChangeValue(long value) {
    if (value == Value())
        return;
    SetValue((int32)value);
    Invoke();
}
