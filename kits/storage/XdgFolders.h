// The user's folders as the freedesktop base and user-dirs rules name them. Read
// from the environment at every call, so a changed HOME takes effect at once.
#ifndef _STORAGE_XDG_FOLDERS_H
#define _STORAGE_XDG_FOLDERS_H

#include <string>

namespace BPrivate {

// $HOME when it is absolute, else the password database's home.
std::string home_folder();

// An XDG_*_HOME variable when it holds an absolute path, else HOME/fallback.
std::string xdg_home_folder(const char* variable, const char* fallbackBelowHome);

// XDG_<key>_DIR from $XDG_CONFIG_HOME/user-dirs.dirs, or HOME/fallback (empty when
// fallbackBelowHome is NULL and the file has no answer).
std::string xdg_user_folder(const char* key, const char* fallbackBelowHome);

// The home trash: $XDG_DATA_HOME/Trash.
std::string home_trash_folder();

} // namespace BPrivate

#endif // _STORAGE_XDG_FOLDERS_H
