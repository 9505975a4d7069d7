// BNodeInfo: a node's type, icons and preferred application, kept in its
// attributes ("BEOS:TYPE", "BEOS:M:STD_ICON", "BEOS:L:STD_ICON", "BEOS:PREF_APP",
// "BEOS:PPATH").
#ifndef _NODE_INFO_H
#define _NODE_INFO_H

#include <Mime.h>
#include <SupportDefs.h>

class BBitmap;
class BNode;
struct entry_ref;

class BNodeInfo {
public:
    BNodeInfo();
    // The node is not copied: it must outlive the BNodeInfo.
    BNodeInfo(BNode* node);
    virtual ~BNodeInfo();

    status_t SetTo(BNode* node);
    status_t InitCheck() const;

    // The "BEOS:TYPE" attribute; without one, a regular file gets the type the
    // shared MIME database finds from its name and contents. Folders and links
    // without the attribute have no type: B_ENTRY_NOT_FOUND.
    virtual status_t GetType(char* type) const;
    // Writes "BEOS:TYPE"; NULL removes it.
    virtual status_t SetType(const char* type);
    // The node's own icon attribute (a raw B_CMAP8 icon), converted into the
    // bitmap's colour space; the bitmap must be which × which pixels.
    virtual status_t GetIcon(BBitmap* icon, icon_size which = B_LARGE_ICON) const;
    // Stores the bitmap (which × which pixels, any colour space) as a raw B_CMAP8
    // icon attribute; NULL removes it.
    virtual status_t SetIcon(const BBitmap* icon, icon_size which = B_LARGE_ICON);

    status_t GetPreferredApp(char* signature, app_verb verb = B_OPEN) const;
    status_t SetPreferredApp(const char* signature, app_verb verb = B_OPEN);
    status_t GetAppHint(entry_ref* ref) const;
    status_t SetAppHint(const entry_ref* ref);

    // The icon a file manager shows: the node's own icon, else that of its desktop
    // entry, else that of its type from the icon theme, else a generic one.
    status_t GetTrackerIcon(BBitmap* icon, icon_size which = B_LARGE_ICON) const;
    // The same for an entry; a link shows its target's icon when it has one.
    static status_t GetTrackerIcon(const entry_ref* ref, BBitmap* icon,
                                   icon_size which = B_LARGE_ICON);

private:
    BNodeInfo(const BNodeInfo&);
    BNodeInfo& operator=(const BNodeInfo&);

    BNode* fNode;
    status_t fStatus;
};

#endif // _NODE_INFO_H
