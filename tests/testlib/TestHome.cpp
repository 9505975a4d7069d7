#include "TestHome.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace testing_support {

namespace {

const char* const kVariables[] = {"HOME",           "XDG_CONFIG_HOME", "XDG_DATA_HOME",
                                  "XDG_CACHE_HOME", "XDG_DATA_DIRS",   "XDG_CONFIG_DIRS",
                                  "XDG_RUNTIME_DIR"};

std::string make_unique_folder() {
    // Under the build tree rather than /tmp: /tmp may be a tmpfs without user xattrs.
    std::filesystem::path base = std::filesystem::path(GLIMROW_TEST_SCRATCH) / "homes";
    std::filesystem::create_directories(base);
    std::string pattern = (base / "home.XXXXXX").string();
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    if (mkdtemp(buffer.data()) == nullptr)
        std::abort();
    return std::filesystem::canonical(buffer.data()).string();
}

} // namespace

TestHome::TestHome() : fPath(make_unique_folder()) {
    for (const char* name : kVariables) {
        const char* value = getenv(name);
        fSavedEnvironment.push_back({name, {value != nullptr, value != nullptr ? value : ""}});
    }
    std::filesystem::create_directories(ConfigHome());
    std::filesystem::create_directories(DataHome());
    std::filesystem::create_directories(fPath + "/.cache");
    std::filesystem::create_directories(fPath + "/runtime");
    std::filesystem::permissions(fPath + "/runtime", std::filesystem::perms::owner_all);
    setenv("HOME", fPath.c_str(), 1);
    setenv("XDG_CONFIG_HOME", ConfigHome().c_str(), 1);
    setenv("XDG_DATA_HOME", DataHome().c_str(), 1);
    setenv("XDG_CACHE_HOME", (fPath + "/.cache").c_str(), 1);
    setenv("XDG_RUNTIME_DIR", (fPath + "/runtime").c_str(), 1);
    unsetenv("XDG_CONFIG_DIRS");
}

TestHome::~TestHome() {
    for (const auto& [name, saved] : fSavedEnvironment) {
        if (saved.first)
            setenv(name.c_str(), saved.second.c_str(), 1);
        else
            unsetenv(name.c_str());
    }
    std::error_code ignored;
    // Tests may leave read-only folders behind; make them writable so they go.
    for (auto it = std::filesystem::recursive_directory_iterator(
             fPath, std::filesystem::directory_options::skip_permission_denied, ignored);
         it != std::filesystem::recursive_directory_iterator(); it.increment(ignored)) {
        if (it->is_directory(ignored) && !it->is_symlink(ignored))
            std::filesystem::permissions(it->path(), std::filesystem::perms::owner_all,
                                         std::filesystem::perm_options::add, ignored);
    }
    std::filesystem::remove_all(fPath, ignored);
}

std::string TestHome::WriteFile(const std::string& relativePath, const std::string& contents,
                                bool executable) const {
    std::filesystem::path path = std::filesystem::path(fPath) / relativePath;
    std::filesystem::create_directories(path.parent_path());
    {
        std::ofstream stream(path, std::ios::binary | std::ios::trunc);
        stream << contents;
    }
    if (executable)
        std::filesystem::permissions(path, std::filesystem::perms::owner_all,
                                     std::filesystem::perm_options::add);
    return path.string();
}

std::string TestHome::MakeFolder(const std::string& relativePath) const {
    std::filesystem::path path = std::filesystem::path(fPath) / relativePath;
    std::filesystem::create_directories(path);
    return path.string();
}

std::string read_file(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream contents;
    contents << stream.rdbuf();
    return contents.str();
}

} // namespace testing_support
