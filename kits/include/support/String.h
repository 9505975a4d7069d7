// BString: a byte string that owns its text. Lengths and offsets count bytes.
// Offsets or lengths outside the string are clipped to it, never read past it.
#ifndef _B_STRING_H
#define _B_STRING_H

#include <SupportDefs.h>

class BString {
public:
    BString();
    BString(const char* string);
    BString(const BString& string);
    BString(const char* string, int32 maxLength);
    BString(BString&& string);
    ~BString();

    // Access
    const char* String() const;
    int32 Length() const;
    // UTF-8 characters.
    int32 CountChars() const;
    bool IsEmpty() const;

    // Assignment
    BString& operator=(const BString& string);
    BString& operator=(const char* string);
    BString& operator=(char c);
    BString& operator=(BString&& string);

    BString& SetTo(const char* string);
    BString& SetTo(const char* string, int32 maxLength);
    BString& SetTo(const BString& string);
    BString& Adopt(BString& from);
    BString& SetTo(const BString& string, int32 maxLength);
    BString& Adopt(BString& from, int32 maxLength);
    BString& SetTo(char c, int32 count);

    // Substring copying
    BString& CopyInto(BString& into, int32 fromOffset, int32 length) const;
    // Copies the bytes without a terminating NUL.
    void CopyInto(char* into, int32 fromOffset, int32 length) const;

    // Appending
    BString& operator+=(const BString& string);
    BString& operator+=(const char* string);
    BString& operator+=(char c);

    BString& Append(const BString& string);
    BString& Append(const char* string);
    BString& Append(const BString& string, int32 length);
    BString& Append(const char* string, int32 length);
    BString& Append(char c, int32 count);

    // Prepending
    BString& Prepend(const char* string);
    BString& Prepend(const BString& string);
    BString& Prepend(const char* string, int32 length);
    BString& Prepend(const BString& string, int32 length);
    BString& Prepend(char c, int32 count);

    // Inserting
    BString& Insert(const char* string, int32 position);
    BString& Insert(const char* string, int32 length, int32 position);
    BString& Insert(const char* string, int32 fromOffset, int32 length, int32 position);
    BString& Insert(const BString& string, int32 position);
    BString& Insert(const BString& string, int32 length, int32 position);
    BString& Insert(const BString& string, int32 fromOffset, int32 length, int32 position);
    BString& Insert(char c, int32 count, int32 position);

    // Removing
    BString& Truncate(int32 newLength, bool lazy = true);
    BString& Trim();
    BString& Remove(int32 from, int32 length);

    BString& RemoveFirst(const BString& string);
    BString& RemoveLast(const BString& string);
    BString& RemoveAll(const BString& string);

    BString& RemoveFirst(const char* string);
    BString& RemoveLast(const char* string);
    BString& RemoveAll(const char* string);

    BString& RemoveSet(const char* setOfBytesToRemove);

    BString& MoveInto(BString& into, int32 from, int32 length);
    void MoveInto(char* into, int32 from, int32 length);

    // Comparing
    bool operator<(const BString& string) const;
    bool operator<=(const BString& string) const;
    bool operator==(const BString& string) const;
    bool operator>=(const BString& string) const;
    bool operator>(const BString& string) const;
    bool operator!=(const BString& string) const;

    bool operator<(const char* string) const;
    bool operator<=(const char* string) const;
    bool operator==(const char* string) const;
    bool operator>=(const char* string) const;
    bool operator>(const char* string) const;
    bool operator!=(const char* string) const;

    // strcmp()-style results; a NULL string compares like "".
    int Compare(const BString& string) const;
    int Compare(const char* string) const;
    int Compare(const BString& string, int32 length) const;
    int Compare(const char* string, int32 length) const;
    int ICompare(const BString& string) const;
    int ICompare(const char* string) const;
    int ICompare(const BString& string, int32 length) const;
    int ICompare(const char* string, int32 length) const;

    bool StartsWith(const BString& string) const;
    bool StartsWith(const char* string) const;
    bool EndsWith(const BString& string) const;
    bool EndsWith(const char* string) const;

    // Searching: the byte offset of the match, or B_ERROR when there is none.
    int32 FindFirst(const BString& string) const;
    int32 FindFirst(const char* string) const;
    int32 FindFirst(const BString& string, int32 fromOffset) const;
    int32 FindFirst(const char* string, int32 fromOffset) const;
    int32 FindFirst(char c) const;
    int32 FindFirst(char c, int32 fromOffset) const;

    int32 FindLast(const BString& string) const;
    int32 FindLast(const char* string) const;
    int32 FindLast(const BString& string, int32 beforeOffset) const;
    int32 FindLast(const char* string, int32 beforeOffset) const;
    int32 FindLast(char c) const;
    int32 FindLast(char c, int32 beforeOffset) const;

    int32 IFindFirst(const BString& string) const;
    int32 IFindFirst(const char* string) const;
    int32 IFindFirst(const BString& string, int32 fromOffset) const;
    int32 IFindFirst(const char* string, int32 fromOffset) const;

    int32 IFindLast(const BString& string) const;
    int32 IFindLast(const char* string) const;
    int32 IFindLast(const BString& string, int32 beforeOffset) const;
    int32 IFindLast(const char* string, int32 beforeOffset) const;

    // Replacing
    BString& ReplaceFirst(char replaceThis, char withThis);
    BString& ReplaceLast(char replaceThis, char withThis);
    BString& ReplaceAll(char replaceThis, char withThis, int32 fromOffset = 0);
    BString& Replace(char replaceThis, char withThis, int32 maxReplaceCount, int32 fromOffset = 0);
    BString& ReplaceFirst(const char* replaceThis, const char* withThis);
    BString& ReplaceLast(const char* replaceThis, const char* withThis);
    BString& ReplaceAll(const char* replaceThis, const char* withThis, int32 fromOffset = 0);
    BString& Replace(const char* replaceThis, const char* withThis, int32 maxReplaceCount,
                     int32 fromOffset = 0);

    BString& IReplaceFirst(const char* replaceThis, const char* withThis);
    BString& IReplaceLast(const char* replaceThis, const char* withThis);
    BString& IReplaceAll(const char* replaceThis, const char* withThis, int32 fromOffset = 0);

    BString& ReplaceSet(const char* setOfBytes, char with);
    BString& ReplaceSet(const char* setOfBytes, const char* with);

    // Byte access; 0 outside the string.
    char operator[](int32 index) const;
    char ByteAt(int32 index) const;
    BString& SetByteAt(int32 pos, char to);

    // Direct buffer access: LockBuffer() gives a writable buffer of at least
    // maxLength + 1 bytes (maxLength 0 or less keeps the current size); UnlockBuffer()
    // takes the new length (-1 = up to the first NUL). Between the two, no other
    // method may be called.
    char* LockBuffer(int32 maxLength);
    BString& UnlockBuffer(int32 length = -1);

    // Case (ASCII letters only)
    BString& ToLower();
    BString& ToUpper();
    BString& Capitalize();
    BString& CapitalizeEachWord();

    // Escaping and de-escaping
    BString& CharacterEscape(const char* original, const char* setOfCharsToEscape, char escapeWith);
    BString& CharacterEscape(const char* setOfCharsToEscape, char escapeWith);
    BString& CharacterDeescape(const char* original, char escapeChar);
    BString& CharacterDeescape(char escapeChar);

    // Formatting (numbers in decimal; floating point with two decimals)
    BString& operator<<(const char* string);
    BString& operator<<(const BString& string);
    BString& operator<<(char c);
    BString& operator<<(bool value);
    BString& operator<<(int value);
    BString& operator<<(unsigned int value);
    BString& operator<<(long value);
    BString& operator<<(unsigned long value);
    BString& operator<<(long long value);
    BString& operator<<(unsigned long long value);
    BString& operator<<(float value);
    BString& operator<<(double value);

private:
    bool _Resize(int32 length);
    BString& _DoAppend(const char* string, int32 length);
    BString& _DoPrepend(const char* string, int32 length);
    BString& _DoInsert(const char* string, int32 length, int32 position);
    BString& _DoReplace(const char* replaceThis, const char* withThis, int32 maxReplaceCount,
                        int32 fromOffset, bool ignoreCase);
    int32 _FindAfter(const char* string, int32 length, int32 offset, bool ignoreCase) const;
    int32 _FindBefore(const char* string, int32 length, int32 offset, bool ignoreCase) const;

    // The text with a terminating NUL, or NULL for the empty string.
    char* fPrivateData;
    int32 fLength;
    bool fBufferLocked;
};

// Comparison helpers, e.g. for sorting a BList of BString*.
int Compare(const BString& a, const BString& b);
int ICompare(const BString& a, const BString& b);
int Compare(const BString* a, const BString* b);
int ICompare(const BString* a, const BString* b);

inline bool operator<(const char* a, const BString& b) {
    return b > a;
}

inline bool operator<=(const char* a, const BString& b) {
    return b >= a;
}

inline bool operator==(const char* a, const BString& b) {
    return b == a;
}

inline bool operator>(const char* a, const BString& b) {
    return b < a;
}

inline bool operator>=(const char* a, const BString& b) {
    return b <= a;
}

inline bool operator!=(const char* a, const BString& b) {
    return b != a;
}

#endif // _B_STRING_H
