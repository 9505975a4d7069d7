// File menu items: icon and availability that follow the file, what a chosen
// item sends, its size, its drawing and its archive.
#include "FileMenuItem.h"

#include "Commands.h"

#include <Bitmap.h>
#include <Entry.h>
#include <File.h>
#include <Looper.h>

#include <gtest/gtest.h>

#include "FileMenusTestSupport.h"

#include <stdlib.h>
#include <unistd.h>

using namespace file_menus_testing;
using testing_support::wait_until;

namespace {

// Exposes what an item keeps protected, for measuring.
class MeasuredItem : public FileMenuItem {
public:
    using FileMenuItem::ContentLocation;
    using FileMenuItem::FileMenuItem;
    using FileMenuItem::GetContentSize;
};

// Anti-aliased glyphs never quite reach their colour: a few steps either way.
bool close_color(rgb_color a, rgb_color b) {
    return abs(a.red - b.red) <= 6 && abs(a.green - b.green) <= 6 && abs(a.blue - b.blue) <= 6;
}

// How many pixels of the 16x16 icon square at the item's content location
// differ from the background just left of it on the same row.
int32 icon_pixels(const BPrivate::Capture& capture, BPoint location) {
    int32 count = 0;
    int32 left = (int32)location.x;
    int32 top = (int32)location.y;
    for (int32 y = top; y < top + 16; y++) {
        rgb_color background = capture.ColorAt(left - 2, y);
        for (int32 x = left; x < left + 16; x++) {
            if (!same_color(background, capture.ColorAt(x, y)))
                count++;
        }
    }
    return count;
}

class FileMenuItemTest : public FileMenusTest {
protected:
    // A bar holding one file item whose message is kOpen, and the item.
    MeasuredItem* MakeBarWithFile(const std::string& path) {
        MeasuredItem* item = new MeasuredItem(path.c_str(), new BMessage(kOpen));
        MakeWindow({item});
        return item;
    }

    // Where the item's content starts, in the window (the bar is at its top
    // left corner).
    BPoint ContentLocation(MeasuredItem* item) {
        MenuLock lock(fBar);
        return item->ContentLocation();
    }

    // The label: right of the icon column, down to the item's bottom.
    BRect LabelRect(MeasuredItem* item) {
        MenuLock lock(fBar);
        BPoint content = item->ContentLocation();
        BRect frame = item->Frame();
        return BRect(content.x + 20, frame.top, frame.right, frame.bottom);
    }

    rgb_color BarHighColor() {
        MenuLock lock(fBar);
        return fBar->HighColor();
    }

    bool CheckNode(FileMenuItem* item) {
        MenuLock lock(fBar);
        if (!lock.IsLocked())
            return false;
        item->CheckNode(true);
        return true;
    }
};

} // namespace

TEST_F(FileMenuItemTest, ItemOfAnExistingFileHasAnIconAndIsEnabled) {
    std::string path = fHome.WriteFile("notes.txt", "hello\n");
    FileMenuItem item(path.c_str(), new BMessage(kOpen));
    ASSERT_NE(nullptr, item.Icon());
    EXPECT_EQ(BRect(0, 0, 15, 15), item.Icon()->Bounds());
    EXPECT_EQ(B_CMAP8, item.Icon()->ColorSpace());
    EXPECT_TRUE(item.IsEnabled());
    EXPECT_STREQ("notes.txt", item.Label());
}

TEST_F(FileMenuItemTest, MissingFileItemHasNoIconAndIsNotEnabled) {
    std::string path = fHome.Path() + "/vanished.txt";
    FileMenuItem item(path.c_str(), new BMessage(kOpen));
    EXPECT_EQ(nullptr, item.Icon());
    EXPECT_FALSE(item.IsEnabled());
    // The label is still the file's name.
    EXPECT_STREQ("vanished.txt", item.Label());
}

TEST_F(FileMenuItemTest, MissingFileItemDrawsNoIconAndALightenedLabel) {
    std::string path = fHome.Path() + "/vanished.txt";
    MeasuredItem* item = MakeBarWithFile(path);
    BPrivate::Capture capture;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(fWindow, &capture));
    rgb_color lightened = tint_color(BarHighColor(), B_LIGHTEN_1_TINT);
    ASSERT_GT(luminance(lightened), luminance(BarHighColor()) + 500);
    EXPECT_TRUE(close_color(lightened, darkest_in(capture, LabelRect(item))));
    EXPECT_EQ(0, icon_pixels(capture, ContentLocation(item)));
}

TEST_F(FileMenuItemTest, ChoosingAMissingFileItemSendsNothing) {
    std::string path = fHome.Path() + "/vanished.txt";
    MakeBarWithFile(path);
    // A second item, chosen afterwards, proves that messages get through.
    BMenuItem* other = new BMenuItem("Other", new BMessage(kOpenParent));
    {
        MenuLock lock(fBar);
        fBar->AddItem(other);
    }
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(fBar, 0))));
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(fBar, 1))));
    ASSERT_TRUE(wait_until([&] { return !fWindow->Messages().empty(); }));
    WaitForIdle();
    std::vector<BMessage> messages = fWindow->Messages();
    ASSERT_EQ(1u, messages.size());
    EXPECT_EQ((uint32)kOpenParent, messages[0].what);
}

TEST_F(FileMenuItemTest, InvokingAMissingFileItemReturnsZeroAndPostsNothing) {
    std::string path = fHome.Path() + "/vanished.txt";
    MeasuredItem* item = MakeBarWithFile(path);
    {
        MenuLock lock(fBar);
        EXPECT_EQ(0, item->Invoke());
    }
    WaitForIdle();
    EXPECT_TRUE(fWindow->Messages().empty());
}

TEST_F(FileMenuItemTest, ReturningFileBringsBackTheIconAndTheNormalLabel) {
    std::string path = fHome.Path() + "/comes-back.txt";
    MeasuredItem* item = MakeBarWithFile(path);
    ASSERT_EQ(nullptr, item->Icon());

    fHome.WriteFile("comes-back.txt", "here again\n");
    ASSERT_TRUE(CheckNode(item));
    WaitForIdle();
    {
        MenuLock lock(fBar);
        EXPECT_NE(nullptr, item->Icon());
        EXPECT_TRUE(item->IsEnabled());
    }
    BPrivate::Capture capture;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(fWindow, &capture));
    EXPECT_TRUE(close_color(BarHighColor(), darkest_in(capture, LabelRect(item))));
    EXPECT_GT(icon_pixels(capture, ContentLocation(item)), 0);
}

TEST_F(FileMenuItemTest, ChosenItemPostsItsMessageWithWhenAndSourceToItsTarget) {
    std::string path = fHome.WriteFile("notes.txt", "hello\n");
    MeasuredItem* item = MakeBarWithFile(path);
    bigtime_t before = system_time();
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(fBar, 0))));
    ASSERT_TRUE(wait_until([&] { return !fWindow->Messages().empty(); }));
    BMessage message = fWindow->Messages()[0];
    EXPECT_EQ((uint32)kOpen, message.what);
    EXPECT_EQ(item, message.GetPointer("source", NULL));
    EXPECT_GE(message.GetInt64("when", 0), before);
    // Unlike a plain menu item, no index is added.
    EXPECT_FALSE(message.HasInt32("index"));
}

TEST_F(FileMenuItemTest, ItemWithoutAnyMessageReturnsMinusOneFromInvoke) {
    std::string path = fHome.WriteFile("notes.txt", "hello\n");
    FileMenuItem item(path.c_str(), (BMessage*)NULL);
    ASSERT_TRUE(item.IsEnabled());
    EXPECT_EQ(-1, item.Invoke());
}

TEST_F(FileMenuItemTest, GivenMessageIsSentInsteadOfTheItemsOwn) {
    std::string path = fHome.WriteFile("notes.txt", "hello\n");
    MeasuredItem* item = MakeBarWithFile(path);
    BMessage given(kOpenWith);
    {
        MenuLock lock(fBar);
        EXPECT_EQ(B_OK, item->Invoke(&given));
    }
    ASSERT_TRUE(wait_until([&] { return !fWindow->Messages().empty(); }));
    EXPECT_EQ((uint32)kOpenWith, fWindow->Messages()[0].what);
}

TEST_F(FileMenuItemTest, ShortLabelStillYieldsAnItem18HighAndWidthIncludesTheIconColumn) {
    std::string path = fHome.WriteFile("a", "x");
    MeasuredItem* item = new MeasuredItem(path.c_str(), new BMessage(kOpen));
    BMenuItem* plain = new BMenuItem("a", NULL);
    MakeWindow({item, plain});
    float width = 0;
    float height = 0;
    float plainWidth = 0;
    float plainHeight = 0;
    {
        MenuLock lock(fBar);
        item->GetContentSize(&width, &height);
        BFont font;
        fBar->GetFont(&font);
        plainWidth = ceilf(font.StringWidth("a"));
        font_height fontHeight;
        font.GetHeight(&fontHeight);
        plainHeight = ceilf(fontHeight.ascent + fontHeight.descent + fontHeight.leading);
    }
    ASSERT_LT(plainHeight, 18);
    EXPECT_EQ(18, height);
    EXPECT_EQ(plainWidth + 20, width);
}

TEST_F(FileMenuItemTest, LongLabelKeepsItsOwnHeightAndGainsTheIconColumn) {
    std::string path = fHome.WriteFile("a name long enough to measure", "x");
    MeasuredItem* item = new MeasuredItem(path.c_str(), new BMessage(kOpen));
    MakeWindow({item});
    float width = 0;
    float height = 0;
    float labelWidth = 0;
    {
        MenuLock lock(fBar);
        item->GetContentSize(&width, &height);
        labelWidth = ceilf(fBar->StringWidth("a name long enough to measure"));
    }
    EXPECT_EQ(labelWidth + 20, width);
    EXPECT_GE(height, 18);
}

TEST_F(FileMenuItemTest, EntryRefItemIsLabelledWithTheRefsLeafName) {
    std::string path = fHome.WriteFile("folder/leaf.txt", "x");
    entry_ref ref = ref_for(path);
    FileMenuItem item(&ref, new BMessage(kOpen));
    EXPECT_STREQ("leaf.txt", item.Label());
    EXPECT_STREQ(path.c_str(), item.Path());
    EXPECT_TRUE(item.IsEnabled());
}

TEST_F(FileMenuItemTest, ItemWithSubmenuIsLabelledWithTheFileNotTheMenu) {
    std::string path = fHome.MakeFolder("Documents");
    FileMenuItem item(path.c_str(), new BMenu("menu name"), new BMessage(kOpen));
    EXPECT_STREQ("Documents", item.Label());
    EXPECT_NE(nullptr, item.Submenu());
}

TEST_F(FileMenuItemTest, CopiedReferenceItemFollowsTheSameFile) {
    std::string path = fHome.WriteFile("copied.txt", "x");
    RefRetriever reference(path.c_str());
    FileMenuItem item(&reference, new BMessage(kOpen));
    EXPECT_STREQ(path.c_str(), item.Path());
    EXPECT_STREQ("copied.txt", item.Label());
    EXPECT_EQ(B_OK, item.Status());
}

TEST_F(FileMenuItemTest, ArchiveCarriesThePathAndInstantiatesTheSameItem) {
    std::string path = fHome.WriteFile("archived.txt", "x");
    FileMenuItem item(path.c_str(), new BMessage(kOpen));
    BMessage archive;
    ASSERT_EQ(B_OK, item.Archive(&archive, true));
    EXPECT_STREQ(path.c_str(), archive.GetString("p:path", ""));

    BArchivable* object = FileMenuItem::Instantiate(&archive);
    FileMenuItem* restored = dynamic_cast<FileMenuItem*>(object);
    ASSERT_NE(nullptr, restored);
    EXPECT_STREQ(path.c_str(), restored->Path());
    EXPECT_STREQ("archived.txt", restored->Label());
    ASSERT_NE(nullptr, restored->Message());
    EXPECT_EQ((uint32)kOpen, restored->Message()->what);
    delete restored;
}

TEST_F(FileMenuItemTest, InstantiateRefusesAnArchiveWithoutAPath) {
    std::string path = fHome.WriteFile("archived.txt", "x");
    FileMenuItem item(path.c_str(), new BMessage(kOpen));
    BMessage archive;
    ASSERT_EQ(B_OK, item.Archive(&archive, true));
    archive.RemoveName("p:path");
    EXPECT_EQ(nullptr, FileMenuItem::Instantiate(&archive));
}

TEST_F(FileMenuItemTest, InstantiateRefusesAnotherClassesArchive) {
    BMenuItem plain("plain", NULL);
    BMessage archive;
    ASSERT_EQ(B_OK, plain.Archive(&archive, true));
    archive.AddString("p:path", "/tmp");
    EXPECT_EQ(nullptr, FileMenuItem::Instantiate(&archive));
}
