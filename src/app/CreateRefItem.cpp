#include "CreateRefItem.h"

#include "LayerInfo.h"
#include "LayerManager.h"
#include "RefRetriever.h"

#include <Entry.h>

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

    case which_menu_items:
        // TODO: a FileMenuItem, or the folder hierarchy of DirectoryMenu,
        // sending 0x67720020 with the path's ref as "file" and "entries" to
        // be_app; they come with the file menus.
    case which_bar_items:
        // TODO: a LayerItem, linked to the layer named by the path's leaf when
        // the path is a layer file; it comes with the layer bar.
    case which_list_items:
        // TODO: a FileListItem; it comes with the file list.
    default:
        return B_ERROR;
    }

    *item = made;
    return B_OK;
}
