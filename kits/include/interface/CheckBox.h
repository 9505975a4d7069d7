// BCheckBox: a box that is checked (value 1) or not, with its label to the right.
#ifndef _CHECK_BOX_H
#define _CHECK_BOX_H

#include <Control.h>

class BCheckBox : public BControl {
public:
    BCheckBox(BRect frame, const char* name, const char* label, BMessage* message,
              uint32 resizingMode = B_FOLLOW_LEFT | B_FOLLOW_TOP,
              uint32 flags = B_WILL_DRAW | B_NAVIGABLE);
    virtual ~BCheckBox();

    virtual void Draw(BRect updateRect);
    virtual void AttachedToWindow();
    // A click toggles the value and invokes when the button is released over
    // the control.
    virtual void MouseDown(BPoint where);
    virtual void MouseUp(BPoint where);
    virtual void MouseMoved(BPoint where, uint32 code, const BMessage* dragMessage);
    virtual void KeyDown(const char* bytes, int32 numBytes);

    virtual void SetValue(int32 value);
    virtual void GetPreferredSize(float* width, float* height);
    virtual void ResizeToPreferred();
    virtual status_t Invoke(BMessage* message = NULL);

private:
    BCheckBox(const BCheckBox&);
    BCheckBox& operator=(const BCheckBox&);

    BRect _BoxFrame() const;

    bool fOutlined;
};

#endif // _CHECK_BOX_H
