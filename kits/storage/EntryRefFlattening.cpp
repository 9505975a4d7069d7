#include "EntryRefFlattening.h"

#include "KnownPaths.h"

#include <string.h>
#include <sys/stat.h>

#include <string>

namespace BPrivate {

namespace {

const size_t kHeaderSize = sizeof(int32) + sizeof(int64);

// The recorded path of the ref's folder, or nothing when the kit never saw it.
std::string directory_path(const entry_ref& ref) {
    std::string path;
    if (find_node_path(ref.device, ref.directory, &path) != B_OK)
        path.clear();
    return path;
}

size_t flattened_size(const entry_ref& ref, const std::string& directory) {
    size_t size = kHeaderSize;
    if (ref.name != NULL) {
        size += strlen(ref.name) + 1;
        if (!directory.empty())
            size += directory.size() + 1;
    }
    return size;
}

} // namespace

size_t flattened_entry_ref_size(const entry_ref& ref) {
    return flattened_size(ref, directory_path(ref));
}

status_t flatten_entry_ref(const entry_ref& ref, void* buffer, size_t* size) {
    if (buffer == NULL || size == NULL)
        return B_BAD_VALUE;
    std::string directory = directory_path(ref);
    size_t needed = flattened_size(ref, directory);
    if (*size < needed) {
        *size = needed;
        return B_NO_MEMORY;
    }

    char* out = static_cast<char*>(buffer);
    // Be's dev_t is 32 bits wide; Linux device numbers of ordinary disks fit, and
    // the folder path written below corrects the rest on the way back.
    int32 device = ref.device == (dev_t)-1 ? -1 : (int32)(uint32)ref.device;
    int64 node = (int64)ref.directory;
    memcpy(out, &device, sizeof(device));
    memcpy(out + sizeof(device), &node, sizeof(node));
    size_t used = kHeaderSize;
    if (ref.name != NULL) {
        size_t nameSize = strlen(ref.name) + 1;
        memcpy(out + used, ref.name, nameSize);
        used += nameSize;
        if (!directory.empty()) {
            memcpy(out + used, directory.c_str(), directory.size() + 1);
            used += directory.size() + 1;
        }
    }
    *size = used;
    return B_OK;
}

status_t unflatten_entry_ref(const void* data, size_t size, entry_ref* ref) {
    if (data == NULL || ref == NULL || size < kHeaderSize)
        return B_BAD_VALUE;

    const char* in = static_cast<const char*>(data);
    int32 device;
    int64 node;
    memcpy(&device, in, sizeof(device));
    memcpy(&node, in + sizeof(device), sizeof(node));

    const char* name = in + kHeaderSize;
    size_t nameSpace = size - kHeaderSize;
    size_t nameLength = strnlen(name, nameSpace);

    entry_ref result;
    result.device = device == -1 ? (dev_t)-1 : (dev_t)(uint32)device;
    result.directory = (ino_t)node;
    if (nameSpace > 0) {
        std::string nameCopy(name, nameLength);
        if (result.set_name(nameCopy.c_str()) != B_OK)
            return B_NO_MEMORY;
    }

    // The folder path, when present, tells where the folder is and lets the full
    // device number replace the 32 bits Be's layout keeps.
    if (nameLength + 1 < nameSpace) {
        const char* directory = name + nameLength + 1;
        size_t directoryLength = strnlen(directory, nameSpace - nameLength - 1);
        std::string directoryPath(directory, directoryLength);
        struct stat directoryStat;
        if (!directoryPath.empty() && directoryPath[0] == '/' &&
            lstat(directoryPath.c_str(), &directoryStat) == 0 &&
            directoryStat.st_ino == result.directory &&
            (uint32)directoryStat.st_dev == (uint32)result.device) {
            result.device = directoryStat.st_dev;
            remember_node_path(directoryStat.st_dev, directoryStat.st_ino, directoryPath);
        }
    }

    *ref = result;
    return B_OK;
}

} // namespace BPrivate
