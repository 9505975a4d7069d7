// BControl: a view with a label and a value that tells its target when the user
// changes it (the base of buttons, check boxes and the like).
#ifndef _CONTROL_H
#define _CONTROL_H

#include <Invoker.h>
#include <View.h>

enum { B_CONTROL_OFF = 0, B_CONTROL_ON = 1 };

class BControl : public BView, public BInvoker {
public:
    // The label is copied; the control takes ownership of the message.
    BControl(BRect frame, const char* name, const char* label, BMessage* message,
             uint32 resizingMode, uint32 flags);
    virtual ~BControl();

    virtual void WindowActivated(bool active);
    // Takes the parent's view colour and, when the target is not valid, makes
    // the window the target.
    virtual void AttachedToWindow();
    virtual void DetachedFromWindow();
    virtual void AllAttached();
    virtual void AllDetached();

    virtual void MessageReceived(BMessage* message);
    virtual void MakeFocus(bool focus = true);
    // Space and Enter toggle the value and invoke; Tab moves the focus on.
    virtual void KeyDown(const char* bytes, int32 numBytes);
    virtual void MouseDown(BPoint where);
    virtual void MouseUp(BPoint where);
    virtual void MouseMoved(BPoint where, uint32 code, const BMessage* dragMessage);

    virtual void SetLabel(const char* string);
    const char* Label() const;

    virtual void SetValue(int32 value);
    int32 Value() const;

    // A disabled control is drawn faded and leaves the keyboard navigation.
    virtual void SetEnabled(bool enabled);
    bool IsEnabled() const;

    virtual void GetPreferredSize(float* width, float* height);
    virtual void ResizeToPreferred();

    // Sends a copy of the message (the model message when NULL) with "when",
    // "source" (this control) and "be:value" added.
    virtual status_t Invoke(BMessage* message = NULL);

protected:
    // True while MakeFocus() redraws the control for a change of focus.
    bool IsFocusChanging() const;
    bool IsTracking() const;
    void SetTracking(bool state);
    // Changes the value without redrawing.
    void SetValueNoUpdate(int32 value);

private:
    BControl(const BControl&);
    BControl& operator=(const BControl&);

    char* fLabel;
    int32 fValue;
    bool fEnabled;
    bool fFocusChanging;
    bool fTracking;
    bool fWantsNavigation;
};

#endif // _CONTROL_H
