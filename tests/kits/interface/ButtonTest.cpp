// BButton: its look (the default button's ring, a disabled label), pressing by
// pointer and keyboard, the default button and Enter.
#include "ControlsTestSupport.h"

#include <Button.h>
#include <TextView.h>

#include <gtest/gtest.h>

using BPrivate::Capture;
using BPrivate::HeadlessTestApi;
using testing_support::ControlsWindow;
using testing_support::count_color;
using testing_support::darkest_value;
using testing_support::HeadlessAppTest;
using testing_support::same_color;

namespace {

const int32 kEnterKey = 0x47;
const int32 kSpaceKey = 0x5e;

class ButtonTest : public HeadlessAppTest {
protected:
    ControlsWindow* MakeWindow(uint32 flags = B_ASYNCHRONOUS_CONTROLS) {
        return new ControlsWindow(BRect(100, 100, 399, 299), &fLog, flags);
    }

    BPoint Center(BWindow* window, BView* view) {
        window->Lock();
        BRect frame = view->Frame();
        window->Unlock();
        return ScreenPoint(window,
                           BPoint((frame.left + frame.right) / 2, (frame.top + frame.bottom) / 2));
    }

    int32 ValueOf(BWindow* window, BButton* button) {
        window->Lock();
        int32 value = button->Value();
        window->Unlock();
        return value;
    }
};

} // namespace

TEST_F(ButtonTest, TooLowAFrameIsMadeAsHighAsTheFontNeeds) {
    BButton button(BRect(0, 0, 80, 2), "low", "Low", NULL);
    font_height height;
    be_plain_font->GetHeight(&height);
    EXPECT_GE(button.Bounds().Height(), ceilf(height.ascent + height.descent) + 4);
    EXPECT_EQ(80, button.Bounds().Width());
}

TEST_F(ButtonTest, PreferredWidthFitsTheLabelAndIsAtLeastTheUsualWidth) {
    BButton shortLabel(BRect(0, 0, 10, 10), "short", "OK", NULL);
    BButton longLabel(BRect(0, 0, 10, 10), "long", "A rather long label for a button", NULL);
    float width;
    float height;
    shortLabel.GetPreferredSize(&width, &height);
    EXPECT_EQ(75, width);
    longLabel.GetPreferredSize(&width, &height);
    EXPECT_GE(width, longLabel.StringWidth(longLabel.Label()) + 20);
}

TEST_F(ButtonTest, MakeDefaultGrowsTheFrameByTheRingAndTellsTheWindow) {
    ControlsWindow* window = MakeWindow();
    BButton* first = new BButton(BRect(20, 20, 100, 40), "first", "First", NULL);
    BButton* second = new BButton(BRect(120, 20, 200, 40), "second", "Second", NULL);
    window->AddChild(first);
    window->AddChild(second);
    window->Lock();
    BRect frame = first->Frame();
    first->MakeDefault(true);
    EXPECT_TRUE(first->IsDefault());
    EXPECT_EQ(first, window->DefaultButton());
    EXPECT_EQ(frame.InsetByCopy(-3, -3), first->Frame());

    second->MakeDefault(true);
    EXPECT_EQ(second, window->DefaultButton());
    EXPECT_FALSE(first->IsDefault());
    EXPECT_EQ(frame, first->Frame());
    window->Quit();
}

TEST_F(ButtonTest, DefaultButtonIsDrawnWithItsRing) {
    ControlsWindow* window = MakeWindow();
    BButton* plain = new BButton(BRect(20, 20, 100, 44), "plain", "Plain", NULL);
    BButton* chosen = new BButton(BRect(150, 20, 230, 44), "chosen", "Chosen", NULL);
    window->AddChild(plain);
    window->AddChild(chosen);
    window->Lock();
    chosen->MakeDefault(true);
    BRect ring = chosen->Frame();
    window->Unlock();
    window->Show();
    WaitForIdle();

    Capture capture;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
    rgb_color background = ui_color(B_PANEL_BACKGROUND_COLOR);
    rgb_color band = tint_color(background, B_DARKEN_1_TINT);
    rgb_color outline = tint_color(background, B_DARKEN_4_TINT);
    int32 middle = (int32)((ring.top + ring.bottom) / 2);
    // The ring's outline, then its band, then the face's own frame.
    EXPECT_TRUE(same_color(outline, capture.ColorAt((int32)ring.left, middle)));
    EXPECT_TRUE(same_color(band, capture.ColorAt((int32)ring.left + 1, middle)));
    EXPECT_TRUE(same_color(band, capture.ColorAt((int32)ring.left + 2, middle)));
    EXPECT_TRUE(same_color(outline, capture.ColorAt((int32)ring.left + 3, middle)));
    EXPECT_TRUE(same_color(band, capture.ColorAt((int32)ring.left + 10, (int32)ring.top + 1)));
    // The plain button has no ring: its frame is the outermost thing drawn.
    EXPECT_FALSE(same_color(outline, capture.ColorAt(19, 32)));
    EXPECT_FALSE(same_color(band, capture.ColorAt(19, 32)));
    EXPECT_TRUE(same_color(outline, capture.ColorAt(20, 32)));
    EXPECT_EQ(0, count_color(capture, BRect(17, 17, 102, 19), band));
}

TEST_F(ButtonTest, DisabledButtonLabelIsDrawnInTheDisabledLabelColour) {
    ControlsWindow* window = MakeWindow();
    BButton* enabled = new BButton(BRect(20, 20, 120, 44), "enabled", "Enabled", NULL);
    BButton* disabled = new BButton(BRect(150, 20, 250, 44), "disabled", "Disabled", NULL);
    window->AddChild(enabled);
    window->AddChild(disabled);
    window->Lock();
    disabled->SetEnabled(false);
    window->Unlock();
    window->Show();
    WaitForIdle();

    Capture capture;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
    rgb_color background = ui_color(B_PANEL_BACKGROUND_COLOR);
    rgb_color disabledLabel = tint_color(background, B_DISABLED_LABEL_TINT);
    // Inside the faces, away from their edges, only the labels are drawn.
    BRect enabledFace(23, 23, 117, 41);
    BRect disabledFace(153, 23, 247, 41);
    EXPECT_EQ(0, darkest_value(capture, enabledFace));
    EXPECT_EQ(disabledLabel.red, darkest_value(capture, disabledFace));
    EXPECT_GT(count_color(capture, disabledFace, disabledLabel), 0);
}

TEST_F(ButtonTest, PressingSetsTheValueToOneAndReleasingOverTheButtonInvokes) {
    ControlsWindow* window = MakeWindow();
    BButton* button = new BButton(BRect(20, 20, 120, 44), "button", "Press", new BMessage('prss'));
    window->AddChild(button);
    window->Show();
    WaitForIdle();

    BPoint center = Center(window, button);
    ASSERT_EQ(B_OK, HeadlessTestApi::PressMouse(center));
    WaitForIdle();
    EXPECT_EQ(B_CONTROL_ON, ValueOf(window, button));
    EXPECT_EQ(0u, fLog.Count("prss button 1"));

    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseMouse(center));
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("prss button 1"));
    EXPECT_EQ(B_CONTROL_OFF, ValueOf(window, button));
}

TEST_F(ButtonTest, ReleasingAwayFromTheButtonDoesNotInvoke) {
    ControlsWindow* window = MakeWindow();
    BButton* button = new BButton(BRect(20, 20, 120, 44), "button", "Press", new BMessage('prss'));
    window->AddChild(button);
    window->Show();
    WaitForIdle();

    BPoint center = Center(window, button);
    BPoint away = ScreenPoint(window, BPoint(200, 150));
    ASSERT_EQ(B_OK, HeadlessTestApi::PressMouse(center));
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(away));
    WaitForIdle();
    EXPECT_EQ(B_CONTROL_OFF, ValueOf(window, button));
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseMouse(away));
    WaitForIdle();
    EXPECT_EQ(0u, fLog.Count("prss button 1"));
}

TEST_F(ButtonTest, ClickInASynchronousWindowInvokesAfterTheTrackingLoop) {
    ControlsWindow* window = MakeWindow(0);
    BButton* button = new BButton(BRect(20, 20, 120, 44), "button", "Press", new BMessage('prss'));
    window->AddChild(button);
    window->Show();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::Click(Center(window, button)));
    EXPECT_TRUE(testing_support::wait_until([&] { return fLog.Count("prss button 1") == 1; }));
    EXPECT_EQ(B_CONTROL_OFF, ValueOf(window, button));
}

TEST_F(ButtonTest, DisabledButtonIgnoresClicks) {
    ControlsWindow* window = MakeWindow();
    BButton* button = new BButton(BRect(20, 20, 120, 44), "button", "Press", new BMessage('prss'));
    window->AddChild(button);
    window->Lock();
    button->SetEnabled(false);
    window->Unlock();
    window->Show();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::Click(Center(window, button)));
    WaitForIdle();
    EXPECT_EQ(0u, fLog.Lines().size());
}

TEST_F(ButtonTest, WindowThatAcceptsFirstClickLetsTheActivatingClickPressTheButton) {
    ControlsWindow* window = MakeWindow(B_ASYNCHRONOUS_CONTROLS | B_WILL_ACCEPT_FIRST_CLICK);
    BButton* button = new BButton(BRect(20, 20, 120, 44), "button", "Press", new BMessage('prss'));
    window->AddChild(button);
    window->Show();
    BWindow* other = new BWindow(BRect(500, 500, 600, 600), "other", B_TITLED_WINDOW, 0);
    other->Show();
    WaitForIdle();
    ASSERT_FALSE(window->IsActive());

    ASSERT_EQ(B_OK, HeadlessTestApi::Click(Center(window, button)));
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("prss button 1"));
}

TEST_F(ButtonTest, ActivatingClickIsSwallowedWithoutFirstClickFlag) {
    ControlsWindow* window = MakeWindow();
    BButton* button = new BButton(BRect(20, 20, 120, 44), "button", "Press", new BMessage('prss'));
    window->AddChild(button);
    window->Show();
    BWindow* other = new BWindow(BRect(500, 500, 600, 600), "other", B_TITLED_WINDOW, 0);
    other->Show();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::Click(Center(window, button)));
    WaitForIdle();
    EXPECT_EQ(0u, fLog.Count("prss button 1"));
    EXPECT_TRUE(window->IsActive());
}

TEST_F(ButtonTest, EnterPressesTheDefaultButtonWhereverTheFocusIs) {
    ControlsWindow* window = MakeWindow();
    BButton* focused = new BButton(BRect(20, 20, 120, 44), "focused", "Focused", NULL);
    BButton* chosen =
        new BButton(BRect(150, 20, 250, 44), "chosen", "Chosen", new BMessage('dflt'));
    window->AddChild(focused);
    window->AddChild(chosen);
    window->Lock();
    chosen->MakeDefault(true);
    focused->MakeFocus(true);
    window->Unlock();
    window->Show();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kEnterKey));
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("dflt chosen 1"));
    EXPECT_EQ(B_CONTROL_OFF, ValueOf(window, chosen));
}

TEST_F(ButtonTest, EnterGoesToAFocusedEditableTextViewInsteadOfTheDefaultButton) {
    ControlsWindow* window = MakeWindow();
    BTextView* text = new BTextView(BRect(20, 60, 200, 120), "text", BRect(0, 0, 180, 60),
                                    B_FOLLOW_NONE, B_WILL_DRAW);
    BButton* chosen =
        new BButton(BRect(150, 20, 250, 44), "chosen", "Chosen", new BMessage('dflt'));
    window->AddChild(text);
    window->AddChild(chosen);
    window->Lock();
    chosen->MakeDefault(true);
    text->MakeFocus(true);
    window->Unlock();
    window->Show();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kEnterKey));
    WaitForIdle();
    EXPECT_EQ(0u, fLog.Count("dflt chosen 1"));
    window->Lock();
    EXPECT_STREQ("\n", text->Text());
    window->Unlock();
}

TEST_F(ButtonTest, SpacePressesTheFocusedButton) {
    ControlsWindow* window = MakeWindow();
    BButton* button = new BButton(BRect(20, 20, 120, 44), "button", "Press", new BMessage('prss'));
    window->AddChild(button);
    window->Lock();
    button->MakeFocus(true);
    window->Unlock();
    window->Show();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kSpaceKey));
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("prss button 1"));
}

TEST_F(ButtonTest, PressedButtonIsDrawnDarkWithAWhiteLabel) {
    ControlsWindow* window = MakeWindow();
    BButton* button = new BButton(BRect(20, 20, 120, 44), "button", "Pressed", NULL);
    window->AddChild(button);
    window->Show();
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::PressMouse(Center(window, button)));
    WaitForIdle();

    Capture capture;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
    rgb_color face = tint_color(ui_color(B_PANEL_BACKGROUND_COLOR), B_DARKEN_3_TINT);
    EXPECT_TRUE(same_color(face, capture.ColorAt(25, 25)));
    // Only the label is lighter than the dark face.
    int32 light = 0;
    for (int32 y = 23; y <= 41; y++) {
        for (int32 x = 23; x <= 117; x++) {
            if (capture.ColorAt(x, y).red > face.red + 40)
                light++;
        }
    }
    EXPECT_GT(light, 10);
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseMouse(Center(window, button)));
}
