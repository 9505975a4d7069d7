#include "interface/MenuScrollArrow.h"

#include "interface/MenuPrivate.h"
#include "interface/MenuWindow.h"

#include <Window.h>

#include <math.h>

namespace BPrivate {

MenuScrollArrow::MenuScrollArrow(BRect frame, int32 direction)
    : BView(frame, direction < 0 ? "scroll up" : "scroll down", B_FOLLOW_NONE, B_WILL_DRAW),
      fDirection(direction < 0 ? -1 : 1), fEnabled(false), fScrolling(false) {
    SetViewColor(B_TRANSPARENT_COLOR);
}

void MenuScrollArrow::SetEnabled(bool enabled) {
    if (enabled == fEnabled)
        return;
    fEnabled = enabled;
    if (Window() != NULL)
        Invalidate();
}

void MenuScrollArrow::SetScrolling(bool scrolling) {
    if (scrolling == fScrolling)
        return;
    fScrolling = scrolling;
    uint32 flags = Flags();
    SetFlags(scrolling ? flags | B_PULSE_NEEDED : flags & ~(uint32)B_PULSE_NEEDED);
}

void MenuScrollArrow::Draw(BRect updateRect) {
    BRect bounds = Bounds();
    rgb_color background = menu_background_color();
    SetHighColor(background);
    FillRect(bounds);

    // The same raised bevel as the menu's own frame.
    rgb_color light = tint_color(background, B_LIGHTEN_MAX_TINT);
    rgb_color dark = tint_color(background, B_DARKEN_2_TINT);
    BeginLineArray(4);
    AddLine(bounds.LeftBottom(), bounds.LeftTop(), light);
    AddLine(bounds.LeftTop(), bounds.RightTop(), light);
    AddLine(bounds.RightTop(), bounds.RightBottom(), dark);
    AddLine(bounds.RightBottom(), bounds.LeftBottom(), dark);
    EndLineArray();

    float centre = floorf((bounds.left + bounds.right) / 2.0f);
    float middle = floorf((bounds.top + bounds.bottom) / 2.0f);
    const float halfWidth = 4.0f;
    const float halfHeight = 2.0f;
    BPoint tip(centre, middle - fDirection * halfHeight);
    BPoint left(centre - halfWidth, middle + fDirection * halfHeight);
    BPoint right(centre + halfWidth, middle + fDirection * halfHeight);
    SetHighColor(menu_text_color(fEnabled));
    FillTriangle(tip, left, right);
}

void MenuScrollArrow::Pulse() {
    if (MenuWindow* window = dynamic_cast<MenuWindow*>(Window()))
        window->AutoScrollStep(fDirection);
}

} // namespace BPrivate
