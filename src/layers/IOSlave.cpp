#include "IOSlave.h"

#include "AlertBox.h"
#include "Commands.h"
#include "CreateRefItem.h"
#include "Globals.h"
#include "LayerFile.h"
#include "LayerInfo.h"
#include "RefRetriever.h"
#include "Settings.h"

#include <Entry.h>
#include <Message.h>
#include <MessageQueue.h>
#include <Messenger.h>
#include <OS.h>

#include <string>

namespace {

const int32 kPortCapacity = 50;
// How long the loader leaves the window alone after each item.
const bigtime_t kItemPause = 20000;

const char* display_name(const char* name) {
    return name[0] == '\0' ? gr_targets_name : name;
}

} // namespace

IOSlave::IOSlave() : BLooper("io_slave", B_NORMAL_PRIORITY, kPortCapacity) {
    // Without a layers folder the directory stays unset and every named layer
    // fails to load or save.
    entry_ref ref;
    if (get_settings(gr_layers_name, &ref) == B_OK)
        fLayersFolder.SetTo(&ref);
}

IOSlave::~IOSlave() {}

void IOSlave::MessageReceived(BMessage* message) {
    switch (message->what) {
    case kSaveLayer:
        SaveLayer(message);
        break;
    case kLoadLayer:
        LoadLayer(message);
        break;
    case kDeleteLayer:
        DeleteLayer(message);
        break;
    case kCancelLoad:
        // A cancel acts only while its load runs; arriving here it is too late.
        break;
    default:
        BLooper::MessageReceived(message);
        break;
    }
}

void IOSlave::LoadLayer(BMessage* message) {
    LayerInfo* layer = NULL;
    BLooper* looper = NULL;
    int32 blockSize;
    int32 start;
    if (message->FindPointer("layer", (void**)&layer) != B_OK || layer == NULL)
        return;
    if (message->FindPointer("looper", (void**)&looper) != B_OK || looper == NULL)
        return;
    if (message->FindInt32("blocksize", &blockSize) != B_OK || blockSize < 1)
        blockSize = 1;
    if (message->FindInt32("start", &start) != B_OK || start < 0)
        start = 0;

    // The window may be gone before or during the load (a rebuilt or quitting bar):
    // it is locked through a messenger, which fails for a looper that no longer
    // exists instead of touching it.
    BMessenger manager(NULL, looper);
    if (!manager.LockTarget())
        return;
    if (looper->IndexOf(layer) < 0) {
        looper->Unlock();
        return;
    }

    // The layer's name is read under its looper's lock: the window may rename it.
    std::string name = layer->LayerName();
    char* text = NULL;
    size_t length = 0;
    status_t status = read_layer_file(&fLayersFolder, name.c_str(), &text, &length);
    if (status != B_OK) {
        // No reply: the layer stays not completed and may ask again. The lock
        // goes first so the window is not stuck behind the alert.
        looper->Unlock();
        alert(kReadFailedAlert, display_name(name.c_str()), status);
        return;
    }

    BMessage reply(kLayerItemsFound);
    int32 counter = 0;
    char* cursor = text;
    char* end = text + length;
    while (char* line = next_layer_line(&cursor, end)) {
        if (!CheckQueue(layer)) {
            looper->Unlock();
            delete[] text;
            return;
        }
        if (line[0] == '#')
            continue;
        if (counter < start) {
            // Already in the layer from an earlier, interrupted load.
            counter++;
            continue;
        }

        RefRetriever* item = NULL;
        if (create_ref_item(line, layer, &item) != B_OK || item == NULL)
            continue;
        reply.AddPointer("items", item);
        reply.AddInt32("index", counter);
        counter++;
        if (counter % blockSize == blockSize - 1)
            ProcessMessage(&reply, layer);

        looper->Unlock();
        snooze(kItemPause);
        bool locked = manager.LockTarget();
        if (!locked || looper->IndexOf(layer) < 0) {
            if (locked)
                looper->Unlock();
            delete[] text;
            // Whatever was not delivered yet goes with the layer.
            ProcessMessage(&reply, NULL);
            return;
        }
    }

    reply.AddBool("finish", true);
    ProcessMessage(&reply, layer);
    delete[] text;
    looper->Unlock();
}

void IOSlave::SaveLayer(BMessage* message) {
    const char* name;
    if (message->FindString("name", &name) != B_OK || name == NULL)
        return;
    status_t status = write_layer_file(&fLayersFolder, name, message);
    if (status != B_OK)
        alert(kWriteFailedAlert, display_name(name), status);
}

void IOSlave::DeleteLayer(BMessage* message) {
    const char* name;
    if (message->FindString("name", &name) != B_OK || name == NULL)
        return;
    // Silent on purpose: a layer that cannot go to the Trash is removed instead.
    delete_layer_file(&fLayersFolder, name);
}

bool IOSlave::CheckQueue(LayerInfo* layer) {
    BMessageQueue* queue = MessageQueue();
    if (queue == NULL)
        return true;
    if (!queue->Lock())
        return true;
    bool goOn = true;
    for (int32 index = 0; BMessage* message = queue->FindMessage(index); index++) {
        if (message->what != kCancelLoad)
            continue;
        void* cancelled;
        if (message->FindPointer("layer", &cancelled) != B_OK || cancelled != layer)
            continue;
        queue->RemoveMessage(message);
        delete message;
        goOn = false;
        break;
    }
    queue->Unlock();
    return goOn;
}

void IOSlave::ProcessMessage(BMessage* reply, LayerInfo* layer) {
    if (reply == NULL)
        return;
    BLooper* looper = layer != NULL ? layer->Looper() : NULL;
    if (looper == NULL || looper->PostMessage(reply, layer) != B_OK) {
        void* item;
        for (int32 index = 0; reply->FindPointer("items", index, &item) == B_OK; index++)
            delete static_cast<RefRetriever*>(item);
    }
    reply->RemoveName("items");
}
