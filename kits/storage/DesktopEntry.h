// A freedesktop desktop entry (.desktop file): its [Desktop Entry] values and
// the command lines its Exec key makes (kit-private).
//
// The parser accepts whatever a file holds: bad lines are skipped, values keep
// their bytes, and only a file without a [Desktop Entry] group, or larger than
// kMaxFileSize, is refused.
#ifndef _STORAGE_DESKTOP_ENTRY_H
#define _STORAGE_DESKTOP_ENTRY_H

#include <SupportDefs.h>

#include <map>
#include <string>
#include <vector>

namespace BPrivate {

class DesktopEntry {
public:
    static const size_t kMaxFileSize = 1024 * 1024;

    DesktopEntry();

    status_t SetTo(const char* path);
    // Parses text as the contents of the file at path (path may be empty).
    status_t SetTo(const char* text, size_t length, const char* path);
    status_t InitCheck() const { return fStatus; }
    const std::string& Path() const { return fPath; }

    bool HasKey(const char* key) const;
    // The value with the string escapes (\s \n \t \r \\) undone; empty if missing.
    std::string String(const char* key) const;
    // The variant for the user's languages (Name[de_DE], Name[de], then Name).
    std::string LocaleString(const char* key) const;
    bool Boolean(const char* key) const;
    // A ;-separated list ("\;" is a literal semicolon); the last ; is optional.
    std::vector<std::string> List(const char* key) const;

    // Type=Application with an Exec line, not Hidden.
    bool IsApplication() const;
    // TryExec names a program that exists (or there is none).
    bool TryExecFound() const;

    // The processes that start the application, one command line each. "values"
    // are file paths for the field codes %f %F %u %U: %f and %u start one process
    // per file. When valuesAreFiles is false they are plain arguments and all go to
    // one process in place of whichever file code there is. Without a file code the
    // values are appended. %i, %c and %k give the icon, name and file location;
    // deprecated codes are dropped. B_BAD_VALUE for an Exec line that cannot be
    // parsed (an unknown code, an unterminated quote, an empty program).
    status_t Commands(const std::vector<std::string>& values, bool valuesAreFiles,
                      std::vector<std::vector<std::string>>* commands) const;

    // $XDG_DATA_HOME/applications, then each $XDG_DATA_DIRS entry's applications.
    static std::vector<std::string> ApplicationFolders();
    // The desktop file ID of a file: its path below an applications folder with
    // "/" turned into "-"; a file elsewhere takes its own name.
    static std::string IDForPath(const char* path);
    // The file of a desktop file ID, first folder first ("a-b.desktop" may also be
    // "a/b.desktop"); empty when there is none or the first one is Hidden.
    static std::string PathForID(const std::string& desktopID);

private:
    struct Piece {
        char code; // '\0' for literal text
        std::string text;
    };
    typedef std::vector<Piece> Token;

    status_t _ParseExec(std::vector<Token>* tokens) const;

    std::map<std::string, std::string> fValues;
    std::string fPath;
    status_t fStatus;
};

} // namespace BPrivate

#endif // _STORAGE_DESKTOP_ENTRY_H
