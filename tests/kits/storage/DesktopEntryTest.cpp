// The desktop entry reader: values, escapes, lists, Exec field codes, file IDs.
#include "storage/DesktopEntry.h"

#include "TestHome.h"

#include <gtest/gtest.h>

#include <stdlib.h>

using BPrivate::DesktopEntry;
using testing_support::TestHome;

namespace {

typedef std::vector<std::vector<std::string>> CommandLines;

DesktopEntry parsed(const std::string& text, const char* path = "/apps/test.desktop") {
    DesktopEntry entry;
    entry.SetTo(text.data(), text.size(), path);
    return entry;
}

DesktopEntry with_exec(const std::string& exec) {
    return parsed("[Desktop Entry]\nType=Application\nName=Viewer\nIcon=viewer-icon\nExec=" + exec +
                  "\n");
}

CommandLines commands_for(const DesktopEntry& entry, const std::vector<std::string>& values,
                          bool valuesAreFiles = true) {
    CommandLines commands;
    EXPECT_EQ(B_OK, entry.Commands(values, valuesAreFiles, &commands));
    return commands;
}

} // namespace

TEST(DesktopEntryTest, DesktopEntryReadsValuesOfTheMainGroupOnly) {
    DesktopEntry entry = parsed("# comment\n[Desktop Entry]\nName = Editor \nType=Application\n"
                                "[Desktop Action New]\nName=Other\n");
    ASSERT_EQ(B_OK, entry.InitCheck());
    EXPECT_EQ("Editor ", entry.String("Name"));
    EXPECT_EQ("Application", entry.String("Type"));
    EXPECT_FALSE(entry.HasKey("Exec"));
}

TEST(DesktopEntryTest, DesktopEntryWithoutMainGroupIsRefused) {
    DesktopEntry entry = parsed("[Something Else]\nName=x\n");
    EXPECT_EQ(B_BAD_DATA, entry.InitCheck());
    EXPECT_FALSE(entry.IsApplication());
}

TEST(DesktopEntryTest, DesktopEntryUndoesStringEscapes) {
    DesktopEntry entry = parsed("[Desktop Entry]\nComment=a\\sb\\tc\\nd\\\\e\\qf\n");
    EXPECT_EQ("a b\tc\nd\\e\\qf", entry.String("Comment"));
}

TEST(DesktopEntryTest, DesktopEntrySplitsListsWithEscapedSemicolons) {
    DesktopEntry entry = parsed("[Desktop Entry]\nMimeType=text/plain;a\\;b;image/png;\n");
    std::vector<std::string> expected = {"text/plain", "a;b", "image/png"};
    EXPECT_EQ(expected, entry.List("MimeType"));
}

TEST(DesktopEntryTest, DesktopEntryPicksTheLocalisedName) {
    setenv("LANGUAGE", "de_DE", 1);
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    DesktopEntry entry = parsed("[Desktop Entry]\nName=Editor\nName[de]=Bearbeiter\n");
    EXPECT_EQ("Bearbeiter", entry.LocaleString("Name"));
    EXPECT_EQ("Editor", entry.String("Name"));
}

TEST(DesktopEntryTest, DesktopEntryIsApplicationOnlyWithExecAndNotHidden) {
    EXPECT_TRUE(parsed("[Desktop Entry]\nType=Application\nExec=x\n").IsApplication());
    EXPECT_FALSE(parsed("[Desktop Entry]\nType=Link\nURL=x\n").IsApplication());
    EXPECT_FALSE(parsed("[Desktop Entry]\nType=Application\n").IsApplication());
    EXPECT_FALSE(
        parsed("[Desktop Entry]\nType=Application\nExec=x\nHidden=true\n").IsApplication());
}

TEST(DesktopEntryTest, DesktopEntryListOfFilesGoesToOneProcess) {
    CommandLines commands = commands_for(with_exec("viewer --open %F"), {"/a b", "/c"});
    CommandLines expected = {{"viewer", "--open", "/a b", "/c"}};
    EXPECT_EQ(expected, commands);
}

TEST(DesktopEntryTest, DesktopEntrySingleFileCodeStartsOneProcessPerFile) {
    CommandLines commands = commands_for(with_exec("viewer %f"), {"/a", "/b"});
    CommandLines expected = {{"viewer", "/a"}, {"viewer", "/b"}};
    EXPECT_EQ(expected, commands);
}

TEST(DesktopEntryTest, DesktopEntryUrlCodesGetLocalPaths) {
    CommandLines commands = commands_for(with_exec("viewer %U"), {"/a", "/b"});
    CommandLines expected = {{"viewer", "/a", "/b"}};
    EXPECT_EQ(expected, commands);
}

TEST(DesktopEntryTest, DesktopEntryDropsFileCodeWithoutFiles) {
    CommandLines commands = commands_for(with_exec("viewer %f --x"), {});
    CommandLines expected = {{"viewer", "--x"}};
    EXPECT_EQ(expected, commands);
}

TEST(DesktopEntryTest, DesktopEntryAppendsFilesWhenExecHasNoFileCode) {
    CommandLines commands = commands_for(with_exec("viewer"), {"/a"});
    CommandLines expected = {{"viewer", "/a"}};
    EXPECT_EQ(expected, commands);
}

TEST(DesktopEntryTest, DesktopEntryPutsAllArgumentsInPlaceOfASingleFileCode) {
    CommandLines commands = commands_for(with_exec("viewer %u"), {"one", "two"}, false);
    CommandLines expected = {{"viewer", "one", "two"}};
    EXPECT_EQ(expected, commands);
}

TEST(DesktopEntryTest, DesktopEntryExpandsIconNameAndLocation) {
    CommandLines commands = commands_for(with_exec("viewer %i %c %k"), {});
    CommandLines expected = {{"viewer", "--icon", "viewer-icon", "Viewer", "/apps/test.desktop"}};
    EXPECT_EQ(expected, commands);
}

TEST(DesktopEntryTest, DesktopEntryHonoursQuotesAndEscapesInExec) {
    // The file holds: "my viewer" "say \\"hi\\"" 100%% "a\\\\b"
    CommandLines commands =
        commands_for(with_exec("\"my viewer\" \"say \\\\\"hi\\\\\"\" 100%% \"a\\\\\\\\b\""), {});
    CommandLines expected = {{"my viewer", "say \"hi\"", "100%", "a\\b"}};
    EXPECT_EQ(expected, commands);
}

TEST(DesktopEntryTest, DesktopEntryDropsDeprecatedFieldCodes) {
    CommandLines commands = commands_for(with_exec("viewer %d %m %F"), {"/a"});
    CommandLines expected = {{"viewer", "/a"}};
    EXPECT_EQ(expected, commands);
}

TEST(DesktopEntryTest, DesktopEntryRefusesUnknownFieldCode) {
    CommandLines commands;
    EXPECT_EQ(B_BAD_VALUE, with_exec("viewer %z").Commands({}, true, &commands));
    EXPECT_TRUE(commands.empty());
}

TEST(DesktopEntryTest, DesktopEntryRefusesUnterminatedQuote) {
    CommandLines commands;
    EXPECT_EQ(B_BAD_VALUE, with_exec("\"viewer").Commands({}, true, &commands));
}

TEST(DesktopEntryTest, DesktopEntryRefusesEmptyProgram) {
    CommandLines commands;
    EXPECT_EQ(B_BAD_VALUE, with_exec("%f").Commands({}, true, &commands));
}

TEST(DesktopEntryTest, DesktopEntryIdOfNestedFileUsesDashes) {
    TestHome home;
    std::string path = home.WriteFile(".local/share/applications/kde/viewer.desktop",
                                      "[Desktop Entry]\nType=Application\nExec=x\n");
    EXPECT_EQ("kde-viewer.desktop", DesktopEntry::IDForPath(path.c_str()));
    EXPECT_EQ(path, DesktopEntry::PathForID("kde-viewer.desktop"));
}

TEST(DesktopEntryTest, DesktopEntryOutsideApplicationFoldersIsKnownByItsName) {
    TestHome home;
    std::string path = home.WriteFile("elsewhere/tool.desktop", "[Desktop Entry]\n");
    EXPECT_EQ("tool.desktop", DesktopEntry::IDForPath(path.c_str()));
}

TEST(DesktopEntryTest, DesktopEntryUserFolderHidesSystemEntryOfSameId) {
    TestHome home;
    std::string system = home.MakeFolder("system");
    setenv("XDG_DATA_DIRS", system.c_str(), 1);
    home.WriteFile("system/applications/tool.desktop",
                   "[Desktop Entry]\nType=Application\nExec=x\n");
    home.WriteFile(".local/share/applications/tool.desktop",
                   "[Desktop Entry]\nType=Application\nExec=x\nHidden=true\n");
    EXPECT_EQ("", DesktopEntry::PathForID("tool.desktop"));
}

TEST(DesktopEntryTest, DesktopEntryFileLargerThanTheLimitIsRefused) {
    TestHome home;
    std::string path = home.WriteFile(
        "big.desktop", "[Desktop Entry]\n" + std::string(DesktopEntry::kMaxFileSize, '#'));
    DesktopEntry entry;
    EXPECT_EQ(B_BAD_DATA, entry.SetTo(path.c_str()));
}

TEST(DesktopEntryTest, DesktopEntryMissingFileGivesEntryNotFound) {
    DesktopEntry entry;
    EXPECT_EQ(B_ENTRY_NOT_FOUND, entry.SetTo("/nonexistent/folder/x.desktop"));
}

TEST(DesktopEntryTest, DesktopEntryKeepsQuotedEmptyArgument) {
    CommandLines commands = commands_for(with_exec("viewer \"\" x"), {});
    CommandLines expected = {{"viewer", "", "x"}};
    EXPECT_EQ(expected, commands);
}
