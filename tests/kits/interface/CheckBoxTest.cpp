// BCheckBox: its look checked and unchecked, enabled and disabled, and toggling
// by pointer and keyboard.
#include "ControlsTestSupport.h"

#include <CheckBox.h>

#include <gtest/gtest.h>

using BPrivate::Capture;
using BPrivate::HeadlessTestApi;
using testing_support::ControlsWindow;
using testing_support::count_color;
using testing_support::darkest_value;
using testing_support::HeadlessAppTest;

namespace {

class CheckBoxTest : public HeadlessAppTest {
protected:
    ControlsWindow* MakeWindow(uint32 flags = B_ASYNCHRONOUS_CONTROLS) {
        return new ControlsWindow(BRect(100, 100, 399, 299), &fLog, flags);
    }

    int32 ValueOf(BWindow* window, BCheckBox* box) {
        window->Lock();
        int32 value = box->Value();
        window->Unlock();
        return value;
    }
};

} // namespace

TEST_F(CheckBoxTest, CheckedBoxIsCrossedInTheMarkColour) {
    ControlsWindow* window = MakeWindow();
    BCheckBox* checked = new BCheckBox(BRect(10, 10, 150, 30), "checked", "Checked", NULL);
    BCheckBox* clear = new BCheckBox(BRect(10, 40, 150, 60), "clear", "Clear", NULL);
    window->AddChild(checked);
    window->AddChild(clear);
    window->Lock();
    checked->SetValue(B_CONTROL_ON);
    window->Unlock();
    window->Show();
    WaitForIdle();

    Capture capture;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
    rgb_color mark = ui_color(B_CONTROL_MARK_COLOR);
    BRect checkedBox(10, 10, 24, 30);
    BRect clearBox(10, 40, 24, 60);
    EXPECT_GE(count_color(capture, checkedBox, mark), 12);
    EXPECT_EQ(0, count_color(capture, clearBox, mark));
    EXPECT_GT(count_color(capture, clearBox, make_color(255, 255, 255)), 30);
}

TEST_F(CheckBoxTest, DisabledLabelIsDrawnInTheDisabledLabelColour) {
    ControlsWindow* window = MakeWindow();
    BCheckBox* enabled = new BCheckBox(BRect(10, 10, 150, 30), "enabled", "Enabled", NULL);
    BCheckBox* disabled = new BCheckBox(BRect(10, 40, 150, 60), "disabled", "Disabled", NULL);
    window->AddChild(enabled);
    window->AddChild(disabled);
    window->Lock();
    disabled->SetEnabled(false);
    window->Unlock();
    window->Show();
    WaitForIdle();

    Capture capture;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
    rgb_color disabledLabel = tint_color(ui_color(B_PANEL_BACKGROUND_COLOR), B_DISABLED_LABEL_TINT);
    BRect enabledLabel(28, 10, 150, 30);
    BRect disabledArea(28, 40, 150, 60);
    EXPECT_EQ(0, darkest_value(capture, enabledLabel));
    EXPECT_EQ(disabledLabel.red, darkest_value(capture, disabledArea));
    EXPECT_GT(count_color(capture, disabledArea, disabledLabel), 0);
}

TEST_F(CheckBoxTest, ClickTogglesTheValueAndInvokes) {
    ControlsWindow* window = MakeWindow();
    BCheckBox* box = new BCheckBox(BRect(10, 10, 150, 30), "box", "Box", new BMessage('chck'));
    window->AddChild(box);
    window->Show();
    WaitForIdle();

    BPoint where = ScreenPoint(window, BPoint(15, 20));
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(where));
    WaitForIdle();
    EXPECT_EQ(B_CONTROL_ON, ValueOf(window, box));
    EXPECT_EQ(1u, fLog.Count("chck box 1"));
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(where));
    WaitForIdle();
    EXPECT_EQ(B_CONTROL_OFF, ValueOf(window, box));
    EXPECT_EQ(1u, fLog.Count("chck box 0"));
}

TEST_F(CheckBoxTest, ClickInASynchronousWindowToggles) {
    ControlsWindow* window = MakeWindow(0);
    BCheckBox* box = new BCheckBox(BRect(10, 10, 150, 30), "box", "Box", new BMessage('chck'));
    window->AddChild(box);
    window->Show();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::Click(ScreenPoint(window, BPoint(60, 20))));
    EXPECT_TRUE(testing_support::wait_until([&] { return fLog.Count("chck box 1") == 1; }));
}

TEST_F(CheckBoxTest, ReleasingOutsideLeavesTheValue) {
    ControlsWindow* window = MakeWindow();
    BCheckBox* box = new BCheckBox(BRect(10, 10, 150, 30), "box", "Box", new BMessage('chck'));
    window->AddChild(box);
    window->Show();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::PressMouse(ScreenPoint(window, BPoint(15, 20))));
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseMouse(ScreenPoint(window, BPoint(200, 150))));
    WaitForIdle();
    EXPECT_EQ(B_CONTROL_OFF, ValueOf(window, box));
    EXPECT_TRUE(fLog.Lines().empty());
}

TEST_F(CheckBoxTest, SpaceTogglesTheFocusedBox) {
    ControlsWindow* window = MakeWindow();
    BCheckBox* box = new BCheckBox(BRect(10, 10, 150, 30), "box", "Box", new BMessage('chck'));
    window->AddChild(box);
    window->Lock();
    box->MakeFocus(true);
    window->Unlock();
    window->Show();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x5e));
    WaitForIdle();
    EXPECT_EQ(B_CONTROL_ON, ValueOf(window, box));
    EXPECT_EQ(1u, fLog.Count("chck box 1"));
}

TEST_F(CheckBoxTest, AnyValueButZeroChecksTheBox) {
    BCheckBox box(BRect(0, 0, 100, 20), "box", "Box", NULL);
    box.SetValue(42);
    EXPECT_EQ(B_CONTROL_ON, box.Value());
    box.SetValue(0);
    EXPECT_EQ(B_CONTROL_OFF, box.Value());
}

TEST_F(CheckBoxTest, PreferredSizeHoldsTheBoxAndTheLabel) {
    BCheckBox box(BRect(0, 0, 10, 10), "box", "A label", NULL);
    float width;
    float height;
    box.GetPreferredSize(&width, &height);
    EXPECT_GE(width, 12 + box.StringWidth("A label"));
    EXPECT_GE(height, 14);
}
