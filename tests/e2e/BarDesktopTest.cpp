// The built program on a real X desktop, driven from outside with xdotool as a
// user would drive it: where the bar stands, what a press starts, how layers and
// workspaces switch, and the global hot key.
#include "BarDesktopSession.h"
#include "Watchdog.h"

#include <gtest/gtest.h>

#include <stdlib.h>

#include <chrono>
#include <string>
#include <thread>

using testing_support::BarDesktopSession;
using testing_support::wait_until;
using testing_support::WindowFrame;
using X11Display = testing_support::X11TestDisplay;

namespace {

const int kScreenWidth = 1024;
const int kScreenHeight = 768;
// A cell of a bar with small icons and labels: 19 high, one pixel apart.
const int kCellPitch = 20;
// Be key codes.
const int kF12Key = 0x0d;

class BarDesktopTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(fSession.StartDesktop(WantsWindowManager())) << "no Xvfb with openbox";
    }
    virtual bool WantsWindowManager() const { return true; }

    // A layer of count text files called "<name> n.txt".
    std::vector<std::string> MakeTextLayer(const std::string& name, int count) {
        std::vector<std::string> paths;
        for (int index = 1; index <= count; index++)
            paths.push_back(fSession.MakeFile(
                "files/" + name + " " + std::to_string(index) + ".txt", "text/plain"));
        EXPECT_TRUE(fSession.MakeLayer(name, paths));
        return paths;
    }

    // Shows the layer on every workspace, the bar in the corner, running away from it.
    void ShowEverywhere(const std::string& layer, int location = 3) {
        ASSERT_TRUE(fSession.WriteSettings([&](BMessage* archive) {
            archive->ReplaceInt32("location", location);
            archive->ReplaceInt32("direction", location < 2 ? 0 : 1);
            for (int index = 0; index < 32; index++)
                archive->ReplaceString("layerName", index, layer.c_str());
        }));
    }

    void StartBar() { ASSERT_TRUE(fSession.StartBar()) << fSession.ProgramOutput(); }

    // The top-level window under the screen point, as the X server sees it.
    unsigned long WindowAt(int x, int y) {
        fSession.Display().Run("xdotool mousemove --sync " + std::to_string(x) + " " +
                               std::to_string(y));
        std::string shell = fSession.Display().Output("xdotool getmouselocation --shell");
        size_t at = shell.find("WINDOW=");
        return at == std::string::npos ? 0 : strtoul(shell.c_str() + at + 7, NULL, 10);
    }

    // The window that stands for the bar among the root's children: the window
    // manager's frame around it, or the bar's own window without one.
    unsigned long BarTopLevel() {
        unsigned long window = fSession.BarWindow();
        for (int depth = 0; depth < 8; depth++) {
            std::string tree =
                fSession.Display().Output("xwininfo -tree -id " + std::to_string(window));
            size_t root = tree.find("Root window id: ");
            size_t parent = tree.find("Parent window id: ");
            if (root == std::string::npos || parent == std::string::npos)
                return window;
            unsigned long rootId = strtoul(tree.c_str() + root + 16, NULL, 16);
            unsigned long parentId = strtoul(tree.c_str() + parent + 18, NULL, 16);
            if (parentId == rootId)
                return window;
            window = parentId;
        }
        return window;
    }

    // Screen point inside the cell of the layer's item (0 = the layer's first),
    // on a bottom-corner bar whose items run upward from the application menu.
    void ItemPoint(int item, int itemCount, int* x, int* y) {
        WindowFrame frame = fSession.BarFrame();
        *x = frame.x + 8;
        *y = frame.y + (itemCount - 1 - item) * kCellPitch + 9;
    }

    void CheckCorner(int location, int cornerX, int cornerY) {
        MakeTextLayer("Corner", 3);
        ShowEverywhere("Corner", location);
        StartBar();
        WindowFrame frame = fSession.BarFrame();
        EXPECT_EQ(WindowAt(cornerX, cornerY), BarTopLevel())
            << "the bar's frame: " << frame.x << "," << frame.y << " " << frame.width << "x"
            << frame.height;
    }

    BarDesktopSession fSession;
};

TEST_F(BarDesktopTest, BarStandsInTopLeftCornerWithLocation0) {
    CheckCorner(0, 0, 0);
    EXPECT_EQ(fSession.BarFrame().x, 0);
    EXPECT_EQ(fSession.BarFrame().y, 0);
}

TEST_F(BarDesktopTest, BarStandsInTopRightCornerWithLocation1) {
    CheckCorner(1, kScreenWidth - 1, 0);
    WindowFrame frame = fSession.BarFrame();
    EXPECT_EQ(frame.x + frame.width, kScreenWidth);
    EXPECT_EQ(frame.y, 0);
}

TEST_F(BarDesktopTest, BarStandsInBottomRightCornerWithLocation2) {
    CheckCorner(2, kScreenWidth - 1, kScreenHeight - 1);
    WindowFrame frame = fSession.BarFrame();
    EXPECT_EQ(frame.x + frame.width, kScreenWidth);
    EXPECT_EQ(frame.y + frame.height, kScreenHeight);
}

TEST_F(BarDesktopTest, BarStandsInBottomLeftCornerWithLocation3) {
    CheckCorner(3, 0, kScreenHeight - 1);
    WindowFrame frame = fSession.BarFrame();
    EXPECT_EQ(frame.x, 0);
    EXPECT_EQ(frame.y + frame.height, kScreenHeight);
}

TEST_F(BarDesktopTest, SecondaryPressLaunchesItemWithItsPreferredApplication) {
    fSession.Apps().Add("recorder", "text/plain;");
    fSession.Apps().SetDefault("text/plain", "recorder");
    std::vector<std::string> paths = MakeTextLayer("Work", 3);
    ShowEverywhere("Work");
    StartBar();

    int x, y;
    ItemPoint(1, 3, &x, &y);
    fSession.Display().Run("xdotool mousemove --sync " + std::to_string(x) + " " +
                           std::to_string(y) + " click 3");
    ASSERT_TRUE(fSession.Apps().WaitForRuns("recorder", 1)) << fSession.ProgramOutput();
    auto runs = fSession.Apps().Runs("recorder");
    ASSERT_EQ(runs.size(), 1u);
    ASSERT_EQ(runs[0].size(), 1u);
    EXPECT_EQ(runs[0][0], paths[1]);
}

TEST_F(BarDesktopTest, CommandDownSwitchesToTheNextLayer) {
    MakeTextLayer("Five", 5);
    MakeTextLayer("Two", 2);
    ShowEverywhere("Two");
    StartBar();
    int twoHeight = fSession.BarFrame().height;

    fSession.Display().Run("xdotool windowactivate --sync " + std::to_string(fSession.BarWindow()));
    fSession.Display().Run("xdotool key alt+Down");
    EXPECT_TRUE(fSession.WaitForBarFrame([&](const WindowFrame& frame) {
        return frame.height == twoHeight + 3 * kCellPitch;
    })) << "height stayed "
        << fSession.BarFrame().height;
}

TEST_F(BarDesktopTest, WorkspaceSwitchShowsThatWorkspacesLayer) {
    MakeTextLayer("Five", 5);
    MakeTextLayer("Two", 2);
    ASSERT_TRUE(fSession.WriteSettings([&](BMessage* archive) {
        archive->ReplaceString("layerName", 0, "Two");
        archive->ReplaceString("layerName", 1, "Five");
    }));
    StartBar();
    int twoHeight = fSession.BarFrame().height;

    fSession.Display().Run("xdotool set_desktop 1");
    EXPECT_TRUE(fSession.WaitForBarFrame([&](const WindowFrame& frame) {
        return frame.height == twoHeight + 3 * kCellPitch;
    })) << "height stayed "
        << fSession.BarFrame().height;
    // The bar stands on every workspace, so it is still where it was.
    EXPECT_EQ(WindowAt(0, kScreenHeight - 1), BarTopLevel());
}

class HotKeyDesktopTest : public BarDesktopTest {
protected:
    void SetUp() override {
        BarDesktopTest::SetUp();
        MakeTextLayer("Work", 2);
        ShowEverywhere("Work");
        ASSERT_TRUE(fSession.WriteHotKey({kF12Key}));
        StartBar();
        // Another program's window takes the focus.
        fSession.Display().Run("xmessage -name other 'another program' >/dev/null 2>&1 &");
        ASSERT_TRUE(wait_until(
            [&] {
                fOther = strtoul(
                    fSession.Display()
                        .Output("xdotool search --onlyvisible --classname '^other$' 2>/dev/null")
                        .c_str(),
                    NULL, 10);
                return fOther != 0;
            },
            std::chrono::seconds(10)));
        fSession.Display().Run("xdotool windowactivate --sync " + std::to_string(fOther));
        ASSERT_TRUE(
            wait_until([&] { return fSession.ActiveWindow() == fOther; }, std::chrono::seconds(5)));
    }

    void TearDown() override { fSession.Display().Run("xdotool keyup F12 keyup a"); }

    unsigned long fOther = 0;
};

TEST_F(HotKeyDesktopTest, HoldingTheRecordedHotKeyActivatesTheBar) {
    fSession.Display().Run("xdotool keydown F12");
    EXPECT_TRUE(wait_until([&] { return fSession.ActiveWindow() == fSession.BarWindow(); },
                           std::chrono::seconds(5)));
}

TEST_F(HotKeyDesktopTest, OneMoreKeyHeldDoesNotActivateTheBar) {
    fSession.Display().Run("xdotool keydown a keydown F12");
    // The bar looks at the keyboard every 30 ms: ten looks are plenty.
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(fSession.ActiveWindow(), fOther);
}

// Without a window manager, so that nothing but the two programs decides where
// the windows stand and who has the pointer.
class DropDesktopTest : public BarDesktopTest {
protected:
    bool WantsWindowManager() const override { return false; }
};

TEST_F(DropDesktopTest, FileDroppedFromFileManagerOpensWithTheItem) {
    ASSERT_EQ(fSession.Display().Run("command -v pcmanfm >/dev/null"), 0)
        << "pcmanfm is not installed (scripts/install-deps installs it)";
    std::string application = fSession.Apps().Add("recorder", "text/plain;");
    ASSERT_TRUE(fSession.MakeLayer("Apps", {application}));
    ShowEverywhere("Apps");
    std::string dropped = fSession.MakeFile("files/drop me.txt", "text/plain");
    // A list view: the file is the first row, right of the places pane.
    fSession.Home().WriteFile(".config/pcmanfm/default/pcmanfm.conf", "[ui]\nview_mode=list\n");
    StartBar();

    X11Display& display = fSession.Display();
    ASSERT_EQ(display.Run("pcmanfm '" + fSession.Home().Path() + "/files' >/dev/null 2>&1 &"), 0);
    std::string manager;
    ASSERT_TRUE(wait_until(
        [&] {
            manager = display.Output("xdotool search --onlyvisible --class pcmanfm 2>/dev/null");
            return !manager.empty();
        },
        std::chrono::seconds(20)));
    manager = manager.substr(0, manager.find('\n'));
    ASSERT_EQ(
        display.Run("xdotool windowmove " + manager + " 300 0 windowsize " + manager + " 500 400"),
        0);
    ASSERT_TRUE(wait_until([&] {
        return display.Output("xdotool getwindowgeometry " + manager).find("Position: 300,0") !=
               std::string::npos;
    }));

    int x, y;
    ItemPoint(0, 1, &x, &y);
    std::string target = std::to_string(x) + " " + std::to_string(y);
    // Press on the row, move past GTK's drag threshold, over the item, let go.
    ASSERT_EQ(display.Run("xdotool mousemove 525 105 sleep 0.5 mousedown 1 sleep 0.3 "
                          "mousemove 545 115 sleep 0.2 mousemove 400 300 sleep 0.2 "
                          "mousemove " +
                          target + " sleep 0.3 mousemove " + target + " sleep 0.5 mouseup 1"),
              0);
    ASSERT_TRUE(fSession.Apps().WaitForRuns("recorder", 1)) << fSession.ProgramOutput();
    auto runs = fSession.Apps().Runs("recorder");
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0], std::vector<std::string>{dropped});
    display.Run("kill $(xdotool getwindowpid " + manager + ") 2>/dev/null");
}

} // namespace
