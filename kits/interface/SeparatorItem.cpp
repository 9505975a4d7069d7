// BSeparatorItem: a disabled item drawn as an engraved line across the menu.
#include <SeparatorItem.h>

#include "interface/MenuData.h"
#include "interface/MenuPrivate.h"

#include <Menu.h>
#include <Message.h>

#include <math.h>

using namespace BPrivate;

BSeparatorItem::BSeparatorItem() : BMenuItem("", NULL) {
    BMenuItem::SetEnabled(false);
}

BSeparatorItem::BSeparatorItem(BMessage* archive) : BMenuItem(archive) {
    BMenuItem::SetEnabled(false);
}

BSeparatorItem::~BSeparatorItem() {}

BArchivable* BSeparatorItem::Instantiate(BMessage* archive) {
    if (!validate_instantiation(archive, "BSeparatorItem"))
        return NULL;
    return new BSeparatorItem(archive);
}

status_t BSeparatorItem::Archive(BMessage* archive, bool deep) const {
    return BMenuItem::Archive(archive, deep);
}

void BSeparatorItem::SetEnabled(bool enabled) {
    // A separator is never chosen.
}

void BSeparatorItem::GetContentSize(float* width, float* height) {
    bool row = Menu() != NULL && MenuPrivate(Menu()).Data()->layout == B_ITEMS_IN_ROW;
    if (width != NULL)
        *width = row ? kSeparatorHeight : 0.0f;
    if (height != NULL)
        *height = row ? 0.0f : kSeparatorHeight;
}

void BSeparatorItem::Draw() {
    BMenu* menu = Menu();
    if (menu == NULL)
        return;
    BRect frame = Frame();
    rgb_color low = menu->LowColor();
    menu->FillRect(frame, B_SOLID_LOW);
    rgb_color dark = tint_color(low, B_DARKEN_2_TINT);
    rgb_color light = tint_color(low, B_LIGHTEN_2_TINT);
    menu->BeginLineArray(2);
    if (MenuPrivate(menu).Data()->layout == B_ITEMS_IN_ROW) {
        float x = floorf(frame.left + frame.Width() / 2.0f);
        menu->AddLine(BPoint(x, frame.top + 1.0f), BPoint(x, frame.bottom - 1.0f), dark);
        menu->AddLine(BPoint(x + 1.0f, frame.top + 1.0f), BPoint(x + 1.0f, frame.bottom - 1.0f),
                      light);
    } else {
        float y = floorf(frame.top + frame.Height() / 2.0f);
        menu->AddLine(BPoint(frame.left + 1.0f, y), BPoint(frame.right - 1.0f, y), dark);
        menu->AddLine(BPoint(frame.left + 1.0f, y + 1.0f), BPoint(frame.right - 1.0f, y + 1.0f),
                      light);
    }
    menu->EndLineArray();
}
