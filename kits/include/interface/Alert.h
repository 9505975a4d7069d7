// BAlert: a small modal window with an icon, a text and up to three buttons.
// Buttons are numbered left to right; the last one is the default (Enter).
#ifndef _ALERT_H
#define _ALERT_H

#include <Window.h>

class BButton;
class BInvoker;
class BTextView;

enum alert_type { B_EMPTY_ALERT = 0, B_INFO_ALERT, B_IDEA_ALERT, B_WARNING_ALERT, B_STOP_ALERT };

enum button_spacing { B_EVEN_SPACING = 0, B_OFFSET_SPACING };

// B_WIDTH_AS_USUAL: at least the standard width, wider for a long label;
// B_WIDTH_FROM_WIDEST: every button as wide as the widest one needs;
// B_WIDTH_FROM_LABEL: each button just fits its label;
// B_WIDTH_FIXED: every button the same width, the standard one unless a label
// needs more.
enum button_width { B_WIDTH_AS_USUAL = 0, B_WIDTH_FROM_WIDEST, B_WIDTH_FROM_LABEL, B_WIDTH_FIXED };

class BAlert : public BWindow {
public:
    // The texts are copied; NULL labels leave out the button (and those after it).
    BAlert(const char* title, const char* text, const char* button0, const char* button1 = NULL,
           const char* button2 = NULL, button_width width = B_WIDTH_AS_USUAL,
           alert_type type = B_INFO_ALERT);
    BAlert(const char* title, const char* text, const char* button0, const char* button1,
           const char* button2, button_width width, button_spacing spacing,
           alert_type type = B_INFO_ALERT);
    virtual ~BAlert();

    void SetShortcut(int32 index, char key);
    char Shortcut(int32 index) const;

    // Shows the alert and waits for a button; the alert quits itself and the
    // object is gone when Go() returns the button's index, or -1 when it could
    // not run (no buttons) or was closed otherwise (the application quitting).
    // Called from a window's thread, that window keeps drawing while it waits.
    // Call it from the thread that made the alert.
    int32 Go();
    // Returns at once; when a button is pressed a copy of the invoker's message
    // with an int32 "which" (the button index) is sent. The alert takes
    // ownership of the invoker (NULL: nothing is sent).
    status_t Go(BInvoker* invoker);

    virtual void MessageReceived(BMessage* message);
    virtual void FrameResized(float newWidth, float newHeight);
    virtual bool QuitRequested();

    BButton* ButtonAt(int32 index) const;
    BTextView* TextView() const;

    // Where an alert of this frame is placed: centred on the screen.
    static BPoint AlertPosition(float width, float height);

private:
    BAlert(const BAlert&);
    BAlert& operator=(const BAlert&);

    void _Init(const char* text, const char* button0, const char* button1, const char* button2,
               button_width width, button_spacing spacing, alert_type type);
    void _LayoutButtons();
    void _Finish(int32 index);

    struct Private;
    Private* fPrivate;
};

#endif // _ALERT_H
