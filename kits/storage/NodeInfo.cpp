// BNodeInfo: types, icons and preferred applications of nodes.
//
// How a tracker icon is found, first answer wins:
//   1. the node's own raw icon attribute (either size, scaled);
//   2. for a desktop entry, its Icon key (a file, or a name in the icon theme);
//   3. the icon of its type in the icon theme (the names the MIME database gives
//      for the type, most specific first);
//   4. a generic document, folder or application icon drawn by the kit.
// Decoded icons are cached by IconLoader, so a warm lookup is the node's
// attributes, its type and one copy into the bitmap.
#include <NodeInfo.h>

#include "AppDatabase.h"
#include "ContentType.h"
#include "DesktopEntry.h"
#include "IconLoader.h"
#include "StorageAccess.h"
#include "interface/SystemPalette.h"

#include <Bitmap.h>
#include <Entry.h>
#include <MimeType.h>
#include <Node.h>
#include <Path.h>

#include <string.h>
#include <strings.h>

#include <vector>

using namespace BPrivate;

namespace {

const char kTypeAttribute[] = "BEOS:TYPE";
const char kPreferredAppAttribute[] = "BEOS:PREF_APP";
const char kAppHintAttribute[] = "BEOS:PPATH";
const char kMiniIconAttribute[] = "BEOS:M:STD_ICON";
const char kLargeIconAttribute[] = "BEOS:L:STD_ICON";

// A string attribute of at most bufferSize bytes with its NUL, as Be's
// BEOS:TYPE-like attributes are. B_BAD_DATA when it does not fit or holds no text.
status_t read_string_attribute(const BNode* node, const char* name, char* buffer,
                               size_t bufferSize) {
    attr_info info;
    status_t status = node->GetAttrInfo(name, &info);
    if (status != B_OK)
        return status;
    if (info.size <= 0 || info.size > off_t(bufferSize))
        return B_BAD_DATA;
    ssize_t bytes = node->ReadAttr(name, info.type, 0, buffer, size_t(info.size));
    if (bytes < 0)
        return status_t(bytes);
    if (bytes != info.size)
        return B_BAD_DATA;
    // The stored NUL is optional; what matters is that the text fits.
    if (memchr(buffer, '\0', size_t(bytes)) == nullptr) {
        if (size_t(bytes) >= bufferSize)
            return B_BAD_DATA;
        buffer[bytes] = '\0';
    }
    return buffer[0] != '\0' ? B_OK : B_BAD_DATA;
}

status_t write_string_attribute(BNode* node, const char* name, const char* value) {
    if (value == nullptr) {
        status_t status = node->RemoveAttr(name);
        return status == B_ENTRY_NOT_FOUND ? B_OK : status;
    }
    size_t length = strlen(value) + 1;
    ssize_t written = node->WriteAttr(name, B_MIME_STRING_TYPE, 0, value, length);
    if (written < 0)
        return status_t(written);
    return size_t(written) == length ? B_OK : B_ERROR;
}

const char* icon_attribute(int32 edge) {
    if (edge == B_MINI_ICON)
        return kMiniIconAttribute;
    if (edge == B_LARGE_ICON)
        return kLargeIconAttribute;
    return nullptr;
}

// Raw icons are accepted whatever type code they were written with; only the
// size must be that of a square of edge pixels.
status_t read_raw_icon(const BNode* node, int32 edge, std::vector<uint8>* data) {
    const char* name = icon_attribute(edge);
    if (name == nullptr)
        return B_BAD_VALUE;
    attr_info info;
    status_t status = node->GetAttrInfo(name, &info);
    if (status != B_OK)
        return status;
    size_t size = size_t(edge) * edge;
    if (info.size != off_t(size))
        return B_BAD_DATA;
    data->resize(size);
    ssize_t bytes = node->ReadAttr(name, info.type, 0, data->data(), size);
    if (bytes < 0)
        return status_t(bytes);
    return size_t(bytes) == size ? B_OK : B_BAD_DATA;
}

status_t copy_raw_icon(const std::vector<uint8>& data, int32 edge, BBitmap* icon, int32 which) {
    status_t status = IconLoader::CheckBitmap(icon, which);
    if (status != B_OK)
        return status;
    if (edge == which && icon->ColorSpace() == B_CMAP8) {
        uint8* bits = static_cast<uint8*>(icon->Bits());
        for (int32 y = 0; y < edge; y++)
            memcpy(bits + size_t(y) * icon->BytesPerRow(), &data[size_t(y) * edge], size_t(edge));
        return B_OK;
    }
    IconImageRef image = IconLoader::FromCmap8(data.data(), edge, which);
    if (image == nullptr)
        return B_NO_MEMORY;
    return IconLoader::CopyToBitmap(*image, icon);
}

// Types of Be's own world that the freedesktop database does not know.
const char* freedesktop_type_for(const char* type) {
    static const struct {
        const char* be;
        const char* freedesktop;
    } kTypes[] = {
        {"application/x-vnd.Be-directory", "inode/directory"},
        {"application/x-vnd.Be-symlink", "inode/symlink"},
        {"application/x-vnd.Be-volume", "inode/mount-point"},
        {"application/x-vnd.Be-elfexecutable", "application/x-executable"},
        {"application/x-vnd.Be-query", "inode/directory"},
    };
    for (const auto& mapping : kTypes) {
        if (strcasecmp(type, mapping.be) == 0)
            return mapping.freedesktop;
    }
    return type;
}

IconImageRef icon_of_desktop_entry(const char* path, int32 size) {
    size_t length = strlen(path);
    if (length < 8 || strcmp(path + length - 8, ".desktop") != 0)
        return nullptr;
    DesktopEntry entry;
    if (entry.SetTo(path) != B_OK)
        return nullptr;
    std::string icon = entry.String("Icon");
    if (icon.empty())
        return nullptr;
    if (icon[0] == '/')
        return IconLoader::FromFile(icon, size);
    // Some entries name their icon with an extension; the theme wants the name.
    for (const char* extension : {".png", ".svg", ".xpm"}) {
        size_t extensionLength = strlen(extension);
        if (icon.size() > extensionLength &&
            icon.compare(icon.size() - extensionLength, extensionLength, extension) == 0)
            icon.resize(icon.size() - extensionLength);
    }
    return IconLoader::FromTheme({icon}, size);
}

} // namespace

BNodeInfo::BNodeInfo() : fNode(nullptr), fStatus(B_NO_INIT) {}

BNodeInfo::BNodeInfo(BNode* node) : fNode(nullptr), fStatus(B_NO_INIT) {
    SetTo(node);
}

BNodeInfo::~BNodeInfo() {}

status_t BNodeInfo::SetTo(BNode* node) {
    fNode = nullptr;
    if (node == nullptr)
        return fStatus = B_BAD_VALUE;
    if (node->InitCheck() != B_OK)
        return fStatus = node->InitCheck();
    fNode = node;
    return fStatus = B_OK;
}

status_t BNodeInfo::InitCheck() const {
    return fStatus;
}

status_t BNodeInfo::GetType(char* type) const {
    if (fStatus != B_OK)
        return fStatus;
    if (type == nullptr)
        return B_BAD_VALUE;
    char buffer[B_MIME_TYPE_LENGTH];
    status_t status = read_string_attribute(fNode, kTypeAttribute, buffer, sizeof(buffer));
    if (status == B_OK && BMimeType::IsValid(buffer)) {
        strcpy(type, buffer);
        return B_OK;
    }
    // A file system without attributes, or a type attribute that holds no type,
    // counts as no attribute at all.
    if (status != B_OK && status != B_ENTRY_NOT_FOUND && status != B_NOT_SUPPORTED &&
        status != B_BAD_DATA)
        return status;

    struct stat info;
    status = fNode->GetStat(&info);
    if (status != B_OK)
        return status;
    const char* path = NodeAccess::Path(*fNode);
    if (!S_ISREG(info.st_mode) || path == nullptr)
        return B_ENTRY_NOT_FOUND;
    std::string guessed;
    status = guess_type_for_node(path, info, &guessed);
    if (status != B_OK)
        return status;
    if (guessed.size() >= B_MIME_TYPE_LENGTH)
        return B_BAD_DATA;
    strcpy(type, guessed.c_str());
    return B_OK;
}

status_t BNodeInfo::SetType(const char* type) {
    if (fStatus != B_OK)
        return fStatus;
    if (type != nullptr && !BMimeType::IsValid(type))
        return B_BAD_VALUE;
    return write_string_attribute(fNode, kTypeAttribute, type);
}

status_t BNodeInfo::GetIcon(BBitmap* icon, icon_size which) const {
    if (fStatus != B_OK)
        return fStatus;
    if (icon_attribute(which) == nullptr)
        return B_BAD_VALUE;
    status_t status = IconLoader::CheckBitmap(icon, which);
    if (status != B_OK)
        return status;
    std::vector<uint8> data;
    status = read_raw_icon(fNode, which, &data);
    if (status != B_OK)
        return status == B_NOT_SUPPORTED ? B_ENTRY_NOT_FOUND : status;
    return copy_raw_icon(data, which, icon, which);
}

status_t BNodeInfo::SetIcon(const BBitmap* icon, icon_size which) {
    if (fStatus != B_OK)
        return fStatus;
    const char* name = icon_attribute(which);
    if (name == nullptr)
        return B_BAD_VALUE;
    if (icon == nullptr) {
        status_t status = fNode->RemoveAttr(name);
        return status == B_ENTRY_NOT_FOUND ? B_OK : status;
    }
    status_t status = IconLoader::CheckBitmap(icon, which);
    if (status != B_OK)
        return status;

    std::vector<uint8> data(size_t(which) * which);
    const uint8* bits = static_cast<const uint8*>(icon->Bits());
    PaletteIndexCache indices;
    for (int32 y = 0; y < which; y++) {
        const uint8* row = bits + size_t(y) * icon->BytesPerRow();
        for (int32 x = 0; x < which; x++) {
            uint8& target = data[size_t(y) * which + x];
            switch (icon->ColorSpace()) {
            case B_CMAP8:
                target = row[x];
                break;
            case B_RGB32:
            case B_RGBA32: {
                const uint8* pixel = row + x * 4;
                bool transparent = icon->ColorSpace() == B_RGBA32
                                       ? pixel[3] < kIconAlphaThreshold
                                       : memcmp(pixel, &B_TRANSPARENT_MAGIC_RGBA32, 4) == 0;
                target = transparent ? B_TRANSPARENT_MAGIC_CMAP8
                                     : indices.IndexFor(pixel[2], pixel[1], pixel[0]);
                break;
            }
            default:
                return B_BAD_VALUE;
            }
        }
    }
    type_code type = which == B_MINI_ICON ? B_MINI_ICON_TYPE : B_LARGE_ICON_TYPE;
    ssize_t written = fNode->WriteAttr(name, type, 0, data.data(), data.size());
    if (written < 0)
        return status_t(written);
    return size_t(written) == data.size() ? B_OK : B_ERROR;
}

status_t BNodeInfo::GetPreferredApp(char* signature, app_verb verb) const {
    if (fStatus != B_OK)
        return fStatus;
    if (signature == nullptr || verb != B_OPEN)
        return B_BAD_VALUE;
    char buffer[B_MIME_TYPE_LENGTH];
    status_t status = read_string_attribute(fNode, kPreferredAppAttribute, buffer, sizeof(buffer));
    if (status == B_NOT_SUPPORTED)
        return B_ENTRY_NOT_FOUND;
    if (status != B_OK)
        return status;
    if (!BMimeType::IsValid(buffer))
        return B_BAD_DATA;
    strcpy(signature, buffer);
    return B_OK;
}

status_t BNodeInfo::SetPreferredApp(const char* signature, app_verb verb) {
    if (fStatus != B_OK)
        return fStatus;
    if (verb != B_OPEN || (signature != nullptr && !BMimeType::IsValid(signature)))
        return B_BAD_VALUE;
    return write_string_attribute(fNode, kPreferredAppAttribute, signature);
}

status_t BNodeInfo::GetAppHint(entry_ref* ref) const {
    if (fStatus != B_OK)
        return fStatus;
    if (ref == nullptr)
        return B_BAD_VALUE;
    char path[B_PATH_NAME_LENGTH];
    status_t status = read_string_attribute(fNode, kAppHintAttribute, path, sizeof(path));
    if (status == B_NOT_SUPPORTED)
        return B_ENTRY_NOT_FOUND;
    if (status != B_OK)
        return status;
    return get_ref_for_path(path, ref);
}

status_t BNodeInfo::SetAppHint(const entry_ref* ref) {
    if (fStatus != B_OK)
        return fStatus;
    if (ref == nullptr)
        return write_string_attribute(fNode, kAppHintAttribute, nullptr);
    BPath path(ref);
    if (path.InitCheck() != B_OK)
        return path.InitCheck();
    return write_string_attribute(fNode, kAppHintAttribute, path.Path());
}

status_t BNodeInfo::GetTrackerIcon(BBitmap* icon, icon_size which) const {
    if (fStatus != B_OK)
        return fStatus;
    const int32 size = which;
    status_t status = IconLoader::CheckBitmap(icon, size);
    if (status != B_OK)
        return status;

    // The node's own icon, the size asked for first.
    int32 edges[2] = {B_LARGE_ICON, B_MINI_ICON};
    if (size <= B_MINI_ICON)
        std::swap(edges[0], edges[1]);
    for (int32 edge : edges) {
        std::vector<uint8> data;
        if (read_raw_icon(fNode, edge, &data) == B_OK)
            return copy_raw_icon(data, edge, icon, size);
    }

    struct stat info;
    status = fNode->GetStat(&info);
    if (status != B_OK)
        return status;
    const char* path = NodeAccess::Path(*fNode);

    IconImageRef image;
    if (path != nullptr && S_ISREG(info.st_mode))
        image = icon_of_desktop_entry(path, size);

    if (image == nullptr) {
        char type[B_MIME_TYPE_LENGTH];
        std::string guessed;
        if (GetType(type) == B_OK)
            guessed = freedesktop_type_for(type);
        else if (path != nullptr)
            guess_type_for_node(path, info, &guessed);
        std::vector<std::string> names = icon_names_for_type(guessed.c_str());
        if (S_ISDIR(info.st_mode))
            names.push_back("folder");
        if (!names.empty())
            image = IconLoader::FromTheme(names, size);
    }

    if (image == nullptr) {
        generic_icon kind = kGenericDocument;
        if (S_ISDIR(info.st_mode))
            kind = kGenericFolder;
        else if (path != nullptr && AppDatabase::KindOf(path, info) != kNotAnApplication)
            kind = kGenericApplication;
        image = IconLoader::Generic(kind, size);
    }
    if (image == nullptr)
        return B_NO_MEMORY;
    return IconLoader::CopyToBitmap(*image, icon);
}

status_t BNodeInfo::GetTrackerIcon(const entry_ref* ref, BBitmap* icon, icon_size which) {
    if (ref == nullptr)
        return B_BAD_VALUE;
    // A link shows what it points to; a broken one shows itself.
    BEntry entry(ref, true);
    if (entry.InitCheck() != B_OK || !entry.Exists())
        entry.SetTo(ref, false);
    if (entry.InitCheck() != B_OK)
        return entry.InitCheck();
    BNode node(&entry);
    if (node.InitCheck() != B_OK)
        return node.InitCheck();
    BNodeInfo nodeInfo(&node);
    return nodeInfo.GetTrackerIcon(icon, which);
}
