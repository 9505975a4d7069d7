// Thread names, look-up by name, priorities and thread information.
#include <OS.h>

#include <Watchdog.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <condition_variable>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <string.h>
#include <unistd.h>

namespace {

std::string linux_name(thread_id thread) {
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/comm");
    std::string name;
    std::getline(file, name);
    return name;
}

status_t do_nothing(void*) {
    return B_OK;
}

// A std::thread that parks until the test lets it go, reporting its thread id.
class ParkedThread {
public:
    ParkedThread()
        : fThread([this] {
              std::unique_lock<std::mutex> locker(fLock);
              fId = find_thread(NULL);
              fChanged.notify_all();
              fChanged.wait(locker, [this] { return fReleased; });
          }) {}

    ~ParkedThread() {
        {
            std::lock_guard<std::mutex> locker(fLock);
            fReleased = true;
            fChanged.notify_all();
        }
        fThread.join();
    }

    thread_id Id() {
        std::unique_lock<std::mutex> locker(fLock);
        fChanged.wait_for(locker, std::chrono::seconds(10), [this] { return fId > 0; });
        return fId;
    }

private:
    std::mutex fLock;
    std::condition_variable fChanged;
    thread_id fId = -1;
    bool fReleased = false;
    std::thread fThread;
};

} // namespace

// #pragma mark - Names

TEST(ThreadInfo, SpawnedThreadNameIsVisibleToLinuxTools) {
    thread_id thread = spawn_thread(do_nothing, "io_slave", B_NORMAL_PRIORITY, NULL);
    ASSERT_GT(thread, 0);
    EXPECT_EQ(linux_name(thread), "io_slave");
    EXPECT_EQ(wait_for_thread(thread, NULL), B_OK);
}

TEST(ThreadInfo, LongNamesAreCutForLinuxButKeptForTheBeName) {
    const char* name = "a rather long thread name of 40 bytes ok";
    thread_id thread = spawn_thread(do_nothing, name, B_NORMAL_PRIORITY, NULL);
    ASSERT_GT(thread, 0);

    EXPECT_EQ(linux_name(thread), "a rather long t");
    thread_info info;
    ASSERT_EQ(get_thread_info(thread, &info), B_OK);
    EXPECT_EQ(std::string(info.name), std::string(name, B_OS_NAME_LENGTH - 1));
    EXPECT_EQ(wait_for_thread(thread, NULL), B_OK);
}

TEST(ThreadInfo, LinuxNamesAreCutBetweenCharacters) {
    // 14 ASCII bytes, then a two-byte character that would straddle the 15-byte limit.
    thread_id thread =
        spawn_thread(do_nothing, "abcdefghijklmn\xc3\xa9xyz", B_NORMAL_PRIORITY, NULL);
    ASSERT_GT(thread, 0);
    EXPECT_EQ(linux_name(thread), "abcdefghijklmn");
    EXPECT_EQ(wait_for_thread(thread, NULL), B_OK);
}

TEST(ThreadInfo, NullNameGivesADefaultName) {
    thread_id thread = spawn_thread(do_nothing, NULL, B_NORMAL_PRIORITY, NULL);
    ASSERT_GT(thread, 0);
    thread_info info;
    ASSERT_EQ(get_thread_info(thread, &info), B_OK);
    EXPECT_GT(strlen(info.name), 0u);
    EXPECT_EQ(wait_for_thread(thread, NULL), B_OK);
}

TEST(ThreadInfo, RenameThreadChangesBothNames) {
    thread_id thread = spawn_thread(do_nothing, "before", B_NORMAL_PRIORITY, NULL);
    ASSERT_GT(thread, 0);

    EXPECT_EQ(rename_thread(thread, "after the renaming"), B_OK);
    EXPECT_EQ(linux_name(thread), "after the renam");
    thread_info info;
    ASSERT_EQ(get_thread_info(thread, &info), B_OK);
    EXPECT_STREQ(info.name, "after the renaming");
    EXPECT_EQ(wait_for_thread(thread, NULL), B_OK);
}

TEST(ThreadInfo, RenameThreadWorksOnThreadsMadeElsewhere) {
    ParkedThread parked;
    thread_id thread = parked.Id();
    ASSERT_GT(thread, 0);

    EXPECT_EQ(rename_thread(thread, "renamed std::thread"), B_OK);
    EXPECT_EQ(linux_name(thread), "renamed std::th");
    EXPECT_EQ(find_thread("renamed std::thread"), thread);
}

TEST(ThreadInfo, RenameThreadWorksOnTheCallingThread) {
    EXPECT_EQ(rename_thread(find_thread(NULL), "main thread"), B_OK);
    EXPECT_EQ(linux_name(find_thread(NULL)), "main thread");
}

TEST(ThreadInfo, RenameThreadRejectsANullName) {
    EXPECT_EQ(rename_thread(find_thread(NULL), NULL), B_BAD_VALUE);
}

// #pragma mark - Finding threads

TEST(ThreadInfo, FindThreadWithoutNameGivesTheCallingThread) {
    EXPECT_EQ(find_thread(NULL), (thread_id)gettid());
    // The tests run in the process's main thread, whose id is the process id.
    EXPECT_EQ(find_thread(NULL), (thread_id)getpid());
}

TEST(ThreadInfo, FindThreadWithoutNameWorksInThreadsMadeElsewhere) {
    thread_id seen = -1;
    thread_id actual = -2;
    std::thread thread([&] {
        seen = find_thread(NULL);
        actual = (thread_id)gettid();
    });
    thread.join();
    EXPECT_EQ(seen, actual);
    EXPECT_NE(seen, find_thread(NULL));
}

TEST(ThreadInfo, FindThreadFindsASpawnedThreadByItsFullName) {
    const char* name = "a name longer than Linux keeps";
    thread_id thread = spawn_thread(do_nothing, name, B_NORMAL_PRIORITY, NULL);
    ASSERT_GT(thread, 0);
    EXPECT_EQ(find_thread(name), thread);
    EXPECT_EQ(wait_for_thread(thread, NULL), B_OK);
}

TEST(ThreadInfo, FindThreadFindsOtherThreadsByTheirLinuxName) {
    std::string name = linux_name(getpid());
    ASSERT_FALSE(name.empty());
    EXPECT_EQ(find_thread(name.c_str()), (thread_id)getpid());
}

TEST(ThreadInfo, FindThreadDoesNotFindAnUnknownName) {
    EXPECT_EQ(find_thread("no thread has this name"), B_NAME_NOT_FOUND);
}

TEST(ThreadInfo, FindThreadDoesNotFindACollectedThread) {
    thread_id thread = spawn_thread(do_nothing, "gone soon", B_NORMAL_PRIORITY, NULL);
    ASSERT_GT(thread, 0);
    ASSERT_EQ(wait_for_thread(thread, NULL), B_OK);
    EXPECT_EQ(find_thread("gone soon"), B_NAME_NOT_FOUND);
}

// #pragma mark - Priorities

TEST(ThreadInfo, PriorityIsRecordedAndReported) {
    thread_id thread = spawn_thread(do_nothing, "display", B_DISPLAY_PRIORITY, NULL);
    ASSERT_GT(thread, 0);
    thread_info info;
    ASSERT_EQ(get_thread_info(thread, &info), B_OK);
    EXPECT_EQ(info.priority, B_DISPLAY_PRIORITY);

    EXPECT_EQ(set_thread_priority(thread, B_URGENT_DISPLAY_PRIORITY), B_DISPLAY_PRIORITY);
    ASSERT_EQ(get_thread_info(thread, &info), B_OK);
    EXPECT_EQ(info.priority, B_URGENT_DISPLAY_PRIORITY);
    EXPECT_EQ(wait_for_thread(thread, NULL), B_OK);
}

TEST(ThreadInfo, PriorityIsClampedToTheBeRange) {
    thread_id thread = spawn_thread(do_nothing, "eager", 500, NULL);
    ASSERT_GT(thread, 0);
    thread_info info;
    ASSERT_EQ(get_thread_info(thread, &info), B_OK);
    EXPECT_EQ(info.priority, B_REAL_TIME_PRIORITY);

    set_thread_priority(thread, -3);
    ASSERT_EQ(get_thread_info(thread, &info), B_OK);
    EXPECT_EQ(info.priority, B_LOWEST_ACTIVE_PRIORITY);
    EXPECT_EQ(wait_for_thread(thread, NULL), B_OK);
}

TEST(ThreadInfo, PriorityDoesNotChangeTheLinuxNiceValue) {
    int niceBefore = nice(0);
    thread_id thread =
        spawn_thread([](void*) -> status_t { return nice(0); }, "urgent", B_URGENT_PRIORITY, NULL);
    ASSERT_GT(thread, 0);
    status_t result = -100;
    ASSERT_EQ(wait_for_thread(thread, &result), B_OK);
    EXPECT_EQ(result, niceBefore);
}

// #pragma mark - Information

TEST(ThreadInfo, GetThreadInfoDescribesTheCallingThread) {
    thread_info info;
    ASSERT_EQ(get_thread_info(find_thread(NULL), &info), B_OK);
    EXPECT_EQ(info.thread, find_thread(NULL));
    EXPECT_EQ(info.team, (team_id)getpid());
    EXPECT_EQ(info.priority, B_NORMAL_PRIORITY);
    EXPECT_EQ(info.state, B_THREAD_RUNNING);
    EXPECT_GE(info.user_time, 0);
    EXPECT_GE(info.kernel_time, 0);

    int local = 0;
    EXPECT_LT((char*)info.stack_base, (char*)&local);
    EXPECT_GT((char*)info.stack_end, (char*)&local);
}

TEST(ThreadInfo, GetThreadInfoRejectsANullOrWrongSizedBuffer) {
    thread_info info;
    EXPECT_EQ(_get_thread_info(find_thread(NULL), NULL, sizeof(info)), B_BAD_VALUE);
    EXPECT_EQ(_get_thread_info(find_thread(NULL), &info, sizeof(info) - 1), B_BAD_VALUE);
}

TEST(ThreadInfo, GetNextThreadInfoListsEveryThreadOfTheTeam) {
    thread_id first = spawn_thread(do_nothing, "listed one", B_NORMAL_PRIORITY, NULL);
    thread_id second = spawn_thread(do_nothing, "listed two", B_NORMAL_PRIORITY, NULL);
    ASSERT_GT(first, 0);
    ASSERT_GT(second, 0);

    std::vector<thread_id> seen;
    int32 cookie = 0;
    thread_info info;
    while (get_next_thread_info(0, &cookie, &info) == B_OK) {
        EXPECT_EQ(info.team, (team_id)getpid());
        seen.push_back(info.thread);
    }
    EXPECT_NE(std::find(seen.begin(), seen.end(), (thread_id)getpid()), seen.end());
    EXPECT_NE(std::find(seen.begin(), seen.end(), first), seen.end());
    EXPECT_NE(std::find(seen.begin(), seen.end(), second), seen.end());
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));

    EXPECT_EQ(wait_for_thread(first, NULL), B_OK);
    EXPECT_EQ(wait_for_thread(second, NULL), B_OK);
}

TEST(ThreadInfo, GetNextThreadInfoRejectsOtherTeams) {
    int32 cookie = 0;
    thread_info info;
    EXPECT_EQ(get_next_thread_info(1, &cookie, &info), B_BAD_TEAM_ID);
    EXPECT_EQ(get_next_thread_info(getpid(), &cookie, &info), B_OK);
    EXPECT_EQ(_get_next_thread_info(0, NULL, &info, sizeof(info)), B_BAD_VALUE);
}
