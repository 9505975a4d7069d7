#include "server/x11/X11Keyboard.h"

#include <InterfaceDefs.h>

#include <X11/keysym.h>

#include <string.h>

namespace BPrivate {

namespace {

struct KeyPair {
    uint8 xKeycode;
    uint8 beKey;
};

// With the evdev rules an X key code is the Linux input code plus 8; the Be
// codes number a PC keyboard row by row.
const KeyPair kKeyPairs[] = {
    {9, 0x01},   {67, 0x02},  {68, 0x03},  {69, 0x04},  {70, 0x05},  {71, 0x06},  {72, 0x07},
    {73, 0x08},  {74, 0x09},  {75, 0x0a},  {76, 0x0b},  {95, 0x0c},  {96, 0x0d},  {107, 0x0e},
    {78, 0x0f},  {127, 0x10}, {49, 0x11},  {10, 0x12},  {11, 0x13},  {12, 0x14},  {13, 0x15},
    {14, 0x16},  {15, 0x17},  {16, 0x18},  {17, 0x19},  {18, 0x1a},  {19, 0x1b},  {20, 0x1c},
    {21, 0x1d},  {22, 0x1e},  {118, 0x1f}, {110, 0x20}, {112, 0x21}, {77, 0x22},  {106, 0x23},
    {63, 0x24},  {82, 0x25},  {23, 0x26},  {24, 0x27},  {25, 0x28},  {26, 0x29},  {27, 0x2a},
    {28, 0x2b},  {29, 0x2c},  {30, 0x2d},  {31, 0x2e},  {32, 0x2f},  {33, 0x30},  {34, 0x31},
    {35, 0x32},  {51, 0x33},  {119, 0x34}, {115, 0x35}, {117, 0x36}, {79, 0x37},  {80, 0x38},
    {81, 0x39},  {86, 0x3a},  {66, 0x3b},  {38, 0x3c},  {39, 0x3d},  {40, 0x3e},  {41, 0x3f},
    {42, 0x40},  {43, 0x41},  {44, 0x42},  {45, 0x43},  {46, 0x44},  {47, 0x45},  {48, 0x46},
    {36, 0x47},  {83, 0x48},  {84, 0x49},  {85, 0x4a},  {50, 0x4b},  {52, 0x4c},  {53, 0x4d},
    {54, 0x4e},  {55, 0x4f},  {56, 0x50},  {57, 0x51},  {58, 0x52},  {59, 0x53},  {60, 0x54},
    {61, 0x55},  {62, 0x56},  {111, 0x57}, {87, 0x58},  {88, 0x59},  {89, 0x5a},  {104, 0x5b},
    {37, 0x5c},  {64, 0x5d},  {65, 0x5e},  {108, 0x5f}, {105, 0x60}, {113, 0x61}, {116, 0x62},
    {114, 0x63}, {90, 0x64},  {91, 0x65},  {133, 0x66}, {134, 0x67}, {135, 0x68}, {94, 0x69},
    {125, 0x6a}, {132, 0x6a}, {124, 0x6b}, {97, 0x6b},  {102, 0x6c}, {100, 0x6d}, {101, 0x6e},
    {129, 0x70},
};

struct KeyTable {
    uint8 beKeys[256];
};

const KeyTable& key_table() {
    static const KeyTable table = [] {
        KeyTable built;
        memset(built.beKeys, 0, sizeof(built.beKeys));
        for (const KeyPair& pair : kKeyPairs)
            built.beKeys[pair.xKeycode] = pair.beKey;
        return built;
    }();
    return table;
}

bool key_down(const uint8 states[16], int32 key) {
    return (states[key >> 3] & (0x80 >> (key & 7))) != 0;
}

int32 put_utf8(uint32 character, char* text) {
    if (character == 0 || character > 0x10ffff || (character >= 0xd800 && character <= 0xdfff))
        return 0;
    if (character < 0x80) {
        text[0] = (char)character;
        text[1] = '\0';
        return 1;
    }
    if (character < 0x800) {
        text[0] = (char)(0xc0 | (character >> 6));
        text[1] = (char)(0x80 | (character & 0x3f));
        text[2] = '\0';
        return 2;
    }
    if (character < 0x10000) {
        text[0] = (char)(0xe0 | (character >> 12));
        text[1] = (char)(0x80 | ((character >> 6) & 0x3f));
        text[2] = (char)(0x80 | (character & 0x3f));
        text[3] = '\0';
        return 3;
    }
    text[0] = (char)(0xf0 | (character >> 18));
    text[1] = (char)(0x80 | ((character >> 12) & 0x3f));
    text[2] = (char)(0x80 | ((character >> 6) & 0x3f));
    text[3] = (char)(0x80 | (character & 0x3f));
    text[4] = '\0';
    return 4;
}

} // namespace

int32 X11Keyboard::BeKeyFor(uint32 xKeycode) {
    if (xKeycode > 255)
        return 0;
    return key_table().beKeys[xKeycode];
}

int32 X11Keyboard::SpecialByteFor(unsigned long keysym) {
    switch (keysym) {
    case XK_BackSpace:
        return B_BACKSPACE;
    case XK_Tab:
    case XK_ISO_Left_Tab:
    case XK_KP_Tab:
        return B_TAB;
    case XK_Return:
    case XK_KP_Enter:
        return B_ENTER;
    case XK_Escape:
        return B_ESCAPE;
    case XK_Left:
    case XK_KP_Left:
        return B_LEFT_ARROW;
    case XK_Right:
    case XK_KP_Right:
        return B_RIGHT_ARROW;
    case XK_Up:
    case XK_KP_Up:
        return B_UP_ARROW;
    case XK_Down:
    case XK_KP_Down:
        return B_DOWN_ARROW;
    case XK_Insert:
    case XK_KP_Insert:
        return B_INSERT;
    case XK_Delete:
    case XK_KP_Delete:
        return B_DELETE;
    case XK_Home:
    case XK_KP_Home:
        return B_HOME;
    case XK_End:
    case XK_KP_End:
        return B_END;
    case XK_Page_Up:
    case XK_KP_Page_Up:
        return B_PAGE_UP;
    case XK_Page_Down:
    case XK_KP_Page_Down:
        return B_PAGE_DOWN;
    case XK_Print:
    case XK_Scroll_Lock:
    case XK_Pause:
        return B_FUNCTION_KEY;
    default:
        break;
    }
    if (keysym >= XK_F1 && keysym <= XK_F12)
        return B_FUNCTION_KEY;
    return -1;
}

int32 X11Keyboard::KeysymToUTF8(unsigned long keysym, char* text) {
    text[0] = '\0';
    // Latin-1 keysyms are their own code points; Unicode ones carry 0x01000000.
    if ((keysym >= 0x20 && keysym <= 0x7e) || (keysym >= 0xa0 && keysym <= 0xff))
        return put_utf8((uint32)keysym, text);
    if ((keysym & 0xff000000) == 0x01000000)
        return put_utf8((uint32)(keysym & 0x00ffffff), text);
    if (keysym >= XK_KP_0 && keysym <= XK_KP_9)
        return put_utf8((uint32)('0' + (keysym - XK_KP_0)), text);
    switch (keysym) {
    case XK_KP_Space:
        return put_utf8(' ', text);
    case XK_KP_Multiply:
        return put_utf8('*', text);
    case XK_KP_Add:
        return put_utf8('+', text);
    case XK_KP_Subtract:
        return put_utf8('-', text);
    case XK_KP_Decimal:
        return put_utf8('.', text);
    case XK_KP_Divide:
        return put_utf8('/', text);
    case XK_KP_Equal:
        return put_utf8('=', text);
    case XK_EuroSign:
        return put_utf8(0x20ac, text);
    default:
        return 0;
    }
}

void X11Keyboard::BeStatesFromKeymap(const char xKeys[32], uint8 states[16]) {
    memset(states, 0, 16);
    for (uint32 xKeycode = 0; xKeycode < 256; xKeycode++) {
        if ((((uint8)xKeys[xKeycode >> 3]) & (1 << (xKeycode & 7))) == 0)
            continue;
        int32 key = BeKeyFor(xKeycode);
        if (key > 0 && key < 128)
            states[key >> 3] |= 0x80 >> (key & 7);
    }
}

uint32 X11Keyboard::ModifiersFromStates(const uint8 states[16]) {
    struct SideKey {
        int32 key;
        uint32 sideBit;
        uint32 genericBit;
    };
    static const SideKey kSideKeys[] = {
        {0x4b, B_LEFT_SHIFT_KEY, B_SHIFT_KEY},
        {0x56, B_RIGHT_SHIFT_KEY, B_SHIFT_KEY},
        {0x5c, B_LEFT_CONTROL_KEY, B_CONTROL_KEY},
        {0x60, B_RIGHT_CONTROL_KEY, B_CONTROL_KEY},
        {0x5d, B_LEFT_COMMAND_KEY, B_COMMAND_KEY},
        {0x5f, B_RIGHT_COMMAND_KEY, B_COMMAND_KEY},
        {0x66, B_LEFT_OPTION_KEY, B_OPTION_KEY},
        {0x67, B_RIGHT_OPTION_KEY, B_OPTION_KEY},
        {0x68, B_MENU_KEY, B_MENU_KEY},
    };
    uint32 modifiers = 0;
    for (const SideKey& sideKey : kSideKeys) {
        if (key_down(states, sideKey.key))
            modifiers |= sideKey.sideBit | sideKey.genericBit;
    }
    return modifiers;
}

} // namespace BPrivate
