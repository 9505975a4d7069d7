// One entry of a layer: a file, folder, application or another layer file, shown
// on the layer bar as an icon with an optional label. It follows its file
// through its RefRetriever part: while the file is there the item carries the
// file's icon and the Open message (0x67720020), and while it is missing an
// empty frame, a lightened label and the missing-item message (0x67720023).
// Its submenu, a LayerMenu, is what the bar opens when the item is expanded.
//
// Items are made and owned by their layer; bars and layer menus only borrow
// them.
#ifndef GLIMROW_LAYER_ITEM_H
#define GLIMROW_LAYER_ITEM_H

#include "RefRetriever.h"

#include <MenuItem.h>

class BBitmap;
class LayerInfo;

class LayerItem : public BMenuItem, public RefRetriever {
public:
    // expandLayer is true for an item whose file is a layer file: its submenu
    // then shows that layer's items. The layer is not owned.
    LayerItem(const char* path, LayerInfo* layer, bool expandLayer);
    virtual ~LayerItem();

    // False when expanding the item would open its layer inside itself.
    bool IsAvailable() const;
    // Enabled, and the file is there.
    bool IsEnabled2() const;
    // Selected by the menu, or highlighted by the bar.
    bool IsSelected2() const;

    // Opens the dropped files (and text clippings) with this item's file; beeps
    // when the file is missing.
    void MessageDropped(const BMessage* message);

    // Posts the item's message with "when" and "source", but only when the bar
    // (this item's, or the bar window's when the item is in a layer menu) has a
    // selection that allows it; returns 0 without posting otherwise.
    virtual status_t Invoke(BMessage* message = NULL);
    // Hook function of RefRetriever: refreshes icon, message and routines.
    virtual status_t RefUpdated();

    virtual void GetContentSize(float* width, float* height);
    // Draws the cell into the menu: background or border, expand marker, icon
    // (or an empty frame) and label.
    virtual void Draw();

    // The bar's transient highlight: the drag target and the launch blink.
    void SetHighlighted(bool highlighted);
    bool IsHighlighted() const;
    // True while the item's file exists and resolves.
    bool IsFileAvailable() const;
    // The layer that owns the item.
    LayerInfo* Layer() const;
    // The icon, owned by the item; NULL when the file has none or is missing.
    const BBitmap* Icon() const;

private:
    void _InvalidateInMenu();

    bool fHighlighted;
    bool fAvailable;
    LayerInfo* fLayer;
    BBitmap* fIcon;
};

#endif // GLIMROW_LAYER_ITEM_H
