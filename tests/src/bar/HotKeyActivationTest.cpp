// The recorded hot key at work: the bar's chores thread compares the whole
// key-state bitmap with the record and activates the bar on an exact match.
#include "BarWindowTestSupport.h"

#include <InterfaceDefs.h>

#include <chrono>
#include <vector>

using namespace bar_window_testing;
using testing_support::wait_until;

namespace {

const int32 kXKey = 0x4d;
const int32 kLeftCommandKey = 0x5d;
const int32 kLeftOptionKey = 0x66;

class HotKeyActivationTest : public BarWindowTest {
protected:
    // A bar whose application read Command + Option + x from the settings file,
    // started and then deactivated.
    void Start() {
        WriteSettings();
        std::vector<uint8> bits(kHotKeyLength, 0);
        for (int32 key : {kLeftCommandKey, kLeftOptionKey, kXKey})
            bits[key / 8] |= (uint8)(0x80 >> (key % 8));
        BNode node;
        ASSERT_EQ(get_settings_node(&node), B_OK);
        ASSERT_EQ(node.WriteAttr("hotKey", B_UINT8_TYPE, 0, bits.data(), bits.size()),
                  (ssize_t)bits.size());
        StartBar();
        ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
        ActivateBar(false);
    }

    void TearDown() override {
        HeadlessTestApi::SetModifiers(0);
        BarWindowTest::TearDown();
    }

    bool IsActive() {
        return Locked<bool>([&] { return fBar->IsActive(); });
    }
};

} // namespace

TEST_F(HotKeyActivationTest, HoldingTheRecordedKeysActivatesTheBar) {
    Start();
    ASSERT_EQ(HeadlessTestApi::SetModifiers(B_COMMAND_KEY | B_OPTION_KEY), B_OK);
    ASSERT_EQ(HeadlessTestApi::PressKey(kXKey, "x"), B_OK);
    EXPECT_TRUE(wait_until([&] { return IsActive(); }));
    ASSERT_EQ(HeadlessTestApi::ReleaseKey(kXKey, "x"), B_OK);
}

TEST_F(HotKeyActivationTest, HoldingTheRecordedKeysPlusShiftDoesNotActivateTheBar) {
    Start();
    ASSERT_EQ(HeadlessTestApi::SetModifiers(B_COMMAND_KEY | B_OPTION_KEY | B_SHIFT_KEY), B_OK);
    ASSERT_EQ(HeadlessTestApi::PressKey(kXKey, "x"), B_OK);
    // Some ten rounds of the chores thread pass without a match.
    EXPECT_FALSE(wait_until([&] { return IsActive(); }, std::chrono::milliseconds(300)));
    // Letting go of Shift leaves exactly the recorded keys.
    ASSERT_EQ(HeadlessTestApi::SetModifiers(B_COMMAND_KEY | B_OPTION_KEY), B_OK);
    EXPECT_TRUE(wait_until([&] { return IsActive(); }));
    ASSERT_EQ(HeadlessTestApi::ReleaseKey(kXKey, "x"), B_OK);
}

TEST_F(HotKeyActivationTest, HoldingOnlyPartOfTheRecordedKeysDoesNotActivateTheBar) {
    Start();
    ASSERT_EQ(HeadlessTestApi::SetModifiers(B_COMMAND_KEY | B_OPTION_KEY), B_OK);
    EXPECT_FALSE(wait_until([&] { return IsActive(); }, std::chrono::milliseconds(300)));
    ASSERT_EQ(HeadlessTestApi::PressKey(kXKey, "x"), B_OK);
    EXPECT_TRUE(wait_until([&] { return IsActive(); }));
    ASSERT_EQ(HeadlessTestApi::ReleaseKey(kXKey, "x"), B_OK);
}
