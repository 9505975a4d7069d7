// The keyboard tables of the X11 backend, without an X server.
// Before the X headers, whose macros (None, Bool) would clash with its names.
#include <gtest/gtest.h>

#include "server/x11/X11Keyboard.h"

#include <InterfaceDefs.h>

#include <X11/keysym.h>

#include <string.h>

using BPrivate::X11Keyboard;

TEST(X11KeyboardTest, EvdevKeycodesMapToBeKeyCodes) {
    EXPECT_EQ(0x01, X11Keyboard::BeKeyFor(9));   // Escape
    EXPECT_EQ(0x3c, X11Keyboard::BeKeyFor(38));  // A
    EXPECT_EQ(0x5d, X11Keyboard::BeKeyFor(64));  // left Alt
    EXPECT_EQ(0x5e, X11Keyboard::BeKeyFor(65));  // space
    EXPECT_EQ(0x66, X11Keyboard::BeKeyFor(133)); // left Super
    EXPECT_EQ(0x69, X11Keyboard::BeKeyFor(94));  // the ISO key beside left Shift
    EXPECT_EQ(0x0d, X11Keyboard::BeKeyFor(96));  // F12
}

TEST(X11KeyboardTest, KeycodesWithoutBeKeyMapToZero) {
    EXPECT_EQ(0, X11Keyboard::BeKeyFor(0));
    EXPECT_EQ(0, X11Keyboard::BeKeyFor(255));
    EXPECT_EQ(0, X11Keyboard::BeKeyFor(100000));
}

TEST(X11KeyboardTest, KeymapBitsBecomeBeKeyStatesMostSignificantFirst) {
    char keys[32];
    memset(keys, 0, sizeof(keys));
    keys[9 >> 3] |= 1 << (9 & 7);   // Escape
    keys[50 >> 3] |= 1 << (50 & 7); // left Shift
    uint8 states[16];
    X11Keyboard::BeStatesFromKeymap(keys, states);
    EXPECT_EQ(0x40, states[0]);
    EXPECT_EQ(0x10, states[9]);
    int setBits = 0;
    for (uint8 byte : states)
        setBits += __builtin_popcount(byte);
    EXPECT_EQ(2, setBits);
}

TEST(X11KeyboardTest, HeldModifierKeysGiveBothSideAndGenericBits) {
    uint8 states[16];
    memset(states, 0, sizeof(states));
    states[0x5d >> 3] |= 0x80 >> (0x5d & 7); // left Alt: Command
    states[0x60 >> 3] |= 0x80 >> (0x60 & 7); // right Ctrl
    states[0x67 >> 3] |= 0x80 >> (0x67 & 7); // right Super: Option
    uint32 modifiers = X11Keyboard::ModifiersFromStates(states);
    EXPECT_EQ((uint32)(B_COMMAND_KEY | B_LEFT_COMMAND_KEY | B_CONTROL_KEY | B_RIGHT_CONTROL_KEY |
                       B_OPTION_KEY | B_RIGHT_OPTION_KEY),
              modifiers);
}

TEST(X11KeyboardTest, NavigationKeysGiveBeSpecialBytes) {
    EXPECT_EQ(B_ENTER, X11Keyboard::SpecialByteFor(XK_Return));
    EXPECT_EQ(B_ENTER, X11Keyboard::SpecialByteFor(XK_KP_Enter));
    EXPECT_EQ(B_LEFT_ARROW, X11Keyboard::SpecialByteFor(XK_Left));
    EXPECT_EQ(B_DELETE, X11Keyboard::SpecialByteFor(XK_Delete));
    EXPECT_EQ(B_BACKSPACE, X11Keyboard::SpecialByteFor(XK_BackSpace));
    EXPECT_EQ(B_FUNCTION_KEY, X11Keyboard::SpecialByteFor(XK_F5));
    EXPECT_EQ(B_TAB, X11Keyboard::SpecialByteFor(XK_ISO_Left_Tab));
    EXPECT_EQ(-1, X11Keyboard::SpecialByteFor(XK_a));
}

TEST(X11KeyboardTest, CharacterKeysymsBecomeUTF8) {
    char text[8];
    EXPECT_EQ(1, X11Keyboard::KeysymToUTF8(XK_a, text));
    EXPECT_STREQ("a", text);
    EXPECT_EQ(2, X11Keyboard::KeysymToUTF8(XK_eacute, text));
    EXPECT_STREQ("\xc3\xa9", text);
    EXPECT_EQ(3, X11Keyboard::KeysymToUTF8(XK_EuroSign, text));
    EXPECT_STREQ("\xe2\x82\xac", text);
    EXPECT_EQ(3, X11Keyboard::KeysymToUTF8(0x010020ac, text));
    EXPECT_STREQ("\xe2\x82\xac", text);
    EXPECT_EQ(1, X11Keyboard::KeysymToUTF8(XK_KP_7, text));
    EXPECT_STREQ("7", text);
}

TEST(X11KeyboardTest, KeysymsWithoutCharacterGiveNoBytes) {
    char text[8];
    EXPECT_EQ(0, X11Keyboard::KeysymToUTF8(XK_Shift_L, text));
    EXPECT_STREQ("", text);
    EXPECT_EQ(0, X11Keyboard::KeysymToUTF8(0x01d800ff, text));
    EXPECT_EQ(0, X11Keyboard::KeysymToUTF8(0x0100d800, text));
}
