// The characters the keys of a US PC keyboard produce under the Be keymap, for
// the headless backend, which has no keyboard of its own to ask.
#ifndef _SERVER_HEADLESS_KEYMAP_H
#define _SERVER_HEADLESS_KEYMAP_H

#include <SupportDefs.h>

namespace BPrivate {

class HeadlessKeymap {
public:
    // The UTF-8 bytes (NUL-terminated, at most 4 + 1) the key gives with these
    // modifiers, and the character it gives without any (-1 when none). False
    // for keys that produce nothing (modifiers, unknown codes).
    static bool Map(int32 key, uint32 modifiers, char* bytes, int32* rawChar);
};

} // namespace BPrivate

#endif // _SERVER_HEADLESS_KEYMAP_H
