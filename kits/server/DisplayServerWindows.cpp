// The display server's window model and the rules a Be desktop applies to it:
// windows stack by feel (menus above modal windows above floating windows above
// normal ones), a shown or clicked window comes to the front of its layer unless
// it avoids the front, and the active window is the front-most one that may take
// the focus when the active one goes away.
#include "server/DisplayServer.h"

#include "interface/WindowPrivate.h"

#include <OS.h>

#include <algorithm>

namespace BPrivate {

// #pragma mark - Window model

ServerWindow* DisplayServer::_Find(int32 id) {
    auto found = fWindows.find(id);
    return found != fWindows.end() ? found->second.get() : NULL;
}

bool DisplayServer::_InWorkspace(const ServerWindow* window, int32 workspace) const {
    return workspace >= 0 && workspace < kMaxWorkspaces &&
           (window->workspaces & (1u << workspace)) != 0;
}

bool DisplayServer::_IsVisible(const ServerWindow* window) const {
    return !window->hidden && !window->minimized && _InWorkspace(window, fCurrentWorkspace);
}

bool DisplayServer::_CanFocus(const ServerWindow* window) const {
    return (window->flags & B_AVOID_FOCUS) == 0 && window->feel != kMenuWindowFeel &&
           window->feel != kDesktopWindowFeel;
}

std::vector<ServerWindow*> DisplayServer::_StackBackToFront() {
    std::vector<ServerWindow*> windows;
    windows.reserve(fStack.size());
    for (int32 id : fStack) {
        if (ServerWindow* window = _Find(id))
            windows.push_back(window);
    }
    return windows;
}

int32 DisplayServer::_Rank(const ServerWindow* window) const {
    switch ((int32)window->feel) {
    case kDesktopWindowFeel:
        return 0;
    case B_FLOATING_SUBSET_WINDOW_FEEL:
    case B_FLOATING_APP_WINDOW_FEEL:
    case B_FLOATING_ALL_WINDOW_FEEL:
        return 2;
    case B_MODAL_SUBSET_WINDOW_FEEL:
    case B_MODAL_APP_WINDOW_FEEL:
    case B_MODAL_ALL_WINDOW_FEEL:
        return 3;
    case kMenuWindowFeel:
        return 4;
    default:
        return 1;
    }
}

void DisplayServer::_Restack(int32 id, bool toFront) {
    ServerWindow* window = _Find(id);
    if (window == NULL)
        return;
    fStack.erase(std::remove(fStack.begin(), fStack.end(), id), fStack.end());
    // A window that avoids the front never rises above its layer's others.
    if ((window->flags & B_AVOID_FRONT) != 0)
        toFront = false;
    int32 rank = _Rank(window);
    size_t position = 0;
    if (toFront) {
        position = fStack.size();
        while (position > 0 && _Rank(_Find(fStack[position - 1])) > rank)
            position--;
    } else {
        while (position < fStack.size() && _Rank(_Find(fStack[position])) < rank)
            position++;
    }
    fStack.insert(fStack.begin() + position, id);
}

void DisplayServer::_SetActive(int32 id, Outbox& outbox) {
    if (fActiveWindow == id)
        return;
    bigtime_t now = system_time();
    if (ServerWindow* old = _Find(fActiveWindow)) {
        BMessage message(B_WINDOW_ACTIVATED);
        message.AddInt64("when", now);
        message.AddBool("active", false);
        outbox.push_back(Outgoing{old->messenger, message, false, BMessenger()});
    }
    fActiveWindow = id;
    if (ServerWindow* window = _Find(id)) {
        BMessage message(B_WINDOW_ACTIVATED);
        message.AddInt64("when", now);
        message.AddBool("active", true);
        outbox.push_back(Outgoing{window->messenger, message, false, BMessenger()});
    }
}

void DisplayServer::_ActivateNext(Outbox& outbox) {
    for (auto iterator = fStack.rbegin(); iterator != fStack.rend(); iterator++) {
        ServerWindow* window = _Find(*iterator);
        if (window != NULL && window->id != fActiveWindow && _IsVisible(window) &&
            _CanFocus(window)) {
            _SetActive(window->id, outbox);
            return;
        }
    }
    _SetActive(0, outbox);
}

int32 DisplayServer::CreateWindow(const BMessenger& target, BRect frame, const char* title,
                                  window_look look, window_feel feel, uint32 flags,
                                  uint32 workspaces) {
    auto window = std::make_unique<ServerWindow>();
    window->messenger = target;
    window->title = title != NULL ? title : "";
    window->frame = frame;
    window->look = look;
    window->feel = feel;
    window->flags = flags;
    window->frontBuffer = make_buffer(frame);

    std::lock_guard<std::mutex> lock(fLock);
    int32 id = fNextWindowID++;
    window->id = id;
    window->workspaces = workspaces == B_CURRENT_WORKSPACE ? 1u << fCurrentWorkspace : workspaces;
    ServerWindow* record = window.get();
    fWindows[id] = std::move(window);
    fStack.push_back(id);
    _Restack(id, true);
    _WindowChanged(record);
    return id;
}

void DisplayServer::DestroyWindow(int32 id) {
    Outbox outbox;
    std::unique_ptr<ServerWindow> doomed;
    {
        std::lock_guard<std::mutex> lock(fLock);
        auto found = fWindows.find(id);
        if (found == fWindows.end())
            return;
        fStack.erase(std::remove(fStack.begin(), fStack.end(), id), fStack.end());
        doomed = std::move(found->second);
        doomed->hidden = true;
        _WindowChanged(doomed.get());
        fWindows.erase(found);
        if (fActiveWindow == id) {
            fActiveWindow = 0;
            _ActivateNext(outbox);
        }
        if (fGrabWindow == id)
            fGrabWindow = 0;
        if (fMouseDownWindow == id)
            fMouseDownWindow = 0;
        if (fLastMouseWindow == id)
            fLastMouseWindow = 0;
    }
    fModelCondition.notify_all();
    _PostLater(std::move(outbox));
}

void DisplayServer::SetWindowRunning(int32 id) {
    std::lock_guard<std::mutex> lock(fLock);
    if (ServerWindow* window = _Find(id)) {
        window->running = true;
        window->nextPulse = system_time() + window->pulseRate;
    }
    // The thread may have to compute a new timer deadline.
    _Enqueue([] {}, false);
}

void DisplayServer::MoveWindow(int32 id, BPoint leftTop) {
    MoveWindow(id, leftTop, 0);
}

void DisplayServer::MoveWindow(int32 id, BPoint leftTop, uint32 request) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        ServerWindow* window = _Find(id);
        if (window == NULL)
            return;
        if (request != 0)
            window->frameRequest = request;
        if (window->frame.LeftTop() == leftTop)
            return;
        window->frame.OffsetTo(leftTop);
        BMessage moved(B_WINDOW_MOVED);
        moved.AddInt64("when", system_time());
        moved.AddPoint("where", leftTop);
        moved.AddInt32(kFieldFrameRequest, (int32)window->frameRequest);
        outbox.push_back(Outgoing{window->messenger, moved, false, BMessenger()});
        _FrameChanged(window, request != 0);
    }
    _PostLater(std::move(outbox));
}

void DisplayServer::ReleaseFrameChanges(int32 id) {
    std::lock_guard<std::mutex> lock(fLock);
    ServerWindow* window = _Find(id);
    if (window == NULL || !window->frameChangesHeld)
        return;
    window->frameChangesHeld = false;
    _WindowChanged(window);
}

void DisplayServer::_FrameChanged(ServerWindow* window, bool held) {
    if (held)
        window->frameChangesHeld = true;
    else
        _WindowChanged(window);
}

void DisplayServer::ResizeWindow(int32 id, float width, float height) {
    ResizeWindow(id, width, height, 0);
}

void DisplayServer::ResizeWindow(int32 id, float width, float height, uint32 request) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        ServerWindow* window = _Find(id);
        if (window == NULL)
            return;
        if (request != 0)
            window->frameRequest = request;
        if (window->frame.Width() == width && window->frame.Height() == height)
            return;
        window->frame.right = window->frame.left + width;
        window->frame.bottom = window->frame.top + height;
        CairoSurfacePointer buffer = make_buffer(window->frame);
        cairo_t* cairo = cairo_create(buffer.get());
        cairo_set_operator(cairo, CAIRO_OPERATOR_SOURCE);
        cairo_set_source_surface(cairo, window->frontBuffer.get(), 0, 0);
        cairo_paint(cairo);
        cairo_destroy(cairo);
        window->frontBuffer = std::move(buffer);

        BMessage resized(B_WINDOW_RESIZED);
        resized.AddInt64("when", system_time());
        resized.AddInt32("width", (int32)width);
        resized.AddInt32("height", (int32)height);
        resized.AddInt32(kFieldFrameRequest, (int32)window->frameRequest);
        outbox.push_back(Outgoing{window->messenger, resized, false, BMessenger()});
        _FrameChanged(window, request != 0);
    }
    _PostLater(std::move(outbox));
}

void DisplayServer::SetWindowTitle(int32 id, const char* title) {
    std::lock_guard<std::mutex> lock(fLock);
    if (ServerWindow* window = _Find(id)) {
        window->title = title != NULL ? title : "";
        _WindowChanged(window);
    }
}

void DisplayServer::SetWindowLook(int32 id, window_look look) {
    std::lock_guard<std::mutex> lock(fLock);
    if (ServerWindow* window = _Find(id)) {
        window->look = look;
        _WindowChanged(window);
    }
}

void DisplayServer::SetWindowFeel(int32 id, window_feel feel) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        ServerWindow* window = _Find(id);
        if (window == NULL)
            return;
        window->feel = feel;
        _Restack(id, true);
        if (fActiveWindow == id && !_CanFocus(window))
            _ActivateNext(outbox);
        _WindowChanged(window);
    }
    _PostLater(std::move(outbox));
}

void DisplayServer::SetWindowFlags(int32 id, uint32 flags) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        ServerWindow* window = _Find(id);
        if (window == NULL)
            return;
        window->flags = flags;
        if (fActiveWindow == id && !_CanFocus(window))
            _ActivateNext(outbox);
        _WindowChanged(window);
    }
    _PostLater(std::move(outbox));
}

void DisplayServer::SetWindowWorkspaces(int32 id, uint32 workspaces) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        ServerWindow* window = _Find(id);
        if (window == NULL)
            return;
        if (workspaces == B_CURRENT_WORKSPACE)
            workspaces = 1u << fCurrentWorkspace;
        uint32 old = window->workspaces;
        if (old == workspaces)
            return;
        window->workspaces = workspaces;
        BMessage changed(B_WORKSPACES_CHANGED);
        changed.AddInt64("when", system_time());
        changed.AddInt32("old", (int32)old);
        changed.AddInt32("new", (int32)workspaces);
        outbox.push_back(Outgoing{window->messenger, changed, false, BMessenger()});
        if (fActiveWindow == id && !_IsVisible(window))
            _ActivateNext(outbox);
        _WindowChanged(window);
    }
    _PostLater(std::move(outbox));
}

void DisplayServer::ShowWindow(int32 id) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        ServerWindow* window = _Find(id);
        if (window == NULL || !window->hidden)
            return;
        window->hidden = false;
        _Restack(id, true);
        if (_IsVisible(window) && _CanFocus(window))
            _SetActive(id, outbox);
        _WindowChanged(window);
    }
    _PostLater(std::move(outbox));
}

void DisplayServer::HideWindow(int32 id) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        ServerWindow* window = _Find(id);
        if (window == NULL || window->hidden)
            return;
        window->hidden = true;
        if (fActiveWindow == id)
            _ActivateNext(outbox);
        if (fGrabWindow == id)
            fGrabWindow = 0;
        _WindowChanged(window);
    }
    _PostLater(std::move(outbox));
}

void DisplayServer::MinimizeWindow(int32 id, bool minimize) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        ServerWindow* window = _Find(id);
        if (window == NULL || window->minimized == minimize)
            return;
        window->minimized = minimize;
        if (minimize && fActiveWindow == id)
            _ActivateNext(outbox);
        if (!minimize && _IsVisible(window)) {
            _Restack(id, true);
            if (_CanFocus(window))
                _SetActive(id, outbox);
        }
        _WindowChanged(window);
    }
    _PostLater(std::move(outbox));
}

void DisplayServer::ActivateWindow(int32 id, bool active) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        ServerWindow* window = _Find(id);
        if (window == NULL)
            return;
        if (!active) {
            if (fActiveWindow == id)
                _ActivateNext(outbox);
        } else if (!window->hidden && _CanFocus(window)) {
            if (!_InWorkspace(window, fCurrentWorkspace)) {
                // Activating a window elsewhere takes the user there, unless the
                // window asks not to.
                if ((window->flags & B_NO_WORKSPACE_ACTIVATION) != 0)
                    return;
                for (int32 workspace = 0; workspace < fWorkspaceCount; workspace++) {
                    if (_InWorkspace(window, workspace)) {
                        _SwitchWorkspace(workspace, outbox);
                        break;
                    }
                }
            }
            window->minimized = false;
            _Restack(id, true);
            _SetActive(id, outbox);
            _WindowChanged(window);
        }
    }
    _PostLater(std::move(outbox));
}

void DisplayServer::SendWindowBehind(int32 id, int32 behindId) {
    std::lock_guard<std::mutex> lock(fLock);
    ServerWindow* window = _Find(id);
    ServerWindow* behind = _Find(behindId);
    if (window == NULL)
        return;
    if (behind == NULL || behind == window || _Rank(behind) != _Rank(window)) {
        _Restack(id, false);
    } else {
        fStack.erase(std::remove(fStack.begin(), fStack.end(), id), fStack.end());
        auto position = std::find(fStack.begin(), fStack.end(), behindId);
        fStack.insert(position, id);
    }
    _WindowChanged(window);
}

bool DisplayServer::IsFrontWindow(int32 id) {
    std::lock_guard<std::mutex> lock(fLock);
    for (auto iterator = fStack.rbegin(); iterator != fStack.rend(); iterator++) {
        ServerWindow* window = _Find(*iterator);
        if (window != NULL && _IsVisible(window) && window->feel != kMenuWindowFeel)
            return window->id == id;
    }
    return false;
}

void DisplayServer::SetWindowPulseRate(int32 id, bigtime_t rate) {
    {
        std::lock_guard<std::mutex> lock(fLock);
        ServerWindow* window = _Find(id);
        if (window == NULL)
            return;
        window->pulseRate = rate > 0 ? rate : 0;
        window->nextPulse = system_time() + window->pulseRate;
    }
    _Enqueue([] {}, false);
}

void DisplayServer::SetWindowWantsAllPointerEvents(int32 id, bool wants) {
    std::lock_guard<std::mutex> lock(fLock);
    if (ServerWindow* window = _Find(id))
        window->wantsAllPointerEvents = wants;
}

void DisplayServer::Present(int32 id, cairo_surface_t* backBuffer, const BRegion& region) {
    if (backBuffer == NULL)
        return;
    {
        std::lock_guard<std::mutex> lock(fLock);
        ServerWindow* window = _Find(id);
        if (window == NULL)
            return;
        cairo_surface_flush(backBuffer);
        cairo_t* cairo = cairo_create(window->frontBuffer.get());
        cairo_set_operator(cairo, CAIRO_OPERATOR_SOURCE);
        cairo_set_source_surface(cairo, backBuffer, 0, 0);
        int32 count = region.CountRects();
        for (int32 index = 0; index < count; index++) {
            clipping_rect rect = region.RectAtInt(index);
            cairo_rectangle(cairo, rect.left, rect.top, rect.right - rect.left + 1,
                            rect.bottom - rect.top + 1);
        }
        cairo_fill(cairo);
        cairo_destroy(cairo);
        window->presentCount++;
        _WindowPresented(window, region);
    }
    fModelCondition.notify_all();
}

} // namespace BPrivate
