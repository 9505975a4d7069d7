// Keyboard navigation of the bar, the key-up half: Tab (Shift-Tab backwards)
// starts the navigation in the next menu bar of the window, the shelf bar and
// parked strips skipped; Space and Return end it once an item was chosen.
#ifndef GLIMROW_KEY_UP_FILTER_H
#define GLIMROW_KEY_UP_FILTER_H

#include <MessageFilter.h>

class BMenuBar;
class BWindow;

class KeyUpFilter : public BMessageFilter {
public:
    // A filter for B_KEY_UP, of any delivery and source, for the bar window.
    KeyUpFilter(BWindow* window);
    virtual ~KeyUpFilter();

    virtual filter_result Filter(BMessage* message, BHandler** target);

    // The menu bar after (or before) the window's key menu bar among the
    // window's handlers, wrapping around; never a ShelfBar nor a strip parked at
    // (-2000, -2000). NULL when no other bar qualifies.
    BMenuBar* NextMenuBar(bool forward) const;

private:
    BWindow* fWindow;
};

#endif // GLIMROW_KEY_UP_FILTER_H
