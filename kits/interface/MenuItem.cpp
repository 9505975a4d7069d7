// BMenuItem: label, message, shortcut, marks and the submenu; invoking; archiving.
// Drawing is in MenuItemDrawing.cpp.
#include <MenuItem.h>

#include "interface/MenuData.h"
#include "interface/MenuPrivate.h"
#include "interface/MenuWindow.h"

#include <Message.h>
#include <OS.h>
#include <String.h>
#include <Window.h>

#include <ctype.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

using namespace BPrivate;

namespace {

char* copy_label(const char* label) {
    return strdup(label != NULL ? label : "");
}

// Whether any item of the tree below menu other than except uses the shortcut.
bool shortcut_in_use(BMenu* menu, const BMenuItem* except, char shortcut, uint32 modifiers) {
    for (int32 index = 0; index < menu->CountItems(); index++) {
        BMenuItem* item = menu->ItemAt(index);
        uint32 itemModifiers = 0;
        if (item != except && item->Shortcut(&itemModifiers) != 0 &&
            menu_key_of((uint8)item->Shortcut()) == menu_key_of((uint8)shortcut) &&
            (itemModifiers | B_COMMAND_KEY) == (modifiers | B_COMMAND_KEY))
            return true;
        if (item->Submenu() == NULL)
            continue;
        MenuWindowLocker locker(item->Submenu());
        if (shortcut_in_use(item->Submenu(), except, shortcut, modifiers))
            return true;
    }
    return false;
}

} // namespace

// #pragma mark - Life

BMenuItem::BMenuItem(const char* label, BMessage* message, char shortcut, uint32 modifiers)
    : BInvoker(message, NULL) {
    _InitData();
    fLabel = copy_label(label);
    fShortcutChar = shortcut;
    fModifiers = shortcut != 0 ? (modifiers | B_COMMAND_KEY) : modifiers;
}

BMenuItem::BMenuItem(BMenu* menu, BMessage* message) : BInvoker(message, NULL) {
    _InitData();
    _InitMenuData(menu);
}

BMenuItem::BMenuItem(BMessage* archive) : BArchivable(archive), BInvoker() {
    _InitData();
    if (archive == NULL) {
        fLabel = copy_label(NULL);
        return;
    }
    fLabel = copy_label(archive->GetString("_label", ""));
    fEnabled = !archive->GetBool("_disable", false);
    fMark = archive->GetBool("_marked", false);
    fUserTrigger = (char)archive->GetInt32("_user_trig", 0);
    fShortcutChar = (char)archive->GetInt32("_shortcut", 0);
    fModifiers = (uint32)archive->GetInt32("_mods", 0);
    if (fShortcutChar != 0)
        fModifiers |= B_COMMAND_KEY;

    BMessage message;
    if (archive->FindMessage("_msg", &message) == B_OK)
        SetMessage(new BMessage(message));

    BMessage submenuArchive;
    if (archive->FindMessage("_submenu", &submenuArchive) == B_OK) {
        BArchivable* object = instantiate_object(&submenuArchive);
        BMenu* submenu = dynamic_cast<BMenu*>(object);
        if (submenu != NULL) {
            char* label = fLabel;
            fLabel = NULL;
            _InitMenuData(submenu);
            // The archived label wins over the submenu's name.
            free(fLabel);
            fLabel = label;
        } else {
            delete object;
        }
    }
}

void BMenuItem::_InitData() {
    register_menu_archivables();
    fLabel = NULL;
    fSubmenu = NULL;
    fSuper = NULL;
    fWindow = NULL;
    fBounds = BRect();
    fModifiers = 0;
    fCachedWidth = 0.0f;
    fTriggerIndex = -1;
    fUserTrigger = 0;
    fShortcutChar = 0;
    fMark = false;
    fEnabled = true;
    fSelected = false;
    memset(_reserved, 0, sizeof(_reserved));
}

void BMenuItem::_InitMenuData(BMenu* menu) {
    fSubmenu = menu;
    if (menu != NULL)
        menu->fPrivate->superitem = this;
    const char* name = menu != NULL ? menu->Name() : NULL;
    BMenuItem* marked = menu != NULL && menu->IsLabelFromMarked() ? menu->FindMarked() : NULL;
    fLabel = copy_label(marked != NULL ? marked->Label() : name);
}

BMenuItem::~BMenuItem() {
    if (fSuper != NULL)
        fSuper->RemoveItem(this);
    _Uninstall();
    if (fSubmenu != NULL) {
        BMenu* submenu = fSubmenu;
        fSubmenu = NULL;
        // While it is whole, an open submenu closes with its own hooks.
        MenuPrivate(submenu).LeaveMenuWindow();
        submenu->fPrivate->superitem = NULL;
        delete submenu;
    }
    free(fLabel);
}

BArchivable* BMenuItem::Instantiate(BMessage* archive) {
    if (!validate_instantiation(archive, "BMenuItem"))
        return NULL;
    return new BMenuItem(archive);
}

status_t BMenuItem::Archive(BMessage* archive, bool deep) const {
    if (archive == NULL)
        return B_BAD_VALUE;
    status_t status = BArchivable::Archive(archive, deep);
    if (status != B_OK)
        return status;
    if (fLabel != NULL)
        archive->AddString("_label", fLabel);
    if (!fEnabled)
        archive->AddBool("_disable", true);
    if (fMark)
        archive->AddBool("_marked", true);
    if (fUserTrigger != 0)
        archive->AddInt32("_user_trig", fUserTrigger);
    if (fShortcutChar != 0) {
        archive->AddInt32("_shortcut", fShortcutChar);
        archive->AddInt32("_mods", (int32)fModifiers);
    }
    if (Message() != NULL)
        archive->AddMessage("_msg", Message());
    if (deep && fSubmenu != NULL) {
        BMessage submenuArchive;
        status = fSubmenu->Archive(&submenuArchive, true);
        if (status != B_OK)
            return status;
        archive->AddMessage("_submenu", &submenuArchive);
    }
    return B_OK;
}

// #pragma mark - Attributes

void BMenuItem::SetLabel(const char* name) {
    MenuWindowLocker locker(fSuper);
    if (fLabel != NULL && name != NULL && strcmp(fLabel, name) == 0)
        return;
    char* label = copy_label(name);
    free(fLabel);
    fLabel = label;
    if (fSuper != NULL)
        fSuper->_ItemChanged(this, true);
}

void BMenuItem::SetEnabled(bool enabled) {
    MenuWindowLocker locker(fSuper);
    if (fEnabled == enabled)
        return;
    fEnabled = enabled;
    if (fSubmenu != NULL)
        fSubmenu->SetEnabled(enabled);
    if (fSuper != NULL)
        fSuper->_ItemChanged(this, false);
}

void BMenuItem::SetMarked(bool mark) {
    MenuWindowLocker locker(fSuper);
    if (fMark == mark)
        return;
    fMark = mark;
    if (fSuper != NULL) {
        if (mark)
            fSuper->_MarkChanged(this);
        fSuper->_ItemChanged(this, false);
    }
}

void BMenuItem::SetTrigger(char trigger) {
    MenuWindowLocker locker(fSuper);
    fUserTrigger = trigger;
    if (fSuper != NULL)
        fSuper->_ItemChanged(this, true);
}

void BMenuItem::SetShortcut(char shortcut, uint32 modifiers) {
    MenuWindowLocker locker(fSuper);
    BWindow* window = fWindow;
    if (window != NULL && fShortcutChar != 0 && fSuper != NULL &&
        !shortcut_in_use(fSuper->_Root(), this, fShortcutChar, fModifiers))
        window->RemoveShortcut((uint8)fShortcutChar, fModifiers);
    fShortcutChar = shortcut;
    fModifiers = shortcut != 0 ? (modifiers | B_COMMAND_KEY) : modifiers;
    if (window != NULL && fShortcutChar != 0 && fSuper != NULL) {
        BMessage* message = new BMessage(kMessageMenuShortcut);
        message->AddInt32("key", (int32)(uint8)fShortcutChar);
        message->AddInt32("modifiers", (int32)fModifiers);
        window->AddShortcut((uint8)fShortcutChar, fModifiers, message, fSuper->_Root());
    }
    if (fSuper != NULL)
        fSuper->_ItemChanged(this, true);
}

const char* BMenuItem::Label() const {
    return fLabel;
}

bool BMenuItem::IsEnabled() const {
    if (fSubmenu != NULL)
        return fSubmenu->IsEnabled();
    if (!fEnabled)
        return false;
    return fSuper == NULL || fSuper->IsEnabled();
}

bool BMenuItem::IsMarked() const {
    return fMark;
}

char BMenuItem::Trigger() const {
    if (fUserTrigger != 0)
        return fUserTrigger;
    if (fTriggerIndex >= 0 && fLabel != NULL)
        return fLabel[fTriggerIndex];
    return 0;
}

char BMenuItem::Shortcut(uint32* modifiers) const {
    if (modifiers != NULL)
        *modifiers = fModifiers;
    return fShortcutChar;
}

BMenu* BMenuItem::Submenu() const {
    return fSubmenu;
}

BMenu* BMenuItem::Menu() const {
    return fSuper;
}

BRect BMenuItem::Frame() const {
    // Frames are placed lazily; asking for one places what is pending.
    if (fSuper != NULL)
        fSuper->_Layout();
    return fBounds;
}

bool BMenuItem::IsSelected() const {
    return fSelected;
}

BPoint BMenuItem::ContentLocation() const {
    if (fSuper == NULL)
        return fBounds.LeftTop();
    float left;
    float top;
    fSuper->GetItemMargins(&left, &top, NULL, NULL);
    return BPoint(fBounds.left + left, fBounds.top + top);
}

void BMenuItem::Highlight(bool on) {
    if (fSuper != NULL)
        fSuper->_InvalidateItem(fSuper->IndexOf(this));
}

void BMenuItem::GetContentSize(float* width, float* height) {
    BFont font(be_plain_font);
    if (fSuper != NULL)
        fSuper->GetFont(&font);
    font_height fontHeight;
    font.GetHeight(&fontHeight);
    if (width != NULL)
        *width = ceilf(font.StringWidth(fLabel != NULL ? fLabel : ""));
    if (height != NULL)
        *height = ceilf(fontHeight.ascent + fontHeight.descent + fontHeight.leading);
}

void BMenuItem::TruncateLabel(float maxWidth, char* newLabel) {
    if (newLabel == NULL)
        return;
    const char* label = fLabel != NULL ? fLabel : "";
    BFont font(be_plain_font);
    if (fSuper != NULL)
        fSuper->GetFont(&font);
    BString truncated(label);
    font.TruncateString(&truncated, B_TRUNCATE_END, maxWidth);
    // The buffer holds the label and three more bytes: an ellipsis replaces at
    // least one character, so a truncated label always fits.
    snprintf(newLabel, strlen(label) + 3, "%s", truncated.String());
}

// #pragma mark - Invoking

status_t BMenuItem::Invoke(BMessage* message) {
    if (!IsEnabled())
        return B_ERROR;
    if (fSuper != NULL && fSuper->IsRadioMode())
        SetMarked(true);
    if (message == NULL)
        message = Message();
    if (message == NULL)
        return B_BAD_VALUE;
    BMessage copy(*message);
    copy.AddInt32("index", fSuper != NULL ? fSuper->IndexOf(this) : -1);
    copy.AddInt64("when", system_time());
    copy.AddPointer("source", this);
    return BInvoker::Invoke(&copy);
}

// #pragma mark - Installing in the root menu's window

void BMenuItem::_SetSupermenu(BMenu* menu) {
    fSuper = menu;
}

void BMenuItem::_Install(BWindow* window) {
    fWindow = window;
    if (fShortcutChar != 0 && fSuper != NULL) {
        BMessage* message = new BMessage(kMessageMenuShortcut);
        message->AddInt32("key", (int32)(uint8)fShortcutChar);
        message->AddInt32("modifiers", (int32)fModifiers);
        window->AddShortcut((uint8)fShortcutChar, fModifiers, message, fSuper->_Root());
    }
    // Items without a target of their own send to the window.
    if (!Messenger().IsValid())
        SetTarget(window);
    if (fSubmenu != NULL) {
        for (int32 index = 0; index < fSubmenu->CountItems(); index++)
            fSubmenu->ItemAt(index)->_Install(window);
    }
}

void BMenuItem::_Uninstall() {
    if (fSubmenu != NULL) {
        // A submenu open in a menu window belongs to that window's thread, which
        // may be filling or laying it out while this window quits.
        MenuWindowLocker locker(fSubmenu);
        for (int32 index = 0; index < fSubmenu->CountItems(); index++)
            fSubmenu->ItemAt(index)->_Uninstall();
    }
    BWindow* window = fWindow;
    fWindow = NULL;
    if (window == NULL || fShortcutChar == 0)
        return;
    BMenu* root = fSuper != NULL ? fSuper->_Root() : NULL;
    if (root == NULL || !shortcut_in_use(root, this, fShortcutChar, fModifiers))
        window->RemoveShortcut((uint8)fShortcutChar, fModifiers);
}
