// Kit-private menu calls: dynamic items, the claim of a menu window, the snapshot
// the tracker reads, shortcuts, and where a menu opens by default.
#include "interface/MenuPrivate.h"

#include "interface/MenuData.h"
#include "interface/MenuTracker.h"
#include "interface/MenuWindow.h"
#include "server/DisplayServer.h"

#include <MenuBar.h>
#include <MenuItem.h>
#include <Window.h>

#include <ctype.h>
#include <mutex>
#include <unordered_set>

using namespace BPrivate;

namespace {

std::mutex sLiveLock;

const bigtime_t kMenuWindowLockTimeout = 100000;

// Never destroyed: menus may be deleted while static destructors run.
std::unordered_set<const BMenu*>& live_menus() {
    static auto* sMenus = new std::unordered_set<const BMenu*>;
    return *sMenus;
}

uint32 shortcut_modifiers(uint32 modifiers) {
    return (modifiers & (B_COMMAND_KEY | B_OPTION_KEY | B_SHIFT_KEY | B_CONTROL_KEY | B_MENU_KEY)) |
           B_COMMAND_KEY;
}

} // namespace

// #pragma mark - Dynamic items

bool BMenu::_StartDynamic() {
    Private* data = fPrivate;
    data->filling = false;
    if (!AddDynamicItem(B_INITIAL_ADD))
        return false;
    // In a menu window the window calls the steps, one per turn of its loop.
    if (dynamic_cast<MenuWindow*>(Window()) != NULL) {
        data->filling = true;
        return true;
    }
    while (AddDynamicItem(B_PROCESSING)) {
    }
    return false;
}

bool BMenu::_DynamicStep() {
    Private* data = fPrivate;
    if (!data->filling)
        return false;
    if (!AddDynamicItem(B_PROCESSING))
        data->filling = false;
    return data->filling;
}

void BMenu::_AbortDynamic() {
    Private* data = fPrivate;
    if (!data->filling)
        return;
    data->filling = false;
    AddDynamicItem(B_ABORT);
}

// #pragma mark - Where a menu opens

BPoint BMenu::ScreenLocation() {
    Private* data = fPrivate;
    if (data->hasLocation)
        return data->location;
    BMenuItem* superitem = Superitem();
    BMenu* supermenu = Supermenu();
    if (superitem == NULL || supermenu == NULL) {
        BPoint where;
        uint32 buttons;
        get_mouse(&where, &buttons);
        return where;
    }
    BRect frame = data->hasSuperitemFrame ? data->superitemFrame
                                          : supermenu->ConvertToScreen(superitem->Frame());
    // Below an item of a row, beside an item of a column.
    if (supermenu->Layout() == B_ITEMS_IN_ROW)
        return BPoint(frame.left, frame.bottom + 1.0f);
    return BPoint(frame.right + 1.0f, frame.top);
}

namespace BPrivate {

void menu_grab_pointer(int32 token) {
    if (DisplayServer* server = DisplayServer::Current())
        server->GrabPointer(token);
}

void menu_ungrab_pointer(int32 token) {
    if (DisplayServer* server = DisplayServer::Current())
        server->UngrabPointer(token);
}

BMenu::Private* MenuPrivate::Data() const {
    return fMenu->fPrivate;
}

void MenuPrivate::Select(int32 index, bool reveal) {
    fMenu->_Select(index, reveal);
}

int32 MenuPrivate::Selected() const {
    return fMenu->fPrivate->selected;
}

void MenuPrivate::SetShowTriggers(bool show) {
    BMenu::Private* data = fMenu->fPrivate;
    if (data->showTriggers == show)
        return;
    data->showTriggers = show;
    BWindow* window = fMenu->Window();
    if (window != NULL && window->IsLocked() && data->triggersEnabled)
        fMenu->Invalidate();
}

bool MenuPrivate::ShowTriggers() const {
    return fMenu->fPrivate->showTriggers;
}

BPoint MenuPrivate::ScreenLocation() {
    return fMenu->ScreenLocation();
}

bool MenuPrivate::IsFilling() const {
    return fMenu->fPrivate->filling;
}

bool MenuPrivate::DynamicStep() {
    return fMenu->_DynamicStep();
}

void MenuPrivate::AbortDynamic() {
    fMenu->_AbortDynamic();
}

void MenuPrivate::Register(BMenu* menu) {
    std::lock_guard<std::mutex> lock(sLiveLock);
    live_menus().insert(menu);
}

MenuWindow* MenuPrivate::Unregister(BMenu* menu) {
    std::lock_guard<std::mutex> lock(sLiveLock);
    live_menus().erase(menu);
    return menu->fPrivate->menuWindow.load();
}

bool MenuPrivate::Claim(MenuWindow* window, bool* gone) {
    std::lock_guard<std::mutex> lock(sLiveLock);
    *gone = live_menus().count(fMenu) == 0;
    if (*gone)
        return false;
    MenuWindow* expected = NULL;
    return fMenu->fPrivate->menuWindow.compare_exchange_strong(expected, window);
}

MenuWindowLocker::MenuWindowLocker(const BMenu* menu) : fWindow(NULL) {
    MenuWindow* window = menu != NULL ? MenuPrivate(const_cast<BMenu*>(menu)).ClaimedBy() : NULL;
    if (window == NULL || window->IsLocked())
        return;
    // A menu window only ever waits for another lock inside the menu's own
    // hooks (a hook locking the bar's window, say). If that is what keeps it,
    // it is not touching the menu, and waiting for it would never end.
    if (window->LockWithTimeout(kMenuWindowLockTimeout) == B_OK)
        fWindow = window;
}

MenuWindowLocker::~MenuWindowLocker() {
    if (fWindow != NULL)
        fWindow->Unlock();
}

void MenuPrivate::Release(MenuWindow* window) {
    MenuWindow* expected = window;
    fMenu->fPrivate->menuWindow.compare_exchange_strong(expected, NULL);
}

MenuWindow* MenuPrivate::ClaimedBy() const {
    return fMenu->fPrivate->menuWindow.load();
}

void MenuPrivate::LeaveMenuWindow() {
    // Deeper menus first: their windows read the chain of supermenus above
    // them, which the caller is about to take apart.
    {
        MenuWindowLocker locker(fMenu);
        for (BMenuItem* item : fMenu->fPrivate->items) {
            if (item->Submenu() != NULL)
                MenuPrivate(item->Submenu()).LeaveMenuWindow();
        }
    }
    MenuWindow* window = ClaimedBy();
    if (window != NULL && window->Lock()) {
        window->MenuGone(fMenu, true);
        window->Unlock();
    }
}

void MenuPrivate::SetSnapshot(std::shared_ptr<MenuSnapshot> snapshot) {
    BMenu::Private* data = fMenu->fPrivate;
    data->snapshot = std::move(snapshot);
    data->published = 0;
    data->publishAll.store(true);
}

void MenuPrivate::Publish() {
    BMenu::Private* data = fMenu->fPrivate;
    if (data->snapshot == NULL)
        return;
    fMenu->_Layout();
    MenuSnapshot& snapshot = *data->snapshot;
    std::lock_guard<std::mutex> lock(snapshot.lock);
    BWindow* window = fMenu->Window();
    snapshot.windowFrame = window != NULL ? window->Frame() : BRect();
    snapshot.menuFrame = window != NULL ? fMenu->ConvertToScreen(fMenu->Bounds()) : BRect();
    snapshot.scroll = fMenu->Bounds().LeftTop();
    snapshot.layout = data->layout;
    snapshot.triggersEnabled = data->triggersEnabled;
    if (data->publishAll.exchange(false)) {
        snapshot.items.clear();
        data->published = 0;
    }
    // Items appended since the last time are all that is new: a column that
    // grew wider keeps its items' tops and bottoms, which are what is compared.
    int32 count = (int32)data->items.size();
    for (int32 index = data->published; index < count; index++) {
        BMenuItem* item = data->items[index];
        MenuSnapshotItem entry;
        entry.frame = item->fBounds;
        entry.item = item;
        entry.submenu = item->Submenu();
        entry.enabled = item->IsEnabled();
        entry.separator = IsSeparator(item);
        entry.trigger = 0;
        if (item->fTriggerIndex >= 0 && item->Label() != NULL)
            entry.trigger = (char)tolower((unsigned char)item->Label()[item->fTriggerIndex]);
        snapshot.items.push_back(entry);
    }
    data->published = count;
}

void MenuPrivate::SetSuperitemFrame(BRect screenFrame) {
    fMenu->fPrivate->hasSuperitemFrame = true;
    fMenu->fPrivate->superitemFrame = screenFrame;
}

void MenuPrivate::SetLocation(BPoint screenPoint) {
    fMenu->fPrivate->hasLocation = true;
    fMenu->fPrivate->location = screenPoint;
}

MenuTracker* MenuPrivate::Tracker() const {
    return fMenu->fPrivate->tracker.load();
}

void MenuPrivate::SetTracker(MenuTracker* tracker) {
    fMenu->fPrivate->tracker.store(tracker);
}

BMenuItem* MenuPrivate::ItemForShortcut(uint32 key, uint32 modifiers) {
    key = menu_key_of(key);
    modifiers = shortcut_modifiers(modifiers);
    for (BMenuItem* item : fMenu->fPrivate->items) {
        if (item->fShortcutChar != 0 && menu_key_of((uint8)item->fShortcutChar) == key &&
            shortcut_modifiers(item->fModifiers) == modifiers && item->IsEnabled())
            return item;
        if (item->Submenu() != NULL) {
            if (BMenuItem* found = MenuPrivate(item->Submenu()).ItemForShortcut(key, modifiers))
                return found;
        }
    }
    return NULL;
}

void MenuPrivate::StartMenuBar(BMenuBar* bar, int32 index, bool sticky, bool showMenu,
                               bool keyboard) {
    MenuTracker::StartBar(bar, index, sticky, showMenu, keyboard, NULL);
}

bool MenuPrivate::IsSeparator(const BMenuItem* item) {
    return dynamic_cast<const BSeparatorItem*>(item) != NULL;
}

bool MenuPrivate::IsItemSelected(const BMenuItem* item) {
    return item != NULL && item->fSelected;
}

int32 MenuPrivate::TriggerIndex(const BMenuItem* item) {
    return item != NULL ? item->fTriggerIndex : -1;
}

} // namespace BPrivate
