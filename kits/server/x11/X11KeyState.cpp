#include "server/x11/X11KeyState.h"

#include "server/x11/X11Keyboard.h"

#include <Errors.h>

#include <X11/XKBlib.h>
#include <X11/extensions/XInput2.h>
#include <X11/keysym.h>

#include <string.h>

namespace BPrivate {

X11KeyState::X11KeyState(Display* display, ::Window root)
    : fDisplay(display), fRoot(root), fInputOpcode(-1), fKeyboardEventBase(-1), fActive(false),
      fModifiers(0), fNumLockMask(0) {
    memset(fKeys, 0, sizeof(fKeys));
    memset(&fInfo, 0, sizeof(fInfo));
}

status_t X11KeyState::Start() {
    if (fInputOpcode >= 0)
        return B_OK;
    int opcode = 0;
    int eventBase = 0;
    int errorBase = 0;
    if (!XQueryExtension(fDisplay, "XInputExtension", &opcode, &eventBase, &errorBase))
        return B_NOT_SUPPORTED;
    // 2.1 delivers raw events even while another client grabs the keyboard.
    int major = 2;
    int minor = 1;
    if (XIQueryVersion(fDisplay, &major, &minor) != Success || major < 2 ||
        (major == 2 && minor < 1))
        return B_NOT_SUPPORTED;
    int keyboardOpcode = 0;
    int keyboardEventBase = 0;
    int keyboardErrorBase = 0;
    int keyboardMajor = XkbMajorVersion;
    int keyboardMinor = XkbMinorVersion;
    if (!XkbQueryExtension(fDisplay, &keyboardOpcode, &keyboardEventBase, &keyboardErrorBase,
                           &keyboardMajor, &keyboardMinor))
        return B_NOT_SUPPORTED;

    unsigned char bits[XIMaskLen(XI_LASTEVENT)];
    memset(bits, 0, sizeof(bits));
    XISetMask(bits, XI_RawKeyPress);
    XISetMask(bits, XI_RawKeyRelease);
    XIEventMask mask;
    mask.deviceid = XIAllMasterDevices;
    mask.mask_len = sizeof(bits);
    mask.mask = bits;
    if (XISelectEvents(fDisplay, fRoot, &mask, 1) != Success)
        return B_NOT_SUPPORTED;
    XkbSelectEventDetails(fDisplay, XkbUseCoreKbd, XkbStateNotify, XkbModifierStateMask,
                          XkbModifierStateMask);

    // Selected first, read second: events already on their way replay changes
    // the read includes, and leave the bitmap where X is.
    char keys[32];
    XQueryKeymap(fDisplay, keys);
    XkbStateRec state;
    memset(&state, 0, sizeof(state));
    XkbGetState(fDisplay, XkbUseCoreKbd, &state);
    unsigned int numLockMask = XkbKeysymToModifiers(fDisplay, XK_Num_Lock);

    fInputOpcode = opcode;
    fKeyboardEventBase = keyboardEventBase;
    std::lock_guard<std::mutex> lock(fLock);
    memcpy(fKeys, keys, sizeof(fKeys));
    fModifiers = state.mods;
    fNumLockMask = numLockMask;
    _UpdateInfo();
    fActive = true;
    return B_OK;
}

bool X11KeyState::HandleEvent(XEvent& event) {
    if (fInputOpcode >= 0 && event.type == GenericEvent &&
        event.xcookie.extension == fInputOpcode) {
        int type = event.xcookie.evtype;
        if (type != XI_RawKeyPress && type != XI_RawKeyRelease)
            return false;
        if (XGetEventData(fDisplay, &event.xcookie)) {
            const XIRawEvent* raw = static_cast<const XIRawEvent*>(event.xcookie.data);
            _SetKey(raw->detail, type == XI_RawKeyPress);
            XFreeEventData(fDisplay, &event.xcookie);
        }
        return true;
    }
    if (fKeyboardEventBase >= 0 && event.type == fKeyboardEventBase) {
        const XkbEvent* keyboardEvent = reinterpret_cast<const XkbEvent*>(&event);
        if (keyboardEvent->any.xkb_type != XkbStateNotify)
            return false;
        std::lock_guard<std::mutex> lock(fLock);
        fModifiers = keyboardEvent->state.mods;
        _UpdateInfo();
        return true;
    }
    return false;
}

void X11KeyState::_SetKey(int keycode, bool down) {
    if (keycode < 0 || keycode >= 256)
        return;
    char bit = (char)(1 << (keycode & 7));
    std::lock_guard<std::mutex> lock(fLock);
    if (down)
        fKeys[keycode >> 3] |= bit;
    else
        fKeys[keycode >> 3] &= (char)~bit;
    _UpdateInfo();
}

void X11KeyState::_UpdateInfo() {
    X11Keyboard::BeStatesFromKeymap(fKeys, fInfo.key_states);
    fInfo.modifiers = X11Keyboard::ModifiersFromStates(fInfo.key_states);
    if (fModifiers & LockMask)
        fInfo.modifiers |= B_CAPS_LOCK;
    if (fNumLockMask != 0 && (fModifiers & fNumLockMask))
        fInfo.modifiers |= B_NUM_LOCK;
}

bool X11KeyState::Read(key_info* info) const {
    std::lock_guard<std::mutex> lock(fLock);
    if (!fActive)
        return false;
    *info = fInfo;
    return true;
}

bool X11KeyState::IsActive() const {
    std::lock_guard<std::mutex> lock(fLock);
    return fActive;
}

} // namespace BPrivate
