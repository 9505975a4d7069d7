// Helpers shared by the storage kit's classes: errno translation and the way a path
// string becomes an entry (folder resolved, leaf kept).
//
// How the kit meets Linux: an entry is kept as the canonical path of its folder plus
// its leaf name, exactly what Be's BEntry means by (folder, name). Nodes are open
// descriptors. entry_refs and node_refs carry inode numbers, which Linux cannot open,
// so every place that hands one out also records the path it came from
// (KnownPaths.h); resolving a ref asks that record and checks the answer with
// lstat() before trusting it.
#ifndef _STORAGE_STORAGE_SUPPORT_H
#define _STORAGE_STORAGE_SUPPORT_H

#include <Entry.h>
#include <SupportDefs.h>

#include <string>

namespace BPrivate {

// errno to status_t, with the storage kit's readings: ENODATA (a missing attribute)
// is B_ENTRY_NOT_FOUND, ENOTSUP is B_NOT_SUPPORTED, ELOOP is B_LINK_LIMIT.
status_t status_for_errno(int error);

// The errno of the last failed call, translated.
status_t last_error();

std::string join_path(const std::string& directory, const std::string& name);
// Splits at the last "/"; "/a" gives "/" and "a". The path must be absolute and
// without a trailing "/".
void split_path(const std::string& path, std::string* directory, std::string* name);

// Where an entry lives: the canonical folder path and the leaf name ("." for "/").
struct EntryLocation {
    std::string directory;
    std::string name;
    dev_t device = 0;
    ino_t directoryNode = 0;

    std::string Path() const { return join_path(directory, name); }
};

// Resolves path (relative ones against the working folder). The folder must exist;
// the leaf need not. With traverse, a final symbolic link is followed to its target
// (B_ENTRY_NOT_FOUND for a broken link, B_LINK_LIMIT for a loop).
status_t resolve_entry(const char* path, bool traverse, EntryLocation* location);
status_t resolve_entry(const entry_ref& ref, bool traverse, EntryLocation* location);

// The absolute path an entry_ref names, by way of its folder's recorded path.
status_t path_for_ref(const entry_ref& ref, std::string* path);

// Fills ref from a location and records the folder's path.
status_t ref_for_location(const EntryLocation& location, entry_ref* ref);

// Copies source into a buffer of size bytes, always NUL-terminated and cut if need be.
void copy_string(char* buffer, const char* source, size_t size);

// A path relative to base (absolute paths stay as they are).
std::string relative_to(const std::string& base, const char* path);

} // namespace BPrivate

#endif // _STORAGE_STORAGE_SUPPORT_H
