#include "ShelfBar.h"

#include "Commands.h"
#include "DrawingHelpers.h"
#include "Globals.h"
#include "Settings.h"

#include <InterfaceDefs.h>
#include <MenuItem.h>
#include <Message.h>
#include <PopUpMenu.h>
#include <Window.h>

ShelfBar::ShelfBar()
    : BMenuBar(BRect(0, 0, 10, 10), "shelf_bar", 0, B_ITEMS_IN_ROW, false), fPopUp(NULL) {
    fPopUp = new BPopUpMenu("popper", false, false, B_ITEMS_IN_COLUMN);
    BMessage* hide = new BMessage(kShowShelf);
    hide->AddBool("show", false);
    fPopUp->AddItem(new BMenuItem("Hide Shelf", hide));
    fPopUp->AddItem(new BMenuItem("Clear All Replicants", new BMessage(kClearReplicants)));
}

ShelfBar::~ShelfBar() {
    delete fPopUp;
}

void ShelfBar::ResizeToPreferred() {
    if (gr_settings == NULL)
        return;
    // The shelf is exactly shelfSize item cells long, whatever it holds.
    bool large = gr_settings->which == 32;
    bool label = (gr_settings->flags & kDrawLabelFlag) != 0;
    float contentWidth = 15;
    float contentHeight = 15;
    float side = 2;
    if (!label) {
        contentWidth = contentHeight = large ? 33 : 15;
    } else if (!large) {
        contentWidth = 96;
        side = 10;
    } else {
        contentWidth = 53;
        contentHeight = 45;
    }

    float cells = gr_settings->shelfSize;
    if (gr_settings->direction >= 2)
        ResizeTo((2 * side + contentWidth + 1) * cells - 1, 4 + contentHeight);
    else
        ResizeTo(2 * side + contentWidth, (4 + contentHeight + 1) * cells - 1);
}

void ShelfBar::MouseDown(BPoint point) {
    BMessage* current = Window() != NULL ? Window()->CurrentMessage() : NULL;
    int32 buttons = 0;
    int32 modifiers = 0;
    if (current != NULL) {
        current->FindInt32("buttons", &buttons);
        current->FindInt32("modifiers", &modifiers);
    }
    if ((buttons & B_SECONDARY_MOUSE_BUTTON) == 0 && (modifiers & B_CONTROL_KEY) == 0) {
        BMenuBar::MouseDown(point);
        return;
    }

    fPopUp->SetTargetForItems(Window());
    BPoint where = ConvertToScreen(point);
    fPopUp->Go(where, true, true, BRect(where, where), false);
}

void ShelfBar::MouseMoved(BPoint point, uint32 transit, const BMessage* dragMessage) {
    if (gr_settings == NULL || Window() == NULL)
        return;
    int32 flags = gr_settings->flags;
    bool activate =
        (flags & kAutoFocusFlag) != 0 || (dragMessage != NULL && (flags & kDragActivateFlag) != 0);
    if (activate && !Window()->IsActive())
        Window()->Activate(true);
}

void ShelfBar::Draw(BRect updateRect) {
    // The replicants draw themselves, as child views.
    stroke_3d_rect(this, Bounds(), LowColor(), true);
}

BPopUpMenu* ShelfBar::PopUpMenu() const {
    return fPopUp;
}
