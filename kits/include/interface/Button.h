// BButton: a push button. The window's default button has a ring around it and
// is pressed by Enter.
#ifndef _BUTTON_H
#define _BUTTON_H

#include <Control.h>

class BButton : public BControl {
public:
    // Too low a frame is made as high as the font needs.
    BButton(BRect frame, const char* name, const char* label, BMessage* message,
            uint32 resizingMode = B_FOLLOW_LEFT | B_FOLLOW_TOP,
            uint32 flags = B_WILL_DRAW | B_NAVIGABLE);
    virtual ~BButton();

    virtual void Draw(BRect updateRect);
    // The value is 1 while the button is held down with the pointer over it;
    // releasing it there invokes.
    virtual void MouseDown(BPoint where);
    virtual void MouseUp(BPoint where);
    virtual void MouseMoved(BPoint where, uint32 code, const BMessage* dragMessage);
    virtual void AttachedToWindow();
    virtual void DetachedFromWindow();
    // Space and Enter press the button.
    virtual void KeyDown(const char* bytes, int32 numBytes);
    virtual void MakeFocus(bool focus = true);

    // Makes this the window's default button (or stops it being one); the
    // window keeps one default button at a time.
    virtual void MakeDefault(bool flag);
    bool IsDefault() const;

    virtual void SetLabel(const char* string);
    virtual void SetValue(int32 value);
    // The label's width plus margins, and the font's height plus margins; the
    // default button's ring adds 3 on every side.
    virtual void GetPreferredSize(float* width, float* height);
    virtual void ResizeToPreferred();
    virtual status_t Invoke(BMessage* message = NULL);

private:
    BButton(const BButton&);
    BButton& operator=(const BButton&);

    void _Press();

    bool fDrawAsDefault;
};

#endif // _BUTTON_H
