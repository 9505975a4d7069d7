// BControl: targets, invocation, enabling, tracking, focus marks and keyboard
// navigation between controls.
#include "ControlsTestSupport.h"

#include <Button.h>
#include <CheckBox.h>
#include <Control.h>
#include <StringView.h>

#include <gtest/gtest.h>

using BPrivate::Capture;
using BPrivate::HeadlessTestApi;
using testing_support::ControlsWindow;
using testing_support::count_color;
using testing_support::HeadlessAppTest;

namespace {

const int32 kTabKey = 0x26;

class PlainControl : public BControl {
public:
    PlainControl(BRect frame, const char* name, BMessage* message)
        : BControl(frame, name, "plain", message, B_FOLLOW_NONE, B_WILL_DRAW | B_NAVIGABLE) {}

    using BControl::IsTracking;
    using BControl::SetTracking;
    using BControl::SetValueNoUpdate;
};

class ControlTest : public HeadlessAppTest {
protected:
    ControlsWindow* MakeWindow() { return new ControlsWindow(BRect(100, 100, 399, 299), &fLog); }

    BView* Focus(BWindow* window) {
        window->Lock();
        BView* focus = window->CurrentFocus();
        window->Unlock();
        return focus;
    }
};

} // namespace

TEST_F(ControlTest, ControlTargetsItsWindowWhenAttachedWithoutTarget) {
    ControlsWindow* window = MakeWindow();
    PlainControl* control = new PlainControl(BRect(10, 10, 60, 30), "plain", new BMessage('plan'));
    EXPECT_FALSE(control->Messenger().IsValid());
    window->AddChild(control);
    EXPECT_EQ(window, control->Target());
    window->Show();

    window->Lock();
    control->SetValue(7);
    EXPECT_EQ(B_OK, control->Invoke());
    window->Unlock();
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("plan plain 7"));
}

TEST_F(ControlTest, ControlKeepsATargetSetBeforeItWasAttached) {
    ControlsWindow* window = MakeWindow();
    ControlsWindow* other = new ControlsWindow(BRect(0, 0, 50, 50), &fLog);
    PlainControl* control = new PlainControl(BRect(10, 10, 60, 30), "plain", new BMessage('plan'));
    ASSERT_EQ(B_OK, control->SetTarget(BMessenger(other)));
    window->AddChild(control);
    EXPECT_EQ(other, control->Target());
    other->Lock();
    other->Quit();
    window->Lock();
    window->Quit();
}

TEST_F(ControlTest, InvokeWithoutAMessageFails) {
    ControlsWindow* window = MakeWindow();
    PlainControl* control = new PlainControl(BRect(10, 10, 60, 30), "plain", NULL);
    window->AddChild(control);
    window->Lock();
    EXPECT_EQ(B_BAD_VALUE, control->Invoke());
    window->Quit();
}

TEST_F(ControlTest, InvokeSendsTheGivenMessageInsteadOfTheModel) {
    ControlsWindow* window = MakeWindow();
    PlainControl* control = new PlainControl(BRect(10, 10, 60, 30), "plain", new BMessage('plan'));
    window->AddChild(control);
    window->Show();
    window->Lock();
    BMessage other('othr');
    EXPECT_EQ(B_OK, control->Invoke(&other));
    window->Unlock();
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("othr plain 0"));
    EXPECT_EQ(0u, fLog.Count("plan plain 0"));
}

TEST_F(ControlTest, DisabledControlLeavesKeyboardNavigationUntilEnabledAgain) {
    ControlsWindow* window = MakeWindow();
    PlainControl* control = new PlainControl(BRect(10, 10, 60, 30), "plain", NULL);
    window->AddChild(control);
    window->Lock();
    control->SetEnabled(false);
    EXPECT_FALSE(control->IsEnabled());
    EXPECT_EQ(0u, control->Flags() & B_NAVIGABLE);
    control->SetEnabled(true);
    EXPECT_NE(0u, control->Flags() & B_NAVIGABLE);
    window->Quit();
}

TEST_F(ControlTest, SetLabelCopiesTheLabel) {
    char label[] = "first";
    PlainControl control(BRect(0, 0, 10, 10), "plain", NULL);
    control.SetLabel(label);
    label[0] = 'X';
    EXPECT_STREQ("first", control.Label());
    control.SetLabel(NULL);
    EXPECT_EQ(NULL, control.Label());
}

TEST_F(ControlTest, TrackingIsSetAndClearedBySubclasses) {
    PlainControl control(BRect(0, 0, 10, 10), "plain", NULL);
    EXPECT_FALSE(control.IsTracking());
    control.SetTracking(true);
    EXPECT_TRUE(control.IsTracking());
    control.SetTracking(false);
    EXPECT_FALSE(control.IsTracking());
}

TEST_F(ControlTest, SetValueNoUpdateChangesTheValueOnly) {
    PlainControl control(BRect(0, 0, 10, 10), "plain", NULL);
    control.SetValueNoUpdate(3);
    EXPECT_EQ(3, control.Value());
}

TEST_F(ControlTest, SpaceTogglesTheFocusedControlAndInvokes) {
    ControlsWindow* window = MakeWindow();
    PlainControl* control = new PlainControl(BRect(10, 10, 60, 30), "plain", new BMessage('plan'));
    window->AddChild(control);
    window->Show();
    window->Lock();
    control->MakeFocus(true);
    window->Unlock();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x5e));
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("plan plain 1"));
    window->Lock();
    EXPECT_EQ(B_CONTROL_ON, control->Value());
    window->Unlock();
}

TEST_F(ControlTest, TabMovesTheFocusAcrossNavigableControlsSkippingDisabledOnes) {
    ControlsWindow* window = MakeWindow();
    BButton* first = new BButton(BRect(10, 10, 90, 30), "first", "First", NULL);
    BStringView* label = new BStringView(BRect(10, 40, 90, 55), "label", "Not navigable");
    BCheckBox* disabled = new BCheckBox(BRect(10, 60, 150, 75), "disabled", "Disabled", NULL);
    BCheckBox* second = new BCheckBox(BRect(10, 80, 150, 95), "second", "Second", NULL);
    BButton* third = new BButton(BRect(10, 100, 90, 120), "third", "Third", NULL);
    window->AddChild(first);
    window->AddChild(label);
    window->AddChild(disabled);
    window->AddChild(second);
    window->AddChild(third);
    window->Lock();
    disabled->SetEnabled(false);
    first->MakeFocus(true);
    window->Unlock();
    window->Show();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kTabKey));
    WaitForIdle();
    EXPECT_EQ(second, Focus(window));
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kTabKey));
    WaitForIdle();
    EXPECT_EQ(third, Focus(window));
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kTabKey));
    WaitForIdle();
    EXPECT_EQ(first, Focus(window));
}

TEST_F(ControlTest, ShiftTabMovesTheFocusBackwards) {
    ControlsWindow* window = MakeWindow();
    BButton* first = new BButton(BRect(10, 10, 90, 30), "first", "First", NULL);
    BButton* second = new BButton(BRect(10, 40, 90, 60), "second", "Second", NULL);
    BButton* third = new BButton(BRect(10, 70, 90, 90), "third", "Third", NULL);
    window->AddChild(first);
    window->AddChild(second);
    window->AddChild(third);
    window->Lock();
    second->MakeFocus(true);
    window->Unlock();
    window->Show();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kTabKey, NULL, B_SHIFT_KEY | B_LEFT_SHIFT_KEY));
    WaitForIdle();
    EXPECT_EQ(first, Focus(window));
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kTabKey, NULL, B_SHIFT_KEY | B_LEFT_SHIFT_KEY));
    WaitForIdle();
    EXPECT_EQ(third, Focus(window));
}

TEST_F(ControlTest, FocusedControlShowsTheNavigationColourOnlyInTheActiveWindow) {
    ControlsWindow* window = MakeWindow();
    BButton* button = new BButton(BRect(10, 10, 110, 30), "button", "Focus me", NULL);
    window->AddChild(button);
    window->Show();
    WaitForIdle();
    rgb_color navigation = keyboard_navigation_color();

    Capture before;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &before));
    EXPECT_EQ(0, count_color(before, button->Frame(), navigation));

    window->Lock();
    button->MakeFocus(true);
    window->Unlock();
    WaitForIdle();
    Capture focused;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &focused));
    EXPECT_GT(count_color(focused, button->Frame(), navigation), 10);

    window->Activate(false);
    WaitForIdle();
    Capture inactive;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &inactive));
    EXPECT_EQ(0, count_color(inactive, button->Frame(), navigation));
}

TEST_F(ControlTest, TabWithoutAFocusFocusesTheFirstNavigableControl) {
    ControlsWindow* window = MakeWindow();
    BStringView* label = new BStringView(BRect(10, 10, 90, 25), "label", "Not navigable");
    BButton* first = new BButton(BRect(10, 40, 90, 60), "first", "First", NULL);
    BButton* second = new BButton(BRect(10, 70, 90, 90), "second", "Second", NULL);
    window->AddChild(label);
    window->AddChild(first);
    window->AddChild(second);
    window->Show();
    WaitForIdle();
    ASSERT_EQ(NULL, Focus(window));

    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kTabKey));
    WaitForIdle();
    EXPECT_EQ(first, Focus(window));
}
