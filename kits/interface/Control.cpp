// BControl: label, value, enabled state, focus and invocation shared by every
// control. A disabled control drops B_NAVIGABLE, so Tab skips it, and gets the
// flag back when it is enabled again.
#include <Control.h>

#include <Message.h>
#include <Window.h>

#include <stdlib.h>
#include <string.h>

BControl::BControl(BRect frame, const char* name, const char* label, BMessage* message,
                   uint32 resizingMode, uint32 flags)
    : BView(frame, name, resizingMode, flags), BInvoker(message, NULL, NULL),
      fLabel(label != NULL ? strdup(label) : NULL), fValue(B_CONTROL_OFF), fEnabled(true),
      fFocusChanging(false), fTracking(false), fWantsNavigation((flags & B_NAVIGABLE) != 0) {}

BControl::~BControl() {
    free(fLabel);
}

void BControl::WindowActivated(bool active) {
    // The focus mark only shows in the active window.
    if (IsFocus())
        Invalidate();
}

void BControl::AttachedToWindow() {
    rgb_color color = ui_color(B_PANEL_BACKGROUND_COLOR);
    if (BView* parent = Parent())
        color = parent->ViewColor();
    SetViewColor(color);
    SetLowColor(color);
    if (!Messenger().IsValid())
        SetTarget(Window());
}

void BControl::DetachedFromWindow() {
    // Hook function
}

void BControl::AllAttached() {
    // Hook function
}

void BControl::AllDetached() {
    // Hook function
}

void BControl::MessageReceived(BMessage* message) {
    BView::MessageReceived(message);
}

void BControl::MakeFocus(bool focus) {
    if (focus == IsFocus())
        return;
    BView::MakeFocus(focus);
    if (Window() == NULL)
        return;
    fFocusChanging = true;
    Invalidate();
    fFocusChanging = false;
}

void BControl::KeyDown(const char* bytes, int32 numBytes) {
    if (bytes == NULL || numBytes < 1)
        return;
    if (bytes[0] != B_ENTER && bytes[0] != B_SPACE) {
        BView::KeyDown(bytes, numBytes);
        return;
    }
    if (!fEnabled)
        return;
    SetValue(Value() != B_CONTROL_OFF ? B_CONTROL_OFF : B_CONTROL_ON);
    Invoke();
}

void BControl::MouseDown(BPoint where) {
    BView::MouseDown(where);
}

void BControl::MouseUp(BPoint where) {
    BView::MouseUp(where);
}

void BControl::MouseMoved(BPoint where, uint32 code, const BMessage* dragMessage) {
    BView::MouseMoved(where, code, dragMessage);
}

void BControl::SetLabel(const char* string) {
    if (string == fLabel || (string != NULL && fLabel != NULL && strcmp(string, fLabel) == 0))
        return;
    free(fLabel);
    fLabel = string != NULL ? strdup(string) : NULL;
    InvalidateLayout();
    Invalidate();
}

const char* BControl::Label() const {
    return fLabel;
}

void BControl::SetValue(int32 value) {
    if (value == fValue)
        return;
    fValue = value;
    Invalidate();
}

int32 BControl::Value() const {
    return fValue;
}

void BControl::SetEnabled(bool enabled) {
    if (enabled == fEnabled)
        return;
    fEnabled = enabled;
    if (fEnabled && fWantsNavigation) {
        SetFlags(Flags() | B_NAVIGABLE);
    } else if (!fEnabled && (Flags() & B_NAVIGABLE) != 0) {
        fWantsNavigation = true;
        SetFlags(Flags() & ~B_NAVIGABLE);
    }
    if (!fEnabled && IsFocus())
        MakeFocus(false);
    Invalidate();
}

bool BControl::IsEnabled() const {
    return fEnabled;
}

void BControl::GetPreferredSize(float* width, float* height) {
    BView::GetPreferredSize(width, height);
}

void BControl::ResizeToPreferred() {
    BView::ResizeToPreferred();
}

status_t BControl::Invoke(BMessage* message) {
    if (message == NULL)
        message = Message();
    if (message == NULL)
        return B_BAD_VALUE;
    BMessage copy(*message);
    copy.AddInt64("when", system_time());
    copy.AddPointer("source", this);
    copy.AddInt32("be:value", fValue);
    return BInvoker::Invoke(&copy);
}

bool BControl::IsFocusChanging() const {
    return fFocusChanging;
}

bool BControl::IsTracking() const {
    return fTracking;
}

void BControl::SetTracking(bool state) {
    fTracking = state;
}

void BControl::SetValueNoUpdate(int32 value) {
    fValue = value;
}
