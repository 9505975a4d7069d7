// Well-known folders. On Linux they are the XDG base and user folders and the usual
// system folders; the volume argument does not matter, every answer is for the
// user's home and the running system.
#ifndef _FIND_DIRECTORY_H
#define _FIND_DIRECTORY_H

#include <SupportDefs.h>

// A fixed width in C++, so that any number a caller passes is a valid value (and an
// unknown one is answered with B_BAD_VALUE).
#ifdef __cplusplus
typedef enum : int32 {
#else
typedef enum {
#endif
    B_DESKTOP_DIRECTORY = 0,
    B_TRASH_DIRECTORY,

    B_SYSTEM_DIRECTORY = 1000,
    B_SYSTEM_ADDONS_DIRECTORY = 1002,
    B_SYSTEM_BOOT_DIRECTORY,
    B_SYSTEM_FONTS_DIRECTORY,
    B_SYSTEM_LIB_DIRECTORY,
    B_SYSTEM_SERVERS_DIRECTORY,
    B_SYSTEM_APPS_DIRECTORY,
    B_SYSTEM_BIN_DIRECTORY,
    B_SYSTEM_DOCUMENTATION_DIRECTORY = 1010,
    B_SYSTEM_PREFERENCES_DIRECTORY,
    B_SYSTEM_TRANSLATORS_DIRECTORY,
    B_SYSTEM_MEDIA_NODES_DIRECTORY,
    B_SYSTEM_SOUNDS_DIRECTORY,
    B_SYSTEM_DATA_DIRECTORY,
    B_SYSTEM_DEVELOP_DIRECTORY,
    B_SYSTEM_PACKAGES_DIRECTORY,
    B_SYSTEM_HEADERS_DIRECTORY,
    B_SYSTEM_DESKBAR_DIRECTORY,

    B_SYSTEM_ETC_DIRECTORY = 2008,
    B_SYSTEM_SETTINGS_DIRECTORY = 2010,
    B_SYSTEM_LOG_DIRECTORY = 2012,
    B_SYSTEM_SPOOL_DIRECTORY,
    B_SYSTEM_TEMP_DIRECTORY,
    B_SYSTEM_VAR_DIRECTORY,
    B_SYSTEM_CACHE_DIRECTORY = 2020,

    B_USER_DIRECTORY = 3000,
    B_USER_CONFIG_DIRECTORY,
    B_USER_ADDONS_DIRECTORY,
    B_USER_BOOT_DIRECTORY,
    B_USER_FONTS_DIRECTORY,
    B_USER_LIB_DIRECTORY,
    B_USER_SETTINGS_DIRECTORY,
    B_USER_DESKBAR_DIRECTORY,
    B_USER_PRINTERS_DIRECTORY,
    B_USER_TRANSLATORS_DIRECTORY,
    B_USER_MEDIA_NODES_DIRECTORY,
    B_USER_SOUNDS_DIRECTORY,
    B_USER_DATA_DIRECTORY,
    B_USER_CACHE_DIRECTORY,
    B_USER_PACKAGES_DIRECTORY,
    B_USER_HEADERS_DIRECTORY,
    B_USER_DEVELOP_DIRECTORY = 3028,
    B_USER_DOCUMENTATION_DIRECTORY,
    B_USER_SERVERS_DIRECTORY,
    B_USER_APPS_DIRECTORY,
    B_USER_BIN_DIRECTORY,
    B_USER_PREFERENCES_DIRECTORY,
    B_USER_ETC_DIRECTORY,
    B_USER_LOG_DIRECTORY,
    B_USER_SPOOL_DIRECTORY,
    B_USER_VAR_DIRECTORY,

    B_APPS_DIRECTORY = 4000,
    B_PREFERENCES_DIRECTORY,
    B_UTILITIES_DIRECTORY,
    B_PACKAGE_LINKS_DIRECTORY,

    // The R5 names of the system folders.
    B_BEOS_DIRECTORY = 1000,
    B_BEOS_SYSTEM_DIRECTORY,
    B_BEOS_ADDONS_DIRECTORY,
    B_BEOS_BOOT_DIRECTORY,
    B_BEOS_FONTS_DIRECTORY,
    B_BEOS_LIB_DIRECTORY,
    B_BEOS_SERVERS_DIRECTORY,
    B_BEOS_APPS_DIRECTORY,
    B_BEOS_BIN_DIRECTORY,
    B_BEOS_ETC_DIRECTORY,
    B_BEOS_DOCUMENTATION_DIRECTORY,
    B_BEOS_PREFERENCES_DIRECTORY,
    B_BEOS_TRANSLATORS_DIRECTORY,
    B_BEOS_MEDIA_NODES_DIRECTORY,
    B_BEOS_SOUNDS_DIRECTORY,
} directory_which;

#ifdef __cplusplus
extern "C" {
#endif

// Writes the folder's path with its NUL into returnedPath (length bytes);
// B_BUFFER_OVERFLOW when it does not fit, B_BAD_VALUE for a folder without a Linux
// meaning. createIt makes the folder (and those above it) when missing. The Trash
// folder is always created, with its "info" sibling, as file managers expect.
status_t find_directory(directory_which which, dev_t volume, bool createIt, char* returnedPath,
                        int32 length);

#ifdef __cplusplus
}

class BPath;
class BVolume;

status_t find_directory(directory_which which, BPath* path, bool createIt = false,
                        BVolume* volume = NULL);
#endif

#endif // _FIND_DIRECTORY_H
