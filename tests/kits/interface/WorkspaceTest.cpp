// Workspaces: switching, the messages it sends, visibility and routing by
// workspace, the count, and the global functions.
#include "HeadlessAppTest.h"

#include <InterfaceDefs.h>
#include <View.h>
#include <Window.h>

#include <gtest/gtest.h>

#include <string>

using BPrivate::HeadlessTestApi;
using BPrivate::WindowListing;
using testing_support::EventLog;
using testing_support::HeadlessAppTest;

namespace {

class WorkspaceWindow : public BWindow {
public:
    WorkspaceWindow(const char* title, uint32 workspaces, EventLog* log,
                    BRect frame = BRect(0, 0, 99, 99))
        : BWindow(frame, title, B_TITLED_WINDOW, 0, workspaces), fLog(log) {}

    void WorkspaceActivated(int32 workspace, bool active) override {
        fLog->Add(std::string(Title()) + " workspace " + std::to_string(workspace) +
                  (active ? " on" : " off"));
    }
    void ScreenChanged(BRect frame, color_space mode) override {
        fLog->Add(std::string(Title()) + " screen " + std::to_string(frame.IntegerWidth() + 1) +
                  "x" + std::to_string(frame.IntegerHeight() + 1) + " mode " +
                  std::to_string(mode));
    }
    void MouseDownSeen() { fLog->Add(std::string(Title()) + " clicked"); }

private:
    EventLog* fLog;
};

class ClickView : public BView {
public:
    ClickView(WorkspaceWindow* window)
        : BView(BRect(0, 0, 99, 99), "click", B_FOLLOW_NONE, 0), fWindow(window) {}
    void MouseDown(BPoint) override { fWindow->MouseDownSeen(); }

private:
    WorkspaceWindow* fWindow;
};

class WorkspaceTest : public HeadlessAppTest {};

bool listed_visible(const BWindow* window) {
    WindowListing listing{};
    EXPECT_TRUE(HeadlessTestApi::FindWindow(window, &listing));
    return listing.visible;
}

} // namespace

TEST_F(WorkspaceTest, SwitchingTellsBothWorkspacesAndTheNewScreen) {
    WorkspaceWindow* first = new WorkspaceWindow("first", 1u << 0, &fLog);
    WorkspaceWindow* second = new WorkspaceWindow("second", 1u << 1, &fLog);
    WorkspaceWindow* everywhere = new WorkspaceWindow("everywhere", B_ALL_WORKSPACES, &fLog);
    WorkspaceWindow* elsewhere = new WorkspaceWindow("elsewhere", 1u << 3, &fLog);
    first->Show();
    second->Show();
    everywhere->Show();
    elsewhere->Show();
    WaitForIdle();
    fLog.Clear();

    ASSERT_EQ(B_OK, HeadlessTestApi::SetWorkspace(1));
    WaitForIdle();
    EXPECT_EQ(1, current_workspace());
    EXPECT_EQ(1u, fLog.Count("first workspace 0 off"));
    EXPECT_EQ(1u, fLog.Count("second workspace 1 on"));
    EXPECT_EQ(1u, fLog.Count("everywhere workspace 0 off"));
    EXPECT_EQ(1u, fLog.Count("everywhere workspace 1 on"));
    EXPECT_EQ(1u, fLog.Count("second screen 1280x800 mode " + std::to_string(B_RGB32)));
    EXPECT_EQ(1u, fLog.Count("everywhere screen 1280x800 mode " + std::to_string(B_RGB32)));
    EXPECT_EQ(0u, fLog.Count("first screen 1280x800 mode " + std::to_string(B_RGB32)));
    for (const std::string& line : fLog.Lines())
        EXPECT_EQ(std::string::npos, line.find("elsewhere"));
}

TEST_F(WorkspaceTest, WindowsOfOtherWorkspacesAreNeitherShownNorClicked) {
    WorkspaceWindow* here = new WorkspaceWindow("here", 1u << 0, &fLog);
    here->AddChild(new ClickView(here));
    WorkspaceWindow* there = new WorkspaceWindow("there", 1u << 2, &fLog);
    there->AddChild(new ClickView(there));
    here->Show();
    there->Show();
    WaitForIdle();
    EXPECT_TRUE(listed_visible(here));
    EXPECT_FALSE(listed_visible(there));
    EXPECT_TRUE(here->IsActive());

    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(10, 10)));
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("here clicked"));
    EXPECT_EQ(0u, fLog.Count("there clicked"));

    ASSERT_EQ(B_OK, HeadlessTestApi::SetWorkspace(2));
    WaitForIdle();
    EXPECT_FALSE(listed_visible(here));
    EXPECT_TRUE(listed_visible(there));
    EXPECT_TRUE(there->IsActive());
    EXPECT_FALSE(here->IsActive());
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(10, 10)));
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("there clicked"));
}

TEST_F(WorkspaceTest, ActivateWorkspaceSwitches) {
    WorkspaceWindow* window = new WorkspaceWindow("watcher", B_ALL_WORKSPACES, &fLog);
    window->Show();
    WaitForIdle();
    activate_workspace(3);
    WaitForIdle();
    EXPECT_EQ(3, current_workspace());
    EXPECT_EQ(1u, fLog.Count("watcher workspace 3 on"));

    // Out of range or already current: nothing happens.
    fLog.Clear();
    activate_workspace(3);
    activate_workspace(40);
    activate_workspace(-1);
    WaitForIdle();
    EXPECT_EQ(3, current_workspace());
    EXPECT_TRUE(fLog.Lines().empty());
}

TEST_F(WorkspaceTest, CountFollowsChangesAndShrinkingLeavesALastWorkspace) {
    EXPECT_EQ(4, count_workspaces());
    ASSERT_EQ(B_OK, HeadlessTestApi::SetWorkspaceCount(9));
    EXPECT_EQ(9, count_workspaces());
    ASSERT_EQ(B_OK, HeadlessTestApi::SetWorkspace(8));
    ASSERT_EQ(B_OK, HeadlessTestApi::SetWorkspaceCount(2));
    EXPECT_EQ(2, count_workspaces());
    EXPECT_EQ(1, current_workspace());
    EXPECT_EQ(B_BAD_VALUE, HeadlessTestApi::SetWorkspaceCount(0));
    EXPECT_EQ(B_BAD_VALUE, HeadlessTestApi::SetWorkspaceCount(33));
    EXPECT_EQ(B_BAD_INDEX, HeadlessTestApi::SetWorkspace(2));
    set_workspace_count(5);
    EXPECT_EQ(5, count_workspaces());
}

TEST_F(WorkspaceTest, CurrentWorkspaceIsTheDefaultOfNewWindows) {
    ASSERT_EQ(B_OK, HeadlessTestApi::SetWorkspace(2));
    BWindow* window = new BWindow(BRect(0, 0, 9, 9), "current", B_TITLED_WINDOW, 0);
    EXPECT_EQ(1u << 2, window->Workspaces());
    WindowListing listing{};
    ASSERT_TRUE(HeadlessTestApi::FindWindow(window, &listing));
    EXPECT_EQ(1u << 2, listing.workspaces);
}

TEST_F(WorkspaceTest, ActivatingAWindowElsewhereTakesTheUserThere) {
    WorkspaceWindow* window = new WorkspaceWindow("away", 1u << 2, &fLog);
    window->Show();
    WaitForIdle();
    window->Activate();
    WaitForIdle();
    EXPECT_EQ(2, current_workspace());
    EXPECT_TRUE(window->IsActive());
}

TEST_F(WorkspaceTest, NoWorkspaceActivationKeepsTheUserWhereTheyAre) {
    BWindow* window =
        new BWindow(BRect(0, 0, 9, 9), "stay", B_TITLED_WINDOW, B_NO_WORKSPACE_ACTIVATION, 1u << 2);
    window->Show();
    WaitForIdle();
    window->Activate();
    WaitForIdle();
    EXPECT_EQ(0, current_workspace());
    EXPECT_FALSE(window->IsActive());
}

TEST_F(WorkspaceTest, BeepIsCounted) {
    EXPECT_EQ(0u, HeadlessTestApi::CountBeeps());
    EXPECT_EQ(B_OK, beep());
    EXPECT_EQ(B_OK, beep());
    EXPECT_EQ(2u, HeadlessTestApi::CountBeeps());
}

TEST_F(WorkspaceTest, GetMouseReportsThePointer) {
    HeadlessTestApi::MoveMouse(BPoint(33, 44));
    BPoint where;
    uint32 buttons = 99;
    ASSERT_EQ(B_OK, get_mouse(&where, &buttons));
    EXPECT_EQ(BPoint(33, 44), where);
    EXPECT_EQ(0u, buttons);
    EXPECT_EQ(B_BAD_VALUE, get_mouse(NULL, NULL));
    bigtime_t speed;
    ASSERT_EQ(B_OK, get_click_speed(&speed));
    EXPECT_GT(speed, 0);
}

TEST_F(WorkspaceTest, ModifierKeysSetModifiers) {
    EXPECT_EQ(B_BAD_VALUE, get_key_info(NULL));
    ASSERT_EQ(B_OK, HeadlessTestApi::PressKey(0x5d));
    EXPECT_EQ((uint32)(B_COMMAND_KEY | B_LEFT_COMMAND_KEY), modifiers());
    ASSERT_EQ(B_OK, HeadlessTestApi::PressKey(0x67));
    EXPECT_EQ((uint32)(B_COMMAND_KEY | B_LEFT_COMMAND_KEY | B_OPTION_KEY | B_RIGHT_OPTION_KEY),
              modifiers());
    key_info info;
    ASSERT_EQ(B_OK, get_key_info(&info));
    EXPECT_EQ(0x04, info.key_states[11]);
    EXPECT_EQ(0x01, info.key_states[12]);
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseKey(0x5d));
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseKey(0x67));
    EXPECT_EQ(0u, modifiers());

    // Caps Lock toggles on each press.
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x3b));
    EXPECT_EQ((uint32)B_CAPS_LOCK, modifiers());
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x3b));
    EXPECT_EQ(0u, modifiers());
}
