// The keyboard as the X server reports it, in Be terms: X key codes (evdev rules,
// as Xorg, Xvfb and XWayland use) to Be key codes, keysyms to the bytes Be keys
// produce, and X's key bitmap to Be's key_states. Pure functions, no connection.
#ifndef _SERVER_X11_KEYBOARD_H
#define _SERVER_X11_KEYBOARD_H

#include <SupportDefs.h>

namespace BPrivate {

class X11Keyboard {
public:
    // The Be key code of an X key code; 0 for a key Be has no code for.
    static int32 BeKeyFor(uint32 xKeycode);

    // The Be byte of a keysym with a meaning of its own on Be (arrows, Return,
    // function keys...); -1 when the keysym is an ordinary character or nothing.
    static int32 SpecialByteFor(unsigned long keysym);

    // Writes the UTF-8 form of a character keysym (Latin-1 and Unicode keysyms)
    // into text (at least 8 bytes); answers the number of bytes, 0 for none.
    static int32 KeysymToUTF8(unsigned long keysym, char* text);

    // X's 32-byte key bitmap (least significant bit first) to Be's 16-byte one
    // (most significant bit first), by Be key code.
    static void BeStatesFromKeymap(const char xKeys[32], uint8 states[16]);

    // The modifier bits (sides and generic ones) the held keys of a Be key_states
    // bitmap stand for: Alt is Command, Ctrl Control, the Windows keys Option.
    static uint32 ModifiersFromStates(const uint8 states[16]);
};

} // namespace BPrivate

#endif // _SERVER_X11_KEYBOARD_H
