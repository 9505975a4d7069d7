#include <fs_info.h>

#include "StorageSupport.h"

#include <sys/stat.h>

dev_t dev_for_path(const char* path) {
    if (path == NULL)
        return (dev_t)(int64)B_BAD_VALUE;
    struct stat pathStat;
    if (stat(path, &pathStat) != 0)
        return (dev_t)(int64)BPrivate::last_error();
    return pathStat.st_dev;
}
