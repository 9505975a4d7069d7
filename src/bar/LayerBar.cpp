#include "LayerBar.h"

#include "DrawingHelpers.h"
#include "Globals.h"
#include "LayerInfo.h"
#include "LayerItem.h"
#include "LayerManager.h"
#include "Settings.h"

#include <Font.h>
#include <List.h>
#include <Message.h>
#include <OS.h>
#include <Window.h>

namespace {

// The blink of a launch: eight half-periods of 50 ms, highlighted on the odd ones.
const int32 kBlinkSteps = 8;
const bigtime_t kBlinkInterval = 50000;

int32 current_direction() {
    return gr_settings != NULL ? gr_settings->direction : 0;
}

// The operations of settings::forInvoke and forExpand.
enum {
    kNoOperation = 0,
    kPrimaryDown = 1,
    kSecondaryDown = 2,
    kDoubleClick = 3,
};

} // namespace

LayerBar::LayerBar()
    : BMenuBar(BRect(0.0f, 0.0f, 1.0f, 1.0f), "layer_bar", B_FOLLOW_LEFT | B_FOLLOW_TOP,
               current_direction() < 2 ? B_ITEMS_IN_COLUMN : B_ITEMS_IN_ROW, false),
      fAttachState(-1), fLayer(NULL), fCurrentIndex(-1), _reserved{0, 0} {
    SetTriggersEnabled(false);
    SetRadioMode(false);
    SetLabelFromMarked(false);
    SetFont(be_plain_font, B_FONT_ALL);
}

LayerBar::~LayerBar() {
    // The items are the layer's.
    RemoveItems(0, CountItems(), false);
}

// #pragma mark - The layer

void LayerBar::SetLayer(LayerInfo* layer) {
    if (layer != NULL) {
        LayerManager* manager = dynamic_cast<LayerManager*>(layer->Looper());
        if (manager == NULL || manager->LayersWhich() != which_bar_items)
            return;
        // The targets list is never shown on the bar.
        if (layer->LayerName()[0] == '\0')
            layer = NULL;
    }
    if (fAttachState == 1)
        DetachLayer();
    fLayer = layer;
    if (fLayer != NULL && Window() != NULL)
        AttachLayer();
}

LayerInfo* LayerBar::Layer() const {
    return fLayer;
}

LayerItem* LayerBar::LayerItemAt(int32 index) const {
    return dynamic_cast<LayerItem*>(ItemAt(index));
}

int32 LayerBar::Selection() const {
    return fCurrentIndex;
}

void LayerBar::_AddLayerItem(LayerItem* item, int32 index) {
    // With an odd direction the bar runs towards the application menu, so the
    // layer's first item must end up nearest to it: each item goes in front.
    int32 position = current_direction() % 2 == 0 ? index : 0;
    if (position > CountItems())
        position = CountItems();
    AddItem(item, position);
}

void LayerBar::AttachLayer() {
    if (fAttachState != -1 || fLayer == NULL)
        return;
    BList* list = fLayer->SetLock(true, this);
    if (list == NULL)
        return;
    int32 count = list->CountItems();
    for (int32 index = 0; index < count; index++) {
        // The layer keeps its items by their RefRetriever part.
        LayerItem* item = dynamic_cast<LayerItem*>((RefRetriever*)list->ItemAt(index));
        if (item == NULL)
            continue;
        item->CheckNode(true);
        _AddLayerItem(item, index);
    }
    fAttachState = 1;
    fCurrentIndex = -1;
}

void LayerBar::DetachLayer() {
    RemoveItems(0, CountItems(), false);
    if (fLayer != NULL)
        fLayer->SetLock(false, this);
    fAttachState = -1;
    fCurrentIndex = -1;
}

void LayerBar::RescanItems() {
    if (fLayer == NULL)
        return;
    int32 shown = CountItems();
    BList* list = fLayer->SetLock(true, this);
    if (list == NULL)
        return;
    fAttachState = 1;
    // Only growth at the end is picked up; the loader only ever appends.
    int32 count = list->CountItems();
    for (int32 index = shown; index < count; index++) {
        LayerItem* item = dynamic_cast<LayerItem*>((RefRetriever*)list->ItemAt(index));
        if (item != NULL)
            _AddLayerItem(item, index);
    }
}

// #pragma mark - Geometry

void LayerBar::_CellSize(float* width, float* height, float* side) const {
    float contentWidth;
    float contentHeight;
    float sideMargin;
    bool large = gr_settings != NULL && gr_settings->which == 32;
    bool label = gr_settings != NULL && (gr_settings->flags & kDrawLabelFlag) != 0;
    if (!label) {
        contentWidth = contentHeight = large ? 33.0f : 15.0f;
        sideMargin = 2.0f;
    } else if (!large) {
        contentWidth = 96.0f;
        contentHeight = 15.0f;
        sideMargin = 10.0f;
    } else {
        contentWidth = 53.0f;
        contentHeight = 45.0f;
        sideMargin = 2.0f;
    }
    if (width != NULL)
        *width = contentWidth + 2.0f * sideMargin;
    if (height != NULL)
        *height = contentHeight + 4.0f;
    if (side != NULL)
        *side = sideMargin;
}

void LayerBar::ResizeToPreferred() {
    float cellWidth;
    float cellHeight;
    float side;
    _CellSize(&cellWidth, &cellHeight, &side);
    SetItemMargins(side, 2.0f, side, 2.0f);
    SetMaxContentWidth(cellWidth - 2.0f * side);

    // An empty bar ends up -1 long in its running direction.
    float count = (float)CountItems();
    if (Layout() == B_ITEMS_IN_COLUMN)
        ResizeTo(cellWidth, (cellHeight + 1.0f) * count - 1.0f);
    else if (Layout() == B_ITEMS_IN_ROW)
        ResizeTo((cellWidth + 1.0f) * count - 1.0f, cellHeight);
}

int32 LayerBar::IndexAt(BPoint point) const {
    if (!Bounds().Contains(point))
        return -1;
    float cellWidth;
    float cellHeight;
    _CellSize(&cellWidth, &cellHeight, NULL);
    int32 index;
    if (Layout() == B_ITEMS_IN_COLUMN) {
        if (point.x < 0.0f || point.x > cellWidth)
            return -1;
        index = (int32)(point.y / (cellHeight + 1.0f));
    } else {
        if (point.y < 0.0f || point.y > cellHeight)
            return -1;
        index = (int32)(point.x / (cellWidth + 1.0f));
    }
    if (index < 0 || index >= CountItems())
        return -1;
    return index;
}

// #pragma mark - Hooks

void LayerBar::AttachedToWindow() {
    if (fAttachState == -1 && fLayer != NULL)
        AttachLayer();
    ResizeToPreferred();
    BMenuBar::AttachedToWindow();
}

void LayerBar::AllDetached() {
    if (fAttachState == 1)
        DetachLayer();
    BMenuBar::AllDetached();
}

void LayerBar::Draw(BRect updateRect) {
    FillRect(updateRect, B_SOLID_LOW);
    rgb_color high = HighColor();
    rgb_color low = LowColor();
    for (int32 index = CountItems() - 1; index >= 0; index--) {
        LayerItem* item = LayerItemAt(index);
        if (item == NULL || !item->Frame().Intersects(updateRect))
            continue;
        SetHighColor(high);
        SetLowColor(low);
        item->Draw();
    }
    // Either every item or the bar as a whole carries a frame, never both.
    if (gr_settings == NULL || (gr_settings->flags & kDrawBorderFlag) == 0)
        stroke_3d_rect(this, Bounds(), LowColor(), true);
}

void LayerBar::MouseDown(BPoint where) {
    BWindow* window = Window();
    if (window == NULL)
        return;
    fCurrentIndex = IndexAt(where);
    if (!window->IsActive())
        window->Activate(true);

    int32 modifiers = 0;
    int32 buttons = 0;
    int32 clicks = 0;
    BMessage* current = window->CurrentMessage();
    if (current != NULL) {
        current->FindInt32("modifiers", &modifiers);
        current->FindInt32("buttons", &buttons);
        current->FindInt32("clicks", &clicks);
    }

    // A double click arrives after its first press, which was already graded
    // and acted on as a single press.
    int32 operation = kNoOperation;
    if (clicks >= 2)
        operation = kDoubleClick;
    else if (buttons == B_SECONDARY_MOUSE_BUTTON || (modifiers & B_CONTROL_KEY) != 0)
        operation = kSecondaryDown;
    else if (buttons == B_PRIMARY_MOUSE_BUTTON)
        operation = kPrimaryDown;

    // Launch wins when both settings name the same operation, and "No Use" (0)
    // is an operation like any other: a tertiary press launches with
    // forInvoke 0. Users have long relied on exactly this.
    int32 forInvoke = gr_settings != NULL ? gr_settings->forInvoke : kSecondaryDown;
    int32 forExpand = gr_settings != NULL ? gr_settings->forExpand : kPrimaryDown;
    if (operation == forInvoke) {
        LayerItem* item = fCurrentIndex != -1 ? LayerItemAt(fCurrentIndex) : NULL;
        if (item != NULL)
            LaunchLayerItem(item);
    } else if (operation == forExpand) {
        BMenuBar::MouseDown(where);
    }
}

void LayerBar::LaunchLayerItem(LayerItem* item) {
    if (item == NULL || item->Menu() != this)
        return;
    if (Window() != NULL)
        Window()->UpdateIfNeeded();
    BRect frame = item->Frame();
    for (int32 step = 1; step <= kBlinkSteps; step++) {
        bool on = step % 2 == 1;
        item->SetHighlighted(on);
        if (!on)
            FillRect(frame, B_SOLID_LOW);
        item->Draw();
        Flush();
        snooze(kBlinkInterval);
    }
    item->Invoke();
    Invalidate(frame);
}

void LayerBar::_SetHighlight(int32 index, bool highlighted) {
    LayerItem* item = LayerItemAt(index);
    if (item == NULL)
        return;
    item->SetHighlighted(highlighted);
    if (!highlighted)
        FillRect(item->Frame(), B_SOLID_LOW);
    item->Draw();
    Flush();
}

void LayerBar::MouseMoved(BPoint where, uint32 transit, const BMessage* dragMessage) {
    BWindow* window = Window();
    if (window == NULL)
        return;
    if (gr_settings != NULL && (gr_settings->flags & kAutoFocusFlag) != 0 && !window->IsActive()) {
        BPoint pointer;
        uint32 buttons;
        GetMouse(&pointer, &buttons, false);
        if (Bounds().Contains(pointer))
            window->Activate(true);
        return;
    }
    // Plain movement highlights nothing: hovering is the menu's own business
    // while it tracks.
    if (dragMessage == NULL)
        return;
    int32 index = transit == B_EXITED_VIEW ? -1 : IndexAt(where);
    if (index == fCurrentIndex)
        return;
    _SetHighlight(fCurrentIndex, false);
    fCurrentIndex = index;
    _SetHighlight(fCurrentIndex, true);
}

void LayerBar::MessageReceived(BMessage* message) {
    if (message == NULL || !message->WasDropped()) {
        BMenuBar::MessageReceived(message);
        return;
    }
    BPoint point = ConvertFromScreen(message->DropPoint());
    LayerItem* target = LayerItemAt(IndexAt(point));
    if (target != NULL)
        target->MessageDropped(message);
    for (int32 index = 0; index < CountItems(); index++) {
        LayerItem* item = LayerItemAt(index);
        if (item != NULL && item->IsHighlighted())
            _SetHighlight(index, false);
    }
    fCurrentIndex = -1;
    Flush();
}

void LayerBar::KeyDown(const char* bytes, int32 numBytes) {
    if (bytes != NULL && numBytes > 0) {
        switch (bytes[0]) {
        case B_RETURN:
        case B_LEFT_ARROW:
        case B_RIGHT_ARROW:
        case B_UP_ARROW:
        case B_DOWN_ARROW:
        case B_SPACE:
            for (int32 index = CountItems() - 1; index >= 0; index--) {
                LayerItem* item = LayerItemAt(index);
                if (item != NULL && item->IsSelected2()) {
                    fCurrentIndex = index;
                    break;
                }
            }
            break;
        case B_ESCAPE:
            fCurrentIndex = -1;
            break;
        default:
            break;
        }
    }
    BMenu::KeyDown(bytes, numBytes);
}
