// BMallocIO: a growing heap buffer.
#include <DataIO.h>

#include <gtest/gtest.h>

#include <stdio.h>
#include <string.h>

#include <string>

TEST(MallocIO, NewStreamIsEmpty) {
    BMallocIO io;
    EXPECT_EQ(io.BufferLength(), 0u);
    EXPECT_EQ(io.Buffer(), nullptr);
    EXPECT_EQ(io.Position(), 0);
    char buffer[4];
    EXPECT_EQ(io.Read(buffer, 4), 0);
}

TEST(MallocIO, WriteGrowsTheBuffer) {
    BMallocIO io;
    EXPECT_EQ(io.Write("hello", 5), 5);
    EXPECT_EQ(io.Write(" world", 6), 6);
    EXPECT_EQ(io.BufferLength(), 11u);
    EXPECT_EQ(std::string(static_cast<const char*>(io.Buffer()), 11), "hello world");
    EXPECT_EQ(io.Position(), 11);
}

TEST(MallocIO, ReadReturnsWhatWasWritten) {
    BMallocIO io;
    io.Write("abcdef", 6);
    io.Seek(2, SEEK_SET);
    char buffer[10];
    EXPECT_EQ(io.Read(buffer, 10), 4);
    EXPECT_EQ(std::string(buffer, 4), "cdef");
    EXPECT_EQ(io.Read(buffer, 10), 0);
}

TEST(MallocIO, WritingPastTheEndFillsTheGapWithZeros) {
    BMallocIO io;
    io.Write("ab", 2);
    EXPECT_EQ(io.WriteAt(6, "z", 1), 1);
    ASSERT_EQ(io.BufferLength(), 7u);
    const char* data = static_cast<const char*>(io.Buffer());
    EXPECT_EQ(std::string(data, 7), std::string("ab\0\0\0\0z", 7));
}

TEST(MallocIO, SetSizeTruncatesAndExtends) {
    BMallocIO io;
    io.Write("0123456789", 10);
    EXPECT_EQ(io.SetSize(4), B_OK);
    EXPECT_EQ(io.BufferLength(), 4u);
    EXPECT_EQ(io.SetSize(6), B_OK);
    EXPECT_EQ(std::string(static_cast<const char*>(io.Buffer()), 6), std::string("0123\0\0", 6));
    EXPECT_EQ(io.SetSize(0), B_OK);
    EXPECT_EQ(io.Buffer(), nullptr);
    EXPECT_EQ(io.SetSize(-1), B_BAD_VALUE);
    // The position is not moved by a size change.
    EXPECT_EQ(io.Position(), 10);
}

TEST(MallocIO, BlockSizeDoesNotChangeTheContents) {
    BMallocIO io;
    io.SetBlockSize(1);
    for (int index = 0; index < 100; index++)
        ASSERT_EQ(io.Write("x", 1), 1);
    io.SetBlockSize(0);
    io.SetBlockSize(4096);
    EXPECT_EQ(io.Write("y", 1), 1);
    EXPECT_EQ(io.BufferLength(), 101u);
    EXPECT_EQ(static_cast<const char*>(io.Buffer())[100], 'y');
}

TEST(MallocIO, SeekMovesFromEachOrigin) {
    BMallocIO io;
    io.Write("0123456789", 10);
    EXPECT_EQ(io.Seek(3, SEEK_SET), 3);
    EXPECT_EQ(io.Seek(2, SEEK_CUR), 5);
    EXPECT_EQ(io.Seek(-1, SEEK_END), 9);
    EXPECT_EQ(io.Seek(100, SEEK_END), 110);
    EXPECT_EQ(io.Seek(-200, SEEK_CUR), B_BAD_VALUE);
    EXPECT_EQ(io.Seek(0, 42), B_BAD_VALUE);
    EXPECT_EQ(io.Position(), 110);
}

TEST(MallocIO, BadArgumentsAreRejected) {
    BMallocIO io;
    char buffer[4];
    EXPECT_EQ(io.ReadAt(0, NULL, 4), B_BAD_VALUE);
    EXPECT_EQ(io.ReadAt(-1, buffer, 4), B_BAD_VALUE);
    EXPECT_EQ(io.WriteAt(0, NULL, 4), B_BAD_VALUE);
    EXPECT_EQ(io.WriteAt(-1, buffer, 4), B_BAD_VALUE);
}

TEST(MallocIO, AbsurdSizesFailWithoutAllocating) {
    BMallocIO io;
    EXPECT_EQ(io.WriteAt(INT64_MAX - 2, "abc", 3), B_NO_MEMORY);
    EXPECT_EQ(io.SetSize(INT64_MAX), B_NO_MEMORY);
    EXPECT_EQ(io.BufferLength(), 0u);
}
