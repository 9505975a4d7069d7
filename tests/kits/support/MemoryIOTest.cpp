// BMemoryIO: a stream over the caller's buffer.
#include <DataIO.h>

#include <gtest/gtest.h>

#include <stdio.h>
#include <string.h>

#include <string>

TEST(MemoryIO, ReadsTheBufferFromTheStart) {
    char data[] = "memory stream";
    BMemoryIO io(data, 13);
    char buffer[6];
    EXPECT_EQ(io.Read(buffer, 6), 6);
    EXPECT_EQ(std::string(buffer, 6), "memory");
    EXPECT_EQ(io.Position(), 6);
    off_t size = 0;
    EXPECT_EQ(io.GetSize(&size), B_OK);
    EXPECT_EQ(size, 13);
}

TEST(MemoryIO, ReadStopsAtTheEnd) {
    char data[] = "abc";
    BMemoryIO io(data, 3);
    char buffer[10];
    EXPECT_EQ(io.ReadAt(1, buffer, 10), 2);
    EXPECT_EQ(io.ReadAt(3, buffer, 10), 0);
    EXPECT_EQ(io.ReadAt(1000, buffer, 10), 0);
}

TEST(MemoryIO, WritesInPlaceButNeverGrows) {
    char data[8] = "xxxxxxx";
    BMemoryIO io(data, 8);
    EXPECT_EQ(io.WriteAt(2, "AB", 2), 2);
    EXPECT_EQ(std::string(data, 4), "xxAB");
    EXPECT_EQ(io.WriteAt(6, "12345", 5), 2);
    EXPECT_EQ(io.WriteAt(8, "z", 1), 0);
    EXPECT_EQ(data[7], '2');
}

TEST(MemoryIO, ConstBufferIsReadOnly) {
    const char data[] = "constant";
    BMemoryIO io(static_cast<const void*>(data), 8);
    char buffer[8];
    EXPECT_EQ(io.ReadAt(0, buffer, 8), 8);
    EXPECT_EQ(io.WriteAt(0, "no", 2), B_NOT_ALLOWED);
    EXPECT_EQ(io.SetSize(2), B_NOT_ALLOWED);
}

TEST(MemoryIO, SetSizeStaysWithinTheBuffer) {
    char data[10] = {};
    BMemoryIO io(data, 10);
    EXPECT_EQ(io.SetSize(4), B_OK);
    off_t size = 0;
    EXPECT_EQ(io.GetSize(&size), B_OK);
    EXPECT_EQ(size, 4);
    char buffer[10];
    EXPECT_EQ(io.ReadAt(0, buffer, 10), 4);

    EXPECT_EQ(io.SetSize(11), B_ERROR);
    EXPECT_EQ(io.SetSize(-1), B_ERROR);
    // Writing past the length (inside the buffer) lengthens it again.
    EXPECT_EQ(io.WriteAt(6, "ab", 2), 2);
    EXPECT_EQ(io.GetSize(&size), B_OK);
    EXPECT_EQ(size, 8);
}

TEST(MemoryIO, SeekMovesFromEachOrigin) {
    char data[10] = {};
    BMemoryIO io(data, 10);
    EXPECT_EQ(io.Seek(3, SEEK_SET), 3);
    EXPECT_EQ(io.Seek(2, SEEK_CUR), 5);
    EXPECT_EQ(io.Seek(-1, SEEK_END), 9);
    EXPECT_EQ(io.Seek(-20, SEEK_CUR), B_BAD_VALUE);
    EXPECT_EQ(io.Seek(0, 99), B_BAD_VALUE);
    EXPECT_EQ(io.Position(), 9);
}

TEST(MemoryIO, BadArgumentsAreRejected) {
    char data[4] = {};
    BMemoryIO io(data, 4);
    char buffer[4];
    EXPECT_EQ(io.ReadAt(0, NULL, 4), B_BAD_VALUE);
    EXPECT_EQ(io.ReadAt(-1, buffer, 4), B_BAD_VALUE);
    EXPECT_EQ(io.WriteAt(0, NULL, 4), B_BAD_VALUE);
    EXPECT_EQ(io.WriteAt(-1, buffer, 4), B_BAD_VALUE);
}

TEST(MemoryIO, NullBufferIsAnEmptyStream) {
    BMemoryIO io(static_cast<void*>(NULL), 100);
    char buffer[4];
    EXPECT_EQ(io.ReadAt(0, buffer, 4), 0);
    EXPECT_EQ(io.WriteAt(0, "ab", 2), 0);
}
