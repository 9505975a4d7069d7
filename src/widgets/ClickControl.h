// A control made of a small picture (the image) with a label to its right.
// Clicking or dragging in the picture, or typing a key while the control has the
// focus, picks a value from the point or the key; every change of value invokes
// the control's message. Subclasses draw the picture and map points and keys to
// values.
#ifndef GLIMROW_CLICK_CONTROL_H
#define GLIMROW_CLICK_CONTROL_H

#include <Control.h>

class ClickControl : public BControl {
public:
    // The control takes ownership of the message. The image rectangle is
    // (0, 2, imageWidth, imageHeight + 2) in the control's coordinates.
    ClickControl(BRect frame, const char* name, const char* label, float imageWidth,
                 float imageHeight, BMessage* message, uint32 resizingMode, uint32 flags);
    virtual ~ClickControl();

    // The value for a point inside the image rectangle (given as imageRect).
    virtual long ValueForPoint(BPoint point, BRect imageRect) const = 0;
    // The value for a key (its bytes and byte count), given the current value.
    virtual long ValueForKey(const char* bytes, long numBytes) const = 0;
    // Draws the picture into the image rectangle.
    virtual void DrawImage(BRect imageRect) = 0;
    // Sets the image rectangle to (0, 2, width, height + 2) and redraws.
    virtual void SetImageSize(float width, float height);

    void GetImageSize(float* width, float* height) const;
    BRect ImageRect() const;

    virtual void GetPreferredSize(float* width, float* height);
    virtual void AttachedToWindow();
    virtual void MouseDown(BPoint where);
    virtual void MouseMoved(BPoint where, uint32 code, const BMessage* dragMessage);
    virtual void KeyDown(const char* bytes, int32 numBytes);
    virtual void Draw(BRect updateRect);

private:
    // Sets the value and invokes, only when it differs from Value().
    void _ChangeValue(long value);

    BRect fImageRect;
};

#endif // GLIMROW_CLICK_CONTROL_H
