#include <Directory.h>
#include <Entry.h>
#include <Path.h>

#include "TestHome.h"

#include <gtest/gtest.h>

#include <string.h>
#include <unistd.h>

#include <string>

using testing_support::TestHome;

TEST(Path, DefaultIsUninitialised) {
    BPath path;
    EXPECT_EQ(path.InitCheck(), B_NO_INIT);
    EXPECT_EQ(path.Path(), nullptr);
    EXPECT_EQ(path.Leaf(), nullptr);
}

TEST(Path, CleanAbsolutePathIsKeptAsGiven) {
    BPath path("/does/not/exist/anywhere");
    ASSERT_EQ(path.InitCheck(), B_OK);
    EXPECT_STREQ(path.Path(), "/does/not/exist/anywhere");
}

TEST(Path, LeafIsAppendedWithASlash) {
    BPath path("/usr", "bin");
    EXPECT_STREQ(path.Path(), "/usr/bin");
    BPath root("/", "etc");
    EXPECT_STREQ(root.Path(), "/etc");
}

TEST(Path, AbsoluteLeafIsBadValue) {
    BPath path("/usr", "/bin");
    EXPECT_EQ(path.InitCheck(), B_BAD_VALUE);
}

TEST(Path, NullOrEmptyPathIsBadValue) {
    EXPECT_EQ(BPath((const char*)nullptr).InitCheck(), B_BAD_VALUE);
    EXPECT_EQ(BPath("").InitCheck(), B_BAD_VALUE);
}

TEST(Path, NormalizingResolvesDotsAndLinksInFolders) {
    TestHome home;
    home.MakeFolder("real/inner");
    ASSERT_EQ(symlink((home.Path() + "/real").c_str(), (home.Path() + "/link").c_str()), 0);
    BPath path((home.Path() + "/link/./inner/../inner/leaf").c_str(), nullptr, true);
    ASSERT_EQ(path.InitCheck(), B_OK);
    EXPECT_EQ(std::string(path.Path()), home.Path() + "/real/inner/leaf");
}

TEST(Path, NormalizingKeepsALinkLeaf) {
    TestHome home;
    home.MakeFolder("real");
    ASSERT_EQ(symlink((home.Path() + "/real").c_str(), (home.Path() + "/link").c_str()), 0);
    BPath path((home.Path() + "/link").c_str(), nullptr, true);
    EXPECT_EQ(std::string(path.Path()), home.Path() + "/link");
}

TEST(Path, DotsForceNormalizingEvenWhenNotAsked) {
    TestHome home;
    home.MakeFolder("a/b");
    BPath path((home.Path() + "/a/b/..").c_str());
    EXPECT_EQ(std::string(path.Path()), home.Path() + "/a");
    BPath doubled((home.Path() + "//a//b/").c_str());
    EXPECT_EQ(std::string(doubled.Path()), home.Path() + "/a/b");
}

TEST(Path, RelativePathIsMadeAbsolute) {
    TestHome home;
    home.MakeFolder("work");
    char* saved = getcwd(nullptr, 0);
    ASSERT_EQ(chdir((home.Path() + "/work").c_str()), 0);
    BPath path("notes.txt");
    EXPECT_EQ(chdir(saved), 0);
    free(saved);
    EXPECT_EQ(std::string(path.Path()), home.Path() + "/work/notes.txt");
}

TEST(Path, NormalizingAMissingFolderFails) {
    TestHome home;
    BPath path((home.Path() + "/missing/leaf").c_str(), nullptr, true);
    EXPECT_EQ(path.InitCheck(), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(path.Path(), nullptr);
}

TEST(Path, LeafIsTheLastComponent) {
    BPath path("/a/b/c.txt");
    EXPECT_STREQ(path.Leaf(), "c.txt");
    BPath root("/");
    EXPECT_STREQ(root.Leaf(), "");
}

TEST(Path, GetParentDropsTheLeaf) {
    BPath path("/a/b/c");
    BPath parent;
    ASSERT_EQ(path.GetParent(&parent), B_OK);
    EXPECT_STREQ(parent.Path(), "/a/b");
    BPath top("/a");
    ASSERT_EQ(top.GetParent(&parent), B_OK);
    EXPECT_STREQ(parent.Path(), "/");
}

TEST(Path, ParentOfRootIsNotFound) {
    BPath root("/");
    BPath parent;
    EXPECT_EQ(root.GetParent(&parent), B_ENTRY_NOT_FOUND);
}

TEST(Path, AppendAddsARelativePath) {
    BPath path("/a");
    ASSERT_EQ(path.Append("b/c"), B_OK);
    EXPECT_STREQ(path.Path(), "/a/b/c");
    EXPECT_EQ(path.Append("/abs"), B_BAD_VALUE);
    EXPECT_STREQ(path.Path(), "/a/b/c");
}

TEST(Path, AppendToAnUninitialisedPathFails) {
    BPath path;
    EXPECT_EQ(path.Append("b"), B_BAD_VALUE);
}

TEST(Path, ComparesByString) {
    BPath a("/x/y");
    BPath b("/x/y");
    BPath c("/x/z");
    EXPECT_TRUE(a == b);
    EXPECT_TRUE(a != c);
    EXPECT_TRUE(a == "/x/y");
    EXPECT_TRUE(BPath() == BPath());
    EXPECT_TRUE(BPath() != a);
}

TEST(Path, CopyAndAssignmentAreIndependent) {
    BPath a("/one");
    BPath b(a);
    a.SetTo("/two");
    EXPECT_STREQ(b.Path(), "/one");
    b = "/three";
    EXPECT_STREQ(b.Path(), "/three");
}

TEST(Path, SetToItsOwnPathKeepsIt) {
    BPath path("/a/b");
    ASSERT_EQ(path.SetTo(path.Path(), "c"), B_OK);
    EXPECT_STREQ(path.Path(), "/a/b/c");
}

TEST(Path, FromEntryRefOfAMissingLeaf) {
    TestHome home;
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path((home.Path() + "/not yet").c_str(), &ref), B_OK);
    BPath path(&ref);
    ASSERT_EQ(path.InitCheck(), B_OK);
    EXPECT_EQ(std::string(path.Path()), home.Path() + "/not yet");
}

TEST(Path, FromDirectoryAndLeaf) {
    TestHome home;
    BDirectory directory(home.Path().c_str());
    BPath path(&directory, "leaf");
    EXPECT_EQ(std::string(path.Path()), home.Path() + "/leaf");
}

TEST(Path, FlattensAsAnEntryRef) {
    TestHome home;
    std::string file = home.WriteFile("flat", "x");
    BPath path(file.c_str());
    EXPECT_EQ(path.TypeCode(), (type_code)B_REF_TYPE);
    EXPECT_TRUE(path.AllowsTypeCode(B_REF_TYPE));
    EXPECT_FALSE(path.IsFixedSize());
    ssize_t size = path.FlattenedSize();
    ASSERT_GT(size, 12);
    std::string buffer(size, '\0');
    ASSERT_EQ(path.Flatten(&buffer[0], size), B_OK);
    BPath back;
    ASSERT_EQ(back.Unflatten(B_REF_TYPE, buffer.data(), size), B_OK);
    EXPECT_STREQ(back.Path(), file.c_str());
}
