// A start-up that cannot make the settings folders shows "Glimrow Error" with
// "Exit" and ends the process with status 1. Each case runs in a forked child.
#include "Glimrow.h"

#include <Alert.h>
#include <TextView.h>

#include <gtest/gtest.h>

#include "AlertAnswerer.h"
#include "FileCapabilities.h"
#include "TestHome.h"

#include <string>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

using testing_support::AlertAnswerer;
using testing_support::TestHome;

namespace {

std::string failure(const char* what, status_t error) {
    return std::string("Glimrow Error: \n\tFailed to get ") + what + ".\n\t" + strerror(error);
}

// Answers the box and reports what it showed on standard error.
class ReportingAnswerer {
public:
    explicit ReportingAnswerer(const std::string& expected)
        : fAnswerer("Exit", 1, [expected](BAlert* alert) {
              bool match = strcmp(alert->Title(), "Glimrow Error") == 0 &&
                           std::string(alert->TextView()->Text()) == expected;
              fprintf(stderr, match ? "seen error box\n" : "unexpected box: %s\n",
                      alert->TextView()->Text());
          }) {}

    void Detach() { fAnswerer.Detach(); }

private:
    AlertAnswerer fAnswerer;
};

} // namespace

TEST(StartupFailureTest, ReadOnlyConfigFolderShowsTheErrorAndExitsWithOne) {
    TestHome home;
    chmod(home.ConfigHome().c_str(), 0555);
    std::string expected = failure("a Glimrow settings directory", B_PERMISSION_DENIED);
    EXPECT_EXIT(
        {
            if (!testing_support::drop_file_capabilities())
                _exit(3);
            setenv("GLIMROW_DISPLAY", "headless", 1);
            ReportingAnswerer answerer(expected);
            answerer.Detach();
            new Glimrow(false, false);
            _exit(4);
        },
        testing::ExitedWithCode(1), "seen error box");
}

TEST(StartupFailureTest, LayersFolderAsAFileShowsTheLayersTextAndExitsWithOne) {
    TestHome home;
    home.WriteFile(".config/Glimrow/layers", "a file, not a folder");
    EXPECT_EXIT(
        {
            setenv("GLIMROW_DISPLAY", "headless", 1);
            AlertAnswerer answerer("Exit", 1, [](BAlert* alert) {
                std::string text = alert->TextView()->Text();
                if (text.rfind("Glimrow Error: \n\tFailed to get a Glimrow's Layers directory.\n\t",
                               0) == 0)
                    fprintf(stderr, "seen error box\n");
            });
            answerer.Detach();
            new Glimrow(false, false);
            _exit(4);
        },
        testing::ExitedWithCode(1), "seen error box");
}

TEST(StartupFailureTest, TargetsAsAFolderShowsTheTargetsTextAndExitsWithOne) {
    TestHome home;
    home.MakeFolder(".config/Glimrow/targets");
    EXPECT_EXIT(
        {
            setenv("GLIMROW_DISPLAY", "headless", 1);
            AlertAnswerer answerer("Exit", 1, [](BAlert* alert) {
                std::string text = alert->TextView()->Text();
                if (text.rfind("Glimrow Error: \n\tFailed to get a targets file.\n\t", 0) == 0)
                    fprintf(stderr, "seen error box\n");
            });
            answerer.Detach();
            new Glimrow(false, false);
            _exit(4);
        },
        testing::ExitedWithCode(1), "seen error box");
}
