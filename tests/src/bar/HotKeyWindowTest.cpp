// Recording the global hot key: the "Press Hot Key" window, its key view and
// key filter, the record it stores in the settings file, and the application's
// "-hotkey" start-up that waits for it.
#include "HotKeyWindow.h"
#include "Glimrow.h"
#include "Globals.h"
#include "KeyView.h"
#include "Settings.h"

#include "server/headless/HeadlessTestApi.h"

#include <Application.h>
#include <Autolock.h>
#include <Button.h>
#include <Message.h>
#include <Node.h>
#include <Screen.h>
#include <StringView.h>
#include <TypeConstants.h>

#include <gtest/gtest.h>

#include "TestHome.h"
#include "Watchdog.h"

#include <math.h>
#include <stdlib.h>
#include <string.h>
#include <string>
#include <thread>
#include <vector>

using BPrivate::HeadlessTestApi;
using testing_support::wait_until;

namespace {

const int32 kXKey = 0x4d;
const int32 kQKey = 0x27;
const int32 kLeftCommandKey = 0x5d;
const int32 kLeftOptionKey = 0x66;

std::vector<uint8> key_bits(std::initializer_list<int32> keys) {
    std::vector<uint8> bits(kHotKeyLength, 0);
    for (int32 key : keys)
        bits[key / 8] |= (uint8)(0x80 >> (key % 8));
    return bits;
}

class HotKeyFixture : public testing::Test {
protected:
    void SetUp() override {
        setenv("GLIMROW_DISPLAY", "headless", 1);
        ASSERT_EQ(HeadlessTestApi::Use(), B_OK);
        ASSERT_EQ(HeadlessTestApi::Reset(), B_OK);
        char text[512] = "";
        ASSERT_EQ(check_settings_folders(text, sizeof(text)), B_OK) << text;
        settings record;
        ASSERT_EQ(write_settings_file(&record), B_OK);
    }

    void TearDown() override {
        if (fWindow != NULL && !hot_key_window_done(&fDone)) {
            if (fWindow->Lock())
                fWindow->Quit();
        }
        delete be_app;
        delete[] fHotKey;
    }

    void Open() {
        if (be_app == NULL)
            new BApplication("application/x-vnd.glimrow-hot-key-test");
        fWindow = new HotKeyWindow(&fHotKey, &fDone);
        fWindow->Show();
        ASSERT_TRUE(wait_until([&] {
            BAutolock lock(fWindow);
            return fWindow->IsActive();
        }));
        ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    }

    std::string KeyText() {
        BAutolock lock(fWindow);
        return fWindow->Key()->Text();
    }

    // Holds the modifiers while the key goes down and up.
    void PressCombination(uint32 modifiers, int32 key, const char* bytes) {
        ASSERT_EQ(HeadlessTestApi::SetModifiers(modifiers), B_OK);
        ASSERT_EQ(HeadlessTestApi::PressKey(key, bytes), B_OK);
        ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
        ASSERT_EQ(HeadlessTestApi::ReleaseKey(key, bytes), B_OK);
        ASSERT_EQ(HeadlessTestApi::SetModifiers(0), B_OK);
        ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    }

    void ClickButton(const char* name) {
        BPoint where;
        {
            BAutolock lock(fWindow);
            BView* button = fWindow->FindView(name);
            ASSERT_NE(button, nullptr) << name;
            BRect frame = button->Frame();
            where = button->Parent()->ConvertToScreen(
                BPoint((frame.left + frame.right) / 2, (frame.top + frame.bottom) / 2));
        }
        ASSERT_EQ(HeadlessTestApi::Click(where), B_OK);
        ASSERT_TRUE(wait_until([&] { return hot_key_window_done(&fDone); }));
        fWindow = NULL;
    }

    static void StoreHotKey(const std::vector<uint8>& bits) {
        BNode node;
        ASSERT_EQ(get_settings_node(&node), B_OK);
        ASSERT_EQ(node.WriteAttr("hotKey", B_UINT8_TYPE, 0, bits.data(), bits.size()),
                  (ssize_t)bits.size());
    }

    // The stored record; empty when there is none.
    static std::vector<uint8> StoredHotKey() {
        BNode node;
        EXPECT_EQ(get_settings_node(&node), B_OK);
        std::vector<uint8> bits(64, 0);
        ssize_t size = node.ReadAttr("hotKey", B_UINT8_TYPE, 0, bits.data(), bits.size());
        bits.resize(size > 0 ? (size_t)size : 0);
        return bits;
    }

    testing_support::TestHome fHome;
    HotKeyWindow* fWindow = NULL;
    uint8* fHotKey = NULL;
    bool fDone = false;
};

} // namespace

TEST_F(HotKeyFixture, WindowIsCentredAndAThirdOfTheFreeHeightDown) {
    Open();
    BAutolock lock(fWindow);
    BRect screen = BScreen(fWindow).Frame();
    BRect frame = fWindow->Frame();
    EXPECT_EQ(frame.Width(), 240);
    EXPECT_EQ(frame.Height(), 78);
    // Windows stand on whole pixels.
    EXPECT_EQ(frame.left, roundf((screen.Width() - 240) / 2));
    EXPECT_EQ(frame.top, roundf((screen.Height() - 78) / 3));
    EXPECT_STREQ(fWindow->Title(), "Press Hot Key");
    EXPECT_EQ(fWindow->Look(), B_MODAL_WINDOW_LOOK);
    EXPECT_EQ(fWindow->Feel(), B_MODAL_APP_WINDOW_FEEL);
    EXPECT_EQ(fWindow->Flags(), 0x4062u);
}

TEST_F(HotKeyFixture, WindowHoldsTheMessageTheKeyViewAndTwoButtons) {
    Open();
    BAutolock lock(fWindow);
    BStringView* message = dynamic_cast<BStringView*>(fWindow->FindView("msg_view"));
    ASSERT_NE(message, nullptr);
    EXPECT_STREQ(message->Text(), "Press Hot Key !!");
    EXPECT_NE(dynamic_cast<KeyView*>(fWindow->FindView("key_view")), nullptr);
    BButton* unset = dynamic_cast<BButton*>(fWindow->FindView("unset"));
    BButton* set = dynamic_cast<BButton*>(fWindow->FindView("set"));
    ASSERT_NE(unset, nullptr);
    ASSERT_NE(set, nullptr);
    EXPECT_STREQ(unset->Label(), "Unset");
    EXPECT_STREQ(set->Label(), "Set");
    EXPECT_EQ(set->Frame().left - unset->Frame().left, 65);
    EXPECT_EQ(set->Frame().Width(), 60);
    EXPECT_EQ(set->Message()->what, (uint32)B_QUIT_REQUESTED);
    EXPECT_EQ(unset->Message()->what, (uint32)B_QUIT_REQUESTED);
}

TEST_F(HotKeyFixture, KeyViewShowsDontUseEvenWithAStoredHotKey) {
    StoreHotKey(key_bits({kLeftCommandKey, kXKey}));
    fHotKey = new uint8[kHotKeyLength];
    memcpy(fHotKey, key_bits({kLeftCommandKey, kXKey}).data(), kHotKeyLength);
    Open();
    EXPECT_EQ(KeyText(), "Don't Use");
}

TEST_F(HotKeyFixture, SetAtOnceClearsTheStoredHotKey) {
    StoreHotKey(key_bits({kLeftCommandKey, kXKey}));
    fHotKey = new uint8[kHotKeyLength];
    memcpy(fHotKey, key_bits({kLeftCommandKey, kXKey}).data(), kHotKeyLength);
    Open();
    testing::internal::CaptureStdout();
    ClickButton("set");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Your Hot Key was Cleared...\n");
    EXPECT_EQ(fHotKey, nullptr);
    EXPECT_TRUE(StoredHotKey().empty());
}

TEST_F(HotKeyFixture, CommandOptionXIsDescribedInModifierOrder) {
    Open();
    PressCombination(B_COMMAND_KEY | B_OPTION_KEY, kXKey, "x");
    EXPECT_EQ(KeyText(), "Command + Option + 'x'");
}

TEST_F(HotKeyFixture, AllFourModifiersAreNamedShiftCommandControlOption) {
    Open();
    PressCombination(B_OPTION_KEY | B_CONTROL_KEY | B_COMMAND_KEY | B_SHIFT_KEY, kXKey, "X");
    EXPECT_EQ(KeyText(), "Shift + Command + Control + Option + 'X'");
}

TEST_F(HotKeyFixture, KeyWithoutModifiersIsJustTheQuotedKey) {
    Open();
    PressCombination(0, kXKey, "x");
    EXPECT_EQ(KeyText(), "'x'");
}

TEST_F(HotKeyFixture, RecordingCommandOptionXThenSetStoresExactlyThoseKeys) {
    Open();
    PressCombination(B_COMMAND_KEY | B_OPTION_KEY, kXKey, "x");
    testing::internal::CaptureStdout();
    ClickButton("set");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Your Hot Key was Set...\n");
    std::vector<uint8> expected = key_bits({kLeftCommandKey, kLeftOptionKey, kXKey});
    EXPECT_EQ(StoredHotKey(), expected);
    ASSERT_NE(fHotKey, nullptr);
    EXPECT_EQ(std::vector<uint8>(fHotKey, fHotKey + kHotKeyLength), expected);
}

TEST_F(HotKeyFixture, TheLastCombinationPressedIsTheOneKept) {
    Open();
    PressCombination(B_COMMAND_KEY, kQKey, "q");
    PressCombination(B_OPTION_KEY, kXKey, "x");
    EXPECT_EQ(KeyText(), "Option + 'x'");
    ClickButton("set");
    EXPECT_EQ(StoredHotKey(), key_bits({kLeftOptionKey, kXKey}));
}

TEST_F(HotKeyFixture, CommandCombinationsReachTheKeyViewInsteadOfShortcuts) {
    Open();
    // Command-Q would otherwise ask the application to quit.
    PressCombination(B_COMMAND_KEY, kQKey, "q");
    EXPECT_EQ(KeyText(), "Command + 'q'");
    BAutolock lock(fWindow);
    EXPECT_FALSE(hot_key_window_done(&fDone));
}

TEST_F(HotKeyFixture, UnsetClearsTheHotKeyEvenAfterAKeyWasPressed) {
    StoreHotKey(key_bits({kXKey}));
    Open();
    PressCombination(B_COMMAND_KEY, kXKey, "x");
    ASSERT_NE(fHotKey, nullptr);
    testing::internal::CaptureStdout();
    ClickButton("unset");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Your Hot Key was Cleared...\n");
    EXPECT_EQ(fHotKey, nullptr);
    EXPECT_TRUE(StoredHotKey().empty());
}

TEST_F(HotKeyFixture, KeyMessageWithoutStatesBeepsAndChangesNothing) {
    Open();
    uint32 beeps = HeadlessTestApi::CountBeeps();
    BMessage key(B_KEY_DOWN);
    key.AddInt32("modifiers", B_COMMAND_KEY);
    key.AddString("bytes", "x");
    key.AddInt8("byte", 'x');
    ASSERT_EQ(fWindow->PostMessage(&key, fWindow->Key()), B_OK);
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_EQ(HeadlessTestApi::CountBeeps(), beeps + 1);
    EXPECT_EQ(KeyText(), "Don't Use");
    EXPECT_EQ(fHotKey, nullptr);
}

TEST_F(HotKeyFixture, KeyMessageWithShortStatesBeepsAndChangesNothing) {
    Open();
    uint32 beeps = HeadlessTestApi::CountBeeps();
    BMessage key(B_KEY_DOWN);
    key.AddInt32("modifiers", 0);
    uint8 states[4] = {1, 2, 3, 4};
    key.AddData("states", B_UINT8_TYPE, states, sizeof(states));
    key.AddString("bytes", "x");
    ASSERT_EQ(fWindow->PostMessage(&key, fWindow->Key()), B_OK);
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_EQ(HeadlessTestApi::CountBeeps(), beeps + 1);
    EXPECT_EQ(KeyText(), "Don't Use");
    EXPECT_EQ(fHotKey, nullptr);
}

TEST_F(HotKeyFixture, KeyFilterMovesTheModifiersAside) {
    BMessage key(B_KEY_DOWN);
    key.AddInt32("modifiers", B_COMMAND_KEY | B_LEFT_COMMAND_KEY);
    BHandler* target = NULL;
    EXPECT_EQ(key_filter(&key, &target, NULL), B_DISPATCH_MESSAGE);
    EXPECT_EQ(key.GetInt32("modifiers", -1), 0);
    EXPECT_EQ(key.GetInt32("modifiers2", -1), (int32)(B_COMMAND_KEY | B_LEFT_COMMAND_KEY));
}

TEST_F(HotKeyFixture, KeyFilterTakesMissingModifiersAsNone) {
    BMessage key(B_KEY_DOWN);
    BHandler* target = NULL;
    EXPECT_EQ(key_filter(&key, &target, NULL), B_DISPATCH_MESSAGE);
    EXPECT_EQ(key.GetInt32("modifiers", -1), 0);
    EXPECT_EQ(key.GetInt32("modifiers2", -1), 0);
}

TEST_F(HotKeyFixture, DestructorSetsTheDoneFlag) {
    Open();
    EXPECT_FALSE(hot_key_window_done(&fDone));
    ASSERT_TRUE(fWindow->Lock());
    fWindow->Quit();
    fWindow = NULL;
    EXPECT_TRUE(wait_until([&] { return hot_key_window_done(&fDone); }));
}

// #pragma mark - The application's "-hotkey" start-up

namespace {

class HotKeyStartTest : public HotKeyFixture {
protected:
    void TearDown() override {
        if (fDriver.joinable())
            fDriver.join();
        if (fApplication != NULL) {
            fApplication->QuitRequested();
            delete fApplication;
        }
        gr_slave = NULL;
    }

    // Drives the hot-key window from another thread while the constructor
    // waits for it: presses the combination (key 0: none), then the named
    // button. What goes wrong is kept in fDriverError.
    void Drive(uint32 modifiers, int32 key, const char* bytes, const char* button) {
        fDriver = std::thread([=, this] {
            fDriverError = _Drive(modifiers, key, bytes, button);
            // Whatever went wrong, the waiting constructor must get its window back.
            if (!fDriverError.empty() && fWindowFound != NULL)
                fWindowFound->PostMessage(B_QUIT_REQUESTED);
        });
    }

    // The application is not running yet and its constructor holds its lock,
    // so this thread waits on the window's own state, never for idleness.
    std::string _Drive(uint32 modifiers, int32 key, const char* bytes, const char* button) {
        // Shown means constructed: only then is the window looked at.
        BPrivate::WindowListing listing;
        if (!wait_until([&] {
                return HeadlessTestApi::FindWindow("Press Hot Key", &listing) && !listing.hidden;
            }))
            return "no hot-key window on the screen";
        BWindow* window = NULL;
        bool found = wait_until([&] {
            for (int32 index = 0; be_app != NULL && (window = be_app->WindowAt(index)); index++) {
                if (strcmp(window->Title(), "Press Hot Key") == 0)
                    return true;
            }
            return false;
        });
        if (!found)
            return "no hot-key window";
        fWindowFound = window;
        HotKeyWindow* hotKeyWindow = dynamic_cast<HotKeyWindow*>(window);
        if (hotKeyWindow == NULL)
            return "not a hot-key window";
        if (!wait_until([&] {
                BAutolock lock(window);
                return window->IsActive();
            }))
            return "the hot-key window never became active";
        if (key != 0) {
            HeadlessTestApi::SetModifiers(modifiers);
            HeadlessTestApi::PressKey(key, bytes);
            HeadlessTestApi::ReleaseKey(key, bytes);
            HeadlessTestApi::SetModifiers(0);
            if (!wait_until([&] {
                    BAutolock lock(window);
                    return strcmp(hotKeyWindow->Key()->Text(), kNoHotKeyText) != 0;
                }))
                return "the key never reached the key view";
        }
        if (!window->Lock())
            return "the hot-key window went away";
        BView* view = window->FindView(button);
        BRect frame = view->Frame();
        BPoint where = view->Parent()->ConvertToScreen(
            BPoint((frame.left + frame.right) / 2, (frame.top + frame.bottom) / 2));
        window->Unlock();
        HeadlessTestApi::Click(where);
        return "";
    }

    Glimrow* fApplication = NULL;
    std::thread fDriver;
    std::string fDriverError;
    BWindow* fWindowFound = NULL;
};

} // namespace

TEST_F(HotKeyStartTest, HotKeyOptionWaitsForTheWindowAndKeepsTheRecordedKeys) {
    Drive(B_COMMAND_KEY | B_OPTION_KEY, kXKey, "x", "set");
    fApplication = new Glimrow(false, true);
    fDriver.join();
    ASSERT_EQ(fDriverError, "");
    std::vector<uint8> expected = key_bits({kLeftCommandKey, kLeftOptionKey, kXKey});
    ASSERT_NE(fApplication->HotKey(), nullptr);
    EXPECT_EQ(std::vector<uint8>(fApplication->HotKey(), fApplication->HotKey() + kHotKeyLength),
              expected);
    EXPECT_EQ(StoredHotKey(), expected);
}

TEST_F(HotKeyStartTest, HotKeyOptionWithSetAtOnceClearsTheStoredHotKey) {
    StoreHotKey(key_bits({kXKey}));
    Drive(0, 0, NULL, "set");
    fApplication = new Glimrow(false, true);
    fDriver.join();
    ASSERT_EQ(fDriverError, "");
    EXPECT_EQ(fApplication->HotKey(), nullptr);
    EXPECT_TRUE(StoredHotKey().empty());
}
