// A window that owns a full set of layers: one LayerInfo for every layer file in
// the layers folder, then the targets list, kept as handlers of the window's own
// looper in that order. It also keeps its own copy of the settings and the two
// kinds of item that the item factory makes for its layers and its targets.
//
// The bar window and the preferences window are both layer managers; each has
// its own layers and items, loaded independently by the loader. The layers stay
// disabled (nothing is read) until the window is shown.
#ifndef GLIMROW_LAYER_MANAGER_H
#define GLIMROW_LAYER_MANAGER_H

#include "Settings.h"

#include <Window.h>

class LayerInfo;

enum list_which {
    which_menu_items = 0, // file menu items with lazily built folder menus
    which_bar_items = 1,  // bar items; a layer file links to that layer
    which_list_items = 2, // rows of a file list
    which_test_items = 3, // plain references, for tests and measurements
};

class LayerManager : public BWindow {
public:
    LayerManager(BRect frame, const char* title, uint32 flags, list_which layersWhich,
                 list_which targetsWhich);
    virtual ~LayerManager();

    virtual void MessageReceived(BMessage* message);
    virtual void Quit();
    virtual void Show();

    // Reads the settings from the message (or, failing that, from the file);
    // with notify true hands them to UpdateSettings(settings*), otherwise just
    // keeps them.
    void UpdateSettings(BMessage* message, bool notify);
    // Hook function: subclasses apply changed settings. The base keeps a copy.
    virtual void UpdateSettings(settings* newSettings);
    virtual void SetLayerEnabled(bool enabled);
    // Throws all layers away and makes them anew from the layers folder, the
    // targets list last.
    virtual status_t LoadLayers();

    list_which LayersWhich() const;
    list_which TargetsWhich() const;
    const settings* Settings() const;

    // A new layer, added last; enabled (so loading) unless the window is hidden.
    LayerInfo* AddLayer(const char* name, bool loadable);
    // The first layer of that name, disabled and no longer a handler here; the
    // caller owns it. NULL when there is none.
    LayerInfo* RemoveLayer(const char* name);
    LayerInfo* FindLayer(const char* name) const;
    // The layer step handlers away from start, wrapping around at both ends.
    LayerInfo* FindNextLayer(LayerInfo* start, long step) const;

    // One "name" per layer in order, then "layers_which" and "targets_which".
    status_t GetLayerList(BMessage* message) const;
    // One pointer per layer, under the layer's name.
    status_t GetLayerPointer(BMessage* message) const;

protected:
    settings fSettings;

private:
    void _RemoveAllLayers();

    list_which fLayersWhich;
    list_which fTargetsWhich;
};

#endif // GLIMROW_LAYER_MANAGER_H
