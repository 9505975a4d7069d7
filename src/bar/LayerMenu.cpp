#include "LayerMenu.h"

#include "BarWindow.h"
#include "Commands.h"
#include "DirectoryMenu.h"
#include "FileMenuItem.h"
#include "Globals.h"
#include "LayerInfo.h"
#include "LayerItem.h"
#include "LayerManager.h"
#include "OpenWithMenu.h"
#include "RefRetriever.h"
#include "Settings.h"

#include <Application.h>
#include <Entry.h>
#include <Font.h>
#include <List.h>
#include <MenuItem.h>
#include <Message.h>
#include <Window.h>

namespace {

const float kTopMargin = 2.0f;
const float kVerticalMargins = 4.0f;
// The bar window's thread may be waiting for this menu's window while it holds
// its own lock (it is removing or deleting the item this menu belongs to):
// waiting for it without end would never finish.
const bigtime_t kManagerLockTimeout = 250000;

int32 bar_direction() {
    return gr_settings != NULL ? gr_settings->direction : 0;
}

// The item a layer keeps, as a menu item. Layers hold their items by their
// RefRetriever part.
BMenuItem* menu_item_of(void* layerItem) {
    return dynamic_cast<BMenuItem*>(static_cast<RefRetriever*>(layerItem));
}

BMenuItem* disabled_item(const char* label) {
    BMenuItem* item = new BMenuItem(label, NULL);
    item->SetEnabled(false);
    return item;
}

} // namespace

LayerMenu::LayerMenu(bool expandLayer)
    : BMenu("", expandLayer && bar_direction() >= 2 ? B_ITEMS_IN_ROW : B_ITEMS_IN_COLUMN),
      fAttachState(-1), fLayer(NULL), fExpandLayer(expandLayer) {
    SetRadioMode(false);
    SetLabelFromMarked(false);
    SetTriggersEnabled(!expandLayer);
    SetFont(be_plain_font);
}

LayerMenu::~LayerMenu() {
    // A menu closes (and gives its borrowed items back) before it goes; if it
    // did not, the borrowed items must at least not be deleted with it. The
    // layer itself may be gone already when its manager quits, so it is left
    // alone here.
    if (fAttachState == 1) {
        RemoveItems(0, CountItems(), false);
    } else if (fAttachState == 0) {
        while (CountItems() > 0 && dynamic_cast<FileMenuItem*>(ItemAt(CountItems() - 1)) != NULL)
            RemoveItem(CountItems() - 1);
    }
    fAttachState = -1;
}

bool LayerMenu::ExpandLayer() const {
    return fExpandLayer;
}

LayerItem* LayerMenu::SuperLayerItem() const {
    return dynamic_cast<LayerItem*>(Superitem());
}

LayerItem* LayerMenu::LayerItemAt(int32 index) const {
    return dynamic_cast<LayerItem*>(ItemAt(index));
}

LayerInfo* LayerMenu::CurrentList() const {
    return fLayer;
}

// #pragma mark - Routines

void LayerMenu::RebuildRoutines(const entry_ref* ref) {
    // Targets are never deleted with the routines: they belong to their list.
    if (fAttachState == 0)
        DetachTargets();
    for (int32 index = CountItems() - 1; index >= 0; index--)
        delete RemoveItem(index);

    if (ref == NULL) {
        LayerItem* superitem = SuperLayerItem();
        AddItem(disabled_item(superitem != NULL ? superitem->Path() : ""));
        return;
    }

    // Each goes in at the top, so they end up in the opposite order.
    BMessage* openWithMessage = new BMessage(kOpenWith);
    openWithMessage->AddRef("file", ref);
    OpenWithMenu* openWithMenu = new OpenWithMenu(ref, openWithMessage, B_ITEMS_IN_COLUMN);
    openWithMenu->SetFont(be_plain_font);
    BMenuItem* openWith = new BMenuItem(openWithMenu);
    openWith->SetLabel("Open With");
    openWith->SetTarget(be_app);
    AddItem(openWith, 0);

    BMessage* openParentMessage = new BMessage(kOpenParent);
    openParentMessage->AddRef("file", ref);
    BMenuItem* openParent = new BMenuItem("Open Parent", openParentMessage);
    openParent->SetTarget(be_app);
    AddItem(openParent, 0);

    AddItem(new BSeparatorItem(), 0);

    BMessage open(kOpen);
    open.AddRef("entries", ref);
    open.AddRef("file", ref);
    FileMenuItem* hierarchy = DirectoryMenu::StartHierarchy(ref, &open);
    if (hierarchy != NULL) {
        hierarchy->SetTarget(be_app);
        AddItem(hierarchy, 0);
    }
}

void LayerMenu::AttachTargets() {
    LayerItem* superitem = SuperLayerItem();
    if (fAttachState != -1 || superitem == NULL || !superitem->IsFileAvailable() || fLayer == NULL)
        return;
    entry_ref ref;
    if (superitem->GetEntryRef(&ref) != B_OK)
        return;
    BList* list = _SetLayerLock(true);
    if (list == NULL)
        return;

    if (list->CountItems() > 0)
        AddSeparatorItem();
    for (int32 index = 0; index < list->CountItems(); index++) {
        RefRetriever* reference = static_cast<RefRetriever*>(list->ItemAt(index));
        FileMenuItem* target = dynamic_cast<FileMenuItem*>(reference);
        if (target == NULL)
            continue;
        // Every target acts on the expanded item's file.
        if (BMessage* message = target->Message()) {
            if (message->ReplaceRef("file", &ref) != B_OK)
                message->AddRef("file", &ref);
        }
        target->CheckNode(true);
        AddItem(target);
    }
    InvalidateLayout();
    fAttachState = 0;
}

void LayerMenu::DetachTargets() {
    if (fAttachState != 0)
        return;
    // Only the targets are taken out: the routine items above them stay.
    BList* list = _SetLayerLock(true);
    for (int32 index = CountItems() - 1; index >= 0; index--) {
        FileMenuItem* item = dynamic_cast<FileMenuItem*>(ItemAt(index));
        if (item == NULL || (list != NULL && !list->HasItem(static_cast<RefRetriever*>(item))))
            break;
        RemoveItem(index);
    }
    int32 last = CountItems() - 1;
    if (last >= 0 && dynamic_cast<BSeparatorItem*>(ItemAt(last)) != NULL)
        delete RemoveItem(last);
    _SetLayerLock(false);
    fAttachState = -1;
}

// #pragma mark - Nested layers

void LayerMenu::AttachLayer() {
    LayerItem* superitem = SuperLayerItem();
    if (fAttachState != -1 || superitem == NULL || !superitem->IsFileAvailable())
        return;
    BList* list = _SetLayerLock(true);
    if (list == NULL) {
        // Shown on the bar or in another menu right now.
        AddItem(disabled_item("Layer in Use"));
        return;
    }
    bool reversed = bar_direction() % 2 == 1;
    for (int32 index = 0; index < list->CountItems(); index++) {
        RefRetriever* reference = static_cast<RefRetriever*>(list->ItemAt(index));
        BMenuItem* item = menu_item_of(reference);
        if (item == NULL)
            continue;
        reference->CheckNode(true);
        AddItem(item, reversed ? 0 : CountItems());
    }
    fAttachState = 1;
}

void LayerMenu::DetachLayer() {
    // Borrowed items go back to their layer; the placeholder is the menu's.
    bool borrowed = fAttachState == 1;
    for (int32 index = CountItems() - 1; index >= 0; index--) {
        BMenuItem* item = RemoveItem(index);
        if (!borrowed)
            delete item;
    }
    _SetLayerLock(false);
    fAttachState = -1;
}

// #pragma mark - Hooks

void LayerMenu::AttachedToWindow() {
    if (fLayer == NULL)
        _ResolveLayer();
    if (fExpandLayer) {
        float contentWidth;
        float contentHeight;
        float side;
        _CellSize(&contentWidth, &contentHeight, &side);
        SetItemMargins(side, kTopMargin, side, kTopMargin);
        AttachLayer();
    } else {
        AttachTargets();
    }
    BMenu::AttachedToWindow();
}

void LayerMenu::AllDetached() {
    BMenu::AllDetached();
    if (fExpandLayer)
        DetachLayer();
    else
        DetachTargets();
}

void LayerMenu::GetSize(float* width, float* height) {
    if (!fExpandLayer) {
        BMenu::GetSize(width, height);
        return;
    }
    float contentWidth;
    float contentHeight;
    float side;
    _CellSize(&contentWidth, &contentHeight, &side);
    float cellWidth = contentWidth + 2 * side;
    float cellHeight = contentHeight + kVerticalMargins;
    int32 count = CountItems();
    float menuWidth = 2 * side + 4;
    float menuHeight = 8;
    if (count > 0 && Layout() == B_ITEMS_IN_ROW) {
        menuWidth = (cellWidth + 1) * count;
        menuHeight = cellHeight;
    } else if (count > 0) {
        menuWidth = cellWidth;
        menuHeight = (cellHeight + 1) * count;
    }
    if (width != NULL)
        *width = menuWidth;
    if (height != NULL)
        *height = menuHeight;
}

BPoint LayerMenu::ScreenLocation() {
    BPoint where = BMenu::ScreenLocation();
    BMenuItem* superitem = Superitem();
    BMenu* supermenu = Supermenu();
    if (!fExpandLayer || superitem == NULL || supermenu == NULL)
        return where;

    BRect superFrame = supermenu->ConvertToScreen(superitem->Frame());
    float width;
    float height;
    GetSize(&width, &height);
    width += 1;
    height += 1;
    // Nested layers open the way the bar runs: up for a column running up,
    // left for a row running left.
    switch (bar_direction()) {
    case 1:
        where.y = superFrame.bottom - height > 0 ? superFrame.bottom - height : 0;
        break;
    case 3:
        where.x = superFrame.right - width > 0 ? superFrame.right - width : 0;
        break;
    default:
        break;
    }
    return where;
}

int32 LayerMenu::IndexAt(BPoint point, bool fromScreen) {
    if (fromScreen)
        point = ConvertFromScreen(point);
    float contentWidth;
    float contentHeight;
    float side;
    _CellSize(&contentWidth, &contentHeight, &side);
    float cellWidth = contentWidth + 2 * side;
    float cellHeight = contentHeight + kVerticalMargins;

    int32 index = -1;
    switch (Layout()) {
    case B_ITEMS_IN_ROW:
        if (point.y < 0 || point.y > cellHeight)
            return -1;
        index = (int32)(point.x / (cellWidth + 1));
        break;
    case B_ITEMS_IN_COLUMN:
        if (point.x < 0 || point.x > cellWidth)
            return -1;
        index = (int32)(point.y / (cellHeight + 1));
        break;
    default:
        return -1;
    }
    if (index < 0 || index >= CountItems())
        return -1;
    return index;
}

// #pragma mark - Private

void LayerMenu::_CellSize(float* contentWidth, float* contentHeight, float* sideMargin) const {
    bool large = gr_settings != NULL && gr_settings->which == 32;
    bool label = gr_settings != NULL && (gr_settings->flags & kDrawLabelFlag) != 0;
    *sideMargin = 2;
    if (!label) {
        *contentWidth = large ? 33 : 15;
        *contentHeight = large ? 33 : 15;
    } else if (!large) {
        *contentWidth = 96;
        *contentHeight = 15;
        *sideMargin = 10;
    } else {
        *contentWidth = 53;
        *contentHeight = 45;
    }
}

LayerManager* LayerMenu::_Manager() const {
    // The layers belong to the bar window. Without one (a manager of layers
    // that is not the bar) the owner of the expanded item stands in for it.
    if (gr_manager != NULL)
        return gr_manager;
    LayerItem* superitem = SuperLayerItem();
    if (superitem != NULL && superitem->Layer() != NULL)
        return dynamic_cast<LayerManager*>(superitem->Layer()->Looper());
    return NULL;
}

void LayerMenu::_ResolveLayer() {
    LayerManager* manager = _Manager();
    if (manager == NULL || manager->LockWithTimeout(kManagerLockTimeout) != B_OK)
        return;
    LayerItem* superitem = SuperLayerItem();
    if (fExpandLayer)
        fLayer = superitem != NULL ? manager->FindLayer(superitem->RefName()) : NULL;
    else
        fLayer = manager->FindLayer("");
    manager->Unlock();
}

BList* LayerMenu::_SetLayerLock(bool lock) {
    if (fLayer == NULL)
        return NULL;
    // The lock word is the manager's: change it under the manager's lock when
    // that can be had. When it cannot, its holder is waiting for this menu's
    // window (deleting or removing the item this menu belongs to) and does not
    // touch the layer until the menu is done.
    LayerManager* manager = _Manager();
    bool locked = manager != NULL && manager->LockWithTimeout(kManagerLockTimeout) == B_OK;
    BList* list = fLayer->SetLock(lock, this);
    if (locked)
        manager->Unlock();
    return list;
}
