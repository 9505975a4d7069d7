#include "LayerBar.h"

#include "LayerBarTestSupport.h"

#include <InterfaceDefs.h>
#include <OS.h>

using namespace bar_testing;
using testing_support::wait_until;

namespace {

class LayerBarTest : public LayerBarFixture {
protected:
    // A layer "main" of count files, shown on the bar.
    void OpenFiles(int32 count) {
        std::vector<std::string> paths;
        for (int32 index = 0; index < count; index++)
            paths.push_back(MakeFile("file" + std::to_string(index)));
        MakeLayerFile("main", "");
        OpenBar("main", paths);
    }

    BRect BarBounds() {
        BRect bounds;
        if (fWindow->Lock()) {
            bounds = fBar->Bounds();
            fWindow->Unlock();
        }
        return bounds;
    }

    int32 IndexAt(BPoint point) {
        int32 index = -2;
        if (fWindow->Lock()) {
            index = fBar->IndexAt(point);
            fWindow->Unlock();
        }
        return index;
    }

    int32 Selection() {
        int32 index = -2;
        if (fWindow->Lock()) {
            index = fBar->Selection();
            fWindow->Unlock();
        }
        return index;
    }

    void Press(BPoint barPoint, uint32 buttons, uint32 modifiers = 0, int32 clicks = 1) {
        HeadlessTestApi::SetModifiers(modifiers);
        HeadlessTestApi::PressMouse(BarPoint(barPoint), buttons, clicks);
        HeadlessTestApi::ReleaseMouse(BarPoint(barPoint), buttons);
        HeadlessTestApi::SetModifiers(0);
        ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    }

    // Read under the window's lock: the window's thread keeps the state.
    static bool IsActive(BWindow* window) {
        if (!window->Lock())
            return false;
        bool active = window->IsActive();
        window->Unlock();
        return active;
    }

    void CloseMenus() {
        if (!MenuIsOpen())
            return;
        HeadlessTestApi::TypeKey(0x01, "\x1b", 0);
        EXPECT_TRUE(wait_until([] { return !MenuIsOpen(); }));
    }
};

} // namespace

// #pragma mark - Geometry

TEST_F(LayerBarTest, SmallIconCellsAreNineteenSquareOnePixelApart) {
    OpenFiles(3);
    BRect bounds = BarBounds();
    EXPECT_EQ(bounds, BRect(0, 0, 19, 59));
    EXPECT_EQ(ItemFrame(0), BRect(0, 0, 19, 19));
    EXPECT_EQ(ItemFrame(1), BRect(0, 20, 19, 39));
    EXPECT_EQ(ItemFrame(2), BRect(0, 40, 19, 59));
}

TEST_F(LayerBarTest, LargeIconCellsAreThirtySevenSquare) {
    fSettings.which = 32;
    OpenFiles(2);
    EXPECT_EQ(BarBounds(), BRect(0, 0, 37, 75));
    EXPECT_EQ(ItemFrame(1), BRect(0, 38, 37, 75));
}

TEST_F(LayerBarTest, SmallIconsWithLabelsHaveTenPixelSideMargins) {
    fSettings.flags = kDrawLabelFlag;
    OpenFiles(2);
    EXPECT_EQ(BarBounds(), BRect(0, 0, 116, 39));
    EXPECT_EQ(ItemFrame(1), BRect(0, 20, 116, 39));
}

TEST_F(LayerBarTest, LargeIconsWithLabelsAreFiftySevenByFortyNine) {
    fSettings.which = 32;
    fSettings.flags = kDrawLabelFlag;
    OpenFiles(2);
    EXPECT_EQ(BarBounds(), BRect(0, 0, 57, 99));
}

TEST_F(LayerBarTest, RowBarPlacesTheCellsSideBySide) {
    fSettings.direction = 2;
    OpenFiles(3);
    EXPECT_EQ(BarBounds(), BRect(0, 0, 59, 19));
    EXPECT_EQ(ItemFrame(2), BRect(40, 0, 59, 19));
    EXPECT_EQ(IndexAt(BPoint(45, 5)), 2);
}

TEST_F(LayerBarTest, OddDirectionShowsTheLayersItemsInReverse) {
    fSettings.direction = 1;
    OpenFiles(3);
    LayerItem* last = ItemAt(2);
    ASSERT_NE(last, nullptr);
    EXPECT_STREQ(last->Label(), "file0");
    EXPECT_STREQ(ItemAt(0)->Label(), "file2");
}

TEST_F(LayerBarTest, GapPointMapsToTheLaterCellOnlyFromTheNextWholeMultiple) {
    OpenFiles(3);
    EXPECT_EQ(IndexAt(BPoint(5, 19.5f)), 0);
    EXPECT_EQ(IndexAt(BPoint(5, 20)), 1);
    EXPECT_EQ(IndexAt(BPoint(5, 59)), 2);
}

TEST_F(LayerBarTest, PointRightOfTheCellsInAColumnBarIsOutsideEvenWithinTheBounds) {
    OpenFiles(2);
    ASSERT_TRUE(fWindow->Lock());
    fBar->ResizeTo(60, 39);
    fWindow->Unlock();
    EXPECT_TRUE(BarBounds().Contains(BPoint(30, 5)));
    EXPECT_EQ(IndexAt(BPoint(30, 5)), -1);
    EXPECT_EQ(IndexAt(BPoint(19, 5)), 0);
}

TEST_F(LayerBarTest, PointOutsideTheBoundsIsNoItem) {
    OpenFiles(2);
    EXPECT_EQ(IndexAt(BPoint(5, 40)), -1);
    EXPECT_EQ(IndexAt(BPoint(-1, 5)), -1);
}

// #pragma mark - Presses

TEST_F(LayerBarTest, SameOperationForLaunchAndExpandLaunchesAndNeverExpands) {
    fSettings.forInvoke = 1;
    fSettings.forExpand = 1;
    OpenFiles(2);
    Press(BPoint(5, 25), B_PRIMARY_MOUSE_BUTTON);
    ASSERT_TRUE(WaitForAppMessages(kOpen, 1));
    EXPECT_FALSE(MenuIsOpen());
    std::vector<BMessage> opens = AppMessages(kOpen);
    void* source = NULL;
    EXPECT_EQ(opens[0].FindPointer("source", &source), B_OK);
    EXPECT_EQ(source, ItemAt(1));
}

TEST_F(LayerBarTest, ControlPrimaryPressLaunchesWithTheDefaults) {
    OpenFiles(2);
    Press(BPoint(5, 5), B_PRIMARY_MOUSE_BUTTON, B_CONTROL_KEY);
    ASSERT_TRUE(WaitForAppMessages(kOpen, 1));
    EXPECT_FALSE(MenuIsOpen());
    EXPECT_EQ(Selection(), 0);
}

TEST_F(LayerBarTest, PlainPrimaryPressExpandsWithTheDefaults) {
    OpenFiles(2);
    Press(BPoint(5, 5), B_PRIMARY_MOUSE_BUTTON);
    EXPECT_TRUE(wait_until([] { return MenuIsOpen(); }));
    EXPECT_TRUE(AppMessages(kOpen).empty());
    CloseMenus();
}

TEST_F(LayerBarTest, SecondaryPressLaunchesWithTheDefaults) {
    OpenFiles(2);
    Press(BPoint(5, 25), B_SECONDARY_MOUSE_BUTTON);
    ASSERT_TRUE(WaitForAppMessages(kOpen, 1));
    EXPECT_EQ(Selection(), 1);
}

TEST_F(LayerBarTest, DoubleClickGradesAsThree) {
    fSettings.forInvoke = 3;
    fSettings.forExpand = 2;
    OpenFiles(1);
    // The first press of the pair grades as 1, which neither setting names.
    HeadlessTestApi::PressMouse(BarPoint(BPoint(5, 5)), B_PRIMARY_MOUSE_BUTTON, 1);
    HeadlessTestApi::ReleaseMouse(BarPoint(BPoint(5, 5)));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    EXPECT_TRUE(AppMessages(kOpen).empty());
    HeadlessTestApi::PressMouse(BarPoint(BPoint(5, 5)), B_PRIMARY_MOUSE_BUTTON, 2);
    HeadlessTestApi::ReleaseMouse(BarPoint(BPoint(5, 5)));
    ASSERT_TRUE(WaitForAppMessages(kOpen, 1));
    EXPECT_FALSE(MenuIsOpen());
}

TEST_F(LayerBarTest, TertiaryPressLaunchesWhenLaunchIsSetToNoUse) {
    // Settled behaviour: "No Use" (0) is matched like any other operation.
    fSettings.forInvoke = 0;
    fSettings.forExpand = 1;
    OpenFiles(1);
    Press(BPoint(5, 5), B_TERTIARY_MOUSE_BUTTON);
    ASSERT_TRUE(WaitForAppMessages(kOpen, 1));
}

TEST_F(LayerBarTest, TertiaryPressDoesNothingWithTheDefaults) {
    OpenFiles(1);
    Press(BPoint(5, 5), B_TERTIARY_MOUSE_BUTTON);
    EXPECT_TRUE(AppMessages(kOpen).empty());
    EXPECT_FALSE(MenuIsOpen());
    EXPECT_EQ(Selection(), 0);
}

TEST_F(LayerBarTest, LaunchPressOutsideAnyItemDoesNothing) {
    OpenFiles(1);
    ASSERT_TRUE(fWindow->Lock());
    fBar->ResizeTo(60, 19);
    fWindow->Unlock();
    Press(BPoint(40, 5), B_SECONDARY_MOUSE_BUTTON);
    EXPECT_EQ(Selection(), -1);
    EXPECT_TRUE(AppMessages(kOpen).empty());
}

TEST_F(LayerBarTest, PressActivatesAnInactiveWindowAndStillCounts) {
    OpenFiles(1);
    BWindow* other = new BWindow(BRect(500, 500, 599, 599), "other", B_TITLED_WINDOW, 0);
    other->Show();
    ASSERT_TRUE(wait_until([&] { return IsActive(other); }));
    // The bar's window learns of its deactivation through its own queue.
    ASSERT_TRUE(wait_until([&] { return !IsActive(fWindow); }));
    Press(BPoint(5, 5), B_SECONDARY_MOUSE_BUTTON);
    EXPECT_TRUE(wait_until([&] { return IsActive(fWindow); }));
    EXPECT_TRUE(WaitForAppMessages(kOpen, 1));
    if (other->Lock())
        other->Quit();
}

TEST_F(LayerBarTest, MouseOverActivatesTheWindowWhenAutomaticActivationIsOn) {
    fSettings.flags = kAutoFocusFlag;
    OpenFiles(1);
    BWindow* other = new BWindow(BRect(500, 500, 599, 599), "other", B_TITLED_WINDOW, 0);
    other->Show();
    ASSERT_TRUE(wait_until([&] { return IsActive(other); }));
    HeadlessTestApi::MoveMouse(BarPoint(BPoint(5, 3)));
    HeadlessTestApi::MoveMouse(BarPoint(BPoint(5, 5)));
    EXPECT_TRUE(wait_until([&] { return IsActive(fWindow); }));
    if (other->Lock())
        other->Quit();
}

TEST_F(LayerBarTest, MouseOverLeavesTheWindowInactiveWhenAutomaticActivationIsOff) {
    OpenFiles(1);
    BWindow* other = new BWindow(BRect(500, 500, 599, 599), "other", B_TITLED_WINDOW, 0);
    other->Show();
    ASSERT_TRUE(wait_until([&] { return IsActive(other); }));
    HeadlessTestApi::MoveMouse(BarPoint(BPoint(5, 3)));
    HeadlessTestApi::MoveMouse(BarPoint(BPoint(5, 5)));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    EXPECT_FALSE(IsActive(fWindow));
    if (other->Lock())
        other->Quit();
}

// #pragma mark - Blink

namespace {

struct DrawRecord {
    bool highlighted;
    bigtime_t when;
};

// Records the highlight flag at each of its draws.
class RecordingItem : public LayerItem {
public:
    RecordingItem(const char* path, LayerInfo* layer) : LayerItem(path, layer, false) {}

    void Draw() override {
        fRecords.push_back({IsHighlighted(), system_time()});
        LayerItem::Draw();
    }

    std::vector<DrawRecord> fRecords;
};

} // namespace

TEST_F(LayerBarTest, LaunchBlinksFourTimesInFourHundredMillisecondsAndEndsUnhighlighted) {
    std::string path = MakeFile("blinker");
    MakeLayerFile("main", "");
    OpenBar("main", {});
    ASSERT_TRUE(fWindow->Lock());
    RecordingItem* item = new RecordingItem(path.c_str(), fLayer);
    BMessage found(kLayerItemsFound);
    found.AddPointer("items", static_cast<RefRetriever*>(item));
    fLayer->ItemsFound(&found);
    fBar->RescanItems();
    fBar->ResizeToPreferred();
    fWindow->Unlock();
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    ASSERT_TRUE(fWindow->Lock());
    item->fRecords.clear();
    fWindow->Unlock();
    BPrivate::WindowListing before;
    ASSERT_TRUE(HeadlessTestApi::FindWindow(fWindow, &before));

    Press(BPoint(5, 5), B_SECONDARY_MOUSE_BUTTON);
    ASSERT_TRUE(WaitForAppMessages(kOpen, 1));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());

    ASSERT_TRUE(fWindow->Lock());
    std::vector<DrawRecord> records = item->fRecords;
    bool highlighted = item->IsHighlighted();
    fWindow->Unlock();
    ASSERT_GE(records.size(), 8u);
    for (size_t step = 0; step < 8; step++)
        EXPECT_EQ(records[step].highlighted, step % 2 == 0) << "draw " << step;
    int64 when = 0;
    ASSERT_EQ(AppMessages(kOpen)[0].FindInt64("when", &when), B_OK);
    EXPECT_GE(when - records[0].when, 400000);
    EXPECT_GE(records[7].when - records[0].when, 350000);
    // The redraw after the launch shows the item plain again.
    EXPECT_FALSE(highlighted);
    EXPECT_FALSE(records.back().highlighted);
    BPrivate::WindowListing after;
    ASSERT_TRUE(HeadlessTestApi::FindWindow(fWindow, &after));
    EXPECT_GE(after.presentCount - before.presentCount, 8u);
    BPrivate::Capture capture = CaptureBar();
    rgb_color selected = tint_color(BarLowColor(), B_DARKEN_2_TINT);
    EXPECT_FALSE(same_color(capture.ColorAt(1, 1), selected));
}

// #pragma mark - Dragging and dropping

TEST_F(LayerBarTest, DraggingAFileHighlightsOneItemAtATime) {
    OpenFiles(3);
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(MakeFile("dragged").c_str(), &ref), B_OK);
    BWindow* source = new BWindow(BRect(400, 400, 499, 499), "source", B_TITLED_WINDOW, 0);
    source->AddChild(new DragSource(BRect(0, 0, 99, 99), {ref}));
    source->Show();
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());

    HeadlessTestApi::PressMouse(BPoint(420, 420));
    // The drag starts in the source window's own thread.
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    HeadlessTestApi::MoveMouse(BarPoint(BPoint(5, 3)));
    HeadlessTestApi::MoveMouse(BarPoint(BPoint(5, 5)));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    EXPECT_TRUE(ItemAt(0)->IsHighlighted());
    EXPECT_EQ(Selection(), 0);
    BPrivate::Capture capture = CaptureBar();
    rgb_color selected = tint_color(BarLowColor(), B_DARKEN_2_TINT);
    EXPECT_TRUE(same_color(capture.ColorAt(1, 1), selected)) << color_text(capture.ColorAt(1, 1));

    HeadlessTestApi::MoveMouse(BarPoint(BPoint(5, 45)));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    EXPECT_FALSE(ItemAt(0)->IsHighlighted());
    EXPECT_FALSE(ItemAt(1)->IsHighlighted());
    EXPECT_TRUE(ItemAt(2)->IsHighlighted());
    capture = CaptureBar();
    EXPECT_FALSE(same_color(capture.ColorAt(1, 1), selected));
    EXPECT_TRUE(same_color(capture.ColorAt(1, 41), selected));

    HeadlessTestApi::ReleaseMouse(BPoint(450, 450));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    if (source->Lock())
        source->Quit();
}

TEST_F(LayerBarTest, PlainMovementHighlightsNothing) {
    OpenFiles(2);
    HeadlessTestApi::MoveMouse(BarPoint(BPoint(5, 3)));
    HeadlessTestApi::MoveMouse(BarPoint(BPoint(5, 5)));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    EXPECT_FALSE(ItemAt(0)->IsHighlighted());
    EXPECT_EQ(Selection(), -1);
}

TEST_F(LayerBarTest, LeavingTheBarDuringADragClearsTheHighlightOnTheNextMove) {
    OpenFiles(2);
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(MakeFile("dragged").c_str(), &ref), B_OK);
    BWindow* source = new BWindow(BRect(400, 400, 499, 499), "source", B_TITLED_WINDOW, 0);
    source->AddChild(new DragSource(BRect(0, 0, 99, 99), {ref}));
    source->Show();
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());

    HeadlessTestApi::PressMouse(BPoint(420, 420));
    // The drag starts in the source window's own thread.
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    HeadlessTestApi::MoveMouse(BarPoint(BPoint(5, 23)));
    HeadlessTestApi::MoveMouse(BarPoint(BPoint(5, 25)));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    ASSERT_TRUE(ItemAt(1)->IsHighlighted());
    HeadlessTestApi::MoveMouse(BarPoint(BPoint(150, 150)));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    EXPECT_FALSE(ItemAt(1)->IsHighlighted());
    EXPECT_EQ(Selection(), -1);

    HeadlessTestApi::ReleaseMouse(BPoint(450, 450));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    if (source->Lock())
        source->Quit();
}

TEST_F(LayerBarTest, DroppingClearsEveryHighlight) {
    OpenFiles(3);
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(MakeFile("dropped").c_str(), &ref), B_OK);
    BWindow* source = new BWindow(BRect(400, 400, 499, 499), "source", B_TITLED_WINDOW, 0);
    source->AddChild(new DragSource(BRect(0, 0, 99, 99), {ref}));
    source->Show();
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    // A stale highlight from elsewhere goes as well.
    ASSERT_TRUE(fWindow->Lock());
    fBar->LayerItemAt(2)->SetHighlighted(true);
    fWindow->Unlock();

    HeadlessTestApi::PressMouse(BPoint(420, 420));
    // The drag starts in the source window's own thread.
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    HeadlessTestApi::MoveMouse(BarPoint(BPoint(5, 3)));
    HeadlessTestApi::MoveMouse(BarPoint(BPoint(5, 5)));
    HeadlessTestApi::ReleaseMouse(BarPoint(BPoint(5, 5)));
    ASSERT_TRUE(WaitForAppMessages(kOpen, 1));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    for (int32 index = 0; index < 3; index++)
        EXPECT_FALSE(ItemAt(index)->IsHighlighted()) << index;
    EXPECT_EQ(Selection(), -1);
    BMessage open = AppMessages(kOpen)[0];
    entry_ref file;
    ASSERT_EQ(open.FindRef("file", &file), B_OK);
    EXPECT_STREQ(file.name, "file0");
    if (source->Lock())
        source->Quit();
}

// #pragma mark - Layers

TEST_F(LayerBarTest, SwitchingToTheLayerNamedEmptyShowsAnEmptyBar) {
    OpenFiles(2);
    ASSERT_TRUE(fWindow->Lock());
    LayerInfo* targets = fWindow->FindLayer("");
    ASSERT_NE(targets, nullptr);
    fBar->SetLayer(targets);
    EXPECT_EQ(fBar->Layer(), nullptr);
    EXPECT_EQ(fBar->CountItems(), 0);
    EXPECT_EQ(fLayer->Locker(), nullptr);
    EXPECT_EQ(targets->Locker(), nullptr);
    fWindow->Unlock();
}

TEST_F(LayerBarTest, ShownLayerIsLockedForTheBarAndGivenBackOnSwitching) {
    MakeLayerFile("second", "");
    OpenFiles(1);
    ASSERT_TRUE(fWindow->Lock());
    EXPECT_EQ(fLayer->Locker(), fBar);
    LayerInfo* second = fWindow->FindLayer("second");
    ASSERT_NE(second, nullptr);
    fBar->SetLayer(second);
    EXPECT_EQ(fBar->Layer(), second);
    EXPECT_EQ(fLayer->Locker(), nullptr);
    EXPECT_EQ(second->Locker(), fBar);
    EXPECT_EQ(fBar->CountItems(), 0);
    fWindow->Unlock();
}

TEST_F(LayerBarTest, LayerOfAnotherKindOfManagerIsRefused) {
    OpenFiles(1);
    LayerManager* other =
        new LayerManager(BRect(0, 0, 10, 10), "other", 0, which_test_items, which_test_items);
    ASSERT_TRUE(other->Lock());
    LayerInfo* foreign = other->FindLayer("main");
    other->Unlock();
    ASSERT_NE(foreign, nullptr);
    ASSERT_TRUE(fWindow->Lock());
    fBar->SetLayer(foreign);
    EXPECT_EQ(fBar->Layer(), fLayer);
    EXPECT_EQ(fBar->CountItems(), 1);
    fWindow->Unlock();
    if (other->Lock())
        other->Quit();
}

TEST_F(LayerBarTest, LayerHeldElsewhereLeavesTheBarEmptyAndDetached) {
    std::string path = MakeFile("one");
    MakeLayerFile("main", "");
    MakeLayerFile("busy", "");
    OpenBar("main", {path});
    ASSERT_TRUE(fWindow->Lock());
    LayerInfo* busy = fWindow->FindLayer("busy");
    int holder = 0;
    ASSERT_NE(busy->SetLock(true, &holder), nullptr);
    fBar->SetLayer(busy);
    EXPECT_EQ(fBar->CountItems(), 0);
    EXPECT_EQ(busy->Locker(), &holder);
    busy->SetLock(false, &holder);
    fWindow->Unlock();
}

TEST_F(LayerBarTest, RescanAppendsTheItemsTheLayerGained) {
    OpenFiles(1);
    std::string later = MakeFile("later");
    ASSERT_TRUE(fWindow->Lock());
    RefRetriever* item = NULL;
    ASSERT_EQ(create_ref_item(later.c_str(), fLayer, &item), B_OK);
    BMessage found(kLayerItemsFound);
    found.AddPointer("items", item);
    fLayer->ItemsFound(&found);
    EXPECT_EQ(fBar->CountItems(), 1);
    fBar->RescanItems();
    EXPECT_EQ(fBar->CountItems(), 2);
    EXPECT_STREQ(fBar->LayerItemAt(1)->Label(), "later");
    fWindow->Unlock();
}

TEST_F(LayerBarTest, EscapeClearsTheSelection) {
    OpenFiles(1);
    Press(BPoint(5, 5), B_TERTIARY_MOUSE_BUTTON);
    ASSERT_EQ(Selection(), 0);
    ASSERT_TRUE(fWindow->Lock());
    fBar->KeyDown("\x1b", 1);
    EXPECT_EQ(fBar->Selection(), -1);
    fWindow->Unlock();
}

TEST_F(LayerBarTest, ReturnSelectsTheLastHighlightedItem) {
    OpenFiles(3);
    ASSERT_TRUE(fWindow->Lock());
    fBar->LayerItemAt(0)->SetHighlighted(true);
    fBar->LayerItemAt(1)->SetHighlighted(true);
    fBar->KeyDown("\n", 1);
    EXPECT_EQ(fBar->Selection(), 1);
    fBar->LayerItemAt(0)->SetHighlighted(false);
    fBar->LayerItemAt(1)->SetHighlighted(false);
    fWindow->Unlock();
}

// #pragma mark - Drawing

TEST_F(LayerBarTest, WithoutItemBordersTheWholeBarIsFramedRaised) {
    OpenFiles(2);
    BPrivate::Capture capture = CaptureBar();
    rgb_color low = BarLowColor();
    rgb_color light = tint_color(low, B_LIGHTEN_2_TINT);
    rgb_color dark = tint_color(low, B_DARKEN_1_TINT);
    EXPECT_TRUE(same_color(capture.ColorAt(0, 0), light)) << color_text(capture.ColorAt(0, 0));
    EXPECT_TRUE(same_color(capture.ColorAt(0, 30), light));
    EXPECT_TRUE(same_color(capture.ColorAt(10, 0), light));
    EXPECT_TRUE(same_color(capture.ColorAt(19, 30), dark)) << color_text(capture.ColorAt(19, 30));
    EXPECT_TRUE(same_color(capture.ColorAt(10, 39), dark));
    // No frame between the cells.
    EXPECT_TRUE(same_color(capture.ColorAt(10, 19), low)) << color_text(capture.ColorAt(10, 19));
    EXPECT_TRUE(same_color(capture.ColorAt(10, 20), low)) << color_text(capture.ColorAt(10, 20));
}

TEST_F(LayerBarTest, BorderFlagFramesEachCellAndNotTheBar) {
    fSettings.flags = kDrawBorderFlag;
    OpenFiles(2);
    BPrivate::Capture capture = CaptureBar();
    rgb_color low = BarLowColor();
    rgb_color light = tint_color(low, B_LIGHTEN_2_TINT);
    rgb_color dark = tint_color(low, B_DARKEN_1_TINT);
    EXPECT_TRUE(same_color(capture.ColorAt(10, 0), light));
    EXPECT_TRUE(same_color(capture.ColorAt(10, 19), dark)) << color_text(capture.ColorAt(10, 19));
    EXPECT_TRUE(same_color(capture.ColorAt(10, 20), light)) << color_text(capture.ColorAt(10, 20));
    EXPECT_TRUE(same_color(capture.ColorAt(19, 30), dark));
    EXPECT_TRUE(same_color(capture.ColorAt(0, 30), light));
}

TEST_F(LayerBarTest, CellsShowTheirIconsCentred) {
    OpenFiles(2);
    BPrivate::Capture capture = CaptureBar();
    rgb_color icon = icon_color();
    // (19 - 16) / 2 rounded up: the icons start 2 pixels into their cells.
    EXPECT_TRUE(same_color(capture.ColorAt(2, 2), icon)) << color_text(capture.ColorAt(2, 2));
    EXPECT_TRUE(same_color(capture.ColorAt(17, 17), icon));
    EXPECT_TRUE(same_color(capture.ColorAt(2, 22), icon));
    EXPECT_FALSE(same_color(capture.ColorAt(1, 1), icon));
    EXPECT_FALSE(same_color(capture.ColorAt(18, 18), icon));
    EXPECT_EQ(capture.BoundsOf(icon), BRect(2, 2, 17, 37));
}
