#include "interface/ControlDrawing.h"

#include <InterfaceDefs.h>
#include <View.h>
#include <Window.h>

#include <math.h>

namespace BPrivate {

rgb_color control_label_color(rgb_color background, bool enabled) {
    if (enabled)
        return ui_color(B_CONTROL_TEXT_COLOR);
    return tint_color(background, B_DISABLED_LABEL_TINT);
}

bool shows_focus(const BView* view) {
    BWindow* window = view->Window();
    return window != NULL && view->IsFocus() && window->IsActive();
}

void draw_focus_mark(BView* view, float left, float right, float y) {
    rgb_color high = view->HighColor();
    view->SetHighColor(keyboard_navigation_color());
    view->StrokeLine(BPoint(left, y), BPoint(right, y));
    view->SetHighColor(255, 255, 255);
    view->StrokeLine(BPoint(left, y + 1), BPoint(right, y + 1));
    view->SetHighColor(high);
}

float centered_baseline(const BView* view, BRect rect) {
    font_height height;
    view->GetFontHeight(&height);
    float ascent = ceilf(height.ascent);
    float descent = ceilf(height.descent);
    return floorf(rect.top + (rect.Height() + 1 - (ascent + descent)) / 2 + ascent);
}

} // namespace BPrivate
