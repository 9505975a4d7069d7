// The characters the headless keyboard gives for Be key codes.
#include "server/headless/HeadlessKeymap.h"

#include <InterfaceDefs.h>

#include <gtest/gtest.h>

using BPrivate::HeadlessKeymap;

namespace {

std::string bytes_for(int32 key, uint32 modifiers, int32* rawChar = NULL) {
    char bytes[8];
    int32 raw;
    if (!HeadlessKeymap::Map(key, modifiers, bytes, &raw))
        return "<none>";
    if (rawChar != NULL)
        *rawChar = raw;
    return bytes;
}

} // namespace

TEST(HeadlessKeymapTest, LettersFollowShiftAndCapsLock) {
    EXPECT_EQ("q", bytes_for(0x27, 0));
    EXPECT_EQ("Q", bytes_for(0x27, B_SHIFT_KEY));
    EXPECT_EQ("Q", bytes_for(0x27, B_CAPS_LOCK));
    EXPECT_EQ("q", bytes_for(0x27, B_CAPS_LOCK | B_SHIFT_KEY));
}

TEST(HeadlessKeymapTest, ControlGivesControlCharacters) {
    EXPECT_EQ("\x01", bytes_for(0x3c, B_CONTROL_KEY));
}

TEST(HeadlessKeymapTest, CommandLeavesTheCharacterAlone) {
    EXPECT_EQ("w", bytes_for(0x28, B_COMMAND_KEY));
}

TEST(HeadlessKeymapTest, DigitsAndPunctuationShift) {
    EXPECT_EQ("1", bytes_for(0x12, 0));
    EXPECT_EQ("!", bytes_for(0x12, B_SHIFT_KEY));
    EXPECT_EQ("/", bytes_for(0x55, 0));
    EXPECT_EQ("?", bytes_for(0x55, B_SHIFT_KEY));
}

TEST(HeadlessKeymapTest, SpecialKeysGiveTheirBeBytes) {
    EXPECT_EQ(std::string(1, B_ESCAPE), bytes_for(0x01, 0));
    EXPECT_EQ(std::string(1, B_FUNCTION_KEY), bytes_for(B_F5_KEY, 0));
    EXPECT_EQ(std::string(1, B_ENTER), bytes_for(0x47, 0));
    EXPECT_EQ(std::string(1, B_TAB), bytes_for(0x26, B_SHIFT_KEY));
    EXPECT_EQ(std::string(1, B_UP_ARROW), bytes_for(0x57, 0));
    EXPECT_EQ(std::string(1, B_LEFT_ARROW), bytes_for(0x61, 0));
    EXPECT_EQ(std::string(1, B_DELETE), bytes_for(0x34, 0));
    EXPECT_EQ(" ", bytes_for(0x5e, 0));
}

TEST(HeadlessKeymapTest, KeypadGivesDigitsOnlyWithNumLock) {
    EXPECT_EQ(std::string(1, B_UP_ARROW), bytes_for(0x38, 0));
    EXPECT_EQ("8", bytes_for(0x38, B_NUM_LOCK));
}

TEST(HeadlessKeymapTest, RawCharIsTheUnmodifiedCharacter) {
    int32 raw = 0;
    EXPECT_EQ("A", bytes_for(0x3c, B_SHIFT_KEY, &raw));
    EXPECT_EQ('a', raw);
}

TEST(HeadlessKeymapTest, ModifierAndUnknownKeysGiveNothing) {
    EXPECT_EQ("<none>", bytes_for(0x4b, 0));
    EXPECT_EQ("<none>", bytes_for(0x5d, 0));
    EXPECT_EQ("<none>", bytes_for(0x7a, 0));
    EXPECT_EQ("<none>", bytes_for(-3, 0));
    EXPECT_EQ("<none>", bytes_for(100000, 0));
}
