// Shared pieces of the menu tests: a window that records the messages it gets,
// menus and items that record their hooks or draw themselves plainly, and
// lookups of the open menu windows on the headless display.
#ifndef GLIMROW_TEST_MENU_TEST_SUPPORT_H
#define GLIMROW_TEST_MENU_TEST_SUPPORT_H

#include "HeadlessAppTest.h"
#include "Watchdog.h"
#include "interface/MenuPrivate.h"
#include "interface/WindowPrivate.h"

#include <Menu.h>
#include <MenuBar.h>
#include <MenuItem.h>
#include <Message.h>
#include <Window.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <vector>

namespace menu_testing {

using BPrivate::HeadlessTestApi;
using BPrivate::WindowListing;
using testing_support::EventLog;

// Messages sent to the window (the default target of menu items) are logged as
// "message <what as number> index <index>" and kept for inspection.
class RecordingWindow : public BWindow {
public:
    RecordingWindow(BRect frame, EventLog* log)
        : BWindow(frame, "menus", B_TITLED_WINDOW, B_WILL_ACCEPT_FIRST_CLICK), fLog(log) {}

    void MessageReceived(BMessage* message) override {
        // Test messages have lower-case codes ('open'); system ones do not.
        char first = (char)(message->what >> 24);
        if (first >= 'a' && first <= 'z') {
            fLog->Add("message " + std::to_string(message->what) + " index " +
                      std::to_string(message->GetInt32("index", -1)));
            std::lock_guard<std::mutex> lock(fLock);
            fMessages.push_back(*message);
            return;
        }
        BWindow::MessageReceived(message);
    }
    void MenusBeginning() override { fLog->Add("menus beginning"); }
    void MenusEnded() override { fLog->Add("menus ended"); }

    std::vector<BMessage> Messages() {
        std::lock_guard<std::mutex> lock(fLock);
        return fMessages;
    }

private:
    EventLog* fLog;
    std::mutex fLock;
    std::vector<BMessage> fMessages;
};

// A menu that logs its attach and detach hooks by name.
class LoggingMenu : public BMenu {
public:
    LoggingMenu(const char* name, EventLog* log, menu_layout layout = B_ITEMS_IN_COLUMN)
        : BMenu(name, layout), fLog(log) {}

    void AttachedToWindow() override {
        fLog->Add(std::string("attached ") + Name());
        BMenu::AttachedToWindow();
    }
    void AllDetached() override {
        fLog->Add(std::string("detached ") + Name());
        BMenu::AllDetached();
    }

private:
    EventLog* fLog;
};

// An item of a fixed content size that paints its whole frame in one colour,
// and another when selected.
class SwatchItem : public BMenuItem {
public:
    SwatchItem(const char* label, BMessage* message, float width, float height, rgb_color color)
        : BMenuItem(label, message), fWidth(width), fHeight(height), fColor(color) {}
    SwatchItem(BMenu* submenu, float width, float height, rgb_color color)
        : BMenuItem(submenu), fWidth(width), fHeight(height), fColor(color) {}

    bool Selected() const { return IsSelected(); }

protected:
    void GetContentSize(float* width, float* height) override {
        *width = fWidth;
        *height = fHeight;
    }
    void Draw() override {
        BMenu* menu = Menu();
        rgb_color color = IsSelected() ? make_color(0, 0, 0) : fColor;
        menu->SetHighColor(color);
        menu->FillRect(Frame());
    }

private:
    float fWidth;
    float fHeight;
    rgb_color fColor;
};

// The fixture of the menu tests: menu windows close in their own threads,
// sometimes just after the application is gone; each test waits for them so
// that the next one starts on an empty screen.
class MenuAppTest : public testing_support::HeadlessAppTest {
protected:
    void TearDown() override {
        HeadlessAppTest::TearDown();
        EXPECT_TRUE(testing_support::wait_until([] { return HeadlessTestApi::Windows().empty(); }));
    }
};

inline std::vector<WindowListing> menu_windows() {
    std::vector<WindowListing> windows;
    for (const WindowListing& window : HeadlessTestApi::Windows()) {
        if (window.feel == BPrivate::kMenuWindowFeel && window.visible)
            windows.push_back(window);
    }
    return windows;
}

inline bool find_menu_window(const char* title, WindowListing* found) {
    for (const WindowListing& window : menu_windows()) {
        if (window.title == title) {
            *found = window;
            return true;
        }
    }
    return false;
}

// Menu windows come and go in their own threads: these wait (with a deadline)
// until the screen shows what is expected.
inline bool wait_for_menu_window(const char* title, WindowListing* found) {
    return testing_support::wait_until([&] { return find_menu_window(title, found); });
}

inline bool wait_for_menu_count(size_t count) {
    return testing_support::wait_until([&] { return menu_windows().size() == count; });
}

// Locks the window a menu is shown in, if it is shown: a bar's own window, or
// the menu window that holds a submenu or pop-up (which comes and goes in its
// own thread, so only its claim on the menu can be read without its lock).
class MenuLock {
public:
    explicit MenuLock(BMenu* menu) : fWindow(NULL) {
        BWindow* window = dynamic_cast<BMenuBar*>(menu) != NULL
                              ? menu->Window()
                              : (BWindow*)BPrivate::MenuPrivate(menu).ClaimedBy();
        if (window == NULL || !window->Lock())
            return;
        if (menu->Window() != window) {
            window->Unlock();
            return;
        }
        fWindow = window;
    }
    ~MenuLock() {
        if (fWindow != NULL)
            fWindow->Unlock();
    }
    bool IsLocked() const { return fWindow != NULL; }

private:
    BWindow* fWindow;
};

// An item's frame on screen, read with its window locked.
inline BRect item_screen_frame(BMenu* menu, int32 index) {
    MenuLock lock(menu);
    if (!lock.IsLocked() || menu->ItemAt(index) == NULL)
        return BRect();
    return menu->ConvertToScreen(menu->ItemAt(index)->Frame());
}

inline BPoint center_of(BRect rect) {
    return BPoint(floorf((rect.left + rect.right) / 2), floorf((rect.top + rect.bottom) / 2));
}

inline bool same_color(rgb_color a, rgb_color b) {
    return a.red == b.red && a.green == b.green && a.blue == b.blue;
}

} // namespace menu_testing

#endif // GLIMROW_TEST_MENU_TEST_SUPPORT_H
