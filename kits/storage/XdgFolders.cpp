#include "XdgFolders.h"

#include "StorageSupport.h"

#include <pwd.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <memory>

namespace {

struct FileCloser {
    void operator()(FILE* file) const { fclose(file); }
};

// getline(3) grows its buffer by realloc(), so the owner frees whatever it holds last.
struct LineBuffer {
    char* bytes = NULL;
    size_t capacity = 0;
    ~LineBuffer() { free(bytes); }
};

} // namespace

namespace BPrivate {

std::string home_folder() {
    const char* home = getenv("HOME");
    if (home != nullptr && home[0] == '/')
        return home;
    struct passwd entry;
    struct passwd* found = nullptr;
    char buffer[4096];
    if (getpwuid_r(getuid(), &entry, buffer, sizeof(buffer), &found) == 0 && found != nullptr &&
        found->pw_dir != nullptr && found->pw_dir[0] == '/')
        return found->pw_dir;
    return "/";
}

std::string xdg_home_folder(const char* variable, const char* fallbackBelowHome) {
    const char* value = getenv(variable);
    if (value != nullptr && value[0] == '/')
        return value;
    return join_path(home_folder(), fallbackBelowHome);
}

std::string xdg_user_folder(const char* key, const char* fallbackBelowHome) {
    std::string home = home_folder();
    std::string wanted = std::string("XDG_") + key + "_DIR=";
    std::string result;
    std::string path = xdg_home_folder("XDG_CONFIG_HOME", ".config") + "/user-dirs.dirs";
    std::unique_ptr<FILE, FileCloser> file(fopen(path.c_str(), "re"));
    LineBuffer buffer;
    ssize_t length;
    while (file != NULL && (length = getline(&buffer.bytes, &buffer.capacity, file.get())) >= 0) {
        std::string line(buffer.bytes, (size_t)length);
        if (!line.empty() && line.back() == '\n')
            line.pop_back();
        size_t start = line.find_first_not_of(" \t");
        if (start == std::string::npos || line.compare(start, wanted.size(), wanted) != 0)
            continue;
        std::string value = line.substr(start + wanted.size());
        size_t end = value.find_last_not_of(" \t\r");
        value = end == std::string::npos ? std::string() : value.substr(0, end + 1);
        if (value.size() < 2 || value.front() != '"' || value.back() != '"')
            continue;
        value = value.substr(1, value.size() - 2);
        std::string unescaped;
        for (size_t i = 0; i < value.size(); i++) {
            if (value[i] == '\\' && i + 1 < value.size())
                i++;
            unescaped += value[i];
        }
        if (unescaped.compare(0, 5, "$HOME") == 0 && (unescaped.size() == 5 || unescaped[5] == '/'))
            unescaped = home + unescaped.substr(5);
        else if (unescaped.empty() || unescaped[0] != '/')
            continue;
        while (unescaped.size() > 1 && unescaped.back() == '/')
            unescaped.pop_back();
        // The later line wins, as in the tool that writes the file.
        result = unescaped;
    }
    if (result.empty() && fallbackBelowHome != nullptr)
        result = join_path(home, fallbackBelowHome);
    return result;
}

std::string home_trash_folder() {
    return xdg_home_folder("XDG_DATA_HOME", ".local/share") + "/Trash";
}

} // namespace BPrivate
