#include "ProcTask.h"

#include <algorithm>
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace BPrivate {

namespace {

// The kernel keeps 16 bytes for a thread's name, the last one a NUL.
const size_t kLinuxNameSize = 16;

struct FileDescriptor {
    explicit FileDescriptor(int descriptor) : fDescriptor(descriptor) {}
    ~FileDescriptor() {
        if (fDescriptor >= 0)
            close(fDescriptor);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int fDescriptor;
};

void task_path(thread_id thread, const char* leaf, char* path, size_t size) {
    snprintf(path, size, "/proc/self/task/%d%s%s", (int)thread, leaf[0] != '\0' ? "/" : "", leaf);
}

// Reads a whole small /proc file; -1 on failure, errno set.
ssize_t read_small_file(const char* path, char* buffer, size_t size) {
    FileDescriptor file(open(path, O_RDONLY | O_CLOEXEC));
    if (file.fDescriptor < 0)
        return -1;

    size_t total = 0;
    while (total + 1 < size) {
        ssize_t bytes = read(file.fDescriptor, buffer + total, size - 1 - total);
        if (bytes < 0) {
            if (errno == EINTR)
                continue;
            return -1;
        }
        if (bytes == 0)
            break;
        total += (size_t)bytes;
    }
    buffer[total] = '\0';
    return (ssize_t)total;
}

} // namespace

bool proc_task_exists(thread_id thread) {
    if (thread <= 0)
        return false;

    char path[64];
    task_path(thread, "", path, sizeof(path));
    return access(path, F_OK) == 0;
}

status_t proc_task_read_name(thread_id thread, char* name, size_t size) {
    if (thread <= 0)
        return B_BAD_THREAD_ID;

    char path[64];
    task_path(thread, "comm", path, sizeof(path));
    char buffer[64];
    ssize_t length = read_small_file(path, buffer, sizeof(buffer));
    if (length < 0)
        return B_BAD_THREAD_ID;

    while (length > 0 && buffer[length - 1] == '\n')
        buffer[--length] = '\0';
    snprintf(name, size, "%s", buffer);
    return B_OK;
}

void proc_task_truncate_name(const char* source, char* name, size_t size) {
    if (size == 0)
        return;

    size_t length = strnlen(source, size - 1);
    // Never leave half of a multi-byte character behind: back up over continuation
    // bytes when the cut falls inside one.
    if (length == size - 1 && source[length] != '\0') {
        size_t end = length;
        while (end > 0 && ((unsigned char)source[end] & 0xc0) == 0x80)
            end--;
        length = end;
    }
    memcpy(name, source, length);
    name[length] = '\0';
}

status_t proc_task_write_name(thread_id thread, const char* name) {
    char linuxName[kLinuxNameSize];
    proc_task_truncate_name(name, linuxName, sizeof(linuxName));

    if (thread == (thread_id)gettid()) {
        if (prctl(PR_SET_NAME, linuxName, 0, 0, 0) != 0)
            return B_FROM_POSIX_ERROR(errno);
        return B_OK;
    }

    char path[64];
    task_path(thread, "comm", path, sizeof(path));
    FileDescriptor file(open(path, O_WRONLY | O_CLOEXEC));
    if (file.fDescriptor < 0)
        return errno == ENOENT ? B_BAD_THREAD_ID : B_FROM_POSIX_ERROR(errno);

    size_t length = strlen(linuxName);
    while (write(file.fDescriptor, linuxName, length) < 0) {
        if (errno != EINTR)
            return errno == ESRCH ? B_BAD_THREAD_ID : B_FROM_POSIX_ERROR(errno);
    }
    return B_OK;
}

status_t proc_task_read_stat(thread_id thread, ProcTaskStat* stat) {
    if (thread <= 0)
        return B_BAD_THREAD_ID;

    char path[64];
    task_path(thread, "stat", path, sizeof(path));
    char buffer[1024];
    if (read_small_file(path, buffer, sizeof(buffer)) < 0)
        return B_BAD_THREAD_ID;

    // "tid (name) S ppid ...": the name may hold spaces and parentheses, so the
    // fields start after the last ')'.
    const char* fields = strrchr(buffer, ')');
    if (fields == NULL || fields[1] != ' ')
        return B_BAD_DATA;
    fields += 2;

    stat->state = fields[0];
    // Fields after the state, counted from 1: ppid pgrp session tty_nr tpgid flags
    // minflt cminflt majflt cmajflt utime stime.
    const char* cursor = fields + 1;
    unsigned long long times[2] = {0, 0};
    for (int field = 1; field <= 12; field++) {
        while (*cursor == ' ')
            cursor++;
        if (*cursor == '\0')
            return B_BAD_DATA;
        char* end = NULL;
        unsigned long long value = strtoull(cursor, &end, 10);
        if (end == cursor)
            return B_BAD_DATA;
        if (field >= 11)
            times[field - 11] = value;
        cursor = end;
    }

    long ticksPerSecond = sysconf(_SC_CLK_TCK);
    if (ticksPerSecond <= 0)
        ticksPerSecond = 100;
    stat->userTime = (bigtime_t)(times[0] * 1000000ULL / (unsigned long long)ticksPerSecond);
    stat->kernelTime = (bigtime_t)(times[1] * 1000000ULL / (unsigned long long)ticksPerSecond);
    return B_OK;
}

std::vector<thread_id> proc_task_list() {
    std::vector<thread_id> threads;
    DIR* directory = opendir("/proc/self/task");
    if (directory == NULL)
        return threads;

    while (struct dirent* entry = readdir(directory)) {
        char* end = NULL;
        long id = strtol(entry->d_name, &end, 10);
        if (end != entry->d_name && *end == '\0' && id > 0)
            threads.push_back((thread_id)id);
    }
    closedir(directory);
    std::sort(threads.begin(), threads.end());
    return threads;
}

} // namespace BPrivate
