#include "OpenWithMenu.h"

#include "FileHelpers.h"
#include "FileMenuItem.h"

#include <MenuItem.h>
#include <Window.h>

#include <string.h>

namespace {

const char* const kSupportingApps = "supporting_apps";

BMenuItem* disabled_item(const char* label) {
    BMenuItem* item = new BMenuItem(label, NULL);
    item->SetEnabled(false);
    return item;
}

// What the menu reads of one record of find_supporting_apps.
struct application_record {
    entry_ref ref;
    char signature[B_MIME_TYPE_LENGTH];
    int32 kind;
};

// False for a missing or short record. The record's bytes are copied into
// storage of their own: a record is never destroyed as an object (its ref's
// name belongs to the process), so the ref is copied from it, never moved.
bool read_record(const BMessage& message, int32 index, application_record* record) {
    const void* data = NULL;
    ssize_t size = 0;
    if (message.FindData(kSupportingApps, B_OBJECT_TYPE, index, &data, &size) != B_OK)
        return false;
    if (data == NULL || size < (ssize_t)sizeof(supporting_app))
        return false;
    alignas(supporting_app) unsigned char bytes[sizeof(supporting_app)];
    memcpy(bytes, data, sizeof(supporting_app));
    const supporting_app* app = reinterpret_cast<const supporting_app*>(bytes);
    record->ref = app->ref;
    memcpy(record->signature, app->signature, B_MIME_TYPE_LENGTH);
    record->signature[B_MIME_TYPE_LENGTH - 1] = '\0';
    record->kind = app->kind;
    return true;
}

} // namespace

OpenWithMenu::OpenWithMenu(const entry_ref* ref, BMessage* message, menu_layout layout)
    : BMenu(ref != NULL && ref->name != NULL ? ref->name : "", B_ITEMS_IN_COLUMN), BInvoker() {
    if (ref != NULL)
        fFile = *ref;
    SetMessage(message);
}

OpenWithMenu::~OpenWithMenu() {}

status_t OpenWithMenu::SetEntryRef(const entry_ref* ref) {
    if (Window() != NULL)
        return B_INTERRUPTED;
    if (ref == NULL)
        return B_BAD_VALUE;
    fFile = *ref;
    if (fSupportingApps.HasData(kSupportingApps, B_OBJECT_TYPE)) {
        fSupportingApps.MakeEmpty();
        _RemoveAllItems();
        if (find_supporting_apps(&fFile, &fSupportingApps) != B_OK)
            AddItem(disabled_item("Internal Error Occurred"));
    }
    return B_OK;
}

status_t OpenWithMenu::SetMessage(BMessage* message) {
    if (message != NULL) {
        message->AddString("applications", "");
        message->AddRef("refs", &fFile);
    }
    return BInvoker::SetMessage(message);
}

const entry_ref* OpenWithMenu::EntryRef() const {
    return &fFile;
}

void OpenWithMenu::AttachedToWindow() {
    if (BMenuItem* superitem = Superitem())
        SetTarget(superitem->Messenger());
    BMenu::AttachedToWindow();
}

bool OpenWithMenu::AddDynamicItem(add_state state) {
    switch (state) {
    case B_INITIAL_ADD:
        _RemoveAllItems();
        fSupportingApps.MakeEmpty();
        if (find_supporting_apps(&fFile, &fSupportingApps) == B_OK)
            return true;
        fSupportingApps.MakeEmpty();
        AddItem(disabled_item("Internal Error Occurred"));
        return false;

    case B_PROCESSING:
        _AddApplications();
        fSupportingApps.MakeEmpty();
        return false;

    case B_ABORT:
        fSupportingApps.MakeEmpty();
        _RemoveAllItems();
        return false;
    }
    return false;
}

void OpenWithMenu::_AddApplications() {
    application_record record;
    int32 previousKind = 0;
    int32 count = 0;
    for (int32 index = 0; read_record(fSupportingApps, index, &record); index++) {
        if (count > 0 && record.kind != previousKind)
            AddSeparatorItem();
        previousKind = record.kind;

        BMessage* message = NULL;
        if (Message() != NULL) {
            message = new BMessage(*Message());
            if (message->ReplaceString("applications", record.signature) != B_OK)
                message->AddString("applications", record.signature);
            if (message->ReplaceRef("refs", &record.ref) != B_OK)
                message->AddRef("refs", &record.ref);
        }
        FileMenuItem* item = new FileMenuItem(&record.ref, message);
        item->SetTarget(Messenger());
        AddItem(item);
        count++;
    }
    if (count == 0)
        AddItem(disabled_item("No Apps"));
}

void OpenWithMenu::_RemoveAllItems() {
    RemoveItems(0, CountItems(), true);
}
