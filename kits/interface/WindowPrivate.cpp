// Kit-private access to windows, and the names of the fields the display
// server and the windows share.
#include "interface/WindowPrivate.h"

#include "interface/WindowData.h"

#include <mutex>

namespace BPrivate {

const char* const kFieldPointerOutside = "_pointer_outside_";
const char* const kFieldTransit = "be:transit";
const char* const kFieldDragMessage = "be:drag_message";
const char* const kFieldViewWhere = "be:view_where";
const char* const kFieldScreenWhere = "screen_where";
const char* const kFieldFrameRequest = "be:frame_request";

namespace {
key_menu_bar_starter sKeyMenuBarStarter = NULL;
std::mutex sStarterLock;
} // namespace

int32 WindowPrivate::ServerToken() const {
    return fWindow->fPrivate->serverToken;
}

status_t WindowPrivate::GrabPointer() {
    BWindow::Private* data = fWindow->fPrivate;
    if (data->server == NULL)
        return B_NO_INIT;
    return data->server->GrabPointer(data->serverToken);
}

void WindowPrivate::UngrabPointer() {
    BWindow::Private* data = fWindow->fPrivate;
    if (data->server != NULL)
        data->server->UngrabPointer(data->serverToken);
}

cairo_surface_t* WindowPrivate::BackBuffer() const {
    return fWindow->fPrivate->backBuffer.get();
}

uint32 WindowPrivate::CountUpdatePasses() const {
    return fWindow->fPrivate->updatePasses;
}

void WindowPrivate::ReleaseFrameChanges(BLooper* looper) {
    BWindow* window = static_cast<BWindow*>(looper);
    if (window == NULL)
        return;
    BWindow::Private* data = window->fPrivate;
    if (!data->frameChangesHeld)
        return;
    data->frameChangesHeld = false;
    if (data->server != NULL)
        data->server->ReleaseFrameChanges(data->serverToken);
}

void WindowPrivate::SetKeyMenuBarStarter(key_menu_bar_starter starter) {
    std::lock_guard<std::mutex> lock(sStarterLock);
    sKeyMenuBarStarter = starter;
}

key_menu_bar_starter WindowPrivate::KeyMenuBarStarter() {
    std::lock_guard<std::mutex> lock(sStarterLock);
    return sKeyMenuBarStarter;
}

} // namespace BPrivate
