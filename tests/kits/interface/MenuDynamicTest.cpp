// Menus that fill themselves while they open (AddDynamicItem), and menus that
// choose their own size (GetSize) and place (ScreenLocation).
#include "MenuTestSupport.h"
#include "TestHome.h"
#include "Watchdog.h"
#include "interface/MenuScrollArrow.h"

#include <Directory.h>
#include <Entry.h>

#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>

using namespace menu_testing;
using testing_support::wait_until;

namespace {

// Lists count names, one per step, starting afresh at every opening.
class NamesMenu : public BMenu {
public:
    NamesMenu(const char* name, int32 count, EventLog* log)
        : BMenu(name), fCount(count), fLog(log) {}

    bool AddDynamicItem(add_state state) override {
        switch (state) {
        case B_INITIAL_ADD:
            fLog->Add("initial");
            RemoveItems(0, CountItems(), true);
            fNext = 0;
            return true;
        case B_PROCESSING: {
            if (fNext == 0)
                fShownWhileFilling = Window() != NULL && !Window()->IsHidden();
            std::string name = "name " + std::to_string(fNext);
            AddItem(new BMenuItem(name.c_str(), new BMessage('name')));
            fNext++;
            fAdded.store(fNext);
            if (fNext < fCount)
                return true;
            fLog->Add("complete");
            return false;
        }
        case B_ABORT:
            fLog->Add("abort at " + std::to_string(fNext));
            return false;
        }
        return false;
    }

    void AllDetached() override {
        fLog->Add("detached");
        BMenu::AllDetached();
    }

    int32 Added() const { return fAdded.load(); }
    bool ShownWhileFilling() const { return fShownWhileFilling; }

private:
    int32 fCount;
    int32 fNext = 0;
    std::atomic<int32> fAdded{0};
    bool fShownWhileFilling = false;
    EventLog* fLog;
};

// A menu that says how big it is and where it goes.
class PlacedMenu : public BMenu {
public:
    PlacedMenu(BPoint where, float width, float height, EventLog* log)
        : BMenu("placed"), fWhere(where), fWidth(width), fHeight(height), fLog(log) {}

    void GetSize(float* width, float* height) override {
        fLog->Add("get size");
        *width = fWidth;
        *height = fHeight;
    }

protected:
    BPoint ScreenLocation() override {
        fLog->Add("screen location");
        return fWhere;
    }

private:
    BPoint fWhere;
    float fWidth;
    float fHeight;
    EventLog* fLog;
};

// Lists a folder, one entry per step, as a directory menu does.
class FolderMenu : public BMenu {
public:
    FolderMenu(const char* path, EventLog* log) : BMenu("Folder"), fPath(path), fLog(log) {}

    bool AddDynamicItem(add_state state) override {
        switch (state) {
        case B_INITIAL_ADD:
            RemoveItems(0, CountItems(), true);
            fStart = system_time();
            return fFolder.SetTo(fPath.c_str()) == B_OK;
        case B_PROCESSING: {
            entry_ref ref;
            if (fFolder.GetNextRef(&ref) != B_OK) {
                fFilled.store(system_time() - fStart);
                fLog->Add("folder complete");
                return false;
            }
            AddItem(new BMenuItem(ref.name, new BMessage('file')));
            fAdded.store(fAdded.load() + 1);
            return true;
        }
        case B_ABORT:
            fLog->Add("folder abort");
            return false;
        }
        return false;
    }

    int32 Added() const { return fAdded.load(); }
    bigtime_t Filled() const { return fFilled.load(); }

private:
    std::string fPath;
    EventLog* fLog;
    BDirectory fFolder;
    bigtime_t fStart = 0;
    std::atomic<int32> fAdded{0};
    std::atomic<bigtime_t> fFilled{0};
};

std::string make_folder_of_names(const testing_support::TestHome& home, int32 count) {
    std::string folder = home.MakeFolder("names");
    for (int32 index = 0; index < count; index++) {
        std::string path = folder + "/name " + std::to_string(index);
        int fd = open(path.c_str(), O_CREAT | O_WRONLY, 0644);
        if (fd >= 0)
            close(fd);
    }
    return folder;
}

class MenuDynamicTest : public MenuAppTest {
protected:
    void MakeWindow(BMenu* menu) {
        fWindow = new RecordingWindow(BRect(100, 100, 399, 299), &fLog);
        fBar = new BMenuBar(BRect(0, 0, 299, 19), "bar");
        fBar->AddItem(menu);
        fBar->AddItem(new BMenuItem("Other", new BMessage('othr')));
        fWindow->AddChild(fBar);
        fWindow->Show();
        WaitForIdle();
    }

    void Open() { ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(fBar, 0)))); }

    RecordingWindow* fWindow = NULL;
    BMenuBar* fBar = NULL;
};

} // namespace

TEST_F(MenuDynamicTest, InitialAddThenOneStepPerItemUntilTheMenuSaysDone) {
    NamesMenu* names = new NamesMenu("Names", 40, &fLog);
    MakeWindow(names);
    Open();
    WaitForIdle();
    std::vector<std::string> lines = fLog.Lines();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(1u, fLog.Count("initial"));
    EXPECT_EQ(1u, fLog.Count("complete"));
    EXPECT_EQ(40, names->Added());
    EXPECT_TRUE(names->ShownWhileFilling());
    {
        MenuLock lock(names);
        ASSERT_TRUE(lock.IsLocked());
        EXPECT_EQ(40, names->CountItems());
    }

    // The window grew with its items.
    WindowListing listing;
    ASSERT_TRUE(wait_for_menu_window("Names", &listing));
    float width;
    float height;
    {
        MenuLock lock(names);
        ASSERT_TRUE(lock.IsLocked());
        names->GetPreferredSize(&width, &height);
    }
    EXPECT_EQ(height, listing.frame.Height());
}

TEST_F(MenuDynamicTest, CompletedMenuGetsNoAbortWhenItCloses) {
    NamesMenu* names = new NamesMenu("Names", 5, &fLog);
    MakeWindow(names);
    Open();
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(900, 700)));
    WaitForIdle();
    EXPECT_TRUE(wait_for_menu_count(0));
    for (const std::string& line : fLog.Lines())
        EXPECT_EQ(std::string::npos, line.find("abort"));
    EXPECT_EQ(1u, fLog.Count("detached"));
}

TEST_F(MenuDynamicTest, TenThousandNamesLeaveThePointerHandledAndCloseEarlyWithAbort) {
    NamesMenu* names = new NamesMenu("Names", 10000, &fLog);
    MakeWindow(names);
    Open();
    ASSERT_TRUE(wait_until([&] { return names->Added() >= 10; }));
    // A press elsewhere while the menu fills closes it at once.
    bigtime_t pressed = system_time();
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(900, 700)));
    ASSERT_TRUE(wait_until([&] { return menu_windows().empty(); }));
    bigtime_t handled = system_time() - pressed;
    WaitForIdle();

    int32 added = names->Added();
    EXPECT_LT(added, 10000);
    EXPECT_EQ(1u, fLog.Count("abort at " + std::to_string(added)));
    EXPECT_EQ(0u, fLog.Count("complete"));
    EXPECT_EQ(1u, fLog.Count("detached"));
    EXPECT_LT(handled, 1000000);
    RecordProperty("close_after_press_us", std::to_string(handled));
}

TEST_F(MenuDynamicTest, ItemsOfAFillingMenuCanBeChosen) {
    NamesMenu* names = new NamesMenu("Names", 10000, &fLog);
    MakeWindow(names);
    Open();
    // Wait until the window has grown over the third item.
    BRect item;
    ASSERT_TRUE(wait_until([&] {
        WindowListing listing;
        item = item_screen_frame(names, 2);
        return item.IsValid() && find_menu_window("Names", &listing) &&
               listing.frame.Contains(center_of(item));
    }));
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item)));
    ASSERT_TRUE(wait_until([&] { return menu_windows().empty(); }));
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("message " + std::to_string('name') + " index 2"));
    EXPECT_EQ(0u, fLog.Count("complete"));
}

TEST_F(MenuDynamicTest, EveryOpeningStartsWithInitialAdd) {
    NamesMenu* names = new NamesMenu("Names", 3, &fLog);
    MakeWindow(names);
    for (int round = 0; round < 2; round++) {
        Open();
        WaitForIdle();
        ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(900, 700)));
        WaitForIdle();
    }
    EXPECT_EQ(2u, fLog.Count("initial"));
    EXPECT_EQ(2u, fLog.Count("complete"));
    EXPECT_EQ(2u, fLog.Count("detached"));
}

TEST_F(MenuDynamicTest, GetSizeDecidesTheSizeOfTheMenuWindow) {
    PlacedMenu* placed = new PlacedMenu(BPoint(300, 250), 123, 45, &fLog);
    MakeWindow(placed);
    Open();
    WaitForIdle();
    WindowListing listing;
    ASSERT_TRUE(wait_for_menu_window("placed", &listing));
    EXPECT_EQ(123, listing.frame.Width());
    EXPECT_EQ(45, listing.frame.Height());
    EXPECT_GE(fLog.Count("get size"), 1u);
}

TEST_F(MenuDynamicTest, ScreenLocationDecidesWhereTheMenuWindowOpens) {
    PlacedMenu* placed = new PlacedMenu(BPoint(300, 250), 123, 45, &fLog);
    MakeWindow(placed);
    Open();
    WaitForIdle();
    WindowListing listing;
    ASSERT_TRUE(wait_for_menu_window("placed", &listing));
    EXPECT_EQ(BPoint(300, 250), listing.frame.LeftTop());
    EXPECT_EQ(1u, fLog.Count("screen location"));
}

TEST_F(MenuDynamicTest, ScreenLocationOffTheScreenIsBroughtBackOn) {
    PlacedMenu* placed = new PlacedMenu(BPoint(1250, 790), 100, 50, &fLog);
    MakeWindow(placed);
    Open();
    WaitForIdle();
    WindowListing listing;
    ASSERT_TRUE(wait_for_menu_window("placed", &listing));
    EXPECT_EQ(1279, listing.frame.right);
    EXPECT_EQ(799, listing.frame.bottom);
}

TEST_F(MenuDynamicTest, MenuTallerThanTheScreenIsCutToIt) {
    NamesMenu* names = new NamesMenu("Names", 400, &fLog);
    MakeWindow(names);
    Open();
    WaitForIdle();
    WindowListing listing;
    ASSERT_TRUE(wait_for_menu_window("Names", &listing));
    EXPECT_EQ(0, listing.frame.top);
    EXPECT_EQ(799, listing.frame.bottom);
}

TEST_F(MenuDynamicTest, FolderOfTenThousandNamesFillsWhileItsItemsAreAlreadyTracked) {
    testing_support::TestHome home;
    std::string folder = make_folder_of_names(home, 10000);
    FolderMenu* menu = new FolderMenu(folder.c_str(), &fLog);
    MakeWindow(menu);
    Open();
    // Long before the folder is read, the first entries already follow the pointer.
    BRect item;
    ASSERT_TRUE(wait_until([&] {
        WindowListing listing;
        item = item_screen_frame(menu, 1);
        return item.IsValid() && find_menu_window("Folder", &listing) &&
               listing.frame.Contains(center_of(item));
    }));
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(center_of(item)));
    ASSERT_TRUE(wait_until([&] {
        MenuLock lock(menu);
        BMenuItem* second = lock.IsLocked() ? menu->ItemAt(1) : NULL;
        return second != NULL && BPrivate::MenuPrivate::IsItemSelected(second);
    }));
    EXPECT_LT(menu->Added(), 10000);
    ASSERT_TRUE(wait_until([&] { return menu->Filled() != 0; }, std::chrono::seconds(60)));
    WaitForIdle();
    EXPECT_EQ(10000, menu->Added());
    EXPECT_EQ(1u, fLog.Count("folder complete"));
    RecordProperty("fill_us", std::to_string(menu->Filled()));
}

TEST_F(MenuDynamicTest, FolderMenuClosedWhileFillingGetsAbortAndHandlesThePressAtOnce) {
    testing_support::TestHome home;
    std::string folder = make_folder_of_names(home, 10000);
    FolderMenu* menu = new FolderMenu(folder.c_str(), &fLog);
    MakeWindow(menu);
    Open();
    ASSERT_TRUE(wait_until([&] { return menu->Added() >= 20; }));
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(900, 700)));
    ASSERT_TRUE(wait_for_menu_count(0));
    WaitForIdle();
    EXPECT_LT(menu->Added(), 10000);
    EXPECT_EQ(1u, fLog.Count("folder abort"));
    EXPECT_EQ(0u, fLog.Count("folder complete"));
}

TEST_F(MenuDynamicTest, WheelScrollsAMenuTallerThanTheScreen) {
    NamesMenu* names = new NamesMenu("Names", 400, &fLog);
    MakeWindow(names);
    Open();
    WaitForIdle();
    WindowListing listing;
    ASSERT_TRUE(wait_for_menu_window("Names", &listing));
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(BPoint(listing.frame.left + 20, 400)));
    ASSERT_EQ(B_OK, HeadlessTestApi::ScrollWheel(0, 3));
    WaitForIdle();
    float top = -1;
    {
        MenuLock lock(names);
        ASSERT_TRUE(lock.IsLocked());
        top = names->Bounds().top;
    }
    EXPECT_EQ(60, top);
    // What the pointer is over follows the scrolling (just below the arrow at
    // the top).
    float belowArrow = listing.frame.top + BPrivate::kMenuScrollArrowHeight + 5;
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(listing.frame.left + 20, belowArrow)));
    WaitForIdle();
    std::string first = "message " + std::to_string('name') + " index ";
    bool chosenBelowTheTop = false;
    for (const std::string& line : fLog.Lines()) {
        if (line.rfind(first, 0) == 0 && std::stoi(line.substr(first.size())) > 0)
            chosenBelowTheTop = true;
    }
    EXPECT_TRUE(chosenBelowTheTop);
}
