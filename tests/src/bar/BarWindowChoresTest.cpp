#include "BarWindow.h"

#include "BarWindowTestSupport.h"

#include <MessageFilter.h>
#include <Node.h>

#include <atomic>
#include <mutex>
#include <thread>

using namespace bar_window_testing;
using testing_support::wait_until;

namespace {

// Keys of the hot key in the tests, and one more (Be key codes of a, s, d).
const int32 kFirstKey = 0x3c;
const int32 kSecondKey = 0x3d;
const int32 kExtraKey = 0x3e;

struct Seen {
    uint32 what;
    BHandler* target;
    int32 index;
    bigtime_t when;
};

// Notes every chores message that the bar dispatches.
class ChoresRecorder : public BMessageFilter {
public:
    ChoresRecorder() : BMessageFilter(B_ANY_DELIVERY, B_ANY_SOURCE) {}

    filter_result Filter(BMessage* message, BHandler** target) override {
        if (message->what == kLayerCheckItem || message->what == kWorkspaceCountChanged) {
            std::lock_guard<std::mutex> lock(fLock);
            fSeen.push_back(
                {message->what, *target, message->GetInt32("index", -1), system_time()});
        }
        return B_DISPATCH_MESSAGE;
    }

    std::vector<Seen> All(uint32 what) {
        std::lock_guard<std::mutex> lock(fLock);
        std::vector<Seen> seen;
        for (const Seen& one : fSeen) {
            if (one.what == what)
                seen.push_back(one);
        }
        return seen;
    }

private:
    std::mutex fLock;
    std::vector<Seen> fSeen;
};

class BarWindowChoresTest : public BarWindowTest {
protected:
    ChoresRecorder* Record() {
        ChoresRecorder* recorder = new ChoresRecorder;
        Locked<bool>([&] {
            fBar->AddCommonFilter(recorder);
            return true;
        });
        return recorder;
    }

    // Shows the bar with a recorder in place and waits for the chores thread's
    // first round, seen by its first item check of the (empty) layer shown:
    // from then on the thread knows the workspace count it compares with.
    ChoresRecorder* StartRecording(const std::function<void(settings&)>& change = nullptr) {
        MakeLayer("empty", {});
        WriteSettings([&](settings& record) {
            SetName(record, 0, "empty");
            if (change)
                change(record);
        });
        StartBar(false);
        ChoresRecorder* recorder = Record();
        fBar->Show();
        EXPECT_TRUE(wait_until([&] { return !recorder->All(kLayerCheckItem).empty(); }));
        return recorder;
    }

    static void SetKeyBit(uint8* states, int32 key) { states[key / 8] |= 0x80 >> (key % 8); }

    // A hot key of the two keys, stored as the settings file's attribute.
    void StoreHotKey() {
        uint8 states[kHotKeyLength] = {};
        SetKeyBit(states, kFirstKey);
        SetKeyBit(states, kSecondKey);
        BNode node;
        ASSERT_EQ(get_settings_node(&node), B_OK);
        ASSERT_EQ(node.WriteAttr("hotKey", B_UINT8_TYPE, 0, states, sizeof(states)),
                  (ssize_t)sizeof(states));
    }

    bool IsActive() {
        return Locked<bool>([&] { return fBar->IsActive(); });
    }

    // Lets the chores thread finish two whole rounds: each workspace count
    // change is noticed at the start of a round.
    void WaitTwoRounds(ChoresRecorder* recorder) {
        size_t seen = recorder->All(kWorkspaceCountChanged).size();
        for (int32 round = 1; round <= 2; round++) {
            int32 count = count_workspaces() == 4 ? 5 : 4;
            ASSERT_EQ(HeadlessTestApi::SetWorkspaceCount(count), B_OK);
            ASSERT_TRUE(wait_until(
                [&] { return recorder->All(kWorkspaceCountChanged).size() == seen + round; }));
        }
    }

    void TearDown() override {
        HeadlessTestApi::ReleaseKey(kFirstKey);
        HeadlessTestApi::ReleaseKey(kSecondKey);
        HeadlessTestApi::ReleaseKey(kExtraKey);
        BarWindowTest::TearDown();
    }
};

} // namespace

TEST_F(BarWindowChoresTest, ShowStartsTheChoresThread) {
    WriteSettings();
    StartBar(false);
    EXPECT_EQ(fBar->ChoresThread(), -1);
    fBar->Show();
    thread_id chores = fBar->ChoresThread();
    ASSERT_GE(chores, 0);
    EXPECT_EQ(find_thread("chores_slave"), chores);
}

TEST_F(BarWindowChoresTest, ChoresThreadEndsWhenTheWindowIsGone) {
    WriteSettings();
    StartBar();
    thread_id chores = fBar->ChoresThread();
    ASSERT_GE(chores, 0);
    ASSERT_TRUE(fBar->Lock());
    fBar->Quit();
    fBar = NULL;

    std::atomic<bool> ended(false);
    std::thread waiter([&] {
        status_t result;
        wait_for_thread(chores, &result);
        ended = true;
    });
    bool endedInTime = wait_until([&] { return ended.load(); });
    if (!endedInTime)
        kill_thread(chores);
    waiter.join();
    EXPECT_TRUE(endedInTime);
}

TEST_F(BarWindowChoresTest, HotKeyHeldActivatesTheBar) {
    WriteSettings();
    StoreHotKey();
    StartBar();
    ActivateBar(false);
    ASSERT_EQ(HeadlessTestApi::PressKey(kFirstKey), B_OK);
    ASSERT_EQ(HeadlessTestApi::PressKey(kSecondKey), B_OK);
    EXPECT_TRUE(wait_until([&] { return IsActive(); }));
}

TEST_F(BarWindowChoresTest, HotKeyWithOneMoreKeyHeldDoesNotActivateTheBar) {
    WriteSettings();
    StoreHotKey();
    ChoresRecorder* recorder = StartRecording();
    ActivateBar(false);
    ASSERT_EQ(HeadlessTestApi::PressKey(kFirstKey), B_OK);
    ASSERT_EQ(HeadlessTestApi::PressKey(kSecondKey), B_OK);
    ASSERT_EQ(HeadlessTestApi::PressKey(kExtraKey), B_OK);
    WaitTwoRounds(recorder);
    EXPECT_FALSE(IsActive());
}

TEST_F(BarWindowChoresTest, HalfTheHotKeyDoesNotActivateTheBar) {
    WriteSettings();
    StoreHotKey();
    ChoresRecorder* recorder = StartRecording();
    ActivateBar(false);
    ASSERT_EQ(HeadlessTestApi::PressKey(kFirstKey), B_OK);
    WaitTwoRounds(recorder);
    EXPECT_FALSE(IsActive());
}

TEST_F(BarWindowChoresTest, HotKeyLeavesAHiddenBarAlone) {
    WriteSettings();
    StoreHotKey();
    ChoresRecorder* recorder = StartRecording();
    ActivateBar(false);
    fBar->Hide();
    ASSERT_EQ(HeadlessTestApi::PressKey(kFirstKey), B_OK);
    ASSERT_EQ(HeadlessTestApi::PressKey(kSecondKey), B_OK);
    WaitTwoRounds(recorder);
    EXPECT_FALSE(IsActive());
}

TEST_F(BarWindowChoresTest, WorkspaceCountChangeReachesTheAppMenu) {
    ChoresRecorder* recorder =
        StartRecording([](settings& record) { record.flags = kWorkspaceCommandFlag; });
    ASSERT_EQ(HeadlessTestApi::SetWorkspaceCount(7), B_OK);
    bigtime_t changed = system_time();
    ASSERT_TRUE(wait_until([&] { return !recorder->All(kWorkspaceCountChanged).empty(); }));
    Seen seen = recorder->All(kWorkspaceCountChanged).front();
    // One round is 30 ms; a loaded machine is given some slack.
    EXPECT_LT(seen.when - changed, 1000000);
    // The bar hands it to the application menu, which rebuilt its list.
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_EQ(
        Locked<int32>([&] { return fBar->AppMenuView()->SwitchWorkspaceMenu()->CountItems(); }), 7);
}

TEST_F(BarWindowChoresTest, EmptyLayerStillGetsIndexZeroEveryTwoAndAHalfSeconds) {
    ChoresRecorder* recorder = StartRecording();
    ASSERT_EQ(ShownLayer(), "empty");
    ASSERT_TRUE(wait_until([&] { return recorder->All(kLayerCheckItem).size() >= 2; },
                           std::chrono::seconds(10)));
    std::vector<Seen> checks = recorder->All(kLayerCheckItem);
    LayerInfo* layer = Locked<LayerInfo*>([&] { return fBar->FindLayer("empty"); });
    for (const Seen& check : checks) {
        EXPECT_EQ(check.index, 0);
        EXPECT_EQ(check.target, layer);
    }
    bigtime_t interval = checks[1].when - checks[0].when;
    EXPECT_GE(interval, 2500000 - 30000);
    EXPECT_LT(interval, 2500000 + 1000000);
}

TEST_F(BarWindowChoresTest, ItemsAreRecheckedOneAtATimeInTurn) {
    MakeLayerOf("pair", 2);
    WriteSettings([](settings& record) { SetName(record, 0, "pair"); });
    StartBar();
    ASSERT_TRUE(WaitForBarItems(2));
    ChoresRecorder* recorder = Record();
    ASSERT_TRUE(wait_until([&] { return recorder->All(kLayerCheckItem).size() >= 3; },
                           std::chrono::seconds(12)));
    std::vector<Seen> checks = recorder->All(kLayerCheckItem);
    // Whichever index the recording began with, the turn goes on from it.
    int32 first = checks[0].index;
    EXPECT_EQ(checks[1].index, (first + 1) % 2);
    EXPECT_EQ(checks[2].index, first);
}

TEST_F(BarWindowChoresTest, NoLayerMeansNoRecheck) {
    ChoresRecorder* recorder = StartRecording();
    // Workspace 2 has no layer.
    ASSERT_EQ(HeadlessTestApi::SetWorkspace(2), B_OK);
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    ASSERT_EQ(ShownLayer(), "<none>");
    bigtime_t switched = system_time();
    // Two item-check periods pass, seen through the workspace count rounds.
    while (system_time() - switched < 5500000)
        WaitTwoRounds(recorder);
    for (const Seen& check : recorder->All(kLayerCheckItem))
        EXPECT_LT(check.when, switched);
}
