#include <AppFileInfo.h>

#include "AppDatabase.h"
#include "ContentType.h"
#include "DesktopEntry.h"
#include "StorageAccess.h"

#include <DataIO.h>
#include <File.h>
#include <Message.h>
#include <MimeType.h>

#include <string.h>
#include <strings.h>

#include <vector>

using namespace BPrivate;

namespace {

const char kSignatureAttribute[] = "BEOS:APP_SIG";
const char kFlagsAttribute[] = "BEOS:APP_FLAGS";
const char kFileTypesAttribute[] = "BEOS:FILE_TYPES";
const type_code kAppFlagsType = 'APPF';
// A flattened message of supported types is small; anything bigger is not one.
const off_t kMaxFileTypesSize = 64 * 1024;

bool is_desktop_file(const char* path) {
    size_t length = path != nullptr ? strlen(path) : 0;
    return length > 8 && strcmp(path + length - 8, ".desktop") == 0;
}

} // namespace

BAppFileInfo::BAppFileInfo() : fFile(nullptr) {}

BAppFileInfo::BAppFileInfo(BFile* file) : fFile(nullptr) {
    SetTo(file);
}

BAppFileInfo::~BAppFileInfo() {}

status_t BAppFileInfo::SetTo(BFile* file) {
    fFile = nullptr;
    status_t status = BNodeInfo::SetTo(file);
    if (status == B_OK)
        fFile = file;
    return status;
}

status_t BAppFileInfo::GetSignature(char* signature) const {
    if (InitCheck() != B_OK)
        return InitCheck();
    if (signature == nullptr)
        return B_BAD_VALUE;

    attr_info info;
    status_t status = fFile->GetAttrInfo(kSignatureAttribute, &info);
    if (status == B_OK && info.size > 0 && info.size <= B_MIME_TYPE_LENGTH) {
        char buffer[B_MIME_TYPE_LENGTH + 1];
        ssize_t bytes =
            fFile->ReadAttr(kSignatureAttribute, info.type, 0, buffer, size_t(info.size));
        if (bytes == info.size) {
            buffer[bytes] = '\0';
            if (BMimeType::IsValid(buffer)) {
                strcpy(signature, buffer);
                return B_OK;
            }
        }
    }

    // No signature of its own: a desktop entry or an executable has a derived one.
    const char* path = NodeAccess::Path(*fFile);
    if (path == nullptr)
        return B_ENTRY_NOT_FOUND;
    std::string derived;
    status = AppDatabase::SignatureFor(path, &derived);
    if (status == B_BAD_VALUE)
        return B_ENTRY_NOT_FOUND;
    if (status != B_OK)
        return status;
    strcpy(signature, derived.c_str());
    return B_OK;
}

status_t BAppFileInfo::SetSignature(const char* signature) {
    if (InitCheck() != B_OK)
        return InitCheck();
    if (signature == nullptr) {
        status_t status = fFile->RemoveAttr(kSignatureAttribute);
        return status == B_ENTRY_NOT_FOUND ? B_OK : status;
    }
    if (!BMimeType::IsValid(signature))
        return B_BAD_VALUE;
    size_t length = strlen(signature) + 1;
    ssize_t written =
        fFile->WriteAttr(kSignatureAttribute, B_MIME_STRING_TYPE, 0, signature, length);
    if (written < 0)
        return status_t(written);
    return size_t(written) == length ? B_OK : B_ERROR;
}

status_t BAppFileInfo::GetAppFlags(uint32* flags) const {
    if (InitCheck() != B_OK)
        return InitCheck();
    if (flags == nullptr)
        return B_BAD_VALUE;
    attr_info info;
    status_t status = fFile->GetAttrInfo(kFlagsAttribute, &info);
    if (status == B_NOT_SUPPORTED)
        return B_ENTRY_NOT_FOUND;
    if (status != B_OK)
        return status;
    if (info.size != off_t(sizeof(uint32)))
        return B_BAD_DATA;
    uint32 value = 0;
    ssize_t bytes = fFile->ReadAttr(kFlagsAttribute, info.type, 0, &value, sizeof(value));
    if (bytes < 0)
        return status_t(bytes);
    if (bytes != sizeof(value))
        return B_BAD_DATA;
    *flags = value;
    return B_OK;
}

status_t BAppFileInfo::SetAppFlags(uint32 flags) {
    if (InitCheck() != B_OK)
        return InitCheck();
    ssize_t written = fFile->WriteAttr(kFlagsAttribute, kAppFlagsType, 0, &flags, sizeof(flags));
    if (written < 0)
        return status_t(written);
    return written == sizeof(flags) ? B_OK : B_ERROR;
}

status_t BAppFileInfo::GetSupportedTypes(BMessage* types) const {
    if (InitCheck() != B_OK)
        return InitCheck();
    if (types == nullptr)
        return B_BAD_VALUE;

    std::vector<std::string> found;
    const char* path = NodeAccess::Path(*fFile);
    if (is_desktop_file(path)) {
        DesktopEntry entry;
        if (entry.SetTo(path) == B_OK && entry.IsApplication())
            found = entry.List("MimeType");
    }
    if (found.empty()) {
        attr_info info;
        if (fFile->GetAttrInfo(kFileTypesAttribute, &info) == B_OK && info.size > 0 &&
            info.size <= kMaxFileTypesSize) {
            std::vector<char> flat(size_t(info.size));
            BMessage stored;
            BMemoryIO stream(flat.data(), flat.size());
            if (fFile->ReadAttr(kFileTypesAttribute, info.type, 0, flat.data(), flat.size()) ==
                    info.size &&
                stored.Unflatten(&stream) == B_OK) {
                const char* type = nullptr;
                for (int32 i = 0; stored.FindString("types", i, &type) == B_OK; i++)
                    found.push_back(type);
            }
        }
    }
    if (found.empty())
        return B_ENTRY_NOT_FOUND;
    for (const std::string& type : found) {
        if (!BMimeType::IsValid(type.c_str()))
            continue;
        status_t status = types->AddString("types", type.c_str());
        if (status != B_OK)
            return status;
    }
    return B_OK;
}

bool BAppFileInfo::IsSupportedType(const char* type) const {
    if (type == nullptr || !BMimeType::IsValid(type))
        return false;
    BMessage types;
    if (GetSupportedTypes(&types) != B_OK)
        return false;
    BMimeType wanted(type);
    const char* supported = nullptr;
    for (int32 i = 0; types.FindString("types", i, &supported) == B_OK; i++) {
        BMimeType candidate(supported);
        if (strcmp(supported, "application/octet-stream") == 0 || candidate.Contains(&wanted) ||
            type_is_a(type, supported))
            return true;
    }
    return false;
}
