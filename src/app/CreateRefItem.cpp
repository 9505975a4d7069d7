#include "CreateRefItem.h"

#include "Commands.h"
#include "DirectoryMenu.h"
#include "FileHelpers.h"
#include "FileMenuItem.h"
#include "LayerFile.h"
#include "LayerInfo.h"
#include "LayerItem.h"
#include "LayerManager.h"
#include "RefRetriever.h"

#include <Application.h>
#include <Entry.h>
#include <Message.h>

status_t create_ref_item(const char* path, LayerInfo* layer, RefRetriever** item) {
    if (path == NULL || layer == NULL || item == NULL)
        return B_BAD_VALUE;
    LayerManager* manager = dynamic_cast<LayerManager*>(layer->Looper());
    if (manager == NULL)
        return B_BAD_VALUE;

    // The targets list is the layer without a name.
    list_which which =
        layer->LayerName()[0] == '\0' ? manager->TargetsWhich() : manager->LayersWhich();

    RefRetriever* made = NULL;
    switch (which) {
    case which_test_items: {
        // A plain reference. Like a menu item it needs the path's entry_ref,
        // so a path whose folder does not exist is refused.
        entry_ref ref;
        status_t status = get_ref_for_path(path, &ref);
        if (status != B_OK)
            return status;
        made = new RefRetriever(path);
        break;
    }

    case which_bar_items: {
        // A layer file links to the layer of the same name, when the manager
        // has one: its item then expands into that layer's items.
        bool isLayerLink = is_layer_file(path) && manager->FindLayer(ref_name(path)) != NULL;
        made = new LayerItem(path, layer, isLayerLink);
        break;
    }

    case which_menu_items: {
        // A folder's item unfolds into its hierarchy; every item of it opens
        // its own entry with the path's file.
        entry_ref ref;
        status_t status = get_ref_for_path(path, &ref);
        if (status != B_OK)
            return status;
        BMessage message(kOpen);
        message.AddRef("file", &ref);
        message.AddRef("entries", &ref);
        FileMenuItem* menuItem = DirectoryMenu::StartHierarchy(&ref, &message);
        if (menuItem == NULL)
            menuItem = new FileMenuItem(path, new BMessage(message));
        menuItem->SetTarget(be_app);
        made = menuItem;
        break;
    }

    case which_list_items:
        // TODO: a FileListItem; it comes with the file list.
    default:
        return B_ERROR;
    }

    *item = made;
    return B_OK;
}
