// BMenu drawing: the items over the menu's grey, a raised frame around a menu
// (bars draw their own border), and the selection, which only marks the items
// whose look changes as dirty.
#include <Menu.h>

#include "interface/MenuData.h"
#include "interface/MenuPrivate.h"
#include "interface/MenuWindow.h"

#include <MenuItem.h>
#include <Window.h>

#include <math.h>

using namespace BPrivate;

namespace BPrivate {

rgb_color menu_background_color() {
    menu_info info;
    get_menu_info(&info);
    return info.background_color;
}

rgb_color menu_selected_background_color() {
    return ui_color(B_MENU_SELECTED_BACKGROUND_COLOR);
}

rgb_color menu_text_color(bool enabled) {
    if (enabled)
        return ui_color(B_MENU_ITEM_TEXT_COLOR);
    return tint_color(menu_background_color(), B_DISABLED_LABEL_TINT);
}

} // namespace BPrivate

void BMenu::Draw(BRect updateRect) {
    _Layout();
    _DrawItems(updateRect);
    _DrawFrame();
}

void BMenu::_DrawItems(BRect updateRect) {
    const std::vector<BMenuItem*>& items = fPrivate->items;
    int32 count = (int32)items.size();
    if (count == 0)
        return;
    // Only the items that meet the update: in a long column that is a handful,
    // found by a binary search for the first one reaching down to it.
    int32 first = 0;
    if (fPrivate->layout == B_ITEMS_IN_COLUMN) {
        int32 low = 0;
        int32 high = count;
        while (low < high) {
            int32 middle = (low + high) / 2;
            if (items[middle]->fBounds.bottom < updateRect.top)
                low = middle + 1;
            else
                high = middle;
        }
        first = low;
    }
    rgb_color high = HighColor();
    rgb_color low = LowColor();
    for (int32 index = first; index < count; index++) {
        BMenuItem* item = items[index];
        BRect frame = item->fBounds;
        if (fPrivate->layout == B_ITEMS_IN_COLUMN && frame.top > updateRect.bottom)
            break;
        if (!frame.Intersects(updateRect))
            continue;
        SetHighColor(high);
        SetLowColor(low);
        item->Draw();
    }
    SetHighColor(high);
    SetLowColor(low);
}

void BMenu::_DrawFrame() {
    // A raised bevel: light along the top and left, dark along the bottom and right.
    BRect bounds = Bounds();
    rgb_color background = LowColor();
    rgb_color light = tint_color(background, B_LIGHTEN_MAX_TINT);
    rgb_color dark = tint_color(background, B_DARKEN_2_TINT);
    BeginLineArray(4);
    AddLine(bounds.LeftBottom(), bounds.LeftTop(), light);
    AddLine(bounds.LeftTop(), bounds.RightTop(), light);
    AddLine(bounds.RightTop(), bounds.RightBottom(), dark);
    AddLine(bounds.RightBottom(), bounds.LeftBottom(), dark);
    EndLineArray();
}

void BMenu::_InvalidateItem(int32 index) {
    BWindow* window = Window();
    BMenuItem* item = ItemAt(index);
    if (window == NULL || item == NULL || !window->IsLocked())
        return;
    _Layout();
    Invalidate(item->fBounds);
}

void BMenu::_Select(int32 index, bool reveal) {
    Private* data = fPrivate;
    if (index < -1 || index >= CountItems())
        index = -1;
    if (index != data->selected) {
        BMenuItem* old = ItemAt(data->selected);
        data->selected = index;
        if (old != NULL) {
            old->fSelected = false;
            old->Highlight(false);
        }
        BMenuItem* item = ItemAt(index);
        if (item != NULL) {
            item->fSelected = true;
            item->Highlight(true);
        }
    }
    BMenuItem* item = ItemAt(index);
    if (!reveal || item == NULL || Window() == NULL)
        return;
    // Scrolls a menu taller than its window so the item shows.
    _Layout();
    BRect bounds = Bounds();
    BRect frame = item->fBounds;
    if (frame.top < bounds.top)
        ScrollTo(BPoint(bounds.left, frame.top));
    else if (frame.bottom > bounds.bottom)
        ScrollTo(BPoint(bounds.left, fmaxf(0.0f, frame.bottom - bounds.Height())));
}

void BMenu::_Refresh(bool relayout) {
    if (relayout) {
        fPrivate->layoutValid = false;
        fPrivate->publishAll.store(true);
    }
    BWindow* window = Window();
    if (window == NULL)
        return;
    MenuWindow* menuWindow = dynamic_cast<MenuWindow*>(window);
    if (!window->IsLocked()) {
        // Changed from another thread: the menu's own window catches up.
        if (menuWindow != NULL)
            menuWindow->ScheduleRefresh(relayout);
        return;
    }
    if (relayout && fPrivate->resizeToFit && menuWindow == NULL)
        _ResizeToFit();
    Invalidate();
    if (menuWindow != NULL)
        menuWindow->ScheduleRefresh(relayout);
}
