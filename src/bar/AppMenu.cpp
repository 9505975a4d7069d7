#include "AppMenu.h"

#include "AppMenuItem.h"
#include "BarWindow.h"
#include "Commands.h"
#include "DrawingHelpers.h"
#include "Globals.h"
#include "LayerBar.h"
#include "LayerInfo.h"
#include "Settings.h"

#include <AppDefs.h>
#include <Application.h>
#include <InterfaceDefs.h>
#include <MenuItem.h>
#include <Message.h>
#include <Mime.h>
#include <OS.h>
#include <Window.h>

#include <stdio.h>
#include <string.h>

namespace {

// How long the Option-drag of the bar waits between two looks at the mouse.
const bigtime_t kDragPollInterval = 20000;

int32 current_flags() {
    return gr_settings != NULL ? gr_settings->flags : 0x1A4;
}

int32 current_direction() {
    return gr_settings != NULL ? gr_settings->direction : 1;
}

// The side margin of a bar cell: wide only for small icons with labels.
float side_margin() {
    int32 which = gr_settings != NULL ? gr_settings->which : B_MINI_ICON;
    return which == B_MINI_ICON && (current_flags() & kDrawLabelFlag) != 0 ? 10 : 2;
}

BMenuItem* application_item(const char* label, BMessage* message, char shortcut) {
    BMenuItem* item = new BMenuItem(label, message, shortcut);
    item->SetTarget(be_app);
    return item;
}

} // namespace

AppMenu::AppMenu()
    : BMenuBar(BRect(0, 0, 1, 1), "app_menu", 0,
               current_direction() < 2 ? B_ITEMS_IN_COLUMN : B_ITEMS_IN_ROW, false),
      fLayerMenu(NULL), fWorkspaceMenu(NULL) {
    AddItem(new AppMenuItem());
    BuildItems();
}

AppMenu::~AppMenu() {}

AppMenuItem* AppMenu::Item() const {
    return dynamic_cast<AppMenuItem*>(ItemAt(0));
}

BMenu* AppMenu::SwitchLayerMenu() const {
    return fLayerMenu;
}

BMenu* AppMenu::SwitchWorkspaceMenu() const {
    return fWorkspaceMenu;
}

void AppMenu::BuildItems() {
    AppMenuItem* appItem = Item();
    BMenu* menu = appItem != NULL ? appItem->Submenu() : NULL;
    if (menu == NULL)
        return;
    menu->RemoveItems(0, menu->CountItems(), true);
    fLayerMenu = NULL;
    fWorkspaceMenu = NULL;
    int32 flags = current_flags();

    fLayerMenu = new BMenu("Switch Layer");
    menu->AddItem(fLayerMenu);
    BMessage layers;
    if (gr_manager == NULL || gr_manager->GetLayerList(&layers) != B_OK) {
        if (BMenuItem* superitem = fLayerMenu->Superitem())
            superitem->SetEnabled(false);
    } else {
        const char* name;
        for (int32 index = 0; layers.FindString("name", index, &name) == B_OK; index++) {
            // The targets list is the layer without a name.
            if (name == NULL || name[0] == '\0')
                continue;
            BMessage* message = new BMessage(kSwitchLayer);
            message->AddString("layer_name", name);
            fLayerMenu->AddItem(new BMenuItem(name, message));
        }
    }

    if ((flags & kWorkspaceCommandFlag) != 0) {
        fWorkspaceMenu = new BMenu("Switch Workspace");
        menu->AddItem(fWorkspaceMenu);
        int32 count = count_workspaces();
        for (int32 number = 1; number <= count; number++) {
            char label[16];
            snprintf(label, sizeof(label), "%2d", (int)number);
            BMessage* message = new BMessage(kSwitchWorkspace);
            message->AddInt32("workspace", number - 1);
            char shortcut = number <= 9 ? (char)('0' + number) : 0;
            fWorkspaceMenu->AddItem(new BMenuItem(label, message, shortcut));
        }
    }

    // Labelled from the settings for now; Modify() follows the live state.
    bool shelf = (flags & kShelfFlag) != 0;
    BMessage* shelfMessage = new BMessage(kShowShelf);
    shelfMessage->AddBool("show", !shelf);
    menu->AddItem(new BMenuItem(shelf ? "Hide Shelf" : "Show Shelf", shelfMessage));

    menu->AddSeparatorItem();
    menu->AddItem(application_item("Preferences\xE2\x80\xA6", new BMessage(kShowPreferences), 'R'));
    menu->AddItem(application_item("Load Preferences", new BMessage(kRebuildBar), 'L'));
    menu->AddSeparatorItem();
    menu->AddItem(
        application_item("About Glimrow\xE2\x80\xA6", new BMessage(B_ABOUT_REQUESTED), 0));
    menu->AddItem(application_item("Quit", new BMessage(B_QUIT_REQUESTED), 'Q'));
}

void AppMenu::Modify() {
    int32 flags = current_flags();
    // The count of workspace lists (1 or 0) is compared with the masked bit (32
    // or 0): with the command enabled they never agree, so every call rebuilds
    // and the lists are always fresh; with it disabled only a stale workspace
    // list causes a rebuild.
    if ((fWorkspaceMenu != NULL ? 1 : 0) != (flags & kWorkspaceCommandFlag))
        BuildItems();

    AppMenuItem* appItem = Item();
    BMenu* menu = appItem != NULL ? appItem->Submenu() : NULL;
    if (menu == NULL)
        return;

    LayerInfo* current = NULL;
    BWindow* window = Window();
    if (window != NULL) {
        if (LayerBar* layerBar = dynamic_cast<LayerBar*>(window->FindView("layer_bar")))
            current = layerBar->Layer();
    }
    if (fLayerMenu != NULL) {
        for (int32 index = 0; index < fLayerMenu->CountItems(); index++) {
            BMenuItem* item = fLayerMenu->ItemAt(index);
            bool isCurrent = current != NULL && current->LayerName() != NULL &&
                             strcmp(current->LayerName(), item->Label()) == 0;
            item->SetEnabled(!isCurrent);
        }
    }

    int32 shelfIndex = 1;
    if ((flags & kWorkspaceCommandFlag) != 0 && fWorkspaceMenu != NULL) {
        int32 workspace = current_workspace();
        for (int32 index = 0; index < fWorkspaceMenu->CountItems(); index++)
            fWorkspaceMenu->ItemAt(index)->SetEnabled(index != workspace);
        shelfIndex = 2;
    }

    BMenuItem* shelfItem = menu->ItemAt(shelfIndex);
    if (shelfItem == NULL)
        return;
    // Outside a bar window the shelf counts as shown, as in a new bar.
    BarWindow* barWindow = dynamic_cast<BarWindow*>(window);
    bool showing = barWindow != NULL ? barWindow->IsShowingShelf() : true;
    shelfItem->SetLabel(showing ? "Hide Shelf" : "Show Shelf");
    if (BMessage* message = shelfItem->Message()) {
        if (message->ReplaceBool("show", !showing) != B_OK)
            message->AddBool("show", !showing);
    }
    shelfItem->SetEnabled((flags & kShelfFlag) != 0);
}

void AppMenu::UpdateIcon() {
    // Hook function
}

void AppMenu::AttachedToWindow() {
    float margin = side_margin();
    SetItemMargins(margin, 2, margin, 2);
    ResizeToPreferred();
    Modify();
    BMenuBar::AttachedToWindow();
}

void AppMenu::ResizeToPreferred() {
    AppMenuItem* appItem = Item();
    if (appItem == NULL)
        return;
    float width;
    float height;
    appItem->GetContentSize(&width, &height);
    float margin = side_margin();
    ResizeTo(2 * margin + width, 4 + height);
    SetItemMargins(margin, 2, margin, 2);
    SetMaxContentWidth(width);
}

void AppMenu::MouseDown(BPoint point) {
    BWindow* window = Window();
    BMessage* current = window != NULL ? window->CurrentMessage() : NULL;
    int32 modifiers = 0;
    if (current != NULL)
        current->FindInt32("modifiers", &modifiers);
    if ((modifiers & B_OPTION_KEY) != 0) {
        _DragWindow(point);
        return;
    }
    BMenuBar::MouseDown(point);
}

void AppMenu::_DragWindow(BPoint point) {
    BWindow* window = Window();
    BPoint last = ConvertToScreen(point);
    uint32 buttons = 0;
    BPoint where = point;
    GetMouse(&where, &buttons, true);
    // The window keeps where it is dragged to until the bar is next laid out.
    while (buttons != 0) {
        BPoint screenWhere = ConvertToScreen(where);
        if (screenWhere != last) {
            window->MoveBy(screenWhere.x - last.x, screenWhere.y - last.y);
            last = screenWhere;
        }
        snooze(kDragPollInterval);
        GetMouse(&where, &buttons, true);
    }
}

void AppMenu::MouseMoved(BPoint point, uint32 transit, const BMessage* dragMessage) {
    int32 flags = current_flags();
    BWindow* window = Window();
    bool activate =
        (flags & kAutoFocusFlag) != 0 || (dragMessage != NULL && (flags & kDragActivateFlag) != 0);
    if (activate && window != NULL && !window->IsActive())
        window->Activate(true);
    BMenuBar::MouseMoved(point, transit, dragMessage);
}

void AppMenu::Draw(BRect updateRect) {
    BMenu::Draw(updateRect);
    AppMenuItem* appItem = Item();
    if (appItem == NULL || !appItem->IsSelected2())
        stroke_3d_rect(this, Bounds(), LowColor(), true);
}

void AppMenu::MessageReceived(BMessage* message) {
    switch (message->what) {
    case kUpdateIcon:
        UpdateIcon();
        break;
    case kWorkspaceCountChanged:
        Modify();
        break;
    default:
        BMenuBar::MessageReceived(message);
        break;
    }
}

void AppMenu::WindowActivated(bool active) {
    // The handle's fading follows activation.
    Invalidate();
    BMenuBar::WindowActivated(active);
}
