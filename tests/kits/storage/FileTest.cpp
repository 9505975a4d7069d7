#include <Directory.h>
#include <Entry.h>
#include <File.h>

#include "StorageTestSupport.h"
#include "TestHome.h"

#include <gtest/gtest.h>

#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

using testing_support::read_file;
using testing_support::TestHome;

TEST(File, DefaultIsUninitialised) {
    BFile file;
    EXPECT_EQ(file.InitCheck(), B_NO_INIT);
    char buffer[4];
    EXPECT_EQ(file.Read(buffer, sizeof(buffer)), B_FILE_ERROR);
}

TEST(File, ReadOnlyReadsButDoesNotWrite) {
    TestHome home;
    BFile file(home.WriteFile("f", "hello").c_str(), B_READ_ONLY);
    ASSERT_EQ(file.InitCheck(), B_OK);
    EXPECT_TRUE(file.IsReadable());
    EXPECT_FALSE(file.IsWritable());
    char buffer[8] = {};
    EXPECT_EQ(file.Read(buffer, sizeof(buffer)), 5);
    EXPECT_STREQ(buffer, "hello");
    EXPECT_LT(file.Write("x", 1), 0);
}

TEST(File, MissingFileWithoutCreateIsNotFound) {
    TestHome home;
    BFile file((home.Path() + "/none").c_str(), B_READ_WRITE);
    EXPECT_EQ(file.InitCheck(), B_ENTRY_NOT_FOUND);
}

TEST(File, CreateFileMakesAMissingFile) {
    TestHome home;
    std::string path = home.Path() + "/new";
    BFile file(path.c_str(), B_WRITE_ONLY | B_CREATE_FILE);
    ASSERT_EQ(file.InitCheck(), B_OK);
    EXPECT_EQ(file.Write("abc", 3), 3);
    EXPECT_EQ(read_file(path), "abc");
}

TEST(File, CreateFileKeepsAnExistingFilesContents) {
    TestHome home;
    std::string path = home.WriteFile("kept", "old contents");
    BFile file(path.c_str(), B_READ_WRITE | B_CREATE_FILE);
    ASSERT_EQ(file.InitCheck(), B_OK);
    off_t size;
    ASSERT_EQ(file.GetSize(&size), B_OK);
    EXPECT_EQ(size, 12);
}

TEST(File, EraseFileEmptiesIt) {
    TestHome home;
    std::string path = home.WriteFile("erased", "old contents");
    BFile file(path.c_str(), B_WRITE_ONLY | B_ERASE_FILE);
    ASSERT_EQ(file.InitCheck(), B_OK);
    EXPECT_EQ(read_file(path), "");
}

TEST(File, FailIfExistsRefusesAnExistingFile) {
    TestHome home;
    std::string path = home.WriteFile("there", "x");
    BFile file(path.c_str(), B_WRITE_ONLY | B_CREATE_FILE | B_FAIL_IF_EXISTS);
    EXPECT_EQ(file.InitCheck(), B_FILE_EXISTS);
    BFile fresh((home.Path() + "/fresh").c_str(), B_WRITE_ONLY | B_CREATE_FILE | B_FAIL_IF_EXISTS);
    EXPECT_EQ(fresh.InitCheck(), B_OK);
}

TEST(File, OpenAtEndAppends) {
    TestHome home;
    std::string path = home.WriteFile("log", "one\n");
    BFile file(path.c_str(), B_WRITE_ONLY | B_OPEN_AT_END);
    ASSERT_EQ(file.InitCheck(), B_OK);
    EXPECT_EQ(file.Write("two\n", 4), 4);
    EXPECT_EQ(read_file(path), "one\ntwo\n");
}

TEST(File, FollowsLinks) {
    TestHome home;
    std::string target = home.WriteFile("target", "through the link");
    std::string link = home.Path() + "/link";
    ASSERT_EQ(symlink(target.c_str(), link.c_str()), 0);
    BFile file(link.c_str(), B_READ_ONLY);
    ASSERT_EQ(file.InitCheck(), B_OK);
    EXPECT_TRUE(file.IsFile());
    char buffer[32] = {};
    EXPECT_EQ(file.Read(buffer, sizeof(buffer)), 16);
}

TEST(File, FolderIsADirectoryError) {
    TestHome home;
    EXPECT_EQ(BFile(home.Path().c_str(), B_READ_ONLY).InitCheck(), B_IS_A_DIRECTORY);
    EXPECT_EQ(BFile(home.Path().c_str(), B_READ_WRITE).InitCheck(), B_IS_A_DIRECTORY);
}

TEST(File, UnknownModeBitsAreBadValue) {
    TestHome home;
    std::string path = home.WriteFile("f", "x");
    EXPECT_EQ(BFile(path.c_str(), B_READ_ONLY | 0x40000000).InitCheck(), B_BAD_VALUE);
}

TEST(File, ReadAtAndWriteAtLeaveThePositionAlone) {
    TestHome home;
    std::string path = home.WriteFile("f", "0123456789");
    BFile file(path.c_str(), B_READ_WRITE);
    char buffer[3] = {};
    EXPECT_EQ(file.ReadAt(4, buffer, 3), 3);
    EXPECT_EQ(std::string(buffer, 3), "456");
    EXPECT_EQ(file.WriteAt(8, "XY", 2), 2);
    EXPECT_EQ(file.Position(), 0);
    EXPECT_EQ(read_file(path), "01234567XY");
}

TEST(File, ReadAtANegativeOffsetIsBadValue) {
    TestHome home;
    BFile file(home.WriteFile("f", "x").c_str(), B_READ_ONLY);
    char buffer[1];
    EXPECT_EQ(file.ReadAt(-1, buffer, 1), B_BAD_VALUE);
}

TEST(File, SeekMovesThePosition) {
    TestHome home;
    BFile file(home.WriteFile("f", "0123456789").c_str(), B_READ_ONLY);
    EXPECT_EQ(file.Seek(3, SEEK_SET), 3);
    EXPECT_EQ(file.Seek(2, SEEK_CUR), 5);
    EXPECT_EQ(file.Seek(-1, SEEK_END), 9);
    char last;
    EXPECT_EQ(file.Read(&last, 1), 1);
    EXPECT_EQ(last, '9');
    EXPECT_EQ(file.Position(), 10);
}

TEST(File, SeekBeforeTheStartIsAnError) {
    TestHome home;
    BFile file(home.WriteFile("f", "0123").c_str(), B_READ_ONLY);
    EXPECT_EQ(file.Seek(-10, SEEK_SET), B_BAD_VALUE);
    EXPECT_EQ(file.Seek(0, 99), B_BAD_VALUE);
}

TEST(File, SetSizeTruncatesAndExtends) {
    TestHome home;
    std::string path = home.WriteFile("f", "0123456789");
    BFile file(path.c_str(), B_READ_WRITE);
    ASSERT_EQ(file.SetSize(4), B_OK);
    EXPECT_EQ(read_file(path), "0123");
    ASSERT_EQ(file.SetSize(6), B_OK);
    EXPECT_EQ(read_file(path), std::string("0123\0\0", 6));
    off_t size;
    ASSERT_EQ(file.GetSize(&size), B_OK);
    EXPECT_EQ(size, 6);
}

TEST(File, SetSizeOnAReadOnlyFileIsNotAllowed) {
    TestHome home;
    BFile file(home.WriteFile("f", "0123").c_str(), B_READ_ONLY);
    EXPECT_EQ(file.SetSize(1), B_NOT_ALLOWED);
    EXPECT_EQ(file.SetSize(-1), B_BAD_VALUE);
}

TEST(File, FromEntryRefEntryAndDirectory) {
    TestHome home;
    std::string path = home.WriteFile("dir/f", "x");
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(path.c_str(), &ref), B_OK);
    EXPECT_EQ(BFile(&ref, B_READ_ONLY).InitCheck(), B_OK);
    BEntry entry(path.c_str());
    EXPECT_EQ(BFile(&entry, B_READ_ONLY).InitCheck(), B_OK);
    BDirectory directory((home.Path() + "/dir").c_str());
    EXPECT_EQ(BFile(&directory, "f", B_READ_ONLY).InitCheck(), B_OK);
}

TEST(File, CopyHasItsOwnPosition) {
    TestHome home;
    BFile file(home.WriteFile("f", "abcdef").c_str(), B_READ_ONLY);
    char c;
    ASSERT_EQ(file.Read(&c, 1), 1);
    BFile copy(file);
    ASSERT_EQ(copy.InitCheck(), B_OK);
    EXPECT_EQ(copy.Position(), 0);
    EXPECT_EQ(copy.Read(&c, 1), 1);
    EXPECT_EQ(c, 'a');
    EXPECT_EQ(file.Position(), 1);
    EXPECT_TRUE(copy.IsReadable());
    EXPECT_FALSE(copy.IsWritable());
}

TEST(File, IsAPositionIO) {
    TestHome home;
    std::string path = home.Path() + "/io";
    BFile file(path.c_str(), B_READ_WRITE | B_CREATE_FILE);
    BPositionIO* stream = &file;
    EXPECT_EQ(stream->WriteAt(0, "stream", 6), 6);
    off_t size;
    ASSERT_EQ(stream->GetSize(&size), B_OK);
    EXPECT_EQ(size, 6);
    EXPECT_EQ(stream->Seek(0, SEEK_END), 6);
}

TEST(File, CreateInAFolderWithoutPermissionIsDenied) {
    TestHome home;
    std::string folder = home.MakeFolder("readonly");
    ASSERT_EQ(chmod(folder.c_str(), 0555), 0);
    storage_testing::open_up_to(home.Path(), GLIMROW_BINARY_DIR);
    int result = storage_testing::run_unprivileged([&] {
        BFile file((folder + "/new").c_str(), B_WRITE_ONLY | B_CREATE_FILE);
        return file.InitCheck() == B_PERMISSION_DENIED ? 0 : 1;
    });
    EXPECT_EQ(result, 0);
}

TEST(File, UnsetClosesIt) {
    TestHome home;
    BFile file(home.WriteFile("f", "x").c_str(), B_READ_ONLY);
    file.Unset();
    EXPECT_EQ(file.InitCheck(), B_NO_INIT);
    EXPECT_FALSE(file.IsReadable());
}
