// Reading flattened messages written by others: hand-made byte strings of the R5
// layout in both byte orders and of Haiku's layout.
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

void ExpectRichValues(const BMessage& message) {
    EXPECT_EQ(message.what, uint32('RICH'));
    EXPECT_EQ(message.GetInt16("s16", 0), -2);
    EXPECT_EQ(message.GetInt32("i32", 0), 0x01020304);
    EXPECT_EQ(message.GetInt64("i64", 0), 0x0102030405060708LL);
    EXPECT_EQ(message.GetFloat("f", 0), 1.5f);
    EXPECT_EQ(message.GetDouble("d", 0), -2.5);
    EXPECT_EQ(message.GetPoint("p", BPoint()), BPoint(1, 2));
    EXPECT_EQ(message.GetRect("r", BRect()), BRect(1, 2, 3, 4));
    EXPECT_TRUE(message.GetBool("b", false));
    EXPECT_STREQ(message.GetString("str"), "hello");
    EXPECT_EQ(message.GetInt32("many", 0, 0), 10);
    EXPECT_EQ(message.GetInt32("many", 1, 0), 20);
    EXPECT_EQ(message.GetInt32("many", 2, 0), 30);
    entry_ref ref;
    ASSERT_EQ(message.FindRef("ref", &ref), B_OK);
    EXPECT_EQ(ref.device, 3);
    EXPECT_EQ(ref.directory, 1234);
    EXPECT_STREQ(ref.name, "file");
    BMessage nested;
    ASSERT_EQ(message.FindMessage("nested", &nested), B_OK);
    EXPECT_EQ(nested.what, uint32('NEST'));
    EXPECT_EQ(nested.GetInt32("v", 0), 77);
}

TEST(MessageUnflatten, ReadsTheR5WorkedExample) {
    BMessage message;
    ASSERT_EQ(message.Unflatten(reinterpret_cast<const char*>(kR5Example)), B_OK);
    EXPECT_EQ(message.what, uint32('TEST'));
    EXPECT_EQ(message.GetInt32("x", 0), 5);
    EXPECT_STREQ(message.GetString("s"), "hi");
    EXPECT_EQ(message.CountNames(B_ANY_TYPE), 2);
}

TEST(MessageUnflatten, ReadsEveryCommonTypeFromLittleEndianR5) {
    std::vector<uint8> bytes = RichR5Message(false);
    BMessage message;
    ASSERT_EQ(UnflattenBytes(&message, bytes, bytes.size()), B_OK);
    ExpectRichValues(message);
}

TEST(MessageUnflatten, ReadsEveryCommonTypeFromBigEndianR5) {
    std::vector<uint8> bytes = RichR5Message(true);
    ASSERT_EQ(memcmp(bytes.data(), "FOB1", 4), 0);
    BMessage message;
    ASSERT_EQ(UnflattenBytes(&message, bytes, bytes.size()), B_OK);
    ExpectRichValues(message);
}

TEST(MessageUnflatten, BigEndianR5FromAStreamToo) {
    std::vector<uint8> bytes = RichR5Message(true);
    BMessage message;
    ASSERT_EQ(UnflattenStream(&message, bytes, bytes.size()), B_OK);
    ExpectRichValues(message);
}

TEST(MessageUnflatten, ReadsR5FieldsWithoutMiniData) {
    FlatMessageBuilder bytes;
    bytes.R5Header('FULL');
    bytes.U8(0x0d).U32(B_INT32_TYPE).U32(4).U8(1).Text("a").U32(9); // single, full size word
    bytes.U8(0x01).U32(B_STRING_TYPE).U32(1).U32(8).U8(1).Text("b").U32(2).CString("z").Zeros(2);
    bytes.U8(0x07).U32(B_INT16_TYPE).U8(2).U8(4).U8(1).Text("c").U16(1).U16(2); // mini, count byte
    bytes.U8(0).FinishR5();
    BMessage message;
    ASSERT_EQ(UnflattenBytes(&message, bytes.Data(), bytes.Size()), B_OK);
    EXPECT_EQ(message.GetInt32("a", 0), 9);
    EXPECT_STREQ(message.GetString("b"), "z");
    EXPECT_EQ(message.GetInt16("c", 1, 0), 2);
    bool fixedSize = true;
    type_code type;
    message.GetInfo("b", &type, &fixedSize);
    EXPECT_FALSE(fixedSize);
}

TEST(MessageUnflatten, SkipsR5TargetAndReplyInformation) {
    FlatMessageBuilder bytes;
    bytes.R5Header('RPLY', 0x01 | 0x02 | 0x04);
    bytes.U32(17);              // target token
    bytes.U32(5).U32(6).U32(7); // reply port, token, team
    bytes.U8(1).U8(1).U8(0).U8(0);
    bytes.U8(0x0f).U32(B_INT32_TYPE).U8(4).U8(1).Text("x").U32(42);
    bytes.U8(0).FinishR5(37);
    BMessage message;
    ASSERT_EQ(UnflattenBytes(&message, bytes.Data(), bytes.Size()), B_OK);
    EXPECT_EQ(message.what, uint32('RPLY'));
    EXPECT_EQ(message.GetInt32("x", 0), 42);
    EXPECT_FALSE(message.IsSourceWaiting());
}

TEST(MessageUnflatten, AcceptsAMissingPaddingAfterTheLastItem) {
    FlatMessageBuilder bytes;
    bytes.R5Header('PADS');
    bytes.U8(0x0b).U32(B_STRING_TYPE).U8(7).U8(1).Text("s").U32(3).CString("hi");
    bytes.U8(0).FinishR5();
    BMessage message;
    ASSERT_EQ(UnflattenBytes(&message, bytes.Data(), bytes.Size()), B_OK);
    EXPECT_STREQ(message.GetString("s"), "hi");
}

TEST(MessageUnflatten, ReadsTheHaikuWorkedExample) {
    BMessage message;
    ASSERT_EQ(message.Unflatten(reinterpret_cast<const char*>(kHaikuExample)), B_OK);
    EXPECT_EQ(message.what, uint32('TEST'));
    EXPECT_EQ(message.GetInt32("x", 0), 5);
    EXPECT_STREQ(message.GetString("s"), "hi");
}

// Haiku: several items, a nested Haiku message, and fields whose data areas are
// not in field order.
TEST(MessageUnflatten, ReadsHaikuMultiItemAndNestedFields) {
    std::vector<uint8> nested = HaikuExample();
    FlatMessageBuilder area;
    area.CString("m").U32(static_cast<uint32>(nested.size())).Bytes(nested); // offset 0
    size_t numbersOffset = area.Size();
    area.CString("n").U32(1).U32(2);
    size_t stringsOffset = area.Size();
    area.CString("s").U32(2).CString("a").U32(3).CString("bc");

    FlatMessageBuilder bytes;
    bytes.U32('1FMH').U32('HAIK').U32(0x01);
    for (int i = 0; i < 6; i++)
        bytes.U32(0xffffffff);
    bytes.U32(static_cast<uint32>(area.Size())).U32(3).U32(5);
    bytes.U32(0).U32(0xffffffff).U32(0xffffffff).U32(0xffffffff).U32(0xffffffff);
    bytes.U16(0x03)
        .U16(2)
        .U32(B_INT32_TYPE)
        .U32(2)
        .U32(8)
        .U32(static_cast<uint32>(numbersOffset))
        .U32(1);
    bytes.U16(0x01)
        .U16(2)
        .U32(B_STRING_TYPE)
        .U32(2)
        .U32(13)
        .U32(static_cast<uint32>(stringsOffset))
        .U32(2);
    bytes.U16(0x01)
        .U16(2)
        .U32(B_MESSAGE_TYPE)
        .U32(1)
        .U32(4 + static_cast<uint32>(nested.size()))
        .U32(0)
        .U32(0xffffffff);
    bytes.Bytes(area.Data());

    BMessage message;
    ASSERT_EQ(UnflattenBytes(&message, bytes.Data(), bytes.Size()), B_OK);
    EXPECT_EQ(message.what, uint32('HAIK'));
    EXPECT_EQ(message.GetInt32("n", 1, 0), 2);
    EXPECT_STREQ(message.GetString("s", 1, NULL), "bc");
    char* name;
    type_code type;
    ASSERT_EQ(message.GetInfo(B_ANY_TYPE, 2, &name, &type), B_OK);
    EXPECT_STREQ(name, "m");
    BMessage inner;
    ASSERT_EQ(message.FindMessage("m", &inner), B_OK);
    EXPECT_EQ(inner.what, uint32('TEST'));
    EXPECT_STREQ(inner.GetString("s"), "hi");
}

TEST(MessageUnflatten, HaikuFromTheOtherByteOrderIsNotAMessage) {
    std::vector<uint8> bytes = HaikuExample();
    std::reverse(bytes.begin(), bytes.begin() + 4);
    BMessage message;
    EXPECT_EQ(UnflattenBytes(&message, bytes, bytes.size()), B_NOT_A_MESSAGE);
}

TEST(MessageUnflatten, UnknownFormatIsNotAMessage) {
    std::vector<uint8> bytes(64, 0);
    memcpy(bytes.data(), "JUNK", 4);
    BMessage message;
    EXPECT_EQ(UnflattenBytes(&message, bytes, bytes.size()), B_NOT_A_MESSAGE);
    EXPECT_EQ(UnflattenStream(&message, bytes, bytes.size()), B_NOT_A_MESSAGE);
    EXPECT_EQ(message.Unflatten(reinterpret_cast<const char*>(bytes.data())), B_NOT_A_MESSAGE);
}

TEST(MessageUnflatten, DanoFormatIsReportedAsUnsupported) {
    std::vector<uint8> bytes(64, 0);
    memcpy(bytes.data(), "2BOF", 4);
    BMessage message;
    EXPECT_EQ(UnflattenBytes(&message, bytes, bytes.size()), B_NOT_SUPPORTED);
    EXPECT_EQ(UnflattenStream(&message, bytes, bytes.size()), B_NOT_SUPPORTED);
}

TEST(MessageUnflatten, NullInputIsBadValue) {
    BMessage message;
    EXPECT_EQ(message.Unflatten(static_cast<const char*>(NULL)), B_BAD_VALUE);
    EXPECT_EQ(message.Unflatten(static_cast<BDataIO*>(NULL)), B_BAD_VALUE);
}

TEST(MessageUnflatten, FailureLeavesTheMessageEmpty) {
    BMessage message('KEEP');
    message.AddInt32("old", 1);
    std::vector<uint8> bytes = R5Example();
    EXPECT_NE(UnflattenBytes(&message, bytes, bytes.size() - 1), B_OK);
    EXPECT_TRUE(message.IsEmpty());
}

TEST(MessageUnflatten, StringItemWithoutNulIsKeptButNotReturnedAsAString) {
    FlatMessageBuilder bytes;
    bytes.R5Header('STRG')
        .U8(0x0b)
        .U32(B_STRING_TYPE)
        .U8(8)
        .U8(1)
        .Text("s")
        .U32(3)
        .Text("abc")
        .Zeros(1);
    bytes.U8(0).FinishR5();
    BMessage message;
    ASSERT_EQ(UnflattenBytes(&message, bytes.Data(), bytes.Size()), B_OK);
    const char* string;
    EXPECT_EQ(message.FindString("s", &string), B_BAD_VALUE);
    const void* data;
    ssize_t size;
    EXPECT_EQ(message.FindData("s", B_STRING_TYPE, &data, &size), B_OK);
    EXPECT_EQ(size, 3);
}

TEST(MessageUnflatten, NestedMessageLongerThanItsItemFails) {
    std::vector<uint8> nested = R5Example();
    nested.resize(30); // the nested header still announces 46 bytes
    BMessage message;
    ASSERT_EQ(message.AddData("nested", B_MESSAGE_TYPE, nested.data(),
                              static_cast<ssize_t>(nested.size()), false),
              B_OK);
    BMessage found;
    EXPECT_EQ(message.FindMessage("nested", &found), B_BAD_VALUE);
}

TEST(MessageUnflatten, TinyInputsFail) {
    BMessage message;
    for (size_t length = 0; length < 4; length++) {
        std::vector<uint8> bytes(kR5Example, kR5Example + length);
        EXPECT_EQ(UnflattenBytes(&message, bytes, length), B_BAD_VALUE);
        EXPECT_EQ(UnflattenStream(&message, bytes, length), B_BAD_VALUE);
    }
}

} // namespace
