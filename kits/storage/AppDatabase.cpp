#include "AppDatabase.h"

#include "AppSignature.h"
#include "ContentType.h"
#include "DesktopEntry.h"
#include "GLibHandles.h"
#include "GioLibrary.h"

#include <AppFileInfo.h>
#include <MimeType.h>
#include <Node.h>
#include <Roster.h>

#include <dirent.h>
#include <string.h>
#include <strings.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <mutex>

using namespace BPrivate::storage_glib;

namespace BPrivate {

namespace {

// Applications found by their "BEOS:APP_SIG" attribute are looked for by reading
// the attribute of every desktop entry and of every program on $PATH; the result
// is kept and read again at most every few seconds when a signature is missing.
const time_t kIndexLifetime = 5;

struct Registry {
    std::mutex lock;
    std::map<std::string, std::string> remembered; // lower-case signature -> path
    std::map<std::string, std::string> index;      // the same, from the scan
    time_t indexTime = 0;
    bool indexed = false;
};

Registry& registry() {
    // Never destroyed: the roster may use it from its threads until the very end.
    static Registry* sRegistry = new Registry;
    return *sRegistry;
}

std::string lower_case(const char* text) {
    std::string result = text;
    for (char& character : result) {
        if (character >= 'A' && character <= 'Z')
            character = char(character - 'A' + 'a');
    }
    return result;
}

bool ends_with(const std::string& text, const char* suffix) {
    size_t length = strlen(suffix);
    return text.size() >= length && text.compare(text.size() - length, length, suffix) == 0;
}

std::string read_signature_attribute(const char* path) {
    BNode node(path);
    if (node.InitCheck() != B_OK)
        return std::string();
    char buffer[B_MIME_TYPE_LENGTH];
    ssize_t bytes =
        node.ReadAttr("BEOS:APP_SIG", B_MIME_STRING_TYPE, 0, buffer, sizeof(buffer) - 1);
    if (bytes <= 0)
        return std::string();
    buffer[bytes] = '\0';
    if (!BMimeType::IsValid(buffer))
        return std::string();
    return buffer;
}

bool is_executable_program(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
           access(path.c_str(), X_OK) == 0;
}

void scan_folder(const std::string& folder, bool desktopEntries, int depth,
                 std::map<std::string, std::string>* index) {
    DIR* directory = opendir(folder.c_str());
    if (directory == nullptr)
        return;
    while (dirent* item = readdir(directory)) {
        if (item->d_name[0] == '.')
            continue;
        std::string path = folder + "/" + item->d_name;
        struct stat info;
        if (stat(path.c_str(), &info) != 0)
            continue;
        if (S_ISDIR(info.st_mode)) {
            if (desktopEntries && depth < 3)
                scan_folder(path, desktopEntries, depth + 1, index);
            continue;
        }
        if (!S_ISREG(info.st_mode) || (desktopEntries && !ends_with(path, ".desktop")))
            continue;
        std::string signature = read_signature_attribute(path.c_str());
        if (!signature.empty())
            index->emplace(lower_case(signature.c_str()), path);
    }
    closedir(directory);
}

std::map<std::string, std::string> build_index() {
    std::map<std::string, std::string> index;
    for (const std::string& folder : DesktopEntry::ApplicationFolders())
        scan_folder(folder, true, 0, &index);
    const char* searchPath = getenv("PATH");
    std::string folders = searchPath != nullptr ? searchPath : "";
    size_t start = 0;
    while (start < folders.size()) {
        size_t end = folders.find(':', start);
        if (end == std::string::npos)
            end = folders.size();
        std::string folder = folders.substr(start, end - start);
        if (!folder.empty() && folder[0] == '/')
            scan_folder(folder, false, 0, &index);
        start = end + 1;
    }
    return index;
}

// Whether the remembered or indexed file still answers to the signature.
bool still_answers(const std::string& path, const std::string& signature) {
    std::string current;
    return AppDatabase::SignatureFor(path.c_str(), &current) == B_OK &&
           strcasecmp(current.c_str(), signature.c_str()) == 0;
}

// The items of GIO's application lists are GAppInfo objects; only desktop
// entries have a file.
GAppInfo* app_info_of(gpointer item) {
    return static_cast<GAppInfo*>(item);
}

std::string path_of(GAppInfo* application) {
    const GioLibrary& library = GioLibrary::Get();
    if (application == nullptr ||
        !is_instance_of(application, library.g_desktop_app_info_get_type()))
        return std::string();
    const char* file =
        library.g_desktop_app_info_get_filename(reinterpret_cast<GDesktopAppInfo*>(application));
    return file != nullptr ? file : std::string();
}

void add_signatures(GList* applications, std::vector<std::string>* signatures,
                    const std::vector<std::string>& skip) {
    for (GList* item = applications; item != nullptr; item = item->next) {
        std::string path = path_of(app_info_of(item->data));
        std::string signature;
        if (path.empty() || AppDatabase::SignatureFor(path.c_str(), &signature) != B_OK)
            continue;
        auto same = [&signature](const std::string& other) {
            return strcasecmp(other.c_str(), signature.c_str()) == 0;
        };
        if (std::find_if(skip.begin(), skip.end(), same) != skip.end() ||
            std::find_if(signatures->begin(), signatures->end(), same) != signatures->end())
            continue;
        signatures->push_back(signature);
    }
}

// Whether an application takes the type through a parent other than the
// catch-all application/octet-stream.
bool takes_through_real_parent(GAppInfo* application, const char* type) {
    const char** supported = GioLibrary::Get().g_app_info_get_supported_types(application);
    for (; supported != nullptr && *supported != nullptr; supported++) {
        if (strcmp(*supported, "application/octet-stream") != 0 && type_is_a(type, *supported))
            return true;
    }
    return false;
}

} // namespace

app_kind AppDatabase::KindOf(const char* path, const struct stat& info) {
    if (path == nullptr || !S_ISREG(info.st_mode))
        return kNotAnApplication;
    if (ends_with(path, ".desktop")) {
        DesktopEntry entry;
        return entry.SetTo(path) == B_OK && entry.IsApplication() ? kDesktopApplication
                                                                  : kNotAnApplication;
    }
    if ((info.st_mode & (S_IXUSR | S_IXGRP | S_IXOTH)) == 0)
        return kNotAnApplication;
    std::string type;
    if (guess_type_for_node(path, info, &type) != B_OK || !type_can_be_executable(type.c_str()))
        return kNotAnApplication;
    return kExecutableApplication;
}

status_t AppDatabase::SignatureFor(const char* path, std::string* signature) {
    if (path == nullptr || signature == nullptr)
        return B_BAD_VALUE;
    struct stat info;
    if (stat(path, &info) != 0)
        return B_ENTRY_NOT_FOUND;
    app_kind kind = KindOf(path, info);
    if (kind == kNotAnApplication)
        return B_BAD_VALUE;
    std::string fromAttribute = read_signature_attribute(path);
    if (!fromAttribute.empty()) {
        *signature = fromAttribute;
        return B_OK;
    }
    std::string derived;
    if (kind == kDesktopApplication) {
        derived = signature_for_desktop_id(DesktopEntry::IDForPath(path));
    } else {
        char* resolved = realpath(path, nullptr);
        derived = signature_for_executable(resolved != nullptr ? resolved : path);
        free(resolved);
    }
    if (derived.empty())
        return B_NAME_TOO_LONG;
    *signature = derived;
    return B_OK;
}

uint32 AppDatabase::FlagsFor(const char* path) {
    BNode node(path);
    uint32 flags = 0;
    if (node.InitCheck() == B_OK &&
        node.ReadAttr("BEOS:APP_FLAGS", 'APPF', 0, &flags, sizeof(flags)) == sizeof(flags))
        return flags;
    return B_MULTIPLE_LAUNCH;
}

status_t AppDatabase::FindApp(const char* signature, std::string* path) {
    if (signature == nullptr || path == nullptr || signature[0] == '\0')
        return B_BAD_VALUE;

    if (strcasecmp(signature, kFileManagerSignature) == 0) {
        status_t status = DefaultAppFor("inode/directory", path);
        return status == B_OK ? B_OK : B_LAUNCH_FAILED_APP_NOT_FOUND;
    }

    std::string decoded;
    if (desktop_id_for_signature(signature, &decoded)) {
        std::string found = DesktopEntry::PathForID(decoded);
        if (found.empty()) {
            // Someone may have changed the case of the signature: compare the
            // installed entries' signatures as MIME strings.
            AppInfoList all(GioLibrary::Get().g_app_info_get_all());
            for (GList* item = all.get(); item != nullptr && found.empty(); item = item->next) {
                std::string candidate = path_of(app_info_of(item->data));
                std::string candidateSignature =
                    signature_for_desktop_id(DesktopEntry::IDForPath(candidate.c_str()));
                if (!candidate.empty() && strcasecmp(candidateSignature.c_str(), signature) == 0)
                    found = candidate;
            }
        }
        struct stat info;
        if (!found.empty() && stat(found.c_str(), &info) == 0 &&
            KindOf(found.c_str(), info) == kDesktopApplication) {
            *path = found;
            return B_OK;
        }
    } else if (executable_for_signature(signature, &decoded)) {
        if (is_executable_program(decoded)) {
            *path = decoded;
            return B_OK;
        }
    }

    std::string key = lower_case(signature);
    Registry& shared = registry();
    {
        std::lock_guard<std::mutex> guard(shared.lock);
        auto remembered = shared.remembered.find(key);
        if (remembered != shared.remembered.end() &&
            access(remembered->second.c_str(), F_OK) == 0) {
            *path = remembered->second;
            return B_OK;
        }
    }

    // A document type stands for its preferred application.
    if (type_is_known(signature))
        return DefaultAppFor(signature, path);

    std::unique_lock<std::mutex> guard(shared.lock);
    auto indexed = shared.index.find(key);
    std::string candidate = indexed != shared.index.end() ? indexed->second : std::string();
    time_t now = time(nullptr);
    if (candidate.empty() && (!shared.indexed || now - shared.indexTime >= kIndexLifetime)) {
        guard.unlock();
        std::map<std::string, std::string> index = build_index();
        guard.lock();
        shared.index.swap(index);
        shared.indexTime = now;
        shared.indexed = true;
        indexed = shared.index.find(key);
        candidate = indexed != shared.index.end() ? indexed->second : std::string();
    }
    guard.unlock();
    if (!candidate.empty() && still_answers(candidate, signature)) {
        *path = candidate;
        return B_OK;
    }
    return B_LAUNCH_FAILED_APP_NOT_FOUND;
}

status_t AppDatabase::DefaultAppFor(const char* type, std::string* path) {
    if (type == nullptr || path == nullptr || type[0] == '\0')
        return B_BAD_VALUE;
    const GioLibrary& library = GioLibrary::Get();
    StringPtr contentType(library.g_content_type_from_mime_type(type));
    ObjectPtr<GAppInfo> application(library.g_app_info_get_default_for_type(
        contentType != nullptr ? contentType.get() : type, FALSE));
    std::string file = path_of(application.get());
    if (file.empty())
        return B_LAUNCH_FAILED_NO_PREFERRED_APP;
    *path = file;
    return B_OK;
}

status_t AppDatabase::SupportingApps(const char* type, std::vector<std::string>* forType,
                                     std::vector<std::string>* forParents) {
    if (type == nullptr || forType == nullptr || forParents == nullptr)
        return B_BAD_VALUE;
    forType->clear();
    forParents->clear();
    // Types without a subtype ("text") have no applications of their own here.
    if (strchr(type, '/') == nullptr)
        return B_OK;
    const GioLibrary& library = GioLibrary::Get();
    StringPtr contentType(library.g_content_type_from_mime_type(type));
    const char* lookup = contentType != nullptr ? contentType.get() : type;

    AppInfoList exact(library.g_app_info_get_recommended_for_type(lookup));
    add_signatures(exact.get(), forType, {});

    AppInfoList fallback(library.g_app_info_get_fallback_for_type(lookup));
    AppInfoList anyFile(library.g_app_info_get_all_for_type("application/octet-stream"));
    GList* kept = nullptr;
    for (GList* item = fallback.get(); item != nullptr; item = item->next) {
        GAppInfo* application = app_info_of(item->data);
        bool takesAnyFile = false;
        for (GList* other = anyFile.get(); other != nullptr; other = other->next) {
            if (library.g_app_info_equal(application, app_info_of(other->data)))
                takesAnyFile = true;
        }
        if (!takesAnyFile || takes_through_real_parent(application, lookup))
            kept = library.g_list_append(kept, application);
    }
    add_signatures(kept, forParents, *forType);
    library.g_list_free(kept);
    return B_OK;
}

status_t AppDatabase::WildcardApps(std::vector<std::string>* signatures) {
    if (signatures == nullptr)
        return B_BAD_VALUE;
    signatures->clear();
    AppInfoList anyFile(GioLibrary::Get().g_app_info_get_all_for_type("application/octet-stream"));
    add_signatures(anyFile.get(), signatures, {});
    return B_OK;
}

void AppDatabase::RememberApp(const char* signature, const char* path) {
    if (signature == nullptr || path == nullptr || !BMimeType::IsValid(signature))
        return;
    Registry& shared = registry();
    std::lock_guard<std::mutex> guard(shared.lock);
    shared.remembered[lower_case(signature)] = path;
}

} // namespace BPrivate
