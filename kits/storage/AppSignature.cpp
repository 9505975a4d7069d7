#include "AppSignature.h"

#include <StorageDefs.h>

#include <string.h>
#include <strings.h>

namespace BPrivate {

const char* const kDesktopSignaturePrefix = "application/x-vnd.desktop-";
const char* const kExecutableSignaturePrefix = "application/x-vnd.exec-";
const char* const kFileManagerSignature = "application/x-vnd.Be-TRAK";

namespace {

bool is_kept(unsigned char byte) {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
           (byte >= '0' && byte <= '9') || byte == '.' || byte == '_' || byte == '+' || byte == '-';
}

std::string escaped(const std::string& prefix, const std::string& text) {
    static const char kHex[] = "0123456789ABCDEF";
    std::string result = prefix;
    for (unsigned char byte : text) {
        if (is_kept(byte)) {
            result += char(byte);
        } else {
            result += '%';
            result += kHex[byte >> 4];
            result += kHex[byte & 0xf];
        }
    }
    if (result.size() >= B_MIME_TYPE_LENGTH)
        return std::string();
    return result;
}

int hex_value(char digit) {
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    return -1;
}

bool unescaped(const char* signature, const char* prefix, std::string* text) {
    if (signature == nullptr || text == nullptr)
        return false;
    size_t prefixLength = strlen(prefix);
    if (strncasecmp(signature, prefix, prefixLength) != 0)
        return false;
    std::string result;
    for (const char* cursor = signature + prefixLength; *cursor != '\0'; cursor++) {
        if (*cursor != '%') {
            if (!is_kept((unsigned char)*cursor))
                return false;
            result += *cursor;
            continue;
        }
        int high = hex_value(cursor[1]);
        int low = high < 0 ? -1 : hex_value(cursor[2]);
        if (low < 0)
            return false;
        char byte = char((high << 4) | low);
        // A NUL would cut the name short when it reaches the C library.
        if (byte == '\0')
            return false;
        result += byte;
        cursor += 2;
    }
    if (result.empty())
        return false;
    *text = result;
    return true;
}

} // namespace

std::string signature_for_desktop_id(const std::string& desktopID) {
    std::string name = desktopID;
    const std::string suffix = ".desktop";
    if (name.size() > suffix.size() &&
        name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0)
        name.resize(name.size() - suffix.size());
    if (name.empty())
        return std::string();
    return escaped(kDesktopSignaturePrefix, name);
}

std::string signature_for_executable(const std::string& path) {
    if (path.empty() || path[0] != '/')
        return std::string();
    return escaped(kExecutableSignaturePrefix, path);
}

bool desktop_id_for_signature(const char* signature, std::string* desktopID) {
    std::string name;
    if (!unescaped(signature, kDesktopSignaturePrefix, &name))
        return false;
    *desktopID = name + ".desktop";
    return true;
}

bool executable_for_signature(const char* signature, std::string* path) {
    std::string decoded;
    if (!unescaped(signature, kExecutableSignaturePrefix, &decoded) || decoded[0] != '/')
        return false;
    *path = decoded;
    return true;
}

} // namespace BPrivate
