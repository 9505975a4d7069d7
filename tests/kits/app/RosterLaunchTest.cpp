// BRoster::Launch, proven by the processes it starts: every test application is a
// desktop entry whose Exec records its arguments into a file named after its pid.
#include <AppDefs.h>
#include <AppFileInfo.h>
#include <Entry.h>
#include <File.h>
#include <List.h>
#include <Message.h>
#include <Node.h>
#include <NodeInfo.h>
#include <Roster.h>

#include "RecordingApps.h"
#include "TestHome.h"
#include "Watchdog.h"

#include <gtest/gtest.h>

#include <dirent.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <functional>

using testing_support::RecordingApps;
using testing_support::TestHome;
using testing_support::wait_until;

namespace {

typedef std::vector<std::vector<std::string>> Runs;

entry_ref ref_for(const std::string& path) {
    entry_ref ref;
    EXPECT_EQ(B_OK, get_ref_for_path(path.c_str(), &ref));
    return ref;
}

bool process_exists(pid_t pid) {
    struct stat info;
    return stat(("/proc/" + std::to_string(pid)).c_str(), &info) == 0;
}

class RosterLaunchTest : public testing::Test {
protected:
    RosterLaunchTest() : fApps(fHome) {}

    // The pids of the application's recorded runs (the records are "<id>.<pid>.run").
    std::vector<pid_t> RunPids(const std::string& id) const {
        std::vector<pid_t> pids;
        DIR* directory = opendir((fHome.Path() + "/records").c_str());
        if (directory == nullptr)
            return pids;
        while (dirent* item = readdir(directory)) {
            std::string name = item->d_name;
            if (name.rfind(id + ".", 0) == 0 && name.size() > 4 &&
                name.compare(name.size() - 4, 4, ".run") == 0)
                pids.push_back(atoi(name.c_str() + id.size() + 1));
        }
        closedir(directory);
        return pids;
    }

    // A desktop entry whose program blocks until ReleaseUntil() lets it end (or,
    // should the test fail first, for a minute at most).
    std::string AddWaitingApp(const std::string& id) {
        fFifo = fHome.Path() + "/release";
        mkfifo(fFifo.c_str(), 0600);
        std::string script = fHome.WriteFile(
            "bin/" + id, "#!/bin/sh\ntimeout 60 sh -c \"read line < '" + fFifo + "'\"\nexit 0\n",
            true);
        return fHome.WriteFile(".local/share/applications/" + id + ".desktop",
                               "[Desktop Entry]\nType=Application\nName=" + id +
                                   "\nExec=" + script + "\n");
    }

    // Lets the waiting processes end: each newline releases one reader, and the
    // writer never blocks (no reader yet is simply another round).
    bool ReleaseUntil(const std::function<bool()>& ended) {
        return wait_until([&] {
            int descriptor = open(fFifo.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
            if (descriptor >= 0) {
                ssize_t ignored = write(descriptor, "\n", 1);
                (void)ignored;
                close(descriptor);
            }
            return ended();
        });
    }

    TestHome fHome;
    RecordingApps fApps;
    std::string fFifo;
};

} // namespace

TEST_F(RosterLaunchTest, LaunchBySignatureHandsTheRefsToTheApplication) {
    fApps.Add("viewer", "image/png;", "%F");
    std::string first = fHome.WriteFile("a picture.png", "x");
    std::string second = fHome.WriteFile("b.png", "x");
    BMessage refs(B_REFS_RECEIVED);
    entry_ref firstRef = ref_for(first);
    entry_ref secondRef = ref_for(second);
    refs.AddRef("refs", &firstRef);
    refs.AddRef("refs", &secondRef);

    team_id team = -1;
    ASSERT_EQ(B_OK, be_roster->Launch("application/x-vnd.desktop-viewer", &refs, &team));
    ASSERT_TRUE(fApps.WaitForRuns("viewer", 1));
    Runs expected = {{first, second}};
    EXPECT_EQ(expected, fApps.Runs("viewer"));
    std::vector<pid_t> pids = RunPids("viewer");
    ASSERT_EQ(1u, pids.size());
    EXPECT_EQ(pids[0], team);
}

TEST_F(RosterLaunchTest, LaunchWithoutMessageStartsTheApplicationPlainly) {
    fApps.Add("viewer", "image/png;", "%F");
    team_id team = -1;
    ASSERT_EQ(B_OK,
              be_roster->Launch("application/x-vnd.desktop-viewer", (BMessage*)nullptr, &team));
    ASSERT_TRUE(fApps.WaitForRuns("viewer", 1));
    Runs expected = {{}};
    EXPECT_EQ(expected, fApps.Runs("viewer"));
    EXPECT_GT(team, 0);
}

TEST_F(RosterLaunchTest, LaunchWithArgumentsPassesTheStrings) {
    fApps.Add("viewer", "image/png;", "%U");
    const char* arguments[] = {"first text", "--second"};
    team_id team = -1;
    ASSERT_EQ(B_OK, be_roster->Launch("application/x-vnd.desktop-viewer", 2, arguments, &team));
    ASSERT_TRUE(fApps.WaitForRuns("viewer", 1));
    Runs expected = {{"first text", "--second"}};
    EXPECT_EQ(expected, fApps.Runs("viewer"));
}

TEST_F(RosterLaunchTest, LaunchWithSingleFileCodeStartsOneProcessPerFile) {
    fApps.Add("viewer", "image/png;", "%f");
    std::string first = fHome.WriteFile("a.png", "x");
    std::string second = fHome.WriteFile("b.png", "x");
    BMessage refs(B_REFS_RECEIVED);
    entry_ref firstRef = ref_for(first);
    entry_ref secondRef = ref_for(second);
    refs.AddRef("refs", &firstRef);
    refs.AddRef("refs", &secondRef);
    team_id team = -1;
    ASSERT_EQ(B_OK, be_roster->Launch("application/x-vnd.desktop-viewer", &refs, &team));
    ASSERT_TRUE(fApps.WaitForRuns("viewer", 2));
    Runs runs = fApps.Runs("viewer");
    std::sort(runs.begin(), runs.end());
    Runs expected = {{first}, {second}};
    EXPECT_EQ(expected, runs);
    std::vector<pid_t> pids = RunPids("viewer");
    EXPECT_NE(pids.end(), std::find(pids.begin(), pids.end(), team));
}

TEST_F(RosterLaunchTest, LaunchOfDocumentOpensItWithItsApplication) {
    fApps.Add("text-editor", "text/plain;", "%F");
    std::string document = fHome.WriteFile("notes.txt", "hello\n");
    entry_ref ref = ref_for(document);
    team_id team = -1;
    ASSERT_EQ(B_OK, be_roster->Launch(&ref, (BMessage*)nullptr, &team));
    ASSERT_TRUE(fApps.WaitForRuns("text-editor", 1));
    Runs expected = {{document}};
    EXPECT_EQ(expected, fApps.Runs("text-editor"));
}

TEST_F(RosterLaunchTest, LaunchOfDocumentWithArgumentsAppendsItsPath) {
    fApps.Add("text-editor", "text/plain;", "%F");
    std::string document = fHome.WriteFile("notes.txt", "hello\n");
    entry_ref ref = ref_for(document);
    const char* arguments[] = {"--line=3"};
    ASSERT_EQ(B_OK, be_roster->Launch(&ref, 1, arguments, nullptr));
    ASSERT_TRUE(fApps.WaitForRuns("text-editor", 1));
    Runs expected = {{"--line=3", document}};
    EXPECT_EQ(expected, fApps.Runs("text-editor"));
}

TEST_F(RosterLaunchTest, LaunchOfExecutableGivesItThePathsAsArguments) {
    std::string output = fHome.Path() + "/tool-output";
    std::string tool = fHome.WriteFile("bin/tool",
                                       "#!/bin/sh\nprintf '%s\\n' \"$$\" \"$@\" > '" + output +
                                           ".part'\nmv '" + output + ".part' '" + output + "'\n",
                                       true);
    std::string document = fHome.WriteFile("data file", "x");
    BMessage refs(B_REFS_RECEIVED);
    entry_ref documentRef = ref_for(document);
    refs.AddRef("refs", &documentRef);
    entry_ref toolRef = ref_for(tool);
    team_id team = -1;
    ASSERT_EQ(B_OK, be_roster->Launch(&toolRef, &refs, &team));
    ASSERT_TRUE(wait_until([&] { return access(output.c_str(), F_OK) == 0; }));
    std::ifstream stream(output);
    std::string pid, argument;
    std::getline(stream, pid);
    std::getline(stream, argument);
    EXPECT_EQ(std::to_string(team), pid);
    EXPECT_EQ(document, argument);
}

TEST_F(RosterLaunchTest, LaunchWithListOfMessagesPassesAllTheirRefs) {
    fApps.Add("viewer", "image/png;", "%F");
    std::string first = fHome.WriteFile("a.png", "x");
    std::string second = fHome.WriteFile("b.png", "x");
    BMessage one(B_REFS_RECEIVED);
    BMessage two(B_REFS_RECEIVED);
    BMessage other('othr');
    entry_ref firstRef = ref_for(first);
    entry_ref secondRef = ref_for(second);
    one.AddRef("refs", &firstRef);
    two.AddRef("refs", &secondRef);
    other.AddRef("refs", &firstRef);
    BList messages;
    messages.AddItem(&one);
    messages.AddItem(&other);
    messages.AddItem(&two);
    ASSERT_EQ(B_OK, be_roster->Launch("application/x-vnd.desktop-viewer", &messages, nullptr));
    ASSERT_TRUE(fApps.WaitForRuns("viewer", 1));
    Runs expected = {{first, second}};
    EXPECT_EQ(expected, fApps.Runs("viewer"));
}

TEST_F(RosterLaunchTest, LaunchOfMissingApplicationFailsWithoutTeam) {
    team_id team = 99;
    EXPECT_EQ(B_LAUNCH_FAILED_APP_NOT_FOUND,
              be_roster->Launch("application/x-vnd.nobody-has-this", (BMessage*)nullptr, &team));
    EXPECT_EQ(-1, team);
    const char* arguments[] = {"x", nullptr};
    EXPECT_EQ(B_BAD_VALUE, be_roster->Launch("application/x-vnd.nobody", 2, arguments, &team));
    EXPECT_EQ(B_BAD_VALUE, be_roster->Launch((const char*)nullptr, (BMessage*)nullptr, &team));
}

TEST_F(RosterLaunchTest, LaunchOfEntryWithMissingProgramFails) {
    fHome.WriteFile(".local/share/applications/broken.desktop",
                    "[Desktop Entry]\nType=Application\nName=Broken\n"
                    "Exec=/nonexistent/program %F\n");
    team_id team = 99;
    EXPECT_EQ(B_LAUNCH_FAILED_APP_NOT_FOUND,
              be_roster->Launch("application/x-vnd.desktop-broken", (BMessage*)nullptr, &team));
    EXPECT_EQ(-1, team);
}

TEST_F(RosterLaunchTest, LaunchedChildIsReapedWhenItEnds) {
    fApps.Add("viewer", "image/png;", "%F");
    team_id team = -1;
    ASSERT_EQ(B_OK,
              be_roster->Launch("application/x-vnd.desktop-viewer", (BMessage*)nullptr, &team));
    ASSERT_TRUE(fApps.WaitForRuns("viewer", 1));
    // A zombie would keep its /proc entry until someone waits for it.
    EXPECT_TRUE(wait_until([&] { return !process_exists(team); }));
    EXPECT_TRUE(
        wait_until([&] { return !be_roster->IsRunning("application/x-vnd.desktop-viewer"); }));
}

TEST_F(RosterLaunchTest, LaunchedApplicationRunsUntilItEnds) {
    std::string path = AddWaitingApp("waiter");
    team_id team = -1;
    ASSERT_EQ(B_OK,
              be_roster->Launch("application/x-vnd.desktop-waiter", (BMessage*)nullptr, &team));
    EXPECT_TRUE(be_roster->IsRunning("application/x-vnd.desktop-waiter"));
    app_info info;
    entry_ref ref = ref_for(path);
    ASSERT_EQ(B_OK, be_roster->GetAppInfo(&ref, &info));
    EXPECT_EQ(team, info.team);
    EXPECT_STREQ("application/x-vnd.desktop-waiter", info.signature);
    EXPECT_EQ(ref, info.ref);
    EXPECT_TRUE(ReleaseUntil([&] { return !be_roster->IsRunning(&ref); }));
    EXPECT_EQ(B_ERROR, be_roster->GetAppInfo(&ref, &info));
}

TEST_F(RosterLaunchTest, SingleLaunchApplicationAlreadyRunningIsNotStartedAgain) {
    std::string path = AddWaitingApp("single");
    {
        BFile file(path.c_str(), B_READ_WRITE);
        ASSERT_EQ(B_OK, BAppFileInfo(&file).SetAppFlags(B_SINGLE_LAUNCH));
    }
    team_id first = -1;
    ASSERT_EQ(B_OK,
              be_roster->Launch("application/x-vnd.desktop-single", (BMessage*)nullptr, &first));
    team_id second = -1;
    EXPECT_EQ(B_ALREADY_RUNNING,
              be_roster->Launch("application/x-vnd.desktop-single", (BMessage*)nullptr, &second));
    EXPECT_EQ(first, second);
    EXPECT_TRUE(
        ReleaseUntil([&] { return !be_roster->IsRunning("application/x-vnd.desktop-single"); }));
}

TEST_F(RosterLaunchTest, MultipleLaunchApplicationStartsAgain) {
    AddWaitingApp("multiple");
    team_id first = -1;
    team_id second = -1;
    ASSERT_EQ(B_OK,
              be_roster->Launch("application/x-vnd.desktop-multiple", (BMessage*)nullptr, &first));
    ASSERT_EQ(B_OK,
              be_roster->Launch("application/x-vnd.desktop-multiple", (BMessage*)nullptr, &second));
    EXPECT_NE(first, second);
    EXPECT_TRUE(
        ReleaseUntil([&] { return !be_roster->IsRunning("application/x-vnd.desktop-multiple"); }));
}

TEST_F(RosterLaunchTest, LaunchedChildDoesNotInheritOurDescriptors) {
    int pipeDescriptors[2];
    ASSERT_EQ(0, pipe(pipeDescriptors));
    int watch = inotify_init();
    ASSERT_GE(watch, 0);
    char pipeTarget[64] = "";
    ASSERT_GT(readlink(("/proc/self/fd/" + std::to_string(pipeDescriptors[0])).c_str(), pipeTarget,
                       sizeof(pipeTarget) - 1),
              0);

    std::string output = fHome.Path() + "/descriptors";
    std::string tool = fHome.WriteFile(
        "bin/descriptors",
        "#!/bin/sh\nfor f in /proc/$$/fd/*; do echo \"${f##*/} $(readlink $f)\"; done > '" +
            output + ".part'\nmv '" + output + ".part' '" + output + "'\n",
        true);
    entry_ref toolRef = ref_for(tool);
    ASSERT_EQ(B_OK, be_roster->Launch(&toolRef, (BMessage*)nullptr, nullptr));
    ASSERT_TRUE(wait_until([&] { return access(output.c_str(), F_OK) == 0; }));

    std::ifstream stream(output);
    std::string line;
    while (std::getline(stream, line)) {
        EXPECT_EQ(std::string::npos, line.find(pipeTarget)) << line;
        EXPECT_EQ(std::string::npos, line.find("inotify")) << line;
    }
    close(pipeDescriptors[0]);
    close(pipeDescriptors[1]);
    close(watch);
}
