// Colours and marks that the controls share (kit-private), so buttons, check
// boxes and the alert draw in one look.
#ifndef _INTERFACE_CONTROL_DRAWING_H
#define _INTERFACE_CONTROL_DRAWING_H

#include <GraphicsDefs.h>
#include <Rect.h>

class BView;

namespace BPrivate {

// Black for an enabled label, the background darkened by
// B_DISABLED_LABEL_TINT for a disabled one.
rgb_color control_label_color(rgb_color background, bool enabled);

// Whether the view shows that it has the keyboard focus: it has it and its
// window is the active one.
bool shows_focus(const BView* view);

// The focus mark under a label: a line in keyboard_navigation_color() at y with
// a white line below it.
void draw_focus_mark(BView* view, float left, float right, float y);

// The baseline that centres the view's font vertically in the rectangle.
float centered_baseline(const BView* view, BRect rect);

} // namespace BPrivate

#endif // _INTERFACE_CONTROL_DRAWING_H
