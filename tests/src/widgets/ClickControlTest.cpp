#include "ClickControl.h"

#include "ControlsTestSupport.h"

#include <Font.h>
#include <InterfaceDefs.h>
#include <Message.h>

#include <math.h>

using BPrivate::HeadlessTestApi;
using testing_support::ControlsWindow;
using testing_support::HeadlessAppTest;
using testing_support::same_color;
using testing_support::wait_until;

namespace {

const rgb_color kCellColor = {40, 80, 200, 255};
const rgb_color kPickedColor = {200, 40, 40, 255};

// Four cells of 10 x 10 side by side; keys '1' to '4' pick them.
class GridControl : public ClickControl {
public:
    GridControl(BRect frame, const char* name)
        : ClickControl(frame, name, "Grid", 40, 10, new BMessage('GRID'), B_FOLLOW_NONE,
                       B_WILL_DRAW | B_NAVIGABLE) {}

    long ValueForPoint(BPoint point, BRect imageRect) const override {
        long cell = (long)floorf((point.x - imageRect.left) / 10.0f);
        return cell < 0 ? 0 : (cell > 3 ? 3 : cell);
    }

    long ValueForKey(const char* bytes, long numBytes) const override {
        if (numBytes >= 1 && bytes[0] >= '1' && bytes[0] <= '4')
            return bytes[0] - '1';
        return Value();
    }

    void DrawImage(BRect imageRect) override {
        for (int32 cell = 0; cell < 4; cell++) {
            SetHighColor(cell == Value() ? kPickedColor : kCellColor);
            FillRect(BRect(imageRect.left + cell * 10, imageRect.top,
                           imageRect.left + cell * 10 + 9, imageRect.bottom - 1));
        }
    }
};

class ClickControlTest : public HeadlessAppTest {
protected:
    // A window at (100, 100) holding two grids, "grid" and "second".
    void Open(uint32 flags = B_ASYNCHRONOUS_CONTROLS) {
        fWindow = new ControlsWindow(BRect(100, 100, 299, 199), &fLog, flags);
        fGrid = new GridControl(BRect(0, 0, 120, 20), "grid");
        fSecond = new GridControl(BRect(0, 40, 120, 60), "second");
        fWindow->AddChild(fGrid);
        fWindow->AddChild(fSecond);
        fWindow->Show();
        WaitForIdle();
    }

    BPoint GridPoint(BPoint point) { return ScreenPoint(fWindow, point); }

    int32 Value(ClickControl* control) {
        int32 value = -1;
        if (fWindow->Lock()) {
            value = control->Value();
            fWindow->Unlock();
        }
        return value;
    }

    bool IsFocus(BView* view) {
        bool focus = false;
        if (fWindow->Lock()) {
            focus = view->IsFocus();
            fWindow->Unlock();
        }
        return focus;
    }

    BPrivate::Capture Capture() {
        WaitForIdle();
        BPrivate::Capture capture;
        EXPECT_EQ(B_OK, HeadlessTestApi::CaptureWindow(fWindow, &capture));
        return capture;
    }

    ControlsWindow* fWindow = NULL;
    GridControl* fGrid = NULL;
    GridControl* fSecond = NULL;
};

} // namespace

// #pragma mark - Picking

TEST_F(ClickControlTest, ClickInTheImagePicksTheCellAndInvokes) {
    Open();
    HeadlessTestApi::Click(GridPoint(BPoint(25, 7)));
    WaitForIdle();
    EXPECT_EQ(Value(fGrid), 2);
    EXPECT_EQ(fLog.Count("GRID grid 2"), 1u);
}

TEST_F(ClickControlTest, ClickOutsideTheImageOnTheLabelChangesNothing) {
    Open();
    HeadlessTestApi::Click(GridPoint(BPoint(60, 7)));
    WaitForIdle();
    EXPECT_EQ(Value(fGrid), 0);
    EXPECT_TRUE(fLog.Lines().empty());
}

TEST_F(ClickControlTest, ClickOnTheImageRowAboveItsTopChangesNothing) {
    // The image starts 2 pixels down.
    Open();
    HeadlessTestApi::Click(GridPoint(BPoint(25, 1)));
    WaitForIdle();
    EXPECT_EQ(Value(fGrid), 0);
    EXPECT_TRUE(fLog.Lines().empty());
}

TEST_F(ClickControlTest, SameCellPickedAgainInvokesNothing) {
    Open();
    HeadlessTestApi::Click(GridPoint(BPoint(15, 7)));
    WaitForIdle();
    HeadlessTestApi::Click(GridPoint(BPoint(17, 9)));
    WaitForIdle();
    EXPECT_EQ(Value(fGrid), 1);
    EXPECT_EQ(fLog.Lines().size(), 1u);
}

TEST_F(ClickControlTest, DraggingAcrossTheImageFollowsThePointer) {
    Open();
    HeadlessTestApi::PressMouse(GridPoint(BPoint(15, 7)));
    HeadlessTestApi::MoveMouse(GridPoint(BPoint(25, 7)));
    HeadlessTestApi::MoveMouse(GridPoint(BPoint(35, 7)));
    HeadlessTestApi::ReleaseMouse(GridPoint(BPoint(35, 7)));
    WaitForIdle();
    EXPECT_EQ(Value(fGrid), 3);
    std::vector<std::string> expected = {"GRID grid 1", "GRID grid 2", "GRID grid 3"};
    EXPECT_EQ(fLog.Lines(), expected);
}

TEST_F(ClickControlTest, SynchronousWindowPollsThePointerUntilTheButtonIsUp) {
    Open(0);
    HeadlessTestApi::PressMouse(GridPoint(BPoint(15, 7)));
    HeadlessTestApi::MoveMouse(GridPoint(BPoint(35, 7)));
    HeadlessTestApi::ReleaseMouse(GridPoint(BPoint(35, 7)));
    WaitForIdle();
    EXPECT_EQ(Value(fGrid), 3);
    ASSERT_FALSE(fLog.Lines().empty());
    EXPECT_EQ(fLog.Lines().front(), "GRID grid 1");
    EXPECT_EQ(fLog.Lines().back(), "GRID grid 3");
}

TEST_F(ClickControlTest, KeyPicksTheValueAndInvokes) {
    Open();
    ASSERT_TRUE(fWindow->Lock());
    fGrid->MakeFocus(true);
    fWindow->Unlock();
    HeadlessTestApi::TypeKey(0x14, "3", 0);
    WaitForIdle();
    EXPECT_EQ(Value(fGrid), 2);
    EXPECT_EQ(fLog.Count("GRID grid 2"), 1u);
}

TEST_F(ClickControlTest, TabMovesTheFocus) {
    Open();
    ASSERT_TRUE(fWindow->Lock());
    fGrid->MakeFocus(true);
    fWindow->Unlock();
    HeadlessTestApi::TypeKey(0x26, "\t", 0);
    WaitForIdle();
    EXPECT_FALSE(IsFocus(fGrid));
    EXPECT_TRUE(IsFocus(fSecond));
    EXPECT_TRUE(fLog.Lines().empty());
}

TEST_F(ClickControlTest, OtherKeysNeverMoveTheFocus) {
    Open();
    ASSERT_TRUE(fWindow->Lock());
    fGrid->MakeFocus(true);
    fWindow->Unlock();
    HeadlessTestApi::TypeKey(0x14, "3", 0);
    HeadlessTestApi::TypeKey(0x5e, " ", 0);
    HeadlessTestApi::TypeKey(0x47, "\n", 0);
    WaitForIdle();
    EXPECT_TRUE(IsFocus(fGrid));
    EXPECT_FALSE(IsFocus(fSecond));
    // Space and Return are keys like any other here: the grid keeps its cell.
    EXPECT_EQ(Value(fGrid), 2);
    EXPECT_EQ(fLog.Lines().size(), 1u);
}

// #pragma mark - Size

TEST_F(ClickControlTest, ImageRectangleStartsTwoPixelsDown) {
    GridControl control(BRect(0, 0, 100, 20), "grid");
    EXPECT_EQ(control.ImageRect(), BRect(0, 2, 40, 12));
    float width = 0;
    float height = 0;
    control.GetImageSize(&width, &height);
    EXPECT_EQ(width, 40);
    EXPECT_EQ(height, 10);
}

TEST_F(ClickControlTest, SetImageSizeReplacesTheImageRectangle) {
    GridControl control(BRect(0, 0, 100, 20), "grid");
    control.SetImageSize(20, 30);
    EXPECT_EQ(control.ImageRect(), BRect(0, 2, 20, 32));
    float width = 0;
    float height = 0;
    control.GetImageSize(&width, &height);
    EXPECT_EQ(width, 20);
    EXPECT_EQ(height, 30);
}

TEST_F(ClickControlTest, PreferredSizeHoldsTheImageAndTheLabel) {
    Open();
    ASSERT_TRUE(fWindow->Lock());
    float width = 0;
    float height = 0;
    fGrid->GetPreferredSize(&width, &height);
    BFont font;
    fGrid->GetFont(&font);
    EXPECT_FLOAT_EQ(width, fGrid->StringWidth("Grid") + 40 + 6);
    EXPECT_FLOAT_EQ(height, fmaxf(font.Size() + 7, 14));
    fGrid->SetImageSize(40, 30);
    fGrid->GetPreferredSize(&width, &height);
    EXPECT_FLOAT_EQ(height, fmaxf(font.Size() + 7, 34));
    fWindow->Unlock();
}

TEST_F(ClickControlTest, AttachingGrowsAShortControlToThePreferredHeight) {
    fWindow = new ControlsWindow(BRect(100, 100, 299, 199), &fLog);
    GridControl* grid = new GridControl(BRect(0, 0, 120, 4), "grid");
    ASSERT_TRUE(fWindow->Lock());
    fWindow->AddChild(grid);
    float height = 0;
    grid->GetPreferredSize(NULL, &height);
    EXPECT_EQ(grid->Bounds().Height(), height);
    EXPECT_EQ(grid->Bounds().Width(), 120);
    fWindow->Unlock();
    fWindow->Show();
}

// #pragma mark - Drawing

TEST_F(ClickControlTest, DrawsTheImageAndTheLabelToItsRight) {
    Open();
    BPrivate::Capture capture = Capture();
    EXPECT_TRUE(same_color(capture.ColorAt(5, 5), kPickedColor));
    EXPECT_TRUE(same_color(capture.ColorAt(15, 5), kCellColor));
    EXPECT_TRUE(same_color(capture.ColorAt(35, 11), kCellColor));
    rgb_color background = capture.ColorAt(110, 18);
    BRect ink = testing_support::ink_bounds(capture, BRect(41, 0, 119, 14), background);
    ASSERT_TRUE(ink.IsValid());
    // The label starts 6 pixels right of the image and stands on y = 9.
    EXPECT_GE(ink.left, 46);
    EXPECT_LE(ink.left, 48);
    EXPECT_LE(ink.bottom, 11);
}

TEST_F(ClickControlTest, FocusedControlUnderlinesItsLabel) {
    Open();
    ASSERT_TRUE(fWindow->Lock());
    fGrid->MakeFocus(true);
    float labelRight = 46 + fGrid->StringWidth("Grid");
    fWindow->Unlock();
    BPrivate::Capture capture = Capture();
    rgb_color white = {255, 255, 255, 255};
    EXPECT_TRUE(same_color(capture.ColorAt(50, 12), keyboard_navigation_color()));
    EXPECT_TRUE(same_color(capture.ColorAt(45, 12), keyboard_navigation_color()));
    EXPECT_TRUE(same_color(capture.ColorAt(50, 13), white));
    EXPECT_TRUE(same_color(capture.ColorAt((int32)labelRight, 13), white));
    EXPECT_FALSE(same_color(capture.ColorAt(43, 12), keyboard_navigation_color()));

    ASSERT_TRUE(fWindow->Lock());
    fSecond->MakeFocus(true);
    fWindow->Unlock();
    capture = Capture();
    EXPECT_FALSE(same_color(capture.ColorAt(50, 12), keyboard_navigation_color()));
    EXPECT_FALSE(same_color(capture.ColorAt(50, 13), white));
}

TEST_F(ClickControlTest, DisabledControlIsFaded) {
    Open();
    ASSERT_TRUE(fWindow->Lock());
    fGrid->SetEnabled(false);
    rgb_color view = fGrid->ViewColor();
    fWindow->Unlock();
    BPrivate::Capture capture = Capture();
    rgb_color faded = capture.ColorAt(15, 5);
    EXPECT_FALSE(same_color(faded, kCellColor));
    // Two blends towards the view colour: far closer to it than to the cell.
    EXPECT_LT(abs(faded.red - view.red), abs(kCellColor.red - view.red) / 2 + 1);
    EXPECT_LT(abs(faded.blue - view.blue), abs(kCellColor.blue - view.blue) / 2 + 1);
}
