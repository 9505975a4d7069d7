// The keyboard's state kept up to date from events, so reading it costs no round
// trip to the X server. Programs poll get_key_info() often (a hot key held while
// another program has the focus); asking X each time would wake the server's
// thread and the X server dozens of times a second while nobody types.
//
// XInput 2 raw key events, selected on the root window, arrive whatever window
// has the focus and whoever grabbed the keyboard; XKB state events carry the
// lock modifiers. One XQueryKeymap starts the bitmap off. Events are fed on the
// server's thread; any thread reads.
#ifndef _SERVER_X11_KEY_STATE_H
#define _SERVER_X11_KEY_STATE_H

#include <InterfaceDefs.h>
#include <SupportDefs.h>

#include <X11/Xlib.h>

#include <mutex>

namespace BPrivate {

class X11KeyState {
public:
    X11KeyState(Display* display, ::Window root);

    // Asks X for the events and reads the state once (server's thread). Answers
    // B_NOT_SUPPORTED when the X server lacks XInput 2.1 or XKB; the tracker
    // then stays inactive and callers ask X directly.
    status_t Start();

    // Takes the event when it is one of the tracker's (server's thread).
    bool HandleEvent(XEvent& event);

    // The held keys and modifiers in Be terms; false while the tracker is not
    // active. Any thread; a copy under a lock, nothing more.
    bool Read(key_info* info) const;

    bool IsActive() const;

private:
    void _SetKey(int keycode, bool down);
    // Brings fInfo in line with the X state (fLock held).
    void _UpdateInfo();

    Display* fDisplay;
    ::Window fRoot;
    int fInputOpcode;
    int fKeyboardEventBase;

    mutable std::mutex fLock;
    bool fActive;
    char fKeys[32];
    unsigned int fModifiers;
    unsigned int fNumLockMask;
    key_info fInfo;
};

} // namespace BPrivate

#endif // _SERVER_X11_KEY_STATE_H
