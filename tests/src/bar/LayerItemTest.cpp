#include "LayerItem.h"

#include "LayerBarTestSupport.h"

#include <Bitmap.h>
#include <InterfaceDefs.h>

#include <filesystem>

using namespace bar_testing;
using testing_support::wait_until;

namespace {

const rgb_color kCanExpand = {0, 0, 135, 255};
const rgb_color kCannotExpand = {100, 100, 155, 255};

class LayerItemTest : public LayerBarFixture {
protected:
    std::string LayerPath(const std::string& name) {
        return fHome.ConfigHome() + "/Glimrow/layers/" + name;
    }

    // Re-checks the item as the bar window's chores do.
    void CheckItem(int32 index) {
        ASSERT_TRUE(fWindow->Lock());
        fBar->LayerItemAt(index)->CheckNode(false);
        fWindow->Unlock();
        ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    }

    void Press(BPoint barPoint, uint32 buttons) {
        HeadlessTestApi::PressMouse(BarPoint(barPoint), buttons, 1);
        HeadlessTestApi::ReleaseMouse(BarPoint(barPoint), buttons);
        ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    }

    void DropOn(BPoint barPoint, const std::vector<entry_ref>& refs) {
        BWindow* source = new BWindow(BRect(400, 400, 499, 499), "source", B_TITLED_WINDOW, 0);
        source->AddChild(new DragSource(BRect(0, 0, 99, 99), refs));
        source->Show();
        ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
        HeadlessTestApi::PressMouse(BPoint(420, 420));
        // The drag starts in the source window's own thread.
        ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
        HeadlessTestApi::MoveMouse(BarPoint(barPoint + BPoint(0, -1)));
        HeadlessTestApi::MoveMouse(BarPoint(barPoint));
        HeadlessTestApi::ReleaseMouse(BarPoint(barPoint));
        ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
        if (source->Lock())
            source->Quit();
    }

    int32 CountEntries(const BMessage& message, const char* name) {
        type_code type;
        int32 count = 0;
        if (message.GetInfo(name, &type, &count) != B_OK)
            return 0;
        return count;
    }
};

} // namespace

// #pragma mark - Missing files

TEST_F(LayerItemTest, DeletedFileLightensTheLabelAndLeavesAnEmptyFrame) {
    fSettings.flags = kDrawLabelFlag;
    std::string path = MakeFile("gone");
    MakeLayerFile("main");
    OpenBar("main", {path});
    BPrivate::Capture capture = CaptureBar();
    // The label starts at 10 + 23 in its cell; the icon at x = 10.
    BRect labelArea(33, 2, 113, 18);
    EXPECT_LE(darkest_value(capture, labelArea), 40);
    EXPECT_TRUE(same_color(capture.ColorAt(12, 5), icon_color()));

    ASSERT_TRUE(std::filesystem::remove(path));
    CheckItem(0);
    LayerItem* item = ItemAt(0);
    EXPECT_FALSE(item->IsFileAvailable());
    EXPECT_EQ(item->Icon(), nullptr);
    EXPECT_FALSE(item->IsEnabled2());

    capture = CaptureBar();
    int32 lightened = tint_color(BarHighColor(), B_LIGHTEN_1_TINT).red;
    int32 darkest = darkest_value(capture, labelArea);
    EXPECT_GE(darkest, lightened - 1);
    EXPECT_LT(darkest, 200) << "the label is still drawn";
    // The empty frame is sunken: dark on the top and left, light on the
    // bottom and right, around the icon's 16 x 16 square at (10, 2).
    rgb_color low = BarLowColor();
    rgb_color light = tint_color(low, B_LIGHTEN_2_TINT);
    rgb_color dark = tint_color(low, B_DARKEN_1_TINT);
    EXPECT_TRUE(same_color(capture.ColorAt(10, 2), dark)) << color_text(capture.ColorAt(10, 2));
    EXPECT_TRUE(same_color(capture.ColorAt(17, 2), dark));
    EXPECT_TRUE(same_color(capture.ColorAt(10, 10), dark));
    EXPECT_TRUE(same_color(capture.ColorAt(25, 10), light));
    EXPECT_TRUE(same_color(capture.ColorAt(17, 17), light));
    EXPECT_TRUE(same_color(capture.ColorAt(17, 10), low)) << color_text(capture.ColorAt(17, 10));
    EXPECT_EQ(capture.CountPixels(icon_color()), 0);
}

TEST_F(LayerItemTest, ClickOnAMissingItemSendsTheMissingItemCommand) {
    std::string path = MakeFile("gone");
    MakeLayerFile("main");
    OpenBar("main", {path});
    ASSERT_TRUE(std::filesystem::remove(path));
    CheckItem(0);

    Press(BPoint(5, 5), B_SECONDARY_MOUSE_BUTTON);
    ASSERT_TRUE(WaitForAppMessages(kShowDialog, 1));
    BMessage missing = AppMessages(kShowDialog)[0];
    void* layer = NULL;
    EXPECT_EQ(missing.FindPointer("layer", &layer), B_OK);
    EXPECT_EQ(layer, fLayer);
    const char* missingPath = NULL;
    ASSERT_EQ(missing.FindString("path", &missingPath), B_OK);
    EXPECT_EQ(std::string(missingPath), path);
    EXPECT_TRUE(AppMessages(kOpen).empty());
}

TEST_F(LayerItemTest, RestoredFileBringsBackTheIconAndTheOpenMessage) {
    std::string path = MakeFile("back");
    MakeLayerFile("main");
    OpenBar("main", {path});
    ASSERT_TRUE(std::filesystem::remove(path));
    CheckItem(0);
    ASSERT_EQ(ItemAt(0)->Message()->what, (uint32)kShowDialog);

    MakeFile("back");
    CheckItem(0);
    LayerItem* item = ItemAt(0);
    EXPECT_TRUE(item->IsFileAvailable());
    ASSERT_NE(item->Icon(), nullptr);
    EXPECT_EQ(item->Icon()->Bounds(), BRect(0, 0, 15, 15));
    ASSERT_NE(item->Message(), nullptr);
    EXPECT_EQ(item->Message()->what, (uint32)kOpen);
    entry_ref file;
    ASSERT_EQ(item->Message()->FindRef("file", &file), B_OK);
    EXPECT_STREQ(file.name, "back");
    entry_ref entries;
    ASSERT_EQ(item->Message()->FindRef("entries", &entries), B_OK);
    EXPECT_EQ(entries, file);
    BPrivate::Capture capture = CaptureBar();
    EXPECT_TRUE(same_color(capture.ColorAt(5, 5), icon_color()));
}

TEST_F(LayerItemTest, IconSizeChangeFromSixteenToThirtyTwoRecreatesTheBitmap) {
    std::string path = MakeFile("sized");
    MakeLayerFile("main");
    OpenBar("main", {path});
    const BBitmap* small = ItemAt(0)->Icon();
    ASSERT_NE(small, nullptr);
    EXPECT_EQ(small->Bounds(), BRect(0, 0, 15, 15));
    EXPECT_EQ(small->ColorSpace(), B_CMAP8);

    ASSERT_TRUE(fWindow->Lock());
    fSettings.which = 32;
    fBar->LayerItemAt(0)->CheckNode(true);
    const BBitmap* large = fBar->LayerItemAt(0)->Icon();
    ASSERT_NE(large, nullptr);
    EXPECT_EQ(large->Bounds(), BRect(0, 0, 31, 31));
    EXPECT_EQ(large->ColorSpace(), B_CMAP8);
    fWindow->Unlock();
}

// #pragma mark - Layer links

TEST_F(LayerItemTest, LayerFileNamingItselfShowsTheGreyBlueMarkerAndCannotRecurse) {
    std::string self = LayerPath("looping");
    MakeLayerFile("looping", self + "\n");
    OpenBar("looping", {self});
    LayerItem* item = ItemAt(0);
    ASSERT_NE(item, nullptr);
    ASSERT_TRUE(fWindow->Lock());
    EXPECT_FALSE(item->IsAvailable());
    fWindow->Unlock();
    BPrivate::Capture capture = CaptureBar();
    // The marker is the triangle in the cell's corner, one pixel in.
    EXPECT_TRUE(same_color(capture.ColorAt(18, 18), kCannotExpand))
        << color_text(capture.ColorAt(18, 18));
    EXPECT_EQ(capture.CountPixels(kCanExpand), 0);
}

TEST_F(LayerItemTest, LinkToAnotherLayerShowsTheBlueMarker) {
    std::string other = MakeLayerFile("other");
    MakeLayerFile("main");
    std::string plain = MakeFile("plain");
    OpenBar("main", {other, plain});
    ASSERT_TRUE(fWindow->Lock());
    EXPECT_TRUE(fBar->LayerItemAt(0)->IsAvailable());
    fWindow->Unlock();
    BPrivate::Capture capture = CaptureBar();
    EXPECT_TRUE(same_color(capture.ColorAt(18, 18), kCanExpand))
        << color_text(capture.ColorAt(18, 18));
    EXPECT_TRUE(same_color(capture.ColorAt(18, 17), kCanExpand));
    // An item that is not a layer link has no marker.
    EXPECT_FALSE(same_color(capture.ColorAt(18, 38), kCanExpand));
    EXPECT_EQ(capture.CountPixels(kCannotExpand), 0);
}

// #pragma mark - Drops

TEST_F(LayerItemTest, DroppingThreeFilesAndATextClippingMakesOneMessage) {
    std::string first = MakeFile("first");
    std::string second = MakeFile("second");
    MakeLayerFile("main");
    OpenBar("main", {first, second});
    std::vector<entry_ref> refs(3);
    for (int32 index = 0; index < 3; index++) {
        std::string path = MakeFile("dropped" + std::to_string(index));
        ASSERT_EQ(get_ref_for_path(path.c_str(), &refs[index]), B_OK);
    }

    DropOn(BPoint(5, 25), refs);
    ASSERT_TRUE(WaitForAppMessages(kOpen, 1));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    std::vector<BMessage> opens = AppMessages(kOpen);
    ASSERT_EQ(opens.size(), 1u);
    entry_ref file;
    ASSERT_EQ(opens[0].FindRef("file", &file), B_OK);
    EXPECT_STREQ(file.name, "second");
    ASSERT_EQ(CountEntries(opens[0], "entries"), 3);
    for (int32 index = 0; index < 3; index++) {
        entry_ref entry;
        ASSERT_EQ(opens[0].FindRef("entries", index, &entry), B_OK);
        EXPECT_EQ(entry, refs[index]);
    }
    ASSERT_EQ(CountEntries(opens[0], "text/plain"), 1);
    const void* data = NULL;
    ssize_t size = 0;
    ASSERT_EQ(opens[0].FindData("text/plain", B_MIME_TYPE, &data, &size), B_OK);
    EXPECT_EQ(std::string((const char*)data, size), "clipped text");
}

TEST_F(LayerItemTest, DropOnAMissingItemBeepsAndOpensNothing) {
    std::string path = MakeFile("gone");
    MakeLayerFile("main");
    OpenBar("main", {path});
    ASSERT_TRUE(std::filesystem::remove(path));
    CheckItem(0);
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(MakeFile("dropped").c_str(), &ref), B_OK);
    uint32 beeps = HeadlessTestApi::CountBeeps();

    DropOn(BPoint(5, 5), {ref});
    EXPECT_TRUE(wait_until([&] { return HeadlessTestApi::CountBeeps() > beeps; }));
    EXPECT_TRUE(AppMessages(kOpen).empty());
}

// #pragma mark - Invoking

TEST_F(LayerItemTest, InvokeAddsWhenAndSourceToTheOpenMessage) {
    std::string path = MakeFile("opened");
    MakeLayerFile("main");
    OpenBar("main", {path});
    // A press that neither launches nor expands still selects the item.
    Press(BPoint(5, 5), B_TERTIARY_MOUSE_BUTTON);
    ASSERT_TRUE(fWindow->Lock());
    bigtime_t before = system_time();
    EXPECT_EQ(fBar->LayerItemAt(0)->Invoke(), B_OK);
    LayerItem* item = fBar->LayerItemAt(0);
    fWindow->Unlock();
    ASSERT_TRUE(WaitForAppMessages(kOpen, 1));
    BMessage open = AppMessages(kOpen)[0];
    int64 when = 0;
    ASSERT_EQ(open.FindInt64("when", &when), B_OK);
    EXPECT_GE(when, before);
    void* source = NULL;
    ASSERT_EQ(open.FindPointer("source", &source), B_OK);
    EXPECT_EQ(source, item);
    entry_ref file;
    ASSERT_EQ(open.FindRef("file", &file), B_OK);
    EXPECT_STREQ(file.name, "opened");
}

TEST_F(LayerItemTest, InvokeOfAnItemThatIsNotTheBarsSelectionPostsNothing) {
    std::string first = MakeFile("first");
    std::string second = MakeFile("second");
    MakeLayerFile("main");
    OpenBar("main", {first, second});
    ASSERT_TRUE(fWindow->Lock());
    EXPECT_EQ(fBar->Selection(), -1);
    EXPECT_EQ(fBar->LayerItemAt(0)->Invoke(), 0);
    fWindow->Unlock();
    Press(BPoint(5, 5), B_TERTIARY_MOUSE_BUTTON);
    ASSERT_TRUE(fWindow->Lock());
    EXPECT_EQ(fBar->LayerItemAt(1)->Invoke(), 0);
    fWindow->Unlock();
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    EXPECT_TRUE(AppMessages(kOpen).empty());
}

TEST_F(LayerItemTest, InvokeWithoutAMessageReturnsAnError) {
    std::string path = MakeFile("silent");
    MakeLayerFile("main");
    OpenBar("main", {path});
    Press(BPoint(5, 5), B_TERTIARY_MOUSE_BUTTON);
    ASSERT_TRUE(fWindow->Lock());
    fBar->LayerItemAt(0)->SetMessage(NULL);
    EXPECT_EQ(fBar->LayerItemAt(0)->Invoke(), B_ERROR);
    fWindow->Unlock();
}

TEST_F(LayerItemTest, ItemsTargetTheApplication) {
    std::string path = MakeFile("targeted");
    MakeLayerFile("main");
    OpenBar("main", {path});
    BLooper* looper = NULL;
    ItemAt(0)->Target(&looper);
    EXPECT_EQ(looper, be_app);
    EXPECT_STREQ(ItemAt(0)->Label(), "targeted");
}

// #pragma mark - Drawing

TEST_F(LayerItemTest, ContentSizeFollowsTheIconSizeAndLabels) {
    std::string path = MakeFile("measured");
    MakeLayerFile("main");
    OpenBar("main", {path});
    ASSERT_TRUE(fWindow->Lock());
    LayerItem* item = fBar->LayerItemAt(0);
    struct Case {
        int32 which;
        int32 flags;
        float width;
        float height;
    } cases[] = {{16, 0, 15, 15},
                 {32, 0, 33, 33},
                 {16, kDrawLabelFlag, 96, 15},
                 {32, kDrawLabelFlag, 53, 45}};
    for (const Case& test : cases) {
        fSettings.which = test.which;
        fSettings.flags = test.flags;
        float width = 0;
        float height = 0;
        item->GetContentSize(&width, &height);
        EXPECT_EQ(width, test.width) << test.which << " " << test.flags;
        EXPECT_EQ(height, test.height) << test.which << " " << test.flags;
    }
    fSettings.which = 16;
    fSettings.flags = 0;
    fWindow->Unlock();
}

TEST_F(LayerItemTest, SmallIconsWithLabelsLandAtXTenEvenInTheSecondCellOfARow) {
    // Kept as the bar has always drawn it: the icon's x ignores the cell.
    fSettings.direction = 2;
    fSettings.flags = kDrawLabelFlag;
    std::string first = MakeFile("first");
    std::string second = MakeFile("second");
    MakeLayerFile("main");
    OpenBar("main", {first, second});
    EXPECT_EQ(ItemFrame(1), BRect(117, 0, 233, 19));
    BPrivate::Capture capture = CaptureBar();
    EXPECT_EQ(capture.BoundsOf(icon_color()), BRect(10, 2, 25, 17));
    // The second label is drawn in its own cell.
    EXPECT_LE(darkest_value(capture, BRect(150, 2, 230, 18)), 40);
}

TEST_F(LayerItemTest, LargeIconsWithLabelsCentreTheIconAndTheLabelBelowIt) {
    fSettings.which = 32;
    fSettings.flags = kDrawLabelFlag;
    std::string path = MakeFile("big");
    MakeLayerFile("main");
    OpenBar("main", {path});
    BPrivate::Capture capture = CaptureBar();
    // Cell 57 x 49: the icon at (ceil(12.5), 2).
    EXPECT_EQ(capture.BoundsOf(icon_color()), BRect(13, 2, 44, 33));
    EXPECT_LE(darkest_value(capture, BRect(2, 35, 55, 48)), 40);
}

TEST_F(LayerItemTest, HighlightedItemIsFilledWithTheDarkenedLowColour) {
    std::string path = MakeFile("lit");
    MakeLayerFile("main");
    OpenBar("main", {path});
    ASSERT_TRUE(fWindow->Lock());
    fBar->LayerItemAt(0)->SetHighlighted(true);
    EXPECT_TRUE(fBar->LayerItemAt(0)->IsSelected2());
    fBar->Invalidate();
    fWindow->Unlock();
    BPrivate::Capture capture = CaptureBar();
    rgb_color selected = tint_color(BarLowColor(), B_DARKEN_2_TINT);
    EXPECT_TRUE(same_color(capture.ColorAt(1, 1), selected)) << color_text(capture.ColorAt(1, 1));
    EXPECT_TRUE(same_color(capture.ColorAt(5, 5), icon_color()));
    ASSERT_TRUE(fWindow->Lock());
    fBar->LayerItemAt(0)->SetHighlighted(false);
    fWindow->Unlock();
}
