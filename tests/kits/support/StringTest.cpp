// BString: construction, editing, comparing and formatting.
#include <String.h>

#include <gtest/gtest.h>

#include <string.h>

#include <string>

TEST(String, NewStringIsEmpty) {
    BString string;
    EXPECT_STREQ(string.String(), "");
    EXPECT_EQ(string.Length(), 0);
    EXPECT_TRUE(string.IsEmpty());
}

TEST(String, ConstructorsCopyTheirText) {
    char text[] = "copied";
    BString string(text);
    text[0] = 'X';
    EXPECT_STREQ(string.String(), "copied");
    EXPECT_STREQ(BString("abcdef", 3).String(), "abc");
    EXPECT_STREQ(BString("ab", 10).String(), "ab");
    EXPECT_STREQ(BString(NULL).String(), "");
    BString copy(string);
    EXPECT_STREQ(copy.String(), "copied");
}

TEST(String, MovingLeavesTheSourceEmpty) {
    BString source("moved");
    BString target(std::move(source));
    EXPECT_STREQ(target.String(), "moved");
    EXPECT_TRUE(source.IsEmpty());
    BString other;
    other = std::move(target);
    EXPECT_STREQ(other.String(), "moved");
    EXPECT_TRUE(target.IsEmpty());
}

TEST(String, CountCharsCountsUtf8Characters) {
    BString string("h\xc3\xa9llo \xe2\x82\xac");
    EXPECT_EQ(string.Length(), 10);
    EXPECT_EQ(string.CountChars(), 7);
}

TEST(String, SetToVariants) {
    BString string;
    string.SetTo("hello", 4);
    EXPECT_STREQ(string.String(), "hell");
    string.SetTo('x', 3);
    EXPECT_STREQ(string.String(), "xxx");
    string.SetTo(BString("other"), 2);
    EXPECT_STREQ(string.String(), "ot");
    string = 'c';
    EXPECT_STREQ(string.String(), "c");
    string = (const char*)NULL;
    EXPECT_TRUE(string.IsEmpty());
}

TEST(String, SetToAPartOfItselfWorks) {
    BString string("0123456789");
    string.SetTo(string.String() + 4, 3);
    EXPECT_STREQ(string.String(), "456");
    BString& same = string;
    string = same;
    EXPECT_STREQ(string.String(), "456");
}

TEST(String, AdoptTakesTheOtherText) {
    BString from("adopted");
    BString string("old");
    string.Adopt(from);
    EXPECT_STREQ(string.String(), "adopted");
    EXPECT_TRUE(from.IsEmpty());
    BString more("abcdef");
    string.Adopt(more, 3);
    EXPECT_STREQ(string.String(), "abc");
}

TEST(String, CopyIntoClipsToTheString) {
    BString string("0123456789");
    BString into;
    string.CopyInto(into, 2, 3);
    EXPECT_STREQ(into.String(), "234");
    string.CopyInto(into, 8, 100);
    EXPECT_STREQ(into.String(), "89");
    string.CopyInto(into, 20, 2);
    EXPECT_STREQ(into.String(), "");

    char buffer[8];
    memset(buffer, '-', sizeof(buffer));
    string.CopyInto(buffer, 7, 10);
    EXPECT_EQ(std::string(buffer, 4), "789-");
    string.CopyInto(string, 1, 2);
    EXPECT_STREQ(string.String(), "12");
}

TEST(String, AppendAddsToTheEnd) {
    BString string("a");
    string.Append("bc").Append(BString("de")).Append("fgh", 2).Append('x', 3);
    string += "1";
    string += BString("2");
    string += '3';
    EXPECT_STREQ(string.String(), "abcdefgxxx123");
    string.Append(NULL);
    string.Append('y', 0);
    EXPECT_EQ(string.Length(), 13);
}

TEST(String, AppendOfItselfDoublesIt) {
    BString string("abc");
    string.Append(string);
    EXPECT_STREQ(string.String(), "abcabc");
    string.Append(string.String() + 1, 2);
    EXPECT_STREQ(string.String(), "abcabcbc");
}

TEST(String, PrependAddsToTheFront) {
    BString string("end");
    string.Prepend("mid ").Prepend(BString("start ")).Prepend("xyz", 1).Prepend('>', 2);
    EXPECT_STREQ(string.String(), ">>xstart mid end");
}

TEST(String, InsertPlacesTextAtAPosition) {
    BString string("ace");
    string.Insert("b", 1);
    string.Insert(BString("d"), 3);
    string.Insert('!', 2, 5);
    EXPECT_STREQ(string.String(), "abcde!!");
    string.Insert("XYZ", 1, 0);
    EXPECT_STREQ(string.String(), "Xabcde!!");
    string.Insert("0123", 2, 1, 0);
    EXPECT_STREQ(string.String(), "2Xabcde!!");
}

TEST(String, InsertOutsideTheStringChangesNothingOrClips) {
    BString string("abc");
    string.Insert("zz", 4);
    EXPECT_STREQ(string.String(), "abc");
    // A negative position drops that many leading bytes of the insertion.
    string.Insert("12345", -3);
    EXPECT_STREQ(string.String(), "45abc");
    string.Insert("xy", 10, 1, 0);
    EXPECT_STREQ(string.String(), "45abc");
}

TEST(String, TruncateShortens) {
    BString string("truncate me");
    string.Truncate(8);
    EXPECT_STREQ(string.String(), "truncate");
    string.Truncate(100);
    EXPECT_STREQ(string.String(), "truncate");
    string.Truncate(-1);
    EXPECT_TRUE(string.IsEmpty());
}

TEST(String, TrimRemovesSurroundingWhitespace) {
    BString string(" \t trimmed text \n");
    EXPECT_STREQ(string.Trim().String(), "trimmed text");
    BString blank("   ");
    EXPECT_TRUE(blank.Trim().IsEmpty());
}

TEST(String, RemoveCutsARange) {
    BString string("0123456789");
    string.Remove(2, 3);
    EXPECT_STREQ(string.String(), "0156789");
    string.Remove(5, 100);
    EXPECT_STREQ(string.String(), "01567");
    string.Remove(-1, 2);
    EXPECT_STREQ(string.String(), "1567");
    string.Remove(10, 1);
    EXPECT_STREQ(string.String(), "1567");
}

TEST(String, RemoveFirstLastAndAll) {
    BString string("a-b-c-d");
    string.RemoveFirst("-");
    EXPECT_STREQ(string.String(), "ab-c-d");
    string.RemoveLast(BString("-"));
    EXPECT_STREQ(string.String(), "ab-cd");
    string.SetTo("xaxbxcx").RemoveAll("x");
    EXPECT_STREQ(string.String(), "abc");
    string.RemoveAll("");
    string.RemoveFirst((const char*)NULL);
    EXPECT_STREQ(string.String(), "abc");
}

TEST(String, RemoveSetDropsEveryListedByte) {
    BString string("h.e,l;l.o");
    EXPECT_STREQ(string.RemoveSet(".,;").String(), "hello");
}

TEST(String, MoveIntoTransfersARange) {
    BString string("keep MOVE keep");
    BString into;
    string.MoveInto(into, 5, 5);
    EXPECT_STREQ(into.String(), "MOVE ");
    EXPECT_STREQ(string.String(), "keep keep");

    char buffer[4] = {};
    string.MoveInto(buffer, 0, 3);
    EXPECT_EQ(std::string(buffer, 3), "kee");
    EXPECT_STREQ(string.String(), "p keep");
}

TEST(String, ComparisonOperators) {
    BString apple("apple");
    BString banana("banana");
    EXPECT_TRUE(apple < banana);
    EXPECT_TRUE(apple <= banana);
    EXPECT_TRUE(banana > apple);
    EXPECT_TRUE(banana >= apple);
    EXPECT_TRUE(apple == BString("apple"));
    EXPECT_TRUE(apple != banana);
    EXPECT_TRUE(apple == "apple");
    EXPECT_TRUE(apple != "Apple");
    EXPECT_TRUE(apple < "b");
    EXPECT_TRUE("apple" == apple);
    EXPECT_TRUE("a" < apple);
    EXPECT_TRUE("b" > apple);
    EXPECT_TRUE(BString() == (const char*)NULL);
}

TEST(String, CompareAndICompare) {
    BString string("Hello");
    EXPECT_EQ(string.Compare("Hello"), 0);
    EXPECT_LT(string.Compare("World"), 0);
    EXPECT_EQ(string.Compare("Help", 3), 0);
    EXPECT_NE(string.Compare("hello"), 0);
    EXPECT_EQ(string.ICompare("hELLO"), 0);
    EXPECT_EQ(string.ICompare(BString("HELP"), 3), 0);
    EXPECT_EQ(Compare(string, BString("Hello")), 0);
    EXPECT_EQ(ICompare(string, BString("hello")), 0);
    BString other("Hello");
    EXPECT_EQ(Compare(&string, &other), 0);
    EXPECT_GT(string.Compare((const char*)NULL), 0);
}

TEST(String, StartsWithAndEndsWith) {
    BString string("prefix-body-suffix");
    EXPECT_TRUE(string.StartsWith("prefix"));
    EXPECT_TRUE(string.EndsWith(BString("suffix")));
    EXPECT_FALSE(string.StartsWith("body"));
    EXPECT_FALSE(string.EndsWith("a much longer string than this one is"));
}

TEST(String, FindFirstAndLast) {
    BString string("one two one two");
    EXPECT_EQ(string.FindFirst("two"), 4);
    EXPECT_EQ(string.FindFirst("two", 5), 12);
    EXPECT_EQ(string.FindFirst(BString("one"), 1), 8);
    EXPECT_EQ(string.FindFirst('o'), 0);
    EXPECT_EQ(string.FindFirst('o', 1), 6);
    EXPECT_EQ(string.FindLast("one"), 8);
    EXPECT_EQ(string.FindLast("one", 10), 0);
    EXPECT_EQ(string.FindLast('t'), 12);
    EXPECT_EQ(string.FindLast('t', 11), 4);
    EXPECT_EQ(string.FindFirst("three"), B_ERROR);
}

TEST(String, FindRejectsBadArguments) {
    BString string("abc");
    EXPECT_EQ(string.FindFirst((const char*)NULL), B_BAD_VALUE);
    EXPECT_EQ(string.FindLast((const char*)NULL), B_BAD_VALUE);
    EXPECT_EQ(string.FindFirst("a", -1), B_ERROR);
    EXPECT_EQ(string.FindFirst("a", 100), B_ERROR);
    EXPECT_EQ(string.FindLast('a', -1), B_ERROR);
    EXPECT_EQ(string.FindFirst("abcd"), B_ERROR);
    EXPECT_EQ(BString().FindLast('x'), B_ERROR);
}

TEST(String, IFindIgnoresCase) {
    BString string("Find ME and me");
    EXPECT_EQ(string.IFindFirst("me"), 5);
    EXPECT_EQ(string.IFindFirst(BString("ME"), 6), 12);
    EXPECT_EQ(string.IFindLast("Me"), 12);
    EXPECT_EQ(string.IFindLast("mE", 12), 5);
    EXPECT_EQ(string.IFindFirst("xyz"), B_ERROR);
}

TEST(String, ReplaceCharacters) {
    BString string("a.b.c.d");
    string.ReplaceFirst('.', '-');
    EXPECT_STREQ(string.String(), "a-b.c.d");
    string.ReplaceLast('.', '+');
    EXPECT_STREQ(string.String(), "a-b.c+d");
    string.ReplaceAll('.', '_');
    EXPECT_STREQ(string.String(), "a-b_c+d");
    string.SetTo("xxxxx").Replace('x', 'y', 2, 1);
    EXPECT_STREQ(string.String(), "xyyxx");
}

TEST(String, ReplaceAllStrings) {
    BString string("the cat sat on the mat");
    string.ReplaceAll("at", "og");
    EXPECT_STREQ(string.String(), "the cog sog on the mog");
    string.ReplaceFirst("the", "a");
    EXPECT_STREQ(string.String(), "a cog sog on the mog");
    string.ReplaceLast("og", "at");
    EXPECT_STREQ(string.String(), "a cog sog on the mat");
    string.Replace("og", "", 1, 4);
    EXPECT_STREQ(string.String(), "a cog s on the mat");
}

TEST(String, ReplaceWithLongerTextDoesNotLoop) {
    BString string("aaa");
    string.ReplaceAll("a", "aa");
    EXPECT_STREQ(string.String(), "aaaaaa");
    string.ReplaceAll("", "x");
    EXPECT_STREQ(string.String(), "aaaaaa");
}

TEST(String, ReplaceWithAPartOfItself) {
    BString string("abcabc");
    string.ReplaceAll("b", string.String());
    EXPECT_STREQ(string.String(), "aabcabccaabcabcc");
}

TEST(String, IReplaceIgnoresCase) {
    BString string("Foo foo FOO");
    string.IReplaceFirst("foo", "bar");
    EXPECT_STREQ(string.String(), "bar foo FOO");
    string.IReplaceLast("foo", "baz");
    EXPECT_STREQ(string.String(), "bar foo baz");
    string.SetTo("Foo foo FOO").IReplaceAll("FOO", "x");
    EXPECT_STREQ(string.String(), "x x x");
}

TEST(String, ReplaceSetSwapsListedBytes) {
    BString string("a/b\\c");
    string.ReplaceSet("/\\", '_');
    EXPECT_STREQ(string.String(), "a_b_c");
    string.ReplaceSet("_", "::");
    EXPECT_STREQ(string.String(), "a::b::c");
}

TEST(String, ByteAccessStaysInside) {
    BString string("abc");
    EXPECT_EQ(string[1], 'b');
    EXPECT_EQ(string.ByteAt(2), 'c');
    EXPECT_EQ(string.ByteAt(3), 0);
    EXPECT_EQ(string.ByteAt(-1), 0);
    EXPECT_EQ(string[100], 0);
    string.SetByteAt(0, 'X').SetByteAt(10, 'Y');
    EXPECT_STREQ(string.String(), "Xbc");
}

TEST(String, LockBufferLetsTheCallerWrite) {
    BString string("ab");
    char* buffer = string.LockBuffer(10);
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(buffer[0], 'a');
    strcpy(buffer + 2, "cdef");
    string.UnlockBuffer();
    EXPECT_STREQ(string.String(), "abcdef");
    EXPECT_EQ(string.Length(), 6);

    buffer = string.LockBuffer(0);
    buffer[1] = 'Z';
    string.UnlockBuffer(3);
    EXPECT_STREQ(string.String(), "aZc");
}

TEST(String, UnlockBufferFindsTheEndWithinTheBuffer) {
    BString string;
    char* buffer = string.LockBuffer(4);
    ASSERT_NE(buffer, nullptr);
    memcpy(buffer, "full", 4);
    string.UnlockBuffer(-1);
    EXPECT_STREQ(string.String(), "full");

    buffer = string.LockBuffer(0);
    string.UnlockBuffer(99);
    EXPECT_EQ(string.Length(), 4);
}

TEST(String, CaseChanges) {
    BString string("hELLO wORLD 42");
    EXPECT_STREQ(BString(string).ToLower().String(), "hello world 42");
    EXPECT_STREQ(BString(string).ToUpper().String(), "HELLO WORLD 42");
    EXPECT_STREQ(BString(string).Capitalize().String(), "Hello world 42");
    EXPECT_STREQ(BString("the quick-brown fox").CapitalizeEachWord().String(),
                 "The Quick-Brown Fox");
}

TEST(String, CharacterEscapeAndDeescape) {
    BString string;
    string.CharacterEscape("a b\"c", " \"", '\\');
    EXPECT_STREQ(string.String(), "a\\ b\\\"c");
    string.CharacterDeescape('\\');
    EXPECT_STREQ(string.String(), "a b\"c");
    string.CharacterDeescape("x\\\\y\\", '\\');
    EXPECT_STREQ(string.String(), "x\\y\\");
}

TEST(String, StreamOperatorsFormatValues) {
    BString string;
    string << "n=" << 42 << ' ' << -7L << ' ' << 3000000000U << ' ' << (int64)-5 << ' '
           << (uint64)18446744073709551615ULL << ' ' << 1.5f << ' ' << 2.25 << ' ' << true << ' '
           << BString("end");
    EXPECT_STREQ(string.String(), "n=42 -7 3000000000 -5 18446744073709551615 1.50 2.25 true end");
}

TEST(String, StreamingHugeDoublesKeepsEveryDigit) {
    BString string;
    string << 1e300;
    EXPECT_EQ(string.Length(), 304);
    EXPECT_TRUE(string.EndsWith(".00"));
}

TEST(String, StringsWithNulBytesStayWhole) {
    BString string;
    char* buffer = string.LockBuffer(5);
    memcpy(buffer, "a\0b\0c", 5);
    string.UnlockBuffer(5);
    EXPECT_EQ(string.Length(), 5);
    EXPECT_EQ(string.FindFirst("c"), 4);
    string.ReplaceAll("b", "BB");
    EXPECT_EQ(string.Length(), 6);
    EXPECT_EQ(string.ByteAt(5), 'c');
    BString copy(string);
    EXPECT_EQ(copy.Length(), 6);
}
