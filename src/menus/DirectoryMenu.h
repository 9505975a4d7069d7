// A menu that lists the entries of one folder. It is filled through the menu
// kit's dynamic items while it opens, one entry per step, so a large folder
// never blocks the menu. Every entry becomes a FileMenuItem; a folder's item
// carries a DirectoryMenu of its own, so folders unfold to any depth.
//
// A top-level menu is emptied and filled again on every opening. Submenus made
// while filling are filled on their first opening and kept until their parent
// is filled again, which deletes them with its items.
#ifndef GLIMROW_DIRECTORY_MENU_H
#define GLIMROW_DIRECTORY_MENU_H

#include <Directory.h>
#include <Entry.h>
#include <Menu.h>

class BMessage;
class FileMenuItem;

class DirectoryMenu : public BMenu {
public:
    DirectoryMenu(const BDirectory* directory, menu_layout layout);
    virtual ~DirectoryMenu();

    // The item for the top of a hierarchy: a FileMenuItem for ref, with a
    // DirectoryMenu as submenu when ref (links followed) is a folder. It owns a
    // copy of message (if given) with "entries" set to ref. The caller owns the
    // item; NULL when ref is NULL.
    static FileMenuItem* StartHierarchy(const entry_ref* ref, BMessage* message);
    static FileMenuItem* StartHierarchy(const char* path, BMessage* message);

    virtual bool AddDynamicItem(add_state state);
    // Adds the next entry; false when the folder is done.
    bool AddNextItem();

    // B_INTERRUPTED while the menu is shown (and not being filled).
    status_t SetDirectory(const BDirectory* directory);
    status_t GetDirectory(BDirectory* directory) const;
    void RemoveAllItems();

private:
    entry_ref fFolder;
    BDirectory fReader;
    bool fRebuild;
};

#endif // GLIMROW_DIRECTORY_MENU_H
