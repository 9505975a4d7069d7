// The application menu outside a bar window: with no layer manager to ask for
// the layer list, and with no application icon, so that the name is drawn.
#include "AppMenu.h"
#include "AppMenuItem.h"
#include "Globals.h"
#include "Settings.h"

#include "server/headless/HeadlessTestApi.h"

#include <Application.h>
#include <Autolock.h>
#include <MenuItem.h>
#include <View.h>
#include <Window.h>

#include <gtest/gtest.h>

#include "Watchdog.h"

using BPrivate::HeadlessTestApi;

namespace {

class AppMenuWithoutBarTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(HeadlessTestApi::Use(), B_OK);
        ASSERT_EQ(HeadlessTestApi::Reset(), B_OK);
        gr_settings = &fSettings;
        gr_manager = NULL;
    }

    void TearDown() override {
        HeadlessTestApi::WaitForIdle();
        delete be_app;
        delete fMenu;
        gr_settings = NULL;
    }

    // Made before the application exists, the item finds no icon of its own.
    void Open() {
        fMenu = new AppMenu();
        new BApplication("application/x-vnd.glimrow-app-menu-test");
        fWindow = new BWindow(BRect(100, 100, 300, 200), "app menu", B_TITLED_WINDOW, 0);
        fWindow->AddChild(fMenu);
        // The window owns the menu from here on.
        fAttached = fMenu;
        fMenu = NULL;
        fWindow->Show();
        ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    }

    // The pixels of the item that are darker than the menu's background.
    BRect InkBounds() {
        BRect frame;
        rgb_color background;
        {
            BAutolock lock(fWindow);
            frame = fAttached->Frame();
            background = fAttached->ViewColor();
        }
        BPrivate::Capture capture;
        EXPECT_EQ(HeadlessTestApi::CaptureWindow(fWindow, &capture), B_OK);
        BRect ink;
        // Inside the 3D frame of the strip.
        for (int32 y = (int32)frame.top + 2; y <= (int32)frame.bottom - 2; y++) {
            for (int32 x = (int32)frame.left + 2; x <= (int32)frame.right - 2; x++) {
                rgb_color pixel = capture.ColorAt(x, y);
                if (pixel.red + 60 > background.red)
                    continue;
                BRect dot(x, y, x, y);
                ink = ink.IsValid() ? (ink | dot) : dot;
            }
        }
        return ink;
    }

    settings fSettings;
    AppMenu* fMenu = NULL;
    AppMenu* fAttached = NULL;
    BWindow* fWindow = NULL;
};

} // namespace

TEST_F(AppMenuWithoutBarTest, WithoutALayerListSwitchLayerIsDisabled) {
    Open();
    BAutolock lock(fWindow);
    BMenu* layers = fAttached->SwitchLayerMenu();
    ASSERT_NE(layers, nullptr);
    EXPECT_EQ(layers->CountItems(), 0);
    ASSERT_NE(layers->Superitem(), nullptr);
    EXPECT_FALSE(layers->Superitem()->IsEnabled());
}

TEST_F(AppMenuWithoutBarTest, WithoutAnIconTheNameIsDrawnLevelInAColumnBar) {
    fSettings.which = 32;
    fSettings.direction = 0;
    fSettings.flags = kDrawLabelFlag;
    Open();
    {
        BAutolock lock(fWindow);
        ASSERT_EQ(fAttached->Item()->Icon(), nullptr);
        ASSERT_EQ(fAttached->Bounds(), BRect(0, 0, 57, 19));
    }
    BRect ink = InkBounds();
    ASSERT_TRUE(ink.IsValid());
    // "Glimrow" runs along the strip, centred in it.
    EXPECT_GT(ink.Width(), 2 * ink.Height());
    EXPECT_NEAR((ink.left + ink.right) / 2, 57 / 2.0, 3);
}

TEST_F(AppMenuWithoutBarTest, WithoutAnIconTheNameIsDrawnRotatedInARowBar) {
    fSettings.which = 32;
    fSettings.direction = 2;
    fSettings.flags = kDrawLabelFlag;
    Open();
    {
        BAutolock lock(fWindow);
        ASSERT_EQ(fAttached->Item()->Icon(), nullptr);
        ASSERT_EQ(fAttached->Bounds(), BRect(0, 0, 19, 49));
    }
    BRect ink = InkBounds();
    ASSERT_TRUE(ink.IsValid());
    // Turned by 90 degrees, the name runs up the strip.
    EXPECT_GT(ink.Height(), 2 * ink.Width());
    EXPECT_NEAR((ink.top + ink.bottom) / 2, 49 / 2.0, 3);
}

TEST_F(AppMenuWithoutBarTest, OutsideABarWindowTheShelfCountsAsShown) {
    fSettings.flags = kShelfFlag;
    Open();
    BAutolock lock(fWindow);
    BMenuItem* shelf = fAttached->Item()->Submenu()->ItemAt(1);
    EXPECT_STREQ(shelf->Label(), "Hide Shelf");
    EXPECT_TRUE(shelf->IsEnabled());
}
