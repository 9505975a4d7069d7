#include "server/headless/HeadlessKeymap.h"

#include <InterfaceDefs.h>

namespace BPrivate {

namespace {

struct KeyCharacters {
    int32 key;
    char normal;
    char shifted;
    // Keypad keys give their digit only with Num Lock.
    char numeric;
};

// Row by row, as the Be key codes run. Keys giving B_FUNCTION_KEY or control
// characters give the same with Shift.
const KeyCharacters kKeys[] = {
    {0x01, B_ESCAPE, B_ESCAPE, 0},
    {0x02, B_FUNCTION_KEY, B_FUNCTION_KEY, 0},
    {0x03, B_FUNCTION_KEY, B_FUNCTION_KEY, 0},
    {0x04, B_FUNCTION_KEY, B_FUNCTION_KEY, 0},
    {0x05, B_FUNCTION_KEY, B_FUNCTION_KEY, 0},
    {0x06, B_FUNCTION_KEY, B_FUNCTION_KEY, 0},
    {0x07, B_FUNCTION_KEY, B_FUNCTION_KEY, 0},
    {0x08, B_FUNCTION_KEY, B_FUNCTION_KEY, 0},
    {0x09, B_FUNCTION_KEY, B_FUNCTION_KEY, 0},
    {0x0a, B_FUNCTION_KEY, B_FUNCTION_KEY, 0},
    {0x0b, B_FUNCTION_KEY, B_FUNCTION_KEY, 0},
    {0x0c, B_FUNCTION_KEY, B_FUNCTION_KEY, 0},
    {0x0d, B_FUNCTION_KEY, B_FUNCTION_KEY, 0},
    {0x0e, B_FUNCTION_KEY, B_FUNCTION_KEY, 0},
    {0x10, B_FUNCTION_KEY, B_FUNCTION_KEY, 0},
    {0x11, '`', '~', 0},
    {0x12, '1', '!', 0},
    {0x13, '2', '@', 0},
    {0x14, '3', '#', 0},
    {0x15, '4', '$', 0},
    {0x16, '5', '%', 0},
    {0x17, '6', '^', 0},
    {0x18, '7', '&', 0},
    {0x19, '8', '*', 0},
    {0x1a, '9', '(', 0},
    {0x1b, '0', ')', 0},
    {0x1c, '-', '_', 0},
    {0x1d, '=', '+', 0},
    {0x1e, B_BACKSPACE, B_BACKSPACE, 0},
    {0x1f, B_INSERT, B_INSERT, 0},
    {0x20, B_HOME, B_HOME, 0},
    {0x21, B_PAGE_UP, B_PAGE_UP, 0},
    {0x23, '/', '/', 0},
    {0x24, '*', '*', 0},
    {0x25, '-', '-', 0},
    {0x26, B_TAB, B_TAB, 0},
    {0x27, 'q', 'Q', 0},
    {0x28, 'w', 'W', 0},
    {0x29, 'e', 'E', 0},
    {0x2a, 'r', 'R', 0},
    {0x2b, 't', 'T', 0},
    {0x2c, 'y', 'Y', 0},
    {0x2d, 'u', 'U', 0},
    {0x2e, 'i', 'I', 0},
    {0x2f, 'o', 'O', 0},
    {0x30, 'p', 'P', 0},
    {0x31, '[', '{', 0},
    {0x32, ']', '}', 0},
    {0x33, '\\', '|', 0},
    {0x34, B_DELETE, B_DELETE, 0},
    {0x35, B_END, B_END, 0},
    {0x36, B_PAGE_DOWN, B_PAGE_DOWN, 0},
    {0x37, B_HOME, B_HOME, '7'},
    {0x38, B_UP_ARROW, B_UP_ARROW, '8'},
    {0x39, B_PAGE_UP, B_PAGE_UP, '9'},
    {0x3a, '+', '+', 0},
    {0x3c, 'a', 'A', 0},
    {0x3d, 's', 'S', 0},
    {0x3e, 'd', 'D', 0},
    {0x3f, 'f', 'F', 0},
    {0x40, 'g', 'G', 0},
    {0x41, 'h', 'H', 0},
    {0x42, 'j', 'J', 0},
    {0x43, 'k', 'K', 0},
    {0x44, 'l', 'L', 0},
    {0x45, ';', ':', 0},
    {0x46, '\'', '"', 0},
    {0x47, B_ENTER, B_ENTER, 0},
    {0x48, B_LEFT_ARROW, B_LEFT_ARROW, '4'},
    {0x4a, B_RIGHT_ARROW, B_RIGHT_ARROW, '6'},
    {0x4c, 'z', 'Z', 0},
    {0x4d, 'x', 'X', 0},
    {0x4e, 'c', 'C', 0},
    {0x4f, 'v', 'V', 0},
    {0x50, 'b', 'B', 0},
    {0x51, 'n', 'N', 0},
    {0x52, 'm', 'M', 0},
    {0x53, ',', '<', 0},
    {0x54, '.', '>', 0},
    {0x55, '/', '?', 0},
    {0x57, B_UP_ARROW, B_UP_ARROW, 0},
    {0x58, B_END, B_END, '1'},
    {0x59, B_DOWN_ARROW, B_DOWN_ARROW, '2'},
    {0x5a, B_PAGE_DOWN, B_PAGE_DOWN, '3'},
    {0x5b, B_ENTER, B_ENTER, 0},
    {0x5e, ' ', ' ', 0},
    {0x61, B_LEFT_ARROW, B_LEFT_ARROW, 0},
    {0x62, B_DOWN_ARROW, B_DOWN_ARROW, 0},
    {0x63, B_RIGHT_ARROW, B_RIGHT_ARROW, 0},
    {0x64, B_INSERT, B_INSERT, '0'},
    {0x65, B_DELETE, B_DELETE, '.'},
    {0x69, '\\', '|', 0},
};

} // namespace

bool HeadlessKeymap::Map(int32 key, uint32 modifiers, char* bytes, int32* rawChar) {
    bytes[0] = '\0';
    *rawChar = -1;
    for (const KeyCharacters& entry : kKeys) {
        if (entry.key != key)
            continue;
        *rawChar = entry.numeric != 0 ? entry.numeric : entry.normal;
        bool shift = (modifiers & B_SHIFT_KEY) != 0;
        char character = shift ? entry.shifted : entry.normal;
        if (entry.numeric != 0 && ((modifiers & B_NUM_LOCK) != 0) != shift)
            character = entry.numeric;
        bool letter = entry.normal >= 'a' && entry.normal <= 'z';
        if (letter && (modifiers & B_CAPS_LOCK) != 0)
            character = shift ? entry.normal : entry.shifted;
        if (letter && (modifiers & B_CONTROL_KEY) != 0)
            character = (char)(entry.normal & 0x1f);
        bytes[0] = character;
        bytes[1] = '\0';
        return true;
    }
    return false;
}

} // namespace BPrivate
