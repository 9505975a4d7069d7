// BMenuItem drawing in the Be look: the selected item on a darker grey, disabled
// items faded, a check mark left of marked items, the label (cut to fit, its
// trigger underlined while the keyboard drives the menu), the shortcut with the
// Command symbol and the submenu arrow at the right of a column.
#include <MenuItem.h>

#include "interface/MenuData.h"
#include "interface/MenuPrivate.h"

#include <Window.h>

#include <math.h>
#include <stdlib.h>
#include <string.h>

using namespace BPrivate;

namespace BPrivate {

const char* const kShiftSymbol = "\xe2\x87\xa7";   // upwards white arrow
const char* const kOptionSymbol = "\xe2\x8c\xa5";  // option key
const char* const kControlSymbol = "\xe2\x8c\x83"; // up arrowhead

} // namespace BPrivate

void BMenuItem::Draw() {
    BMenu* menu = fSuper;
    if (menu == NULL)
        return;
    BRect frame = Frame();
    rgb_color low = menu->LowColor();
    rgb_color high = menu->HighColor();
    bool enabled = IsEnabled();
    bool selected = IsSelected() && (enabled || fSubmenu != NULL);

    if (selected)
        menu->SetLowColor(menu_selected_background_color());
    menu->FillRect(frame, B_SOLID_LOW);
    if (selected && enabled)
        menu->SetHighColor(ui_color(B_MENU_SELECTED_ITEM_TEXT_COLOR));
    else if (enabled)
        menu->SetHighColor(high);
    else
        menu->SetHighColor(tint_color(low, B_DISABLED_LABEL_TINT));

    if (fMark)
        _DrawMark();
    menu->MovePenTo(ContentLocation());
    DrawContent();
    if (menu->Layout() == B_ITEMS_IN_COLUMN) {
        if (fShortcutChar != 0)
            _DrawShortcut();
        if (fSubmenu != NULL)
            _DrawSubmenuSymbol();
    }
    menu->SetLowColor(low);
    menu->SetHighColor(high);
}

void BMenuItem::DrawContent() {
    BMenu* menu = fSuper;
    if (menu == NULL || fLabel == NULL || fLabel[0] == '\0')
        return;
    BPoint pen = menu->PenLocation();
    font_height fontHeight;
    menu->GetFontHeight(&fontHeight);

    float right;
    menu->GetItemMargins(NULL, NULL, &right, NULL);
    float available = Frame().right - right - pen.x;
    if (menu->Layout() == B_ITEMS_IN_COLUMN) {
        float shortcutWidth = menu->fPrivate->shortcutWidth;
        if (shortcutWidth > 0.0f)
            available -= shortcutWidth + kShortcutGap;
    }

    const char* text = fLabel;
    char* truncated = NULL;
    if (available >= 0.0f && menu->StringWidth(fLabel) > available + 0.5f) {
        truncated = (char*)malloc(strlen(fLabel) + 3);
        if (truncated != NULL) {
            TruncateLabel(available, truncated);
            text = truncated;
        }
    }
    BPoint baseline(pen.x, pen.y + ceilf(fontHeight.ascent));
    menu->DrawString(text, baseline);
    if (menu->fPrivate->showTriggers && menu->AreTriggersEnabled())
        _DrawTrigger(baseline, text);
    free(truncated);
}

void BMenuItem::_DrawTrigger(BPoint baseline, const char* label) {
    BMenu* menu = fSuper;
    if (fTriggerIndex < 0 || label != fLabel || fTriggerIndex >= (int32)strlen(label))
        return;
    float left = baseline.x + menu->StringWidth(label, fTriggerIndex);
    float width = menu->StringWidth(label + fTriggerIndex, 1);
    if (width < 1.0f)
        return;
    float y = baseline.y + 1.0f;
    menu->StrokeLine(BPoint(floorf(left), y), BPoint(ceilf(left + width) - 1.0f, y));
}

void BMenuItem::_DrawMark() {
    BMenu* menu = fSuper;
    BRect frame = Frame();
    float left;
    menu->GetItemMargins(&left, NULL, NULL, NULL);
    // A check in the left margin, centred on the item.
    float size = fminf(7.0f, fmaxf(3.0f, left - 6.0f));
    float x = frame.left + fmaxf(2.0f, floorf((left - size) / 2.0f));
    float y = floorf(frame.top + (frame.Height() - size) / 2.0f);
    menu->SetPenSize(1.0f);
    BPoint start(x, y + size / 2.0f);
    BPoint bottom(x + size / 3.0f, y + size);
    BPoint end(x + size, y);
    menu->StrokeLine(start, bottom);
    menu->StrokeLine(bottom, end);
    menu->StrokeLine(start + BPoint(0, -1), bottom + BPoint(0, -1));
    menu->StrokeLine(bottom + BPoint(0, -1), end + BPoint(0, -1));
}

void BMenuItem::_DrawSubmenuSymbol() {
    BMenu* menu = fSuper;
    BRect frame = Frame();
    float middle = floorf(frame.top + frame.Height() / 2.0f);
    float right = frame.right - 7.0f;
    // A small solid triangle pointing right.
    menu->FillTriangle(BPoint(right - 3.0f, middle - 4.0f), BPoint(right + 1.0f, middle),
                       BPoint(right - 3.0f, middle + 4.0f));
}

void BMenuItem::_DrawShortcut() {
    BMenu* menu = fSuper;
    BRect frame = Frame();
    float right;
    menu->GetItemMargins(NULL, NULL, &right, NULL);
    font_height fontHeight;
    menu->GetFontHeight(&fontHeight);
    BPoint content = ContentLocation();
    float baseline = content.y + ceilf(fontHeight.ascent);

    char key[2] = {(char)menu_key_of((uint8)fShortcutChar), '\0'};
    float x = frame.right - right - menu->StringWidth(key);
    menu->DrawString(key, BPoint(x, baseline));

    // The Command symbol: a small key cap with a mark in it, in front of the key.
    x -= kShortcutSymbolWidth;
    float capTop = floorf(baseline - 8.0f);
    BRect cap(x + 1.0f, capTop, x + 8.0f, capTop + 7.0f);
    menu->StrokeRoundRect(cap, 1.5f, 1.5f);
    menu->StrokeLine(BPoint(cap.left + 2.0f, cap.top + 3.0f),
                     BPoint(cap.right - 2.0f, cap.top + 3.0f));
    menu->StrokeLine(BPoint(cap.left + 2.0f, cap.top + 4.0f),
                     BPoint(cap.right - 2.0f, cap.top + 4.0f));

    const char* symbols[] = {(fModifiers & B_CONTROL_KEY) ? kControlSymbol : NULL,
                             (fModifiers & B_OPTION_KEY) ? kOptionSymbol : NULL,
                             (fModifiers & B_SHIFT_KEY) ? kShiftSymbol : NULL};
    for (const char* symbol : symbols) {
        if (symbol == NULL)
            continue;
        x -= menu->StringWidth(symbol);
        menu->DrawString(symbol, BPoint(x, baseline));
    }
}
