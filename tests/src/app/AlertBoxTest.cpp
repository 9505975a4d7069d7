#include "AlertBox.h"

#include <Errors.h>

#include <gtest/gtest.h>

#include <string>

#include <string.h>

namespace {

std::string format(int32 kind, const char* text, status_t error) {
    char buffer[2048];
    format_alert(kind, text, error, buffer, sizeof(buffer));
    return buffer;
}

} // namespace

TEST(AlertBoxTest, ReadFailureText) {
    EXPECT_EQ(format(kReadFailedAlert, "Work", B_BAD_VALUE),
              std::string("Glimrow Alert: \n\nFailed to read a file \"Work\".\n") +
                  strerror(B_BAD_VALUE));
}

TEST(AlertBoxTest, WriteFailureText) {
    EXPECT_EQ(format(kWriteFailedAlert, "targets", B_PERMISSION_DENIED),
              std::string("Glimrow Alert: \n\nFailed to write a file \"targets\".\n") +
                  strerror(B_PERMISSION_DENIED));
}

TEST(AlertBoxTest, LaunchFailureText) {
    EXPECT_EQ(format(kLaunchFailedAlert, "a.txt", B_ENTRY_NOT_FOUND),
              std::string("Glimrow Alert: \n\nFailed to launch a file \"a.txt\".\n") +
                  strerror(B_ENTRY_NOT_FOUND));
}

TEST(AlertBoxTest, IgnoredLayerTextHasNoErrorText) {
    EXPECT_EQ(format(kLayerIgnoredAlert, "picture.png", B_ERROR),
              "Glimrow Alert: \n\nA layer file \"picture.png\" was ignored.");
}

TEST(AlertBoxTest, InstallFailureText) {
    EXPECT_EQ(format(kInstallFailedAlert, "Clock", B_ERROR),
              std::string("Glimrow Alert: \n\nFailed to install an app \"Clock\".\n") +
                  strerror(B_ERROR));
}

TEST(AlertBoxTest, AnyOtherKindShowsTheTextAndTheError) {
    EXPECT_EQ(format(kPlainAlert, "Failed to load layers...", B_ENTRY_NOT_FOUND),
              std::string("Glimrow Alert: \n\nFailed to load layers...\n") +
                  strerror(B_ENTRY_NOT_FOUND));
    EXPECT_EQ(format(17, "x", B_OK), std::string("Glimrow Alert: \n\nx\n") + strerror(B_OK));
}

TEST(AlertBoxTest, LongTextIsCutToTheBuffer) {
    std::string longName(4000, 'a');
    char buffer[64];
    format_alert(kReadFailedAlert, longName.c_str(), B_ERROR, buffer, sizeof(buffer));
    EXPECT_EQ(strlen(buffer), sizeof(buffer) - 1);
}
