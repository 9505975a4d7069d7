// One layer in memory: its name, its items in order, whether its file has been
// read to the end, and a state word that says whether the layer is disabled,
// free, or held by one user (a bar, a menu, a preferences page).
//
// A LayerInfo is a handler in its layer manager's looper. The loader fills it by
// posting replies to it; the views that show it borrow its item list through
// SetLock. The targets list is the layer whose name is empty. The layer owns its
// items: each is a RefRetriever (or an object derived from one).
#ifndef GLIMROW_LAYER_INFO_H
#define GLIMROW_LAYER_INFO_H

#include <Handler.h>
#include <List.h>

class BMessage;

class LayerInfo : public BHandler {
public:
    // Copies the name. A new layer is disabled, empty and not completed;
    // loadable says whether enabling it asks the loader for its items.
    LayerInfo(const char* name, bool loadable);
    virtual ~LayerInfo();

    virtual void MessageReceived(BMessage* message);

    // Enabling a layer whose file is not read to the end asks the loader to go
    // on from the items it already has; disabling one cancels its load.
    void SetEnabled(bool enabled);
    // Disables the layer, deletes its items and forgets that it was completed.
    void Initialize();
    // Takes a loader reply: appends its "items", notes "finish" and "name".
    void ItemsFound(BMessage* message);

    // Takes (lock true) or gives back (lock false) the layer for owner. Taking a
    // free layer, or taking it again by its holder, returns the item list (which
    // stays the layer's); everything else returns NULL.
    BList* SetLock(bool lock, void* owner);

    // NULL when free, the holder when held, an address private to the layer
    // when disabled.
    void* Locker() const;
    bool IsCompleted() const;
    int32 CountItems() const;
    const char* LayerName() const;
    void SetLayerName(const char* name);

    void CheckAllItems(bool force);
    // True when the two layers differ in their item count or in any item's path.
    bool CompareItems(const LayerInfo* other) const;
    void PrintToStream() const;

private:
    bool _IsEnabled() const;
    void _DeleteItems();
    void _PostToLoader(BMessage* message);

    char fDisabledMarker;
    char* fName;
    void* fLocker;
    bool fCompleted;
    bool fLoadable;
    BList fItems;
};

#endif // GLIMROW_LAYER_INFO_H
