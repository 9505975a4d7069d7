// Limits and open modes of the storage kit.
#ifndef _STORAGE_DEFS_H
#define _STORAGE_DEFS_H

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

// Buffer sizes, NUL included. Linux allows longer paths than Be did; the kit's own
// objects hold any length, these only size the fixed buffers Be callers pass in.
#define B_DEV_NAME_LENGTH 128
#define B_FILE_NAME_LENGTH 256
#define B_PATH_NAME_LENGTH 1024
#define B_ATTR_NAME_LENGTH (B_FILE_NAME_LENGTH - 1)
#define B_MIME_TYPE_LENGTH (B_ATTR_NAME_LENGTH - 15)
#define B_MAX_SYMLINKS 40

// Open modes for BFile, the platform's own open() flags as on Be.
enum {
    B_READ_ONLY = O_RDONLY,
    B_WRITE_ONLY = O_WRONLY,
    B_READ_WRITE = O_RDWR,

    B_FAIL_IF_EXISTS = O_EXCL,
    B_CREATE_FILE = O_CREAT,
    B_ERASE_FILE = O_TRUNC,
    B_OPEN_AT_END = O_APPEND,
};

enum node_flavor {
    B_FILE_NODE = 0x01,
    B_SYMLINK_NODE = 0x02,
    B_DIRECTORY_NODE = 0x04,
    B_ANY_NODE = 0x07,
};

#endif // _STORAGE_DEFS_H
