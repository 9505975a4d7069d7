// BString keeps its bytes in one heap block with a terminating NUL (or no block at
// all when empty). Every method clips offsets and lengths to the string, so a bad
// argument leaves the string unchanged or answers "not found", never reads outside.
#include <String.h>

#include <ctype.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

namespace {

// The length of `string` up to `maxLength` bytes; a negative maxLength means all.
int32 clamped_length(const char* string, int32 maxLength) {
    if (string == NULL)
        return 0;
    size_t length = maxLength < 0 ? strlen(string) : strnlen(string, (size_t)maxLength);
    return length > INT32_MAX ? INT32_MAX : (int32)length;
}

bool contains_byte(const char* set, char c) {
    return c != '\0' && strchr(set, c) != NULL;
}

} // namespace

// #pragma mark - Construction

BString::BString() : fPrivateData(NULL), fLength(0), fBufferLocked(false) {}

BString::BString(const char* string) : fPrivateData(NULL), fLength(0), fBufferLocked(false) {
    SetTo(string);
}

BString::BString(const BString& string) : fPrivateData(NULL), fLength(0), fBufferLocked(false) {
    SetTo(string);
}

BString::BString(const char* string, int32 maxLength)
    : fPrivateData(NULL), fLength(0), fBufferLocked(false) {
    SetTo(string, maxLength);
}

BString::BString(BString&& string)
    : fPrivateData(string.fPrivateData), fLength(string.fLength), fBufferLocked(false) {
    string.fPrivateData = NULL;
    string.fLength = 0;
}

BString::~BString() {
    free(fPrivateData);
}

// #pragma mark - Access

const char* BString::String() const {
    return fPrivateData != NULL ? fPrivateData : "";
}

int32 BString::Length() const {
    return fLength;
}

int32 BString::CountChars() const {
    int32 count = 0;
    for (int32 index = 0; index < fLength; index++) {
        // Count every byte that does not continue a multi-byte character.
        if (((unsigned char)fPrivateData[index] & 0xc0) != 0x80)
            count++;
    }
    return count;
}

bool BString::IsEmpty() const {
    return fLength == 0;
}

// #pragma mark - Assignment

BString& BString::operator=(const BString& string) {
    return SetTo(string);
}

BString& BString::operator=(const char* string) {
    return SetTo(string);
}

BString& BString::operator=(char c) {
    return SetTo(c, 1);
}

BString& BString::operator=(BString&& string) {
    if (&string != this)
        Adopt(string);
    return *this;
}

BString& BString::SetTo(const char* string) {
    return SetTo(string, -1);
}

BString& BString::SetTo(const char* string, int32 maxLength) {
    int32 length = clamped_length(string, maxLength);
    if (length == 0) {
        _Resize(0);
        return *this;
    }
    if (string >= fPrivateData && string <= fPrivateData + fLength) {
        // A part of this very string: keep the wanted bytes, then cut the rest.
        memmove(fPrivateData, string, length);
        _Resize(length);
        return *this;
    }
    if (_Resize(length))
        memcpy(fPrivateData, string, length);
    return *this;
}

BString& BString::SetTo(const BString& string) {
    if (&string == this)
        return *this;
    if (!_Resize(string.fLength))
        return *this;
    if (fLength > 0)
        memcpy(fPrivateData, string.fPrivateData, fLength);
    return *this;
}

BString& BString::Adopt(BString& from) {
    if (&from == this)
        return *this;
    free(fPrivateData);
    fPrivateData = from.fPrivateData;
    fLength = from.fLength;
    from.fPrivateData = NULL;
    from.fLength = 0;
    return *this;
}

BString& BString::SetTo(const BString& string, int32 maxLength) {
    if (&string == this)
        return Truncate(maxLength < 0 ? fLength : maxLength);
    return SetTo(string.String(),
                 maxLength < 0 || maxLength > string.fLength ? string.fLength : maxLength);
}

BString& BString::Adopt(BString& from, int32 maxLength) {
    Adopt(from);
    if (maxLength >= 0)
        Truncate(maxLength);
    return *this;
}

BString& BString::SetTo(char c, int32 count) {
    if (count <= 0) {
        _Resize(0);
        return *this;
    }
    if (_Resize(count))
        memset(fPrivateData, c, count);
    return *this;
}

// #pragma mark - Substring copying

BString& BString::CopyInto(BString& into, int32 fromOffset, int32 length) const {
    if (fromOffset < 0 || fromOffset > fLength || length < 0)
        length = 0;
    else if (length > fLength - fromOffset)
        length = fLength - fromOffset;

    if (&into == this) {
        BString copy(String() + (length > 0 ? fromOffset : 0), length);
        into.Adopt(copy);
    } else {
        into.SetTo(String() + (length > 0 ? fromOffset : 0), length);
    }
    return into;
}

void BString::CopyInto(char* into, int32 fromOffset, int32 length) const {
    if (into == NULL || fromOffset < 0 || fromOffset >= fLength || length <= 0)
        return;
    if (length > fLength - fromOffset)
        length = fLength - fromOffset;
    memcpy(into, fPrivateData + fromOffset, length);
}

// #pragma mark - Appending, prepending, inserting

BString& BString::operator+=(const BString& string) {
    return Append(string);
}

BString& BString::operator+=(const char* string) {
    return Append(string);
}

BString& BString::operator+=(char c) {
    return Append(c, 1);
}

BString& BString::Append(const BString& string) {
    return _DoAppend(string.String(), string.fLength);
}

BString& BString::Append(const char* string) {
    return _DoAppend(string, clamped_length(string, -1));
}

BString& BString::Append(const BString& string, int32 length) {
    if (length < 0 || length > string.fLength)
        length = string.fLength;
    return _DoAppend(string.String(), length);
}

BString& BString::Append(const char* string, int32 length) {
    return _DoAppend(string, clamped_length(string, length));
}

BString& BString::Append(char c, int32 count) {
    if (count <= 0 || count > INT32_MAX - fLength)
        return *this;
    int32 oldLength = fLength;
    if (_Resize(fLength + count))
        memset(fPrivateData + oldLength, c, count);
    return *this;
}

BString& BString::Prepend(const char* string) {
    return _DoPrepend(string, clamped_length(string, -1));
}

BString& BString::Prepend(const BString& string) {
    return _DoPrepend(string.String(), string.fLength);
}

BString& BString::Prepend(const char* string, int32 length) {
    return _DoPrepend(string, clamped_length(string, length));
}

BString& BString::Prepend(const BString& string, int32 length) {
    if (length < 0 || length > string.fLength)
        length = string.fLength;
    return _DoPrepend(string.String(), length);
}

BString& BString::Prepend(char c, int32 count) {
    return Insert(c, count, 0);
}

BString& BString::Insert(const char* string, int32 position) {
    return Insert(string, -1, position);
}

BString& BString::Insert(const char* string, int32 length, int32 position) {
    if (string == NULL || position > fLength)
        return *this;

    length = clamped_length(string, length);
    // A negative position drops that many bytes from the front of the insertion.
    if (position < 0) {
        int32 skipped = -position < length ? -position : length;
        string += skipped;
        length -= skipped;
        position = 0;
    }
    return _DoInsert(string, length, position);
}

BString& BString::Insert(const char* string, int32 fromOffset, int32 length, int32 position) {
    if (string == NULL || fromOffset < 0)
        return *this;
    int32 available = clamped_length(string, fromOffset);
    if (available < fromOffset)
        return *this;
    return Insert(string + fromOffset, length, position);
}

BString& BString::Insert(const BString& string, int32 position) {
    return Insert(string, string.fLength, position);
}

BString& BString::Insert(const BString& string, int32 length, int32 position) {
    if (position > fLength)
        return *this;
    if (length < 0 || length > string.fLength)
        length = string.fLength;

    const char* source = string.String();
    if (position < 0) {
        int32 skipped = -position < length ? -position : length;
        source += skipped;
        length -= skipped;
        position = 0;
    }
    return _DoInsert(source, length, position);
}

BString& BString::Insert(const BString& string, int32 fromOffset, int32 length, int32 position) {
    if (fromOffset < 0 || fromOffset > string.fLength)
        return *this;
    if (length < 0 || length > string.fLength - fromOffset)
        length = string.fLength - fromOffset;
    BString part(string.String() + fromOffset, length);
    return Insert(part, position);
}

BString& BString::Insert(char c, int32 count, int32 position) {
    if (position > fLength)
        return *this;
    if (position < 0) {
        count += position;
        position = 0;
    }
    if (count <= 0 || count > INT32_MAX - fLength)
        return *this;

    int32 oldLength = fLength;
    if (!_Resize(fLength + count))
        return *this;
    memmove(fPrivateData + position + count, fPrivateData + position, oldLength - position);
    memset(fPrivateData + position, c, count);
    return *this;
}

// #pragma mark - Removing

BString& BString::Truncate(int32 newLength, bool lazy) {
    if (newLength < 0)
        newLength = 0;
    if (newLength < fLength)
        _Resize(newLength);
    return *this;
}

BString& BString::Trim() {
    int32 start = 0;
    while (start < fLength && isspace((unsigned char)fPrivateData[start]))
        start++;
    int32 end = fLength;
    while (end > start && isspace((unsigned char)fPrivateData[end - 1]))
        end--;

    if (start > 0)
        memmove(fPrivateData, fPrivateData + start, end - start);
    return Truncate(end - start);
}

BString& BString::Remove(int32 from, int32 length) {
    if (from < 0) {
        length += from;
        from = 0;
    }
    if (length <= 0 || from >= fLength)
        return *this;
    if (length > fLength - from)
        length = fLength - from;

    memmove(fPrivateData + from, fPrivateData + from + length, fLength - from - length);
    _Resize(fLength - length);
    return *this;
}

BString& BString::RemoveFirst(const BString& string) {
    return RemoveFirst(string.String());
}

BString& BString::RemoveLast(const BString& string) {
    return RemoveLast(string.String());
}

BString& BString::RemoveAll(const BString& string) {
    return RemoveAll(string.String());
}

BString& BString::RemoveFirst(const char* string) {
    return Replace(string, "", 1, 0);
}

BString& BString::RemoveLast(const char* string) {
    return ReplaceLast(string, "");
}

BString& BString::RemoveAll(const char* string) {
    return ReplaceAll(string, "", 0);
}

BString& BString::RemoveSet(const char* setOfBytesToRemove) {
    if (setOfBytesToRemove == NULL)
        return *this;

    int32 kept = 0;
    for (int32 index = 0; index < fLength; index++) {
        if (!contains_byte(setOfBytesToRemove, fPrivateData[index]))
            fPrivateData[kept++] = fPrivateData[index];
    }
    return Truncate(kept);
}

BString& BString::MoveInto(BString& into, int32 from, int32 length) {
    if (&into == this)
        return CopyInto(into, from, length);
    CopyInto(into, from, length);
    return Remove(from, length);
}

void BString::MoveInto(char* into, int32 from, int32 length) {
    if (into == NULL)
        return;
    CopyInto(into, from, length);
    Remove(from, length);
}

// #pragma mark - Byte access

char BString::operator[](int32 index) const {
    return ByteAt(index);
}

char BString::ByteAt(int32 index) const {
    if (index < 0 || index >= fLength)
        return 0;
    return fPrivateData[index];
}

BString& BString::SetByteAt(int32 pos, char to) {
    if (pos >= 0 && pos < fLength)
        fPrivateData[pos] = to;
    return *this;
}

char* BString::LockBuffer(int32 maxLength) {
    // The buffer is sized (and zero-filled) to what the caller may write, so
    // UnlockBuffer(-1) finds a NUL within it.
    int32 oldLength = fLength;
    int32 wanted = maxLength > fLength ? maxLength : fLength;
    if (wanted == 0) {
        if (fPrivateData == NULL) {
            fPrivateData = static_cast<char*>(calloc(1, 1));
            if (fPrivateData == NULL)
                return NULL;
        }
    } else if (wanted > fLength) {
        if (!_Resize(wanted))
            return NULL;
        memset(fPrivateData + oldLength, 0, wanted - oldLength);
    }
    fBufferLocked = true;
    return fPrivateData;
}

BString& BString::UnlockBuffer(int32 length) {
    fBufferLocked = false;
    if (fPrivateData == NULL)
        return *this;

    if (length < 0 || length > fLength)
        length = (int32)strnlen(fPrivateData, (size_t)fLength);
    if (length == 0) {
        _Resize(0);
        return *this;
    }
    _Resize(length);
    return *this;
}

// #pragma mark - Private

bool BString::_Resize(int32 length) {
    if (length <= 0) {
        free(fPrivateData);
        fPrivateData = NULL;
        fLength = 0;
        return true;
    }

    char* data = static_cast<char*>(realloc(fPrivateData, (size_t)length + 1));
    if (data == NULL)
        return false;
    fPrivateData = data;
    fLength = length;
    fPrivateData[length] = '\0';
    return true;
}

BString& BString::_DoAppend(const char* string, int32 length) {
    return _DoInsert(string, length, fLength);
}

BString& BString::_DoPrepend(const char* string, int32 length) {
    return _DoInsert(string, length, 0);
}

BString& BString::_DoInsert(const char* string, int32 length, int32 position) {
    if (string == NULL || length <= 0 || position < 0 || position > fLength ||
        length > INT32_MAX - fLength) {
        return *this;
    }

    // Inserting a part of this string: copy it first, the buffer is about to move.
    uintptr_t source = (uintptr_t)string;
    uintptr_t start = (uintptr_t)fPrivateData;
    if (fPrivateData != NULL && source >= start && source <= start + (uintptr_t)fLength) {
        BString copy(string, length);
        return _DoInsert(copy.String(), copy.fLength, position);
    }

    int32 oldLength = fLength;
    if (!_Resize(fLength + length))
        return *this;
    memmove(fPrivateData + position + length, fPrivateData + position, oldLength - position);
    memcpy(fPrivateData + position, string, length);
    return *this;
}
