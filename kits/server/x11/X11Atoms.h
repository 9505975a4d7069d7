// The atoms the X11 backend speaks with, interned in one round trip.
#ifndef _SERVER_X11_ATOMS_H
#define _SERVER_X11_ATOMS_H

#include <X11/Xlib.h>

namespace BPrivate {

struct X11Atoms {
    Atom wmProtocols, wmDeleteWindow, wmTakeFocus, wmState, wmChangeState, motifWMHints;
    Atom netSupported, netSupportingWMCheck, netNumberOfDesktops, netCurrentDesktop,
        netActiveWindow, netWMDesktop, netWMName, netWMPid, netWMState, netWMStateAbove,
        netWMStateBelow, netWMStateModal, netWMStateSkipTaskbar, netWMStateSkipPager,
        netWMStateSticky, netWMWindowType, netWMWindowTypeNormal, netWMWindowTypeDialog,
        netWMWindowTypeDock, netWMWindowTypeDesktop, netWMWindowTypePopupMenu,
        netWMWindowTypeUtility, netFrameExtents, utf8String;
    Atom xdndAware, xdndProxy, xdndEnter, xdndPosition, xdndStatus, xdndLeave, xdndDrop,
        xdndFinished, xdndSelection, xdndTypeList, xdndActionCopy, xdndActionMove, xdndActionLink,
        xdndActionPrivate;
    Atom textUriList, textPlainUTF8, textPlain, string, incr, glimrowDropData;

    void Intern(Display* display);
};

inline void X11Atoms::Intern(Display* display) {
    struct Entry {
        Atom* atom;
        const char* name;
    };
    const Entry entries[] = {
        {&wmProtocols, "WM_PROTOCOLS"},
        {&wmDeleteWindow, "WM_DELETE_WINDOW"},
        {&wmTakeFocus, "WM_TAKE_FOCUS"},
        {&wmState, "WM_STATE"},
        {&wmChangeState, "WM_CHANGE_STATE"},
        {&motifWMHints, "_MOTIF_WM_HINTS"},
        {&netSupported, "_NET_SUPPORTED"},
        {&netSupportingWMCheck, "_NET_SUPPORTING_WM_CHECK"},
        {&netNumberOfDesktops, "_NET_NUMBER_OF_DESKTOPS"},
        {&netCurrentDesktop, "_NET_CURRENT_DESKTOP"},
        {&netActiveWindow, "_NET_ACTIVE_WINDOW"},
        {&netWMDesktop, "_NET_WM_DESKTOP"},
        {&netWMName, "_NET_WM_NAME"},
        {&netWMPid, "_NET_WM_PID"},
        {&netWMState, "_NET_WM_STATE"},
        {&netWMStateAbove, "_NET_WM_STATE_ABOVE"},
        {&netWMStateBelow, "_NET_WM_STATE_BELOW"},
        {&netWMStateModal, "_NET_WM_STATE_MODAL"},
        {&netWMStateSkipTaskbar, "_NET_WM_STATE_SKIP_TASKBAR"},
        {&netWMStateSkipPager, "_NET_WM_STATE_SKIP_PAGER"},
        {&netWMStateSticky, "_NET_WM_STATE_STICKY"},
        {&netWMWindowType, "_NET_WM_WINDOW_TYPE"},
        {&netWMWindowTypeNormal, "_NET_WM_WINDOW_TYPE_NORMAL"},
        {&netWMWindowTypeDialog, "_NET_WM_WINDOW_TYPE_DIALOG"},
        {&netWMWindowTypeDock, "_NET_WM_WINDOW_TYPE_DOCK"},
        {&netWMWindowTypeDesktop, "_NET_WM_WINDOW_TYPE_DESKTOP"},
        {&netWMWindowTypePopupMenu, "_NET_WM_WINDOW_TYPE_POPUP_MENU"},
        {&netWMWindowTypeUtility, "_NET_WM_WINDOW_TYPE_UTILITY"},
        {&netFrameExtents, "_NET_FRAME_EXTENTS"},
        {&utf8String, "UTF8_STRING"},
        {&xdndAware, "XdndAware"},
        {&xdndProxy, "XdndProxy"},
        {&xdndEnter, "XdndEnter"},
        {&xdndPosition, "XdndPosition"},
        {&xdndStatus, "XdndStatus"},
        {&xdndLeave, "XdndLeave"},
        {&xdndDrop, "XdndDrop"},
        {&xdndFinished, "XdndFinished"},
        {&xdndSelection, "XdndSelection"},
        {&xdndTypeList, "XdndTypeList"},
        {&xdndActionCopy, "XdndActionCopy"},
        {&xdndActionMove, "XdndActionMove"},
        {&xdndActionLink, "XdndActionLink"},
        {&xdndActionPrivate, "XdndActionPrivate"},
        {&textUriList, "text/uri-list"},
        {&textPlainUTF8, "text/plain;charset=utf-8"},
        {&textPlain, "text/plain"},
        {&string, "STRING"},
        {&incr, "INCR"},
        {&glimrowDropData, "_GLIMROW_DROP_DATA"},
    };
    const int count = sizeof(entries) / sizeof(entries[0]);
    char* names[count];
    Atom atoms[count];
    for (int index = 0; index < count; index++)
        names[index] = const_cast<char*>(entries[index].name);
    XInternAtoms(display, names, count, False, atoms);
    for (int index = 0; index < count; index++)
        *entries[index].atom = atoms[index];
}

} // namespace BPrivate

#endif // _SERVER_X11_ATOMS_H
