// The field of the hot-key window that shows the last key combination pressed,
// as "Command + Option + 'x'", and copies its key states into the hot-key record.
#ifndef GLIMROW_KEY_VIEW_H
#define GLIMROW_KEY_VIEW_H

#include <View.h>

// The key view's text while nothing has been pressed.
extern const char* const kNoHotKeyText;

class KeyView : public BView {
public:
    KeyView(BRect frame, uint8** hotKey);
    virtual ~KeyView();

    // The text shown; owned by the view.
    const char* Text() const;

    virtual void KeyDown(const char* bytes, int32 numBytes);
    virtual void Draw(BRect updateRect);
    virtual void AttachedToWindow();

private:
    void _SetText(const char* text);

    uint8** fHotKey;
    char* fText;
};

#endif // GLIMROW_KEY_VIEW_H
