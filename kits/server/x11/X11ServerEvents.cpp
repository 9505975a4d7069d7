// X events, on the server's thread. Pointer and key events go through the
// model's routing (DisplayServerInput.cpp) in screen coordinates; what the window
// manager did (focus, frames, desktops, iconifying) is written into the model
// directly, so the model does not ask X to do it again.
#include "server/x11/X11Server.h"

#include "app/MessagePrivate.h"
#include "interface/WindowPrivate.h"
#include "server/x11/X11DropTarget.h"
#include "server/x11/X11KeyState.h"
#include "server/x11/X11Keyboard.h"
#include "server/x11/X11ServerRecord.h"

#include <AppDefs.h>
#include <OS.h>
#include <View.h>

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/extensions/Xrandr.h>

#include <string.h>

namespace BPrivate {

X11Server::Record* X11Server::_RecordFor(::Window window) {
    for (auto& entry : fRecords) {
        if (entry.second->window == window)
            return entry.second.get();
    }
    return NULL;
}

bigtime_t X11Server::_When(Time time) {
    // X times are the server's milliseconds; one offset turns them into ours,
    // so double clicks are measured as the user made them.
    if (time == CurrentTime)
        return system_time();
    fLastEventTime = time;
    if (!fHaveTimeOffset) {
        fTimeOffset = system_time() - (bigtime_t)time * 1000;
        fHaveTimeOffset = true;
    }
    return (bigtime_t)time * 1000 + fTimeOffset;
}

void X11Server::_HandleEvents() {
    while (!fLost && XPending(fDisplay) > 0) {
        XEvent event;
        XNextEvent(fDisplay, &event);
        if (XFilterEvent(&event, None))
            continue;
        _HandleEvent(event);
    }
}

void X11Server::_HandleEvent(XEvent& event) {
    if (fKeyState->HandleEvent(event)) {
        _NotifyWatchers();
        return;
    }
    switch (event.type) {
    case ButtonPress:
    case ButtonRelease:
    case MotionNotify:
    case EnterNotify:
    case LeaveNotify:
        _HandlePointer(event);
        return;
    case KeyPress:
    case KeyRelease:
        _HandleKeyEvent(event.xkey);
        return;
    case Expose: {
        Record* record = _RecordFor(event.xexpose.window);
        if (record == NULL || record->presenter == NULL)
            return;
        if (record->presenter->Width() > 0) {
            record->presenter->Put(
                record->window, record->context, event.xexpose.x, event.xexpose.y,
                std::min(event.xexpose.width, record->presenter->Width() - event.xexpose.x),
                std::min(event.xexpose.height, record->presenter->Height() - event.xexpose.y));
            return;
        }
        // A small window has no image of its own: its pixels are sent again
        // from the server's copy.
        BRegion region(BRect(event.xexpose.x, event.xexpose.y,
                             event.xexpose.x + event.xexpose.width - 1,
                             event.xexpose.y + event.xexpose.height - 1));
        std::lock_guard<std::mutex> lock(fLock);
        if (ServerWindow* window = _Find(record->id))
            _PutFrontBuffer(record, window, region);
        return;
    }
    case FocusIn: {
        Record* record = _RecordFor(event.xfocus.window);
        if (record != NULL && event.xfocus.detail != NotifyPointer)
            _AdoptActive(record->id);
        return;
    }
    case FocusOut: {
        Record* record = _RecordFor(event.xfocus.window);
        // A grab by the window manager (switching windows) keeps the focus
        // where it is until it ends.
        if (record != NULL && event.xfocus.mode != NotifyGrab &&
            event.xfocus.detail != NotifyPointer && event.xfocus.detail != NotifyInferior) {
            int32 active;
            {
                std::lock_guard<std::mutex> lock(fLock);
                active = fActiveWindow;
            }
            if (active == record->id)
                _AdoptActive(0);
        }
        return;
    }
    case ConfigureNotify:
        if (event.xconfigure.window == fRoot) {
            BRect frame(0, 0, event.xconfigure.width - 1, event.xconfigure.height - 1);
            if (frame != ScreenFrame())
                _SetScreenFrame(frame);
        } else if (Record* record = _RecordFor(event.xconfigure.window)) {
            _HandleConfigure(record, event.xconfigure);
        }
        return;
    case MapNotify:
        if (Record* record = _RecordFor(event.xmap.window)) {
            record->mapped = true;
            // Focus and grabs wait for the window to be viewable.
            std::lock_guard<std::mutex> lock(fLock);
            if (fGrabbing == record->id)
                fGrabDirty = true;
        }
        return;
    case UnmapNotify:
        if (Record* record = _RecordFor(event.xunmap.window)) {
            record->mapped = false;
            if (fAppliedActive == record->id)
                fAppliedActive = 0;
            // Iconified by the window manager (or the user through it).
            if (record->mapRequested && !record->iconified && fWindowManager != 0 &&
                !record->menu) {
                unsigned long state = 0;
                Atom actualType;
                int actualFormat;
                unsigned long count = 0;
                unsigned long remaining = 0;
                unsigned char* data = NULL;
                if (XGetWindowProperty(fDisplay, record->window, fAtoms.wmState, 0, 2, False,
                                       fAtoms.wmState, &actualType, &actualFormat, &count,
                                       &remaining, &data) == Success &&
                    data != NULL && actualFormat == 32 && count >= 1)
                    state = ((unsigned long*)data)[0];
                if (data != NULL)
                    XFree(data);
                if (state == IconicState) {
                    record->iconified = true;
                    MinimizeWindow(record->id, true);
                }
            }
        }
        return;
    case ReparentNotify:
        if (Record* record = _RecordFor(event.xreparent.window))
            record->reparented = event.xreparent.parent != fRoot;
        return;
    case ClientMessage:
        _HandleClientMessage(event.xclient);
        return;
    case PropertyNotify:
        _HandleProperty(event.xproperty);
        return;
    case SelectionNotify: {
        X11DropTarget::Event dropEvent;
        if (fDropTarget->HandleSelectionNotify(event.xselection, &dropEvent))
            _HandleDropEvent(&dropEvent);
        return;
    }
    case MappingNotify:
        XRefreshKeyboardMapping(&event.xmapping);
        return;
    default:
        if (fRandREventBase >= 0 && event.type == fRandREventBase + RRScreenChangeNotify)
            XRRUpdateConfiguration(&event);
        return;
    }
}

// #pragma mark - Pointer

void X11Server::_SyncModifiers(unsigned int state, bigtime_t when) {
    uint32 fromX = 0;
    if (state & ShiftMask)
        fromX |= B_SHIFT_KEY;
    if (state & ControlMask)
        fromX |= B_CONTROL_KEY;
    if (state & Mod1Mask)
        fromX |= B_COMMAND_KEY;
    if (state & Mod4Mask)
        fromX |= B_OPTION_KEY;
    if (state & LockMask)
        fromX |= B_CAPS_LOCK;
    if (fNumLockMask != 0 && (state & fNumLockMask))
        fromX |= B_NUM_LOCK;
    const uint32 compared =
        B_SHIFT_KEY | B_CONTROL_KEY | B_COMMAND_KEY | B_OPTION_KEY | B_CAPS_LOCK | B_NUM_LOCK;
    uint32 modifiers = Modifiers();
    if ((modifiers & compared) == fromX)
        return;
    // Keys pressed while another program had the keyboard: keep the side bits
    // we know of, for the keys still down.
    uint32 kept = modifiers & ~compared;
    if (!(fromX & B_SHIFT_KEY))
        kept &= ~(uint32)(B_LEFT_SHIFT_KEY | B_RIGHT_SHIFT_KEY);
    if (!(fromX & B_CONTROL_KEY))
        kept &= ~(uint32)(B_LEFT_CONTROL_KEY | B_RIGHT_CONTROL_KEY);
    if (!(fromX & B_COMMAND_KEY))
        kept &= ~(uint32)(B_LEFT_COMMAND_KEY | B_RIGHT_COMMAND_KEY);
    if (!(fromX & B_OPTION_KEY))
        kept &= ~(uint32)(B_LEFT_OPTION_KEY | B_RIGHT_OPTION_KEY);
    _HandleModifiersChanged(kept | fromX, when);
}

void X11Server::_HandlePointer(XEvent& event) {
    Record* record = _RecordFor(event.xany.window);
    if (record == NULL)
        return;
    int x;
    int y;
    int rootX;
    int rootY;
    unsigned int state;
    Time time;
    switch (event.type) {
    case ButtonPress:
    case ButtonRelease:
        x = event.xbutton.x;
        y = event.xbutton.y;
        rootX = event.xbutton.x_root;
        rootY = event.xbutton.y_root;
        state = event.xbutton.state;
        time = event.xbutton.time;
        break;
    case MotionNotify:
        // Only the latest position of a burst matters.
        while (XEventsQueued(fDisplay, QueuedAlready) > 0) {
            XEvent next;
            XPeekEvent(fDisplay, &next);
            if (next.type != MotionNotify || next.xmotion.window != event.xmotion.window)
                break;
            XNextEvent(fDisplay, &event);
        }
        x = event.xmotion.x;
        y = event.xmotion.y;
        rootX = event.xmotion.x_root;
        rootY = event.xmotion.y_root;
        state = event.xmotion.state;
        time = event.xmotion.time;
        break;
    default:
        // A grab starting or ending moves no pointer.
        if (event.xcrossing.mode != NotifyNormal)
            return;
        x = event.xcrossing.x;
        y = event.xcrossing.y;
        rootX = event.xcrossing.x_root;
        rootY = event.xcrossing.y_root;
        state = event.xcrossing.state;
        time = event.xcrossing.time;
        break;
    }
    bigtime_t when = _When(time);
    bool inside = x >= 0 && y >= 0 && x < record->width && y < record->height;
    if (event.type == LeaveNotify)
        inside = false;
    {
        std::lock_guard<std::mutex> lock(fLock);
        if (inside)
            fPointerWindow = record->id;
        else if (fPointerWindow == record->id || event.type != LeaveNotify)
            fPointerWindow = 0;
    }
    _SyncModifiers(state, when);
    BPoint where((float)rootX, (float)rootY);

    if (event.type == ButtonPress || event.type == ButtonRelease) {
        unsigned int button = event.xbutton.button;
        if (button >= 4 && button <= 7) {
            // The wheel: its clicks come as presses of buttons 4 to 7.
            if (event.type == ButtonPress) {
                float deltaX = button == 6 ? -1.0f : button == 7 ? 1.0f : 0.0f;
                float deltaY = button == 4 ? -1.0f : button == 5 ? 1.0f : 0.0f;
                _HandleWheel(deltaX, deltaY, when);
            }
            return;
        }
        uint32 beButton = button == 1   ? B_PRIMARY_MOUSE_BUTTON
                          : button == 3 ? B_SECONDARY_MOUSE_BUTTON
                          : button == 2 ? B_TERTIARY_MOUSE_BUTTON
                                        : 0;
        if (beButton == 0)
            return;
        BPoint pointer;
        GetPointer(&pointer, NULL);
        if (pointer != where)
            _HandleMouseMoved(where, when);
        if (event.type == ButtonPress)
            _HandleMouseDown(where, beButton, 0, when);
        else
            _HandleMouseUp(where, beButton, when);
        return;
    }
    _HandleMouseMoved(where, when);
}

// #pragma mark - Keyboard

void X11Server::_HandleKeyEvent(XKeyEvent& event) {
    Record* record = _RecordFor(event.window);
    if (record == NULL)
        return;
    bigtime_t when = _When(event.time);
    bool down = event.type == KeyPress;
    int32 key = X11Keyboard::BeKeyFor(event.keycode);
    if (key == 0)
        return;
    _SyncModifiers(event.state, when);

    std::string bytes;
    bool mapped = false;
    if (down) {
        char buffer[64];
        KeySym keysym = NoSymbol;
        int length = 0;
        if (XIC inputContext = _InputContextFor(record)) {
            Status status = 0;
            length = Xutf8LookupString(inputContext, &event, buffer, (int)sizeof(buffer) - 1,
                                       &keysym, &status);
            if (status != XLookupChars && status != XLookupBoth)
                length = 0;
            if (status == XLookupNone || status == XBufferOverflow)
                keysym = NoSymbol;
        } else {
            length = XLookupString(&event, buffer, (int)sizeof(buffer) - 1, &keysym, NULL);
            // XLookupString speaks Latin-1; only its ASCII is UTF-8 as it is.
            if (length != 1 || (uint8)buffer[0] >= 0x80)
                length = 0;
        }
        if (length < 0 || length >= (int)sizeof(buffer))
            length = 0;
        buffer[length] = '\0';
        int32 special = X11Keyboard::SpecialByteFor(keysym);
        if (special >= 0) {
            buffer[0] = (char)special;
            buffer[1] = '\0';
            length = 1;
        } else if (length == 0 && keysym != NoSymbol) {
            length = X11Keyboard::KeysymToUTF8(keysym, buffer);
        }
        if (length > 0) {
            bytes.assign(buffer, length);
            mapped = true;
        }
        record->keyBytes[event.keycode] = bytes;
    } else {
        auto found = record->keyBytes.find(event.keycode);
        if (found != record->keyBytes.end()) {
            bytes = found->second;
            mapped = !bytes.empty();
            record->keyBytes.erase(found);
        }
    }

    // The character of the key with no modifier held.
    int32 rawChar = -1;
    KeySym plain = XkbKeycodeToKeysym(fDisplay, (KeyCode)event.keycode, 0, 0);
    int32 plainSpecial = X11Keyboard::SpecialByteFor(plain);
    if (plainSpecial >= 0)
        rawChar = plainSpecial;
    else if (plain >= 0x20 && plain < 0x7f)
        rawChar = (int32)plain;
    _HandleKey(down, key, mapped ? bytes.c_str() : NULL, rawChar, when);
}

XIC X11Server::_InputContextFor(Record* record) {
    if (record->inputContext != NULL)
        return record->inputContext;
    // Opened at the first key rather than at start-up, which it would slow down
    // by reading the locale's compose table.
    if (!fInputMethodTried) {
        fInputMethodTried = true;
        // Compose sequences from the locale, no input method server to wait for.
        XSetLocaleModifiers("@im=none");
        fInputMethod = XOpenIM(fDisplay, NULL, NULL, NULL);
    }
    if (fInputMethod != NULL) {
        record->inputContext =
            XCreateIC(fInputMethod, XNInputStyle, XIMPreeditNothing | XIMStatusNothing,
                      XNClientWindow, record->window, XNFocusWindow, record->window, NULL);
    }
    return record->inputContext;
}

// #pragma mark - The window manager's doing

void X11Server::_AdoptActive(int32 id) {
    fAppliedActive = id;
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
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
        } else {
            fActiveWindow = 0;
        }
    }
    _Post(outbox);
}

void X11Server::_HandleConfigure(Record* record, const XConfigureEvent& event) {
    int x = event.x;
    int y = event.y;
    // The window manager's synthetic events are in root coordinates; real ones
    // of a reparented window are relative to its frame.
    bool reliable = event.send_event || !record->reparented;
    if (!reliable) {
        ::Window child;
        if (!XTranslateCoordinates(fDisplay, record->window, fRoot, 0, 0, &x, &y, &child))
            return;
    }
    bool placed = x == record->x && y == record->y;
    bool sized = event.width == record->width && event.height == record->height;
    if (record->pending) {
        if (placed && sized) {
            record->pending = false;
            return;
        }
        // Only the window manager's last word counts.
        if (!reliable)
            return;
        if (!placed && !record->corrected && fWindowManager != 0 && !record->menu) {
            // It put the frame where the contents were meant to go: move by
            // the difference, once.
            record->corrected = true;
            XMoveWindow(fDisplay, record->window, record->x + (record->x - x),
                        record->y + (record->y - y));
            return;
        }
        record->pending = false;
    }
    record->x = x;
    record->y = y;
    record->width = event.width;
    record->height = event.height;
    _AdoptFrame(record, BRect(x, y, x + event.width - 1, y + event.height - 1));
}

void X11Server::_AdoptFrame(Record* record, BRect frame) {
    BRect model;
    {
        std::lock_guard<std::mutex> lock(fLock);
        ServerWindow* window = _Find(record->id);
        if (window == NULL)
            return;
        model = window->frame;
    }
    if ((int32)floorf(model.left + 0.5f) != (int32)frame.left ||
        (int32)floorf(model.top + 0.5f) != (int32)frame.top)
        MoveWindow(record->id, frame.LeftTop());
    if (buffer_extent(model.Width()) != buffer_extent(frame.Width()) ||
        buffer_extent(model.Height()) != buffer_extent(frame.Height()))
        ResizeWindow(record->id, frame.Width(), frame.Height());
}

void X11Server::_HandleClientMessage(const XClientMessageEvent& message) {
    if (message.message_type == fAtoms.wmProtocols && message.format == 32 &&
        (Atom)message.data.l[0] == fAtoms.wmDeleteWindow) {
        Record* record = _RecordFor(message.window);
        if (record == NULL)
            return;
        BMessenger target;
        {
            std::lock_guard<std::mutex> lock(fLock);
            if (ServerWindow* window = _Find(record->id))
                target = window->messenger;
        }
        BMessage quit(B_QUIT_REQUESTED);
        target.SendMessage(&quit, (BHandler*)NULL, 0);
        return;
    }
    X11DropTarget::Event dropEvent;
    if (fDropTarget->HandleClientMessage(message, &dropEvent))
        _HandleDropEvent(&dropEvent);
}

void X11Server::_HandleDropEvent(const void* data) {
    const X11DropTarget::Event& event = *(const X11DropTarget::Event*)data;
    if (event.kind == X11DropTarget::Event::kNone)
        return;
    Record* record = _RecordFor(event.window);
    if (record == NULL)
        return;
    uint32 modifiers = Modifiers();
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        ServerWindow* window = _Find(record->id);
        if (window == NULL)
            return;
        bigtime_t now = system_time();
        if (event.kind == X11DropTarget::Event::kDrop) {
            BMessage drop(event.message);
            drop.AddPoint("_drop_point_", event.where);
            drop.AddPoint("_drop_offset_", BPoint(0, 0));
            MessagePrivate(&drop).SetWasDropped(true);
            outbox.push_back(Outgoing{window->messenger, drop, false, BMessenger()});
        } else {
            // The source holds the pointer while it drags: the views learn
            // where it is from the drag's positions.
            BMessage moved(B_MOUSE_MOVED);
            moved.AddInt64("when", now);
            moved.AddPoint(kFieldScreenWhere, event.where);
            moved.AddPoint("where", event.where - window->frame.LeftTop());
            moved.AddInt32("buttons", B_PRIMARY_MOUSE_BUTTON);
            moved.AddInt32("modifiers", (int32)modifiers);
            if (event.kind == X11DropTarget::Event::kLeave)
                moved.AddBool(kFieldPointerOutside, true);
            if (!event.message.IsEmpty() || event.kind == X11DropTarget::Event::kHover)
                moved.AddMessage(kFieldDragMessage, &event.message);
            outbox.push_back(Outgoing{window->messenger, moved,
                                      event.kind == X11DropTarget::Event::kHover, BMessenger()});
        }
    }
    _Post(outbox);
}

void X11Server::_HandleProperty(const XPropertyEvent& event) {
    if (event.window == fRoot) {
        if (event.atom == fAtoms.netSupportingWMCheck) {
            _DetectWindowManager();
        } else if (event.atom != fAtoms.netNumberOfDesktops &&
                   event.atom != fAtoms.netCurrentDesktop) {
            return;
        }
        int32 count;
        int32 current;
        _ReadDesktops(&count, &current);
        if (count != fAppliedDesktopCount) {
            fAppliedDesktopCount = count;
            if (count != CountWorkspaces()) {
                SetWorkspaceCount(count);
                // As on Be, the windows learn that their screen changed.
                _SetScreenFrame(ScreenFrame());
            }
        }
        if (current != fAppliedDesktop) {
            fAppliedDesktop = current;
            if (current != CurrentWorkspace())
                ActivateWorkspace(current);
        }
        return;
    }
    if (event.atom != fAtoms.netWMDesktop || event.state != PropertyNewValue)
        return;
    Record* record = _RecordFor(event.window);
    unsigned long desktop = 0;
    if (record == NULL || !_ReadCardinal(record->window, fAtoms.netWMDesktop, &desktop))
        return;
    if ((uint32)desktop == record->desktop)
        return;
    record->desktop = (uint32)desktop;
    uint32 workspaces;
    if (desktop == 0xffffffff)
        workspaces = B_ALL_WORKSPACES;
    else if (desktop < (unsigned long)kMaxWorkspaces)
        workspaces = 1u << desktop;
    else
        return;
    // The window manager moved it to other desktops.
    SetWindowWorkspaces(record->id, workspaces);
}

} // namespace BPrivate
