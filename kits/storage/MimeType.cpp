// BMimeType over the shared MIME-info database and the freedesktop application
// associations.
#include <MimeType.h>

#include "AppDatabase.h"
#include "ContentType.h"
#include "IconLoader.h"

#include <Bitmap.h>
#include <Entry.h>
#include <Message.h>
#include <Node.h>
#include <NodeInfo.h>
#include <Path.h>

#include <stdlib.h>
#include <string.h>
#include <strings.h>

using namespace BPrivate;

const char* B_APP_MIME_TYPE = "application/x-vnd.Be-elfexecutable";
const char* B_PEF_APP_MIME_TYPE = "application/x-be-executable";
const char* B_PE_APP_MIME_TYPE = "application/x-vnd.be-peexecutable";
const char* B_ELF_APP_MIME_TYPE = "application/x-vnd.Be-elfexecutable";
const char* B_RESOURCE_MIME_TYPE = "application/x-be-resource";
const char* B_FILE_MIME_TYPE = "application/octet-stream";

namespace {

bool is_valid_mime_character(char character) {
    // Control characters, space, DEL, bytes above 127 and the RFC 2045 "tspecials"
    // may not appear in a type.
    unsigned char byte = (unsigned char)character;
    return byte > 32 && byte < 127 && strchr("/<>@,;:\"()[]?=\\", character) == nullptr;
}

status_t copy_out(const std::string& text, char* buffer) {
    if (buffer == nullptr)
        return B_BAD_VALUE;
    size_t length = std::min(text.size(), size_t(B_MIME_TYPE_LENGTH - 1));
    memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
    return B_OK;
}

status_t add_signatures(BMessage* message, const std::vector<std::string>& signatures) {
    for (const std::string& signature : signatures) {
        status_t status = message->AddString("applications", signature.c_str());
        if (status != B_OK)
            return status;
    }
    return B_OK;
}

} // namespace

BMimeType::BMimeType() : fType(nullptr), fStatus(B_NO_INIT) {}

BMimeType::BMimeType(const char* mimeType) : fType(nullptr), fStatus(B_NO_INIT) {
    SetTo(mimeType);
}

BMimeType::~BMimeType() {
    Unset();
}

status_t BMimeType::SetTo(const char* mimeType) {
    Unset();
    if (!IsValid(mimeType))
        return fStatus = B_BAD_VALUE;
    fType = strdup(mimeType);
    return fStatus = fType != nullptr ? B_OK : B_NO_MEMORY;
}

void BMimeType::Unset() {
    free(fType);
    fType = nullptr;
    fStatus = B_NO_INIT;
}

status_t BMimeType::InitCheck() const {
    return fStatus;
}

const char* BMimeType::Type() const {
    return fType;
}

bool BMimeType::IsValid() const {
    return fStatus == B_OK && IsValid(fType);
}

bool BMimeType::IsSupertypeOnly() const {
    return fStatus == B_OK && strchr(fType, '/') == nullptr;
}

bool BMimeType::IsInstalled() const {
    if (fStatus != B_OK)
        return false;
    if (type_is_known(fType))
        return true;
    std::string application;
    return AppDatabase::FindApp(fType, &application) == B_OK;
}

status_t BMimeType::GetSupertype(BMimeType* supertype) const {
    if (supertype == nullptr)
        return B_BAD_VALUE;
    supertype->Unset();
    if (fStatus != B_OK)
        return fStatus;
    const char* slash = strchr(fType, '/');
    if (slash == nullptr)
        return B_BAD_VALUE;
    std::string name(fType, size_t(slash - fType));
    return supertype->SetTo(name.c_str());
}

bool BMimeType::operator==(const BMimeType& type) const {
    if (fStatus != B_OK || type.fStatus != B_OK)
        return fStatus == type.fStatus && fStatus == B_NO_INIT;
    return strcasecmp(fType, type.fType) == 0;
}

bool BMimeType::operator==(const char* type) const {
    BMimeType other(type);
    return *this == other;
}

bool BMimeType::Contains(const BMimeType* type) const {
    if (type == nullptr || fStatus != B_OK || type->fStatus != B_OK)
        return false;
    if (*this == *type)
        return true;
    BMimeType supertype;
    return IsSupertypeOnly() && type->GetSupertype(&supertype) == B_OK && *this == supertype;
}

status_t BMimeType::GetIcon(BBitmap* icon, icon_size which) const {
    if (fStatus != B_OK)
        return fStatus;
    status_t status = IconLoader::CheckBitmap(icon, which);
    if (status != B_OK)
        return status;
    std::vector<std::string> names = icon_names_for_type(fType);
    IconImageRef image = IconLoader::FromTheme(names, which);
    if (image == nullptr)
        return B_ENTRY_NOT_FOUND;
    return IconLoader::CopyToBitmap(*image, icon);
}

status_t BMimeType::GetPreferredApp(char* signature, app_verb verb) const {
    if (fStatus != B_OK)
        return fStatus;
    if (signature == nullptr || verb != B_OPEN)
        return B_BAD_VALUE;
    std::string path;
    status_t status = AppDatabase::DefaultAppFor(fType, &path);
    if (status != B_OK)
        return B_ENTRY_NOT_FOUND;
    std::string found;
    status = AppDatabase::SignatureFor(path.c_str(), &found);
    if (status != B_OK)
        return status;
    return copy_out(found, signature);
}

status_t BMimeType::GetShortDescription(char* description) const {
    if (fStatus != B_OK)
        return fStatus;
    if (description == nullptr)
        return B_BAD_VALUE;
    std::string text = description_for_type(fType);
    if (text.empty())
        return B_ENTRY_NOT_FOUND;
    return copy_out(text, description);
}

status_t BMimeType::GetLongDescription(char* description) const {
    return GetShortDescription(description);
}

status_t BMimeType::GetSupportingApps(BMessage* signatures) const {
    if (fStatus != B_OK)
        return fStatus;
    if (signatures == nullptr)
        return B_BAD_VALUE;
    signatures->MakeEmpty();
    std::vector<std::string> forType;
    std::vector<std::string> forParents;
    status_t status = AppDatabase::SupportingApps(fType, &forType, &forParents);
    if (status != B_OK)
        return status;
    status = add_signatures(signatures, forType);
    if (status == B_OK)
        status = add_signatures(signatures, forParents);
    if (status == B_OK)
        status = signatures->AddInt32("be:sub", int32(forType.size()));
    if (status == B_OK)
        status = signatures->AddInt32("be:super", int32(forParents.size()));
    return status;
}

status_t BMimeType::GetAppHint(entry_ref* ref) const {
    if (fStatus != B_OK)
        return fStatus;
    if (ref == nullptr)
        return B_BAD_VALUE;
    std::string path;
    if (type_is_known(fType) || AppDatabase::FindApp(fType, &path) != B_OK)
        return B_ENTRY_NOT_FOUND;
    return get_ref_for_path(path.c_str(), ref);
}

bool BMimeType::IsValid(const char* mimeType) {
    if (mimeType == nullptr)
        return false;
    size_t length = strlen(mimeType);
    if (length == 0 || length >= B_MIME_TYPE_LENGTH)
        return false;
    bool sawSlash = false;
    for (size_t i = 0; i < length; i++) {
        if (mimeType[i] == '/') {
            if (sawSlash || i == 0 || i == length - 1)
                return false;
            sawSlash = true;
        } else if (!is_valid_mime_character(mimeType[i])) {
            return false;
        }
    }
    return true;
}

status_t BMimeType::GetWildcardApps(BMessage* wildcardApps) {
    if (wildcardApps == nullptr)
        return B_BAD_VALUE;
    wildcardApps->MakeEmpty();
    std::vector<std::string> signatures;
    status_t status = AppDatabase::WildcardApps(&signatures);
    if (status != B_OK)
        return status;
    return add_signatures(wildcardApps, signatures);
}

status_t BMimeType::GuessMimeType(const entry_ref* file, BMimeType* type) {
    if (file == nullptr || type == nullptr)
        return B_BAD_VALUE;
    BPath path(file);
    if (path.InitCheck() != B_OK)
        return path.InitCheck();
    struct stat info;
    if (lstat(path.Path(), &info) != 0)
        return B_ENTRY_NOT_FOUND;
    std::string guessed;
    status_t status = guess_type_for_node(path.Path(), info, &guessed);
    if (status != B_OK)
        return status;
    return type->SetTo(guessed.c_str());
}

status_t BMimeType::GuessMimeType(const void* buffer, int32 length, BMimeType* type) {
    if (buffer == nullptr || length < 0 || type == nullptr)
        return B_BAD_VALUE;
    return type->SetTo(guess_type(nullptr, buffer, size_t(length)).c_str());
}

status_t BMimeType::GuessMimeType(const char* filename, BMimeType* type) {
    if (filename == nullptr || type == nullptr)
        return B_BAD_VALUE;
    return type->SetTo(guess_type(filename, nullptr, 0).c_str());
}
