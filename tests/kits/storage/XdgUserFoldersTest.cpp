// How user-dirs.dirs is read: line by line, whatever the line endings and lengths.
#include "storage/XdgFolders.h"

#include "TestHome.h"

#include <gtest/gtest.h>

#include <string>

using testing_support::TestHome;

namespace {

std::string desktop_with(const TestHome& home, const std::string& contents) {
    home.WriteFile(".config/user-dirs.dirs", contents);
    return BPrivate::xdg_user_folder("DESKTOP", "Desktop");
}

} // namespace

TEST(XdgUserFolders, MissingFileGivesTheFallback) {
    TestHome home;
    EXPECT_EQ(BPrivate::xdg_user_folder("DESKTOP", "Desktop"), home.Path() + "/Desktop");
}

TEST(XdgUserFolders, MissingFileWithoutFallbackIsEmpty) {
    TestHome home;
    EXPECT_EQ(BPrivate::xdg_user_folder("DESKTOP", nullptr), "");
}

TEST(XdgUserFolders, LastLineWithoutNewlineIsRead) {
    TestHome home;
    EXPECT_EQ(desktop_with(home, "XDG_DESKTOP_DIR=\"$HOME/Tail\""), home.Path() + "/Tail");
}

TEST(XdgUserFolders, CarriageReturnsAreIgnored) {
    TestHome home;
    EXPECT_EQ(desktop_with(home, "XDG_DESKTOP_DIR=\"$HOME/Dos\"\r\nXDG_MUSIC_DIR=\"/m\"\r\n"),
              home.Path() + "/Dos");
}

TEST(XdgUserFolders, LeadingBlanksAndEscapesAreHandled) {
    TestHome home;
    EXPECT_EQ(desktop_with(home, " \tXDG_DESKTOP_DIR=\"/abs/My\\ \\\"Desk\\\"//\" \n"),
              "/abs/My \"Desk\"");
}

TEST(XdgUserFolders, OverlongLinesAreReadWhole) {
    TestHome home;
    std::string longName(100000, 'x');
    EXPECT_EQ(desktop_with(home, "# " + std::string(70000, '#') + "\nXDG_DESKTOP_DIR=\"/" +
                                     longName + "\"\n"),
              "/" + longName);
}

TEST(XdgUserFolders, NulByteDoesNotEndTheLine) {
    TestHome home;
    std::string contents = "XDG_DESKTOP_DIR=\"/before";
    contents += '\0';
    contents += "after\"\n";
    EXPECT_EQ(desktop_with(home, contents), std::string("/before\0after", 13));
}

TEST(XdgUserFolders, RelativeValueIsIgnored) {
    TestHome home;
    EXPECT_EQ(desktop_with(home, "XDG_DESKTOP_DIR=\"/good\"\nXDG_DESKTOP_DIR=\"relative\"\n"),
              "/good");
}

TEST(XdgUserFolders, UnquotedValueIsIgnored) {
    TestHome home;
    EXPECT_EQ(desktop_with(home, "XDG_DESKTOP_DIR=/plain\n"), home.Path() + "/Desktop");
}

TEST(XdgUserFolders, HomeAloneIsTheHome) {
    TestHome home;
    EXPECT_EQ(desktop_with(home, "XDG_DESKTOP_DIR=\"$HOME\"\n"), home.Path());
}

TEST(XdgUserFolders, HomeFollowedByALetterIsNotExpanded) {
    TestHome home;
    EXPECT_EQ(desktop_with(home, "XDG_DESKTOP_DIR=\"$HOMEDesk\"\n"), home.Path() + "/Desktop");
}
