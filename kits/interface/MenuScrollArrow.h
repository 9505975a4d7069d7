// The strips above and below a menu taller than the screen. Each shows an arrow,
// dimmed once the menu cannot go further that way. The pointer's events are the
// tracker's: it tells the menu window when the pointer rests on an arrow, and
// the arrow then steps the scrolling on its window's pulse until told to stop.
#ifndef _INTERFACE_MENU_SCROLL_ARROW_H
#define _INTERFACE_MENU_SCROLL_ARROW_H

#include <View.h>

namespace BPrivate {

// How tall each strip is.
const float kMenuScrollArrowHeight = 12.0f;
// How often a resting pointer scrolls the menu another step.
const bigtime_t kMenuScrollInterval = 25000;

class MenuScrollArrow : public BView {
public:
    // direction: -1 for the strip at the top, 1 for the one at the bottom.
    MenuScrollArrow(BRect frame, int32 direction);

    int32 Direction() const { return fDirection; }
    // Whether the menu can still scroll this way; drawn dimmed otherwise.
    void SetEnabled(bool enabled);
    bool IsEnabled() const { return fEnabled; }
    // Pulses while scrolling, so a resting pointer keeps the menu moving.
    void SetScrolling(bool scrolling);
    bool IsScrolling() const { return fScrolling; }

    virtual void Draw(BRect updateRect);
    virtual void Pulse();

private:
    int32 fDirection;
    bool fEnabled;
    bool fScrolling;
};

} // namespace BPrivate

#endif // _INTERFACE_MENU_SCROLL_ARROW_H
