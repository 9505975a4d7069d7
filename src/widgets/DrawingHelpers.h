// Small drawing helpers shared by the bar and the preferences pages: a one-pixel
// bevel, a placement helper for views sized to their content, and the colour
// table with the program's four private colours.
#ifndef GLIMROW_DRAWING_HELPERS_H
#define GLIMROW_DRAWING_HELPERS_H

#include <GraphicsDefs.h>
#include <InterfaceDefs.h>
#include <Rect.h>

class BView;

// Codes of the private colours of ui_color2(), below the system's colour codes.
enum {
    kPanelBackgroundColor2 = -10, // 216, 216, 216
    kLightBackgroundColor2 = -9,  // 232, 232, 232
    kNavigationColor2 = -8,       // 0, 0, 154
    kWarningColor2 = -7,          // 203, 51, 51
};

// Draws a one-pixel bevel on the edges of rect, in the solid high pattern: light
// (base tinted by B_LIGHTEN_2_TINT) on the top and left and dark (base tinted by
// B_DARKEN_1_TINT) on the bottom and right when raised, the other way round when
// sunken. The view's high colour is restored afterwards.
void stroke_3d_rect(BView* view, BRect rect, rgb_color base, bool raised);

// Resizes the view to its preferred size (w, h) and returns the rectangle of
// that size anchored at where by the two alignments. The view itself is moved
// to the rectangle's bottom-left corner, not its top-left: callers rely on that
// placement.
BRect layout(BPoint where, BView* view, alignment horizontal, vertical_alignment vertical);

// One of the four private colours above, otherwise ui_color(which).
rgb_color ui_color2(long which);

#endif // GLIMROW_DRAWING_HELPERS_H
