// The command codes of the program's own messages: "gr" in the high 16 bits, a
// number in the low ones. The fields each one carries are listed beside it.
#ifndef GLIMROW_COMMANDS_H
#define GLIMROW_COMMANDS_H

#include <SupportDefs.h>

enum {
    // To a LayerInfo.
    kLayerInitialize = 0x67720000, // no fields: drop the items, back to disabled
    kLayerItemsFound = 0x67720001, // "items" pointers, "index" int32s, "finish" bool
    kLayerCheckItem = 0x67720002,  // "index" int32: re-check that item

    // To a LayerManager.
    kManagerEnableLayers = 0x67720003,   // "enable" bool
    kManagerUpdateSettings = 0x67720004, // the fields of an archived settings record
    kManagerLoadLayers = 0x67720005,     // no fields: rebuild the layer list

    // To the bar window.
    kSwitchLayer = 0x67720007,     // "layer_name" string, or "direction" bool (true: next)
    kSwitchWorkspace = 0x67720008, // "workspace" int32
    kShowShelf = 0x67720009,       // "show" bool

    // To the application menu, through the bar window.
    kUpdateIcon = 0x6772000a,            // no fields
    kWorkspaceCountChanged = 0x6772000b, // no fields

    // To the shelf, through the bar window.
    kClearReplicants = 0x6772000c, // no fields

    // To the loader (gr_slave).
    kSaveLayer = 0x6772000d,   // "name" string, "paths" strings, "icon" bool
    kLoadLayer = 0x6772000e,   // "layer", "looper" pointers, "blocksize", "start" int32
    kCancelLoad = 0x6772000f,  // "layer" pointer
    kDeleteLayer = 0x67720010, // "name" string

    // To the application object.
    kRebuildBar = 0x6772001f,
    kOpen = 0x67720020,              // "file" ref, "entries" refs, "text/plain" any
    kOpenWith = 0x67720021,          // "applications" strings, "file" refs
    kOpenParent = 0x67720022,        // "file" ref
    kShowDialog = 0x67720023,        // "path" string, "layer" pointer
    kShowPreferences = 0x67720024,   // no fields
    kPreferencesClosed = 0x67720025, // no fields
};

#endif // GLIMROW_COMMANDS_H
