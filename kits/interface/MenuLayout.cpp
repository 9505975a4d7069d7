// BMenu layout: measuring the items and giving each its frame.
//
// A column stacks the items from the top, all as wide as the widest; a row puts
// them side by side, all as tall as the tallest; a matrix keeps the frames it
// was given. Each item is its content (GetContentSize(), cut to the maximum
// content width) plus the item margins, and the next one starts one pixel after
// its edge. Items appended at the end are placed alone, so a menu filled one
// item at a time costs the same for every item however long it grows.
#include <Menu.h>

#include "interface/MenuData.h"
#include "interface/MenuPrivate.h"

#include <MenuItem.h>
#include <Window.h>

#include <ctype.h>
#include <math.h>
#include <string.h>

using namespace BPrivate;

namespace BPrivate {

const BRect kColumnItemMargins(14.0f, 2.0f, 20.0f, 2.0f);
const BRect kRowItemMargins(8.0f, 2.0f, 8.0f, 2.0f);
const BRect kBarItemMargins(8.0f, 3.0f, 8.0f, 3.0f);

} // namespace BPrivate

void BMenu::_Layout() {
    Private* data = fPrivate;
    int32 count = (int32)data->items.size();
    if (!data->layoutValid) {
        data->layoutValid = true;
        data->laidOut = 0;
        data->columnWidth = 0.0f;
        data->rowHeight = 0.0f;
        data->shortcutWidth = 0.0f;
        data->extentRight = -1.0f;
        data->extentBottom = -1.0f;
        data->hasSubmenus = false;
        memset(data->triggerUsed, 0, sizeof(data->triggerUsed));
        data->publishAll.store(true);
    }
    int32 from = data->laidOut;
    if (from >= count)
        return;
    switch (data->layout) {
    case B_ITEMS_IN_ROW:
        _ComputeRow(from);
        break;
    case B_ITEMS_IN_MATRIX:
        _ComputeMatrix(from);
        break;
    case B_ITEMS_IN_COLUMN:
    default:
        _ComputeColumn(from);
        break;
    }
    _UpdateTriggers(from);
    data->laidOut = count;
}

void BMenu::_ComputeItemSize(BMenuItem* item, float* width, float* height) {
    float contentWidth = 0.0f;
    float contentHeight = 0.0f;
    item->GetContentSize(&contentWidth, &contentHeight);
    float maxWidth = fPrivate->maxContentWidth;
    if (maxWidth > 0.0f && contentWidth > maxWidth)
        contentWidth = maxWidth;
    *width = fmaxf(0.0f, contentWidth);
    *height = fmaxf(0.0f, contentHeight);
}

void BMenu::_ComputeColumn(int32 from) {
    Private* data = fPrivate;
    BFont font;
    GetFont(&font);
    float top = from > 0 ? data->items[from - 1]->fBounds.bottom + 1.0f : 0.0f;
    float contentWidth = data->columnWidth - data->marginLeft - data->marginRight;
    if (data->shortcutWidth > 0.0f)
        contentWidth -= data->shortcutWidth + kShortcutGap;
    contentWidth = from > 0 ? fmaxf(0.0f, contentWidth) : 0.0f;
    float shortcutWidth = data->shortcutWidth;

    int32 count = (int32)data->items.size();
    for (int32 index = from; index < count; index++) {
        BMenuItem* item = data->items[index];
        float width;
        float height;
        _ComputeItemSize(item, &width, &height);
        contentWidth = fmaxf(contentWidth, width);
        shortcutWidth = fmaxf(shortcutWidth, shortcut_width(item, font));
        if (item->Submenu() != NULL)
            data->hasSubmenus = true;
        item->fBounds.Set(0.0f, top, 0.0f, top + height + data->marginTop + data->marginBottom);
        top = item->fBounds.bottom + 1.0f;
    }

    float columnWidth = data->marginLeft + contentWidth + data->marginRight;
    if (shortcutWidth > 0.0f)
        columnWidth += kShortcutGap + shortcutWidth;
    columnWidth = ceilf(columnWidth);
    // Every item is as wide as the widest; only a wider column touches them all.
    int32 first = columnWidth != data->columnWidth ? 0 : from;
    for (int32 index = first; index < count; index++)
        data->items[index]->fBounds.right = columnWidth;
    data->columnWidth = columnWidth;
    data->shortcutWidth = shortcutWidth;
    data->extentRight = columnWidth;
    data->extentBottom = top - 1.0f;
}

void BMenu::_ComputeRow(int32 from) {
    Private* data = fPrivate;
    float left = from > 0 ? data->items[from - 1]->fBounds.right + 1.0f : 0.0f;
    float rowHeight = from > 0 ? data->rowHeight : 0.0f;

    int32 count = (int32)data->items.size();
    for (int32 index = from; index < count; index++) {
        BMenuItem* item = data->items[index];
        float width;
        float height;
        _ComputeItemSize(item, &width, &height);
        rowHeight = fmaxf(rowHeight, height + data->marginTop + data->marginBottom);
        if (item->Submenu() != NULL)
            data->hasSubmenus = true;
        float right = ceilf(left + width + data->marginLeft + data->marginRight);
        item->fBounds.Set(left, 0.0f, right, 0.0f);
        left = right + 1.0f;
    }

    rowHeight = ceilf(rowHeight);
    int32 first = rowHeight != data->rowHeight ? 0 : from;
    for (int32 index = first; index < count; index++)
        data->items[index]->fBounds.bottom = rowHeight;
    data->rowHeight = rowHeight;
    data->extentRight = left - 1.0f;
    data->extentBottom = rowHeight;
}

void BMenu::_ComputeMatrix(int32 from) {
    Private* data = fPrivate;
    int32 count = (int32)data->items.size();
    for (int32 index = from; index < count; index++) {
        BMenuItem* item = data->items[index];
        if (item->Submenu() != NULL)
            data->hasSubmenus = true;
        data->extentRight = fmaxf(data->extentRight, item->fBounds.right);
        data->extentBottom = fmaxf(data->extentBottom, item->fBounds.bottom);
    }
}

void BMenu::_UpdateTriggers(int32 from) {
    Private* data = fPrivate;
    int32 count = (int32)data->items.size();
    for (int32 index = from; index < count; index++) {
        BMenuItem* item = data->items[index];
        item->fTriggerIndex = -1;
        const char* label = item->Label();
        if (label == NULL || MenuPrivate::IsSeparator(item))
            continue;
        if (item->fUserTrigger != 0) {
            // A trigger chosen by hand wins even when another item has it.
            int wanted = tolower((unsigned char)item->fUserTrigger);
            for (int32 offset = 0; label[offset] != '\0'; offset++) {
                if (tolower((unsigned char)label[offset]) == wanted) {
                    item->fTriggerIndex = offset;
                    break;
                }
            }
            if (wanted < 128)
                data->triggerUsed[wanted] = true;
            continue;
        }
        for (int32 offset = 0; label[offset] != '\0'; offset++) {
            unsigned char character = (unsigned char)label[offset];
            if (character >= 128 || !isalnum(character))
                continue;
            int key = tolower(character);
            if (data->triggerUsed[key])
                continue;
            data->triggerUsed[key] = true;
            item->fTriggerIndex = offset;
            break;
        }
    }
}

BRect BMenu::_ItemFrame(int32 index) {
    _Layout();
    BMenuItem* item = ItemAt(index);
    return item != NULL ? item->fBounds : BRect();
}

int32 BMenu::_ItemIndexAt(BPoint where) {
    _Layout();
    const std::vector<BMenuItem*>& items = fPrivate->items;
    int32 count = (int32)items.size();
    if (count == 0)
        return -1;
    menu_layout layout = fPrivate->layout;
    if (layout == B_ITEMS_IN_MATRIX) {
        for (int32 index = count - 1; index >= 0; index--) {
            if (items[index]->fBounds.Contains(where))
                return index;
        }
        return -1;
    }
    // Columns and rows are sorted along their axis: a binary search finds the
    // item in a menu of any length.
    bool column = layout == B_ITEMS_IN_COLUMN;
    float position = column ? where.y : where.x;
    int32 low = 0;
    int32 high = count - 1;
    while (low < high) {
        int32 middle = (low + high + 1) / 2;
        float start = column ? items[middle]->fBounds.top : items[middle]->fBounds.left;
        if (start <= position)
            low = middle;
        else
            high = middle - 1;
    }
    return items[low]->fBounds.Contains(where) ? low : -1;
}

void BMenu::GetPreferredSize(float* width, float* height) {
    _Layout();
    Private* data = fPrivate;
    float preferredWidth = data->extentRight;
    float preferredHeight = data->extentBottom;
    if (data->items.empty()) {
        // An empty menu still shows its frame.
        preferredWidth = data->marginLeft + data->marginRight;
        preferredHeight = data->marginTop + data->marginBottom;
        if (data->layout == B_ITEMS_IN_MATRIX) {
            preferredWidth = Bounds().Width();
            preferredHeight = Bounds().Height();
        }
    }
    if (width != NULL)
        *width = fmaxf(0.0f, preferredWidth);
    if (height != NULL)
        *height = fmaxf(0.0f, preferredHeight);
}

void BMenu::GetSize(float* width, float* height) {
    GetPreferredSize(width, height);
}

void BMenu::ResizeToPreferred() {
    float width;
    float height;
    GetPreferredSize(&width, &height);
    ResizeTo(width, height);
}

void BMenu::InvalidateLayout(bool descendants) {
    fPrivate->layoutValid = false;
    _Refresh(true);
}

void BMenu::_ResizeToFit() {
    float width;
    float height;
    GetPreferredSize(&width, &height);
    BRect bounds = Bounds();
    uint32 mode = ResizingMode();
    // A bar that follows both sides of its parent keeps the width it is given.
    bool followsWidth = ((mode >> 8) & 0xf) == _VIEW_LEFT_ && (mode & 0xf) == _VIEW_RIGHT_;
    bool followsHeight = ((mode >> 12) & 0xf) == _VIEW_TOP_ && ((mode >> 4) & 0xf) == _VIEW_BOTTOM_;
    if (fPrivate->layout == B_ITEMS_IN_ROW && followsWidth)
        width = bounds.Width();
    if (fPrivate->layout == B_ITEMS_IN_COLUMN && followsHeight)
        height = bounds.Height();
    if (width != bounds.Width() || height != bounds.Height())
        ResizeTo(width, height);
}

// #pragma mark - MenuPrivate

namespace BPrivate {

float shortcut_width(const BMenuItem* item, const BFont& font) {
    uint32 modifiers = 0;
    char shortcut = item->Shortcut(&modifiers);
    if (shortcut == 0)
        return 0.0f;
    char key[2] = {(char)menu_key_of((uint8)shortcut), '\0'};
    float width = kShortcutSymbolWidth + font.StringWidth(key);
    if (modifiers & B_SHIFT_KEY)
        width += font.StringWidth(kShiftSymbol);
    if (modifiers & B_OPTION_KEY)
        width += font.StringWidth(kOptionSymbol);
    if (modifiers & B_CONTROL_KEY)
        width += font.StringWidth(kControlSymbol);
    return ceilf(width);
}

uint32 menu_key_of(uint32 key) {
    return key < 128 ? (uint32)toupper((int)key) : key;
}

void MenuPrivate::Layout() {
    fMenu->_Layout();
}

BRect MenuPrivate::ItemFrame(int32 index) {
    return fMenu->_ItemFrame(index);
}

int32 MenuPrivate::ItemIndexAt(BPoint where) {
    return fMenu->_ItemIndexAt(where);
}

} // namespace BPrivate
