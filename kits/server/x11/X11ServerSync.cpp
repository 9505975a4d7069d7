// Bringing the X windows in line with the model, on the server's thread: the
// windows themselves with their properties for the window manager, their frames,
// whether they are shown, their pixels, the active window, the desktops and the
// pointer grab of an open menu.
#include "server/x11/X11Server.h"

#include "interface/WindowPrivate.h"
#include "server/x11/X11ServerRecord.h"

#include <OS.h>

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <math.h>
#include <string.h>
#include <unistd.h>

namespace BPrivate {

namespace {

const unsigned long kMotifHintsFunctions = 1 << 0;
const unsigned long kMotifHintsDecorations = 1 << 1;
const unsigned long kMotifFunctionAll = 1 << 0;
const unsigned long kMotifFunctionResize = 1 << 1;
const unsigned long kMotifFunctionMove = 1 << 2;
const unsigned long kMotifFunctionMinimize = 1 << 3;
const unsigned long kMotifFunctionMaximize = 1 << 4;
const unsigned long kMotifFunctionClose = 1 << 5;
const unsigned long kAllDesktops = 0xffffffff;
const bigtime_t kGrabRetryTime = 1000000;

int32 pixel(float coordinate) {
    return (int32)floorf(coordinate + 0.5f);
}

bool is_modal(window_feel feel) {
    return feel == B_MODAL_APP_WINDOW_FEEL || feel == B_MODAL_SUBSET_WINDOW_FEEL ||
           feel == B_MODAL_ALL_WINDOW_FEEL;
}

bool is_floating(window_feel feel) {
    return feel == B_FLOATING_APP_WINDOW_FEEL || feel == B_FLOATING_SUBSET_WINDOW_FEEL ||
           feel == B_FLOATING_ALL_WINDOW_FEEL;
}

bool is_undecorated(window_look look) {
    return look == B_BORDERED_WINDOW_LOOK || look == B_NO_BORDER_WINDOW_LOOK;
}

} // namespace

void X11Server::_SyncWithModel() {
    std::vector<Snapshot> snapshots;
    std::map<int32, BRegion> damage;
    int32 active;
    int32 current;
    int32 count;
    bool workspacesDirty;
    bool grabDirty;
    uint32 beeps;
    {
        std::lock_guard<std::mutex> lock(fLock);
        for (int32 id : fDirtyWindows) {
            Snapshot snapshot;
            snapshot.id = id;
            if (ServerWindow* window = _Find(id)) {
                snapshot.exists = true;
                snapshot.title = window->title;
                snapshot.frame = window->frame;
                snapshot.look = window->look;
                snapshot.feel = window->feel;
                snapshot.flags = window->flags;
                snapshot.workspaces = window->workspaces;
                snapshot.hidden = window->hidden;
                snapshot.minimized = window->minimized;
            }
            snapshots.push_back(snapshot);
        }
        fDirtyWindows.clear();
        damage.swap(fDamage);
        active = fActiveWindow;
        current = fCurrentWorkspace;
        count = fWorkspaceCount;
        workspacesDirty = fWorkspacesDirty;
        fWorkspacesDirty = false;
        grabDirty = fGrabDirty;
        fGrabDirty = false;
        beeps = fPendingBeeps;
        fPendingBeeps = 0;
    }

    if (workspacesDirty)
        _ApplyWorkspaces(current, count);
    for (const Snapshot& snapshot : snapshots) {
        if (!snapshot.exists) {
            _DestroyRecord(snapshot.id);
            continue;
        }
        auto found = fRecords.find(snapshot.id);
        Record* record = found != fRecords.end() ? found->second.get() : NULL;
        // Override-redirect cannot change on a window the window manager knows.
        if (record != NULL && record->menu != (snapshot.feel == kMenuWindowFeel)) {
            _DestroyRecord(snapshot.id);
            record = NULL;
        }
        if (record == NULL)
            record = _CreateRecord(snapshot);
        if (record == NULL)
            continue;
        _ApplyProperties(record, snapshot, count, current);
        _ApplyGeometry(record, snapshot);
        _ApplyMapping(record, snapshot, current);
    }
    if (!fInitFinished) {
        XFlush(fDisplay);
        _FinishInit();
    }
    if (!damage.empty())
        _ApplyPixels(damage);
    _ApplyActivation(active);
    if (grabDirty)
        _ApplyGrab();
    for (; beeps > 0; beeps--)
        XBell(fDisplay, 0);
}

// #pragma mark - Windows

X11Server::Record* X11Server::_CreateRecord(const Snapshot& snapshot) {
    auto record = std::make_unique<Record>();
    record->id = snapshot.id;
    record->menu = snapshot.feel == kMenuWindowFeel;
    record->x = pixel(snapshot.frame.left);
    record->y = pixel(snapshot.frame.top);
    record->width = buffer_extent(snapshot.frame.Width());
    record->height = buffer_extent(snapshot.frame.Height());

    XSetWindowAttributes attributes;
    memset(&attributes, 0, sizeof(attributes));
    // The panel grey of the kits, until the window's first pixels arrive.
    attributes.background_pixel = 0xd8d8d8;
    attributes.border_pixel = 0;
    attributes.bit_gravity = NorthWestGravity;
    attributes.override_redirect = record->menu ? True : False;
    attributes.save_under = record->menu ? True : False;
    // OwnerGrabButtonMask: while a button is held, the pointer's events go to
    // whichever of our windows it is over, so drags can cross them.
    attributes.event_mask = ExposureMask | ButtonPressMask | ButtonReleaseMask | PointerMotionMask |
                            EnterWindowMask | LeaveWindowMask | KeyPressMask | KeyReleaseMask |
                            FocusChangeMask | StructureNotifyMask | PropertyChangeMask |
                            OwnerGrabButtonMask;
    record->window = XCreateWindow(fDisplay, fRoot, record->x, record->y, record->width,
                                   record->height, 0, CopyFromParent, InputOutput, CopyFromParent,
                                   CWBackPixel | CWBorderPixel | CWBitGravity | CWOverrideRedirect |
                                       CWSaveUnder | CWEventMask,
                                   &attributes);
    if (record->window == 0)
        return NULL;
    record->pending = true;
    record->context = XCreateGC(fDisplay, record->window, 0, NULL);

    XClassHint classHint;
    classHint.res_name = (char*)"glimrow";
    classHint.res_class = (char*)"Glimrow";
    XSetClassHint(fDisplay, record->window, &classHint);
    Atom protocols[] = {fAtoms.wmDeleteWindow};
    XSetWMProtocols(fDisplay, record->window, protocols, 1);
    long pid = (long)getpid();
    XChangeProperty(fDisplay, record->window, fAtoms.netWMPid, XA_CARDINAL, 32, PropModeReplace,
                    (unsigned char*)&pid, 1);
    if (!record->menu) {
        long version = 5;
        XChangeProperty(fDisplay, record->window, fAtoms.xdndAware, XA_ATOM, 32, PropModeReplace,
                        (unsigned char*)&version, 1);
    }

    Record* created = record.get();
    {
        std::lock_guard<std::mutex> lock(fLock);
        fXWindows[snapshot.id] = record->window;
        // Its first pixels: whatever the window presented before X had it.
        fDamage[snapshot.id].Include(BRect(0, 0, record->width - 1, record->height - 1));
    }
    fRecords[snapshot.id] = std::move(record);
    return created;
}

void X11Server::_DestroyRecord(int32 id) {
    auto found = fRecords.find(id);
    if (found == fRecords.end())
        return;
    Record* record = found->second.get();
    if (fAppliedGrab == record->window) {
        XUngrabPointer(fDisplay, CurrentTime);
        fAppliedGrab = 0;
    }
    if (fAppliedActive == id)
        fAppliedActive = 0;
    record->presenter.reset();
    if (record->inputContext != NULL)
        XDestroyIC(record->inputContext);
    XFreeGC(fDisplay, record->context);
    XDestroyWindow(fDisplay, record->window);
    fRecords.erase(found);
    std::lock_guard<std::mutex> lock(fLock);
    fXWindows.erase(id);
    if (fPointerWindow == id)
        fPointerWindow = 0;
}

uint32 X11Server::_NetDesktopFor(uint32 workspaces, int32 count, int32 current) {
    uint32 all = count >= 32 ? 0xffffffff : (1u << count) - 1;
    if (workspaces == B_ALL_WORKSPACES || (count > 1 && (workspaces & all) == all))
        return kAllDesktops;
    if (workspaces & (1u << current))
        return (uint32)current;
    for (int32 workspace = 0; workspace < count; workspace++) {
        if (workspaces & (1u << workspace))
            return (uint32)workspace;
    }
    return (uint32)current;
}

void X11Server::_ApplyProperties(Record* record, const Snapshot& snapshot, int32 count,
                                 int32 current) {
    ::Window window = record->window;
    if (!record->propertiesSet || record->title != snapshot.title) {
        record->title = snapshot.title;
        XStoreName(fDisplay, window, snapshot.title.c_str());
        XChangeProperty(fDisplay, window, fAtoms.netWMName, fAtoms.utf8String, 8, PropModeReplace,
                        (const unsigned char*)snapshot.title.data(), (int)snapshot.title.size());
    }

    uint32 desktop = _NetDesktopFor(snapshot.workspaces, count, current);
    if (!record->menu && desktop != record->desktop) {
        record->desktop = desktop;
        if (record->mapRequested && fWindowManager != 0) {
            _SendRootMessage(window, fAtoms.netWMDesktop, (long)desktop, 1, 0, 0);
        } else {
            long value = (long)desktop;
            XChangeProperty(fDisplay, window, fAtoms.netWMDesktop, XA_CARDINAL, 32, PropModeReplace,
                            (unsigned char*)&value, 1);
        }
    }

    bool lookChanged = !record->propertiesSet || record->look != snapshot.look ||
                       record->feel != snapshot.feel || record->flags != snapshot.flags;
    if (!lookChanged)
        return;
    bool wasSet = record->propertiesSet;
    window_look oldLook = record->look;
    window_feel oldFeel = record->feel;
    record->look = snapshot.look;
    record->feel = snapshot.feel;
    record->flags = snapshot.flags;
    record->propertiesSet = true;
    if (record->menu) {
        Atom type = fAtoms.netWMWindowTypePopupMenu;
        XChangeProperty(fDisplay, window, fAtoms.netWMWindowType, XA_ATOM, 32, PropModeReplace,
                        (unsigned char*)&type, 1);
        return;
    }

    _ApplySizeHints(record);

    XWMHints hints;
    memset(&hints, 0, sizeof(hints));
    hints.flags = InputHint | StateHint | WindowGroupHint;
    hints.input = (snapshot.flags & B_AVOID_FOCUS) != 0 ? False : True;
    hints.initial_state = NormalState;
    hints.window_group = fLeader;
    XSetWMHints(fDisplay, window, &hints);

    unsigned long functions = kMotifFunctionAll;
    uint32 restricting = B_NOT_MOVABLE | B_NOT_RESIZABLE | B_NOT_H_RESIZABLE | B_NOT_V_RESIZABLE |
                         B_NOT_CLOSABLE | B_NOT_ZOOMABLE | B_NOT_MINIMIZABLE;
    if ((snapshot.flags & restricting) != 0) {
        functions = 0;
        if ((snapshot.flags & (B_NOT_RESIZABLE)) == 0 &&
            (snapshot.flags & (B_NOT_H_RESIZABLE | B_NOT_V_RESIZABLE)) !=
                (B_NOT_H_RESIZABLE | B_NOT_V_RESIZABLE))
            functions |= kMotifFunctionResize;
        if ((snapshot.flags & B_NOT_MOVABLE) == 0)
            functions |= kMotifFunctionMove;
        if ((snapshot.flags & B_NOT_MINIMIZABLE) == 0)
            functions |= kMotifFunctionMinimize;
        if ((snapshot.flags & (B_NOT_ZOOMABLE | B_NOT_RESIZABLE)) == 0)
            functions |= kMotifFunctionMaximize;
        if ((snapshot.flags & B_NOT_CLOSABLE) == 0)
            functions |= kMotifFunctionClose;
    }
    unsigned long motif[5] = {kMotifHintsFunctions | kMotifHintsDecorations, functions,
                              is_undecorated(snapshot.look) ? 0ul : 1ul, 0, 0};
    XChangeProperty(fDisplay, window, fAtoms.motifWMHints, fAtoms.motifWMHints, 32, PropModeReplace,
                    (unsigned char*)motif, 5);

    Atom type = fAtoms.netWMWindowTypeNormal;
    if (snapshot.feel == kDesktopWindowFeel)
        type = fAtoms.netWMWindowTypeDesktop;
    else if (is_modal(snapshot.feel))
        type = fAtoms.netWMWindowTypeDialog;
    else if (is_floating(snapshot.feel))
        type = fAtoms.netWMWindowTypeUtility;
    XChangeProperty(fDisplay, window, fAtoms.netWMWindowType, XA_ATOM, 32, PropModeReplace,
                    (unsigned char*)&type, 1);

    // Transient for the root window: for the whole group, that is for all of
    // the application's windows.
    if (snapshot.feel == B_MODAL_APP_WINDOW_FEEL || snapshot.feel == B_MODAL_SUBSET_WINDOW_FEEL ||
        snapshot.feel == B_FLOATING_APP_WINDOW_FEEL ||
        snapshot.feel == B_FLOATING_SUBSET_WINDOW_FEEL)
        XSetTransientForHint(fDisplay, window, fRoot);
    else if (wasSet && (is_modal(oldFeel) || is_floating(oldFeel)))
        XDeleteProperty(fDisplay, window, XA_WM_TRANSIENT_FOR);

    struct State {
        Atom atom;
        bool wanted;
        bool was;
    };
    bool skip = is_undecorated(snapshot.look);
    bool wasSkip = wasSet && is_undecorated(oldLook);
    bool above =
        snapshot.feel == B_FLOATING_ALL_WINDOW_FEEL || snapshot.feel == B_MODAL_ALL_WINDOW_FEEL;
    bool wasAbove =
        wasSet && (oldFeel == B_FLOATING_ALL_WINDOW_FEEL || oldFeel == B_MODAL_ALL_WINDOW_FEEL);
    State states[] = {
        {fAtoms.netWMStateSkipTaskbar, skip, wasSkip},
        {fAtoms.netWMStateSkipPager, skip, wasSkip},
        {fAtoms.netWMStateAbove, above, wasAbove},
        {fAtoms.netWMStateModal, is_modal(snapshot.feel), wasSet && is_modal(oldFeel)},
        {fAtoms.netWMStateBelow, snapshot.feel == kDesktopWindowFeel,
         wasSet && oldFeel == kDesktopWindowFeel},
    };
    if (record->mapRequested && fWindowManager != 0) {
        for (const State& state : states) {
            if (state.wanted != state.was)
                _SendRootMessage(window, fAtoms.netWMState, state.wanted ? 1 : 0, (long)state.atom,
                                 0, 1);
        }
    } else {
        Atom list[5];
        int listed = 0;
        for (const State& state : states) {
            if (state.wanted)
                list[listed++] = state.atom;
        }
        XChangeProperty(fDisplay, window, fAtoms.netWMState, XA_ATOM, 32, PropModeReplace,
                        (unsigned char*)list, listed);
    }
}

void X11Server::_ApplySizeHints(Record* record) {
    XSizeHints* sizeHints = XAllocSizeHints();
    if (sizeHints == NULL)
        return;
    // Static gravity: the position asked for is the one of the window's contents,
    // wherever the window manager puts its frame.
    sizeHints->flags = USPosition | PPosition | USSize | PSize | PWinGravity;
    sizeHints->x = record->x;
    sizeHints->y = record->y;
    sizeHints->width = record->width;
    sizeHints->height = record->height;
    sizeHints->win_gravity = StaticGravity;
    bool fixedWidth = (record->flags & (B_NOT_RESIZABLE | B_NOT_H_RESIZABLE)) != 0;
    bool fixedHeight = (record->flags & (B_NOT_RESIZABLE | B_NOT_V_RESIZABLE)) != 0;
    if (fixedWidth || fixedHeight) {
        sizeHints->flags |= PMinSize | PMaxSize;
        sizeHints->min_width = fixedWidth ? record->width : 1;
        sizeHints->max_width = fixedWidth ? record->width : kMaxBufferExtent;
        sizeHints->min_height = fixedHeight ? record->height : 1;
        sizeHints->max_height = fixedHeight ? record->height : kMaxBufferExtent;
    }
    XSetWMNormalHints(fDisplay, record->window, sizeHints);
    XFree(sizeHints);
}

void X11Server::_ApplyGeometry(Record* record, const Snapshot& snapshot) {
    int32 x = pixel(snapshot.frame.left);
    int32 y = pixel(snapshot.frame.top);
    int32 width = buffer_extent(snapshot.frame.Width());
    int32 height = buffer_extent(snapshot.frame.Height());
    if (x == record->x && y == record->y && width == record->width && height == record->height)
        return;
    bool resized = width != record->width || height != record->height;
    record->x = x;
    record->y = y;
    record->width = width;
    record->height = height;
    record->pending = true;
    record->corrected = false;
    if (!record->menu && (resized || !record->mapRequested))
        _ApplySizeHints(record);
    XMoveResizeWindow(fDisplay, record->window, x, y, width, height);
}

void X11Server::_ApplyMapping(Record* record, const Snapshot& snapshot, int32 current) {
    bool managed = fWindowManager != 0 && !record->menu;
    // A window manager shows a window on its desktops itself; without one, only
    // the current workspace's windows are shown.
    bool wanted = !snapshot.hidden && !snapshot.minimized &&
                  (managed || (snapshot.workspaces & (1u << current)) != 0);

    if (snapshot.minimized && managed && record->mapRequested && !record->iconified) {
        record->iconified = true;
        XIconifyWindow(fDisplay, record->window, fScreen);
        return;
    }
    if (wanted && record->mapRequested && record->iconified) {
        record->iconified = false;
        XMapWindow(fDisplay, record->window);
        return;
    }
    if (wanted && !record->mapRequested) {
        record->mapRequested = true;
        record->iconified = false;
        if (managed) {
            // The window manager places it; check where it lands.
            record->pending = true;
            record->corrected = false;
            _ApplySizeHints(record);
        }
        if ((snapshot.flags & B_AVOID_FRONT) != 0)
            XMapWindow(fDisplay, record->window);
        else
            XMapRaised(fDisplay, record->window);
        return;
    }
    if (!wanted && record->mapRequested && !(snapshot.minimized && managed)) {
        record->mapRequested = false;
        record->iconified = false;
        if (managed)
            XWithdrawWindow(fDisplay, record->window, fScreen);
        else
            XUnmapWindow(fDisplay, record->window);
        if (fAppliedGrab == record->window) {
            XUngrabPointer(fDisplay, CurrentTime);
            fAppliedGrab = 0;
        }
    }
}

// #pragma mark - Pixels

void X11Server::_ApplyPixels(const std::map<int32, BRegion>& damage) {
    struct Put {
        Record* record;
        clipping_rect rect;
    };
    std::vector<Put> puts;
    bool sentDirectly = false;
    {
        std::lock_guard<std::mutex> lock(fLock);
        for (const auto& entry : damage) {
            auto found = fRecords.find(entry.first);
            ServerWindow* window = _Find(entry.first);
            if (found == fRecords.end() || window == NULL)
                continue;
            Record* record = found->second.get();
            if (record->presenter == NULL) {
                record->presenter =
                    std::make_unique<X11Presenter>(fDisplay, DefaultVisual(fDisplay, fScreen),
                                                   DefaultDepth(fDisplay, fScreen), fSharedMemory);
            }
            cairo_surface_t* surface = window->frontBuffer.get();
            int32 width = cairo_image_surface_get_width(surface);
            int32 height = cairo_image_surface_get_height(surface);
            BRegion region(entry.second);
            if (!X11Presenter::WantsImage(width, height)) {
                // Sent while the lock keeps the window from presenting again.
                _PutFrontBuffer(record, window, region);
                sentDirectly = true;
                continue;
            }
            if (record->presenter->Width() != width || record->presenter->Height() != height) {
                if (record->presenter->SetSize(width, height) != B_OK)
                    continue;
                region.Set(BRect(0, 0, width - 1, height - 1));
            }
            cairo_surface_flush(surface);
            const uint8* source = cairo_image_surface_get_data(surface);
            int32 sourceStride = cairo_image_surface_get_stride(surface);
            uint8* target = record->presenter->Bits();
            int32 targetStride = record->presenter->BytesPerRow();
            if (source == NULL || target == NULL)
                continue;
            int32 count = region.CountRects();
            for (int32 index = 0; index < count; index++) {
                clipping_rect rect = region.RectAtInt(index);
                if (!X11Presenter::ClipToImage(&rect, width, height))
                    continue;
                size_t bytes = (size_t)(rect.right - rect.left + 1) * 4;
                for (int32 row = rect.top; row <= rect.bottom; row++) {
                    memcpy(target + (size_t)row * targetStride + (size_t)rect.left * 4,
                           source + (size_t)row * sourceStride + (size_t)rect.left * 4, bytes);
                }
                puts.push_back(Put{record, rect});
            }
        }
    }
    for (const Put& put : puts) {
        put.record->presenter->Put(put.record->window, put.record->context, put.rect.left,
                                   put.rect.top, put.rect.right - put.rect.left + 1,
                                   put.rect.bottom - put.rect.top + 1);
    }
    // The server has read the shared pixels once this returns; the next copy may
    // overwrite them.
    if (!puts.empty())
        XSync(fDisplay, False);
    else if (sentDirectly)
        XFlush(fDisplay);
}

void X11Server::_PutFrontBuffer(Record* record, ServerWindow* window, const BRegion& region) {
    cairo_surface_t* surface = window->frontBuffer.get();
    if (surface == NULL)
        return;
    cairo_surface_flush(surface);
    const uint8* pixels = cairo_image_surface_get_data(surface);
    int32 stride = cairo_image_surface_get_stride(surface);
    int32 width = cairo_image_surface_get_width(surface);
    int32 height = cairo_image_surface_get_height(surface);
    for (int32 index = 0; index < region.CountRects(); index++) {
        record->presenter->PutFrom(record->window, record->context, pixels, stride, width, height,
                                   region.RectAtInt(index));
    }
}

// #pragma mark - Focus, desktops, grabs

void X11Server::_SendRootMessage(::Window window, Atom type, long data0, long data1, long data2,
                                 long data3) {
    XEvent event;
    memset(&event, 0, sizeof(event));
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = type;
    event.xclient.format = 32;
    event.xclient.data.l[0] = data0;
    event.xclient.data.l[1] = data1;
    event.xclient.data.l[2] = data2;
    event.xclient.data.l[3] = data3;
    XSendEvent(fDisplay, fRoot, False, SubstructureNotifyMask | SubstructureRedirectMask, &event);
}

void X11Server::_ApplyActivation(int32 active) {
    if (active == 0 || active == fAppliedActive)
        return;
    auto found = fRecords.find(active);
    if (found == fRecords.end() || !found->second->mapped || found->second->menu)
        return;
    Record* record = found->second.get();
    fAppliedActive = active;
    if (fWindowManager != 0) {
        ::Window current = 0;
        auto previous = fRecords.end();
        for (auto iterator = fRecords.begin(); iterator != fRecords.end(); iterator++) {
            if (iterator->second->window != record->window && iterator->second->mapped)
                previous = iterator;
        }
        if (previous != fRecords.end())
            current = previous->second->window;
        _SendRootMessage(record->window, fAtoms.netActiveWindow, 1, (long)fLastEventTime,
                         (long)current, 0);
    } else {
        if ((record->flags & B_AVOID_FRONT) == 0)
            XRaiseWindow(fDisplay, record->window);
        XSetInputFocus(fDisplay, record->window, RevertToPointerRoot, CurrentTime);
    }
}

void X11Server::_ApplyWorkspaces(int32 current, int32 count) {
    if (fWindowManager == 0) {
        // No window manager, no desktops: one workspace.
        if (count != 1 || current != 0) {
            _Enqueue([this] { SetWorkspaceCount(1); }, false);
        }
        return;
    }
    if (count != fAppliedDesktopCount) {
        fAppliedDesktopCount = count;
        _SendRootMessage(fRoot, fAtoms.netNumberOfDesktops, count, 0, 0, 0);
    }
    if (current != fAppliedDesktop) {
        fAppliedDesktop = current;
        _SendRootMessage(fRoot, fAtoms.netCurrentDesktop, current, (long)fLastEventTime, 0, 0);
    }
}

void X11Server::_ApplyGrab() {
    int32 grabbing;
    {
        std::lock_guard<std::mutex> lock(fLock);
        grabbing = fGrabbing;
    }
    ::Window wanted = 0;
    auto found = fRecords.find(grabbing);
    if (found != fRecords.end() && found->second->mapped)
        wanted = found->second->window;
    if (wanted == fAppliedGrab || wanted == 0)
        fGrabRetryUntil = 0;
    if (wanted == fAppliedGrab)
        return;
    if (wanted == 0) {
        XUngrabPointer(fDisplay, CurrentTime);
        fAppliedGrab = 0;
        return;
    }
    // Owner events: our other windows (the menu's parents) still get theirs.
    int result = XGrabPointer(fDisplay, wanted, True,
                              ButtonPressMask | ButtonReleaseMask | PointerMotionMask |
                                  EnterWindowMask | LeaveWindowMask,
                              GrabModeAsync, GrabModeAsync, None, None, CurrentTime);
    fAppliedGrab = result == GrabSuccess ? wanted : 0;
    // Another client may hold the pointer for a moment (a window manager
    // handling a click): try again shortly, for a while.
    if (result == GrabSuccess)
        fGrabRetryUntil = 0;
    else if (fGrabRetryUntil == 0)
        fGrabRetryUntil = system_time() + kGrabRetryTime;
    else if (system_time() > fGrabRetryUntil)
        fGrabRetryUntil = 0;
}

} // namespace BPrivate
