// What the file menu tests share: a window holding a menu bar (and recording
// the messages its items send), lookups of the open menu windows on the
// headless display, locked reads of menus that live in those windows, and
// pixel helpers for the captured labels.
#ifndef GLIMROW_FILE_MENUS_TEST_SUPPORT_H
#define GLIMROW_FILE_MENUS_TEST_SUPPORT_H

#include "HeadlessAppTest.h"
#include "MenuTestSupport.h"
#include "TestHome.h"
#include "Watchdog.h"
#include "interface/MenuPrivate.h"
#include "interface/WindowPrivate.h"
#include "server/headless/HeadlessTestApi.h"

#include <Entry.h>
#include <Menu.h>
#include <MenuBar.h>
#include <MenuItem.h>
#include <Message.h>
#include <Window.h>

#include <gtest/gtest.h>

#include <math.h>
#include <mutex>
#include <string>
#include <vector>

namespace file_menus_testing {

using BPrivate::HeadlessTestApi;
using BPrivate::WindowListing;
// The menu helpers that every menu test shares.
using menu_testing::center_of;
using menu_testing::item_screen_frame;
using menu_testing::menu_windows;
using menu_testing::MenuLock;
using menu_testing::same_color;
using menu_testing::wait_for_menu_count;

// Keeps every message of the program's own codes ("gr" in the high bits) that
// reaches the window.
class RecordingWindow : public BWindow {
public:
    explicit RecordingWindow(BRect frame)
        : BWindow(frame, "file menus", B_TITLED_WINDOW, B_WILL_ACCEPT_FIRST_CLICK) {}

    void MessageReceived(BMessage* message) override {
        if ((message->what >> 16) == 0x6772) {
            std::lock_guard<std::mutex> lock(fLock);
            fMessages.push_back(*message);
            return;
        }
        BWindow::MessageReceived(message);
    }

    std::vector<BMessage> Messages() {
        std::lock_guard<std::mutex> lock(fLock);
        return fMessages;
    }

private:
    std::mutex fLock;
    std::vector<BMessage> fMessages;
};

inline entry_ref ref_for(const std::string& path) {
    entry_ref ref;
    EXPECT_EQ(B_OK, get_ref_for_path(path.c_str(), &ref)) << path;
    return ref;
}

// What a menu shows, read with its window locked: one line per item, "---" for
// a separator, "(disabled)" after the label of a disabled item.
inline std::vector<std::string> menu_labels(BMenu* menu) {
    std::vector<std::string> labels;
    MenuLock lock(menu);
    if (!lock.IsLocked())
        return labels;
    for (int32 index = 0; index < menu->CountItems(); index++) {
        BMenuItem* item = menu->ItemAt(index);
        if (dynamic_cast<BSeparatorItem*>(item) != NULL) {
            labels.push_back("---");
            continue;
        }
        std::string label = item->Label() != NULL ? item->Label() : "";
        if (!item->IsEnabled())
            label += " (disabled)";
        labels.push_back(label);
    }
    return labels;
}

// Waits until the menu is on screen and done filling itself.
inline bool wait_until_shown(BMenu* menu) {
    return testing_support::wait_until([&] {
        MenuLock lock(menu);
        return lock.IsLocked() && menu->Window() != NULL && !menu->Window()->IsHidden() &&
               !BPrivate::MenuPrivate(menu).IsFilling();
    });
}

inline int32 luminance(rgb_color color) {
    return (int32)color.red * 3 + (int32)color.green * 6 + (int32)color.blue;
}

// The darkest pixel of a rectangle of a capture: where a glyph covers a pixel
// fully, it has the text colour itself.
inline rgb_color darkest_in(const BPrivate::Capture& capture, BRect rect) {
    rgb_color darkest = make_color(255, 255, 255);
    for (int32 y = (int32)rect.top; y <= (int32)rect.bottom; y++) {
        for (int32 x = (int32)rect.left; x <= (int32)rect.right; x++) {
            rgb_color color = capture.ColorAt(x, y);
            if (luminance(color) < luminance(darkest))
                darkest = color;
        }
    }
    return darkest;
}

// The fixture: a private home and an application on the headless display. Menu
// windows close in their own threads; each test waits for them.
class FileMenusTest : public testing_support::HeadlessAppTest {
protected:
    void TearDown() override {
        HeadlessAppTest::TearDown();
        EXPECT_TRUE(testing_support::wait_until([] { return HeadlessTestApi::Windows().empty(); }));
    }

    // A shown window with a menu bar across its top holding the given items.
    void MakeWindow(std::vector<BMenuItem*> items) {
        fWindow = new RecordingWindow(BRect(100, 100, 499, 299));
        fBar = new BMenuBar(BRect(0, 0, 399, 19), "bar");
        for (BMenuItem* item : items)
            fBar->AddItem(item);
        fWindow->AddChild(fBar);
        fWindow->Show();
        WaitForIdle();
    }

    // Opens the submenu of the bar's item by clicking it.
    void OpenItem(int32 index) {
        ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(fBar, index))));
    }

    void CloseMenus() {
        ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(900, 700)));
        ASSERT_TRUE(wait_for_menu_count(0));
        WaitForIdle();
    }

    testing_support::TestHome fHome;
    RecordingWindow* fWindow = NULL;
    BMenuBar* fBar = NULL;
};

} // namespace file_menus_testing

#endif // GLIMROW_FILE_MENUS_TEST_SUPPORT_H
