// BMenu: the items, their attributes and archiving.
//
// How the menu kit fits together:
// - A BMenu is a view holding BMenuItems. It measures and places them
//   (MenuLayout.cpp) and draws them (MenuDrawing.cpp, MenuItemDrawing.cpp).
// - A menu bar sits in an ordinary window. Pressing one of its items (or
//   Command-Escape) starts a MenuTracker in that window's thread: the tracker
//   keeps the chain of open menus, hit-tests the pointer against them and turns
//   keys into moves, and decides what opens, closes and is invoked.
// - Every open submenu, and a pop-up, lives in a MenuWindow of its own, with its
//   own thread: the menu is attached there (AttachedToWindow, dynamic items one
//   per loop turn), drawn, and removed again (AllDetached). The window publishes
//   a snapshot of the menu's items for the tracker and obeys the tracker's
//   messages (select, close, invoke). No thread ever waits for another's lock,
//   so a menu filling itself slowly never holds up the bar or the tracking.
// - Shortcuts of the items are registered with the window of the root menu,
//   which sends them back to the root menu to invoke the item.
#include <Menu.h>

#include "interface/MenuData.h"
#include "interface/MenuPrivate.h"
#include "interface/MenuTracker.h"
#include "interface/MenuWindow.h"
#include "support/ArchivablePrivate.h"

#include <Autolock.h>
#include <MenuBar.h>
#include <MenuItem.h>
#include <Message.h>
#include <Messenger.h>
#include <PopUpMenu.h>
#include <Window.h>

#include <ctype.h>
#include <mutex>
#include <string.h>

using namespace BPrivate;

namespace {

std::mutex sMenuInfoLock;
bool sMenuInfoSet = false;
menu_info sMenuInfo;

menu_info default_menu_info() {
    menu_info info;
    memset(&info, 0, sizeof(info));
    info.font_size = be_plain_font->Size();
    be_plain_font->GetFamilyAndStyle(&info.f_family, &info.f_style);
    info.background_color = ui_color(B_MENU_BACKGROUND_COLOR);
    info.separator = 0;
    info.click_to_open = true;
    info.triggers_always_shown = false;
    return info;
}

} // namespace

namespace BPrivate {

void register_menu_archivables() {
    static std::once_flag sOnce;
    std::call_once(sOnce, [] {
        B_REGISTER_ARCHIVABLE(BMenu);
        B_REGISTER_ARCHIVABLE(BMenuItem);
        B_REGISTER_ARCHIVABLE(BSeparatorItem);
        B_REGISTER_ARCHIVABLE(BMenuBar);
        B_REGISTER_ARCHIVABLE(BPopUpMenu);
    });
}

} // namespace BPrivate

status_t set_menu_info(menu_info* info) {
    if (info == NULL)
        return B_BAD_VALUE;
    std::lock_guard<std::mutex> lock(sMenuInfoLock);
    sMenuInfo = *info;
    sMenuInfoSet = true;
    return B_OK;
}

status_t get_menu_info(menu_info* info) {
    if (info == NULL)
        return B_BAD_VALUE;
    std::lock_guard<std::mutex> lock(sMenuInfoLock);
    *info = sMenuInfoSet ? sMenuInfo : default_menu_info();
    return B_OK;
}

// #pragma mark - Life

BMenu::BMenu(const char* name, menu_layout layout)
    : BView(BRect(0, 0, 0, 0), name, B_FOLLOW_LEFT | B_FOLLOW_TOP, B_WILL_DRAW),
      fPrivate(new Private) {
    _InitData(layout, true, NULL);
}

BMenu::BMenu(const char* name, float width, float height)
    : BView(BRect(0, 0, width, height), name, B_FOLLOW_LEFT | B_FOLLOW_TOP, B_WILL_DRAW),
      fPrivate(new Private) {
    _InitData(B_ITEMS_IN_MATRIX, false, NULL);
}

BMenu::BMenu(BRect frame, const char* name, uint32 resizeMask, uint32 flags, menu_layout layout,
             bool resizeToFit)
    : BView(frame, name, resizeMask, flags), fPrivate(new Private) {
    _InitData(layout, resizeToFit, NULL);
}

BMenu::BMenu(BMessage* archive)
    : BView(archive != NULL ? archive->GetRect("_frame", BRect(0, 0, 0, 0)) : BRect(0, 0, 0, 0),
            archive != NULL ? archive->GetString("_name", NULL) : NULL,
            archive != NULL
                ? (uint32)archive->GetInt32("_resize_mode", B_FOLLOW_LEFT | B_FOLLOW_TOP)
                : B_FOLLOW_LEFT | B_FOLLOW_TOP,
            archive != NULL ? (uint32)archive->GetInt32("_flags", B_WILL_DRAW) : B_WILL_DRAW),
      fPrivate(new Private) {
    menu_layout layout = B_ITEMS_IN_COLUMN;
    bool resizeToFit = true;
    if (archive != NULL) {
        int32 value = archive->GetInt32("_layout", B_ITEMS_IN_COLUMN);
        if (value >= B_ITEMS_IN_ROW && value <= B_ITEMS_IN_MATRIX)
            layout = (menu_layout)value;
        resizeToFit = archive->GetBool("_rsize_to_fit", true);
    }
    _InitData(layout, resizeToFit, archive);
}

void BMenu::_InitData(menu_layout layout, bool resizeToFit, BMessage* archive) {
    register_menu_archivables();
    MenuPrivate::Register(this);
    Private* data = fPrivate;
    data->layout = layout;
    data->resizeToFit = resizeToFit;
    BRect margins = layout == B_ITEMS_IN_COLUMN ? kColumnItemMargins
                    : layout == B_ITEMS_IN_ROW  ? kRowItemMargins
                                                : BRect(0, 0, 0, 0);
    data->marginLeft = margins.left;
    data->marginTop = margins.top;
    data->marginRight = margins.right;
    data->marginBottom = margins.bottom;

    menu_info info;
    get_menu_info(&info);
    BFont font(be_plain_font);
    font.SetFamilyAndStyle(info.f_family, info.f_style);
    font.SetSize(info.font_size);
    SetFont(&font);
    SetViewColor(info.background_color);
    SetLowColor(info.background_color);
    SetHighColor(menu_text_color(true));

    if (archive == NULL)
        return;
    data->enabled = !archive->GetBool("_disable", false);
    data->radioMode = archive->GetBool("_radio", false);
    data->triggersEnabled = !archive->GetBool("_trig_disabled", false);
    data->labelFromMarked = archive->GetBool("_dyn_label", false);
    data->maxContentWidth = archive->GetFloat("_maxwidth", 0.0f);

    BMessage itemArchive;
    for (int32 index = 0; archive->FindMessage("_items", index, &itemArchive) == B_OK; index++) {
        BArchivable* object = instantiate_object(&itemArchive);
        BMenuItem* item = dynamic_cast<BMenuItem*>(object);
        if (item == NULL) {
            delete object;
            continue;
        }
        bool added = layout == B_ITEMS_IN_MATRIX
                         ? AddItem(item, archive->GetRect("_i_frames", index, BRect(0, 0, 0, 0)))
                         : AddItem(item);
        if (!added)
            delete item;
    }
}

BMenu::~BMenu() {
    // A menu still shown in a menu window leaves it first, as a view must.
    MenuWindow* window = MenuPrivate::Unregister(this);
    if (window != NULL && window->Lock()) {
        window->MenuGone(this, false);
        window->Unlock();
    }
    if (MenuTracker* tracker = fPrivate->tracker.load())
        tracker->RootGone(this);
    if (fPrivate->superitem != NULL && fPrivate->superitem->fSubmenu == this)
        fPrivate->superitem->fSubmenu = NULL;
    RemoveItems(0, CountItems(), true);
    delete fPrivate;
    fPrivate = NULL;
}

BArchivable* BMenu::Instantiate(BMessage* archive) {
    if (!validate_instantiation(archive, "BMenu"))
        return NULL;
    return new BMenu(archive);
}

status_t BMenu::Archive(BMessage* archive, bool deep) const {
    if (archive == NULL)
        return B_BAD_VALUE;
    status_t status = BView::Archive(archive, deep);
    if (status != B_OK)
        return status;
    // The frame, resizing mode and flags are the view's.
    const Private* data = fPrivate;
    archive->AddInt32("_layout", data->layout);
    archive->AddBool("_rsize_to_fit", data->resizeToFit);
    if (!data->enabled)
        archive->AddBool("_disable", true);
    if (data->radioMode)
        archive->AddBool("_radio", true);
    if (!data->triggersEnabled)
        archive->AddBool("_trig_disabled", true);
    if (data->labelFromMarked)
        archive->AddBool("_dyn_label", true);
    if (data->maxContentWidth > 0.0f)
        archive->AddFloat("_maxwidth", data->maxContentWidth);
    if (!deep)
        return B_OK;
    for (BMenuItem* item : data->items) {
        BMessage itemArchive;
        status = item->Archive(&itemArchive, true);
        if (status != B_OK)
            return status;
        archive->AddMessage("_items", &itemArchive);
        if (data->layout == B_ITEMS_IN_MATRIX)
            archive->AddRect("_i_frames", item->fBounds);
    }
    return B_OK;
}

// #pragma mark - Hooks

void BMenu::AttachedToWindow() {
    fPrivate->layoutValid = false;
    // A root menu in an ordinary window registers its items' shortcuts there.
    if (dynamic_cast<MenuWindow*>(Window()) == NULL && Supermenu() == NULL) {
        for (BMenuItem* item : fPrivate->items)
            item->_Install(Window());
    }
    _StartDynamic();
    _Refresh(true);
}

void BMenu::DetachedFromWindow() {
    if (dynamic_cast<MenuWindow*>(Window()) == NULL && Supermenu() == NULL) {
        for (BMenuItem* item : fPrivate->items)
            item->_Uninstall();
    }
}

void BMenu::AllAttached() {
    BView::AllAttached();
}

void BMenu::AllDetached() {
    BView::AllDetached();
}

bool BMenu::AddDynamicItem(add_state state) {
    // Hook function
    return false;
}

void BMenu::MessageReceived(BMessage* message) {
    if (message->what == kMessageMenuShortcut) {
        BMenuItem* item = MenuPrivate(this).ItemForShortcut(
            (uint32)message->GetInt32("key", 0), (uint32)message->GetInt32("modifiers", 0));
        if (item != NULL)
            item->Invoke();
        return;
    }
    BView::MessageReceived(message);
}

void BMenu::KeyDown(const char* bytes, int32 numBytes) {
    MenuTracker* tracker = _Root()->fPrivate->tracker.load();
    if (tracker != NULL && tracker->IsTracking() && bytes != NULL && numBytes > 0) {
        BMessage* current = Window() != NULL ? Window()->CurrentMessage() : NULL;
        uint32 modifiers = current != NULL ? (uint32)current->GetInt32("modifiers", 0) : 0;
        if (tracker->HandleKey(bytes, modifiers))
            return;
    }
    BView::KeyDown(bytes, numBytes);
}

// #pragma mark - Attributes

status_t BMenu::SetTargetForItems(BHandler* target) {
    status_t result = B_OK;
    for (BMenuItem* item : fPrivate->items) {
        status_t status = item->SetTarget(target);
        if (status != B_OK && result == B_OK)
            result = status;
    }
    return result;
}

status_t BMenu::SetTargetForItems(BMessenger messenger) {
    status_t result = B_OK;
    for (BMenuItem* item : fPrivate->items) {
        status_t status = item->SetTarget(messenger);
        if (status != B_OK && result == B_OK)
            result = status;
    }
    return result;
}

void BMenu::SetEnabled(bool enabled) {
    if (fPrivate->enabled == enabled)
        return;
    MenuWindowLocker locker(this);
    fPrivate->enabled = enabled;
    fPrivate->publishAll.store(true);
    if (fPrivate->superitem != NULL)
        fPrivate->superitem->SetEnabled(enabled);
    _Refresh(false);
}

bool BMenu::IsEnabled() const {
    if (!fPrivate->enabled)
        return false;
    BMenu* supermenu = Supermenu();
    return supermenu == NULL || supermenu->IsEnabled();
}

void BMenu::SetRadioMode(bool flag) {
    fPrivate->radioMode = flag;
    if (!flag)
        fPrivate->labelFromMarked = false;
}

bool BMenu::IsRadioMode() const {
    return fPrivate->radioMode;
}

void BMenu::SetLabelFromMarked(bool flag) {
    fPrivate->labelFromMarked = flag;
    if (flag) {
        fPrivate->radioMode = true;
        if (BMenuItem* marked = FindMarked())
            _MarkChanged(marked);
    }
}

bool BMenu::IsLabelFromMarked() {
    return fPrivate->labelFromMarked;
}

void BMenu::SetTriggersEnabled(bool flag) {
    if (fPrivate->triggersEnabled == flag)
        return;
    MenuWindowLocker locker(this);
    fPrivate->triggersEnabled = flag;
    fPrivate->publishAll.store(true);
    _Refresh(false);
}

bool BMenu::AreTriggersEnabled() const {
    return fPrivate->triggersEnabled;
}

bool BMenu::IsRedrawAfterSticky() const {
    return false;
}

void BMenu::SetMaxContentWidth(float maxWidth) {
    MenuWindowLocker locker(this);
    fPrivate->maxContentWidth = maxWidth > 0.0f ? maxWidth : 0.0f;
    fPrivate->layoutValid = false;
    _Refresh(true);
}

float BMenu::MaxContentWidth() const {
    return fPrivate->maxContentWidth;
}

void BMenu::SetItemMargins(float left, float top, float right, float bottom) {
    MenuWindowLocker locker(this);
    Private* data = fPrivate;
    if (data->marginLeft == left && data->marginTop == top && data->marginRight == right &&
        data->marginBottom == bottom)
        return;
    data->marginLeft = left;
    data->marginTop = top;
    data->marginRight = right;
    data->marginBottom = bottom;
    data->layoutValid = false;
    _Refresh(true);
}

void BMenu::GetItemMargins(float* left, float* top, float* right, float* bottom) const {
    if (left != NULL)
        *left = fPrivate->marginLeft;
    if (top != NULL)
        *top = fPrivate->marginTop;
    if (right != NULL)
        *right = fPrivate->marginRight;
    if (bottom != NULL)
        *bottom = fPrivate->marginBottom;
}

menu_layout BMenu::Layout() const {
    return fPrivate->layout;
}

BMenu* BMenu::Supermenu() const {
    return fPrivate->superitem != NULL ? fPrivate->superitem->Menu() : NULL;
}

BMenuItem* BMenu::Superitem() const {
    return fPrivate->superitem;
}

// #pragma mark - Tracking a menu of its own

BMenuItem* BMenu::Track(bool startOpened, BRect* specialRect) {
    if (Window() != NULL || fPrivate->menuWindow.load() != NULL)
        return NULL;
    return MenuTracker::TrackMenu(this, ScreenLocation(), false, startOpened, specialRect, false);
}
