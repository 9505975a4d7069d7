// The item factory: turns one line of a layer file into the item that the
// layer's manager wants (a bar item, a list row, a menu item). The loader calls
// it in its own thread with the layer's looper locked.
#ifndef GLIMROW_CREATE_REF_ITEM_H
#define GLIMROW_CREATE_REF_ITEM_H

#include <SupportDefs.h>

class LayerInfo;
class RefRetriever;

// Makes the item for path and stores its RefRetriever part in *item (owned by
// the caller). B_ERROR for a kind of item that cannot be made.
status_t create_ref_item(const char* path, LayerInfo* layer, RefRetriever** item);

#endif // GLIMROW_CREATE_REF_ITEM_H
