#include "DesktopEntry.h"

#include "GioLibrary.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

namespace BPrivate {

namespace {

const char kMainGroup[] = "Desktop Entry";

std::string trimmed(const std::string& text) {
    size_t start = text.find_first_not_of(" \t");
    if (start == std::string::npos)
        return std::string();
    size_t end = text.find_last_not_of(" \t");
    return text.substr(start, end - start + 1);
}

// Undoes \s \n \t \r \\; with keepSemicolon, "\;" stays as it is for List().
std::string unescaped(const std::string& value, bool keepSemicolon) {
    std::string result;
    result.reserve(value.size());
    for (size_t i = 0; i < value.size(); i++) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            result += value[i];
            continue;
        }
        char next = value[++i];
        switch (next) {
        case 's':
            result += ' ';
            break;
        case 'n':
            result += '\n';
            break;
        case 't':
            result += '\t';
            break;
        case 'r':
            result += '\r';
            break;
        case '\\':
            result += keepSemicolon ? "\\\\" : "\\";
            break;
        case ';':
            result += keepSemicolon ? "\\;" : ";";
            break;
        default:
            // Not an escape of the format: keep both characters.
            result += '\\';
            result += next;
            break;
        }
    }
    return result;
}

bool is_executable_file(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
           access(path.c_str(), X_OK) == 0;
}

bool program_exists(const std::string& program) {
    if (program.empty())
        return false;
    if (program.find('/') != std::string::npos)
        return is_executable_file(program);
    const char* searchPath = getenv("PATH");
    std::string folders = searchPath != nullptr ? searchPath : "/usr/local/bin:/usr/bin:/bin";
    size_t start = 0;
    while (start <= folders.size()) {
        size_t end = folders.find(':', start);
        if (end == std::string::npos)
            end = folders.size();
        std::string folder = folders.substr(start, end - start);
        if (!folder.empty() && is_executable_file(folder + "/" + program))
            return true;
        start = end + 1;
    }
    return false;
}

std::string absolute_or_empty(const char* value) {
    if (value == nullptr || value[0] != '/')
        return std::string();
    return value;
}

bool is_directory(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

std::string find_in_folder(const std::string& folder, const std::string& name, int depth) {
    std::string candidate = folder + "/" + name;
    struct stat info;
    if (stat(candidate.c_str(), &info) == 0 && S_ISREG(info.st_mode))
        return candidate;
    // "kde-foo.desktop" may live as kde/foo.desktop; a depth limit keeps a crafted
    // ID with many dashes from exploring too far.
    if (depth >= 8)
        return std::string();
    for (size_t dash = name.find('-'); dash != std::string::npos; dash = name.find('-', dash + 1)) {
        std::string prefix = name.substr(0, dash);
        if (prefix.empty() || !is_directory(folder + "/" + prefix))
            continue;
        std::string found = find_in_folder(folder + "/" + prefix, name.substr(dash + 1), depth + 1);
        if (!found.empty())
            return found;
    }
    return std::string();
}

} // namespace

DesktopEntry::DesktopEntry() : fStatus(B_NO_INIT) {}

status_t DesktopEntry::SetTo(const char* path) {
    fValues.clear();
    fPath.clear();
    fStatus = B_BAD_VALUE;
    if (path == nullptr)
        return fStatus;
    int descriptor = open(path, O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return fStatus = B_FROM_POSIX_ERROR(errno);
    struct stat info;
    if (fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode)) {
        close(descriptor);
        return fStatus = B_BAD_VALUE;
    }
    if (info.st_size > off_t(kMaxFileSize)) {
        close(descriptor);
        return fStatus = B_BAD_DATA;
    }
    std::string text;
    char buffer[8192];
    while (text.size() <= kMaxFileSize) {
        ssize_t bytes = read(descriptor, buffer, sizeof(buffer));
        if (bytes < 0 && errno == EINTR)
            continue;
        if (bytes < 0) {
            status_t error = B_FROM_POSIX_ERROR(errno);
            close(descriptor);
            return fStatus = error;
        }
        if (bytes == 0)
            break;
        text.append(buffer, size_t(bytes));
    }
    close(descriptor);
    if (text.size() > kMaxFileSize)
        return fStatus = B_BAD_DATA;
    return SetTo(text.data(), text.size(), path);
}

status_t DesktopEntry::SetTo(const char* text, size_t length, const char* path) {
    fValues.clear();
    fPath = path != nullptr ? path : "";
    if (text == nullptr || length > kMaxFileSize)
        return fStatus = B_BAD_VALUE;

    bool sawMainGroup = false;
    bool inMainGroup = false;
    size_t start = 0;
    while (start < length) {
        const char* lineEnd = static_cast<const char*>(memchr(text + start, '\n', length - start));
        size_t end = lineEnd != nullptr ? size_t(lineEnd - text) : length;
        std::string line(text + start, end - start);
        start = end + 1;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        std::string content = trimmed(line);
        if (content.empty() || content[0] == '#')
            continue;
        if (content[0] == '[') {
            size_t close = content.find(']');
            if (close == std::string::npos)
                continue;
            inMainGroup =
                content.compare(1, close - 1, kMainGroup) == 0 && close - 1 == strlen(kMainGroup);
            // A second [Desktop Entry] group does not add to the first.
            if (inMainGroup && sawMainGroup)
                inMainGroup = false;
            else if (inMainGroup)
                sawMainGroup = true;
            continue;
        }
        if (!inMainGroup)
            continue;
        size_t equals = line.find('=');
        if (equals == std::string::npos)
            continue;
        std::string key = trimmed(line.substr(0, equals));
        if (key.empty())
            continue;
        std::string value = line.substr(equals + 1);
        size_t valueStart = value.find_first_not_of(" \t");
        value = valueStart == std::string::npos ? std::string() : value.substr(valueStart);
        // The first occurrence of a key is the one that counts.
        fValues.emplace(key, value);
    }
    return fStatus = sawMainGroup ? B_OK : B_BAD_DATA;
}

bool DesktopEntry::HasKey(const char* key) const {
    return key != nullptr && fValues.find(key) != fValues.end();
}

std::string DesktopEntry::String(const char* key) const {
    if (key == nullptr)
        return std::string();
    auto found = fValues.find(key);
    if (found == fValues.end())
        return std::string();
    return unescaped(found->second, false);
}

std::string DesktopEntry::LocaleString(const char* key) const {
    if (key == nullptr)
        return std::string();
    // GLib's list covers $LANGUAGE, the locale variables and their shorter forms
    // ("de_DE", "de") the way every other desktop program reads them.
    const gchar* const* languages = GioLibrary::Get().g_get_language_names();
    for (const gchar* const* language = languages; *language != nullptr; language++) {
        if (strcmp(*language, "C") == 0)
            break;
        std::string localized = std::string(key) + "[" + *language + "]";
        if (HasKey(localized.c_str()))
            return String(localized.c_str());
    }
    return String(key);
}

bool DesktopEntry::Boolean(const char* key) const {
    std::string value = trimmed(String(key));
    return value == "true" || value == "1";
}

std::vector<std::string> DesktopEntry::List(const char* key) const {
    std::vector<std::string> result;
    if (key == nullptr)
        return result;
    auto found = fValues.find(key);
    if (found == fValues.end())
        return result;
    std::string value = unescaped(found->second, true);
    std::string item;
    for (size_t i = 0; i < value.size(); i++) {
        if (value[i] == '\\' && i + 1 < value.size() &&
            (value[i + 1] == ';' || value[i + 1] == '\\')) {
            item += value[++i];
        } else if (value[i] == ';') {
            result.push_back(item);
            item.clear();
        } else {
            item += value[i];
        }
    }
    if (!item.empty())
        result.push_back(item);
    return result;
}

bool DesktopEntry::IsApplication() const {
    return fStatus == B_OK && String("Type") == "Application" && !String("Exec").empty() &&
           !Boolean("Hidden");
}

bool DesktopEntry::TryExecFound() const {
    std::string program = String("TryExec");
    return program.empty() || program_exists(program);
}

status_t DesktopEntry::_ParseExec(std::vector<Token>* tokens) const {
    std::string exec = String("Exec");
    Token token;
    bool started = false;
    bool quoted = false;
    // "" is an empty argument, a dropped deprecated code is none at all.
    bool sawQuotes = false;
    auto addText = [&token](char character) {
        if (token.empty() || token.back().code != '\0')
            token.push_back(Piece{'\0', std::string()});
        token.back().text += character;
    };
    for (size_t i = 0; i < exec.size(); i++) {
        char character = exec[i];
        if (quoted) {
            if (character == '"') {
                quoted = false;
            } else if (character == '\\' && i + 1 < exec.size() &&
                       strchr("\"`$\\", exec[i + 1]) != nullptr) {
                addText(exec[++i]);
            } else if (character == '%' && i + 1 < exec.size() && exec[i + 1] == '%') {
                addText('%');
                i++;
            } else {
                // Field codes inside quotes are left as they are written.
                addText(character);
            }
            continue;
        }
        if (character == ' ' || character == '\t' || character == '\n') {
            if (started && (!token.empty() || sawQuotes))
                tokens->push_back(token);
            token.clear();
            started = false;
            sawQuotes = false;
            continue;
        }
        started = true;
        if (character == '"') {
            quoted = true;
            sawQuotes = true;
        } else if (character == '\\' && i + 1 < exec.size()) {
            addText(exec[++i]);
        } else if (character == '%') {
            if (i + 1 == exec.size())
                return B_BAD_VALUE;
            char code = exec[++i];
            if (code == '%')
                addText('%');
            else if (strchr("fFuUick", code) != nullptr)
                token.push_back(Piece{code, std::string()});
            else if (strchr("dDnNvm", code) == nullptr)
                return B_BAD_VALUE;
        } else {
            addText(character);
        }
    }
    if (quoted)
        return B_BAD_VALUE;
    if (started && (!token.empty() || sawQuotes))
        tokens->push_back(token);
    return B_OK;
}

status_t DesktopEntry::Commands(const std::vector<std::string>& values, bool valuesAreFiles,
                                std::vector<std::vector<std::string>>* commands) const {
    if (commands == nullptr)
        return B_BAD_VALUE;
    commands->clear();
    if (fStatus != B_OK)
        return fStatus;

    std::vector<Token> tokens;
    status_t status = _ParseExec(&tokens);
    if (status != B_OK)
        return status;

    char fileCode = '\0';
    for (const Token& token : tokens) {
        for (const Piece& piece : token) {
            if (fileCode == '\0' && strchr("fFuU", piece.code) != nullptr && piece.code != '\0')
                fileCode = piece.code;
        }
    }
    bool oneValuePerProcess = valuesAreFiles && (fileCode == 'f' || fileCode == 'u');
    std::vector<std::vector<std::string>> valueSets;
    if (oneValuePerProcess && values.size() > 1) {
        for (const std::string& value : values)
            valueSets.push_back({value});
    } else {
        valueSets.push_back(values);
    }

    std::string icon = String("Icon");
    std::string name = LocaleString("Name");
    for (const std::vector<std::string>& set : valueSets) {
        std::vector<std::string> command;
        bool usedFileCode = false;
        for (const Token& token : tokens) {
            // A code standing alone may become several arguments or none.
            if (token.size() == 1 && token[0].code != '\0') {
                char code = token[0].code;
                if (strchr("fFuU", code) != nullptr) {
                    if (code != fileCode)
                        continue;
                    usedFileCode = true;
                    if (code == 'F' || code == 'U' || !valuesAreFiles)
                        command.insert(command.end(), set.begin(), set.end());
                    else if (!set.empty())
                        command.push_back(set.front());
                } else if (code == 'i') {
                    if (!icon.empty()) {
                        command.push_back("--icon");
                        command.push_back(icon);
                    }
                } else if (code == 'c') {
                    command.push_back(name);
                } else if (code == 'k') {
                    command.push_back(fPath);
                }
                continue;
            }
            std::string argument;
            for (const Piece& piece : token) {
                switch (piece.code) {
                case '\0':
                    argument += piece.text;
                    break;
                case 'i':
                    argument += icon;
                    break;
                case 'c':
                    argument += name;
                    break;
                case 'k':
                    argument += fPath;
                    break;
                default:
                    // A file code inside a longer argument takes one file.
                    if (piece.code == fileCode) {
                        usedFileCode = true;
                        if (!set.empty())
                            argument += set.front();
                    }
                    break;
                }
            }
            command.push_back(argument);
        }
        if (!usedFileCode)
            command.insert(command.end(), set.begin(), set.end());
        if (command.empty() || command[0].empty())
            return B_BAD_VALUE;
        commands->push_back(command);
    }
    return B_OK;
}

std::vector<std::string> DesktopEntry::ApplicationFolders() {
    std::vector<std::string> folders;
    std::string dataHome = absolute_or_empty(getenv("XDG_DATA_HOME"));
    if (dataHome.empty()) {
        std::string home = absolute_or_empty(getenv("HOME"));
        if (!home.empty())
            dataHome = home + "/.local/share";
    }
    if (!dataHome.empty())
        folders.push_back(dataHome + "/applications");

    const char* dataDirs = getenv("XDG_DATA_DIRS");
    std::string list =
        dataDirs != nullptr && dataDirs[0] != '\0' ? dataDirs : "/usr/local/share/:/usr/share/";
    size_t start = 0;
    while (start <= list.size()) {
        size_t end = list.find(':', start);
        if (end == std::string::npos)
            end = list.size();
        std::string folder = list.substr(start, end - start);
        start = end + 1;
        // Relative entries are invalid and ignored.
        if (folder.empty() || folder[0] != '/')
            continue;
        while (folder.size() > 1 && folder.back() == '/')
            folder.pop_back();
        folders.push_back(folder + "/applications");
    }
    return folders;
}

std::string DesktopEntry::IDForPath(const char* path) {
    if (path == nullptr || path[0] == '\0')
        return std::string();
    std::string file = path;
    char* resolved = realpath(path, nullptr);
    std::string canonical = resolved != nullptr ? resolved : file;
    free(resolved);
    for (const std::string& folder : ApplicationFolders()) {
        char* resolvedFolder = realpath(folder.c_str(), nullptr);
        std::string canonicalFolder = resolvedFolder != nullptr ? resolvedFolder : folder;
        free(resolvedFolder);
        for (const std::string* candidate : {&file, &canonical}) {
            for (const std::string* base :
                 std::initializer_list<const std::string*>{&folder, &canonicalFolder}) {
                if (candidate->size() > base->size() + 1 &&
                    candidate->compare(0, base->size(), *base) == 0 &&
                    (*candidate)[base->size()] == '/') {
                    std::string id = candidate->substr(base->size() + 1);
                    for (char& character : id) {
                        if (character == '/')
                            character = '-';
                    }
                    return id;
                }
            }
        }
    }
    size_t slash = file.rfind('/');
    return slash == std::string::npos ? file : file.substr(slash + 1);
}

std::string DesktopEntry::PathForID(const std::string& desktopID) {
    if (desktopID.empty() || desktopID.find('/') != std::string::npos)
        return std::string();
    for (const std::string& folder : ApplicationFolders()) {
        std::string found = find_in_folder(folder, desktopID, 0);
        if (found.empty())
            continue;
        // The first file of an ID hides the others, also when it says Hidden.
        DesktopEntry entry;
        if (entry.SetTo(found.c_str()) == B_OK && entry.Boolean("Hidden"))
            return std::string();
        return found;
    }
    return std::string();
}

} // namespace BPrivate
