// The display server on its own: the window model, the rules of stacking and
// activation, the messages it posts (checked field by field on a plain looper
// standing in for a window), presenting and capturing, and the backend choice.
#include "server/DisplayServer.h"
#include "server/headless/HeadlessServer.h"
#include "server/headless/HeadlessTestApi.h"

#include "interface/WindowPrivate.h"

#include <Looper.h>
#include <Message.h>
#include <Messenger.h>
#include <View.h>
#include <Window.h>

#include <gtest/gtest.h>

#include <condition_variable>
#include <fstream>
#include <mutex>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>
#include <vector>

using BPrivate::Capture;
using BPrivate::DisplayServer;
using BPrivate::HeadlessServer;
using BPrivate::HeadlessTestApi;
using BPrivate::WindowListing;

namespace {

// Keeps copies of what it receives, for the test to wait on.
class RecordingLooper : public BLooper {
public:
    RecordingLooper() : BLooper("recorder") {}

    void MessageReceived(BMessage* message) override {
        std::lock_guard<std::mutex> lock(fLock);
        fMessages.push_back(*message);
        fCondition.notify_all();
    }

    // The first message of this kind, waiting up to ten seconds for it.
    bool WaitFor(uint32 what, BMessage* message, int32 skip = 0) {
        std::unique_lock<std::mutex> lock(fLock);
        bool found = fCondition.wait_for(lock, std::chrono::seconds(10), [&] {
            int32 seen = 0;
            for (const BMessage& received : fMessages) {
                if (received.what == what && seen++ == skip) {
                    *message = received;
                    return true;
                }
            }
            return false;
        });
        return found;
    }

    std::vector<uint32> Whats() {
        std::lock_guard<std::mutex> lock(fLock);
        std::vector<uint32> whats;
        for (const BMessage& message : fMessages)
            whats.push_back(message.what);
        return whats;
    }

private:
    std::mutex fLock;
    std::condition_variable fCondition;
    std::vector<BMessage> fMessages;
};

class DisplayServerTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(B_OK, HeadlessTestApi::Use());
        fServer = static_cast<HeadlessServer*>(DisplayServer::Default());
        ASSERT_NE(nullptr, fServer);
        ASSERT_EQ(B_OK, fServer->Reset());
        fLooper = new RecordingLooper;
        fLooper->Run();
    }

    void TearDown() override {
        for (int32 id : fWindows)
            fServer->DestroyWindow(id);
        fServer->Sync();
        fLooper->Lock();
        fLooper->Quit();
    }

    int32 MakeWindow(BRect frame, const char* title, window_feel feel = B_NORMAL_WINDOW_FEEL,
                     uint32 flags = 0, uint32 workspaces = B_CURRENT_WORKSPACE) {
        int32 id = fServer->CreateWindow(BMessenger(fLooper), frame, title, B_TITLED_WINDOW_LOOK,
                                         feel, flags, workspaces);
        fWindows.push_back(id);
        return id;
    }

    WindowListing Listing(int32 id) {
        for (const WindowListing& listing : fServer->ListWindows()) {
            if (listing.id == id)
                return listing;
        }
        ADD_FAILURE() << "no window " << id;
        return WindowListing{};
    }

    std::vector<std::string> Titles() {
        std::vector<std::string> titles;
        for (const WindowListing& listing : fServer->ListWindows())
            titles.push_back(listing.title);
        return titles;
    }

    HeadlessServer* fServer = NULL;
    RecordingLooper* fLooper = NULL;
    std::vector<int32> fWindows;
};

} // namespace

TEST_F(DisplayServerTest, NewWindowIsHiddenInTheCurrentWorkspace) {
    int32 id = MakeWindow(BRect(0, 0, 9, 9), "new");
    EXPECT_GT(id, 0);
    WindowListing listing = Listing(id);
    EXPECT_TRUE(listing.hidden);
    EXPECT_FALSE(listing.visible);
    EXPECT_EQ(1u, listing.workspaces);
    EXPECT_EQ("new", listing.title);
}

TEST_F(DisplayServerTest, ShowingRaisesAndActivates) {
    int32 first = MakeWindow(BRect(0, 0, 9, 9), "first");
    int32 second = MakeWindow(BRect(0, 0, 9, 9), "second");
    fServer->ShowWindow(second);
    fServer->ShowWindow(first);
    std::vector<std::string> expected = {"second", "first"};
    EXPECT_EQ(expected, Titles());
    EXPECT_TRUE(Listing(first).active);
    EXPECT_FALSE(Listing(second).active);
    EXPECT_TRUE(fServer->IsFrontWindow(first));

    BMessage activated;
    ASSERT_TRUE(fLooper->WaitFor(B_WINDOW_ACTIVATED, &activated, 2));
    EXPECT_TRUE(activated.GetBool("active", false));
    EXPECT_TRUE(activated.HasInt64("when"));
}

TEST_F(DisplayServerTest, AvoidFrontWindowStaysBehindTheOthers) {
    int32 normal = MakeWindow(BRect(0, 0, 9, 9), "normal");
    int32 shy = MakeWindow(BRect(0, 0, 9, 9), "shy", B_NORMAL_WINDOW_FEEL, B_AVOID_FRONT);
    fServer->ShowWindow(normal);
    fServer->ShowWindow(shy);
    fServer->ActivateWindow(shy, true);
    std::vector<std::string> expected = {"shy", "normal"};
    EXPECT_EQ(expected, Titles());
    EXPECT_TRUE(Listing(shy).active);
}

TEST_F(DisplayServerTest, MenusStandAboveModalAboveFloatingAboveNormal) {
    int32 menu = MakeWindow(BRect(0, 0, 9, 9), "menu", BPrivate::kMenuWindowFeel);
    int32 modal = MakeWindow(BRect(0, 0, 9, 9), "modal", B_MODAL_APP_WINDOW_FEEL);
    int32 floating = MakeWindow(BRect(0, 0, 9, 9), "floating", B_FLOATING_APP_WINDOW_FEEL);
    int32 normal = MakeWindow(BRect(0, 0, 9, 9), "normal");
    for (int32 id : {menu, modal, floating, normal})
        fServer->ShowWindow(id);
    std::vector<std::string> expected = {"normal", "floating", "modal", "menu"};
    EXPECT_EQ(expected, Titles());
    EXPECT_FALSE(Listing(menu).active);
}

TEST_F(DisplayServerTest, SendBehindPutsTheWindowUnderTheOther) {
    int32 first = MakeWindow(BRect(0, 0, 9, 9), "first");
    int32 second = MakeWindow(BRect(0, 0, 9, 9), "second");
    int32 third = MakeWindow(BRect(0, 0, 9, 9), "third");
    for (int32 id : {first, second, third})
        fServer->ShowWindow(id);
    fServer->SendWindowBehind(third, first);
    std::vector<std::string> expected = {"third", "first", "second"};
    EXPECT_EQ(expected, Titles());
}

TEST_F(DisplayServerTest, DestroyedWindowLeavesTheListAndTheFocus) {
    int32 first = MakeWindow(BRect(0, 0, 9, 9), "first");
    int32 second = MakeWindow(BRect(0, 0, 9, 9), "second");
    fServer->ShowWindow(first);
    fServer->ShowWindow(second);
    fServer->DestroyWindow(second);
    std::vector<std::string> expected = {"first"};
    EXPECT_EQ(expected, Titles());
    EXPECT_TRUE(Listing(first).active);
}

TEST_F(DisplayServerTest, MouseDownCarriesTheBeFields) {
    int32 id = MakeWindow(BRect(100, 50, 199, 149), "target");
    fServer->ShowWindow(id);
    fServer->InjectMouseDown(BPoint(110, 70), B_SECONDARY_MOUSE_BUTTON, 0);

    BMessage down;
    ASSERT_TRUE(fLooper->WaitFor(B_MOUSE_DOWN, &down));
    EXPECT_EQ(BPoint(10, 20), down.GetPoint("where", BPoint()));
    EXPECT_EQ(BPoint(110, 70), down.GetPoint("screen_where", BPoint()));
    EXPECT_EQ(B_SECONDARY_MOUSE_BUTTON, down.GetInt32("buttons", 0));
    EXPECT_EQ(0, down.GetInt32("modifiers", -1));
    EXPECT_EQ(1, down.GetInt32("clicks", 0));
    EXPECT_GT(down.GetInt64("when", 0), 0);

    fServer->InjectMouseUp(BPoint(110, 70), B_SECONDARY_MOUSE_BUTTON);
    BMessage up;
    ASSERT_TRUE(fLooper->WaitFor(B_MOUSE_UP, &up));
    EXPECT_EQ(0, up.GetInt32("buttons", -1));
    EXPECT_FALSE(up.HasInt32("clicks"));
}

TEST_F(DisplayServerTest, PressOnTheDesktopReachesNoWindow) {
    int32 id = MakeWindow(BRect(100, 100, 199, 199), "away");
    fServer->ShowWindow(id);
    fServer->InjectMouseDown(BPoint(5, 5), B_PRIMARY_MOUSE_BUTTON, 0);
    fServer->InjectMouseUp(BPoint(5, 5), B_PRIMARY_MOUSE_BUTTON);
    fServer->InjectMouseDown(BPoint(150, 150), B_PRIMARY_MOUSE_BUTTON, 0);
    BMessage down;
    ASSERT_TRUE(fLooper->WaitFor(B_MOUSE_DOWN, &down));
    EXPECT_EQ(BPoint(50, 50), down.GetPoint("where", BPoint()));
}

TEST_F(DisplayServerTest, KeyDownCarriesTheBeFields) {
    int32 id = MakeWindow(BRect(0, 0, 9, 9), "keys");
    fServer->ShowWindow(id);
    fServer->InjectKey(true, 0x3c, NULL);

    BMessage key;
    ASSERT_TRUE(fLooper->WaitFor(B_KEY_DOWN, &key));
    EXPECT_EQ(0x3c, key.GetInt32("key", 0));
    EXPECT_STREQ("a", key.GetString("bytes", ""));
    EXPECT_EQ('a', key.GetInt8("byte", 0));
    EXPECT_EQ('a', key.GetInt32("raw_char", 0));
    EXPECT_EQ(0, key.GetInt32("modifiers", -1));
    EXPECT_GT(key.GetInt64("when", 0), 0);
    const void* data;
    ssize_t size;
    ASSERT_EQ(B_OK, key.FindData("states", B_UINT8_TYPE, &data, &size));
    ASSERT_EQ(16, size);
    // Key 0x3c: byte 7, mask 0x08.
    EXPECT_EQ(0x08, ((const uint8*)data)[7]);
}

TEST_F(DisplayServerTest, ModifierKeyGivesUnmappedKeyAndModifiersChanged) {
    int32 id = MakeWindow(BRect(0, 0, 9, 9), "modifiers");
    fServer->ShowWindow(id);
    fServer->InjectKey(true, 0x5c, NULL);

    BMessage unmapped;
    ASSERT_TRUE(fLooper->WaitFor(B_UNMAPPED_KEY_DOWN, &unmapped));
    EXPECT_EQ(0x5c, unmapped.GetInt32("key", 0));
    EXPECT_FALSE(unmapped.HasString("bytes"));
    BMessage changed;
    ASSERT_TRUE(fLooper->WaitFor(B_MODIFIERS_CHANGED, &changed));
    EXPECT_EQ(B_CONTROL_KEY | B_LEFT_CONTROL_KEY, changed.GetInt32("modifiers", 0));
    EXPECT_EQ(0, changed.GetInt32("be:old_modifiers", -1));
}

TEST_F(DisplayServerTest, KeysWithoutAnActiveWindowGoNowhere) {
    int32 id = MakeWindow(BRect(0, 0, 9, 9), "hidden");
    fServer->InjectKey(true, 0x3c, NULL);
    fServer->ShowWindow(id);
    fServer->InjectKey(true, 0x3d, NULL);
    BMessage key;
    ASSERT_TRUE(fLooper->WaitFor(B_KEY_DOWN, &key));
    EXPECT_EQ(0x3d, key.GetInt32("key", 0));
}

TEST_F(DisplayServerTest, WorkspaceSwitchPostsDeactivationThenActivationThenScreen) {
    int32 id = MakeWindow(BRect(0, 0, 9, 9), "both", B_NORMAL_WINDOW_FEEL, 0, 0x3);
    fServer->ShowWindow(id);
    fServer->ActivateWorkspace(1);
    fServer->Sync();

    BMessage off;
    ASSERT_TRUE(fLooper->WaitFor(B_WORKSPACE_ACTIVATED, &off));
    EXPECT_EQ(0, off.GetInt32("workspace", -1));
    EXPECT_FALSE(off.GetBool("active", true));
    BMessage on;
    ASSERT_TRUE(fLooper->WaitFor(B_WORKSPACE_ACTIVATED, &on, 1));
    EXPECT_EQ(1, on.GetInt32("workspace", -1));
    EXPECT_TRUE(on.GetBool("active", false));
    BMessage screen;
    ASSERT_TRUE(fLooper->WaitFor(B_SCREEN_CHANGED, &screen));
    EXPECT_EQ(BRect(0, 0, 1279, 799), screen.GetRect("frame", BRect()));
    EXPECT_EQ(B_RGB32, screen.GetInt32("mode", 0));

    std::vector<uint32> whats = fLooper->Whats();
    auto position = [&](uint32 what) {
        return std::find(whats.begin(), whats.end(), what) - whats.begin();
    };
    EXPECT_LT(position(B_WORKSPACE_ACTIVATED), position(B_SCREEN_CHANGED));
}

TEST_F(DisplayServerTest, MoveAndResizePostFrameMessages) {
    int32 id = MakeWindow(BRect(0, 0, 99, 49), "frames");
    fServer->MoveWindow(id, BPoint(-20, 30));
    fServer->ResizeWindow(id, 10, 20);
    EXPECT_EQ(BRect(-20, 30, -10, 50), Listing(id).frame);
    BMessage moved;
    ASSERT_TRUE(fLooper->WaitFor(B_WINDOW_MOVED, &moved));
    EXPECT_EQ(BPoint(-20, 30), moved.GetPoint("where", BPoint()));
    BMessage resized;
    ASSERT_TRUE(fLooper->WaitFor(B_WINDOW_RESIZED, &resized));
    EXPECT_EQ(10, resized.GetInt32("width", 0));
    EXPECT_EQ(20, resized.GetInt32("height", 0));
}

TEST_F(DisplayServerTest, PresentCopiesOnlyTheRegion) {
    int32 id = MakeWindow(BRect(0, 0, 19, 19), "present");
    fServer->ShowWindow(id);
    BPrivate::CairoSurfacePointer source = BPrivate::make_buffer(BRect(0, 0, 19, 19));
    cairo_t* cairo = cairo_create(source.get());
    cairo_set_source_rgb(cairo, 1, 0, 0);
    cairo_paint(cairo);
    cairo_destroy(cairo);

    BRegion region(BRect(2, 3, 5, 4));
    fServer->Present(id, source.get(), region);
    EXPECT_EQ(1u, Listing(id).presentCount);
    Capture capture;
    capture.SetTo(fServer->CaptureWindow(id).get());
    EXPECT_EQ(8, capture.CountPixels(make_color(255, 0, 0)));
    EXPECT_EQ(BRect(2, 3, 5, 4), capture.BoundsOf(make_color(255, 0, 0)));
    EXPECT_EQ(B_OK, fServer->WaitForPresent(id, 1, 1000000));
}

TEST_F(DisplayServerTest, ScreenCaptureStacksWindowsAtTheirPlaces) {
    int32 below = MakeWindow(BRect(10, 10, 29, 29), "below");
    int32 above = MakeWindow(BRect(20, 20, 39, 39), "above");
    for (int32 id : {below, above})
        fServer->ShowWindow(id);
    for (auto [id, red] : {std::make_pair(below, 1.0), std::make_pair(above, 0.0)}) {
        BPrivate::CairoSurfacePointer source = BPrivate::make_buffer(BRect(0, 0, 19, 19));
        cairo_t* cairo = cairo_create(source.get());
        cairo_set_source_rgb(cairo, red, 0, 1 - red);
        cairo_paint(cairo);
        cairo_destroy(cairo);
        fServer->Present(id, source.get(), BRegion(BRect(0, 0, 19, 19)));
    }
    Capture capture;
    capture.SetTo(fServer->CaptureScreen().get());
    EXPECT_EQ(make_color(255, 0, 0), capture.ColorAt(15, 15));
    EXPECT_EQ(make_color(0, 0, 255), capture.ColorAt(25, 25));
    EXPECT_EQ(make_color(51, 102, 152), capture.ColorAt(5, 5));
    EXPECT_EQ(make_color(0, 0, 0, 0), capture.ColorAt(-1, 5));
}

TEST_F(DisplayServerTest, CaptureIsWrittenAsPng) {
    Capture capture;
    capture.SetTo(fServer->CaptureScreen().get());
    std::string path = std::string(GLIMROW_BINARY_DIR) + "/display-server-capture-" +
                       std::to_string(getpid()) + ".png";
    ASSERT_EQ(B_OK, capture.WritePNG(path.c_str()));
    std::ifstream file(path, std::ios::binary);
    char signature[8] = {};
    file.read(signature, 8);
    EXPECT_EQ(0, memcmp(signature, "\x89PNG\r\n\x1a\n", 8));
    unlink(path.c_str());
    EXPECT_EQ(B_IO_ERROR, capture.WritePNG("/nonexistent-folder/capture.png"));
    EXPECT_EQ(B_BAD_VALUE, Capture().WritePNG(path.c_str()));
}

TEST_F(DisplayServerTest, WaitForIdleWithoutWindowsReturnsAtOnce) {
    EXPECT_EQ(B_OK, fServer->WaitForIdle(1000000));
}

TEST_F(DisplayServerTest, ResetIsRefusedWhileWindowsExist) {
    MakeWindow(BRect(0, 0, 9, 9), "busy");
    EXPECT_EQ(B_BUSY, fServer->Reset());
}

TEST_F(DisplayServerTest, BufferSizesAreCapped) {
    EXPECT_EQ(BPrivate::kMaxBufferExtent, BPrivate::buffer_extent(1e9));
    EXPECT_EQ(BPrivate::kMaxBufferExtent, BPrivate::buffer_extent(INFINITY));
    EXPECT_EQ(1, BPrivate::buffer_extent(-5));
    EXPECT_EQ(1, BPrivate::buffer_extent(NAN));
    EXPECT_EQ(10, BPrivate::buffer_extent(9));
}

TEST(DisplayServerChoiceTest, UnknownBackendNameIsRefused) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            setenv("GLIMROW_DISPLAY", "carrier-pigeon", 1);
            status_t error = B_OK;
            DisplayServer* server = DisplayServer::Default(&error);
            exit(server == NULL && error == B_BAD_VALUE ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "unknown display backend");
}

TEST(DisplayServerChoiceTest, EnvironmentChoosesTheHeadlessBackend) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            setenv("GLIMROW_DISPLAY", "headless", 1);
            DisplayServer* server = DisplayServer::Default();
            exit(server != NULL && strcmp(server->BackendName(), "headless") == 0 ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}
