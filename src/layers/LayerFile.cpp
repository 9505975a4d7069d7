#include "LayerFile.h"

#include "FileHelpers.h"
#include "Globals.h"
#include "Settings.h"

#include <Directory.h>
#include <Entry.h>
#include <File.h>
#include <FindDirectory.h>
#include <Message.h>
#include <Mime.h>
#include <StorageDefs.h>
#include <fs_info.h>

#include <limits.h>
#include <new>
#include <stdio.h>
#include <string.h>

namespace {

const char* const kTypeAttribute = "BEOS:TYPE";
const char* const kMiniIconAttribute = "BEOS:M:STD_ICON";
const char* const kLargeIconAttribute = "BEOS:L:STD_ICON";
// The type with its NUL, compared over all of its bytes.
const char kLayerType[] = "text/plain";

// A named layer is a leaf of the layers folder: a name that would reach
// elsewhere is refused rather than looked up.
bool is_leaf_name(const char* name) {
    return name[0] != '\0' && strchr(name, '/') == NULL && strcmp(name, ".") != 0 &&
           strcmp(name, "..") != 0;
}

// Sets file to the layer's file for writing, creating a layer file (with its
// attributes) when there is none yet.
status_t open_for_writing(BDirectory* layersFolder, const char* name, bool icon, BFile* file) {
    if (name[0] == '\0') {
        entry_ref ref;
        status_t status = get_settings(gr_targets_name, &ref);
        if (status != B_OK)
            return status;
        status = file->SetTo(&ref, B_WRITE_ONLY | B_CREATE_FILE);
        if (status != B_OK)
            return status;
        return file->InitCheck();
    }

    if (!is_leaf_name(name))
        return B_BAD_VALUE;
    BEntry entry;
    status_t status = layersFolder->FindEntry(name, &entry, true);
    if (status == B_OK)
        status = file->SetTo(&entry, B_WRITE_ONLY | B_CREATE_FILE);
    if (status == B_ENTRY_NOT_FOUND) {
        status = layersFolder->CreateFile(name, file, false);
        write_layer_attr(file, icon);
    }
    if (status != B_OK)
        return status;
    return file->InitCheck();
}

status_t open_for_reading(BDirectory* layersFolder, const char* name, BFile* file) {
    status_t status;
    if (name[0] == '\0') {
        entry_ref ref;
        status = get_settings(gr_targets_name, &ref);
        if (status != B_OK)
            return status;
        status = file->SetTo(&ref, B_READ_ONLY);
    } else {
        if (!is_leaf_name(name))
            return B_BAD_VALUE;
        BEntry entry;
        status = layersFolder->FindEntry(name, &entry, true);
        if (status != B_OK)
            return status;
        status = file->SetTo(&entry, B_READ_ONLY);
    }
    if (status != B_OK)
        return status;
    return file->InitCheck();
}

status_t check_layer_type(BFile* file) {
    char type[B_MIME_TYPE_LENGTH];
    ssize_t size = file->ReadAttr(kTypeAttribute, B_MIME_TYPE, 0, type, sizeof(type));
    if (size < 0)
        return (status_t)size;
    if ((size_t)size < sizeof(kLayerType) || memcmp(type, kLayerType, sizeof(kLayerType)) != 0)
        return B_BAD_VALUE;
    return B_OK;
}

// Holds the node lock of a file for as long as it lives.
class NodeLock {
public:
    explicit NodeLock(BFile* file) : fFile(file), fStatus(file->Lock()) {}
    ~NodeLock() {
        if (fStatus == B_OK)
            fFile->Unlock();
    }
    status_t Status() const { return fStatus; }

private:
    BFile* fFile;
    status_t fStatus;
};

} // namespace

bool is_layer_file(const entry_ref* ref) {
    if (ref == NULL)
        return false;
    char type[B_MIME_TYPE_LENGTH];
    if (get_type(ref, type, NULL, true) != B_OK || strcmp(type, kLayerType) != 0)
        return false;

    entry_ref layersRef;
    if (get_settings(gr_layers_name, &layersRef) != B_OK)
        return false;
    BEntry entry(ref);
    BEntry parent;
    entry_ref parentRef;
    if (entry.InitCheck() != B_OK || entry.GetParent(&parent) != B_OK ||
        parent.GetRef(&parentRef) != B_OK)
        return false;
    return parentRef == layersRef;
}

bool is_layer_file(const char* path) {
    if (path == NULL)
        return false;
    char folder[B_PATH_NAME_LENGTH];
    if (find_user_settings_directory(folder, sizeof(folder)) != B_OK)
        return false;
    size_t length = strlen(folder);
    int written =
        snprintf(folder + length, sizeof(folder) - length, "/%s/%s/", gr_app_name, gr_layers_name);
    if (written < 0 || (size_t)written >= sizeof(folder) - length)
        return false;
    if (strncmp(path, folder, strlen(folder)) != 0)
        return false;

    char type[B_MIME_TYPE_LENGTH];
    return get_type(path, type, NULL, true) == B_OK && strcmp(type, kLayerType) == 0;
}

status_t write_layer_attr(BFile* file, bool icon) {
    if (file == NULL)
        return B_BAD_VALUE;
    ssize_t result =
        file->WriteAttr(kTypeAttribute, B_MIME_TYPE, 0, kLayerType, sizeof(kLayerType));
    if (icon) {
        result = file->WriteAttr(kMiniIconAttribute, B_COLOR_8_BIT_TYPE, 0, gr_mini_icon,
                                 sizeof(gr_mini_icon));
        result = file->WriteAttr(kLargeIconAttribute, B_COLOR_8_BIT_TYPE, 0, gr_large_icon,
                                 sizeof(gr_large_icon));
    }
    return result < 0 ? (status_t)result : B_OK;
}

status_t write_layer_file(BDirectory* layersFolder, const char* name, const BMessage* request) {
    if (layersFolder == NULL || name == NULL || request == NULL)
        return B_BAD_VALUE;

    bool icon;
    if (request->FindBool("icon", &icon) != B_OK)
        icon = false;

    BFile file;
    status_t status = open_for_writing(layersFolder, name, icon, &file);
    if (status != B_OK)
        return status;

    NodeLock lock(&file);
    if (lock.Status() != B_OK)
        return lock.Status();

    off_t position = 0;
    const char* path;
    for (int32 index = 0; request->FindString("paths", index, &path) == B_OK; index++) {
        if (path == NULL)
            continue;
        size_t length = strlen(path);
        ssize_t written = file.WriteAt(position, path, length);
        if (written < 0)
            return (status_t)written;
        position += written;
        written = file.WriteAt(position, "\n", 1);
        if (written < 0)
            return (status_t)written;
        position += written;
    }
    // An earlier, longer version must not survive behind the new end.
    return file.SetSize(position);
}

status_t read_layer_file(BDirectory* layersFolder, const char* name, char** text, size_t* length) {
    if (layersFolder == NULL || name == NULL || text == NULL || length == NULL)
        return B_BAD_VALUE;

    BFile file;
    status_t status = open_for_reading(layersFolder, name, &file);
    if (status != B_OK)
        return status;

    NodeLock lock(&file);
    if (lock.Status() != B_OK)
        return lock.Status();

    status = check_layer_type(&file);
    if (status != B_OK)
        return status;

    off_t size;
    status = file.GetSize(&size);
    if (status != B_OK)
        return status;
    if (size < 0 || (uint64)size >= (uint64)SSIZE_MAX)
        return B_BAD_VALUE;

    char* buffer = new (std::nothrow) char[(size_t)size + 1];
    if (buffer == NULL)
        return B_NO_MEMORY;
    // One read for the whole body; the lines are cut out of this buffer in place.
    ssize_t bytesRead = file.Read(buffer, (size_t)size);
    if (bytesRead < 0) {
        delete[] buffer;
        return (status_t)bytesRead;
    }
    buffer[bytesRead] = '\0';
    *text = buffer;
    *length = (size_t)bytesRead;
    return B_OK;
}

char* next_layer_line(char** cursor, char* end) {
    if (cursor == NULL || *cursor == NULL)
        return NULL;
    char* start = *cursor;
    while (start < end && *start == '\n')
        start++;
    if (start >= end) {
        *cursor = end;
        return NULL;
    }
    char* stop = (char*)memchr(start, '\n', (size_t)(end - start));
    if (stop == NULL) {
        // The last line may lack its line end; the buffer's NUL ends it.
        *cursor = end;
    } else {
        *stop = '\0';
        *cursor = stop + 1;
    }
    return start;
}

status_t delete_layer_file(BDirectory* layersFolder, const char* name) {
    if (layersFolder == NULL || name == NULL)
        return B_BAD_VALUE;
    if (!is_leaf_name(name))
        return B_BAD_VALUE;

    BEntry entry;
    status_t status = layersFolder->FindEntry(name, &entry, false);
    if (status != B_OK)
        return status;

    char trashPath[B_PATH_NAME_LENGTH];
    status = find_directory(B_TRASH_DIRECTORY, dev_for_path("/boot"), true, trashPath,
                            sizeof(trashPath));
    BDirectory trash;
    if (status == B_OK)
        status = trash.SetTo(trashPath);
    if (status == B_OK)
        status = trash.InitCheck();
    if (status == B_OK) {
        status = entry.MoveTo(&trash, name, false);
        char freeName[B_FILE_NAME_LENGTH];
        for (int32 counter = 1; status == B_FILE_EXISTS; counter++) {
            int written = snprintf(freeName, sizeof(freeName), "%s %d", name, (int)counter);
            if (written < 0 || (size_t)written >= sizeof(freeName))
                break;
            status = entry.MoveTo(&trash, freeName, false);
        }
    }
    if (status != B_OK)
        status = entry.Remove();
    return status;
}
