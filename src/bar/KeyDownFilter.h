// Keyboard navigation of the bar, the key-down half: Tab ends the navigation in
// the menu bar that has it (the key-up half then starts it in the next bar),
// Escape deactivates the bar when no menu is open, Command-Escape opens the
// application menu, and a bare arrow key starts navigating the layer bar.
//
// Navigation itself is the kit's own: a Command-Escape key press sent to the
// window's key menu bar starts it there, a plain Escape to the tracking bar ends
// it. The filters only rewrite key messages into those two forms and choose the
// key menu bar.
#ifndef GLIMROW_KEY_DOWN_FILTER_H
#define GLIMROW_KEY_DOWN_FILTER_H

#include <MessageFilter.h>

class BWindow;

class KeyDownFilter : public BMessageFilter {
public:
    // A filter for B_KEY_DOWN, of any delivery and source, for the bar window
    // (which finds its strips by the names "layer_bar" and "app_menu").
    KeyDownFilter(BWindow* window);
    virtual ~KeyDownFilter();

    virtual filter_result Filter(BMessage* message, BHandler** target);

private:
    BWindow* fWindow;
};

// Rewrites a key message in place into the form that starts (modifiers
// B_COMMAND_KEY) or ends (modifiers 0) the kit's menu navigation: "byte" 27 and
// "bytes" ESC.
void rewrite_to_escape(BMessage* message, uint32 modifiers);

#endif // GLIMROW_KEY_DOWN_FILTER_H
