// BAlert: layout (icon, text, button widths), placement, keyboard, and Go()
// from the application's thread, a window's thread and a plain thread, driven
// through the headless test API.
#include "ControlsTestSupport.h"
#include "interface/AlertIcons.h"

#include <Alert.h>
#include <Application.h>
#include <Button.h>
#include <Invoker.h>
#include <Screen.h>
#include <TextView.h>

#include <gtest/gtest.h>

#include <atomic>
#include <math.h>
#include <stdlib.h>

using BPrivate::AlertListing;
using BPrivate::Capture;
using BPrivate::HeadlessTestApi;
using BPrivate::WindowListing;
using testing_support::BlockingCall;
using testing_support::ControlsWindow;
using testing_support::count_color;
using testing_support::HeadlessAppTest;

namespace {

const int32 kEnterKey = 0x47;
const int32 kEscapeKey = 0x01;

class AlertTest : public HeadlessAppTest {
protected:
    // Makes the alert and runs its Go() on a plain thread (an alert belongs to
    // the thread that made it until it runs).
    BlockingCall<int32> GoAsync(std::function<BAlert*()> make) {
        return BlockingCall<int32>([make] { return make()->Go(); });
    }

    static BAlert* AlertOf(const AlertListing& listing) {
        BLooper* looper = NULL;
        listing.messenger.Target(&looper);
        return dynamic_cast<BAlert*>(looper);
    }

    // The widths of the alert's button faces (the default's ring left out).
    std::vector<float> FaceWidths(BAlert* alert) {
        std::vector<float> widths;
        alert->Lock();
        for (int32 index = 0; BButton* button = alert->ButtonAt(index); index++) {
            float ring = button->IsDefault() ? 6 : 0;
            widths.push_back(button->Frame().Width() - ring);
        }
        alert->Unlock();
        return widths;
    }

    float LabelWidth(BAlert* alert, int32 index) {
        alert->Lock();
        BButton* button = alert->ButtonAt(index);
        float width = ceilf(button->StringWidth(button->Label()) + 20);
        alert->Unlock();
        return width;
    }

    void Quit(BAlert* alert) {
        alert->Lock();
        alert->Quit();
    }
};

// Its Go() runs when the application gets 'alrt'.
class AlertStarter : public BHandler {
public:
    AlertStarter() : BHandler("starter") {}

    void MessageReceived(BMessage* message) override {
        if (message->what != 'alrt') {
            BHandler::MessageReceived(message);
            return;
        }
        fThread = find_thread(NULL);
        BAlert* alert = new BAlert("From the application", "Asked by the application", "No", "Yes",
                                   NULL, B_WIDTH_AS_USUAL, B_IDEA_ALERT);
        fResult = alert->Go();
    }

    std::atomic<int32> fResult{-2};
    std::atomic<thread_id> fThread{-1};
};

// Draws a counter of its Draw() calls, invalidating itself on every pulse.
class PulsingView : public BView {
public:
    PulsingView(BRect frame)
        : BView(frame, "pulsing", B_FOLLOW_ALL, B_WILL_DRAW | B_PULSE_NEEDED) {}

    void Pulse() override { Invalidate(); }
    void Draw(BRect updateRect) override { fDraws++; }

    std::atomic<int32> fDraws{0};
};

// Its Go() runs in the window's own thread when it gets 'alrt'.
class WaitingWindow : public BWindow {
public:
    WaitingWindow(BRect frame) : BWindow(frame, "waiting", B_TITLED_WINDOW, 0) {
        fView = new PulsingView(Bounds());
        AddChild(fView);
        SetPulseRate(20000);
    }

    void MessageReceived(BMessage* message) override {
        if (message->what != 'alrt') {
            BWindow::MessageReceived(message);
            return;
        }
        BAlert* alert = new BAlert("From a window", "Asked by a window", "Cancel", "OK", NULL,
                                   B_WIDTH_AS_USUAL, B_WARNING_ALERT);
        fResult = alert->Go();
    }

    PulsingView* fView;
    std::atomic<int32> fResult{-2};
};

} // namespace

// #pragma mark - Layout and look

TEST_F(AlertTest, AlertKeepsTitleTextAndButtonsLeftToRight) {
    BAlert* alert = new BAlert("Title", "Some text", "Zero", "One", "Two");
    EXPECT_STREQ("Title", alert->Title());
    EXPECT_STREQ("Some text", alert->TextView()->Text());
    ASSERT_NE(nullptr, alert->ButtonAt(2));
    EXPECT_STREQ("Zero", alert->ButtonAt(0)->Label());
    EXPECT_STREQ("Two", alert->ButtonAt(2)->Label());
    EXPECT_EQ(nullptr, alert->ButtonAt(3));
    EXPECT_EQ(nullptr, alert->ButtonAt(-1));
    EXPECT_LT(alert->ButtonAt(0)->Frame().right, alert->ButtonAt(1)->Frame().left);
    EXPECT_LT(alert->ButtonAt(1)->Frame().right, alert->ButtonAt(2)->Frame().left);
    EXPECT_EQ(B_MODAL_APP_WINDOW_FEEL, alert->Feel());
    Quit(alert);
}

TEST_F(AlertTest, ButtonsAfterAMissingLabelAreLeftOut) {
    BAlert* alert = new BAlert("Title", "Text", "Only", NULL, "Ignored");
    EXPECT_NE(nullptr, alert->ButtonAt(0));
    EXPECT_EQ(nullptr, alert->ButtonAt(1));
    EXPECT_EQ(nullptr, alert->ButtonAt(2));
    Quit(alert);
}

TEST_F(AlertTest, LastButtonIsTheDefault) {
    BAlert* alert = new BAlert("Title", "Text", "Cancel", "OK");
    EXPECT_FALSE(alert->ButtonAt(0)->IsDefault());
    EXPECT_TRUE(alert->ButtonAt(1)->IsDefault());
    EXPECT_EQ(alert->ButtonAt(1), alert->DefaultButton());
    Quit(alert);
}

TEST_F(AlertTest, WidthAsUsualGivesEachButtonAtLeastTheUsualWidth) {
    BAlert* alert =
        new BAlert("Title", "Text", "OK", "A much longer label", NULL, B_WIDTH_AS_USUAL);
    std::vector<float> widths = FaceWidths(alert);
    ASSERT_EQ(2u, widths.size());
    EXPECT_EQ(75, widths[0]);
    EXPECT_EQ(LabelWidth(alert, 1), widths[1]);
    EXPECT_GT(widths[1], 75);
    Quit(alert);
}

TEST_F(AlertTest, WidthFromWidestMakesEveryButtonAsWideAsTheWidestLabel) {
    BAlert* alert = new BAlert("Title", "Text", "OK", "No", "Cancel", B_WIDTH_FROM_WIDEST);
    std::vector<float> widths = FaceWidths(alert);
    ASSERT_EQ(3u, widths.size());
    float widest = LabelWidth(alert, 2);
    EXPECT_LT(widest, 75);
    EXPECT_EQ(widest, widths[0]);
    EXPECT_EQ(widest, widths[1]);
    EXPECT_EQ(widest, widths[2]);
    Quit(alert);
}

TEST_F(AlertTest, WidthFromLabelFitsEachButtonToItsLabel) {
    BAlert* alert =
        new BAlert("Title", "Text", "OK", "Cancel", "Perhaps later on", B_WIDTH_FROM_LABEL);
    std::vector<float> widths = FaceWidths(alert);
    ASSERT_EQ(3u, widths.size());
    for (int32 index = 0; index < 3; index++)
        EXPECT_EQ(LabelWidth(alert, index), widths[index]) << index;
    EXPECT_LT(widths[0], widths[1]);
    EXPECT_LT(widths[1], widths[2]);
    Quit(alert);
}

TEST_F(AlertTest, WidthFixedMakesEveryButtonTheUsualWidthUnlessALabelNeedsMore) {
    BAlert* shortLabels = new BAlert("Title", "Text", "OK", "No", NULL, B_WIDTH_FIXED);
    std::vector<float> widths = FaceWidths(shortLabels);
    ASSERT_EQ(2u, widths.size());
    EXPECT_EQ(75, widths[0]);
    EXPECT_EQ(75, widths[1]);
    Quit(shortLabels);

    BAlert* longLabel = new BAlert("Title", "Text", "Open the settings", "Open in a text editor",
                                   "Leave it", B_WIDTH_FIXED);
    widths = FaceWidths(longLabel);
    ASSERT_EQ(3u, widths.size());
    float widest = LabelWidth(longLabel, 1);
    EXPECT_EQ(widest, widths[0]);
    EXPECT_EQ(widest, widths[1]);
    EXPECT_EQ(widest, widths[2]);
    // The alert widens so that all three fit.
    longLabel->Lock();
    EXPECT_GT(longLabel->ButtonAt(0)->Frame().left, 30);
    EXPECT_LE(longLabel->ButtonAt(2)->Frame().right, longLabel->Bounds().right);
    longLabel->Unlock();
    Quit(longLabel);
}

TEST_F(AlertTest, OffsetSpacingPutsTheFirstButtonAtTheLeft) {
    BAlert* alert = new BAlert("Title", "Text", "Help", "Cancel", "OK", B_WIDTH_AS_USUAL,
                               B_OFFSET_SPACING, B_INFO_ALERT);
    alert->Lock();
    EXPECT_EQ(55, alert->ButtonAt(0)->Frame().left);
    EXPECT_GE(alert->ButtonAt(1)->Frame().left - alert->ButtonAt(0)->Frame().right, 7);
    // The others stay at the right.
    EXPECT_EQ(alert->Bounds().right - 9 + 3, alert->ButtonAt(2)->Frame().right);
    alert->Unlock();
    Quit(alert);
}

TEST_F(AlertTest, LongTextMakesTheAlertTaller) {
    BAlert* shortText = new BAlert("Title", "Short", "OK");
    std::string longString;
    for (int index = 0; index < 30; index++)
        longString += "many words in a long text ";
    BAlert* longText = new BAlert("Title", longString.c_str(), "OK");
    EXPECT_GT(longText->Bounds().Height(), shortText->Bounds().Height() + 40);
    EXPECT_EQ(shortText->Bounds().Width(), longText->Bounds().Width());
    Quit(shortText);
    Quit(longText);
}

TEST_F(AlertTest, StopAlertShowsItsIconOnTheStripeCentredOnTheScreen) {
    BlockingCall<int32> go = GoAsync([] {
        return new BAlert("Stopped", "It stopped.", "Exit", NULL, NULL, B_WIDTH_AS_USUAL,
                          B_STOP_ALERT);
    });
    AlertListing listing;
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForAlert("Stopped", &listing));
    WaitForIdle();

    BRect screen = BScreen().Frame();
    EXPECT_NEAR(listing.frame.left - screen.left, screen.right - listing.frame.right, 1);
    EXPECT_NEAR(listing.frame.top - screen.top, screen.bottom - listing.frame.bottom, 1);

    Capture capture;
    WindowListing window;
    ASSERT_TRUE(HeadlessTestApi::FindWindow("Stopped", &window));
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureScreen(&capture));
    BRect icon(window.frame.left + 18, window.frame.top + 6, window.frame.left + 49,
               window.frame.top + 37);
    rgb_color red = BPrivate::alert_icon_color(B_STOP_ALERT);
    EXPECT_GT(count_color(capture, icon, red), 200);
    rgb_color stripe = tint_color(ui_color(B_PANEL_BACKGROUND_COLOR), B_DARKEN_1_TINT);
    EXPECT_TRUE(testing_support::same_color(
        stripe, capture.ColorAt((int32)window.frame.left + 3, (int32)window.frame.bottom - 3)));

    ASSERT_EQ(B_OK, HeadlessTestApi::PressAlertButton("Exit"));
    ASSERT_TRUE(go.Wait());
    EXPECT_EQ(0, go.Get());
}

// #pragma mark - Going

TEST_F(AlertTest, StopAlertExitButtonPressedThroughTheTestApiReturnsZero) {
    BlockingCall<int32> go = GoAsync([] {
        return new BAlert("Fatal Error", "Cannot go on.", "Exit", NULL, NULL, B_WIDTH_AS_USUAL,
                          B_STOP_ALERT);
    });
    AlertListing listing;
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForAlert(NULL, &listing));
    EXPECT_EQ("Fatal Error", listing.title);
    EXPECT_EQ("Cannot go on.", listing.text);
    ASSERT_EQ(1u, listing.buttons.size());
    EXPECT_EQ("Exit", listing.buttons[0]);
    EXPECT_EQ(B_STOP_ALERT, listing.type);

    ASSERT_EQ(B_OK, HeadlessTestApi::PressAlertButton("Exit"));
    ASSERT_TRUE(go.Wait());
    EXPECT_EQ(0, go.Get());
    EXPECT_EQ(B_OK, HeadlessTestApi::WaitForNoAlert());
    EXPECT_FALSE(HeadlessTestApi::FindWindow("Fatal Error", NULL));
}

TEST_F(AlertTest, PressingALabelNoAlertHasFails) {
    EXPECT_EQ(B_NAME_NOT_FOUND, HeadlessTestApi::PressAlertButton("Nothing"));
    EXPECT_EQ(B_BAD_VALUE, HeadlessTestApi::PressAlertButton(NULL));
}

TEST_F(AlertTest, GoFromAPlainThreadReturnsThePressedButtonsIndex) {
    BlockingCall<int32> go =
        GoAsync([] { return new BAlert("Choose", "Pick one", "Zero", "One", "Two"); });
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForAlert("Choose", NULL));
    EXPECT_FALSE(go.Wait(std::chrono::milliseconds(50)));
    ASSERT_EQ(B_OK, HeadlessTestApi::PressAlertButton("One"));
    ASSERT_TRUE(go.Wait());
    EXPECT_EQ(1, go.Get());
}

TEST_F(AlertTest, GoFromTheApplicationThreadBlocksItUntilAButtonIsPressed) {
    AlertStarter* starter = new AlertStarter;
    be_app->AddHandler(starter);
    ASSERT_EQ(B_OK, be_app->PostMessage('alrt', starter));
    std::atomic<bool> pressed{false};
    std::thread helper([&] {
        if (HeadlessTestApi::WaitForAlert("From the application", NULL) == B_OK &&
            HeadlessTestApi::PressAlertButton("Yes") == B_OK)
            pressed = true;
        // The application's loop ends whatever happened; a Go() that never
        // returns leaves the test to its time limit.
        BMessenger(be_app).SendMessage(B_QUIT_REQUESTED);
    });
    thread_id mainThread = find_thread(NULL);
    be_app->Run();
    helper.join();
    EXPECT_TRUE(pressed);
    EXPECT_EQ(mainThread, starter->fThread);
    EXPECT_EQ(1, starter->fResult);
    be_app->Lock();
    be_app->RemoveHandler(starter);
    be_app->Unlock();
    delete starter;
}

TEST_F(AlertTest, GoFromAWindowThreadKeepsThatWindowDrawing) {
    WaitingWindow* window = new WaitingWindow(BRect(50, 50, 149, 149));
    window->Show();
    WaitForIdle();
    ASSERT_EQ(B_OK, window->PostMessage('alrt'));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForAlert("From a window", NULL));

    // The window's thread is inside Go(); its view still pulses and redraws.
    int32 draws = window->fView->fDraws;
    EXPECT_TRUE(testing_support::wait_until([&] { return window->fView->fDraws >= draws + 3; }));
    EXPECT_EQ(-2, window->fResult);
    EXPECT_EQ(1u, HeadlessTestApi::Alerts().size());

    ASSERT_EQ(B_OK, HeadlessTestApi::PressAlertButton("Cancel"));
    EXPECT_TRUE(testing_support::wait_until([&] { return window->fResult == 0; }));
}

TEST_F(AlertTest, EnterPressesTheDefaultButton) {
    BlockingCall<int32> go =
        GoAsync([] { return new BAlert("Keys", "Press Enter", "Cancel", "OK"); });
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForAlert("Keys", NULL));
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kEnterKey));
    ASSERT_TRUE(go.Wait());
    EXPECT_EQ(1, go.Get());
}

TEST_F(AlertTest, EscapePressesTheFirstButtonWhenThereAreSeveral) {
    BlockingCall<int32> go = GoAsync([] {
        BAlert* alert = new BAlert("Keys", "Press Escape", "Cancel", "Maybe", "OK");
        EXPECT_EQ(B_ESCAPE, alert->Shortcut(0));
        return alert;
    });
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForAlert("Keys", NULL));
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kEscapeKey));
    ASSERT_TRUE(go.Wait());
    EXPECT_EQ(0, go.Get());
}

TEST_F(AlertTest, SingleButtonHasNoEscapeShortcut) {
    BAlert* alert = new BAlert("Keys", "Alone", "OK");
    EXPECT_EQ(0, alert->Shortcut(0));
    EXPECT_EQ(0, alert->Shortcut(5));
    Quit(alert);
}

TEST_F(AlertTest, ShortcutKeyPressesItsButton) {
    BlockingCall<int32> go = GoAsync([] {
        BAlert* alert = new BAlert("Keys", "Press m", "Cancel", "Maybe", "OK");
        alert->SetShortcut(1, 'm');
        EXPECT_EQ('m', alert->Shortcut(1));
        return alert;
    });
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForAlert("Keys", NULL));
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x52, "m", 0));
    ASSERT_TRUE(go.Wait());
    EXPECT_EQ(1, go.Get());
}

TEST_F(AlertTest, ClickingAButtonAnswersWithItsIndex) {
    BlockingCall<int32> go =
        GoAsync([] { return new BAlert("Click", "Click the middle", "Zero", "One", "Two"); });
    AlertListing listing;
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForAlert("Click", &listing));
    WaitForIdle();
    BAlert* alert = AlertOf(listing);
    ASSERT_NE(nullptr, alert);
    alert->Lock();
    BRect frame = alert->ButtonAt(1)->Frame();
    alert->Unlock();
    BPoint center = listing.frame.LeftTop() +
                    BPoint((frame.left + frame.right) / 2, (frame.top + frame.bottom) / 2);
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center));
    ASSERT_TRUE(go.Wait());
    EXPECT_EQ(1, go.Get());
}

TEST_F(AlertTest, GoWithAnInvokerReturnsAtOnceAndSendsWhich) {
    ControlsWindow* window = new ControlsWindow(BRect(0, 0, 50, 50), &fLog);
    window->Show();
    BAlert* alert = new BAlert("Later", "Answer later", "No", "Yes");
    ASSERT_EQ(B_OK, alert->Go(new BInvoker(new BMessage('answ'), BMessenger(window))));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForAlert("Later", NULL));
    ASSERT_EQ(B_OK, HeadlessTestApi::PressAlertButton("No"));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForNoAlert());
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("message answ 0"));
}

TEST_F(AlertTest, ResizeByBeforeGoKeepsTheAlertCentred) {
    std::atomic<float> width{0};
    std::atomic<float> height{0};
    BlockingCall<int32> go = GoAsync([&] {
        BAlert* alert = new BAlert("Resized", "Grown before it shows", "OK");
        width = alert->Frame().Width();
        height = alert->Frame().Height();
        alert->ResizeBy(40, 20);
        return alert;
    });
    AlertListing listing;
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForAlert("Resized", &listing));
    EXPECT_EQ(width + 40, listing.frame.Width());
    EXPECT_EQ(height + 20, listing.frame.Height());
    BRect screen = BScreen().Frame();
    EXPECT_NEAR(listing.frame.left - screen.left, screen.right - listing.frame.right, 1);
    ASSERT_EQ(B_OK, HeadlessTestApi::PressAlertButton("OK"));
    ASSERT_TRUE(go.Wait());
}

TEST_F(AlertTest, AlertStandsAboveTheApplicationsWindows) {
    BWindow* window = new BWindow(BRect(0, 0, 999, 999), "big", B_TITLED_WINDOW, 0);
    window->Show();
    WaitForIdle();
    BlockingCall<int32> go = GoAsync([] { return new BAlert("Above", "On top", "OK"); });
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForAlert("Above", NULL));
    WaitForIdle();
    window->Activate();
    WaitForIdle();
    std::vector<WindowListing> windows = HeadlessTestApi::Windows();
    ASSERT_FALSE(windows.empty());
    EXPECT_EQ("Above", windows.back().title);
    ASSERT_EQ(B_OK, HeadlessTestApi::PressAlertButton("OK"));
    ASSERT_TRUE(go.Wait());
}

TEST_F(AlertTest, AlertWithoutButtonsCannotRun) {
    BAlert* alert = new BAlert("Empty", "No buttons", NULL);
    EXPECT_EQ(-1, alert->Go());
    EXPECT_TRUE(HeadlessTestApi::Alerts().empty());
}
