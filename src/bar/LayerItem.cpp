#include "LayerItem.h"

#include "AlertBox.h"
#include "BarWindow.h"
#include "Commands.h"
#include "DrawingHelpers.h"
#include "Globals.h"
#include "LayerBar.h"
#include "LayerInfo.h"
#include "LayerManager.h"
#include "LayerMenu.h"
#include "Settings.h"

#include <Application.h>
#include <Bitmap.h>
#include <Entry.h>
#include <Message.h>
#include <OS.h>
#include <TypeConstants.h>
#include <Window.h>

#include <math.h>
#include <stdlib.h>
#include <string.h>

namespace {

const rgb_color kCanExpandColor = {0, 0, 135, 255};
const rgb_color kCannotExpandColor = {100, 100, 155, 255};
const rgb_color kLabelColor = {0, 0, 0, 255};
const bigtime_t kManagerLockTimeout = 250000;

int32 icon_size_setting() {
    return gr_settings != NULL && gr_settings->which == 32 ? 32 : 16;
}

bool draws_labels() {
    return gr_settings != NULL && (gr_settings->flags & kDrawLabelFlag) != 0;
}

bool draws_borders() {
    return gr_settings != NULL && (gr_settings->flags & kDrawBorderFlag) != 0;
}

} // namespace

LayerItem::LayerItem(const char* path, LayerInfo* layer, bool expandLayer)
    : BMenuItem(new LayerMenu(expandLayer), NULL), RefRetriever(path != NULL ? path : ""),
      fHighlighted(false), fAvailable(true), fLayer(layer), fIcon(NULL) {
    RefUpdated();
    SetLabel(RefName());
    SetTarget(be_app);
}

LayerItem::~LayerItem() {
    delete fIcon;
}

bool LayerItem::IsAvailable() const {
    LayerMenu* submenu = dynamic_cast<LayerMenu*>(Submenu());
    if (submenu == NULL || !submenu->ExpandLayer())
        return true;
    LayerInfo* expanded = submenu->CurrentList();
    if (expanded == NULL && fLayer != NULL) {
        // The submenu learns its layer when it first opens; until then the
        // layer is looked up by the file's name among the owner's layers.
        // This runs in a layer menu's window thread while it draws. The
        // manager's thread may hold its own lock and wait for that very menu
        // window (it is quitting, or removing the item): waiting without end
        // would deadlock, so after a quarter of a second the item counts as available
        // and the menu still draws.
        LayerManager* manager = dynamic_cast<LayerManager*>(fLayer->Looper());
        if (manager == NULL)
            return true;
        if (manager->LockWithTimeout(kManagerLockTimeout) != B_OK)
            return true;
        expanded = manager->FindLayer(RefName());
        manager->Unlock();
    }
    if (expanded == NULL)
        return true;
    const BMenuItem* item = this;
    while (item != NULL) {
        const LayerItem* layerItem = dynamic_cast<const LayerItem*>(item);
        if (layerItem == NULL)
            break;
        if (layerItem->fLayer == expanded)
            return false;
        BMenu* menu = item->Menu();
        item = menu != NULL ? menu->Superitem() : NULL;
    }
    return true;
}

bool LayerItem::IsEnabled2() const {
    return IsEnabled() && fAvailable;
}

bool LayerItem::IsSelected2() const {
    return IsSelected() || fHighlighted;
}

void LayerItem::SetHighlighted(bool highlighted) {
    fHighlighted = highlighted;
}

bool LayerItem::IsHighlighted() const {
    return fHighlighted;
}

bool LayerItem::IsFileAvailable() const {
    return fAvailable;
}

LayerInfo* LayerItem::Layer() const {
    return fLayer;
}

const BBitmap* LayerItem::Icon() const {
    return fIcon;
}

// #pragma mark - Following the file

status_t LayerItem::RefUpdated() {
    LayerMenu* submenu = dynamic_cast<LayerMenu*>(Submenu());
    bool rebuildRoutines = false;
    if (submenu != NULL && !submenu->ExpandLayer()) {
        // Routines are rebuilt only while the menu is not on screen.
        BWindow* window = submenu->Window();
        rebuildRoutines = window == NULL || window->IsHidden();
    }

    BEntry entry;
    status_t status = Status();
    if (status == B_OK)
        status = entry.SetTo(Path());
    if (status == B_OK)
        status = entry.InitCheck();
    if (status == B_OK && !entry.Exists())
        status = B_ENTRY_NOT_FOUND;

    if (status == B_OK) {
        int32 which = icon_size_setting();
        BRect iconRect(0.0f, 0.0f, which - 1.0f, which - 1.0f);
        if (fIcon != NULL && fIcon->Bounds() != iconRect) {
            delete fIcon;
            fIcon = NULL;
        }
        if (fIcon == NULL)
            fIcon = new BBitmap(iconRect, B_CMAP8);
        if (GetIcon(fIcon, (icon_size)which) != B_OK) {
            delete fIcon;
            fIcon = NULL;
        }

        entry_ref ref;
        bool haveRef = GetEntryRef(&ref) == B_OK;
        if (haveRef) {
            BMessage* open = new BMessage(kOpen);
            open->AddRef("file", &ref);
            open->AddRef("entries", &ref);
            SetMessage(open);
        }
        if (rebuildRoutines)
            submenu->RebuildRoutines(haveRef ? &ref : NULL);
        fAvailable = true;
        _InvalidateInMenu();
        return B_OK;
    }

    delete fIcon;
    fIcon = NULL;
    fAvailable = false;
    BMessage* missing = new BMessage(kShowDialog);
    missing->AddPointer("layer", fLayer);
    missing->AddString("path", Path());
    SetMessage(missing);
    if (rebuildRoutines)
        submenu->RebuildRoutines(NULL);
    _InvalidateInMenu();
    return status;
}

void LayerItem::_InvalidateInMenu() {
    BMenu* menu = Menu();
    if (menu == NULL || menu->Window() == NULL)
        return;
    menu->Invalidate(Frame());
}

// #pragma mark - Launching

status_t LayerItem::Invoke(BMessage* message) {
    BLooper* looper = NULL;
    BHandler* handler = Target(&looper);
    if (handler == NULL && looper == NULL)
        looper = gr_manager;
    if (looper == NULL && handler != NULL)
        looper = handler->Looper();
    if (looper == NULL)
        return B_BAD_VALUE;

    // Only the press that the bar graded may launch: anything else (a menu
    // tracked over the bar, a stale invocation) is dropped quietly.
    LayerBar* bar = dynamic_cast<LayerBar*>(Menu());
    if (bar != NULL) {
        int32 index = bar->IndexOf(this);
        if (index == -1 || bar->Selection() != index)
            return 0;
    } else {
        LayerBar* barWindowBar = NULL;
        if (gr_manager != NULL && gr_manager->Lock()) {
            barWindowBar = dynamic_cast<LayerBar*>(gr_manager->FindView("layer_bar"));
            gr_manager->Unlock();
        }
        if (barWindowBar == NULL || barWindowBar->Selection() < 0)
            return 0;
    }

    BMessage copy;
    if (message != NULL)
        copy = *message;
    else if (Message() != NULL)
        copy = *Message();
    else
        return B_ERROR;

    copy.AddInt64("when", system_time());
    copy.AddPointer("source", this);
    return looper->PostMessage(&copy, handler);
}

void LayerItem::MessageDropped(const BMessage* message) {
    if (!fAvailable) {
        beep();
        return;
    }
    BMessage open(kOpen);
    entry_ref ref;
    status_t status = GetEntryRef(&ref);
    if (status != B_OK) {
        alert(kLaunchFailedAlert, "", status);
        return;
    }
    open.AddRef("file", &ref);
    if (message != NULL) {
        entry_ref dropped;
        for (int32 index = 0; message->FindRef("refs", index, &dropped) == B_OK; index++)
            open.AddRef("entries", &dropped);
        const void* data;
        ssize_t size;
        for (int32 index = 0;
             message->FindData("text/plain", B_MIME_TYPE, index, &data, &size) == B_OK; index++)
            open.AddData("text/plain", B_MIME_TYPE, data, size);
    }
    status = be_app != NULL ? be_app->PostMessage(&open) : B_BAD_VALUE;
    if (status != B_OK)
        alert(kLaunchFailedAlert, "", status);
}

// #pragma mark - Drawing

void LayerItem::GetContentSize(float* width, float* height) {
    bool large = icon_size_setting() == 32;
    float contentWidth = large ? 33.0f : 15.0f;
    float contentHeight = large ? 33.0f : 15.0f;
    if (draws_labels()) {
        contentWidth = large ? 53.0f : 96.0f;
        contentHeight = large ? 45.0f : 15.0f;
    }
    if (width != NULL)
        *width = contentWidth;
    if (height != NULL)
        *height = contentHeight;
}

void LayerItem::Draw() {
    BMenu* menu = Menu();
    if (menu == NULL)
        return;
    BRect frame = Frame();
    rgb_color high = menu->HighColor();
    rgb_color low = menu->LowColor();
    BFont font;
    menu->GetFont(&font);
    int32 which = icon_size_setting();
    bool label = draws_labels();
    float margin = which == 16 && label ? 10.0f : 2.0f;

    if (IsSelected2()) {
        menu->SetLowColor(tint_color(low, B_DARKEN_2_TINT));
        menu->FillRect(frame, B_SOLID_LOW);
    } else if (draws_borders()) {
        stroke_3d_rect(menu, frame, low, true);
    }

    LayerMenu* submenu = dynamic_cast<LayerMenu*>(Submenu());
    if (submenu != NULL && submenu->ExpandLayer()) {
        BRect marker = frame.OffsetByCopy(-1.0f, -1.0f);
        menu->SetHighColor(IsAvailable() ? kCanExpandColor : kCannotExpandColor);
        menu->FillTriangle(BPoint(marker.right, marker.bottom - 3.0f),
                           BPoint(marker.right, marker.bottom),
                           BPoint(marker.right - 3.0f, marker.bottom));
    }

    float width = frame.right - frame.left;
    float height = frame.bottom - frame.top;
    BPoint where;
    const char* text = NULL;
    char* truncated = NULL;
    BPoint textWhere;
    if (!label) {
        where.Set(ceilf(frame.left + (width - which) / 2.0f),
                  ceilf(frame.top + (height - which) / 2.0f));
    } else {
        const char* full = Label() != NULL ? Label() : "";
        truncated = (char*)malloc(strlen(full) + 3);
        if (which == 16) {
            // The icon's x is not offset by the cell: in a row bar every icon of
            // this kind lands at x = 10. The bar has always drawn it this way.
            where.Set(ceilf(margin), ceilf(frame.top + (height - 16.0f) / 2.0f));
            if (truncated != NULL)
                TruncateLabel(width - 2.0f * margin - 23.0f, truncated);
            textWhere.Set(frame.left + margin + 23.0f, frame.top + (height + font.Size()) / 2.0f);
        } else {
            where.Set(ceilf(frame.left + (width - 32.0f) / 2.0f), ceilf(frame.top + 2.0f));
            if (truncated != NULL)
                TruncateLabel(width - 2.0f * margin, truncated);
            float textWidth = truncated != NULL ? menu->StringWidth(truncated) : 0.0f;
            textWhere.Set(frame.left + (width - textWidth) / 2.0f, where.y + 32.0f + font.Size());
        }
        text = truncated;
    }

    if (text != NULL) {
        bool lightened = IsEnabled() && !fAvailable;
        menu->SetHighColor(lightened ? tint_color(high, B_LIGHTEN_1_TINT) : kLabelColor);
        menu->DrawString(text, textWhere);
    }
    free(truncated);

    if (fIcon == NULL) {
        stroke_3d_rect(menu, BRect(where.x, where.y, where.x + which - 1, where.y + which - 1),
                       menu->LowColor(), false);
    } else {
        menu->SetDrawingMode(B_OP_OVER);
        menu->DrawBitmap(fIcon, where);
    }

    menu->SetHighColor(high);
    menu->SetLowColor(low);
    menu->SetDrawingMode(B_OP_COPY);
}
