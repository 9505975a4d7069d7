#include "IconTheme.h"

#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string_view>
#include <unordered_map>

namespace BPrivate {

namespace {

const char* const kExtensions[] = {".png", ".svg"};
const size_t kMaxIndexSize = 4 * 1024 * 1024;

enum directory_type { kFixed, kScalable, kThreshold };

struct ThemeDirectory {
    std::string name;
    int32 size = 0;
    int32 minSize = 0;
    int32 maxSize = 0;
    int32 threshold = 2;
    int32 scale = 1;
    directory_type type = kThreshold;

    bool MatchesSize(int32 wanted) const {
        switch (type) {
        case kFixed:
            return wanted == size;
        case kScalable:
            return wanted >= minSize && wanted <= maxSize;
        case kThreshold:
            return wanted >= size - threshold && wanted <= size + threshold;
        }
        return false;
    }

    int32 SizeDistance(int32 wanted) const {
        int32 low = size;
        int32 high = size;
        if (type == kScalable) {
            low = minSize;
            high = maxSize;
        } else if (type == kThreshold) {
            low = size - threshold;
            high = size + threshold;
        }
        if (wanted < low)
            return low - wanted;
        if (wanted > high)
            return wanted - high;
        return 0;
    }
};

struct Theme {
    std::vector<std::string> parents;
    std::vector<std::string> roots; // every base/<theme> folder that exists
    // The folders are read from the index only when the theme is first searched:
    // a theme late in the chain (hicolor's index is large) often never is.
    std::string indexPath;
    bool directoriesRead = false;
    std::vector<ThemeDirectory> directories;
};

std::string_view trimmed_view(std::string_view text) {
    size_t start = text.find_first_not_of(" \t\r");
    if (start == std::string_view::npos)
        return std::string_view();
    size_t end = text.find_last_not_of(" \t\r");
    return text.substr(start, end - start + 1);
}

std::string trimmed(const std::string& text) {
    return std::string(trimmed_view(text));
}

bool read_small_file(const std::string& path, std::string* text) {
    FILE* file = fopen(path.c_str(), "rbe");
    if (file == nullptr)
        return false;
    char buffer[16384];
    size_t bytes;
    text->clear();
    while ((bytes = fread(buffer, 1, sizeof(buffer), file)) > 0) {
        text->append(buffer, bytes);
        if (text->size() > kMaxIndexSize) {
            fclose(file);
            return false;
        }
    }
    fclose(file);
    return true;
}

// Calls visit(group, key, value) for every "key=value" line of an ini text,
// trimmed and without copying: the index of a large theme runs to thousands of
// lines, and it is read before the first icon of a program can show.
template <typename Visit>
void for_each_ini_entry(std::string_view text, Visit visit) {
    std::string_view group;
    while (!text.empty()) {
        size_t end = text.find('\n');
        std::string_view line = trimmed_view(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        if (line.empty() || line[0] == '#')
            continue;
        if (line[0] == '[') {
            size_t close = line.find(']');
            group =
                close == std::string_view::npos ? std::string_view() : line.substr(1, close - 1);
            continue;
        }
        size_t equals = line.find('=');
        if (equals == std::string_view::npos || group.empty())
            continue;
        visit(group, trimmed_view(line.substr(0, equals)), trimmed_view(line.substr(equals + 1)));
    }
}

// The first value of a key wins, as in every desktop file reader.
void keep_first(std::optional<std::string_view>* slot, std::string_view value) {
    if (!slot->has_value())
        *slot = value;
}

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> items;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find(separator, start);
        if (end == std::string::npos)
            end = text.size();
        std::string item = trimmed(text.substr(start, end - start));
        if (!item.empty())
            items.push_back(item);
        start = end + 1;
    }
    return items;
}

int32 number(const std::optional<std::string_view>& text, int32 fallback) {
    if (!text.has_value())
        return fallback;
    std::string value(*text);
    char* end = nullptr;
    long parsed = strtol(value.c_str(), &end, 10);
    if (end == value.c_str() || parsed < 0 || parsed > 65536)
        return fallback;
    return int32(parsed);
}

bool is_directory(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool is_file(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

std::string absolute_variable(const char* name) {
    const char* value = getenv(name);
    return value != nullptr && value[0] == '/' ? value : std::string();
}

class ThemeSet {
public:
    ThemeSet() {
        std::string home = absolute_variable("HOME");
        if (!home.empty())
            fBases.push_back(home + "/.icons");
        std::string dataHome = absolute_variable("XDG_DATA_HOME");
        if (dataHome.empty() && !home.empty())
            dataHome = home + "/.local/share";
        if (!dataHome.empty())
            fBases.push_back(dataHome + "/icons");
        const char* dataDirs = getenv("XDG_DATA_DIRS");
        std::string list =
            dataDirs != nullptr && dataDirs[0] != '\0' ? dataDirs : "/usr/local/share/:/usr/share/";
        for (std::string folder : split(list, ':')) {
            if (folder[0] != '/')
                continue;
            while (folder.size() > 1 && folder.back() == '/')
                folder.pop_back();
            fBases.push_back(folder + "/icons");
        }

        std::vector<std::string> wanted;
        std::string configHome = absolute_variable("XDG_CONFIG_HOME");
        if (configHome.empty() && !home.empty())
            configHome = home + "/.config";
        std::string settings;
        if (!configHome.empty() &&
            read_small_file(configHome + "/gtk-3.0/settings.ini", &settings)) {
            std::optional<std::string_view> name;
            for_each_ini_entry(settings, [&name](std::string_view group, std::string_view key,
                                                 std::string_view value) {
                if (group == "Settings" && key == "gtk-icon-theme-name")
                    keep_first(&name, value);
            });
            if (name.has_value() && !name->empty())
                wanted.emplace_back(*name);
        }
        wanted.push_back("Adwaita");
        std::set<std::string> visited;
        for (const std::string& name : wanted)
            _AddToChain(name, visited, 0);
        fChain.erase(std::remove(fChain.begin(), fChain.end(), "hicolor"), fChain.end());
        if (_Load("hicolor") != nullptr)
            fChain.push_back("hicolor");
    }

    std::string Lookup(const std::vector<std::string>& names, int32 size) {
        std::string key = std::to_string(size);
        for (const std::string& name : names)
            key += "\n" + name;
        auto answer = fAnswers.find(key);
        if (answer != fAnswers.end())
            return answer->second;

        std::string found;
        for (const std::string& themeName : fChain) {
            const Theme* theme = _LoadDirectories(themeName);
            for (size_t i = 0; theme != nullptr && found.empty() && i < names.size(); i++)
                found = _LookupInTheme(*theme, names[i], size);
            if (!found.empty())
                break;
        }
        for (size_t i = 0; found.empty() && i < names.size(); i++)
            found = _LookupUnthemed(names[i]);
        fAnswers.emplace(key, found);
        return found;
    }

private:
    void _AddToChain(const std::string& name, std::set<std::string>& visited, int depth) {
        if (depth > 16 || !visited.insert(name).second)
            return;
        const Theme* theme = _Load(name);
        if (theme == nullptr)
            return;
        fChain.push_back(name);
        for (const std::string& parent : theme->parents)
            _AddToChain(parent, visited, depth + 1);
    }

    Theme* _Load(const std::string& name) {
        auto loaded = fThemes.find(name);
        if (loaded != fThemes.end())
            return loaded->second.get();
        std::unique_ptr<Theme> theme;
        // Names with slashes or dots would leave the base folders.
        if (!name.empty() && name.find('/') == std::string::npos && name != "." && name != "..") {
            std::vector<std::string> roots;
            for (const std::string& base : fBases) {
                if (is_directory(base + "/" + name))
                    roots.push_back(base + "/" + name);
            }
            std::string text;
            for (const std::string& root : roots) {
                if (read_small_file(root + "/index.theme", &text)) {
                    theme.reset(new Theme);
                    theme->roots = roots;
                    theme->parents = _ReadParents(text);
                    theme->indexPath = root + "/index.theme";
                    break;
                }
            }
        }
        Theme* result = theme.get();
        fThemes.emplace(name, std::move(theme));
        return result;
    }

    const Theme* _LoadDirectories(const std::string& name) {
        Theme* theme = _Load(name);
        if (theme != nullptr && !theme->directoriesRead) {
            theme->directoriesRead = true;
            std::string text;
            if (read_small_file(theme->indexPath, &text))
                _ReadDirectories(text, theme);
        }
        return theme;
    }

    static std::vector<std::string> _ReadParents(const std::string& text) {
        std::optional<std::string_view> inherits;
        for_each_ini_entry(text, [&inherits](std::string_view group, std::string_view key,
                                             std::string_view value) {
            if (group == "Icon Theme" && key == "Inherits")
                keep_first(&inherits, value);
        });
        return inherits.has_value() ? split(std::string(*inherits), ',')
                                    : std::vector<std::string>();
    }

    static void _ReadDirectories(const std::string& text, Theme* theme) {
        enum { kSize, kScale, kMinSize, kMaxSize, kThreshold, kType, kKeyCount };
        static const char* const kKeys[kKeyCount] = {"Size",    "Scale",     "MinSize",
                                                     "MaxSize", "Threshold", "Type"};
        typedef std::array<std::optional<std::string_view>, kKeyCount> DirectoryKeys;

        std::optional<std::string_view> directoryList;
        std::unordered_map<std::string_view, DirectoryKeys> groups;
        for_each_ini_entry(
            text, [&](std::string_view group, std::string_view key, std::string_view value) {
                if (group == "Icon Theme") {
                    if (key == "Directories")
                        keep_first(&directoryList, value);
                    return;
                }
                for (int32 i = 0; i < kKeyCount; i++) {
                    if (key == kKeys[i]) {
                        keep_first(&groups[group][i], value);
                        return;
                    }
                }
            });

        std::vector<std::string> names;
        if (directoryList.has_value())
            names = split(std::string(*directoryList), ',');
        for (const std::string& name : names) {
            auto group = groups.find(name);
            if (group == groups.end())
                continue;
            const DirectoryKeys& keys = group->second;
            ThemeDirectory directory;
            directory.name = name;
            directory.size = number(keys[kSize], 0);
            if (directory.size <= 0)
                continue;
            directory.scale = number(keys[kScale], 1);
            directory.minSize = number(keys[kMinSize], directory.size);
            directory.maxSize = number(keys[kMaxSize], directory.size);
            directory.threshold = number(keys[kThreshold], 2);
            if (keys[kType] == "Fixed")
                directory.type = kFixed;
            else if (keys[kType] == "Scalable")
                directory.type = kScalable;
            theme->directories.push_back(directory);
        }
    }

    bool _FolderExists(const std::string& path) {
        auto known = fFolders.find(path);
        if (known != fFolders.end())
            return known->second;
        bool exists = is_directory(path);
        fFolders.emplace(path, exists);
        return exists;
    }

    std::string _LookupInTheme(const Theme& theme, const std::string& name, int32 size) {
        if (name.empty() || name.find('/') != std::string::npos)
            return std::string();
        for (const ThemeDirectory& directory : theme.directories) {
            if (directory.scale != 1 || !directory.MatchesSize(size))
                continue;
            for (const std::string& root : theme.roots) {
                std::string folder = root + "/" + directory.name;
                if (!_FolderExists(folder))
                    continue;
                for (const char* extension : kExtensions) {
                    std::string path = folder + "/" + name + extension;
                    if (is_file(path))
                        return path;
                }
            }
        }
        std::string closest;
        int32 closestDistance = INT32_MAX;
        for (const ThemeDirectory& directory : theme.directories) {
            if (directory.scale != 1)
                continue;
            int32 distance = directory.SizeDistance(size);
            if (distance >= closestDistance)
                continue;
            for (const std::string& root : theme.roots) {
                std::string folder = root + "/" + directory.name;
                if (!_FolderExists(folder))
                    continue;
                for (const char* extension : kExtensions) {
                    std::string path = folder + "/" + name + extension;
                    if (distance < closestDistance && is_file(path)) {
                        closest = path;
                        closestDistance = distance;
                    }
                }
            }
        }
        return closest;
    }

    std::string _LookupUnthemed(const std::string& name) {
        if (name.empty() || name.find('/') != std::string::npos)
            return std::string();
        std::vector<std::string> folders = fBases;
        folders.push_back("/usr/share/pixmaps");
        for (const std::string& folder : folders) {
            for (const char* extension : kExtensions) {
                std::string path = folder + "/" + name + extension;
                if (is_file(path))
                    return path;
            }
        }
        return std::string();
    }

    std::vector<std::string> fBases;
    std::vector<std::string> fChain;
    std::map<std::string, std::unique_ptr<Theme>> fThemes;
    std::map<std::string, bool> fFolders;
    std::map<std::string, std::string> fAnswers;
};

} // namespace

std::string IconTheme::Lookup(const std::vector<std::string>& names, int32 size) {
    // The theme set is read once, at the first lookup, and kept for the life of
    // the process (it is never destroyed, so lookups may run until the very end).
    static std::mutex* sLock = new std::mutex;
    static ThemeSet* sThemes = nullptr;
    std::lock_guard<std::mutex> guard(*sLock);
    if (sThemes == nullptr)
        sThemes = new ThemeSet;
    return sThemes->Lookup(names, size);
}

} // namespace BPrivate
