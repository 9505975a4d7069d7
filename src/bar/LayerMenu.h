// The submenu of every layer item on the bar. It has two kinds, fixed when it is
// made:
//  - a layer-expanding menu, for an item whose file is a layer file: it borrows
//    that layer's own items while it is open and lays them out in the bar's
//    cells, so layers nest;
//  - a routines menu, for any other item: the item's folder hierarchy, "Open
//    Parent" and "Open With" (owned by the menu, rebuilt when the file changes),
//    followed by the user's targets, borrowed from the targets list while the
//    menu is open and each set up to act on the expanded item's file.
//
// Borrowed items belong to their layer: they are removed without being deleted
// when the menu closes. Everything else in the menu is the menu's own.
#ifndef GLIMROW_LAYER_MENU_H
#define GLIMROW_LAYER_MENU_H

#include <Menu.h>

class LayerInfo;
class BList;
class LayerItem;
class LayerManager;
struct entry_ref;

class LayerMenu : public BMenu {
public:
    // A row of cells only for a layer-expanding menu of a bar that runs
    // horizontally (direction 2 or 3); a column otherwise.
    LayerMenu(bool expandLayer);
    virtual ~LayerMenu();

    bool ExpandLayer() const;
    // The item this menu belongs to, when that is a layer item.
    LayerItem* SuperLayerItem() const;
    LayerItem* LayerItemAt(int32 index) const;
    // The layer the menu borrows from (the expanded layer or the targets list);
    // NULL until the menu first opens.
    LayerInfo* CurrentList() const;

    // Replaces the routine items: the folder hierarchy of ref, "Open Parent" and
    // "Open With"; with a NULL ref (the file is missing) one disabled item
    // showing the superitem's path.
    void RebuildRoutines(const entry_ref* ref);

    // The index of the cell under point (in the menu's coordinates, or the
    // screen's when fromScreen), or -1.
    int32 IndexAt(BPoint point, bool fromScreen);

    void AttachLayer();
    void DetachLayer();
    void AttachTargets();
    void DetachTargets();

    virtual void AttachedToWindow();
    virtual void AllDetached();
    virtual void GetSize(float* width, float* height);

protected:
    // Nested layer menus open in the direction in which the bar runs.
    virtual BPoint ScreenLocation();

private:
    void _CellSize(float* contentWidth, float* contentHeight, float* sideMargin) const;
    LayerManager* _Manager() const;
    void _ResolveLayer();
    BList* _SetLayerLock(bool lock);

    int32 fAttachState;
    LayerInfo* fLayer;
    bool fExpandLayer;
};

#endif // GLIMROW_LAYER_MENU_H
