// The paths the kit has seen for (device, inode) pairs. Linux cannot open a node by
// its inode number, so entry_refs and node_refs are resolved through this record.
// Every answer is checked with lstat() against the pair before it is given out, so a
// stale path (the folder was renamed behind our back) is never trusted. The record
// only grows; it holds folders and the nodes someone asked a node_ref of, a few
// hundred bytes each.
#ifndef _STORAGE_KNOWN_PATHS_H
#define _STORAGE_KNOWN_PATHS_H

#include <SupportDefs.h>

#include <string>

namespace BPrivate {

void remember_node_path(dev_t device, ino_t node, const std::string& path);

// B_ENTRY_NOT_FOUND when the pair was never seen or its path went stale.
status_t find_node_path(dev_t device, ino_t node, std::string* path);

} // namespace BPrivate

#endif // _STORAGE_KNOWN_PATHS_H
