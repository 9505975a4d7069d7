#include "DirectoryMenu.h"

#include "FileMenuItem.h"

#include <Font.h>
#include <MenuItem.h>
#include <Message.h>
#include <Window.h>

namespace {

BMenuItem* disabled_item(const char* label) {
    BMenuItem* item = new BMenuItem(label, NULL);
    item->SetEnabled(false);
    return item;
}

// A menu for the folder that ref names, links followed; NULL for anything else.
DirectoryMenu* folder_menu(const entry_ref* ref) {
    BEntry entry(ref, true);
    if (entry.InitCheck() != B_OK || !entry.Exists() || !entry.IsDirectory())
        return NULL;
    BDirectory folder(&entry);
    return new DirectoryMenu(&folder, B_ITEMS_IN_COLUMN);
}

// Every item of a hierarchy sends the top item's message about its own entry.
BMessage* message_for(const entry_ref* ref, const BMessage* message) {
    if (message == NULL)
        return NULL;
    BMessage* copy = new BMessage(*message);
    if (copy->ReplaceRef("entries", ref) != B_OK)
        copy->AddRef("entries", ref);
    return copy;
}

} // namespace

DirectoryMenu::DirectoryMenu(const BDirectory* directory, menu_layout layout)
    : BMenu("", layout), fRebuild(true) {
    BEntry entry;
    if (directory != NULL && directory->InitCheck() == B_OK &&
        directory->GetEntry(&entry) == B_OK && entry.Exists())
        entry.GetRef(&fFolder);
    SetTriggersEnabled(true);
    SetRadioMode(false);
    SetLabelFromMarked(false);
    SetFont(be_plain_font);
}

DirectoryMenu::~DirectoryMenu() {}

FileMenuItem* DirectoryMenu::StartHierarchy(const entry_ref* ref, BMessage* message) {
    if (ref == NULL)
        return NULL;
    DirectoryMenu* menu = folder_menu(ref);
    BMessage* copy = message_for(ref, message);
    if (menu != NULL)
        return new FileMenuItem(ref, menu, copy);
    return new FileMenuItem(ref, copy);
}

FileMenuItem* DirectoryMenu::StartHierarchy(const char* path, BMessage* message) {
    if (path == NULL)
        return NULL;
    entry_ref ref;
    if (get_ref_for_path(path, &ref) != B_OK)
        return NULL;
    DirectoryMenu* menu = folder_menu(&ref);
    BMessage* copy = message_for(&ref, message);
    if (menu != NULL)
        return new FileMenuItem(path, menu, copy);
    return new FileMenuItem(path, copy);
}

bool DirectoryMenu::AddDynamicItem(add_state state) {
    switch (state) {
    case B_INITIAL_ADD:
        if (fRebuild) {
            RemoveAllItems();
            fReader.Unset();
        }
        if (CountItems() == 0 && fReader.InitCheck() != B_OK) {
            // A folder that cannot be opened shows its error on the first step.
            fReader.SetTo(&fFolder);
            return true;
        }
        // A submenu closed while it was being filled goes on where it stopped.
        return CountItems() == 0 || fReader.InitCheck() == B_OK;

    case B_PROCESSING:
        return AddNextItem();

    case B_ABORT:
        return false;
    }
    return false;
}

bool DirectoryMenu::AddNextItem() {
    entry_ref ref;
    status_t status = fReader.GetNextRef(&ref);
    if (status == B_OK) {
        BMenuItem* superitem = Superitem();
        FileMenuItem* item = StartHierarchy(&ref, superitem != NULL ? superitem->Message() : NULL);
        if (item == NULL)
            return true;
        // Folders found while filling are filled once and then kept, until
        // this menu is filled again and deletes them.
        if (DirectoryMenu* submenu = dynamic_cast<DirectoryMenu*>(item->Submenu()))
            submenu->fRebuild = false;
        if (superitem != NULL)
            item->SetTarget(superitem->Messenger());
        AddItem(item);
        return true;
    }

    if (status == B_ENTRY_NOT_FOUND) {
        if (CountItems() == 0)
            AddItem(disabled_item("Empty Folder"));
    } else {
        AddItem(disabled_item("Internal Error Occurred"));
    }
    fReader.Unset();
    return false;
}

status_t DirectoryMenu::SetDirectory(const BDirectory* directory) {
    bool building = fReader.InitCheck() == B_OK;
    if (building)
        RemoveAllItems();
    else if (Window() != NULL)
        return B_INTERRUPTED;

    BEntry entry;
    if (directory == NULL || directory->InitCheck() != B_OK ||
        directory->GetEntry(&entry) != B_OK || !entry.Exists())
        return B_ENTRY_NOT_FOUND;
    status_t status = entry.GetRef(&fFolder);
    if (status != B_OK)
        return status;
    if (building)
        return fReader.SetTo(&fFolder);
    return B_OK;
}

status_t DirectoryMenu::GetDirectory(BDirectory* directory) const {
    if (directory == NULL)
        return B_BAD_VALUE;
    return directory->SetTo(&fFolder);
}

void DirectoryMenu::RemoveAllItems() {
    RemoveItems(0, CountItems(), true);
}
