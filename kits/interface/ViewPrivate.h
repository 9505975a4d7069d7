// Kit-private access to views, for the classes built on them (scroll bars).
#ifndef _INTERFACE_VIEW_PRIVATE_H
#define _INTERFACE_VIEW_PRIVATE_H

#include <View.h>

namespace BPrivate {

// Called when a view that a scroll bar targets scrolls, with the bar and the
// new value along its orientation; the scroll bar kit installs it.
typedef void (*scroll_bar_updater)(BScrollBar* bar, float value);

class ViewPrivate {
public:
    explicit ViewPrivate(BView* view) : fView(view) {}

    // The bar that scrolls the view along this orientation (NULL: none). The
    // view does not own it.
    void SetScrollBar(orientation posture, BScrollBar* bar);

    static void SetScrollBarUpdater(scroll_bar_updater updater);

private:
    BView* fView;
};

} // namespace BPrivate

#endif // _INTERFACE_VIEW_PRIVATE_H
