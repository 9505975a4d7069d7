// The shelf strip of the bar: a menu bar without items, exactly shelfSize item
// cells long, that holds the replicants dropped on it. A secondary click (or
// Control-click) opens its own small menu: "Hide Shelf" and "Clear All
// Replicants", both sent to the bar window.
#ifndef GLIMROW_SHELF_BAR_H
#define GLIMROW_SHELF_BAR_H

#include <MenuBar.h>

class BPopUpMenu;

class ShelfBar : public BMenuBar {
public:
    ShelfBar();
    virtual ~ShelfBar();

    virtual void ResizeToPreferred();
    virtual void MouseDown(BPoint point);
    virtual void MouseMoved(BPoint point, uint32 transit, const BMessage* dragMessage);
    virtual void Draw(BRect updateRect);

    // The context menu; owned by the bar.
    BPopUpMenu* PopUpMenu() const;

private:
    BPopUpMenu* fPopUp;
};

#endif // GLIMROW_SHELF_BAR_H
