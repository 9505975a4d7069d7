// Damaged flattened messages: cut short, with sizes and counts that do not fit, with
// bad names. Every one must come back as an error, with nothing read out of bounds.
#include <Message.h>

#include <DataIO.h>
#include <Entry.h>

#include <gtest/gtest.h>

#include <string.h>

#include <algorithm>
#include <vector>

#include "FlatMessageBuilder.h"
#include "FlatMessageExamples.h"

using namespace testing_support;

namespace {

TEST(MessageDamagedInput, R5CutAtAnyByteFails) {
    for (bool bigEndian : {false, true}) {
        std::vector<uint8> bytes = RichR5Message(bigEndian);
        for (size_t length = 0; length < bytes.size(); length++) {
            BMessage message;
            EXPECT_NE(UnflattenBytes(&message, bytes, length), B_OK) << length;
            EXPECT_NE(UnflattenStream(&message, bytes, length), B_OK) << length;
            EXPECT_TRUE(message.IsEmpty());
        }
    }
}

TEST(MessageDamagedInput, R5WithAnyShorterDeclaredSizeFails) {
    std::vector<uint8> bytes = RichR5Message(false);
    for (uint32 declared = 0; declared < bytes.size(); declared++) {
        std::vector<uint8> damaged = bytes;
        memcpy(damaged.data() + 8, &declared, 4);
        BMessage message;
        EXPECT_NE(UnflattenBytes(&message, damaged, damaged.size()), B_OK) << declared;
    }
}

TEST(MessageDamagedInput, HaikuCutAtAnyByteFails) {
    std::vector<uint8> bytes = HaikuExample();
    for (size_t length = 0; length < bytes.size(); length++) {
        BMessage message;
        EXPECT_NE(UnflattenBytes(&message, bytes, length), B_OK) << length;
        EXPECT_NE(UnflattenStream(&message, bytes, length), B_OK) << length;
    }
}

TEST(MessageDamagedInput, HaikuWithAnyShorterDataSizeFails) {
    std::vector<uint8> bytes = HaikuExample();
    for (uint32 dataSize = 0; dataSize < 15; dataSize++) {
        std::vector<uint8> damaged = bytes;
        memcpy(damaged.data() + 36, &dataSize, 4);
        BMessage message;
        EXPECT_NE(UnflattenBytes(&message, damaged, damaged.size()), B_OK) << dataSize;
    }
}

// One damaged R5 field after a valid header; the message must be refused.
std::vector<uint8> R5WithField(const FlatMessageBuilder& field) {
    FlatMessageBuilder bytes;
    bytes.R5Header('BAD!').Bytes(field.Data()).U8(0).FinishR5();
    return bytes.Data();
}

void ExpectR5FieldRefused(const FlatMessageBuilder& field) {
    std::vector<uint8> bytes = R5WithField(field);
    BMessage message;
    EXPECT_EQ(UnflattenBytes(&message, bytes, bytes.size()), B_BAD_VALUE);
    EXPECT_TRUE(message.IsEmpty());
}

TEST(MessageDamagedInput, R5DeclaredSizeBeyondTheDataFails) {
    std::vector<uint8> bytes = R5Example();
    uint32 declared = 47;
    memcpy(bytes.data() + 8, &declared, 4);
    BMessage message;
    EXPECT_EQ(UnflattenBytes(&message, bytes, bytes.size()), B_BAD_VALUE);
    declared = 0x80000000;
    memcpy(bytes.data() + 8, &declared, 4);
    EXPECT_EQ(UnflattenBytes(&message, bytes, bytes.size()), B_BAD_VALUE);
    EXPECT_EQ(UnflattenStream(&message, bytes, bytes.size()), B_BAD_VALUE);
}

TEST(MessageDamagedInput, R5FieldSizeBeyondTheMessageFails) {
    FlatMessageBuilder field;
    field.U8(0x0d).U32(B_RAW_TYPE).U32(1000).U8(1).Text("x").U32(1);
    ExpectR5FieldRefused(field);
}

TEST(MessageDamagedInput, R5FixedSizeNotAMultipleOfTheCountFails) {
    FlatMessageBuilder field;
    field.U8(0x07).U32(B_RAW_TYPE).U8(3).U8(8).U8(1).Text("x").Zeros(8);
    ExpectR5FieldRefused(field);
}

TEST(MessageDamagedInput, R5FixedFieldWithNoDataFails) {
    FlatMessageBuilder field;
    field.U8(0x0f).U32(B_RAW_TYPE).U8(0).U8(1).Text("x");
    ExpectR5FieldRefused(field);
}

TEST(MessageDamagedInput, R5ItemLengthBeyondItsFieldFails) {
    FlatMessageBuilder field;
    field.U8(0x0b).U32(B_STRING_TYPE).U8(8).U8(1).Text("s").U32(200).CString("abc");
    ExpectR5FieldRefused(field);
}

TEST(MessageDamagedInput, R5NegativeItemLengthFails) {
    FlatMessageBuilder field;
    field.U8(0x0b).U32(B_STRING_TYPE).U8(8).U8(1).Text("s").U32(0xfffffffc).CString("abc");
    ExpectR5FieldRefused(field);
}

TEST(MessageDamagedInput, R5MoreItemsCountedThanPresentFails) {
    FlatMessageBuilder field;
    field.U8(0x03).U32(B_STRING_TYPE).U8(3).U8(8).U8(1).Text("s").U32(3).CString("ab").Zeros(1);
    ExpectR5FieldRefused(field);
}

TEST(MessageDamagedInput, R5HugeCountWithLittleDataFails) {
    FlatMessageBuilder fixed;
    fixed.U8(0x05).U32(B_INT32_TYPE).U32(0x7fffffff).U32(8).U8(1).Text("x").Zeros(8);
    ExpectR5FieldRefused(fixed);
    FlatMessageBuilder variable;
    variable.U8(0x01).U32(B_RAW_TYPE).U32(0x7fffffff).U32(8).U8(1).Text("x").U32(1).Zeros(4);
    ExpectR5FieldRefused(variable);
}

TEST(MessageDamagedInput, R5NegativeCountOrSizeFails) {
    FlatMessageBuilder count;
    count.U8(0x05).U32(B_INT32_TYPE).U32(0xffffffff).U32(4).U8(1).Text("x").Zeros(4);
    ExpectR5FieldRefused(count);
    FlatMessageBuilder size;
    size.U8(0x0d).U32(B_INT32_TYPE).U32(0xfffffffc).U8(1).Text("x").Zeros(4);
    ExpectR5FieldRefused(size);
}

TEST(MessageDamagedInput, R5ZeroCountWithDataFails) {
    FlatMessageBuilder field;
    field.U8(0x07).U32(B_INT32_TYPE).U8(0).U8(4).U8(1).Text("x").Zeros(4);
    ExpectR5FieldRefused(field);
}

TEST(MessageDamagedInput, R5NameWithANulByteFails) {
    FlatMessageBuilder field;
    field.U8(0x0f).U32(B_INT32_TYPE).U8(4).U8(3).Bytes("a\0b", 3).U32(1);
    ExpectR5FieldRefused(field);
}

TEST(MessageDamagedInput, R5RepeatedFieldNameFails) {
    FlatMessageBuilder fields;
    fields.U8(0x0f).U32(B_INT32_TYPE).U8(4).U8(1).Text("x").U32(1);
    fields.U8(0x0f).U32(B_INT32_TYPE).U8(4).U8(1).Text("x").U32(2);
    ExpectR5FieldRefused(fields);
}

TEST(MessageDamagedInput, R5WithoutTerminatorFails) {
    std::vector<uint8> bytes = R5Example();
    bytes.pop_back();
    uint32 declared = static_cast<uint32>(bytes.size());
    memcpy(bytes.data() + 8, &declared, 4);
    BMessage message;
    EXPECT_EQ(UnflattenBytes(&message, bytes, bytes.size()), B_BAD_VALUE);
}

TEST(MessageDamagedInput, SwappedNumberOfAnOddSizeFails) {
    FlatMessageBuilder bytes(true);
    bytes.R5Header('SWAP').U8(0x0f).U32(B_INT32_TYPE).U8(3).U8(1).Text("x").Zeros(3);
    bytes.U8(0).FinishR5();
    BMessage message;
    EXPECT_EQ(UnflattenBytes(&message, bytes.Data(), bytes.Size()), B_BAD_VALUE);
}

TEST(MessageDamagedInput, SwappedRefShorterThanTwelveBytesFails) {
    FlatMessageBuilder bytes(true);
    bytes.R5Header('SWAP').U8(0x0b).U32(B_REF_TYPE).U8(16).U8(1).Text("r").U32(8).Zeros(12);
    bytes.U8(0).FinishR5();
    BMessage message;
    EXPECT_EQ(UnflattenBytes(&message, bytes.Data(), bytes.Size()), B_BAD_VALUE);
}

void ExpectHaikuRefused(const std::vector<uint8>& bytes) {
    BMessage message;
    EXPECT_EQ(UnflattenBytes(&message, bytes, bytes.size()), B_BAD_VALUE);
    EXPECT_EQ(UnflattenStream(&message, bytes, bytes.size()), B_BAD_VALUE);
    EXPECT_TRUE(message.IsEmpty());
}

void Patch16(std::vector<uint8>& bytes, size_t offset, uint16 value) {
    memcpy(bytes.data() + offset, &value, 2);
}

void Patch32(std::vector<uint8>& bytes, size_t offset, uint32 value) {
    memcpy(bytes.data() + offset, &value, 4);
}

TEST(MessageDamagedInput, HaikuWithoutTheValidFlagFails) {
    std::vector<uint8> bytes = HaikuExample();
    Patch32(bytes, 8, 0);
    ExpectHaikuRefused(bytes);
}

TEST(MessageDamagedInput, HaikuHugeFieldCountFails) {
    std::vector<uint8> bytes = HaikuExample();
    Patch32(bytes, 40, 0x10000000);
    ExpectHaikuRefused(bytes);
    Patch32(bytes, 40, 0xffffffff);
    ExpectHaikuRefused(bytes);
}

TEST(MessageDamagedInput, HaikuHugeDataSizeFails) {
    std::vector<uint8> bytes = HaikuExample();
    Patch32(bytes, 36, 0xfffffff0);
    ExpectHaikuRefused(bytes);
}

TEST(MessageDamagedInput, HaikuFieldOffsetOutsideTheDataFails) {
    std::vector<uint8> bytes = HaikuExample();
    Patch32(bytes, 68 + 24 + 16, 14);
    ExpectHaikuRefused(bytes);
    Patch32(bytes, 68 + 24 + 16, 0xfffffffe);
    ExpectHaikuRefused(bytes);
}

TEST(MessageDamagedInput, HaikuFieldDataSizeOutsideTheDataFails) {
    std::vector<uint8> bytes = HaikuExample();
    Patch32(bytes, 68 + 12, 0xfffffffc);
    ExpectHaikuRefused(bytes);
}

TEST(MessageDamagedInput, HaikuNameWithoutNulFails) {
    std::vector<uint8> bytes = HaikuExample();
    bytes[68 + 48 + 1] = 'y'; // "x\0" becomes "xy"
    ExpectHaikuRefused(bytes);
}

TEST(MessageDamagedInput, HaikuEmptyNameLengthFails) {
    std::vector<uint8> bytes = HaikuExample();
    Patch16(bytes, 68 + 2, 0);
    ExpectHaikuRefused(bytes);
}

TEST(MessageDamagedInput, HaikuFieldWithoutTheValidFlagFails) {
    std::vector<uint8> bytes = HaikuExample();
    Patch16(bytes, 68, 0x02);
    ExpectHaikuRefused(bytes);
}

TEST(MessageDamagedInput, HaikuItemLengthBeyondItsFieldFails) {
    std::vector<uint8> bytes = HaikuExample();
    Patch32(bytes, 68 + 48 + 8, 4); // the string's item length: 3 -> 4
    ExpectHaikuRefused(bytes);
}

TEST(MessageDamagedInput, HaikuFixedCountNotDividingTheSizeFails) {
    std::vector<uint8> bytes = HaikuExample();
    Patch32(bytes, 68 + 8, 3); // four bytes as three items
    ExpectHaikuRefused(bytes);
}

// A stream that serves a few bytes and remembers the largest read asked of it.
class ShortStream : public BDataIO {
public:
    ShortStream(const std::vector<uint8>& bytes) : fBytes(bytes) {}

    ssize_t Read(void* buffer, size_t size) override {
        fLargestRequest = std::max(fLargestRequest, size);
        size_t count = std::min(size, fBytes.size() - fPosition);
        memcpy(buffer, fBytes.data() + fPosition, count);
        fPosition += count;
        return static_cast<ssize_t>(count);
    }

    size_t Position() const { return fPosition; }
    size_t LargestRequest() const { return fLargestRequest; }

private:
    std::vector<uint8> fBytes;
    size_t fPosition = 0;
    size_t fLargestRequest = 0;
};

TEST(MessageDamagedInput, StreamHeaderClaimingGigabytesCostsNothingUpFront) {
    std::vector<uint8> bytes = R5Example();
    uint32 declared = 0x7fffffff;
    memcpy(bytes.data() + 8, &declared, 4);
    ShortStream stream(bytes);
    BMessage message;
    EXPECT_EQ(message.Unflatten(&stream), B_BAD_VALUE);
    EXPECT_LE(stream.LargestRequest(), size_t(64 * 1024));
}

TEST(MessageDamagedInput, StreamReadsExactlyOneMessage) {
    std::vector<uint8> bytes = R5Example();
    std::vector<uint8> haiku = HaikuExample();
    bytes.insert(bytes.end(), haiku.begin(), haiku.end());
    ShortStream stream(bytes);
    BMessage first;
    ASSERT_EQ(first.Unflatten(&stream), B_OK);
    EXPECT_EQ(stream.Position(), sizeof(kR5Example));
    BMessage second;
    ASSERT_EQ(second.Unflatten(&stream), B_OK);
    EXPECT_EQ(stream.Position(), bytes.size());
    EXPECT_STREQ(second.GetString("s"), "hi");
}

} // namespace
