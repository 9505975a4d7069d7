#include "LayerManager.h"

#include "AlertBox.h"
#include "Commands.h"
#include "FileHelpers.h"
#include "Globals.h"
#include "LayerInfo.h"

#include <Directory.h>
#include <Entry.h>
#include <Message.h>
#include <Messenger.h>
#include <StorageDefs.h>

#include <string.h>

namespace {

const char* const kLoadFailedText = "Failed to load layers...";

} // namespace

LayerManager::LayerManager(BRect frame, const char* title, uint32 flags, list_which layersWhich,
                           list_which targetsWhich)
    : BWindow(frame, title, B_TITLED_WINDOW, flags, B_CURRENT_WORKSPACE), fLayersWhich(layersWhich),
      fTargetsWhich(targetsWhich) {
    UpdateSettings((BMessage*)NULL, false);
    // The window is still hidden: the layers stay disabled until Show().
    status_t status = LoadLayers();
    if (status != B_OK)
        alert(kPlainAlert, kLoadFailedText, status);
}

LayerManager::~LayerManager() {}

void LayerManager::MessageReceived(BMessage* message) {
    switch (message->what) {
    case kManagerEnableLayers: {
        bool enable;
        if (message->FindBool("enable", &enable) == B_OK)
            SetLayerEnabled(enable);
        break;
    }

    case kManagerUpdateSettings:
        UpdateSettings(message, true);
        break;

    case kManagerLoadLayers: {
        status_t status = LoadLayers();
        if (status != B_OK)
            alert(kPlainAlert, kLoadFailedText, status);
        break;
    }

    default:
        // Nothing else is meant for a layer manager.
        break;
    }
}

void LayerManager::Quit() {
    _RemoveAllLayers();
    BWindow::Quit();
}

void LayerManager::Show() {
    BLooper* looper = this;
    BWindow::Show();
    // The window may close (and be deleted) on its own thread as soon as it is
    // shown: the messenger's lock fails for a window that is gone.
    if (!BMessenger(NULL, looper).LockTarget())
        return;
    if (!IsHidden())
        SetLayerEnabled(true);
    Unlock();
}

void LayerManager::UpdateSettings(BMessage* message, bool notify) {
    settings record;
    status_t status = B_ERROR;
    if (message != NULL)
        status = record.set_to(message);
    if (message == NULL || status != B_OK) {
        // Whatever the file cannot give stays as the defaults (or as the
        // message left it).
        read_settings_file(&record);
    }

    if (notify)
        UpdateSettings(&record);
    else
        fSettings.set_to(record);
}

void LayerManager::UpdateSettings(settings* newSettings) {
    if (newSettings != NULL && fSettings.compare(newSettings, true) != 0)
        fSettings.set_to(*newSettings);
}

void LayerManager::SetLayerEnabled(bool enabled) {
    for (int32 index = 0; index < CountHandlers(); index++) {
        if (LayerInfo* layer = dynamic_cast<LayerInfo*>(HandlerAt(index)))
            layer->SetEnabled(enabled);
    }
}

status_t LayerManager::LoadLayers() {
    _RemoveAllLayers();

    entry_ref ref;
    status_t status = get_settings(gr_layers_name, &ref);
    if (status != B_OK)
        return status;
    BDirectory folder;
    status = folder.SetTo(&ref);
    if (status == B_OK)
        status = folder.InitCheck();
    if (status != B_OK)
        return status;

    BEntry entry;
    while (folder.GetNextEntry(&entry, false) == B_OK) {
        entry_ref entryRef;
        if (entry.GetRef(&entryRef) != B_OK)
            continue;
        char type[B_MIME_TYPE_LENGTH];
        if (get_type(&entryRef, type, NULL, true) == B_OK && strcmp(type, "text/plain") == 0)
            AddLayer(entryRef.name, true);
        else
            alert(kLayerIgnoredAlert, entryRef.name, B_OK);
    }

    AddLayer("", true);
    return B_OK;
}

list_which LayerManager::LayersWhich() const {
    return fLayersWhich;
}

list_which LayerManager::TargetsWhich() const {
    return fTargetsWhich;
}

const settings* LayerManager::Settings() const {
    return &fSettings;
}

LayerInfo* LayerManager::AddLayer(const char* name, bool loadable) {
    LayerInfo* layer = new LayerInfo(name, loadable);
    AddHandler(layer);
    if (!IsHidden())
        layer->SetEnabled(true);
    return layer;
}

LayerInfo* LayerManager::RemoveLayer(const char* name) {
    LayerInfo* layer = FindLayer(name);
    if (layer == NULL)
        return NULL;
    layer->SetEnabled(false);
    if (!RemoveHandler(layer))
        return NULL;
    return layer;
}

LayerInfo* LayerManager::FindLayer(const char* name) const {
    if (name == NULL)
        return NULL;
    for (int32 index = 0; index < CountHandlers(); index++) {
        LayerInfo* layer = dynamic_cast<LayerInfo*>(HandlerAt(index));
        if (layer != NULL && strcmp(layer->LayerName(), name) == 0)
            return layer;
    }
    return NULL;
}

LayerInfo* LayerManager::FindNextLayer(LayerInfo* start, long step) const {
    if (step == 0)
        return start;

    int32 count = CountHandlers();
    int64 index;
    if (start == NULL)
        index = step > 0 ? 0 : count - 1;
    else
        index = (int64)IndexOf(start) + step;
    if (index < 0)
        return NULL;

    // Every handler can be visited once; a walk that found no layer by then
    // (no layers at all, or a step that never lands on one) would go forever.
    for (int32 visited = 0; visited <= count; visited++) {
        BHandler* handler = index < count ? HandlerAt((int32)index) : NULL;
        if (handler == NULL) {
            index = step > 0 ? 0 : count - 1;
            handler = HandlerAt((int32)index);
        }
        index += step;
        if (LayerInfo* layer = dynamic_cast<LayerInfo*>(handler))
            return layer;
    }
    return NULL;
}

status_t LayerManager::GetLayerList(BMessage* message) const {
    if (message == NULL)
        return B_BAD_VALUE;
    for (int32 index = 0; index < CountHandlers(); index++) {
        LayerInfo* layer = dynamic_cast<LayerInfo*>(HandlerAt(index));
        if (layer == NULL)
            continue;
        status_t status = message->AddString("name", layer->LayerName());
        if (status != B_OK)
            return status;
    }
    status_t status = message->AddInt32("layers_which", fLayersWhich);
    if (status != B_OK)
        return status;
    return message->AddInt32("targets_which", fTargetsWhich);
}

status_t LayerManager::GetLayerPointer(BMessage* message) const {
    if (message == NULL)
        return B_BAD_VALUE;
    for (int32 index = 0; index < CountHandlers(); index++) {
        LayerInfo* layer = dynamic_cast<LayerInfo*>(HandlerAt(index));
        if (layer == NULL)
            continue;
        status_t status = message->AddPointer(layer->LayerName(), layer);
        if (status != B_OK)
            return status;
    }
    return B_OK;
}

void LayerManager::_RemoveAllLayers() {
    for (int32 index = CountHandlers() - 1; index >= 0; index--) {
        LayerInfo* layer = dynamic_cast<LayerInfo*>(HandlerAt(index));
        if (layer == NULL)
            continue;
        // Disabling cancels a load that may still be running for it.
        layer->SetEnabled(false);
        RemoveHandler(layer);
        delete layer;
    }
}
