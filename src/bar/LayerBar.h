// The strip of the bar window that shows the items of one layer as a row or a
// column of cells. It is a menu bar whose items are the layer's own LayerItems,
// borrowed (SetLock) while the bar shows the layer and given back without being
// deleted. It grades mouse presses into the two user operations of the
// settings, launch and expand, blinks an item when it launches it, highlights
// the item under a drag and hands drops to that item.
//
// Cell geometry comes from gr_settings (icon size and "Draw Label"), the same
// numbers for sizing and hit-testing:
//
//   which 16, no label   15 x 15, side margin 2
//   which 32, no label   33 x 33, side margin 2
//   which 16, label      96 x 15, side margin 10
//   which 32, label      53 x 45, side margin 2
//
// with top and bottom margins of 2 and one pixel between cells.
#ifndef GLIMROW_LAYER_BAR_H
#define GLIMROW_LAYER_BAR_H

#include <MenuBar.h>

class LayerInfo;
class LayerItem;

class LayerBar : public BMenuBar {
public:
    // The layout (column for direction 0 and 1, row otherwise) is fixed here:
    // a change of direction needs a new bar.
    LayerBar();
    virtual ~LayerBar();

    // Shows another layer, or none. A layer that does not belong to the bar
    // window's layers is refused; the targets list (name "") counts as none.
    void SetLayer(LayerInfo* layer);
    LayerInfo* Layer() const;
    LayerItem* LayerItemAt(int32 index) const;
    // The item last pressed, highlighted under a drag or picked by keyboard.
    int32 Selection() const;
    // The item under a point in the bar's coordinates, or -1.
    int32 IndexAt(BPoint point) const;

    // Appends the items that the layer gained since the bar attached it.
    void RescanItems();
    // Blinks the item four times (400 ms, in this thread) and invokes it.
    void LaunchLayerItem(LayerItem* item);

    void AttachLayer();
    void DetachLayer();

    virtual void AttachedToWindow();
    virtual void AllDetached();
    virtual void Draw(BRect updateRect);
    virtual void MouseDown(BPoint where);
    virtual void MouseMoved(BPoint where, uint32 transit, const BMessage* dragMessage);
    virtual void KeyDown(const char* bytes, int32 numBytes);
    virtual void MessageReceived(BMessage* message);
    virtual void ResizeToPreferred();

private:
    void _CellSize(float* width, float* height, float* side) const;
    void _AddLayerItem(LayerItem* item, int32 index);
    void _SetHighlight(int32 index, bool highlighted);

    int32 fAttachState;
    LayerInfo* fLayer;
    int32 fCurrentIndex;
    // Two further fields the bar keeps at 0 and never reads.
    [[maybe_unused]] int32 _reserved[2];
};

#endif // GLIMROW_LAYER_BAR_H
