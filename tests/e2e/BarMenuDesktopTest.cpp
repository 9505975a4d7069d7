// The menus of the built program on a real X desktop: expanding an item opens
// its menu beside it, and what is chosen there ("Open Parent", an application
// of "Open With", a target) starts the right program with the right file.
// Rows are found from the menu window's height and the menu kit's layout: items
// stacked one pixel apart, each its content plus 2 above and 2 below; file
// items are at least 18 high, separators 4, text items one line of the font.
#include "BarDesktopSession.h"
#include "Watchdog.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>
#include <vector>

using testing_support::BarDesktopSession;
using testing_support::WindowFrame;

namespace {

typedef std::vector<std::pair<unsigned long, WindowFrame>> Popups;

// A cell of a bar with small icons: 19 high, one pixel apart.
const int kCellPitch = 20;
const int kItemMargins = 4;
const int kFileItemHeight = 18;
const int kSeparatorHeight = 4;

enum RowKind { kFileRow, kSeparatorRow, kTextRow };

// Where the rows of a column menu stand, given its kinds of rows and the height
// of its window: the text line's height is what is left.
class MenuRows {
public:
    MenuRows(const std::vector<RowKind>& kinds, int windowHeight) : fKinds(kinds) {
        int fixed = 0;
        int textRows = 0;
        for (RowKind kind : kinds) {
            fixed += kItemMargins + 1;
            if (kind == kFileRow)
                fixed += kFileItemHeight;
            else if (kind == kSeparatorRow)
                fixed += kSeparatorHeight;
            else
                textRows++;
        }
        fTextHeight = textRows > 0 ? (windowHeight - fixed) / textRows : 0;
        fExact = textRows == 0 ? windowHeight == fixed
                               : (windowHeight - fixed) % textRows == 0 && fTextHeight > 0;
    }

    // Whether the height fits the kinds of rows at all.
    bool Fits() const { return fExact; }

    int Height(size_t row) const {
        RowKind kind = fKinds[row];
        int content = kind == kFileRow        ? kFileItemHeight
                      : kind == kSeparatorRow ? kSeparatorHeight
                                              : fTextHeight;
        return content + kItemMargins + 1;
    }

    // The middle of the row, from the menu's top.
    int Middle(size_t row) const {
        int top = 0;
        for (size_t index = 0; index < row; index++)
            top += Height(index);
        return top + Height(row) / 2;
    }

private:
    std::vector<RowKind> fKinds;
    int fTextHeight = 0;
    bool fExact = false;
};

// The routines menu of a plain file: its folder, a separator, "Open Parent",
// "Open With"; then a separator and the targets, when there are any.
std::vector<RowKind> routine_rows(int targetCount) {
    std::vector<RowKind> rows = {kFileRow, kSeparatorRow, kTextRow, kTextRow};
    if (targetCount > 0)
        rows.push_back(kSeparatorRow);
    for (int index = 0; index < targetCount; index++)
        rows.push_back(kFileRow);
    return rows;
}

const size_t kOpenParentRow = 2;
const size_t kOpenWithRow = 3;
const size_t kFirstTargetRow = 5;

std::string describe(const Popups& popups) {
    std::string text;
    for (const auto& popup : popups)
        text += std::to_string(popup.first) + " at " + std::to_string(popup.second.x) + "," +
                std::to_string(popup.second.y) + " " + std::to_string(popup.second.width) + "x" +
                std::to_string(popup.second.height) + "; ";
    return text;
}

class BarMenuDesktopTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(fSession.StartDesktop()) << "no Xvfb with openbox"; }

    // A layer of count text files in "files", shown on every workspace by a bar
    // in the top-left corner that runs down, so that menus open to the right
    // and downward without meeting an edge of the screen.
    void StartBarWithTextFiles(int count) {
        std::vector<std::string> paths;
        for (int index = 1; index <= count; index++)
            paths.push_back(
                fSession.MakeFile("files/note " + std::to_string(index) + ".txt", "text/plain"));
        StartBarWith(paths);
    }

    void StartBarWith(const std::vector<std::string>& paths) {
        fPaths = paths;
        ASSERT_TRUE(fSession.MakeLayer("Work", fPaths));
        ASSERT_TRUE(fSession.WriteSettings([&](BMessage* archive) {
            archive->ReplaceInt32("location", 0);
            archive->ReplaceInt32("direction", 0);
            for (int index = 0; index < 32; index++)
                archive->ReplaceString("layerName", index, "Work");
        }));
        ASSERT_TRUE(fSession.StartBar()) << fSession.ProgramOutput();
    }

    // The top of the item's cell on the screen: the layer's cells fill the
    // end of a bar that runs down, below the application menu.
    int ItemTop(int item) {
        WindowFrame frame = fSession.BarFrame();
        return frame.y + frame.height - ((int)fPaths.size() - item) * kCellPitch;
    }

    // A menu window shown now whose left edge is at x (menus open beside what
    // they come from; the window manager's own popups stand elsewhere).
    bool FindMenuAt(int x, WindowFrame* frame) {
        for (const auto& popup : fSession.ShownPopups()) {
            if (popup.second.x == x) {
                *frame = popup.second;
                return true;
            }
        }
        return false;
    }

    bool WaitForMenuAt(int x, WindowFrame* frame) {
        return testing_support::wait_until([&] { return FindMenuAt(x, frame); },
                                           std::chrono::seconds(10));
    }

    // Waits for a menu at the bar's right edge, the bar's frame read afresh each
    // time: it may still be settling when the press is made.
    bool WaitForMenuBesideBar(WindowFrame* frame) {
        return testing_support::wait_until(
            [&] {
                WindowFrame bar = fSession.BarFrame();
                return FindMenuAt(bar.x + bar.width, frame);
            },
            std::chrono::seconds(10));
    }

    // Expands the item with a plain primary press and answers its menu window,
    // which opens beside the bar.
    WindowFrame Expand(int item) {
        WindowFrame bar = fSession.BarFrame();
        fSession.ClickAt(bar.x + 9, ItemTop(item) + 9);
        WindowFrame menu;
        EXPECT_TRUE(WaitForMenuBesideBar(&menu)) << "shown: " << describe(fSession.ShownPopups());
        return menu;
    }

    void ClickRow(const WindowFrame& menu, const MenuRows& rows, size_t row) {
        fSession.ClickAt(menu.x + menu.width / 2, menu.y + rows.Middle(row));
    }

    BarDesktopSession fSession;
    std::vector<std::string> fPaths;
};

TEST_F(BarMenuDesktopTest, PrimaryPressOpensTheItemsMenuBesideIt) {
    StartBarWithTextFiles(3);
    WindowFrame bar = fSession.BarFrame();
    WindowFrame menu;
    ASSERT_FALSE(FindMenuAt(bar.x + bar.width, &menu));

    fSession.ClickAt(bar.x + 9, ItemTop(1) + 9);
    // An override-redirect window beside the item, level with its top.
    ASSERT_TRUE(WaitForMenuBesideBar(&menu)) << "shown: " << describe(fSession.ShownPopups());
    EXPECT_EQ(menu.y, ItemTop(1));
    // Its folder, a separator, then "Open Parent" and "Open With", one line each.
    MenuRows rows(routine_rows(0), menu.height);
    EXPECT_TRUE(rows.Fits()) << "a menu " << menu.height << " high";
}

TEST_F(BarMenuDesktopTest, OpenParentShowsTheItemsFolderInTheFileManager) {
    fSession.Apps().Add("folders", "inode/directory;");
    fSession.Apps().SetDefault("inode/directory", "folders");
    StartBarWithTextFiles(2);
    WindowFrame menu = Expand(0);
    ASSERT_GT(menu.width, 0);
    MenuRows rows(routine_rows(0), menu.height);
    ASSERT_TRUE(rows.Fits()) << "a menu " << menu.height << " high";

    ClickRow(menu, rows, kOpenParentRow);
    ASSERT_TRUE(fSession.Apps().WaitForRuns("folders", 1)) << fSession.ProgramOutput();
    auto runs = fSession.Apps().Runs("folders");
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0], std::vector<std::string>{fSession.Home().Path() + "/files"});
}

TEST_F(BarMenuDesktopTest, OpenWithListsTheApplicationsAndLaunchesTheChosenOne) {
    fSession.Apps().Add("viewer", "text/plain;");
    fSession.Apps().Add("editor", "text/plain;");
    fSession.Apps().SetDefault("text/plain", "viewer");
    StartBarWithTextFiles(2);
    WindowFrame menu = Expand(1);
    ASSERT_GT(menu.width, 0);
    MenuRows rows(routine_rows(0), menu.height);
    ASSERT_TRUE(rows.Fits()) << "a menu " << menu.height << " high";

    ClickRow(menu, rows, kOpenWithRow);
    WindowFrame openWith;
    ASSERT_TRUE(WaitForMenuAt(menu.x + menu.width, &openWith))
        << "shown: " << describe(fSession.ShownPopups());
    // The preferred application, then the other one in a group of its own.
    MenuRows applications({kFileRow, kSeparatorRow, kFileRow}, openWith.height);
    ASSERT_TRUE(applications.Fits()) << "an Open With menu " << openWith.height << " high";

    ClickRow(openWith, applications, 2);
    ASSERT_TRUE(fSession.Apps().WaitForRuns("editor", 1)) << fSession.ProgramOutput();
    auto runs = fSession.Apps().Runs("editor");
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0], std::vector<std::string>{fPaths[1]});
    EXPECT_TRUE(fSession.Apps().Runs("viewer").empty());
}

// A chosen target opens the expanded item with the target handed to it: the
// target's message keeps the target as its entry and takes the item as the
// file to open, so an application on the bar receives the target file.
TEST_F(BarMenuDesktopTest, ChosenTargetIsHandedToTheExpandedItem) {
    std::string editor = fSession.Apps().Add("editor", "text/plain;");
    // Opening the target file by itself would start the viewer instead.
    fSession.Apps().Add("viewer", "text/plain;");
    fSession.Apps().SetDefault("text/plain", "viewer");
    std::string target = fSession.MakeFile("files/target notes.txt", "text/plain");
    ASSERT_TRUE(fSession.MakeLayer("", {target}));
    StartBarWith({fSession.MakeFile("files/other.txt", "text/plain"), editor});
    WindowFrame menu = Expand(1);
    ASSERT_GT(menu.width, 0);
    MenuRows rows(routine_rows(1), menu.height);
    ASSERT_TRUE(rows.Fits()) << "a menu " << menu.height << " high";

    ClickRow(menu, rows, kFirstTargetRow);
    ASSERT_TRUE(fSession.Apps().WaitForRuns("editor", 1)) << fSession.ProgramOutput();
    auto runs = fSession.Apps().Runs("editor");
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0], std::vector<std::string>{target});
    EXPECT_TRUE(fSession.Apps().Runs("viewer").empty());
}

} // namespace
