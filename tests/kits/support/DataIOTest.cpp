// BDataIO and BPositionIO: the defaults and the exact-size loops.
#include <DataIO.h>

#include <gtest/gtest.h>

#include <string.h>

#include <algorithm>
#include <string>

namespace {

// Moves at most `chunk` bytes per call, from or into a string; can be told to fail.
class TrickleIO : public BDataIO {
public:
    TrickleIO(const std::string& input, size_t chunk) : fInput(input), fChunk(chunk) {}

    ssize_t Read(void* buffer, size_t size) override {
        if (fError != B_OK)
            return fError;
        size_t count = std::min({size, fChunk, fInput.size() - fReadPosition});
        memcpy(buffer, fInput.data() + fReadPosition, count);
        fReadPosition += count;
        return (ssize_t)count;
    }

    ssize_t Write(const void* buffer, size_t size) override {
        if (fError != B_OK)
            return fError;
        size_t count = std::min({size, fChunk, fCapacity - fOutput.size()});
        fOutput.append(static_cast<const char*>(buffer), count);
        return (ssize_t)count;
    }

    std::string fInput;
    size_t fChunk;
    size_t fReadPosition = 0;
    std::string fOutput;
    size_t fCapacity = 1000;
    status_t fError = B_OK;
};

class PlainIO : public BDataIO {};

} // namespace

TEST(DataIO, PlainStreamCannotReadOrWrite) {
    PlainIO io;
    char buffer[4];
    EXPECT_EQ(io.Read(buffer, sizeof(buffer)), B_NOT_SUPPORTED);
    EXPECT_EQ(io.Write(buffer, sizeof(buffer)), B_NOT_SUPPORTED);
    EXPECT_EQ(io.Flush(), B_OK);
}

TEST(DataIO, ReadExactlyGathersShortReads) {
    TrickleIO io("abcdefghij", 3);
    char buffer[10];
    size_t bytesRead = 0;
    EXPECT_EQ(io.ReadExactly(buffer, sizeof(buffer), &bytesRead), B_OK);
    EXPECT_EQ(bytesRead, 10u);
    EXPECT_EQ(std::string(buffer, 10), "abcdefghij");
}

TEST(DataIO, ReadExactlyReportsAnEarlyEnd) {
    TrickleIO io("abc", 2);
    char buffer[10];
    size_t bytesRead = 0;
    EXPECT_EQ(io.ReadExactly(buffer, sizeof(buffer), &bytesRead), B_PARTIAL_READ);
    EXPECT_EQ(bytesRead, 3u);
}

TEST(DataIO, ReadExactlyPassesTheStreamError) {
    TrickleIO io("abc", 2);
    io.fError = B_IO_ERROR;
    char buffer[2];
    EXPECT_EQ(io.ReadExactly(buffer, sizeof(buffer)), B_IO_ERROR);
}

TEST(DataIO, WriteExactlyScattersShortWrites) {
    TrickleIO io("", 4);
    size_t written = 0;
    EXPECT_EQ(io.WriteExactly("0123456789", 10, &written), B_OK);
    EXPECT_EQ(written, 10u);
    EXPECT_EQ(io.fOutput, "0123456789");
}

TEST(DataIO, WriteExactlyReportsAFullStream) {
    TrickleIO io("", 4);
    io.fCapacity = 6;
    size_t written = 0;
    EXPECT_EQ(io.WriteExactly("0123456789", 10, &written), B_PARTIAL_WRITE);
    EXPECT_EQ(written, 6u);
}

TEST(DataIO, ExactlyOfNothingSucceeds) {
    TrickleIO io("", 1);
    EXPECT_EQ(io.ReadExactly(NULL, 0), B_OK);
    EXPECT_EQ(io.WriteExactly(NULL, 0), B_OK);
}

// #pragma mark - BPositionIO

namespace {

// The smallest random-access stream: a fixed string, moved through by position.
class FixedPositionIO : public BPositionIO {
public:
    explicit FixedPositionIO(const std::string& data) : fData(data) {}

    ssize_t ReadAt(off_t position, void* buffer, size_t size) override {
        if (position < 0)
            return B_BAD_VALUE;
        if ((size_t)position >= fData.size())
            return 0;
        size_t count = std::min(size, fData.size() - (size_t)position);
        memcpy(buffer, fData.data() + position, count);
        return (ssize_t)count;
    }

    ssize_t WriteAt(off_t position, const void* buffer, size_t size) override {
        if (position < 0)
            return B_BAD_VALUE;
        if ((size_t)position + size > fData.size())
            fData.resize((size_t)position + size);
        memcpy(&fData[position], buffer, size);
        return (ssize_t)size;
    }

    off_t Seek(off_t position, uint32 seekMode) override {
        off_t base = seekMode == SEEK_SET ? 0 : seekMode == SEEK_CUR ? fPosition : fData.size();
        fPosition = base + position;
        return fPosition;
    }

    off_t Position() const override { return fPosition; }

    std::string fData;
    off_t fPosition = 0;
};

} // namespace

TEST(PositionIO, ReadAndWriteMoveThePosition) {
    FixedPositionIO io("hello world");
    char buffer[5];
    EXPECT_EQ(io.Read(buffer, 5), 5);
    EXPECT_EQ(std::string(buffer, 5), "hello");
    EXPECT_EQ(io.Position(), 5);

    EXPECT_EQ(io.Write("!!", 2), 2);
    EXPECT_EQ(io.Position(), 7);
    EXPECT_EQ(io.fData, "hello!!orld");
}

TEST(PositionIO, GetSizeFindsTheEndAndKeepsThePosition) {
    FixedPositionIO io("twelve bytes");
    io.Seek(4, SEEK_SET);
    off_t size = 0;
    EXPECT_EQ(io.GetSize(&size), B_OK);
    EXPECT_EQ(size, 12);
    EXPECT_EQ(io.Position(), 4);
    EXPECT_EQ(io.GetSize(NULL), B_BAD_VALUE);
}

TEST(PositionIO, SetSizeIsNotSupportedByDefault) {
    FixedPositionIO io("x");
    EXPECT_EQ(io.SetSize(10), B_ERROR);
}

TEST(PositionIO, ReadAtExactlyAndWriteAtExactlyWorkAtAPosition) {
    FixedPositionIO io("0123456789");
    char buffer[4];
    EXPECT_EQ(io.ReadAtExactly(3, buffer, 4), B_OK);
    EXPECT_EQ(std::string(buffer, 4), "3456");
    size_t bytesRead = 0;
    EXPECT_EQ(io.ReadAtExactly(8, buffer, 4, &bytesRead), B_PARTIAL_READ);
    EXPECT_EQ(bytesRead, 2u);

    EXPECT_EQ(io.WriteAtExactly(10, "ab", 2), B_OK);
    EXPECT_EQ(io.fData, "0123456789ab");
    EXPECT_EQ(io.Position(), 0);
}
