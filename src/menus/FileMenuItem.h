// A menu item that stands for one file, folder or application: the file's 16×16
// icon and its name. Being a RefRetriever it follows the file through moves and
// renames; while the file is missing it loses its icon, draws its label lighter
// and refuses to fire.
#ifndef GLIMROW_FILE_MENU_ITEM_H
#define GLIMROW_FILE_MENU_ITEM_H

#include "RefRetriever.h"

#include <MenuItem.h>

class BBitmap;
class BMenu;
class BMessage;
struct entry_ref;

class FileMenuItem : public RefRetriever, public BMenuItem {
public:
    // Each takes ownership of the message (and of the submenu). The label is
    // the file's name.
    FileMenuItem(const entry_ref* ref, BMenu* menu, BMessage* message);
    FileMenuItem(const entry_ref* ref, BMessage* message);
    FileMenuItem(const char* path, BMenu* menu, BMessage* message);
    FileMenuItem(const char* path, BMessage* message);
    // Copies the given reference.
    FileMenuItem(const RefRetriever* ref, BMenu* menu, BMessage* message);
    FileMenuItem(const RefRetriever* ref, BMessage* message);
    // From an archive with "p:path".
    FileMenuItem(BMessage* archive);
    virtual ~FileMenuItem();

    static BArchivable* Instantiate(BMessage* archive);
    virtual status_t Archive(BMessage* archive, bool deep = true) const;

    // Reads the icon again and redraws the item when its availability changed.
    virtual status_t RefUpdated();
    // Posts a copy of the message with "when" and "source" to the target;
    // nothing while the file is missing; -1 without any message.
    virtual status_t Invoke(BMessage* message = NULL);

    // Only while the file is there.
    bool IsEnabled() const;
    bool IsSelected() const;
    // The 16×16 icon (owned by the item), NULL while the file is missing.
    BBitmap* Icon() const;

protected:
    virtual void GetContentSize(float* width, float* height);
    virtual void DrawContent();

private:
    void _Init();
    void _Redraw();

    BBitmap* fIcon;
    bool fAvailable;
};

#endif // GLIMROW_FILE_MENU_ITEM_H
