// find_directory(): the Be folder constants mapped onto the freedesktop layout.
#include <FindDirectory.h>

#include "StorageSupport.h"
#include "Trash.h"
#include "XdgFolders.h"

#include <Directory.h>
#include <Path.h>

#include <limits.h>
#include <stdlib.h>
#include <string.h>

#include <string>

using BPrivate::join_path;
using BPrivate::xdg_home_folder;

namespace {

std::string data_home() {
    return xdg_home_folder("XDG_DATA_HOME", ".local/share");
}

std::string config_home() {
    return xdg_home_folder("XDG_CONFIG_HOME", ".config");
}

std::string state_home() {
    return xdg_home_folder("XDG_STATE_HOME", ".local/state");
}

std::string temporary_folder() {
    const char* folder = getenv("TMPDIR");
    return folder != NULL && folder[0] == '/' ? folder : "/tmp";
}

// The folder's path, or an empty string for a folder without a Linux meaning.
std::string folder_for(directory_which which) {
    std::string home = BPrivate::home_folder();
    switch (which) {
    case B_DESKTOP_DIRECTORY:
        return BPrivate::xdg_user_folder("DESKTOP", "Desktop");

    case B_USER_DIRECTORY:
        return home;
    case B_USER_CONFIG_DIRECTORY:
    case B_USER_SETTINGS_DIRECTORY:
        return config_home();
    case B_USER_DATA_DIRECTORY:
        return data_home();
    case B_USER_CACHE_DIRECTORY:
        return xdg_home_folder("XDG_CACHE_HOME", ".cache");
    case B_USER_FONTS_DIRECTORY:
        return join_path(data_home(), "fonts");
    case B_USER_SOUNDS_DIRECTORY:
        return join_path(data_home(), "sounds");
    case B_USER_APPS_DIRECTORY:
    case B_USER_DESKBAR_DIRECTORY:
        return join_path(data_home(), "applications");
    case B_USER_BIN_DIRECTORY:
        return join_path(home, ".local/bin");
    case B_USER_LIB_DIRECTORY:
        return join_path(home, ".local/lib");
    case B_USER_HEADERS_DIRECTORY:
        return join_path(home, ".local/include");
    case B_USER_VAR_DIRECTORY:
        return state_home();
    case B_USER_LOG_DIRECTORY:
        return join_path(state_home(), "log");

    case B_SYSTEM_DIRECTORY:
        return "/usr";
    case B_SYSTEM_BIN_DIRECTORY:
        return "/usr/bin";
    case B_SYSTEM_LIB_DIRECTORY:
        return "/usr/lib";
    case B_SYSTEM_FONTS_DIRECTORY:
        return "/usr/share/fonts";
    case B_SYSTEM_DATA_DIRECTORY:
        return "/usr/share";
    case B_SYSTEM_SOUNDS_DIRECTORY:
        return "/usr/share/sounds";
    case B_SYSTEM_DOCUMENTATION_DIRECTORY:
        return "/usr/share/doc";
    case B_SYSTEM_HEADERS_DIRECTORY:
        return "/usr/include";
    case B_SYSTEM_APPS_DIRECTORY:
    case B_SYSTEM_DESKBAR_DIRECTORY:
    case B_APPS_DIRECTORY:
        return "/usr/share/applications";
    case B_SYSTEM_BOOT_DIRECTORY:
        return "/boot";
    case B_BEOS_ETC_DIRECTORY:
    case B_SYSTEM_ETC_DIRECTORY:
    case B_SYSTEM_SETTINGS_DIRECTORY:
        return "/etc";
    case B_SYSTEM_LOG_DIRECTORY:
        return "/var/log";
    case B_SYSTEM_SPOOL_DIRECTORY:
        return "/var/spool";
    case B_SYSTEM_TEMP_DIRECTORY:
        return temporary_folder();
    case B_SYSTEM_VAR_DIRECTORY:
        return "/var";
    case B_SYSTEM_CACHE_DIRECTORY:
        return "/var/cache";

    default:
        return std::string();
    }
}

} // namespace

status_t find_directory(directory_which which, dev_t volume, bool createIt, char* returnedPath,
                        int32 length) {
    if (returnedPath == NULL || length <= 0)
        return B_BAD_VALUE;

    std::string path;
    if (which == B_TRASH_DIRECTORY) {
        // File managers expect the trash to exist; it is made whenever it is asked for.
        if (status_t status = BPrivate::home_trash_files_folder(&path); status != B_OK)
            return status;
    } else {
        path = folder_for(which);
        if (path.empty())
            return B_BAD_VALUE;
        if (createIt) {
            if (status_t status = create_directory(path.c_str(), 0755); status != B_OK)
                return status;
        }
    }
    if (path.size() + 1 > (size_t)length)
        return B_BUFFER_OVERFLOW;
    memcpy(returnedPath, path.c_str(), path.size() + 1);
    return B_OK;
}

status_t find_directory(directory_which which, BPath* path, bool createIt, BVolume* volume) {
    if (path == NULL)
        return B_BAD_VALUE;
    // Paths longer than Be's limit are fine here: BPath holds any length.
    std::string buffer(PATH_MAX, '\0');
    status_t status = find_directory(which, (dev_t)-1, createIt, buffer.data(), PATH_MAX);
    if (status != B_OK) {
        path->Unset();
        return status;
    }
    return path->SetTo(buffer.c_str());
}
