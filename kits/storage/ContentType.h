// MIME types from the shared MIME database, through GIO (kit-private).
#ifndef _STORAGE_CONTENT_TYPE_H
#define _STORAGE_CONTENT_TYPE_H

#include <SupportDefs.h>

#include <string>
#include <sys/stat.h>
#include <vector>

namespace BPrivate {

// The type of the node at path (described by info, from lstat): for a regular
// file the database's match of its name and, when the name does not settle it,
// of its first bytes; inode/directory, inode/symlink and the other inode/ types
// for the rest. An empty regular file whose name says nothing is text/plain, so
// that a new empty file opens in a text editor.
status_t guess_type_for_node(const char* path, const struct stat& info, std::string* type);

// The database's guess from a name, from data, or both (either may be null).
std::string guess_type(const char* name, const void* data, size_t length);

// Icon names for a type, most specific first, without the symbolic variants.
std::vector<std::string> icon_names_for_type(const char* type);
// The database's description ("plain text document"); empty when it has none.
std::string description_for_type(const char* type);
// Whether the type is the other or inherits from it (text/x-csrc is text/plain).
bool type_is_a(const char* type, const char* other);
// Whether files of the type may be programs (executables and scripts).
bool type_can_be_executable(const char* type);
// Whether the database knows the type; for a supertype alone ("text"), whether it
// knows any type below it.
bool type_is_known(const char* type);

} // namespace BPrivate

#endif // _STORAGE_CONTENT_TYPE_H
