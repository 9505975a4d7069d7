#include "BarWindow.h"

#include "BarWindowTestSupport.h"

#include <MessageFilter.h>
#include <Node.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <mutex>
#include <string>
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

// Notes every chores message that the bar dispatches, and its activations
// (index 1) and deactivations (index 0).
class ChoresRecorder : public BMessageFilter {
public:
    ChoresRecorder() : BMessageFilter(B_ANY_DELIVERY, B_ANY_SOURCE) {}

    filter_result Filter(BMessage* message, BHandler** target) override {
        if (message->what == kLayerCheckItem || message->what == kWorkspaceCountChanged) {
            std::lock_guard<std::mutex> lock(fLock);
            fSeen.push_back(
                {message->what, *target, message->GetInt32("index", -1), system_time()});
        } else if (message->what == B_WINDOW_ACTIVATED) {
            std::lock_guard<std::mutex> lock(fLock);
            fSeen.push_back(
                {message->what, *target, message->GetBool("active", false) ? 1 : 0, system_time()});
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

// How many times the kernel has let the thread run so far: the third field of
// its schedstat, -1 when it cannot be read.
int64 times_scheduled(thread_id thread) {
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/schedstat");
    long long runTime = 0;
    long long waitTime = 0;
    long long slices = -1;
    if (!(file >> runTime >> waitTime >> slices))
        return -1;
    return slices;
}

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

    // Shows a bar with the hot key stored and a recorder in place, and waits
    // for the first item check.
    ChoresRecorder* StartRecordingWithHotKey() {
        MakeLayer("empty", {});
        WriteSettings([](settings& record) { SetName(record, 0, "empty"); });
        StoreHotKey();
        StartBar(false);
        ChoresRecorder* recorder = Record();
        fBar->Show();
        EXPECT_TRUE(wait_until([&] { return !recorder->All(kLayerCheckItem).empty(); }));
        return recorder;
    }

    // Waits for an item check after those seen so far: the chores thread has
    // just done its round and has nothing to do before the next one, 2.5 s on.
    void WaitForNextItemCheck(ChoresRecorder* recorder) {
        size_t seen = recorder->All(kLayerCheckItem).size();
        ASSERT_TRUE(wait_until([&] { return recorder->All(kLayerCheckItem).size() > seen; }));
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
    // The extra key first: pressed last, it would leave exactly the hot key
    // held for a moment, and each key change wakes the chores thread at once.
    ASSERT_EQ(HeadlessTestApi::PressKey(kExtraKey), B_OK);
    ASSERT_EQ(HeadlessTestApi::PressKey(kFirstKey), B_OK);
    ASSERT_EQ(HeadlessTestApi::PressKey(kSecondKey), B_OK);
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

TEST_F(BarWindowChoresTest, IdleChoresThreadSleepsBetweenItemChecks) {
    ChoresRecorder* recorder = StartRecording();
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    thread_id chores = fBar->ChoresThread();
    ASSERT_GE(chores, 0);
    int64 before = times_scheduled(chores);
    ASSERT_GE(before, 0);
    // The span measured, not a wait for something: rounds every 30 ms would
    // run the thread some 33 times in it.
    std::this_thread::sleep_for(std::chrono::seconds(1));
    int64 after = times_scheduled(chores);
    RecordProperty("times_scheduled", std::to_string(after - before));
    EXPECT_LT(after - before, 10);
    EXPECT_FALSE(recorder->All(kLayerCheckItem).empty());
}

TEST_F(BarWindowChoresTest, HotKeyStillHeldActivatesTheBarAgain) {
    ChoresRecorder* recorder = StartRecordingWithHotKey();
    ActivateBar(false);
    ASSERT_EQ(HeadlessTestApi::PressKey(kFirstKey), B_OK);
    ASSERT_EQ(HeadlessTestApi::PressKey(kSecondKey), B_OK);
    ASSERT_TRUE(wait_until([&] { return IsActive(); }));

    // Right after an item check the next is 2.5 s away: only the rounds of a
    // held hot key can activate the bar again before it.
    WaitForNextItemCheck(recorder);
    size_t activations = recorder->All(B_WINDOW_ACTIVATED).size();
    ASSERT_TRUE(fBar->Lock());
    fBar->Activate(false);
    fBar->Unlock();
    auto reactivation = [&](Seen* seen) {
        std::vector<Seen> all = recorder->All(B_WINDOW_ACTIVATED);
        bool deactivated = false;
        for (size_t position = activations; position < all.size(); position++) {
            if (all[position].index == 0)
                deactivated = true;
            else if (deactivated) {
                *seen = all[position];
                return true;
            }
        }
        return false;
    };
    Seen again = {};
    ASSERT_TRUE(wait_until([&] { return reactivation(&again); }));
    Seen deactivation = {};
    for (const Seen& seen : recorder->All(B_WINDOW_ACTIVATED)) {
        if (seen.index == 0 && seen.when <= again.when)
            deactivation = seen;
    }
    // One round is 30 ms; a loaded machine is given some slack.
    EXPECT_LT(again.when - deactivation.when, 1000000);
    EXPECT_TRUE(wait_until([&] { return IsActive(); }));
}

TEST_F(BarWindowChoresTest, ChoresThreadSleepingUntilTheNextItemCheckEndsAsTheWindowQuits) {
    ChoresRecorder* recorder = StartRecording();
    WaitForNextItemCheck(recorder);
    ASSERT_TRUE(fBar->Lock());
    thread_id chores = fBar->ChoresThread();
    ASSERT_GE(chores, 0);
    bigtime_t quit = system_time();
    fBar->Quit();
    fBar = NULL;

    std::atomic<bigtime_t> ended(0);
    std::thread waiter([&] {
        status_t result;
        wait_for_thread(chores, &result);
        ended = system_time();
    });
    bool endedInTime = wait_until([&] { return ended.load() != 0; });
    if (!endedInTime)
        kill_thread(chores);
    waiter.join();
    ASSERT_TRUE(endedInTime);
    // The next item check is 2.5 s away; a loaded machine is given some slack.
    EXPECT_LT(ended.load() - quit, 1000000);
}
