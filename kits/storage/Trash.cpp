#include "Trash.h"

#include "StorageSupport.h"
#include "XdgFolders.h"

#include <Directory.h>
#include <Errors.h>

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

namespace BPrivate {

namespace {

status_t make_trash(const std::string& root) {
    for (const std::string& folder : {root, root + "/files", root + "/info"}) {
        if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
            return last_error();
        struct stat folderStat;
        if (lstat(folder.c_str(), &folderStat) != 0)
            return last_error();
        if (!S_ISDIR(folderStat.st_mode))
            return B_NOT_A_DIRECTORY;
    }
    return B_OK;
}

bool same_node(const std::string& a, const std::string& b) {
    struct stat aStat;
    struct stat bStat;
    return stat(a.c_str(), &aStat) == 0 && stat(b.c_str(), &bStat) == 0 &&
           aStat.st_dev == bStat.st_dev && aStat.st_ino == bStat.st_ino;
}

bool is_folder(const std::string& path) {
    struct stat folderStat;
    return lstat(path.c_str(), &folderStat) == 0 && S_ISDIR(folderStat.st_mode);
}

// The mount point of the file system that holds the existing folder at path.
std::string top_directory_of(const std::string& path) {
    struct stat currentStat;
    if (stat(path.c_str(), &currentStat) != 0)
        return std::string();
    std::string current = path;
    while (current != "/") {
        std::string parent;
        std::string name;
        split_path(current, &parent, &name);
        struct stat parentStat;
        if (stat(parent.c_str(), &parentStat) != 0 || parentStat.st_dev != currentStat.st_dev)
            return current;
        current = parent;
    }
    return current;
}

status_t volume_trash_for(const std::string& source, TrashFolder* trash) {
    std::string directory;
    std::string name;
    split_path(source, &directory, &name);
    std::string top = top_directory_of(directory);
    if (top.empty())
        return B_CROSS_DEVICE_LINK;
    std::string uid = std::to_string(getuid());

    // An administrator's shared .Trash counts only if it is a real sticky folder.
    std::string shared = join_path(top, ".Trash");
    struct stat sharedStat;
    if (lstat(shared.c_str(), &sharedStat) == 0 && S_ISDIR(sharedStat.st_mode) &&
        (sharedStat.st_mode & S_ISVTX) != 0) {
        std::string root = shared + "/" + uid;
        if (make_trash(root) == B_OK) {
            *trash = {root, top};
            return B_OK;
        }
    }
    std::string root = join_path(top, ".Trash-" + uid);
    if (make_trash(root) != B_OK)
        return B_CROSS_DEVICE_LINK;
    *trash = {root, top};
    return B_OK;
}

std::string escape_path(const std::string& path) {
    static const char kHex[] = "0123456789ABCDEF";
    std::string escaped;
    for (unsigned char c : path) {
        if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
            strchr("/-_.~", c) != nullptr) {
            escaped += (char)c;
        } else {
            escaped += '%';
            escaped += kHex[c >> 4];
            escaped += kHex[c & 0xf];
        }
    }
    return escaped;
}

int rename_no_replace(const char* from, const char* to) {
    int result = renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
    if (result == 0 || (errno != EINVAL && errno != ENOSYS))
        return result;
    // A file system without RENAME_NOREPLACE: check, then rename (racy, but only there).
    struct stat existing;
    if (lstat(to, &existing) == 0) {
        errno = EEXIST;
        return -1;
    }
    return rename(from, to);
}

status_t write_info(const std::string& infoPath, const std::string& text) {
    int descriptor = open(infoPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor < 0 && errno == EEXIST) {
        // An info file without its entry is an orphan; the name is free to take.
        descriptor = open(infoPath.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC | O_NOFOLLOW);
    }
    if (descriptor < 0)
        return last_error();
    size_t written = 0;
    while (written < text.size()) {
        ssize_t result = write(descriptor, text.data() + written, text.size() - written);
        if (result < 0 && errno == EINTR)
            continue;
        if (result <= 0) {
            status_t status = result < 0 ? last_error() : B_IO_ERROR;
            close(descriptor);
            unlink(infoPath.c_str());
            return status;
        }
        written += result;
    }
    if (close(descriptor) != 0)
        return last_error();
    return B_OK;
}

} // namespace

status_t home_trash_files_folder(std::string* path) {
    std::string root = home_trash_folder();
    std::string parent;
    std::string name;
    split_path(root, &parent, &name);
    if (status_t status = create_directory(parent.c_str(), 0700); status != B_OK)
        return status;
    if (status_t status = make_trash(root); status != B_OK)
        return status;
    *path = root + "/files";
    return B_OK;
}

bool trash_of_files_folder(const std::string& folderPath, TrashFolder* trash) {
    std::string root;
    std::string name;
    split_path(folderPath, &root, &name);
    if (name != "files" || !is_folder(root + "/info"))
        return false;

    std::string homeRoot = home_trash_folder();
    if (same_node(root, homeRoot)) {
        *trash = {homeRoot, std::string()};
        return true;
    }
    // Volume trashes: $topdir/.Trash-$uid or $topdir/.Trash/$uid.
    std::string uid = std::to_string(getuid());
    std::string above;
    std::string rootName;
    split_path(root, &above, &rootName);
    if (rootName == ".Trash-" + uid) {
        *trash = {root, above};
        return true;
    }
    std::string top;
    std::string aboveName;
    split_path(above, &top, &aboveName);
    if (rootName == uid && aboveName == ".Trash") {
        *trash = {root, top};
        return true;
    }
    return false;
}

std::string trash_info_text(const std::string& originalPath, time_t time) {
    struct tm local;
    localtime_r(&time, &local);
    char date[32];
    strftime(date, sizeof(date), "%Y-%m-%dT%H:%M:%S", &local);
    return "[Trash Info]\nPath=" + escape_path(originalPath) + "\nDeletionDate=" + date + "\n";
}

status_t move_to_trash(const std::string& source, const TrashFolder& requested,
                       const std::string& name, bool clobber, std::string* newPath) {
    struct stat sourceStat;
    struct stat trashStat;
    if (lstat(source.c_str(), &sourceStat) != 0)
        return last_error();
    if (stat(requested.FilesFolder().c_str(), &trashStat) != 0)
        return last_error();
    if (name.size() + strlen(".trashinfo") > NAME_MAX)
        return B_NAME_TOO_LONG;

    // An entry goes to the trash of its own file system: the home trash when it lies
    // on the home trash's device, else its volume's trash.
    TrashFolder trash = requested;
    if (sourceStat.st_dev != trashStat.st_dev) {
        std::string homeFiles;
        struct stat homeStat;
        if (home_trash_files_folder(&homeFiles) == B_OK &&
            stat(homeFiles.c_str(), &homeStat) == 0 && homeStat.st_dev == sourceStat.st_dev) {
            trash = {home_trash_folder(), std::string()};
        } else if (status_t status = volume_trash_for(source, &trash); status != B_OK) {
            return status;
        }
    }

    std::string target = trash.FilesFolder() + "/" + name;
    struct stat existing;
    if (!clobber && lstat(target.c_str(), &existing) == 0)
        return B_FILE_EXISTS;

    std::string original = source;
    if (!trash.topDirectory.empty()) {
        // Volume trashes record the path below their top folder.
        size_t length = trash.topDirectory == "/" ? 1 : trash.topDirectory.size() + 1;
        original = source.substr(length);
    }
    std::string infoPath = trash.InfoFile(name);
    if (status_t status = write_info(infoPath, trash_info_text(original, time(NULL)));
        status != B_OK)
        return status;

    int result = clobber ? rename(source.c_str(), target.c_str())
                         : rename_no_replace(source.c_str(), target.c_str());
    if (result != 0) {
        status_t status = last_error();
        unlink(infoPath.c_str());
        return status;
    }
    *newPath = target;
    return B_OK;
}

void forget_trashed(const TrashFolder& trash, const std::string& name) {
    unlink(trash.InfoFile(name).c_str());
}

void rename_trashed(const TrashFolder& trash, const std::string& oldName,
                    const std::string& newName) {
    if (newName.size() + strlen(".trashinfo") > NAME_MAX) {
        forget_trashed(trash, oldName);
        return;
    }
    rename(trash.InfoFile(oldName).c_str(), trash.InfoFile(newName).c_str());
}

} // namespace BPrivate
