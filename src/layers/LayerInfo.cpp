#include "LayerInfo.h"

#include "Commands.h"
#include "Globals.h"
#include "RefRetriever.h"

#include <Looper.h>
#include <Message.h>
#include <Messenger.h>

#include <stdio.h>
#include <string.h>

namespace {

char* copy_string(const char* text) {
    if (text == NULL)
        text = "";
    size_t length = strlen(text);
    char* copy = new char[length + 1];
    memcpy(copy, text, length + 1);
    return copy;
}

} // namespace

LayerInfo::LayerInfo(const char* name, bool loadable)
    : BHandler((const char*)NULL), fDisabledMarker(0), fName(copy_string(name)),
      fLocker(&fDisabledMarker), fCompleted(false), fLoadable(loadable), fItems(20) {}

LayerInfo::~LayerInfo() {
    delete[] fName;
    _DeleteItems();
}

void LayerInfo::MessageReceived(BMessage* message) {
    switch (message->what) {
    case kLayerInitialize:
        Initialize();
        break;

    case kLayerItemsFound:
        ItemsFound(message);
        break;

    case kLayerCheckItem: {
        if (!fCompleted)
            break;
        int32 index;
        if (message->FindInt32("index", &index) != B_OK)
            index = -1;
        if (index >= 0 && index < fItems.CountItems())
            static_cast<RefRetriever*>(fItems.ItemAt(index))->CheckNode(false);
        break;
    }

    default:
        BHandler::MessageReceived(message);
        break;
    }
}

void LayerInfo::SetEnabled(bool enabled) {
    if (enabled == _IsEnabled())
        return;

    if (enabled) {
        int32 count = fItems.CountItems();
        if (!fCompleted && fLoadable) {
            // "start" is what the layer already has: a load that was cancelled
            // goes on after its last item.
            BMessage request(kLoadLayer);
            request.AddPointer("layer", this);
            request.AddPointer("looper", Looper());
            request.AddInt32("blocksize", 1);
            request.AddInt32("start", count);
            _PostToLoader(&request);
        }
        if (fLocker == &fDisabledMarker)
            fLocker = NULL;
    } else {
        if (!fCompleted) {
            BMessage cancel(kCancelLoad);
            cancel.AddPointer("layer", this);
            _PostToLoader(&cancel);
        }
        fLocker = &fDisabledMarker;
    }
}

void LayerInfo::Initialize() {
    if (_IsEnabled())
        SetEnabled(false);
    _DeleteItems();
    fCompleted = false;
    fLocker = &fDisabledMarker;
}

void LayerInfo::ItemsFound(BMessage* message) {
    if (message == NULL)
        return;
    void* item;
    for (int32 index = 0; message->FindPointer("items", index, &item) == B_OK; index++) {
        if (item != NULL)
            fItems.AddItem(item);
    }
    bool finish;
    if (message->FindBool("finish", &finish) == B_OK && finish)
        fCompleted = true;
    const char* name;
    if (message->FindString("name", &name) == B_OK && name != NULL && strcmp(name, fName) != 0)
        SetLayerName(name);
}

BList* LayerInfo::SetLock(bool lock, void* owner) {
    if (fLocker == &fDisabledMarker)
        return NULL;
    if (fLocker == NULL) {
        if (!lock)
            return NULL;
        fLocker = owner;
        return &fItems;
    }
    if (fLocker != owner)
        return NULL;
    if (lock)
        return &fItems;
    fLocker = NULL;
    return NULL;
}

void* LayerInfo::Locker() const {
    return fLocker;
}

bool LayerInfo::IsCompleted() const {
    return fCompleted;
}

int32 LayerInfo::CountItems() const {
    return fItems.CountItems();
}

const char* LayerInfo::LayerName() const {
    return fName;
}

void LayerInfo::SetLayerName(const char* name) {
    char* copy = copy_string(name);
    delete[] fName;
    fName = copy;
}

void LayerInfo::CheckAllItems(bool force) {
    for (int32 index = 0; index < fItems.CountItems(); index++)
        static_cast<RefRetriever*>(fItems.ItemAt(index))->CheckNode(force);
}

bool LayerInfo::CompareItems(const LayerInfo* other) const {
    if (other == NULL)
        return true;
    int32 count = fItems.CountItems();
    if (count != other->fItems.CountItems())
        return true;
    for (int32 index = count - 1; index >= 0; index--) {
        const RefRetriever* mine = static_cast<const RefRetriever*>(fItems.ItemAt(index));
        const RefRetriever* theirs = static_cast<const RefRetriever*>(other->fItems.ItemAt(index));
        if (strcmp(mine->Path(), theirs->Path()) != 0)
            return true;
    }
    return false;
}

void LayerInfo::PrintToStream() const {
    const char* state;
    if (fLocker == NULL)
        state = "is unlocked.";
    else if (fLocker == &fDisabledMarker)
        state = "is disabled.";
    else
        state = "is locked.";
    printf("LayerInfo name=%s, count=%d, completed=%s, %s\n", fName, (int)fItems.CountItems(),
           fCompleted ? "1" : "0", state);
    for (int32 index = 0; index < fItems.CountItems(); index++) {
        printf("item[%d]=\"%s\"\n", (int)index,
               static_cast<const RefRetriever*>(fItems.ItemAt(index))->Path());
    }
}

bool LayerInfo::_IsEnabled() const {
    return fLocker != &fDisabledMarker;
}

void LayerInfo::_DeleteItems() {
    for (int32 index = fItems.CountItems() - 1; index >= 0; index--)
        delete static_cast<RefRetriever*>(fItems.RemoveItem(index));
}

void LayerInfo::_PostToLoader(BMessage* message) {
    // Without a loader (a manager used on its own) there is nobody to ask. While
    // the application quits, the loader may already be gone: the messenger finds
    // that out without touching it.
    if (gr_slave != NULL) {
        const BLooper* loader = gr_slave;
        BMessenger(NULL, loader).SendMessage(message);
    }
}
