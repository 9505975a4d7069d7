// BWindow event dispatch: the display server's messages become hooks of the
// window and of its views.
//
// The looper has already run its filters when DispatchMessage() gets a message.
// Events addressed to the window itself go to the view they concern: pointer
// events to the view under the pointer (and to views that asked for all pointer
// events), keys to the focus view, drops to the view under the drop point. A
// filter that retargeted an event to a view wins. Views are looked up again after
// every hook, since a hook may remove or delete views.
#include <Window.h>

#include "interface/ButtonPrivate.h"
#include "interface/ViewData.h"
#include "interface/WindowData.h"
#include "interface/WindowPrivate.h"

#include <Application.h>
#include <Autolock.h>
#include <Message.h>
#include <MessageQueue.h>
#include <Messenger.h>
#include <View.h>

#include <algorithm>
#include <ctype.h>
#include <string.h>

using namespace BPrivate;

namespace {

// Shortcuts keep the modifiers that matter, always with Command.
uint32 shortcut_modifiers(uint32 modifiers) {
    return (modifiers & (B_COMMAND_KEY | B_OPTION_KEY | B_SHIFT_KEY | B_CONTROL_KEY | B_MENU_KEY)) |
           B_COMMAND_KEY;
}

uint32 shortcut_key(uint32 key) {
    return key < 128 ? (uint32)toupper((int)key) : key;
}

uint32 transit_for(bool wasInside, bool isInside) {
    if (isInside)
        return wasInside ? B_INSIDE_VIEW : B_ENTERED_VIEW;
    return wasInside ? B_EXITED_VIEW : B_OUTSIDE_VIEW;
}

// A move or resize message about a request the window has since superseded.
// Messages made by hand carry no number and always count.
bool is_stale_frame_message(BMessage* message, uint32 latestRequest) {
    int32 request;
    if (message->FindInt32(kFieldFrameRequest, &request) != B_OK)
        return false;
    return (uint32)request < latestRequest;
}

} // namespace

bool BWindow::_HasView(BView* view) const {
    return view != NULL && fPrivate->views.count(view) != 0;
}

BView* BWindow::_ViewTarget(BHandler* target) const {
    if (target == NULL || target == this)
        return NULL;
    BView* view = dynamic_cast<BView*>(target);
    return _HasView(view) ? view : NULL;
}

BView* BWindow::_KeyTarget(BMessage* message, BHandler* target) const {
    if (BView* view = _ViewTarget(target))
        return view;
    return target == this ? fPrivate->focus : NULL;
}

void BWindow::DispatchMessage(BMessage* message, BHandler* target) {
    if (message == NULL)
        return;
    Private* data = fPrivate;
    if (target == NULL)
        target = this;
    uint32 what = message->what;
    data->dispatchDepth++;

    if (message->WasDropped()) {
        _HandleDrop(message, target);
    } else {
        switch (what) {
        case kMessageIdleProbe:
            _AnswerIdleProbe(message);
            break;
        case _UPDATE_:
            data->updatePosted = false;
            _UpdatePass();
            break;
        case B_WINDOW_ACTIVATED:
            if (target == this)
                _SetActive(message->GetBool("active", false));
            else
                BLooper::DispatchMessage(message, target);
            break;
        case B_WINDOW_MOVED: {
            BPoint where;
            if (target != this || message->FindPoint("where", &where) != B_OK) {
                BLooper::DispatchMessage(message, target);
                break;
            }
            // Someone else (a window manager) may have moved the window; an
            // echo of a move since superseded is only reported.
            if (!is_stale_frame_message(message, data->frameRequest))
                data->frame.OffsetTo(where);
            FrameMoved(where);
            break;
        }
        case B_WINDOW_RESIZED: {
            int32 width;
            int32 height;
            if (target != this || message->FindInt32("width", &width) != B_OK ||
                message->FindInt32("height", &height) != B_OK) {
                BLooper::DispatchMessage(message, target);
                break;
            }
            // Applying an echo of a resize since superseded would lay the
            // views out for a size the window no longer has, until the next
            // echo puts them back.
            if (!is_stale_frame_message(message, data->frameRequest) &&
                (width != (int32)data->frame.Width() || height != (int32)data->frame.Height()))
                _Resized(width, height);
            FrameResized(width, height);
            break;
        }
        case B_WORKSPACE_ACTIVATED:
            WorkspaceActivated(message->GetInt32("workspace", 0),
                               message->GetBool("active", false));
            break;
        case B_WORKSPACES_CHANGED: {
            uint32 oldWorkspaces = (uint32)message->GetInt32("old", 0);
            uint32 newWorkspaces = (uint32)message->GetInt32("new", 0);
            data->workspaces = newWorkspaces;
            WorkspacesChanged(oldWorkspaces, newWorkspaces);
            break;
        }
        case B_SCREEN_CHANGED: {
            BRect frame;
            if (message->FindRect("frame", &frame) != B_OK)
                break;
            ScreenChanged(frame, (color_space)message->GetInt32("mode", B_RGB32));
            break;
        }
        case B_MINIMIZE:
            Minimize(message->GetBool("minimize", true));
            break;
        case B_ZOOM:
            Zoom();
            break;
        case B_MOUSE_DOWN:
        case B_MOUSE_UP:
        case B_MOUSE_MOVED:
            _HandleMouse(message, target);
            break;
        case B_MOUSE_WHEEL_CHANGED: {
            BView* view = _ViewTarget(target);
            BPoint where;
            if (view == NULL && message->FindPoint("where", &where) == B_OK)
                view = data->topView->_ViewAt(where);
            if (view == NULL)
                view = data->focus;
            (view != NULL ? (BHandler*)view : target)->MessageReceived(message);
            break;
        }
        case B_KEY_DOWN:
            _HandleKeyDown(message, target);
            break;
        case B_KEY_UP: {
            BView* view = _KeyTarget(message, target);
            const char* bytes;
            if (view != NULL && message->FindString("bytes", &bytes) == B_OK)
                view->KeyUp(bytes, (int32)strlen(bytes));
            else
                target->MessageReceived(message);
            break;
        }
        case B_UNMAPPED_KEY_DOWN:
        case B_UNMAPPED_KEY_UP:
        case B_MODIFIERS_CHANGED: {
            BView* view = _ViewTarget(target);
            if (view == NULL)
                view = data->focus;
            (view != NULL ? (BHandler*)view : target)->MessageReceived(message);
            break;
        }
        case B_PULSE:
            if (target == this)
                _Pulse();
            else
                BLooper::DispatchMessage(message, target);
            break;
        case B_VIEW_MOVED:
        case B_VIEW_RESIZED: {
            BView* view = _ViewTarget(target);
            if (view == NULL) {
                BLooper::DispatchMessage(message, target);
                break;
            }
            if (what == B_VIEW_MOVED) {
                view->FrameMoved(message->GetPoint("where", view->Frame().LeftTop()));
            } else {
                view->FrameResized(message->GetInt32("width", (int32)view->Frame().Width()),
                                   message->GetInt32("height", (int32)view->Frame().Height()));
            }
            break;
        }
        default:
            BLooper::DispatchMessage(message, target);
            break;
        }
    }

    data->dispatchDepth--;
    // What was drawn while handling the message is shown once it is handled.
    if (data->dispatchDepth == 0)
        _Flush();
}

void BWindow::MessageReceived(BMessage* message) {
    BLooper::MessageReceived(message);
}

void BWindow::_AnswerIdleProbe(BMessage* message) {
    Private* data = fPrivate;
    if (data->server == NULL)
        return;
    bool blocked = data->transactionLevel > 0 || data->disabledUpdatesLevel > 0;
    bool idle =
        MessageQueue()->IsEmpty() &&
        (blocked || (data->dirty.CountRects() == 0 && data->presentPending.CountRects() == 0));
    if (!idle && !blocked && !data->updatePosted && data->dirty.CountRects() > 0) {
        data->updatePosted = true;
        PostMessage(_UPDATE_);
    }
    data->server->WindowSynced(data->serverToken, (uint64)message->GetInt64("ticket", 0), idle);
}

void BWindow::_SetActive(bool active) {
    Private* data = fPrivate;
    if (data->active == active)
        return;
    data->active = active;
    WindowActivated(active);
    _RefreshViewOrder();
    std::vector<BView*> views = data->orderedViews;
    for (BView* view : views) {
        if (_HasView(view))
            view->WindowActivated(active);
    }
}

void BWindow::_Pulse() {
    _RefreshViewOrder();
    std::vector<BView*> views = fPrivate->orderedViews;
    for (BView* view : views) {
        if (_HasView(view) && (view->Flags() & B_PULSE_NEEDED) != 0)
            view->Pulse();
    }
}

void BWindow::_RefreshViewOrder() {
    Private* data = fPrivate;
    if (data->orderedSerial == data->geometrySerial)
        return;
    data->orderedViews.clear();
    std::vector<BView*> pending{data->topView};
    while (!pending.empty()) {
        BView* view = pending.back();
        pending.pop_back();
        data->orderedViews.push_back(view);
        const std::vector<BView*>& children = view->fPrivate->children;
        for (auto child = children.rbegin(); child != children.rend(); child++)
            pending.push_back(*child);
    }
    data->orderedSerial = data->geometrySerial;
}

void BWindow::_SetFocus(BView* view) {
    fPrivate->focus = view;
    SetPreferredHandler(view);
}

// #pragma mark - Pointer

void BWindow::_HandleMouse(BMessage* message, BHandler* target) {
    Private* data = fPrivate;
    BPoint where;
    if (message->FindPoint("where", &where) != B_OK) {
        BLooper::DispatchMessage(message, target);
        return;
    }
    bool outside = message->GetBool(kFieldPointerOutside, false);
    BView* explicitView = _ViewTarget(target);
    BView* under = explicitView;
    if (under == NULL && !outside)
        under = data->topView->_ViewAt(where);

    // Whoever gets the message sees "where" in its own coordinates for presses
    // and releases, in the window's for moves (as Be has it); "be:view_where"
    // is always the view's.
    auto deliver = [&](BView* view, uint32 transit) {
        if (!_HasView(view))
            return;
        BPoint viewWhere = where - view->_WindowOrigin();
        message->RemoveName(kFieldViewWhere);
        message->AddPoint(kFieldViewWhere, viewWhere);
        switch (message->what) {
        case B_MOUSE_DOWN:
            message->ReplacePoint("where", viewWhere);
            view->MouseDown(viewWhere);
            break;
        case B_MOUSE_UP:
            message->ReplacePoint("where", viewWhere);
            view->MouseUp(viewWhere);
            break;
        default: {
            message->RemoveName(kFieldTransit);
            message->AddInt32(kFieldTransit, (int32)transit);
            BMessage drag;
            bool dragging = message->FindMessage(kFieldDragMessage, &drag) == B_OK;
            view->MouseMoved(viewWhere, transit, dragging ? &drag : NULL);
            break;
        }
        }
        message->ReplacePoint("where", where);
    };

    std::vector<BView*> listeners = data->pointerViews;
    switch (message->what) {
    case B_MOUSE_DOWN: {
        if (under != NULL)
            deliver(under, 0);
        for (BView* view : listeners) {
            if (view != under)
                deliver(view, 0);
        }
        break;
    }
    case B_MOUSE_UP: {
        if (under != NULL)
            deliver(under, 0);
        for (BView* view : listeners) {
            if (view != under)
                deliver(view, 0);
        }
        if (message->GetInt32("buttons", 0) == 0)
            _ReleaseMouseEventMasks();
        break;
    }
    case B_MOUSE_MOVED: {
        BView* last = _HasView(data->lastMouseMovedView) ? data->lastMouseMovedView : NULL;
        data->lastMouseMovedView = under;
        if (last != NULL && last != under) {
            last->fPrivate->pointerInside = false;
            deliver(last, B_EXITED_VIEW);
        }
        if (under != NULL && _HasView(under)) {
            bool wasInside = under->fPrivate->pointerInside;
            under->fPrivate->pointerInside = true;
            deliver(under, transit_for(wasInside, true));
        }
        for (BView* view : listeners) {
            if (view == under || view == last || !_HasView(view))
                continue;
            bool inside = !outside && view->_VisibleRect().Contains(where);
            bool wasInside = view->fPrivate->pointerInside;
            view->fPrivate->pointerInside = inside;
            deliver(view, transit_for(wasInside, inside));
        }
        break;
    }
    }
}

void BWindow::_ReleaseMouseEventMasks() {
    bool changed = false;
    _RefreshViewOrder();
    for (BView* view : fPrivate->orderedViews) {
        if (view->fPrivate->mouseEventMask != 0 || view->fPrivate->mouseEventOptions != 0) {
            view->fPrivate->mouseEventMask = 0;
            view->fPrivate->mouseEventOptions = 0;
            changed = true;
        }
    }
    if (changed)
        _UpdatePointerViews();
}

void BWindow::_UpdatePointerViews() {
    Private* data = fPrivate;
    data->pointerViews.clear();
    bool permanent = false;
    _RefreshViewOrder();
    for (BView* view : data->orderedViews) {
        uint32 mask = view->fPrivate->eventMask | view->fPrivate->mouseEventMask;
        if ((mask & B_POINTER_EVENTS) != 0)
            data->pointerViews.push_back(view);
        if ((view->fPrivate->eventMask & B_POINTER_EVENTS) != 0)
            permanent = true;
    }
    if (data->server != NULL)
        data->server->SetWindowWantsAllPointerEvents(data->serverToken, permanent);
}

void BWindow::_UpdatePulse() {
    Private* data = fPrivate;
    bool needed = false;
    _RefreshViewOrder();
    for (BView* view : data->orderedViews) {
        if ((view->Flags() & B_PULSE_NEEDED) != 0)
            needed = true;
    }
    bool pulsing = needed && data->pulseRate > 0;
    if (pulsing == data->pulsing && !pulsing)
        return;
    data->pulsing = pulsing;
    if (data->server != NULL)
        data->server->SetWindowPulseRate(data->serverToken, pulsing ? data->pulseRate : 0);
}

void BWindow::_HandleDrop(BMessage* message, BHandler* target) {
    BView* view = _ViewTarget(target);
    if (view == NULL && target == this) {
        BPoint where = ConvertFromScreen(message->DropPoint());
        view = fPrivate->topView->_ViewAt(where);
    }
    (view != NULL ? (BHandler*)view : target)->MessageReceived(message);
}

// #pragma mark - Keyboard

void BWindow::_HandleKeyDown(BMessage* message, BHandler* target) {
    Private* data = fPrivate;
    const char* bytes = NULL;
    if (message->FindString("bytes", &bytes) != B_OK || bytes == NULL) {
        target->MessageReceived(message);
        return;
    }
    char key = bytes[0];
    uint32 modifiers = (uint32)message->GetInt32("modifiers", 0);

    if (key == B_ESCAPE && (modifiers & B_COMMAND_KEY) != 0 && data->keyMenuBar != NULL) {
        key_menu_bar_starter starter = WindowPrivate::KeyMenuBarStarter();
        if (starter != NULL && starter(data->keyMenuBar, message))
            return;
    }
    if (key == B_ESCAPE && (data->flags & B_CLOSE_ON_ESCAPE) != 0) {
        BMessage quit(B_QUIT_REQUESTED);
        quit.AddBool("shortcut", true);
        PostMessage(&quit);
        return;
    }
    // Enter belongs to the default button (unless an editable text view has the focus).
    if (key == B_ENTER && (modifiers & (B_COMMAND_KEY | B_CONTROL_KEY | B_OPTION_KEY)) == 0 &&
        _ViewTarget(target) == NULL && press_default_button(this))
        return;
    if (key == B_TAB && (modifiers & B_OPTION_KEY) != 0) {
        _KeyboardNavigation();
        return;
    }
    if ((modifiers & B_COMMAND_KEY) != 0) {
        if (key == 'q' || key == 'Q') {
            BMessage quit(B_QUIT_REQUESTED);
            quit.AddBool("shortcut", true);
            if (be_app != NULL)
                be_app->PostMessage(&quit);
            return;
        }
        // Menus may install shortcuts as they are about to show.
        MenusBeginning();
        int32 index = _FindShortcut((uint8)key, modifiers);
        if (index >= 0) {
            const Private::Shortcut& shortcut = data->shortcuts[index];
            BMessage copy(*shortcut.message);
            if (!copy.HasInt64("when"))
                copy.AddInt64("when", system_time());
            BHandler* handler = shortcut.target;
            if (handler == NULL || handler->Looper() == this)
                PostMessage(&copy, handler);
            else if (handler->Looper() != NULL)
                BMessenger(handler).SendMessage(&copy);
        }
        MenusEnded();
        // Command keys never reach the views.
        return;
    }

    BView* view = _ViewTarget(target);
    if (view == NULL && target == this)
        view = data->focus;
    if (view != NULL)
        view->KeyDown(bytes, (int32)strlen(bytes));
    else if (key == B_TAB && target == this)
        _KeyboardNavigation(); // Nothing has the focus yet: Tab gives it to the first view.
    else
        target->MessageReceived(message);
}

void BWindow::_KeyboardNavigation() {
    BMessage* message = CurrentMessage();
    const char* bytes;
    if (message == NULL || message->what != B_KEY_DOWN ||
        message->FindString("bytes", &bytes) != B_OK || bytes[0] != B_TAB)
        return;
    uint32 modifiers = (uint32)message->GetInt32("modifiers", 0);
    if ((modifiers & (B_COMMAND_KEY | B_CONTROL_KEY)) != 0)
        return;
    bool backwards = (modifiers & B_SHIFT_KEY) != 0;

    std::vector<BView*> candidates;
    BView* focus = fPrivate->focus;
    _RefreshViewOrder();
    for (BView* view : fPrivate->orderedViews) {
        if (view == focus || ((view->Flags() & (B_NAVIGABLE | B_NAVIGABLE_JUMP)) != 0 &&
                              view->_VisibleRect().IsValid()))
            candidates.push_back(view);
    }
    if (candidates.empty() || (candidates.size() == 1 && candidates[0] == focus))
        return;
    auto position = std::find(candidates.begin(), candidates.end(), focus);
    size_t index = position == candidates.end() ? (backwards ? 0 : candidates.size() - 1)
                                                : (size_t)(position - candidates.begin());
    size_t count = candidates.size();
    index = backwards ? (index + count - 1) % count : (index + 1) % count;
    candidates[index]->MakeFocus(true);
}

// #pragma mark - Shortcuts

void BWindow::AddShortcut(uint32 key, uint32 modifiers, BMessage* message) {
    AddShortcut(key, modifiers, message, this);
}

void BWindow::AddShortcut(uint32 key, uint32 modifiers, BMessage* message, BHandler* target) {
    if (message == NULL)
        return;
    BAutolock lock(this);
    RemoveShortcut(key, modifiers);
    fPrivate->shortcuts.push_back(
        Private::Shortcut{shortcut_key(key), shortcut_modifiers(modifiers), message, target});
}

bool BWindow::HasShortcut(uint32 key, uint32 modifiers) {
    return _FindShortcut(key, modifiers) >= 0;
}

void BWindow::RemoveShortcut(uint32 key, uint32 modifiers) {
    BAutolock lock(this);
    int32 index = _FindShortcut(key, modifiers);
    if (index < 0)
        return;
    delete fPrivate->shortcuts[index].message;
    fPrivate->shortcuts.erase(fPrivate->shortcuts.begin() + index);
}

int32 BWindow::_FindShortcut(uint32 key, uint32 modifiers) const {
    key = shortcut_key(key);
    modifiers = shortcut_modifiers(modifiers);
    for (size_t index = 0; index < fPrivate->shortcuts.size(); index++) {
        const Private::Shortcut& shortcut = fPrivate->shortcuts[index];
        if (shortcut.key == key && shortcut.modifiers == modifiers)
            return (int32)index;
    }
    return -1;
}
