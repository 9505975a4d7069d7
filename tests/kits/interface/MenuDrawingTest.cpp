// The look of menus, checked by pixels on the headless screen: light grey with a
// raised frame, the selected item darkened, disabled items faded, submenu
// arrows, shortcuts, check marks, separators, triggers while the keyboard
// drives; and bars whose items lay themselves out and paint themselves.
#include "MenuTestSupport.h"

#include <InterfaceDefs.h>

#include <gtest/gtest.h>

using namespace menu_testing;
using BPrivate::Capture;

namespace {

const rgb_color kRed = {255, 0, 0, 255};
const rgb_color kGreen = {0, 255, 0, 255};
const rgb_color kBlue = {0, 0, 255, 255};

// The darkest grey level in a rectangle of the capture (screen coordinates).
uint8 darkest(const Capture& capture, BRect rect) {
    uint8 result = 255;
    for (int32 y = (int32)rect.top; y <= (int32)rect.bottom; y++) {
        for (int32 x = (int32)rect.left; x <= (int32)rect.right; x++) {
            rgb_color color = capture.ColorAt(x, y);
            uint8 level = std::min(color.red, std::min(color.green, color.blue));
            result = std::min(result, level);
        }
    }
    return result;
}

int32 count_darker(const Capture& capture, BRect rect, uint8 level) {
    int32 count = 0;
    for (int32 y = (int32)rect.top; y <= (int32)rect.bottom; y++) {
        for (int32 x = (int32)rect.left; x <= (int32)rect.right; x++) {
            rgb_color color = capture.ColorAt(x, y);
            if (color.red < level && color.green < level && color.blue < level)
                count++;
        }
    }
    return count;
}

// A bar of cells, as a subclass sets it up: its own margins, no resizing.
class CellBar : public BMenuBar {
public:
    CellBar(const char* name, menu_layout layout)
        : BMenuBar(BRect(0, 0, 1, 1), name, B_FOLLOW_NONE, layout, false) {
        SetItemMargins(2, 2, 2, 2);
    }
};

class MenuDrawingTest : public MenuAppTest {
protected:
    void MakeWindow() {
        fWindow = new RecordingWindow(BRect(100, 100, 399, 299), &fLog);
        fBar = new BMenuBar(BRect(0, 0, 299, 19), "bar");
        fFile = new BMenu("File");
        fFile->AddItem(new BMenuItem("Open", new BMessage('open')));
        fFile->AddItem(new BMenuItem("Copy", new BMessage('copy'), 'C'));
        BMenuItem* disabled = new BMenuItem("Paste", new BMessage('past'));
        disabled->SetEnabled(false);
        fFile->AddItem(disabled);
        fFile->AddSeparatorItem();
        BMenu* recent = new BMenu("Recent");
        recent->AddItem(new BMenuItem("One", new BMessage('one_')));
        fFile->AddItem(recent);
        BMenuItem* marked = new BMenuItem("Wrap", new BMessage('wrap'));
        marked->SetMarked(true);
        fFile->AddItem(marked);
        fBar->AddItem(fFile);
        fWindow->AddChild(fBar);
        fWindow->Show();
        WaitForIdle();
    }

    void OpenFile() {
        ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(fBar, 0))));
        WaitForIdle();
        ASSERT_TRUE(wait_for_menu_window("File", &fListing));
    }

    Capture Screen() {
        Capture capture;
        EXPECT_EQ(B_OK, HeadlessTestApi::CaptureScreen(&capture));
        return capture;
    }

    // The left margin of an item, where only the background shows.
    BRect Margin(int32 index) {
        BRect item = item_screen_frame(fFile, index);
        return BRect(item.left + 2, item.top + 3, item.left + 4, item.bottom - 3);
    }

    // The right end of an item, where shortcuts and arrows go.
    BRect RightEnd(int32 index) {
        BRect item = item_screen_frame(fFile, index);
        return BRect(item.right - 25, item.top + 1, item.right - 2, item.bottom - 1);
    }

    BRect Label(int32 index) {
        BRect item = item_screen_frame(fFile, index);
        return BRect(item.left + 14, item.top + 1, item.left + 40, item.bottom - 1);
    }

    RecordingWindow* fWindow = NULL;
    BMenuBar* fBar = NULL;
    BMenu* fFile = NULL;
    WindowListing fListing;
};

} // namespace

TEST_F(MenuDrawingTest, MenuIsLightGreyInsideARaisedFrame) {
    MakeWindow();
    OpenFile();
    Capture capture = Screen();
    BRect frame = fListing.frame;
    rgb_color background = ui_color(B_MENU_BACKGROUND_COLOR);
    EXPECT_TRUE(same_color(background, capture.ColorAt(frame.left + 3, (int32)frame.top + 5)));
    int32 middleX = (int32)(frame.left + frame.Width() / 2);
    int32 middleY = (int32)(frame.top + frame.Height() / 2);
    rgb_color light = tint_color(background, B_LIGHTEN_MAX_TINT);
    rgb_color dark = tint_color(background, B_DARKEN_2_TINT);
    EXPECT_TRUE(same_color(light, capture.ColorAt(middleX, (int32)frame.top)));
    EXPECT_TRUE(same_color(light, capture.ColorAt((int32)frame.left, middleY)));
    EXPECT_TRUE(same_color(dark, capture.ColorAt(middleX, (int32)frame.bottom)));
    EXPECT_TRUE(same_color(dark, capture.ColorAt((int32)frame.right, middleY)));
}

TEST_F(MenuDrawingTest, ItemUnderThePointerIsDarkened) {
    MakeWindow();
    OpenFile();
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(center_of(item_screen_frame(fFile, 0))));
    WaitForIdle();
    Capture capture = Screen();
    BPoint margin = Margin(0).LeftTop();
    EXPECT_TRUE(same_color(ui_color(B_MENU_SELECTED_BACKGROUND_COLOR),
                           capture.ColorAt((int32)margin.x, (int32)margin.y)));
    BPoint other = Margin(1).LeftTop();
    EXPECT_TRUE(same_color(ui_color(B_MENU_BACKGROUND_COLOR),
                           capture.ColorAt((int32)other.x, (int32)other.y)));
}

TEST_F(MenuDrawingTest, BarItemIsDarkenedWhileItsMenuIsOpen) {
    MakeWindow();
    OpenFile();
    Capture capture = Screen();
    BRect item = item_screen_frame(fBar, 0);
    EXPECT_TRUE(same_color(ui_color(B_MENU_SELECTED_BACKGROUND_COLOR),
                           capture.ColorAt((int32)item.left + 3, (int32)item.top + 3)));
}

TEST_F(MenuDrawingTest, DisabledItemIsFadedAndEnabledIsBlack) {
    MakeWindow();
    OpenFile();
    Capture capture = Screen();
    EXPECT_LT(darkest(capture, Label(0)), 60);
    uint8 faded = darkest(capture, Label(2));
    EXPECT_GE(faded, 100);
    EXPECT_LT(faded, 200);
}

TEST_F(MenuDrawingTest, ItemWithASubmenuShowsAnArrow) {
    MakeWindow();
    OpenFile();
    Capture capture = Screen();
    EXPECT_LT(darkest(capture, RightEnd(4)), 60);
    EXPECT_GE(darkest(capture, RightEnd(0)), 200);
}

TEST_F(MenuDrawingTest, ShortcutIsDrawnAtTheRightWithTheCommandSymbol) {
    MakeWindow();
    OpenFile();
    Capture capture = Screen();
    BRect item = item_screen_frame(fFile, 1);
    BRect shortcut(item.right - 45, item.top + 1, item.right - 2, item.bottom - 1);
    int32 dark = count_darker(capture, shortcut, 100);
    EXPECT_GT(dark, 20);
    // The key ends at the right margin; the symbol stands just before it.
    BRect key(item.right - 28, item.top + 1, item.right - 19, item.bottom - 1);
    BRect symbol(item.right - 40, item.top + 1, item.right - 29, item.bottom - 1);
    EXPECT_GT(count_darker(capture, symbol, 100), 5);
    EXPECT_GT(count_darker(capture, key, 100), 5);
    BRect plain = item_screen_frame(fFile, 0);
    EXPECT_EQ(
        0, count_darker(capture,
                        BRect(plain.right - 45, plain.top + 1, plain.right - 2, plain.bottom - 1),
                        100));
}

TEST_F(MenuDrawingTest, MarkedItemShowsACheckMark) {
    MakeWindow();
    OpenFile();
    Capture capture = Screen();
    BRect marked = item_screen_frame(fFile, 5);
    BRect plain = item_screen_frame(fFile, 0);
    EXPECT_GT(count_darker(capture,
                           BRect(marked.left + 1, marked.top, marked.left + 12, marked.bottom),
                           100),
              4);
    EXPECT_EQ(0,
              count_darker(capture, BRect(plain.left + 1, plain.top, plain.left + 12, plain.bottom),
                           100));
}

TEST_F(MenuDrawingTest, SeparatorIsAnEngravedLine) {
    MakeWindow();
    OpenFile();
    Capture capture = Screen();
    BRect separator = item_screen_frame(fFile, 3);
    int32 x = (int32)(separator.left + separator.Width() / 2);
    rgb_color background = ui_color(B_MENU_BACKGROUND_COLOR);
    rgb_color dark = tint_color(background, B_DARKEN_2_TINT);
    rgb_color light = tint_color(background, B_LIGHTEN_2_TINT);
    bool found = false;
    for (int32 y = (int32)separator.top; y < (int32)separator.bottom; y++) {
        if (same_color(dark, capture.ColorAt(x, y)) && same_color(light, capture.ColorAt(x, y + 1)))
            found = true;
    }
    EXPECT_TRUE(found);
}

TEST_F(MenuDrawingTest, TriggersAreUnderlinedOnlyWhileTheKeyboardDrives) {
    MakeWindow();
    OpenFile();
    Capture byMouse = Screen();
    int32 mouseCount = count_darker(byMouse, Label(0), 100);
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(900, 700)));
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x01, NULL, B_COMMAND_KEY));
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x62, NULL, 0));
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x62, NULL, 0));
    WaitForIdle();
    // "Open" is not selected any more; its 'O' is underlined.
    Capture byKeyboard = Screen();
    EXPECT_GT(count_darker(byKeyboard, Label(0), 100), mouseCount + 3);
}

TEST_F(MenuDrawingTest, ItemsOfARowBarLayThemselvesOutAndPaintThemselves) {
    BWindow* window = new RecordingWindow(BRect(100, 100, 399, 199), &fLog);
    BMenuBar* bar = new CellBar("row", B_ITEMS_IN_ROW);
    bar->AddItem(new SwatchItem("a", NULL, 15, 15, kRed));
    bar->AddItem(new SwatchItem("b", NULL, 15, 15, kGreen));
    bar->AddItem(new SwatchItem("c", NULL, 15, 15, kBlue));
    window->AddChild(bar);
    ASSERT_TRUE(window->Lock());
    // The bar is sized as its cells add up.
    bar->ResizeTo(59, 19);
    EXPECT_EQ(BRect(0, 0, 19, 19), bar->ItemAt(0)->Frame());
    EXPECT_EQ(BRect(20, 0, 39, 19), bar->ItemAt(1)->Frame());
    EXPECT_EQ(BRect(40, 0, 59, 19), bar->ItemAt(2)->Frame());
    window->Unlock();
    window->Show();
    WaitForIdle();

    Capture capture;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
    EXPECT_TRUE(same_color(kRed, capture.ColorAt(10, 10)));
    EXPECT_TRUE(same_color(kRed, capture.ColorAt(18, 10)));
    EXPECT_TRUE(same_color(kGreen, capture.ColorAt(21, 10)));
    EXPECT_TRUE(same_color(kBlue, capture.ColorAt(50, 10)));
}

TEST_F(MenuDrawingTest, ItemsOfAColumnBarStackOnePixelApart) {
    BWindow* window = new RecordingWindow(BRect(100, 100, 199, 299), &fLog);
    BMenuBar* bar = new CellBar("column", B_ITEMS_IN_COLUMN);
    bar->AddItem(new SwatchItem("a", NULL, 33, 33, kRed));
    bar->AddItem(new SwatchItem("b", NULL, 33, 33, kGreen));
    window->AddChild(bar);
    ASSERT_TRUE(window->Lock());
    bar->ResizeTo(37, 75);
    EXPECT_EQ(BRect(0, 0, 37, 37), bar->ItemAt(0)->Frame());
    EXPECT_EQ(BRect(0, 38, 37, 75), bar->ItemAt(1)->Frame());
    window->Unlock();
    window->Show();
    WaitForIdle();

    Capture capture;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
    EXPECT_TRUE(same_color(kRed, capture.ColorAt(18, 36)));
    EXPECT_TRUE(same_color(kGreen, capture.ColorAt(18, 39)));
}

TEST_F(MenuDrawingTest, CustomItemDrawsItselfSelectedWhileItsMenuIsOpen) {
    BWindow* window = new RecordingWindow(BRect(100, 100, 399, 199), &fLog);
    BMenuBar* bar = new BMenuBar(BRect(0, 0, 100, 30), "row", B_FOLLOW_NONE, B_ITEMS_IN_ROW, false);
    BMenu* menu = new BMenu("menu");
    menu->AddItem(new BMenuItem("Inside", new BMessage('insd')));
    bar->AddItem(new SwatchItem(menu, 20, 20, kRed));
    window->AddChild(bar);
    window->Show();
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(bar, 0))));
    WaitForIdle();
    Capture capture;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
    EXPECT_TRUE(same_color(make_color(0, 0, 0), capture.ColorAt(5, 5)));
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(900, 700)));
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
    EXPECT_TRUE(same_color(kRed, capture.ColorAt(5, 5)));
}
