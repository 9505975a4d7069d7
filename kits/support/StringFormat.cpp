// BString: case changes, escaping and formatting numbers.
#include <String.h>

#include <ctype.h>
#include <stdio.h>
#include <string.h>

namespace {

bool contains_byte(const char* set, char c) {
    return c != '\0' && strchr(set, c) != NULL;
}

} // namespace

// #pragma mark - Case

BString& BString::ToLower() {
    for (int32 index = 0; index < fLength; index++)
        fPrivateData[index] = (char)tolower((unsigned char)fPrivateData[index]);
    return *this;
}

BString& BString::ToUpper() {
    for (int32 index = 0; index < fLength; index++)
        fPrivateData[index] = (char)toupper((unsigned char)fPrivateData[index]);
    return *this;
}

BString& BString::Capitalize() {
    ToLower();
    if (fLength > 0)
        fPrivateData[0] = (char)toupper((unsigned char)fPrivateData[0]);
    return *this;
}

BString& BString::CapitalizeEachWord() {
    bool wordStart = true;
    for (int32 index = 0; index < fLength; index++) {
        unsigned char c = (unsigned char)fPrivateData[index];
        if (isalpha(c)) {
            fPrivateData[index] = (char)(wordStart ? toupper(c) : tolower(c));
            wordStart = false;
        } else {
            wordStart = true;
        }
    }
    return *this;
}

// #pragma mark - Escaping

BString& BString::CharacterEscape(const char* original, const char* setOfCharsToEscape,
                                  char escapeWith) {
    SetTo(original);
    return CharacterEscape(setOfCharsToEscape, escapeWith);
}

BString& BString::CharacterEscape(const char* setOfCharsToEscape, char escapeWith) {
    if (setOfCharsToEscape == NULL || fLength == 0)
        return *this;

    BString escaped;
    for (int32 index = 0; index < fLength; index++) {
        if (contains_byte(setOfCharsToEscape, fPrivateData[index]))
            escaped.Append(escapeWith, 1);
        escaped.Append(fPrivateData[index], 1);
    }
    return Adopt(escaped);
}

BString& BString::CharacterDeescape(const char* original, char escapeChar) {
    SetTo(original);
    return CharacterDeescape(escapeChar);
}

BString& BString::CharacterDeescape(char escapeChar) {
    int32 kept = 0;
    for (int32 index = 0; index < fLength; index++) {
        // The escape byte goes; the byte after it is kept whatever it is.
        if (fPrivateData[index] == escapeChar && index + 1 < fLength)
            index++;
        fPrivateData[kept++] = fPrivateData[index];
    }
    return Truncate(kept);
}

// #pragma mark - Formatting

BString& BString::operator<<(const char* string) {
    return Append(string);
}

BString& BString::operator<<(const BString& string) {
    return Append(string);
}

BString& BString::operator<<(char c) {
    return Append(c, 1);
}

BString& BString::operator<<(bool value) {
    return Append(value ? "true" : "false");
}

BString& BString::operator<<(int value) {
    char buffer[32];
    snprintf(buffer, sizeof(buffer), "%d", value);
    return Append(buffer);
}

BString& BString::operator<<(unsigned int value) {
    char buffer[32];
    snprintf(buffer, sizeof(buffer), "%u", value);
    return Append(buffer);
}

BString& BString::operator<<(long value) {
    char buffer[32];
    snprintf(buffer, sizeof(buffer), "%ld", value);
    return Append(buffer);
}

BString& BString::operator<<(unsigned long value) {
    char buffer[32];
    snprintf(buffer, sizeof(buffer), "%lu", value);
    return Append(buffer);
}

BString& BString::operator<<(long long value) {
    char buffer[32];
    snprintf(buffer, sizeof(buffer), "%lld", value);
    return Append(buffer);
}

BString& BString::operator<<(unsigned long long value) {
    char buffer[32];
    snprintf(buffer, sizeof(buffer), "%llu", value);
    return Append(buffer);
}

BString& BString::operator<<(float value) {
    return *this << (double)value;
}

BString& BString::operator<<(double value) {
    // Large values print all their digits; 400 bytes hold any double in %.2f.
    char buffer[400];
    snprintf(buffer, sizeof(buffer), "%.2f", value);
    return Append(buffer);
}
