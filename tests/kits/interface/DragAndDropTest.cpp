// Dragging a message inside the process: moves carry it, the release drops it
// on the view under the pointer, in the same window or another one.
#include "HeadlessAppTest.h"

#include <Message.h>
#include <View.h>
#include <Window.h>

#include <gtest/gtest.h>

#include <string>

using BPrivate::HeadlessTestApi;
using testing_support::EventLog;
using testing_support::HeadlessAppTest;

namespace {

std::string point_text(BPoint point) {
    return std::to_string((int)point.x) + "," + std::to_string((int)point.y);
}

// Starts a drag of a 'DRAG' message when pressed.
class SourceView : public BView {
public:
    SourceView(BRect frame, EventLog* log) : BView(frame, "source", B_FOLLOW_NONE, 0), fLog(log) {}

    void MouseDown(BPoint where) override {
        BMessage message('DRAG');
        message.AddString("payload", "files");
        DragMessage(&message, BRect(where.x - 2, where.y - 3, where.x + 10, where.y + 10));
        fLog->Add("drag started");
    }
    void MessageReceived(BMessage* message) override {
        if (message->what == 'THNX') {
            fLog->Add("reply " + std::string(message->GetString("from", "")));
            return;
        }
        BView::MessageReceived(message);
    }

private:
    EventLog* fLog;
};

// Logs drags passing over it and what is dropped on it.
class TargetView : public BView {
public:
    TargetView(BRect frame, const char* name, EventLog* log, bool reply = false)
        : BView(frame, name, B_FOLLOW_NONE, 0), fLog(log), fReply(reply) {}

    void MouseMoved(BPoint where, uint32 transit, const BMessage* drag) override {
        static const char* const kTransits[] = {"entered", "inside", "exited", "outside"};
        fLog->Add(std::string("over ") + Name() + " " + kTransits[transit & 3] + " " +
                  (drag != NULL ? drag->GetString("payload", "?") : "nothing"));
    }
    void MessageReceived(BMessage* message) override {
        if (!message->WasDropped()) {
            BView::MessageReceived(message);
            return;
        }
        BPoint offset;
        BPoint point = ConvertFromScreen(message->DropPoint(&offset));
        fLog->Add(std::string("dropped on ") + Name() + " " + point_text(point) + " offset " +
                  point_text(offset) + " " + message->GetString("payload", "?"));
        if (fReply) {
            BMessage thanks('THNX');
            thanks.AddString("from", Name());
            message->SendReply(&thanks);
        }
    }

private:
    EventLog* fLog;
    bool fReply;
};

class DragAndDropTest : public HeadlessAppTest {
protected:
    std::vector<std::string> LinesStartingWith(const std::string& prefix) {
        std::vector<std::string> lines;
        for (const std::string& line : fLog.Lines()) {
            if (line.rfind(prefix, 0) == 0)
                lines.push_back(line);
        }
        return lines;
    }
};

} // namespace

TEST_F(DragAndDropTest, DropReachesTheViewUnderTheReleaseInAnotherWindow) {
    BWindow* sourceWindow = new BWindow(BRect(0, 0, 99, 99), "source", B_TITLED_WINDOW, 0);
    sourceWindow->AddChild(new SourceView(BRect(0, 0, 99, 99), &fLog));
    BWindow* targetWindow = new BWindow(BRect(200, 0, 399, 99), "target", B_TITLED_WINDOW, 0);
    targetWindow->AddChild(new TargetView(BRect(0, 0, 99, 99), "left", &fLog));
    targetWindow->AddChild(new TargetView(BRect(100, 0, 199, 99), "right", &fLog));
    targetWindow->Show();
    sourceWindow->Show();
    WaitForIdle();

    HeadlessTestApi::PressMouse(BPoint(20, 30));
    WaitForIdle();
    ASSERT_EQ(1u, fLog.Count("drag started"));
    HeadlessTestApi::MoveMouse(BPoint(250, 50));
    HeadlessTestApi::MoveMouse(BPoint(260, 50));
    HeadlessTestApi::MoveMouse(BPoint(350, 50));
    HeadlessTestApi::ReleaseMouse(BPoint(355, 60));
    WaitForIdle();

    std::vector<std::string> expected = {"over left entered files", "over left inside files",
                                         "over left exited files", "over right entered files",
                                         "over right inside files"};
    EXPECT_EQ(expected, LinesStartingWith("over"));
    std::vector<std::string> drops = {"dropped on right 55,60 offset 2,3 files"};
    EXPECT_EQ(drops, LinesStartingWith("dropped"));
}

TEST_F(DragAndDropTest, DropInTheSameWindowReachesTheOtherView) {
    BWindow* window = new BWindow(BRect(0, 0, 199, 99), "both", B_TITLED_WINDOW, 0);
    window->AddChild(new SourceView(BRect(0, 0, 99, 99), &fLog));
    window->AddChild(new TargetView(BRect(100, 0, 199, 99), "target", &fLog));
    window->Show();
    WaitForIdle();

    HeadlessTestApi::PressMouse(BPoint(10, 10));
    WaitForIdle();
    HeadlessTestApi::MoveMouse(BPoint(150, 20));
    HeadlessTestApi::ReleaseMouse(BPoint(150, 20));
    WaitForIdle();
    std::vector<std::string> drops = {"dropped on target 50,20 offset 2,3 files"};
    EXPECT_EQ(drops, LinesStartingWith("dropped"));
}

TEST_F(DragAndDropTest, MovesWithoutADragCarryNoMessage) {
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "plain", B_TITLED_WINDOW, 0);
    window->AddChild(new TargetView(BRect(0, 0, 99, 99), "target", &fLog));
    window->Show();
    WaitForIdle();
    HeadlessTestApi::MoveMouse(BPoint(10, 10));
    WaitForIdle();
    std::vector<std::string> expected = {"over target entered nothing"};
    EXPECT_EQ(expected, LinesStartingWith("over"));
}

TEST_F(DragAndDropTest, ReplyToADropReachesTheSource) {
    BWindow* sourceWindow = new BWindow(BRect(0, 0, 99, 99), "source", B_TITLED_WINDOW, 0);
    sourceWindow->AddChild(new SourceView(BRect(0, 0, 99, 99), &fLog));
    BWindow* targetWindow = new BWindow(BRect(200, 0, 299, 99), "target", B_TITLED_WINDOW, 0);
    targetWindow->AddChild(new TargetView(BRect(0, 0, 99, 99), "thankful", &fLog, true));
    targetWindow->Show();
    sourceWindow->Show();
    WaitForIdle();

    HeadlessTestApi::PressMouse(BPoint(20, 30));
    WaitForIdle();
    HeadlessTestApi::MoveMouse(BPoint(250, 50));
    HeadlessTestApi::ReleaseMouse(BPoint(250, 50));
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("reply thankful"));
}

TEST_F(DragAndDropTest, DropOutsideEveryWindowIsLost) {
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "alone", B_TITLED_WINDOW, 0);
    window->AddChild(new SourceView(BRect(0, 0, 99, 99), &fLog));
    window->Show();
    WaitForIdle();
    HeadlessTestApi::PressMouse(BPoint(20, 30));
    WaitForIdle();
    HeadlessTestApi::MoveMouse(BPoint(700, 500));
    HeadlessTestApi::ReleaseMouse(BPoint(700, 500));
    WaitForIdle();
    EXPECT_TRUE(LinesStartingWith("dropped").empty());

    // The next plain press starts afresh, with nothing dragged.
    HeadlessTestApi::PressMouse(BPoint(20, 30));
    HeadlessTestApi::ReleaseMouse(BPoint(20, 30));
    WaitForIdle();
    EXPECT_EQ(2u, fLog.Count("drag started"));
}

TEST_F(DragAndDropTest, DragStartedAfterTheReleaseDropsAtOnce) {
    BWindow* window = new BWindow(BRect(0, 0, 199, 99), "late", B_TITLED_WINDOW, 0);
    window->AddChild(new SourceView(BRect(0, 0, 99, 99), &fLog));
    window->AddChild(new TargetView(BRect(100, 0, 199, 99), "target", &fLog));
    window->Show();
    WaitForIdle();

    // The window handles the press only after the pointer was released over
    // the target: the drop happens there at once.
    window->Lock();
    HeadlessTestApi::PressMouse(BPoint(20, 30));
    HeadlessTestApi::MoveMouse(BPoint(150, 40));
    HeadlessTestApi::ReleaseMouse(BPoint(150, 40));
    window->Unlock();
    WaitForIdle();
    std::vector<std::string> drops = {"dropped on target 50,40 offset 2,3 files"};
    EXPECT_EQ(drops, LinesStartingWith("dropped"));
}
