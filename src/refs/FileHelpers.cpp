#include "FileHelpers.h"

#include <AppFileInfo.h>
#include <Entry.h>
#include <File.h>
#include <Message.h>
#include <Mime.h>
#include <Node.h>
#include <NodeInfo.h>
#include <Path.h>
#include <Roster.h>

#include <mutex>
#include <new>
#include <set>
#include <string>

#include <stdio.h>
#include <string.h>
#include <sys/stat.h>

namespace {

const char* const kFileManagerSignature = "application/x-vnd.Be-TRAK";
const char* const kDirectoryType = "application/x-vnd.Be-directory";
const char* const kSymlinkType = "application/x-vnd.Be-symlink";
const char* const kUnknownType = "application/octet-stream";

// Names of the refs stored in "supporting_apps" records. A record is copied as
// bytes wherever the message goes, so its name must outlive every copy: the
// names are kept here for the life of the process.
const char* keep_name(const char* name) {
    static std::mutex* sLock = new std::mutex;
    static std::set<std::string>* sNames = new std::set<std::string>;
    std::lock_guard<std::mutex> lock(*sLock);
    return sNames->insert(name != NULL ? name : "").first->c_str();
}

status_t add_supporting_app(BMessage* message, const entry_ref& ref, const char* signature,
                            int32 kind) {
    alignas(supporting_app) unsigned char bytes[sizeof(supporting_app)];
    // The record is built in place and never destroyed: its ref does not own
    // its name.
    supporting_app* record = new (bytes) supporting_app();
    record->ref.device = ref.device;
    record->ref.directory = ref.directory;
    record->ref.name = const_cast<char*>(keep_name(ref.name));
    snprintf(record->signature, sizeof(record->signature), "%s", signature);
    record->kind = kind;
    return message->AddData("supporting_apps", B_OBJECT_TYPE, bytes, sizeof(bytes), true, 1);
}

// The roster describes running applications only; one that is not running
// tells its signature through its file.
status_t signature_of_application(const entry_ref* appRef, char* signature) {
    app_info info;
    if (be_roster->GetAppInfo(appRef, &info) == B_OK) {
        snprintf(signature, B_MIME_TYPE_LENGTH, "%s", info.signature);
        return B_OK;
    }
    BFile file(appRef, B_READ_ONLY);
    status_t status = file.InitCheck();
    if (status != B_OK)
        return status;
    BAppFileInfo fileInfo(&file);
    status = fileInfo.InitCheck();
    if (status != B_OK)
        return status;
    return fileInfo.GetSignature(signature);
}

status_t type_of_entry(BEntry* entry, char* type, uint32* mode) {
    status_t status = entry->InitCheck();
    if (status != B_OK)
        return status;
    if (!entry->Exists())
        return B_ENTRY_NOT_FOUND;

    BNode node(entry);
    status = node.InitCheck();
    if (status != B_OK)
        return status;
    BNodeInfo info(&node);
    status = info.InitCheck();
    if (status != B_OK)
        return status;
    status_t typeStatus = info.GetType(type);
    if (mode == NULL)
        return typeStatus;

    struct stat stat;
    status = node.GetStat(&stat);
    if (status != B_OK)
        return typeStatus == B_OK ? B_OK : status;

    bool found = typeStatus == B_OK;
    if (!found) {
        const char* fallback = NULL;
        if (S_ISDIR(stat.st_mode))
            fallback = kDirectoryType;
        else if (S_ISLNK(stat.st_mode))
            fallback = kSymlinkType;
        else if (S_ISREG(stat.st_mode))
            fallback = kUnknownType;
        if (fallback != NULL) {
            strcpy(type, fallback);
            found = true;
        }
    }
    *mode = (uint32)stat.st_mode;
    return found ? B_OK : B_ERROR;
}

} // namespace

status_t get_type(const entry_ref* ref, char* type, uint32* mode, bool traverse) {
    if (ref == NULL || type == NULL)
        return B_BAD_VALUE;
    BEntry entry;
    status_t status = entry.SetTo(ref, traverse);
    if (status != B_OK)
        return status;
    return type_of_entry(&entry, type, mode);
}

status_t get_type(const char* path, char* type, uint32* mode, bool traverse) {
    if (path == NULL || type == NULL)
        return B_BAD_VALUE;
    BEntry entry;
    status_t status = entry.SetTo(path, traverse);
    if (status != B_OK)
        return status;
    return type_of_entry(&entry, type, mode);
}

status_t get_signature(const entry_ref* ref, char* signature, bool* isApplication) {
    if (ref == NULL || signature == NULL)
        return B_BAD_VALUE;
    BEntry entry;
    status_t status = entry.SetTo(ref, true);
    if (status == B_OK)
        status = entry.InitCheck();
    if (status != B_OK)
        return status;
    if (!entry.Exists())
        return B_ENTRY_NOT_FOUND;

    if (entry.IsDirectory()) {
        strcpy(signature, kFileManagerSignature);
        if (isApplication != NULL)
            *isApplication = false;
        return B_OK;
    }

    entry_ref fileRef(*ref);
    entry_ref appRef;
    status = be_roster->FindApp(&fileRef, &appRef);
    if (status != B_OK)
        return status;
    if (isApplication != NULL)
        *isApplication = appRef == *ref;

    // Read-only on purpose: write permission on Linux tells who owns a file, not
    // whether its volume is read-only, and no installed application is writable
    // by its users.
    BFile file(&appRef, B_READ_ONLY);
    status = file.InitCheck();
    if (status != B_OK)
        return status;
    BAppFileInfo info(&file);
    status = info.InitCheck();
    if (status != B_OK)
        return status;
    return info.GetSignature(signature);
}

status_t get_path(const entry_ref* ref, char* path, bool traverse) {
    if (ref == NULL || path == NULL)
        return B_BAD_VALUE;
    BEntry entry(ref, traverse);
    status_t status = entry.InitCheck();
    if (status != B_OK)
        return status;
    BPath entryPath;
    status = entry.GetPath(&entryPath);
    if (status != B_OK)
        return status;
    status = entryPath.InitCheck();
    if (status != B_OK)
        return status;
    size_t length = strlen(entryPath.Path());
    if (length >= B_PATH_NAME_LENGTH)
        return B_NAME_TOO_LONG;
    memcpy(path, entryPath.Path(), length + 1);
    return B_OK;
}

const char* ref_name(const char* path) {
    if (path == NULL)
        return NULL;
    const char* slash = strrchr(path, '/');
    return slash != NULL ? slash + 1 : path;
}

status_t get_relative_path(const entry_ref* from, const entry_ref* to, char* result) {
    if (from == NULL || to == NULL || result == NULL)
        return B_BAD_VALUE;
    result[0] = '\0';
    char fromPath[B_PATH_NAME_LENGTH];
    char toPath[B_PATH_NAME_LENGTH];
    status_t status = get_path(from, fromPath, false);
    if (status != B_OK)
        return status;
    status = get_path(to, toPath, false);
    if (status != B_OK)
        return status;

    // Characters, not components: from /boot/apps/foo to /boot/apps/fob the
    // answer is "b".
    size_t common = 0;
    while (fromPath[common] != '\0' && fromPath[common] == toPath[common])
        common++;

    size_t length = 0;
    if (fromPath[common] != '\0') {
        for (size_t index = common; fromPath[index] != '\0'; index++) {
            if (fromPath[index] != '/')
                continue;
            if (length + 3 >= B_PATH_NAME_LENGTH)
                return B_NAME_TOO_LONG;
            memcpy(result + length, "../", 4);
            length += 3;
        }
    }
    size_t rest = strlen(toPath + common);
    if (length + rest >= B_PATH_NAME_LENGTH) {
        result[0] = '\0';
        return B_NAME_TOO_LONG;
    }
    memcpy(result + length, toPath + common, rest + 1);
    return B_OK;
}

status_t find_supporting_apps(const entry_ref* ref, BMessage* message) {
    if (ref == NULL || message == NULL)
        return B_BAD_VALUE;

    char preferred[B_MIME_TYPE_LENGTH] = "";
    entry_ref fileRef(*ref);
    entry_ref appRef;
    if (be_roster->FindApp(&fileRef, &appRef) == B_OK &&
        signature_of_application(&appRef, preferred) == B_OK)
        add_supporting_app(message, appRef, preferred, kPreferredApp);

    char type[B_MIME_TYPE_LENGTH];
    status_t status = get_type(ref, type, NULL, true);
    if (status != B_OK)
        return status;
    BMimeType mimeType;
    status = mimeType.SetTo(type);
    if (status != B_OK)
        return status;

    BMessage scratch;
    const char* signature;
    if (mimeType.GetSupportingApps(&scratch) == B_OK) {
        int32 fullTypeCount;
        if (scratch.FindInt32("be:sub", &fullTypeCount) != B_OK)
            fullTypeCount = 0;
        for (int32 index = 0; scratch.FindString("applications", index, &signature) == B_OK;
             index++) {
            if (signature == NULL || strcmp(signature, preferred) == 0)
                continue;
            entry_ref supporter;
            if (be_roster->FindApp(signature, &supporter) != B_OK)
                continue;
            // The last supporter of the full type is filed with the super type's;
            // the grouping of the Open With menu has always looked this way.
            int32 kind = index + 1 < fullTypeCount ? kFullTypeSupporter : kSuperTypeSupporter;
            add_supporting_app(message, supporter, signature, kind);
        }
    }

    scratch.MakeEmpty();
    if (BMimeType::GetWildcardApps(&scratch) == B_OK) {
        for (int32 index = 0; scratch.FindString("applications", index, &signature) == B_OK;
             index++) {
            if (signature == NULL || strcmp(signature, preferred) == 0)
                continue;
            entry_ref supporter;
            if (be_roster->FindApp(signature, &supporter) != B_OK)
                continue;
            add_supporting_app(message, supporter, signature, kAnyTypeSupporter);
        }
    }

    message->RemoveName("applications");
    return B_OK;
}
