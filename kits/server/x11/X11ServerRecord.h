// What the X11 backend keeps per window, on its thread only: the X window and
// what was last asked of X for it.
#ifndef _SERVER_X11_SERVER_RECORD_H
#define _SERVER_X11_SERVER_RECORD_H

#include "server/x11/X11Presenter.h"
#include "server/x11/X11Server.h"

#include <X11/Xutil.h>

#include <string>

namespace BPrivate {

struct X11Server::Record {
    int32 id = 0;
    ::Window window = 0;
    GC context = 0;
    XIC inputContext = NULL;
    std::unique_ptr<X11Presenter> presenter;
    // Override-redirect: the window manager never sees it (menus).
    bool menu = false;
    bool mapRequested = false;
    bool mapped = false;
    bool iconified = false;
    bool reparented = false;
    // The frame last asked for, in whole pixels; pending until X confirms it.
    int32 x = 0;
    int32 y = 0;
    int32 width = 0;
    int32 height = 0;
    bool pending = false;
    bool corrected = false;
    bool propertiesSet = false;
    std::string title;
    window_look look = B_TITLED_WINDOW_LOOK;
    window_feel feel = B_NORMAL_WINDOW_FEEL;
    uint32 flags = 0;
    // _NET_WM_DESKTOP as last set or reported; kNoDesktop before.
    uint32 desktop = 0xfffffffe;
    // The bytes of each key held down, for its release.
    std::map<unsigned int, std::string> keyBytes;
};

// A copy of a window's model, taken under the model's lock.
struct X11Server::Snapshot {
    int32 id = 0;
    bool exists = false;
    std::string title;
    BRect frame;
    window_look look = B_TITLED_WINDOW_LOOK;
    window_feel feel = B_NORMAL_WINDOW_FEEL;
    uint32 flags = 0;
    uint32 workspaces = 0;
    bool hidden = true;
    bool minimized = false;
};

} // namespace BPrivate

#endif // _SERVER_X11_SERVER_RECORD_H
