// BString: comparing, searching and replacing. Searches run over the string's bytes up
// to its length, so they stay inside the string even when it holds NUL bytes.
#include <String.h>

#include <ctype.h>
#include <string.h>

namespace {

int32 length_of(const char* string) {
    size_t length = strlen(string);
    return length > INT32_MAX ? INT32_MAX : (int32)length;
}

bool matches_at(const char* text, const char* pattern, int32 length, bool ignoreCase) {
    if (!ignoreCase)
        return memcmp(text, pattern, length) == 0;
    for (int32 index = 0; index < length; index++) {
        if (tolower((unsigned char)text[index]) != tolower((unsigned char)pattern[index]))
            return false;
    }
    return true;
}

const char* safe(const char* string) {
    return string != NULL ? string : "";
}

int32 clamped_length(const char* string) {
    return string != NULL ? length_of(string) : 0;
}

} // namespace

// #pragma mark - Comparing

bool BString::operator<(const BString& string) const {
    return Compare(string) < 0;
}

bool BString::operator<=(const BString& string) const {
    return Compare(string) <= 0;
}

bool BString::operator==(const BString& string) const {
    return fLength == string.fLength && Compare(string) == 0;
}

bool BString::operator>=(const BString& string) const {
    return Compare(string) >= 0;
}

bool BString::operator>(const BString& string) const {
    return Compare(string) > 0;
}

bool BString::operator!=(const BString& string) const {
    return !(*this == string);
}

bool BString::operator<(const char* string) const {
    return Compare(string) < 0;
}

bool BString::operator<=(const char* string) const {
    return Compare(string) <= 0;
}

bool BString::operator==(const char* string) const {
    return Compare(string) == 0;
}

bool BString::operator>=(const char* string) const {
    return Compare(string) >= 0;
}

bool BString::operator>(const char* string) const {
    return Compare(string) > 0;
}

bool BString::operator!=(const char* string) const {
    return Compare(string) != 0;
}

int BString::Compare(const BString& string) const {
    return strcmp(String(), string.String());
}

int BString::Compare(const char* string) const {
    return strcmp(String(), safe(string));
}

int BString::Compare(const BString& string, int32 length) const {
    return Compare(string.String(), length);
}

int BString::Compare(const char* string, int32 length) const {
    if (length < 0)
        return Compare(string);
    return strncmp(String(), safe(string), (size_t)length);
}

int BString::ICompare(const BString& string) const {
    return strcasecmp(String(), string.String());
}

int BString::ICompare(const char* string) const {
    return strcasecmp(String(), safe(string));
}

int BString::ICompare(const BString& string, int32 length) const {
    return ICompare(string.String(), length);
}

int BString::ICompare(const char* string, int32 length) const {
    if (length < 0)
        return ICompare(string);
    return strncasecmp(String(), safe(string), (size_t)length);
}

bool BString::StartsWith(const BString& string) const {
    return string.fLength <= fLength && memcmp(String(), string.String(), string.fLength) == 0;
}

bool BString::StartsWith(const char* string) const {
    int32 length = clamped_length(string);
    return length <= fLength && memcmp(String(), safe(string), length) == 0;
}

bool BString::EndsWith(const BString& string) const {
    return string.fLength <= fLength &&
           memcmp(String() + fLength - string.fLength, string.String(), string.fLength) == 0;
}

bool BString::EndsWith(const char* string) const {
    int32 length = clamped_length(string);
    return length <= fLength && memcmp(String() + fLength - length, safe(string), length) == 0;
}

// #pragma mark - Finding

int32 BString::FindFirst(const BString& string) const {
    return _FindAfter(string.String(), string.Length(), 0, false);
}

int32 BString::FindFirst(const char* string) const {
    if (string == NULL)
        return B_BAD_VALUE;
    return _FindAfter(string, length_of(string), 0, false);
}

int32 BString::FindFirst(const BString& string, int32 fromOffset) const {
    if (fromOffset < 0)
        return B_ERROR;
    return _FindAfter(string.String(), string.Length(), fromOffset, false);
}

int32 BString::FindFirst(const char* string, int32 fromOffset) const {
    if (string == NULL)
        return B_BAD_VALUE;
    if (fromOffset < 0)
        return B_ERROR;
    return _FindAfter(string, length_of(string), fromOffset, false);
}

int32 BString::FindFirst(char c) const {
    return FindFirst(c, 0);
}

int32 BString::FindFirst(char c, int32 fromOffset) const {
    if (fromOffset < 0)
        return B_ERROR;
    for (int32 index = fromOffset; index < fLength; index++) {
        if (fPrivateData[index] == c)
            return index;
    }
    return B_ERROR;
}

int32 BString::FindLast(const BString& string) const {
    return _FindBefore(string.String(), string.Length(), fLength, false);
}

int32 BString::FindLast(const char* string) const {
    if (string == NULL)
        return B_BAD_VALUE;
    return _FindBefore(string, length_of(string), fLength, false);
}

int32 BString::FindLast(const BString& string, int32 beforeOffset) const {
    if (beforeOffset < 0)
        return B_ERROR;
    return _FindBefore(string.String(), string.Length(), beforeOffset, false);
}

int32 BString::FindLast(const char* string, int32 beforeOffset) const {
    if (string == NULL)
        return B_BAD_VALUE;
    if (beforeOffset < 0)
        return B_ERROR;
    return _FindBefore(string, length_of(string), beforeOffset, false);
}

int32 BString::FindLast(char c) const {
    return FindLast(c, fLength - 1);
}

int32 BString::FindLast(char c, int32 beforeOffset) const {
    if (beforeOffset < 0)
        return B_ERROR;
    // The byte at beforeOffset itself counts, as it always has for this call.
    int32 index = beforeOffset < fLength ? beforeOffset : fLength - 1;
    for (; index >= 0; index--) {
        if (fPrivateData[index] == c)
            return index;
    }
    return B_ERROR;
}

int32 BString::IFindFirst(const BString& string) const {
    return _FindAfter(string.String(), string.Length(), 0, true);
}

int32 BString::IFindFirst(const char* string) const {
    if (string == NULL)
        return B_BAD_VALUE;
    return _FindAfter(string, length_of(string), 0, true);
}

int32 BString::IFindFirst(const BString& string, int32 fromOffset) const {
    if (fromOffset < 0)
        return B_ERROR;
    return _FindAfter(string.String(), string.Length(), fromOffset, true);
}

int32 BString::IFindFirst(const char* string, int32 fromOffset) const {
    if (string == NULL)
        return B_BAD_VALUE;
    if (fromOffset < 0)
        return B_ERROR;
    return _FindAfter(string, length_of(string), fromOffset, true);
}

int32 BString::IFindLast(const BString& string) const {
    return _FindBefore(string.String(), string.Length(), fLength, true);
}

int32 BString::IFindLast(const char* string) const {
    if (string == NULL)
        return B_BAD_VALUE;
    return _FindBefore(string, length_of(string), fLength, true);
}

int32 BString::IFindLast(const BString& string, int32 beforeOffset) const {
    if (beforeOffset < 0)
        return B_ERROR;
    return _FindBefore(string.String(), string.Length(), beforeOffset, true);
}

int32 BString::IFindLast(const char* string, int32 beforeOffset) const {
    if (string == NULL)
        return B_BAD_VALUE;
    if (beforeOffset < 0)
        return B_ERROR;
    return _FindBefore(string, length_of(string), beforeOffset, true);
}

// #pragma mark - Replacing

BString& BString::ReplaceFirst(char replaceThis, char withThis) {
    int32 index = FindFirst(replaceThis);
    if (index >= 0)
        fPrivateData[index] = withThis;
    return *this;
}

BString& BString::ReplaceLast(char replaceThis, char withThis) {
    int32 index = FindLast(replaceThis);
    if (index >= 0)
        fPrivateData[index] = withThis;
    return *this;
}

BString& BString::ReplaceAll(char replaceThis, char withThis, int32 fromOffset) {
    return Replace(replaceThis, withThis, INT32_MAX, fromOffset);
}

BString& BString::Replace(char replaceThis, char withThis, int32 maxReplaceCount,
                          int32 fromOffset) {
    if (fromOffset < 0)
        fromOffset = 0;
    for (int32 index = fromOffset; index < fLength && maxReplaceCount > 0; index++) {
        if (fPrivateData[index] == replaceThis) {
            fPrivateData[index] = withThis;
            maxReplaceCount--;
        }
    }
    return *this;
}

BString& BString::ReplaceFirst(const char* replaceThis, const char* withThis) {
    return _DoReplace(replaceThis, withThis, 1, 0, false);
}

BString& BString::ReplaceLast(const char* replaceThis, const char* withThis) {
    if (replaceThis == NULL || replaceThis[0] == '\0')
        return *this;
    int32 index = FindLast(replaceThis);
    if (index < 0)
        return *this;
    Remove(index, length_of(replaceThis));
    if (withThis != NULL)
        Insert(withThis, index);
    return *this;
}

BString& BString::ReplaceAll(const char* replaceThis, const char* withThis, int32 fromOffset) {
    return _DoReplace(replaceThis, withThis, INT32_MAX, fromOffset, false);
}

BString& BString::Replace(const char* replaceThis, const char* withThis, int32 maxReplaceCount,
                          int32 fromOffset) {
    return _DoReplace(replaceThis, withThis, maxReplaceCount, fromOffset, false);
}

BString& BString::IReplaceFirst(const char* replaceThis, const char* withThis) {
    return _DoReplace(replaceThis, withThis, 1, 0, true);
}

BString& BString::IReplaceLast(const char* replaceThis, const char* withThis) {
    if (replaceThis == NULL || replaceThis[0] == '\0')
        return *this;
    int32 index = IFindLast(replaceThis);
    if (index < 0)
        return *this;
    Remove(index, length_of(replaceThis));
    if (withThis != NULL)
        Insert(withThis, index);
    return *this;
}

BString& BString::IReplaceAll(const char* replaceThis, const char* withThis, int32 fromOffset) {
    return _DoReplace(replaceThis, withThis, INT32_MAX, fromOffset, true);
}

BString& BString::ReplaceSet(const char* setOfBytes, char with) {
    if (setOfBytes == NULL)
        return *this;
    for (int32 index = 0; index < fLength; index++) {
        if (fPrivateData[index] != '\0' && strchr(setOfBytes, fPrivateData[index]) != NULL)
            fPrivateData[index] = with;
    }
    return *this;
}

BString& BString::ReplaceSet(const char* setOfBytes, const char* with) {
    if (setOfBytes == NULL)
        return *this;
    if (with == NULL)
        return RemoveSet(setOfBytes);

    BString result;
    for (int32 index = 0; index < fLength; index++) {
        char c = fPrivateData[index];
        if (c != '\0' && strchr(setOfBytes, c) != NULL)
            result.Append(with);
        else
            result.Append(c, 1);
    }
    return Adopt(result);
}

// #pragma mark - Private

// The first match starting at or after `offset`.
int32 BString::_FindAfter(const char* string, int32 length, int32 offset, bool ignoreCase) const {
    if (offset > fLength)
        return B_ERROR;
    for (int32 index = offset; index + length <= fLength; index++) {
        if (matches_at(String() + index, string, length, ignoreCase))
            return index;
    }
    return B_ERROR;
}

// The last match that ends at or before `offset`.
int32 BString::_FindBefore(const char* string, int32 length, int32 offset, bool ignoreCase) const {
    if (offset > fLength)
        offset = fLength;
    for (int32 index = offset - length; index >= 0; index--) {
        if (matches_at(String() + index, string, length, ignoreCase))
            return index;
    }
    return B_ERROR;
}

BString& BString::_DoReplace(const char* replaceThis, const char* withThis, int32 maxReplaceCount,
                             int32 fromOffset, bool ignoreCase) {
    if (replaceThis == NULL || replaceThis[0] == '\0' || maxReplaceCount <= 0)
        return *this;
    if (withThis == NULL)
        withThis = "";
    if (fromOffset < 0)
        fromOffset = 0;

    int32 patternLength = length_of(replaceThis);
    int32 match = _FindAfter(replaceThis, patternLength, fromOffset, ignoreCase);
    if (match < 0)
        return *this;

    // Build the result in a second string: the replacement may be longer or shorter,
    // and may even be a part of this string.
    BString result;
    int32 copied = 0;
    while (match >= 0 && maxReplaceCount > 0) {
        result._DoAppend(String() + copied, match - copied);
        result.Append(withThis);
        copied = match + patternLength;
        maxReplaceCount--;
        match = _FindAfter(replaceThis, patternLength, copied, ignoreCase);
    }
    result._DoAppend(String() + copied, fLength - copied);
    return Adopt(result);
}

// #pragma mark - Comparison helpers

int Compare(const BString& a, const BString& b) {
    return a.Compare(b);
}

int ICompare(const BString& a, const BString& b) {
    return a.ICompare(b);
}

int Compare(const BString* a, const BString* b) {
    return a->Compare(*b);
}

int ICompare(const BString* a, const BString* b) {
    return a->ICompare(*b);
}
