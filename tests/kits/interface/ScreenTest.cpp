// BScreen and changes of the screen size.
#include "HeadlessAppTest.h"

#include <Screen.h>
#include <Window.h>

#include <gtest/gtest.h>

#include <string>

using BPrivate::Capture;
using BPrivate::HeadlessTestApi;
using testing_support::EventLog;
using testing_support::HeadlessAppTest;

namespace {

class ScreenWindow : public BWindow {
public:
    ScreenWindow(EventLog* log, uint32 workspaces = B_CURRENT_WORKSPACE)
        : BWindow(BRect(0, 0, 99, 99), "screen", B_TITLED_WINDOW, 0, workspaces), fLog(log) {}
    void ScreenChanged(BRect frame, color_space mode) override {
        fLog->Add("changed " + std::to_string((int)frame.right) + "," +
                  std::to_string((int)frame.bottom));
    }

private:
    EventLog* fLog;
};

class ScreenTest : public HeadlessAppTest {};

} // namespace

TEST_F(ScreenTest, HeadlessScreenIs1280By800) {
    BScreen screen;
    ASSERT_TRUE(screen.IsValid());
    EXPECT_EQ(BRect(0, 0, 1279, 799), screen.Frame());
    EXPECT_EQ(B_RGB32, screen.ColorSpace());
    EXPECT_EQ(B_MAIN_SCREEN_ID.id, screen.ID().id);
    EXPECT_EQ(B_ERROR, screen.SetToNext());
}

TEST_F(ScreenTest, WindowScreenIsTheMainScreen) {
    BWindow* window = new BWindow(BRect(0, 0, 9, 9), "mine", B_TITLED_WINDOW, 0);
    BScreen screen(window);
    EXPECT_TRUE(screen.IsValid());
    EXPECT_EQ(BRect(0, 0, 1279, 799), screen.Frame());
}

TEST_F(ScreenTest, OtherScreenIdsAreInvalid) {
    screen_id other = {7};
    BScreen screen(other);
    EXPECT_FALSE(screen.IsValid());
    EXPECT_EQ(B_NO_COLOR_SPACE, screen.ColorSpace());
}

TEST_F(ScreenTest, WaitForRetraceReturnsAtOnce) {
    BScreen screen;
    EXPECT_EQ(B_OK, screen.WaitForRetrace());
    EXPECT_EQ(B_OK, screen.WaitForRetrace(1000));
}

TEST_F(ScreenTest, ResizingTheScreenTellsEveryWindow) {
    ScreenWindow* here = new ScreenWindow(&fLog);
    ScreenWindow* elsewhere = new ScreenWindow(&fLog, 1u << 3);
    here->Show();
    elsewhere->Show();
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::SetScreenSize(1024, 768));
    WaitForIdle();
    EXPECT_EQ(2u, fLog.Count("changed 1023,767"));
    EXPECT_EQ(BRect(0, 0, 1023, 767), BScreen().Frame());
    EXPECT_EQ(B_BAD_VALUE, HeadlessTestApi::SetScreenSize(0, 10));
}

TEST_F(ScreenTest, ColorIndexesComeFromThePalette) {
    BScreen screen;
    EXPECT_EQ(make_color(0, 0, 0), screen.ColorForIndex(screen.IndexForColor(0, 0, 0)));
    EXPECT_EQ(make_color(255, 255, 255), screen.ColorForIndex(screen.IndexForColor(255, 255, 255)));
    EXPECT_EQ(B_TRANSPARENT_MAGIC_CMAP8, screen.IndexForColor(B_TRANSPARENT_COLOR));
}

TEST_F(ScreenTest, EmptyScreenShowsTheDesktopColour) {
    Capture capture;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureScreen(&capture));
    EXPECT_EQ(1280, capture.Width());
    EXPECT_EQ(800, capture.Height());
    EXPECT_EQ(1280 * 800, capture.CountPixels(make_color(51, 102, 152)));
}
