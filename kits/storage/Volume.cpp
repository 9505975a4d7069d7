// BVolume: a mounted file system, found in /proc/self/mountinfo by its device number.
// GetIcon() lives with the icon code (VolumeIcon.cpp).
#include <Volume.h>

#include "StorageSupport.h"

#include <Directory.h>

#include <ctype.h>
#include <dirent.h>
#include <errno.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <memory>
#include <new>
#include <string>
#include <string_view>

namespace {

struct Mount {
    std::string mountPoint;
    std::string type;
    std::string source;
    bool readOnly = false;
};

// mountinfo writes blanks, tabs, newlines and backslashes as a backslash and three
// octal digits.
std::string unescape_octal(const std::string& text) {
    std::string result;
    for (size_t i = 0; i < text.size(); i++) {
        bool octal = text[i] == '\\' && i + 3 < text.size();
        for (size_t j = 1; j <= 3 && octal; j++)
            octal = text[i + j] >= '0' && text[i + j] <= '7';
        if (octal) {
            result +=
                (char)((text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 + (text[i + 3] - '0'));
            i += 3;
        } else {
            result += text[i];
        }
    }
    return result;
}

bool has_option(std::string_view options, std::string_view option) {
    while (!options.empty()) {
        size_t comma = options.find(',');
        if (options.substr(0, comma) == option)
            return true;
        if (comma == std::string_view::npos)
            break;
        options.remove_prefix(comma + 1);
    }
    return false;
}

// The blanks of the "C" locale; the locale the user picked must not change how a
// kernel file splits.
bool is_blank(char character) {
    return character == ' ' || character == '\t' || character == '\n' || character == '\v' ||
           character == '\f' || character == '\r';
}

// The next blank-separated word of line, which loses the word; empty at the end.
std::string_view next_word(std::string_view* line) {
    size_t start = 0;
    while (start < line->size() && is_blank((*line)[start]))
        start++;
    size_t end = start;
    while (end < line->size() && !is_blank((*line)[end]))
        end++;
    std::string_view word = line->substr(start, end - start);
    line->remove_prefix(end);
    return word;
}

struct FileCloser {
    void operator()(FILE* file) const { fclose(file); }
};

using FilePointer = std::unique_ptr<FILE, FileCloser>;

// getline(3) grows its buffer by realloc(), so the owner frees whatever it holds last.
struct LineBuffer {
    char* bytes = NULL;
    size_t capacity = 0;
    ~LineBuffer() { free(bytes); }
};

// Hands every line of file, without its newline, to handle; lines of any length.
template <typename Handler>
void for_each_line(FILE* file, Handler handle) {
    LineBuffer buffer;
    ssize_t length;
    while ((length = getline(&buffer.bytes, &buffer.capacity, file)) >= 0) {
        std::string_view line(buffer.bytes, (size_t)length);
        if (!line.empty() && line.back() == '\n')
            line.remove_suffix(1);
        handle(line);
    }
}

// One line of mountinfo: six words, optional words up to "-", then type, source and
// super block options. False when the six leading words are not all there.
bool parse_mount_line(std::string_view line, std::string_view* numbers, Mount* mount) {
    std::string_view words[6];
    for (std::string_view& word : words) {
        word = next_word(&line);
        if (word.empty())
            return false;
    }
    std::string_view word;
    do
        word = next_word(&line);
    while (!word.empty() && word != "-");
    std::string_view type = next_word(&line);
    std::string_view source = next_word(&line);
    std::string_view superOptions = next_word(&line);
    *numbers = words[2];
    mount->mountPoint = unescape_octal(std::string(words[4]));
    mount->type = std::string(type);
    mount->source = unescape_octal(std::string(source));
    mount->readOnly = has_option(words[5], "ro") || has_option(superOptions, "ro");
    return true;
}

bool same_device(const std::string& path, dev_t device) {
    struct stat pathStat;
    return stat(path.c_str(), &pathStat) == 0 && pathStat.st_dev == device;
}

// The topmost mount of device. mountinfo's major:minor is not always the device
// stat() reports (btrfs subvolumes), so a miss falls back to stat() of each mount point.
bool find_mount(dev_t device, Mount* found) {
    FilePointer file(fopen("/proc/self/mountinfo", "re"));
    if (file == NULL)
        return false;
    std::string wanted = std::to_string(major(device)) + ":" + std::to_string(minor(device));
    bool matched = false;
    Mount fallback;
    bool fallbackMatched = false;
    for_each_line(file.get(), [&](std::string_view line) {
        std::string_view numbers;
        Mount mount;
        if (!parse_mount_line(line, &numbers, &mount))
            return;
        if (numbers == wanted) {
            *found = mount;
            matched = true;
        } else if (!matched && same_device(mount.mountPoint, device)) {
            fallback = mount;
            fallbackMatched = true;
        }
    });
    if (!matched && fallbackMatched)
        *found = fallback;
    return matched || fallbackMatched;
}

// A whole decimal int at the start of file after blanks, as sysfs writes its flags;
// false when there is none or it does not fit.
bool read_leading_int(FILE* file, int* value) {
    int character;
    do
        character = getc(file);
    while (character != EOF && is_blank((char)character));
    bool negative = character == '-';
    if (character == '-' || character == '+')
        character = getc(file);
    // INT_MIN reaches one further than INT_MAX; anything beyond does not fit an int.
    const unsigned long long limit = (unsigned long long)INT_MAX + (negative ? 1 : 0);
    unsigned long long magnitude = 0;
    bool digits = false;
    bool overflow = false;
    while (character >= '0' && character <= '9') {
        digits = true;
        if (!overflow) {
            magnitude = magnitude * 10 + (unsigned long long)(character - '0');
            overflow = magnitude > limit;
        }
        character = getc(file);
    }
    if (!digits || overflow)
        return false;
    *value = negative ? (int)(-(long long)magnitude) : (int)magnitude;
    return true;
}

const char* const kMemoryFileSystems[] = {
    "tmpfs",   "ramfs",   "proc",     "sysfs",       "devtmpfs",  "devpts",     "cgroup",
    "cgroup2", "debugfs", "tracefs",  "mqueue",      "bpf",       "pstore",     "nsfs",
    "fusectl", "autofs",  "configfs", "binfmt_misc", "hugetlbfs", "rpc_pipefs", "securityfs"};

const char* const kNetworkFileSystems[] = {"nfs",  "nfs4", "cifs", "smb3",       "smbfs",
                                           "ceph", "9p",   "afs",  "fuse.sshfs", "glusterfs"};

template <size_t count>
bool listed(const std::string& type, const char* const (&names)[count]) {
    for (const char* name : names)
        if (type == name)
            return true;
    return false;
}

// udev names labels with \xNN escapes for unusual bytes.
std::string unescape_label(const std::string& text) {
    std::string result;
    for (size_t i = 0; i < text.size(); i++) {
        if (text[i] == '\\' && i + 3 < text.size() && text[i + 1] == 'x' &&
            isxdigit((unsigned char)text[i + 2]) && isxdigit((unsigned char)text[i + 3])) {
            result += (char)strtol(text.substr(i + 2, 2).c_str(), NULL, 16);
            i += 3;
        } else {
            result += text[i];
        }
    }
    return result;
}

struct DirectoryCloser {
    void operator()(DIR* directory) const { closedir(directory); }
};

std::string label_of(const std::string& source) {
    if (source.empty() || source[0] != '/')
        return std::string();
    std::unique_ptr<char, decltype(&free)> device(realpath(source.c_str(), NULL), &free);
    if (device == NULL)
        return std::string();
    std::unique_ptr<DIR, DirectoryCloser> labels(opendir("/dev/disk/by-label"));
    if (labels == NULL)
        return std::string();
    while (struct dirent* entry = readdir(labels.get())) {
        if (entry->d_name[0] == '.')
            continue;
        std::string link = std::string("/dev/disk/by-label/") + entry->d_name;
        std::unique_ptr<char, decltype(&free)> target(realpath(link.c_str(), NULL), &free);
        if (target != NULL && strcmp(target.get(), device.get()) == 0)
            return unescape_label(entry->d_name);
    }
    return std::string();
}

} // namespace

struct BVolume::Private {
    Mount mount;
};

BVolume::BVolume() : fPrivate(new (std::nothrow) Private), fDevice((dev_t)-1), fStatus(B_NO_INIT) {}

BVolume::BVolume(dev_t device)
    : fPrivate(new (std::nothrow) Private), fDevice((dev_t)-1), fStatus(B_NO_INIT) {
    SetTo(device);
}

BVolume::BVolume(const BVolume& volume)
    : fPrivate(new (std::nothrow) Private), fDevice((dev_t)-1), fStatus(B_NO_INIT) {
    *this = volume;
}

BVolume::~BVolume() {
    delete fPrivate;
}

status_t BVolume::InitCheck() const {
    return fStatus;
}

status_t BVolume::SetTo(dev_t device) {
    Unset();
    if (fPrivate == NULL)
        return fStatus = B_NO_MEMORY;
    Mount mount;
    if (!find_mount(device, &mount))
        return fStatus = B_BAD_VALUE;
    fPrivate->mount = mount;
    fDevice = device;
    return fStatus = B_OK;
}

void BVolume::Unset() {
    if (fPrivate != NULL)
        fPrivate->mount = Mount();
    fDevice = (dev_t)-1;
    fStatus = B_NO_INIT;
}

dev_t BVolume::Device() const {
    return fDevice;
}

status_t BVolume::GetRootDirectory(BDirectory* directory) const {
    if (directory == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK)
        return B_NO_INIT;
    return directory->SetTo(fPrivate->mount.mountPoint.c_str());
}

off_t BVolume::Capacity() const {
    struct statvfs info;
    if (fStatus != B_OK)
        return B_NO_INIT;
    if (statvfs(fPrivate->mount.mountPoint.c_str(), &info) != 0)
        return BPrivate::last_error();
    return (off_t)info.f_blocks * (off_t)info.f_frsize;
}

off_t BVolume::FreeBytes() const {
    struct statvfs info;
    if (fStatus != B_OK)
        return B_NO_INIT;
    if (statvfs(fPrivate->mount.mountPoint.c_str(), &info) != 0)
        return BPrivate::last_error();
    return (off_t)info.f_bavail * (off_t)info.f_frsize;
}

off_t BVolume::BlockSize() const {
    struct statvfs info;
    if (fStatus != B_OK)
        return B_NO_INIT;
    if (statvfs(fPrivate->mount.mountPoint.c_str(), &info) != 0)
        return BPrivate::last_error();
    return (off_t)info.f_bsize;
}

status_t BVolume::GetName(char* buffer) const {
    if (buffer == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK)
        return B_NO_INIT;
    std::string name = label_of(fPrivate->mount.source);
    if (name.empty()) {
        const std::string& mountPoint = fPrivate->mount.mountPoint;
        name = mountPoint == "/" ? mountPoint : mountPoint.substr(mountPoint.rfind('/') + 1);
    }
    BPrivate::copy_string(buffer, name.c_str(), B_FILE_NAME_LENGTH);
    return B_OK;
}

status_t BVolume::SetName(const char* name) {
    if (name == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK)
        return B_NO_INIT;
    return B_NOT_SUPPORTED;
}

bool BVolume::IsRemovable() const {
    if (fStatus != B_OK)
        return false;
    // /sys/dev/block/M:m is the partition or the disk; the flag sits on the disk.
    std::string block =
        "/sys/dev/block/" + std::to_string(major(fDevice)) + ":" + std::to_string(minor(fDevice));
    std::unique_ptr<char, decltype(&free)> real(realpath(block.c_str(), NULL), &free);
    if (real == NULL)
        return false;
    std::string folder = real.get();
    for (int level = 0; level < 2; level++) {
        FilePointer flag(fopen((folder + "/removable").c_str(), "re"));
        int value = 0;
        if (flag != NULL && read_leading_int(flag.get(), &value))
            return value != 0;
        folder = folder.substr(0, folder.rfind('/'));
    }
    return false;
}

bool BVolume::IsReadOnly() const {
    if (fStatus != B_OK)
        return false;
    struct statvfs info;
    if (statvfs(fPrivate->mount.mountPoint.c_str(), &info) == 0)
        return (info.f_flag & ST_RDONLY) != 0;
    return fPrivate->mount.readOnly;
}

bool BVolume::IsPersistent() const {
    return fStatus == B_OK && !listed(fPrivate->mount.type, kMemoryFileSystems);
}

bool BVolume::IsShared() const {
    return fStatus == B_OK && listed(fPrivate->mount.type, kNetworkFileSystems);
}

bool BVolume::KnowsMime() const {
    return KnowsAttr();
}

bool BVolume::KnowsAttr() const {
    if (fStatus != B_OK)
        return false;
    // Asking for an attribute nobody sets tells whether the user namespace exists.
    char value;
    ssize_t result =
        lgetxattr(fPrivate->mount.mountPoint.c_str(), "user.glimrow.probe", &value, sizeof(value));
    return result >= 0 || errno == ENODATA || errno == ERANGE;
}

bool BVolume::KnowsQuery() const {
    return false;
}

bool BVolume::operator==(const BVolume& volume) const {
    if (fStatus != B_OK || volume.fStatus != B_OK)
        return fStatus != B_OK && volume.fStatus != B_OK;
    return fDevice == volume.fDevice;
}

bool BVolume::operator!=(const BVolume& volume) const {
    return !(*this == volume);
}

BVolume& BVolume::operator=(const BVolume& volume) {
    if (this == &volume)
        return *this;
    if (volume.fStatus != B_OK || fPrivate == NULL) {
        Unset();
        return *this;
    }
    fPrivate->mount = volume.fPrivate->mount;
    fDevice = volume.fDevice;
    fStatus = B_OK;
    return *this;
}
