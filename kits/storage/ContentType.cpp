#include "ContentType.h"

#include "GLibHandles.h"
#include "GioLibrary.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>

using namespace BPrivate::storage_glib;

namespace BPrivate {

namespace {

// As much of a file as the database's content rules look at.
const size_t kSniffLength = 16 * 1024;
const size_t kMaxDescriptionFile = 1024 * 1024;

const char* leaf_of(const char* path) {
    const char* slash = strrchr(path, '/');
    return slash != nullptr ? slash + 1 : path;
}

int open_for_sniffing(const char* path) {
    // O_NOATIME spares the access time but only the owner may ask for it.
    int descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NOATIME | O_NONBLOCK);
    if (descriptor < 0 && errno == EPERM)
        descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    return descriptor;
}

// The MIME folders of the shared database, most important first.
std::vector<std::string> mime_folders() {
    std::vector<std::string> folders;
    const char* dataHome = getenv("XDG_DATA_HOME");
    const char* home = getenv("HOME");
    if (dataHome != nullptr && dataHome[0] == '/')
        folders.push_back(std::string(dataHome) + "/mime");
    else if (home != nullptr && home[0] == '/')
        folders.push_back(std::string(home) + "/.local/share/mime");
    const char* dataDirs = getenv("XDG_DATA_DIRS");
    std::string list =
        dataDirs != nullptr && dataDirs[0] != '\0' ? dataDirs : "/usr/local/share/:/usr/share/";
    size_t start = 0;
    while (start < list.size()) {
        size_t end = list.find(':', start);
        if (end == std::string::npos)
            end = list.size();
        std::string folder = list.substr(start, end - start);
        if (!folder.empty() && folder[0] == '/')
            folders.push_back(folder + "/mime");
        start = end + 1;
    }
    return folders;
}

// The database keeps one description file per type it knows ("text/plain.xml")
// and one folder per supertype. Asking the files rather than GIO's list of
// registered types also spares a leak in GIO's own list.
bool database_has(const std::string& relativePath) {
    if (relativePath.empty() || relativePath.find("..") != std::string::npos)
        return false;
    for (const std::string& folder : mime_folders()) {
        if (access((folder + "/" + relativePath).c_str(), F_OK) == 0)
            return true;
    }
    return false;
}

// ASCII only, whatever the locale, as type names are compared. Done here rather
// than by GLib so that asking whether a type is known reads only the database's
// files and does not open GIO.
std::string lower_case(const char* text) {
    std::string result = text;
    for (char& character : result) {
        if (character >= 'A' && character <= 'Z')
            character = char(character - 'A' + 'a');
    }
    return result;
}

// The "comment" of a type's description file, in the user's language when the
// file has it. (GIO's own description call leaks its database on first use.)
bool read_description_file(const std::string& path, std::string* text) {
    FILE* file = fopen(path.c_str(), "rbe");
    if (file == nullptr)
        return false;
    char buffer[16384];
    size_t bytes;
    text->clear();
    while ((bytes = fread(buffer, 1, sizeof(buffer), file)) > 0 &&
           text->size() < kMaxDescriptionFile)
        text->append(buffer, bytes);
    fclose(file);
    return true;
}

std::string xml_text(const std::string& raw) {
    static const struct {
        const char* entity;
        char character;
    } kEntities[] = {
        {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};
    std::string result;
    for (size_t i = 0; i < raw.size(); i++) {
        bool replaced = false;
        if (raw[i] == '&') {
            for (const auto& entity : kEntities) {
                size_t length = strlen(entity.entity);
                if (raw.compare(i, length, entity.entity) == 0) {
                    result += entity.character;
                    i += length - 1;
                    replaced = true;
                    break;
                }
            }
        }
        if (!replaced)
            result += raw[i];
    }
    return result;
}

std::string comment_with_tag(const std::string& text, const std::string& openTag) {
    size_t start = text.find(openTag);
    if (start == std::string::npos)
        return std::string();
    start += openTag.size();
    size_t end = text.find("</comment>", start);
    if (end == std::string::npos)
        return std::string();
    return xml_text(text.substr(start, end - start));
}

std::string comment_for_languages(const std::string& text) {
    const gchar* const* languages = GioLibrary::Get().g_get_language_names();
    for (const gchar* const* language = languages; *language != nullptr; language++) {
        if (strcmp(*language, "C") == 0)
            break;
        std::string localized =
            comment_with_tag(text, std::string("<comment xml:lang=\"") + *language + "\">");
        if (!localized.empty())
            return localized;
    }
    return comment_with_tag(text, "<comment>");
}

} // namespace

std::string guess_type(const char* name, const void* data, size_t length) {
    if (name == nullptr && (data == nullptr || length == 0))
        return "application/octet-stream";
    const GioLibrary& library = GioLibrary::Get();
    StringPtr type(
        library.g_content_type_guess(name, static_cast<const guchar*>(data), length, nullptr));
    if (type == nullptr)
        return "application/octet-stream";
    StringPtr mime(library.g_content_type_get_mime_type(type.get()));
    return mime != nullptr ? mime.get() : type.get();
}

status_t guess_type_for_node(const char* path, const struct stat& info, std::string* type) {
    if (path == nullptr || type == nullptr)
        return B_BAD_VALUE;
    switch (info.st_mode & S_IFMT) {
    case S_IFDIR:
        *type = "inode/directory";
        return B_OK;
    case S_IFLNK:
        *type = "inode/symlink";
        return B_OK;
    case S_IFBLK:
        *type = "inode/blockdevice";
        return B_OK;
    case S_IFCHR:
        *type = "inode/chardevice";
        return B_OK;
    case S_IFIFO:
        *type = "inode/fifo";
        return B_OK;
    case S_IFSOCK:
        *type = "inode/socket";
        return B_OK;
    case S_IFREG:
        break;
    default:
        return B_BAD_TYPE;
    }

    const char* name = leaf_of(path);
    gboolean uncertain = TRUE;
    const GioLibrary& library = GioLibrary::Get();
    StringPtr byName(library.g_content_type_guess(name, nullptr, 0, &uncertain));
    if (byName != nullptr && !uncertain) {
        StringPtr mime(library.g_content_type_get_mime_type(byName.get()));
        *type = mime != nullptr ? mime.get() : byName.get();
        return B_OK;
    }
    if (info.st_size == 0) {
        *type = "text/plain";
        return B_OK;
    }

    int descriptor = open_for_sniffing(path);
    if (descriptor < 0) {
        // Unreadable content leaves the name's guess.
        *type = guess_type(name, nullptr, 0);
        return B_OK;
    }
    std::string buffer(std::min<size_t>(kSniffLength, size_t(info.st_size)), '\0');
    size_t filled = 0;
    while (filled < buffer.size()) {
        ssize_t bytes = pread(descriptor, &buffer[filled], buffer.size() - filled, off_t(filled));
        if (bytes < 0 && errno == EINTR)
            continue;
        if (bytes <= 0)
            break;
        filled += size_t(bytes);
    }
    close(descriptor);
    *type = guess_type(name, buffer.data(), filled);
    return B_OK;
}

std::vector<std::string> icon_names_for_type(const char* type) {
    std::vector<std::string> names;
    if (type == nullptr || type[0] == '\0')
        return names;
    const GioLibrary& library = GioLibrary::Get();
    StringPtr contentType(library.g_content_type_from_mime_type(type));
    ObjectPtr<GIcon> icon(
        library.g_content_type_get_icon(contentType != nullptr ? contentType.get() : type));
    if (icon == nullptr || !is_instance_of(icon.get(), library.g_themed_icon_get_type()))
        return names;
    const gchar* const* list =
        library.g_themed_icon_get_names(reinterpret_cast<GThemedIcon*>(icon.get()));
    for (; list != nullptr && *list != nullptr; list++) {
        std::string name = *list;
        const std::string symbolic = "-symbolic";
        if (name.size() > symbolic.size() &&
            name.compare(name.size() - symbolic.size(), symbolic.size(), symbolic) == 0)
            continue;
        if (std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(name);
    }
    return names;
}

std::string description_for_type(const char* type) {
    if (type == nullptr || !type_is_known(type))
        return std::string();
    std::string name = lower_case(type);
    StringPtr unaliased(GioLibrary::Get().g_content_type_from_mime_type(name.c_str()));
    if (unaliased != nullptr)
        name = unaliased.get();
    if (name.find("..") != std::string::npos)
        return std::string();
    for (const std::string& folder : mime_folders()) {
        std::string text;
        if (read_description_file(folder + "/" + name + ".xml", &text))
            return comment_for_languages(text);
    }
    return std::string();
}

bool type_is_a(const char* type, const char* other) {
    if (type == nullptr || other == nullptr)
        return false;
    return GioLibrary::Get().g_content_type_is_a(type, other);
}

bool type_can_be_executable(const char* type) {
    return type != nullptr && GioLibrary::Get().g_content_type_can_be_executable(type);
}

bool type_is_known(const char* type) {
    if (type == nullptr || type[0] == '\0')
        return false;
    std::string lower = lower_case(type);
    if (strchr(type, '/') == nullptr)
        return database_has(lower);
    if (database_has(lower + ".xml"))
        return true;
    // Aliases (application/x-pdf for application/pdf) are known under their
    // real name.
    StringPtr unaliased(GioLibrary::Get().g_content_type_from_mime_type(lower.c_str()));
    return unaliased != nullptr && lower != unaliased.get() &&
           database_has(std::string(unaliased.get()) + ".xml");
}

} // namespace BPrivate
