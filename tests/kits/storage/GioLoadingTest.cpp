// GLib and GIO are opened only when the kits first need them: a start that reads
// settings, folders and typed files pays nothing for them. Each test runs in a
// fresh process, so what is loaded is what the test itself did.
#include <Entry.h>
#include <File.h>
#include <FindDirectory.h>
#include <Message.h>
#include <MimeType.h>
#include <Node.h>
#include <NodeInfo.h>
#include <Path.h>

#include "TestHome.h"
#include "Watchdog.h"

#include "LoadedLibraries.h"

#include <gtest/gtest.h>

#include <cairo.h>
#include <stdlib.h>
#include <unistd.h>

#include <atomic>
#include <latch>
#include <string>
#include <thread>
#include <vector>

using testing_support::TestHome;

using testing_support::is_library_loaded;

namespace {

bool any_glib_library_loaded() {
    return is_library_loaded("libgio-2.0.so.0") || is_library_loaded("libgobject-2.0.so.0") ||
           is_library_loaded("libglib-2.0.so.0");
}

// Sets LD_LIBRARY_PATH for the processes the death tests start (the dynamic
// loader reads it once, at start), and puts it back afterwards.
class LibraryPathOverride {
public:
    explicit LibraryPathOverride(const std::string& folder) {
        const char* old = getenv("LD_LIBRARY_PATH");
        fHadValue = old != nullptr;
        if (fHadValue)
            fOldValue = old;
        setenv("LD_LIBRARY_PATH", folder.c_str(), 1);
    }

    ~LibraryPathOverride() {
        if (fHadValue)
            setenv("LD_LIBRARY_PATH", fOldValue.c_str(), 1);
        else
            unsetenv("LD_LIBRARY_PATH");
    }

private:
    bool fHadValue = false;
    std::string fOldValue;
};

void guess_a_type() {
    BMimeType type;
    BMimeType::GuessMimeType("picture.png", &type);
}

} // namespace

TEST(GioLoadingTest, GioIsNotLoadedAfterReadingFilesAndTheirTypeAttribute) {
    ASSERT_FALSE(any_glib_library_loaded()) << "linked into the test program";
    TestHome home;
    BPath settingsFolder;
    ASSERT_EQ(B_OK, find_directory(B_USER_SETTINGS_DIRECTORY, &settingsFolder, true));
    BPath trash;
    ASSERT_EQ(B_OK, find_directory(B_TRASH_DIRECTORY, &trash));

    BMessage settings('sett');
    settings.AddString("name", "value");
    std::string settingsPath = std::string(settingsFolder.Path()) + "/settings";
    {
        BFile file(settingsPath.c_str(), B_WRITE_ONLY | B_CREATE_FILE | B_ERASE_FILE);
        ASSERT_EQ(B_OK, file.InitCheck());
        ASSERT_EQ(B_OK, settings.Flatten(&file));
    }
    BFile file(settingsPath.c_str(), B_READ_ONLY);
    BMessage restored;
    ASSERT_EQ(B_OK, restored.Unflatten(&file));
    EXPECT_STREQ("value", restored.GetString("name", ""));

    std::string documentPath = home.WriteFile("notes.txt", "hello\n");
    BEntry entry(documentPath.c_str());
    ASSERT_TRUE(entry.Exists());
    BPath path(&entry);
    ASSERT_EQ(B_OK, path.InitCheck());
    BNode node(path.Path());
    BNodeInfo info(&node);
    ASSERT_EQ(B_OK, info.SetType("application/x-vnd.test-document"));
    int32 count = 7;
    ASSERT_EQ(ssize_t(sizeof(count)),
              node.WriteAttr("count", B_INT32_TYPE, 0, &count, sizeof(count)));
    int32 readBack = 0;
    ASSERT_EQ(ssize_t(sizeof(readBack)),
              node.ReadAttr("count", B_INT32_TYPE, 0, &readBack, sizeof(readBack)));
    EXPECT_EQ(7, readBack);
    char type[B_MIME_TYPE_LENGTH] = "";
    ASSERT_EQ(B_OK, info.GetType(type));
    EXPECT_STREQ("application/x-vnd.test-document", type);

    EXPECT_FALSE(is_library_loaded("libgio-2.0.so.0"));
    EXPECT_FALSE(is_library_loaded("libgobject-2.0.so.0"));
    EXPECT_FALSE(is_library_loaded("libglib-2.0.so.0"));
}

TEST(GioLoadingTest, GioIsLoadedOnceAFileWithoutTypeAttributeNeedsAGuess) {
    TestHome home;
    std::string path = home.WriteFile("main.c", "int x;\n");
    BNode node(path.c_str());
    BNodeInfo info(&node);
    ASSERT_FALSE(is_library_loaded("libgio-2.0.so.0"));

    char type[B_MIME_TYPE_LENGTH] = "";
    ASSERT_EQ(B_OK, info.GetType(type));
    EXPECT_STREQ("text/x-csrc", type);
    EXPECT_TRUE(is_library_loaded("libgio-2.0.so.0"));
}

TEST(GioLoadingTest, GioIsLoadedOnceATypeIsGuessedFromAName) {
    ASSERT_FALSE(is_library_loaded("libgio-2.0.so.0"));
    BMimeType type;
    ASSERT_EQ(B_OK, BMimeType::GuessMimeType("picture.png", &type));
    EXPECT_STREQ("image/png", type.Type());
    EXPECT_TRUE(is_library_loaded("libgio-2.0.so.0"));
}

TEST(GioLoadingTest, ThreadsGuessingTogetherShareOneOpening) {
    ASSERT_FALSE(is_library_loaded("libgio-2.0.so.0"));
    const int kThreads = 4;
    std::latch start(kThreads);
    std::atomic<int> finished = 0;
    std::vector<std::string> types(kThreads);
    std::vector<std::thread> threads;
    for (int index = 0; index < kThreads; index++) {
        threads.emplace_back([&, index] {
            start.arrive_and_wait();
            BMimeType type;
            if (BMimeType::GuessMimeType("picture.png", &type) == B_OK)
                types[index] = type.Type();
            finished++;
        });
    }
    // A thread stuck opening GIO fails the test, and its unjoined thread then
    // ends the process.
    ASSERT_TRUE(testing_support::wait_until([&] { return finished == kThreads; }));
    for (std::thread& thread : threads)
        thread.join();
    for (const std::string& type : types)
        EXPECT_EQ("image/png", type);
}

TEST(GioLoadingTest, UnloadableGioEndsTheProcessWithOneClearLine) {
    // A re-executed child, so that the loader reads the library path below.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    TestHome home;
    home.WriteFile("libraries/libgio-2.0.so.0", "");
    LibraryPathOverride path(home.Path() + "/libraries");
    EXPECT_EXIT(guess_a_type(), testing::ExitedWithCode(1),
                "^glimrow: cannot read file types and applications: .*libgio-2.0.so.0.*\n$");
}

TEST(GioLoadingTest, GioWithoutItsFunctionsEndsTheProcessWithOneClearLine) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // Another library under GIO's name: it opens, but has none of the functions.
    Dl_info cairo;
    ASSERT_NE(0, dladdr(reinterpret_cast<void*>(&cairo_create), &cairo));
    TestHome home;
    home.MakeFolder("libraries");
    std::string fake = home.Path() + "/libraries/libgio-2.0.so.0";
    ASSERT_EQ(0, symlink(cairo.dli_fname, fake.c_str()));
    LibraryPathOverride path(home.Path() + "/libraries");
    EXPECT_EXIT(guess_a_type(), testing::ExitedWithCode(1),
                "^glimrow: cannot read file types and applications: .*undefined symbol: g_.*\n$");
}
