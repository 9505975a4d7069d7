#include "DrawingHelpers.h"

#include <View.h>

void stroke_3d_rect(BView* view, BRect rect, rgb_color base, bool raised) {
    if (view == NULL)
        return;
    rgb_color light = tint_color(base, B_LIGHTEN_2_TINT);
    rgb_color dark = tint_color(base, B_DARKEN_1_TINT);
    if (!raised) {
        rgb_color swap = light;
        light = dark;
        dark = swap;
    }
    rgb_color high = view->HighColor();
    // One pen path: the dark edges are drawn last, so they own the top-right
    // and bottom-left corners.
    view->SetHighColor(light);
    view->StrokeLine(rect.RightTop(), rect.LeftTop(), B_SOLID_HIGH);
    view->StrokeLine(rect.LeftBottom(), B_SOLID_HIGH);
    view->SetHighColor(dark);
    view->StrokeLine(rect.RightBottom(), B_SOLID_HIGH);
    view->StrokeLine(rect.RightTop(), B_SOLID_HIGH);
    view->SetHighColor(high);
}

BRect layout(BPoint where, BView* view, alignment horizontal, vertical_alignment vertical) {
    if (view == NULL)
        return BRect();
    float width = 0.0f;
    float height = 0.0f;
    view->GetPreferredSize(&width, &height);
    view->ResizeTo(width, height);

    float x = where.x;
    if (horizontal == B_ALIGN_RIGHT)
        x = where.x - width;
    else if (horizontal == B_ALIGN_CENTER)
        x = where.x - width * 0.5f;

    float y = where.y;
    if (vertical == B_ALIGN_MIDDLE)
        y = where.y - height * 0.5f;
    else if (vertical == B_ALIGN_BOTTOM)
        y = where.y - height;

    // The view goes to the bottom-left corner of the rectangle: the pages that
    // use this helper count on that placement.
    view->MoveTo(x, y + height);
    return BRect(x, y, x + width, y + height);
}

rgb_color ui_color2(long which) {
    rgb_color color = {0, 0, 0, 255};
    switch (which) {
    case kPanelBackgroundColor2:
        color.red = color.green = color.blue = 216;
        return color;
    case kLightBackgroundColor2:
        color.red = color.green = color.blue = 232;
        return color;
    case kNavigationColor2:
        color.blue = 154;
        return color;
    case kWarningColor2:
        color.red = 203;
        color.green = 51;
        color.blue = 51;
        return color;
    default:
        return ui_color((color_which)which);
    }
}
