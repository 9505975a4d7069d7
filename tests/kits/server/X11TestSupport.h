// What the tests on a real X server share: a fixture with a private Xvfb (and
// openbox where desktops matter), the X11 backend and an application object, and
// a window whose view records what reaches it.
#ifndef GLIMROW_TEST_X11_TEST_SUPPORT_H
#define GLIMROW_TEST_X11_TEST_SUPPORT_H
// Before the X headers, whose macros (None, Bool) would clash with its names.
#include <gtest/gtest.h>

#include "Watchdog.h"
#include "X11TestDisplay.h"

#include "interface/WindowPrivate.h"
#include "server/x11/X11Server.h"

#include <Application.h>
#include <Entry.h>
#include <Path.h>
#include <View.h>
#include <Window.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

namespace x11_testing {

// Lines written by window threads, waited on by the test.
class Log {
public:
    void Add(const std::string& line) {
        std::lock_guard<std::mutex> lock(fLock);
        fLines.push_back(line);
        fCondition.notify_all();
    }
    // Waits up to ten seconds for a line starting with the prefix; answers it,
    // or an empty string.
    std::string WaitFor(const std::string& prefix, int skip = 0) {
        std::unique_lock<std::mutex> lock(fLock);
        std::string found;
        fCondition.wait_for(lock, std::chrono::seconds(10), [&] {
            int seen = 0;
            for (const std::string& line : fLines) {
                if (line.compare(0, prefix.size(), prefix) == 0 && seen++ == skip) {
                    found = line;
                    return true;
                }
            }
            return false;
        });
        return found;
    }
    size_t Count(const std::string& prefix) {
        std::lock_guard<std::mutex> lock(fLock);
        size_t count = 0;
        for (const std::string& line : fLines)
            count += line.compare(0, prefix.size(), prefix) == 0 ? 1 : 0;
        return count;
    }

private:
    std::mutex fLock;
    std::condition_variable fCondition;
    std::vector<std::string> fLines;
};

// Fills itself with one colour and logs the mouse, keys and drops.
class RecordingView : public BView {
public:
    RecordingView(BRect frame, Log* log, rgb_color color)
        : BView(frame, "recorder", B_FOLLOW_ALL, B_WILL_DRAW), fLog(log), fColor(color) {}

    void Draw(BRect updateRect) override {
        SetHighColor(fColor);
        FillRect(Bounds());
    }
    void MouseDown(BPoint where) override {
        BMessage* message = Window()->CurrentMessage();
        fLog->Add("down buttons " + std::to_string(message->GetInt32("buttons", -1)) + " clicks " +
                  std::to_string(message->GetInt32("clicks", -1)) + " modifiers " +
                  std::to_string(message->GetInt32("modifiers", 0) & 0xff) + " at " +
                  std::to_string((int)where.x) + "," + std::to_string((int)where.y));
    }
    void MouseUp(BPoint where) override { fLog->Add("up"); }
    void KeyDown(const char* bytes, int32 numBytes) override {
        BMessage* message = Window()->CurrentMessage();
        fLog->Add("key " + std::string(bytes, numBytes) + " code " +
                  std::to_string(message->GetInt32("key", -1)) + " raw " +
                  std::to_string(message->GetInt32("raw_char", -1)) + " modifiers " +
                  std::to_string(message->GetInt32("modifiers", 0) & 0xff));
    }
    void MouseMoved(BPoint where, uint32 transit, const BMessage* drag) override {
        if (drag == NULL)
            return;
        entry_ref ref;
        std::string name = drag->FindRef("refs", &ref) == B_OK ? ref.name : "-";
        fLog->Add("drag over transit " + std::to_string(transit) + " " + name);
    }
    void MessageReceived(BMessage* message) override {
        if (message->what == B_MOUSE_WHEEL_CHANGED) {
            fLog->Add("wheel " + std::to_string((int)message->GetFloat("be:wheel_delta_x", 0)) +
                      "," + std::to_string((int)message->GetFloat("be:wheel_delta_y", 0)));
            return;
        }
        if (!message->WasDropped()) {
            BView::MessageReceived(message);
            return;
        }
        entry_ref ref;
        if (message->FindRef("refs", &ref) == B_OK) {
            BPath path(&ref);
            fLog->Add(std::string("dropped ref ") + (path.Path() != NULL ? path.Path() : "?"));
            return;
        }
        const void* data = NULL;
        ssize_t size = 0;
        if (message->FindData("text/plain", B_MIME_TYPE, &data, &size) == B_OK)
            fLog->Add("dropped text " + std::string((const char*)data, size));
    }

private:
    Log* fLog;
    rgb_color fColor;
};

class RecordingWindow : public BWindow {
public:
    RecordingWindow(BRect frame, Log* log, window_look look, uint32 flags,
                    uint32 workspaces = B_CURRENT_WORKSPACE, rgb_color color = {220, 30, 40, 255},
                    window_feel feel = B_NORMAL_WINDOW_FEEL)
        : BWindow(frame, "recording", look, feel, flags, workspaces), fLog(log) {
        fView = new RecordingView(Bounds(), log, color);
        AddChild(fView);
    }
    void WindowActivated(bool active) override {
        fLog->Add(active ? "activated" : "deactivated");
        if (active)
            fView->MakeFocus(true);
    }
    void WorkspaceActivated(int32 workspace, bool active) override {
        fLog->Add("workspace " + std::to_string(workspace) + (active ? " on" : " off"));
    }
    void MessageReceived(BMessage* message) override {
        if (message->what == 'shrt') {
            fLog->Add("shortcut");
            return;
        }
        BWindow::MessageReceived(message);
    }
    RecordingView* View() const { return fView; }

private:
    Log* fLog;
    RecordingView* fView;
};

class X11AppTest : public ::testing::Test {
protected:
    explicit X11AppTest(bool windowManager) : fWindowManager(windowManager) {}

    void SetUp() override {
        unsetenv("GLIMROW_DISPLAY");
        ASSERT_TRUE(fDisplay.Start(fWindowManager)) << "no Xvfb (or openbox) could start";
        status_t error = B_ERROR;
        ASSERT_NE(nullptr, BPrivate::DisplayServer::Default(&error));
        ASSERT_EQ(B_OK, error);
        fServer = dynamic_cast<BPrivate::X11Server*>(BPrivate::DisplayServer::Current());
        ASSERT_NE(nullptr, fServer);
        new BApplication("application/x-vnd.glimrow-x11-test");
    }

    void TearDown() override {
        delete be_app;
        // The server's thread sees the application gone before it sees the X
        // server go (which makes it look for the application to ask it to quit).
        if (fServer != nullptr)
            fServer->Sync();
    }

    // The window's X window, once it exists (at most ten seconds).
    unsigned long XWindow(BWindow* window) {
        int32 token = BPrivate::WindowPrivate(window).ServerToken();
        unsigned long xWindow = 0;
        testing_support::wait_until([&] { return (xWindow = fServer->XWindowFor(token)) != 0; });
        return xWindow;
    }

    // Waits until the window's contents are at exactly this frame on the screen.
    bool WaitForGeometry(BWindow* window, int x, int y, int width, int height) {
        unsigned long xWindow = XWindow(window);
        int actualX = 0;
        int actualY = 0;
        int actualWidth = 0;
        int actualHeight = 0;
        bool landed = testing_support::wait_until([&] {
            return fDisplay.WindowGeometry(xWindow, &actualX, &actualY, &actualWidth,
                                           &actualHeight) &&
                   actualX == x && actualY == y && actualWidth == width && actualHeight == height;
        });
        if (!landed) {
            ADD_FAILURE() << "window at " << actualX << "," << actualY << " " << actualWidth << "x"
                          << actualHeight << ", wanted " << x << "," << y << " " << width << "x"
                          << height;
        }
        return landed;
    }

    // Shows the window and waits until it is active (so clicks are not first clicks).
    void ShowActive(BWindow* window) {
        window->Show();
        ASSERT_FALSE(fLog.WaitFor("activated").empty());
    }

    bool fWindowManager;
    testing_support::X11TestDisplay fDisplay;
    BPrivate::X11Server* fServer = nullptr;
    Log fLog;
};

class X11ManagedTest : public X11AppTest {
protected:
    X11ManagedTest() : X11AppTest(true) {}
};

class X11BareTest : public X11AppTest {
protected:
    X11BareTest() : X11AppTest(false) {}
};

} // namespace x11_testing

#endif // GLIMROW_TEST_X11_TEST_SUPPORT_H
