#include "Settings.h"

#include "Globals.h"
#include "LayerFile.h"

#include <Alert.h>
#include <Directory.h>
#include <Entry.h>
#include <File.h>
#include <FindDirectory.h>
#include <InterfaceDefs.h>
#include <Message.h>
#include <Node.h>
#include <StorageDefs.h>
#include <fs_info.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

namespace {

const int32 kDefaultLocation = 3;
const int32 kDefaultDirection = 1;
const int32 kDefaultForInvoke = 2;
const int32 kDefaultForExpand = 1;
const int32 kDefaultFlags = 0x1a4;
const int32 kDefaultWhich = 16;
const uint32 kDefaultWorkspaces = 0xffffffff;
const int32 kDefaultShelfSize = 1;
// A file written before the shelf had sizes reads as the largest step.
const int32 kMissingShelfSize = 4;

// The flags whose change needs a new layout rather than a repaint.
const int32 kLayoutFlags = kDrawLabelFlag | kShelfFlag;

char* copy_string(const char* text) {
    size_t length = strlen(text);
    char* copy = new char[length + 1];
    memcpy(copy, text, length + 1);
    return copy;
}

// Composes "<settings directory>/Glimrow[/<name>]"; the member is left out when
// it is the folder itself.
status_t compose_settings_path(const char* name, char* path, size_t size) {
    status_t status = find_user_settings_directory(path, size);
    if (status != B_OK)
        return status;
    size_t length = strlen(path);
    int written;
    if (strcmp(name, gr_app_name) != 0)
        written = snprintf(path + length, size - length, "/%s/%s", gr_app_name, name);
    else
        written = snprintf(path + length, size - length, "/%s", gr_app_name);
    if (written < 0 || (size_t)written >= size - length)
        return B_NAME_TOO_LONG;
    return B_OK;
}

status_t find_or_create_folder(BDirectory* parent, const char* name, BDirectory* folder) {
    BEntry entry;
    if (parent->FindEntry(name, &entry, true) != B_OK)
        return parent->CreateDirectory(name, folder);
    status_t status = folder->SetTo(&entry);
    if (status != B_OK)
        return status;
    return folder->InitCheck();
}

void format_failure(char* failureText, size_t size, const char* what, status_t error) {
    snprintf(failureText, size, "Glimrow Error: \n\tFailed to get %s.\n\t%s", what,
             strerror(error));
}

} // namespace

settings::settings()
    : location(kDefaultLocation), direction(kDefaultDirection), forInvoke(kDefaultForInvoke),
      forExpand(kDefaultForExpand), flags(kDefaultFlags), which(kDefaultWhich),
      workspaces(kDefaultWorkspaces), shelfSize(kDefaultShelfSize) {
    for (int32 index = 0; index < kLayerNameCount; index++)
        layerName[index] = copy_string("");
}

settings::~settings() {
    for (int32 index = 0; index < kLayerNameCount; index++)
        delete[] layerName[index];
}

status_t settings::archive_to(BMessage* message) const {
    if (message == NULL)
        return B_BAD_VALUE;

    const struct {
        const char* key;
        int32 value;
    } numbers[] = {
        {"location", location},
        {"direction", direction},
        {"forInvoke", forInvoke},
        {"forExpand", forExpand},
        {"flags", flags},
        {"which", which},
        {"workspaces", (int32)workspaces},
        {"shelfSize", shelfSize},
    };
    for (const auto& number : numbers) {
        status_t status = message->AddInt32(number.key, number.value);
        if (status != B_OK)
            return status;
    }
    for (int32 index = 0; index < kLayerNameCount; index++) {
        status_t status = message->AddString("layerName", layerName[index]);
        if (status != B_OK)
            return status;
    }
    return B_OK;
}

status_t settings::set_to(BMessage* message) {
    if (message == NULL)
        return B_BAD_VALUE;

    int32 workspaceBits = 0;
    const struct {
        const char* key;
        int32* field;
    } required[] = {
        {"location", &location},        {"direction", &direction}, {"forInvoke", &forInvoke},
        {"forExpand", &forExpand},      {"flags", &flags},         {"which", &which},
        {"workspaces", &workspaceBits},
    };
    for (const auto& key : required) {
        int32 value;
        status_t status = message->FindInt32(key.key, &value);
        if (status != B_OK)
            return status;
        if (key.field == &workspaceBits)
            workspaces = (uint32)value;
        else
            *key.field = value;
    }

    int32 size;
    if (message->FindInt32("shelfSize", &size) == B_OK)
        shelfSize = size;
    else
        shelfSize = kMissingShelfSize;

    for (int32 index = 0; index < kLayerNameCount; index++) {
        const char* name;
        if (message->FindString("layerName", index, &name) == B_OK && name != NULL)
            _SetName(index, name);
    }
    return B_OK;
}

void settings::set_to(const settings& other) {
    if (&other == this)
        return;
    location = other.location;
    direction = other.direction;
    forInvoke = other.forInvoke;
    forExpand = other.forExpand;
    flags = other.flags;
    which = other.which;
    workspaces = other.workspaces;
    shelfSize = other.shelfSize;
    for (int32 index = 0; index < kLayerNameCount; index++)
        _SetName(index, other.layerName[index]);
}

int32 settings::compare(const settings* other, bool allWorkspaces) const {
    if (other == NULL)
        return 5;

    if (direction != other->direction)
        return 5;

    if (allWorkspaces) {
        if (workspaces != other->workspaces)
            return 4;
        for (int32 index = 0; index < kLayerNameCount; index++) {
            if (strcmp(layerName[index], other->layerName[index]) != 0)
                return 3;
        }
    } else {
        int32 workspace = current_workspace();
        if (workspace >= 0 && workspace < kLayerNameCount) {
            uint32 bit = (uint32)1 << workspace;
            if ((workspaces & bit) != (other->workspaces & bit))
                return 4;
            if (strcmp(layerName[workspace], other->layerName[workspace]) != 0)
                return 3;
        }
    }

    if (which != other->which || ((flags ^ other->flags) & kLayoutFlags) != 0 ||
        location != other->location || shelfSize != other->shelfSize)
        return 2;
    if (forInvoke != other->forInvoke)
        return 1;
    if (forExpand != other->forExpand || flags != other->flags)
        return 1;
    return 0;
}

void settings::_SetName(int32 index, const char* name) {
    char* copy = copy_string(name);
    delete[] layerName[index];
    layerName[index] = copy;
}

// #pragma mark - The settings folder

status_t find_user_settings_directory(char* path, size_t size) {
    if (path == NULL || size == 0)
        return B_BAD_VALUE;
    // Be programs name the boot volume; on this system every volume shares one
    // settings directory, so the device only says which one we mean. A fresh
    // home may not have the directory yet: it is made, as the desktop expects.
    dev_t volume = dev_for_path("/boot");
    return find_directory(B_USER_SETTINGS_DIRECTORY, volume, true, path, (int32)size);
}

status_t check_settings_folders(char* failureText, size_t size) {
    char path[B_PATH_NAME_LENGTH];
    status_t status = find_user_settings_directory(path, sizeof(path));
    BDirectory settingsFolder;
    if (status == B_OK)
        status = settingsFolder.SetTo(path);
    if (status == B_OK)
        status = settingsFolder.InitCheck();
    if (status != B_OK) {
        format_failure(failureText, size, "the user settings directory", status);
        return status;
    }

    BDirectory appFolder;
    status = find_or_create_folder(&settingsFolder, gr_app_name, &appFolder);
    if (status != B_OK) {
        format_failure(failureText, size, "a Glimrow settings directory", status);
        return status;
    }

    BDirectory layersFolder;
    status = find_or_create_folder(&appFolder, gr_layers_name, &layersFolder);
    if (status != B_OK) {
        format_failure(failureText, size, "a Glimrow's Layers directory", status);
        return status;
    }

    // Opened without erasing: an existing targets list is kept as it is.
    BFile targets(&appFolder, gr_targets_name, B_READ_WRITE | B_CREATE_FILE);
    status = targets.InitCheck();
    if (status != B_OK) {
        format_failure(failureText, size, "a targets file", status);
        return status;
    }
    write_layer_attr(&targets, false);
    return B_OK;
}

void init_settings() {
    char text[B_PATH_NAME_LENGTH + 256];
    status_t status = check_settings_folders(text, sizeof(text));
    if (status == B_OK)
        return;

    BAlert* alert =
        new BAlert("Glimrow Error", text, "Exit", NULL, NULL, B_WIDTH_AS_USUAL, B_STOP_ALERT);
    alert->Go();
    exit(1);
}

status_t get_settings_node(BNode* node) {
    if (node == NULL)
        return B_BAD_VALUE;
    char path[B_PATH_NAME_LENGTH];
    status_t status = compose_settings_path(gr_settings_name, path, sizeof(path));
    if (status != B_OK)
        return status;
    entry_ref ref;
    status = get_ref_for_path(path, &ref);
    if (status != B_OK)
        return status;
    status = node->SetTo(&ref);
    if (status != B_OK)
        return status;
    return node->InitCheck();
}

status_t get_settings(const char* name, entry_ref* ref) {
    if (name == NULL || ref == NULL)
        return B_BAD_VALUE;
    char path[B_PATH_NAME_LENGTH];
    status_t status = compose_settings_path(name, path, sizeof(path));
    if (status != B_OK)
        return status;
    return get_ref_for_path(path, ref);
}

status_t read_settings_file(settings* record) {
    if (record == NULL)
        return B_BAD_VALUE;
    entry_ref ref;
    status_t status = get_settings(gr_settings_name, &ref);
    if (status != B_OK)
        return status;
    BFile file(&ref, B_READ_ONLY);
    status = file.InitCheck();
    if (status != B_OK)
        return status;
    BMessage archive;
    status = archive.Unflatten(&file);
    if (status != B_OK)
        return status;
    return record->set_to(&archive);
}

status_t write_settings_file(const settings* record) {
    if (record == NULL)
        return B_BAD_VALUE;
    entry_ref ref;
    status_t status = get_settings(gr_settings_name, &ref);
    if (status != B_OK)
        return status;
    BFile file(&ref, B_WRITE_ONLY | B_CREATE_FILE);
    status = file.InitCheck();
    if (status != B_OK)
        return status;
    BMessage archive;
    status = record->archive_to(&archive);
    if (status != B_OK)
        return status;
    status = archive.Flatten(&file);
    if (status != B_OK)
        return status;
    // A shorter record must not leave the tail of a longer one behind.
    off_t end = file.Position();
    if (end < 0)
        return (status_t)end;
    return file.SetSize(end);
}
