// The alert icons in the Be manner: a flat shape in a strong colour with a dark
// outline and a soft shadow, and a white or black mark on it. Info is a blue
// disc with an "i", idea a yellow bulb, warning a yellow triangle with an "!",
// stop a red octagon with a white bar.
#include "interface/AlertIcons.h"

#include <View.h>

namespace BPrivate {

namespace {

const rgb_color kOutline = {0, 0, 0, 255};
const rgb_color kWhite = {255, 255, 255, 255};

void fill_polygon(BView* view, const BPoint* points, int32 count, BPoint offset, rgb_color fill) {
    BPoint moved[8];
    for (int32 index = 0; index < count && index < 8; index++)
        moved[index] = points[index] + offset;
    view->SetHighColor(fill);
    view->FillPolygon(moved, count);
    view->SetHighColor(kOutline);
    view->StrokePolygon(moved, count);
}

void shadow_polygon(BView* view, const BPoint* points, int32 count, BPoint offset,
                    rgb_color shadow) {
    BPoint moved[8];
    for (int32 index = 0; index < count && index < 8; index++)
        moved[index] = points[index] + offset + BPoint(1, 1);
    view->SetHighColor(shadow);
    view->FillPolygon(moved, count);
}

void draw_info(BView* view, BPoint at, rgb_color shadow) {
    BRect disc(at.x + 1, at.y + 1, at.x + 29, at.y + 29);
    view->SetHighColor(shadow);
    view->FillEllipse(disc.OffsetByCopy(1, 1));
    view->SetHighColor(alert_icon_color(B_INFO_ALERT));
    view->FillEllipse(disc);
    view->SetHighColor(kOutline);
    view->StrokeEllipse(disc);
    view->SetHighColor(kWhite);
    view->FillEllipse(BRect(at.x + 13, at.y + 6, at.x + 17, at.y + 10));
    view->FillRect(BRect(at.x + 13, at.y + 12, at.x + 17, at.y + 23));
    view->FillRect(BRect(at.x + 11, at.y + 12, at.x + 12, at.y + 13));
    view->FillRect(BRect(at.x + 11, at.y + 22, at.x + 19, at.y + 23));
}

void draw_idea(BView* view, BPoint at, rgb_color shadow) {
    BRect bulb(at.x + 6, at.y + 1, at.x + 25, at.y + 20);
    view->SetHighColor(shadow);
    view->FillEllipse(bulb.OffsetByCopy(1, 1));
    view->FillRect(BRect(at.x + 12, at.y + 20, at.x + 21, at.y + 30));
    view->SetHighColor(alert_icon_color(B_IDEA_ALERT));
    view->FillEllipse(bulb);
    view->SetHighColor(kOutline);
    view->StrokeEllipse(bulb);
    // The screw base.
    BRect base(at.x + 11, at.y + 20, at.x + 20, at.y + 28);
    view->SetHighColor(make_color(152, 152, 152));
    view->FillRect(base);
    view->SetHighColor(kOutline);
    view->StrokeRect(base);
    view->StrokeLine(BPoint(base.left, base.top + 3), BPoint(base.right, base.top + 3));
    view->StrokeLine(BPoint(base.left, base.top + 6), BPoint(base.right, base.top + 6));
    // The glint.
    view->SetHighColor(kWhite);
    view->FillEllipse(BRect(at.x + 10, at.y + 5, at.x + 14, at.y + 9));
}

void draw_warning(BView* view, BPoint at, rgb_color shadow) {
    const BPoint triangle[3] = {BPoint(15, 1), BPoint(30, 29), BPoint(1, 29)};
    shadow_polygon(view, triangle, 3, at, shadow);
    fill_polygon(view, triangle, 3, at, alert_icon_color(B_WARNING_ALERT));
    view->SetHighColor(kOutline);
    view->FillRect(BRect(at.x + 14, at.y + 10, at.x + 16, at.y + 20));
    view->FillRect(BRect(at.x + 14, at.y + 23, at.x + 16, at.y + 25));
}

void draw_stop(BView* view, BPoint at, rgb_color shadow) {
    const BPoint octagon[8] = {BPoint(9, 1),   BPoint(21, 1), BPoint(29, 9), BPoint(29, 21),
                               BPoint(21, 29), BPoint(9, 29), BPoint(1, 21), BPoint(1, 9)};
    shadow_polygon(view, octagon, 8, at, shadow);
    fill_polygon(view, octagon, 8, at, alert_icon_color(B_STOP_ALERT));
    view->SetHighColor(kWhite);
    view->FillRect(BRect(at.x + 7, at.y + 13, at.x + 23, at.y + 17));
}

} // namespace

rgb_color alert_icon_color(alert_type type) {
    switch (type) {
    case B_INFO_ALERT:
        return make_color(51, 102, 187);
    case B_IDEA_ALERT:
        return make_color(255, 230, 40);
    case B_WARNING_ALERT:
        return make_color(255, 203, 0);
    case B_STOP_ALERT:
        return make_color(214, 32, 32);
    default:
        return make_color(0, 0, 0, 0);
    }
}

void draw_alert_icon(BView* view, alert_type type, BPoint where) {
    if (view == NULL)
        return;
    view->PushState();
    view->SetDrawingMode(B_OP_OVER);
    rgb_color shadow = tint_color(view->ViewColor(), B_DARKEN_2_TINT);
    switch (type) {
    case B_INFO_ALERT:
        draw_info(view, where, shadow);
        break;
    case B_IDEA_ALERT:
        draw_idea(view, where, shadow);
        break;
    case B_WARNING_ALERT:
        draw_warning(view, where, shadow);
        break;
    case B_STOP_ALERT:
        draw_stop(view, where, shadow);
        break;
    default:
        break;
    }
    view->PopState();
}

} // namespace BPrivate
