// BMenu: adding, removing and finding items, and keeping the menu's layout,
// drawing, shortcuts and snapshot in step with changes to them.
#include <Menu.h>

#include "interface/MenuData.h"
#include "interface/MenuPrivate.h"
#include "interface/MenuWindow.h"

#include <MenuItem.h>
#include <Message.h>
#include <Window.h>

#include <string.h>

using namespace BPrivate;

// #pragma mark - Items

bool BMenu::AddItem(BMenuItem* item) {
    return AddItem(item, CountItems());
}

bool BMenu::AddItem(BMenuItem* item, int32 index) {
    if (fPrivate->layout == B_ITEMS_IN_MATRIX) {
        debugger("BMenu::AddItem(): a matrix menu places its items by frame");
        return false;
    }
    return _AddItem(item, index);
}

bool BMenu::AddItem(BMenuItem* item, BRect frame) {
    if (fPrivate->layout != B_ITEMS_IN_MATRIX) {
        debugger("BMenu::AddItem(): only a matrix menu places its items by frame");
        return false;
    }
    if (item == NULL)
        return false;
    item->fBounds = frame;
    return _AddItem(item, CountItems());
}

bool BMenu::AddItem(BMenu* menu) {
    return AddItem(menu, CountItems());
}

bool BMenu::AddItem(BMenu* menu, int32 index) {
    if (menu == NULL || menu->fPrivate->superitem != NULL)
        return false;
    BMenuItem* item = new BMenuItem(menu);
    if (AddItem(item, index))
        return true;
    item->fSubmenu = NULL;
    menu->fPrivate->superitem = NULL;
    delete item;
    return false;
}

bool BMenu::AddItem(BMenu* menu, BRect frame) {
    if (menu == NULL || menu->fPrivate->superitem != NULL)
        return false;
    BMenuItem* item = new BMenuItem(menu);
    if (AddItem(item, frame))
        return true;
    item->fSubmenu = NULL;
    menu->fPrivate->superitem = NULL;
    delete item;
    return false;
}

bool BMenu::AddList(BList* list, int32 index) {
    if (list == NULL || index < 0 || index > CountItems())
        return false;
    for (int32 offset = 0; offset < list->CountItems(); offset++) {
        BMenuItem* item = static_cast<BMenuItem*>(list->ItemAt(offset));
        if (!AddItem(item, index + offset))
            return false;
    }
    return true;
}

bool BMenu::AddSeparatorItem() {
    BMenuItem* separator = new BSeparatorItem();
    if (fPrivate->layout == B_ITEMS_IN_MATRIX || !AddItem(separator)) {
        delete separator;
        return false;
    }
    return true;
}

bool BMenu::_AddItem(BMenuItem* item, int32 index) {
    if (item == NULL || item->fSuper != NULL || index < 0 || index > CountItems())
        return false;
    if (item->fSubmenu != NULL && (item->fSubmenu == this || item->fSubmenu == _Root()))
        return false;
    MenuWindowLocker locker(this);
    Private* data = fPrivate;
    bool appended = index == (int32)data->items.size();
    data->items.insert(data->items.begin() + index, item);
    item->_SetSupermenu(this);
    if (!appended) {
        data->layoutValid = false;
        data->publishAll.store(true);
        if (data->selected >= index)
            data->selected++;
    }
    if (BWindow* window = _InstallWindow())
        item->_Install(window);
    if (item->fMark)
        _MarkChanged(item);
    if (appended && data->layoutValid)
        _ItemAppended(index);
    else
        _ItemsChanged();
    return true;
}

bool BMenu::RemoveItem(BMenuItem* item) {
    int32 index = IndexOf(item);
    if (index < 0)
        return false;
    _RemoveItem(index, false, true);
    return true;
}

BMenuItem* BMenu::RemoveItem(int32 index) {
    return _RemoveItem(index, false, true);
}

bool BMenu::RemoveItems(int32 index, int32 count, bool deleteItems) {
    if (index < 0 || count < 0 || index + count > CountItems())
        return false;
    MenuWindowLocker locker(this);
    // From the end, so removing many items moves none of the others; the menu
    // is laid out and drawn again once, not once per item.
    for (int32 remove = index + count - 1; remove >= index; remove--)
        _RemoveItem(remove, deleteItems, false);
    if (count > 0)
        _ItemsChanged();
    return true;
}

bool BMenu::RemoveItem(BMenu* menu) {
    int32 index = IndexOf(menu);
    if (index < 0)
        return false;
    // The item goes; the submenu goes back to the caller.
    BMenuItem* item = _RemoveItem(index, false, true);
    MenuPrivate(menu).LeaveMenuWindow();
    item->fSubmenu = NULL;
    menu->fPrivate->superitem = NULL;
    delete item;
    return true;
}

BMenuItem* BMenu::_RemoveItem(int32 index, bool deleteItem, bool notify) {
    if (index < 0 || index >= CountItems())
        return NULL;
    MenuWindowLocker locker(this);
    Private* data = fPrivate;
    BMenuItem* item = data->items[index];
    // An item that goes closes its submenu first, while the links are whole.
    if (item->Submenu() != NULL)
        MenuPrivate(item->Submenu()).LeaveMenuWindow();
    data->layoutValid = false;
    data->items.erase(data->items.begin() + index);
    data->publishAll.store(true);
    if (data->selected == index)
        data->selected = -1;
    else if (data->selected > index)
        data->selected--;
    item->fSelected = false;
    item->_Uninstall();
    item->_SetSupermenu(NULL);
    if (deleteItem)
        delete item;
    else
        item->fBounds = BRect();
    if (notify)
        _ItemsChanged();
    return deleteItem ? NULL : item;
}

BMenuItem* BMenu::ItemAt(int32 index) const {
    if (index < 0 || index >= (int32)fPrivate->items.size())
        return NULL;
    return fPrivate->items[index];
}

BMenu* BMenu::SubmenuAt(int32 index) const {
    BMenuItem* item = ItemAt(index);
    return item != NULL ? item->Submenu() : NULL;
}

int32 BMenu::CountItems() const {
    return (int32)fPrivate->items.size();
}

int32 BMenu::IndexOf(BMenuItem* item) const {
    if (item == NULL || item->fSuper != this)
        return -1;
    const std::vector<BMenuItem*>& items = fPrivate->items;
    for (size_t index = 0; index < items.size(); index++) {
        if (items[index] == item)
            return (int32)index;
    }
    return -1;
}

int32 BMenu::IndexOf(BMenu* menu) const {
    if (menu == NULL)
        return -1;
    const std::vector<BMenuItem*>& items = fPrivate->items;
    for (size_t index = 0; index < items.size(); index++) {
        if (items[index]->Submenu() == menu)
            return (int32)index;
    }
    return -1;
}

BMenuItem* BMenu::FindItem(uint32 command) const {
    for (BMenuItem* item : fPrivate->items) {
        if (item->Message() != NULL && item->Message()->what == command)
            return item;
        if (item->Submenu() != NULL) {
            if (BMenuItem* found = item->Submenu()->FindItem(command))
                return found;
        }
    }
    return NULL;
}

BMenuItem* BMenu::FindItem(const char* name) const {
    if (name == NULL)
        return NULL;
    for (BMenuItem* item : fPrivate->items) {
        if (item->Label() != NULL && strcmp(item->Label(), name) == 0)
            return item;
        if (item->Submenu() != NULL) {
            if (BMenuItem* found = item->Submenu()->FindItem(name))
                return found;
        }
    }
    return NULL;
}

BMenuItem* BMenu::FindMarked() {
    for (BMenuItem* item : fPrivate->items) {
        if (item->IsMarked())
            return item;
    }
    return NULL;
}

// #pragma mark - Changes

BMenu* BMenu::_Root() const {
    const BMenu* menu = this;
    while (BMenu* supermenu = menu->Supermenu())
        menu = supermenu;
    return const_cast<BMenu*>(menu);
}

BWindow* BMenu::_InstallWindow() const {
    BMenu* root = _Root();
    BWindow* window = root->Window();
    if (window == NULL || dynamic_cast<MenuWindow*>(window) != NULL)
        return NULL;
    return window;
}

void BMenu::_ItemChanged(BMenuItem* item, bool relayout) {
    if (relayout) {
        fPrivate->layoutValid = false;
        fPrivate->publishAll.store(true);
        _ItemsChanged();
        return;
    }
    fPrivate->publishAll.store(true);
    BWindow* window = Window();
    if (window == NULL)
        return;
    if (!window->IsLocked()) {
        if (MenuWindow* menuWindow = dynamic_cast<MenuWindow*>(window))
            menuWindow->ScheduleRefresh(false);
        return;
    }
    _Layout();
    int32 index = IndexOf(item);
    if (index >= 0)
        _InvalidateItem(index);
    if (MenuWindow* menuWindow = dynamic_cast<MenuWindow*>(window))
        menuWindow->ScheduleRefresh(false);
}

void BMenu::_ItemAppended(int32 index) {
    BWindow* window = Window();
    if (window == NULL)
        return;
    MenuWindow* menuWindow = dynamic_cast<MenuWindow*>(window);
    if (!window->IsLocked()) {
        if (menuWindow != NULL)
            menuWindow->ScheduleRefresh(false);
        return;
    }
    float oldWidth = fPrivate->columnWidth;
    float oldHeight = fPrivate->rowHeight;
    _Layout();
    if (fPrivate->resizeToFit && menuWindow == NULL)
        _ResizeToFit();
    // A wider column (or taller row) moves every item's edge.
    if (oldWidth != fPrivate->columnWidth || oldHeight != fPrivate->rowHeight)
        Invalidate();
    else
        _InvalidateItem(index);
    if (menuWindow != NULL)
        menuWindow->ScheduleRefresh(false);
}

void BMenu::_ItemsChanged() {
    _Refresh(true);
}

void BMenu::_MarkChanged(BMenuItem* item) {
    Private* data = fPrivate;
    if (item->fMark && data->radioMode) {
        for (BMenuItem* other : data->items) {
            if (other != item && other->fMark) {
                other->fMark = false;
                _ItemChanged(other, false);
            }
        }
    }
    if (item->fMark && data->labelFromMarked && data->superitem != NULL)
        data->superitem->SetLabel(item->Label());
}
