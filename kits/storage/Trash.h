// The freedesktop Trash behind B_TRASH_DIRECTORY.
//
// A trash is a folder with "files" (the trashed entries) and "info" (one
// NAME.trashinfo per entry: its original path and deletion date). B_TRASH_DIRECTORY
// is the home trash's "files" folder. BEntry::MoveTo into a trash's "files" folder
// writes the info file first (created exclusively, as the freedesktop rules ask) and
// then renames the entry; an entry on another file system than the home trash goes
// to its own volume's trash ($topdir/.Trash/$uid or $topdir/.Trash-$uid). Moving an
// entry out of a trash, renaming it there or removing it keeps its info file in step.
#ifndef _STORAGE_TRASH_H
#define _STORAGE_TRASH_H

#include <SupportDefs.h>

#include <string>

namespace BPrivate {

struct TrashFolder {
    // The folder holding "files" and "info".
    std::string root;
    // The volume's mount point for a volume trash; empty for the home trash, whose
    // info files hold absolute paths.
    std::string topDirectory;

    std::string FilesFolder() const { return root + "/files"; }
    std::string InfoFile(const std::string& name) const {
        return root + "/info/" + name + ".trashinfo";
    }
};

// Makes sure the home trash exists (mode 0700) and returns its "files" folder.
status_t home_trash_files_folder(std::string* path);

// Whether the folder at path is the "files" folder of a trash.
bool trash_of_files_folder(const std::string& folderPath, TrashFolder* trash);

// Moves the entry at source into trash under name, writing its info file. clobber
// false gives B_FILE_EXISTS when the name is taken. An entry on another device than
// the trash goes to its own volume's trash, B_CROSS_DEVICE_LINK if there is none.
// *newPath receives where the entry now is.
status_t move_to_trash(const std::string& source, const TrashFolder& trash, const std::string& name,
                       bool clobber, std::string* newPath);

// Drops the info file of a trashed entry that left the trash or was removed.
void forget_trashed(const TrashFolder& trash, const std::string& name);

// Follows a rename inside one trash.
void rename_trashed(const TrashFolder& trash, const std::string& oldName,
                    const std::string& newName);

// The info file's text for an entry whose original path (absolute, or relative to
// a volume trash's top folder) is originalPath, deleted at time.
std::string trash_info_text(const std::string& originalPath, time_t time);

} // namespace BPrivate

#endif // _STORAGE_TRASH_H
