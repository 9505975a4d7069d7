#include <Directory.h>
#include <Entry.h>
#include <FindDirectory.h>
#include <Path.h>

#include "StorageTestSupport.h"
#include "TestHome.h"
#include "storage/Trash.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <dlfcn.h>
#include <sched.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <map>
#include <sstream>
#include <string>

using testing_support::read_file;
using testing_support::TestHome;

namespace {

bool exists(const std::string& path) {
    struct stat pathStat;
    return lstat(path.c_str(), &pathStat) == 0;
}

// The keys of an info file, after checking its first line.
std::map<std::string, std::string> read_info(const std::string& path) {
    std::map<std::string, std::string> keys;
    std::istringstream text(read_file(path));
    std::string line;
    if (!std::getline(text, line) || line != "[Trash Info]")
        return keys;
    while (std::getline(text, line)) {
        size_t equals = line.find('=');
        if (equals != std::string::npos && keys.count(line.substr(0, equals)) == 0)
            keys[line.substr(0, equals)] = line.substr(equals + 1);
    }
    return keys;
}

// GLib's own trash code, reached the way the kits reach GIO (they do not link it),
// but straight from the library rather than through the kits' table.
bool trash_with_glib(const std::string& path, std::string* failure) {
    void* library = dlopen("libgio-2.0.so.0", RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        *failure = dlerror();
        return false;
    }
    auto newForPath =
        reinterpret_cast<decltype(&g_file_new_for_path)>(dlsym(library, "g_file_new_for_path"));
    auto trash = reinterpret_cast<decltype(&g_file_trash)>(dlsym(library, "g_file_trash"));
    auto unref = reinterpret_cast<decltype(&g_object_unref)>(dlsym(library, "g_object_unref"));
    auto freeError = reinterpret_cast<decltype(&g_error_free)>(dlsym(library, "g_error_free"));
    if (newForPath == nullptr || trash == nullptr || unref == nullptr || freeError == nullptr) {
        *failure = "GIO lacks its file functions";
        return false;
    }
    GFile* file = newForPath(path.c_str());
    GError* error = nullptr;
    bool trashed = trash(file, nullptr, &error);
    if (error != nullptr) {
        *failure = error->message;
        freeError(error);
    }
    unref(file);
    return trashed;
}

std::string unescape(const std::string& text) {
    std::string result;
    for (size_t i = 0; i < text.size(); i++) {
        if (text[i] == '%' && i + 2 < text.size()) {
            result += (char)strtol(text.substr(i + 1, 2).c_str(), nullptr, 16);
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

class Trash : public ::testing::Test {
protected:
    void SetUp() override {
        BPath trash;
        ASSERT_EQ(find_directory(B_TRASH_DIRECTORY, &trash), B_OK);
        fTrashPath = trash.Path();
        ASSERT_EQ(fTrash.SetTo(fTrashPath.c_str()), B_OK);
        fInfoPath = fHome.DataHome() + "/Trash/info";
    }

    std::string InfoFile(const std::string& name) const {
        return fInfoPath + "/" + name + ".trashinfo";
    }

    TestHome fHome;
    std::string fTrashPath;
    std::string fInfoPath;
    BDirectory fTrash;
};

} // namespace

TEST_F(Trash, MovingInWritesTheInfoFile) {
    std::string file = fHome.WriteFile("docs/letter.txt", "dear");
    BEntry entry(file.c_str());
    time_t before = time(nullptr);
    ASSERT_EQ(entry.MoveTo(&fTrash), B_OK);
    EXPECT_TRUE(exists(fTrashPath + "/letter.txt"));
    EXPECT_FALSE(exists(file));

    std::map<std::string, std::string> info = read_info(InfoFile("letter.txt"));
    ASSERT_EQ(info.count("Path"), 1u) << "missing [Trash Info] or Path";
    EXPECT_EQ(info["Path"], file);
    ASSERT_EQ(info.count("DeletionDate"), 1u);
    struct tm parsed = {};
    const char* end = strptime(info["DeletionDate"].c_str(), "%Y-%m-%dT%H:%M:%S", &parsed);
    ASSERT_NE(end, nullptr);
    EXPECT_EQ(*end, '\0');
    parsed.tm_isdst = -1;
    time_t deleted = mktime(&parsed);
    EXPECT_GE(deleted, before - 1);
    EXPECT_LE(deleted, time(nullptr) + 1);
}

TEST_F(Trash, OriginalPathIsPercentEscaped) {
    std::string name = "odd name 100%+\xe9\x01.txt";
    std::string file = fHome.WriteFile(name, "x");
    BEntry entry(file.c_str());
    ASSERT_EQ(entry.MoveTo(&fTrash), B_OK);
    std::string path = read_info(InfoFile(name))["Path"];
    EXPECT_EQ(path.find(' '), std::string::npos);
    EXPECT_NE(path.find("%20"), std::string::npos);
    EXPECT_NE(path.find("%25"), std::string::npos);
    EXPECT_NE(path.find("%E9"), std::string::npos);
    EXPECT_EQ(unescape(path), file);
}

TEST_F(Trash, InfoMatchesWhatGLibWrites) {
    // GLib's own trash code writes the same Path= for the same original path.
    std::string name = "same name & 50% \xc3\xa9.txt";
    std::string file = fHome.WriteFile("a/" + name, "x");
    std::string failure;
    ASSERT_TRUE(trash_with_glib(file, &failure)) << failure;
    std::string glibPath = read_info(InfoFile(name))["Path"];
    ASSERT_FALSE(glibPath.empty());

    fHome.WriteFile("a/" + name, "again");
    BEntry entry(file.c_str());
    ASSERT_EQ(entry.MoveTo(&fTrash, "ours"), B_OK);
    EXPECT_EQ(read_info(InfoFile("ours"))["Path"], glibPath);
}

TEST_F(Trash, TakenNameWithoutClobberIsFileExists) {
    fHome.WriteFile(".local/share/Trash/files/Work", "older");
    std::string file = fHome.WriteFile("Work", "newer");
    BEntry entry(file.c_str());
    EXPECT_EQ(entry.MoveTo(&fTrash, nullptr, false), B_FILE_EXISTS);
    EXPECT_TRUE(exists(file));
    EXPECT_EQ(read_file(fTrashPath + "/Work"), "older");
    EXPECT_FALSE(exists(InfoFile("Work")));
}

TEST_F(Trash, CallerPicksTheNextFreeName) {
    // What the program does on its own: Work, then Work 1, Work 2...
    fHome.WriteFile(".local/share/Trash/files/Work", "1");
    fHome.WriteFile(".local/share/Trash/files/Work 1", "2");
    std::string file = fHome.WriteFile("layers/Work", "3");
    BEntry entry(file.c_str());
    status_t status = entry.MoveTo(&fTrash, nullptr, false);
    for (int i = 1; status == B_FILE_EXISTS && i < 10; i++)
        status = entry.MoveTo(&fTrash, ("Work " + std::to_string(i)).c_str(), false);
    ASSERT_EQ(status, B_OK);
    EXPECT_EQ(read_file(fTrashPath + "/Work 2"), "3");
    EXPECT_EQ(read_info(InfoFile("Work 2"))["Path"], file);
}

TEST_F(Trash, ClobberReplacesATrashedEntry) {
    fHome.WriteFile(".local/share/Trash/files/Work", "older");
    std::string file = fHome.WriteFile("Work", "newer");
    BEntry entry(file.c_str());
    ASSERT_EQ(entry.MoveTo(&fTrash, nullptr, true), B_OK);
    EXPECT_EQ(read_file(fTrashPath + "/Work"), "newer");
    EXPECT_EQ(read_info(InfoFile("Work"))["Path"], file);
}

TEST_F(Trash, OrphanInfoFileDoesNotBlockTheName) {
    fHome.WriteFile(".local/share/Trash/info/Lost.trashinfo", "[Trash Info]\nPath=/old\n");
    std::string file = fHome.WriteFile("Lost", "x");
    BEntry entry(file.c_str());
    ASSERT_EQ(entry.MoveTo(&fTrash), B_OK);
    EXPECT_EQ(read_info(InfoFile("Lost"))["Path"], file);
}

TEST_F(Trash, TrashedFolderGetsOneInfoFile) {
    std::string folder = fHome.MakeFolder("project");
    fHome.WriteFile("project/inside", "x");
    BEntry entry(folder.c_str());
    ASSERT_EQ(entry.MoveTo(&fTrash), B_OK);
    EXPECT_TRUE(exists(fTrashPath + "/project/inside"));
    EXPECT_EQ(read_info(InfoFile("project"))["Path"], folder);
    BDirectory info(fInfoPath.c_str());
    EXPECT_EQ(info.CountEntries(), 1);
}

TEST_F(Trash, RestoringByTheInfoFileBringsItBack) {
    // What a file manager does: read Path=, move files/NAME back, drop the info.
    std::string file = fHome.WriteFile("deep/folder/restore me", "content");
    BEntry entry(file.c_str());
    ASSERT_EQ(entry.MoveTo(&fTrash), B_OK);
    std::string original = unescape(read_info(InfoFile("restore me"))["Path"]);
    ASSERT_EQ(rename((fTrashPath + "/restore me").c_str(), original.c_str()), 0);
    ASSERT_EQ(unlink(InfoFile("restore me").c_str()), 0);
    EXPECT_EQ(read_file(file), "content");
}

TEST_F(Trash, MovingOutOfTheTrashDropsTheInfo) {
    std::string file = fHome.WriteFile("back", "x");
    BEntry entry(file.c_str());
    ASSERT_EQ(entry.MoveTo(&fTrash), B_OK);
    ASSERT_TRUE(exists(InfoFile("back")));
    BDirectory home(fHome.Path().c_str());
    ASSERT_EQ(entry.MoveTo(&home), B_OK);
    EXPECT_TRUE(exists(file));
    EXPECT_FALSE(exists(InfoFile("back")));
}

TEST_F(Trash, RemovingFromTheTrashDropsTheInfo) {
    std::string file = fHome.WriteFile("gone", "x");
    BEntry entry(file.c_str());
    ASSERT_EQ(entry.MoveTo(&fTrash), B_OK);
    ASSERT_EQ(entry.Remove(), B_OK);
    EXPECT_FALSE(exists(fTrashPath + "/gone"));
    EXPECT_FALSE(exists(InfoFile("gone")));
}

TEST_F(Trash, RenamingInsideTheTrashMovesTheInfo) {
    std::string file = fHome.WriteFile("first", "x");
    BEntry entry(file.c_str());
    ASSERT_EQ(entry.MoveTo(&fTrash), B_OK);
    ASSERT_EQ(entry.Rename("second"), B_OK);
    EXPECT_FALSE(exists(InfoFile("first")));
    EXPECT_EQ(read_info(InfoFile("second"))["Path"], file);
}

TEST_F(Trash, NameTooLongForItsInfoFileIsRefused) {
    std::string name(250, 'x');
    std::string file = fHome.WriteFile(name, "x");
    BEntry entry(file.c_str());
    EXPECT_EQ(entry.MoveTo(&fTrash), B_NAME_TOO_LONG);
    EXPECT_TRUE(exists(file));
}

TEST_F(Trash, InfoFolderOnlyHoldsInfoFiles) {
    std::string file = fHome.WriteFile("one", "x");
    BEntry entry(file.c_str());
    ASSERT_EQ(entry.MoveTo(&fTrash), B_OK);
    BDirectory info(fInfoPath.c_str());
    entry_ref ref;
    ASSERT_EQ(info.GetNextRef(&ref), B_OK);
    EXPECT_STREQ(ref.name, "one.trashinfo");
    EXPECT_EQ(info.GetNextRef(&ref), B_ENTRY_NOT_FOUND);
}

namespace {

// Runs body in a child with a private mount namespace, so the test can mount its own
// file systems without touching the machine's. Returns body's result, or -1.
int in_private_mounts(const std::function<int()>& body) {
    pid_t child = fork();
    if (child < 0)
        return -1;
    if (child == 0) {
        if (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr))
            _exit(200);
        _exit(body());
    }
    int status;
    if (waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}

} // namespace

TEST_F(Trash, EntryOnAnotherFileSystemGoesToThatVolumesTrash) {
    std::string volume = fHome.MakeFolder("volume");
    std::string uid = std::to_string(getuid());
    int result = in_private_mounts([&] {
        if (mount("tmpfs", volume.c_str(), "tmpfs", 0, "size=1m") != 0)
            return 100;
        std::string file = volume + "/sub/item";
        if (create_directory((volume + "/sub").c_str(), 0755) != B_OK)
            return 101;
        fHome.WriteFile("volume/sub/item", "on tmpfs");
        BEntry entry(file.c_str());
        if (entry.MoveTo(&fTrash) != B_OK)
            return 1;
        std::string root = volume + "/.Trash-" + uid;
        if (read_file(root + "/files/item") != "on tmpfs")
            return 2;
        // Volume trashes keep the path below the volume's top folder.
        if (read_info(root + "/info/item.trashinfo")["Path"] != "sub/item")
            return 3;
        BPath path;
        entry.GetPath(&path);
        return std::string(path.Path()) == root + "/files/item" ? 0 : 4;
    });
    EXPECT_EQ(result, 0);
}

TEST_F(Trash, SharedVolumeTrashIsUsedWhenSticky) {
    std::string volume = fHome.MakeFolder("volume");
    std::string uid = std::to_string(getuid());
    int result = in_private_mounts([&] {
        if (mount("tmpfs", volume.c_str(), "tmpfs", 0, "size=1m") != 0)
            return 100;
        if (mkdir((volume + "/.Trash").c_str(), 01777) != 0 ||
            chmod((volume + "/.Trash").c_str(), 01777) != 0)
            return 101;
        fHome.WriteFile("volume/item", "x");
        BEntry entry((volume + "/item").c_str());
        if (entry.MoveTo(&fTrash) != B_OK)
            return 1;
        return exists(volume + "/.Trash/" + uid + "/files/item") &&
                       exists(volume + "/.Trash/" + uid + "/info/item.trashinfo")
                   ? 0
                   : 2;
    });
    EXPECT_EQ(result, 0);
}

TEST_F(Trash, VolumeWithoutAPossibleTrashFailsCleanly) {
    std::string volume = fHome.MakeFolder("volume");
    int result = in_private_mounts([&] {
        if (mount("tmpfs", volume.c_str(), "tmpfs", 0, "size=1m") != 0)
            return 100;
        fHome.WriteFile("volume/item", "x");
        if (mount(nullptr, volume.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0)
            return 101;
        BEntry entry((volume + "/item").c_str());
        status_t status = entry.MoveTo(&fTrash);
        if (status != B_CROSS_DEVICE_LINK)
            return 1;
        return exists(volume + "/item") ? 0 : 2;
    });
    EXPECT_EQ(result, 0);
}

TEST(TrashInfo, TextHasTheFreedesktopLayout) {
    time_t when = 1000000000;
    std::string text = BPrivate::trash_info_text("/home/user/a b", when);
    struct tm local;
    localtime_r(&when, &local);
    char date[32];
    strftime(date, sizeof(date), "%Y-%m-%dT%H:%M:%S", &local);
    EXPECT_EQ(text,
              std::string("[Trash Info]\nPath=/home/user/a%20b\nDeletionDate=") + date + "\n");
}

TEST_F(Trash, HomeEntryMovedIntoAVolumeTrashGoesToTheHomeTrash) {
    std::string volume = fHome.MakeFolder("volume");
    std::string uid = std::to_string(getuid());
    int result = in_private_mounts([&] {
        if (mount("tmpfs", volume.c_str(), "tmpfs", 0, "size=1m") != 0)
            return 100;
        std::string files = volume + "/.Trash-" + uid + "/files";
        if (create_directory(files.c_str(), 0700) != B_OK ||
            create_directory((volume + "/.Trash-" + uid + "/info").c_str(), 0700) != B_OK)
            return 101;
        std::string file = fHome.WriteFile("home item", "x");
        BDirectory volumeTrash(files.c_str());
        BEntry entry(file.c_str());
        if (entry.MoveTo(&volumeTrash) != B_OK)
            return 1;
        if (!exists(fTrashPath + "/home item") || exists(files + "/home item"))
            return 2;
        return unescape(read_info(InfoFile("home item"))["Path"]) == file ? 0 : 3;
    });
    EXPECT_EQ(result, 0);
}
