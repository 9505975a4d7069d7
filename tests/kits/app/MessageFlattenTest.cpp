// Flattening a BMessage: the bytes we write (the BeOS R5 layout) and round trips of
// every field type through Flatten and Unflatten.
#include <Message.h>

#include <DataIO.h>
#include <Entry.h>
#include <GraphicsDefs.h>
#include <Messenger.h>

#include <gtest/gtest.h>

#include <string.h>

#include <string>
#include <vector>

#include "FlatMessageBuilder.h"

using testing_support::FlatMessageBuilder;

namespace {

std::vector<uint8> Flattened(const BMessage& message) {
    ssize_t size = message.FlattenedSize();
    EXPECT_GT(size, 0);
    std::vector<uint8> bytes(static_cast<size_t>(size));
    EXPECT_EQ(message.Flatten(reinterpret_cast<char*>(bytes.data()), size), B_OK);
    return bytes;
}

BMessage RoundTrip(const BMessage& message) {
    std::vector<uint8> bytes = Flattened(message);
    BMessage copy;
    EXPECT_EQ(copy.Unflatten(reinterpret_cast<const char*>(bytes.data())), B_OK);
    return copy;
}

TEST(MessageFlatten, WritesTheR5LayoutByteForByte) {
    BMessage message('TEST');
    message.AddInt32("x", 5);
    message.AddString("s", "hi");

    const uint8 expected[] = {0x31, 0x42, 0x4f, 0x46, 0x55, 0x45, 0x53, 0x82, 0x2e, 0x00,
                              0x00, 0x00, 0x54, 0x53, 0x45, 0x54, 0x01, 0x0f, 0x47, 0x4e,
                              0x4f, 0x4c, 0x04, 0x01, 0x78, 0x05, 0x00, 0x00, 0x00, 0x0b,
                              0x52, 0x54, 0x53, 0x43, 0x08, 0x01, 0x73, 0x03, 0x00, 0x00,
                              0x00, 0x68, 0x69, 0x00, 0x00, 0x00};
    EXPECT_EQ(message.FlattenedSize(), ssize_t(sizeof(expected)));
    EXPECT_EQ(Flattened(message), std::vector<uint8>(expected, expected + sizeof(expected)));
}

TEST(MessageFlatten, EmptyMessageIsHeaderAndTerminator) {
    BMessage message('EMPT');
    std::vector<uint8> bytes = Flattened(message);
    FlatMessageBuilder expected;
    expected.R5Header('EMPT').U8(0).FinishR5();
    EXPECT_EQ(bytes, expected.Data());
}

TEST(MessageFlatten, SeveralItemsCarryACountByte) {
    BMessage message('TEST');
    message.AddInt32("n", 1);
    message.AddInt32("n", 2);
    FlatMessageBuilder expected;
    expected.R5Header('TEST')
        .U8(0x07) // valid, mini data, fixed size
        .U32(B_INT32_TYPE)
        .U8(2)
        .U8(8)
        .U8(1)
        .Text("n")
        .U32(1)
        .U32(2)
        .U8(0)
        .FinishR5();
    EXPECT_EQ(Flattened(message), expected.Data());
}

TEST(MessageFlatten, LargeFieldsUseFullSizeWords) {
    BMessage message('TEST');
    std::vector<uint8> block(300, 0xab);
    message.AddData("big", B_RAW_TYPE, block.data(), 300, true);
    message.AddData("big", B_RAW_TYPE, block.data(), 300, true);
    FlatMessageBuilder expected;
    expected.R5Header('TEST')
        .U8(0x05) // valid, fixed size
        .U32(B_RAW_TYPE)
        .U32(2)
        .U32(600)
        .U8(3)
        .Text("big")
        .Bytes(block)
        .Bytes(block)
        .U8(0)
        .FinishR5();
    EXPECT_EQ(Flattened(message), expected.Data());
}

TEST(MessageFlatten, VariableItemsArePaddedToEightBytes) {
    BMessage message('TEST');
    message.AddString("s", "abcd");   // 4 + 5 -> 16
    message.AddString("s", "abc");    // 4 + 4 -> 8
    message.AddString("s", "abcdef"); // 4 + 7 -> 16, padding included in the last item too
    FlatMessageBuilder expected;
    expected.R5Header('TEST')
        .U8(0x03) // valid, mini data
        .U32(B_STRING_TYPE)
        .U8(3)
        .U8(40)
        .U8(1)
        .Text("s")
        .U32(5)
        .CString("abcd")
        .Zeros(7)
        .U32(4)
        .CString("abc")
        .U32(7)
        .CString("abcdef")
        .Zeros(5)
        .U8(0)
        .FinishR5();
    EXPECT_EQ(Flattened(message), expected.Data());
}

TEST(MessageFlatten, FlattenedSizeMatchesTheBytesWritten) {
    BMessage message('SIZE');
    message.AddString("a", "some text");
    message.AddDouble("b", 1.0);
    message.AddRect("c", BRect(0, 0, 10, 10));
    ssize_t size = message.FlattenedSize();
    std::vector<char> buffer(static_cast<size_t>(size) + 16, '\x55');
    ASSERT_EQ(message.Flatten(buffer.data(), size + 16), B_OK);
    EXPECT_EQ(buffer[static_cast<size_t>(size) - 1], 0);
    EXPECT_EQ(buffer[static_cast<size_t>(size)], '\x55');
}

TEST(MessageFlatten, TooSmallBufferIsBufferOverflow) {
    BMessage message('TEST');
    message.AddInt32("x", 5);
    std::vector<char> buffer(static_cast<size_t>(message.FlattenedSize()));
    EXPECT_EQ(message.Flatten(buffer.data(), message.FlattenedSize() - 1), B_BUFFER_OVERFLOW);
    EXPECT_EQ(message.Flatten(static_cast<char*>(NULL), 100), B_BAD_VALUE);
}

TEST(MessageFlatten, NamesLongerThan255BytesCannotBeFlattened) {
    BMessage message('TEST');
    std::string name(256, 'n');
    ASSERT_EQ(message.AddInt32(name.c_str(), 1), B_OK);
    EXPECT_EQ(message.FlattenedSize(), B_NAME_TOO_LONG);
    char buffer[512];
    EXPECT_EQ(message.Flatten(buffer, sizeof(buffer)), B_NAME_TOO_LONG);
    std::string longest(255, 'n');
    BMessage fits('TEST');
    fits.AddInt32(longest.c_str(), 1);
    EXPECT_EQ(RoundTrip(fits).GetInt32(longest.c_str(), 0), 1);
}

TEST(MessageFlatten, FlattenToStreamWritesTheSameBytes) {
    BMessage message('STRM');
    message.AddString("text", "value");
    BMallocIO stream;
    ssize_t size = 0;
    ASSERT_EQ(message.Flatten(&stream, &size), B_OK);
    EXPECT_EQ(size, message.FlattenedSize());
    ASSERT_EQ(stream.BufferLength(), size_t(size));
    std::vector<uint8> written(static_cast<const uint8*>(stream.Buffer()),
                               static_cast<const uint8*>(stream.Buffer()) + size);
    EXPECT_EQ(written, Flattened(message));
}

TEST(MessageFlatten, UnflattenFromStreamReadsWhatFlattenWrote) {
    BMessage message('STRM');
    message.AddString("text", "value");
    BMallocIO stream;
    ASSERT_EQ(message.Flatten(&stream), B_OK);
    stream.Seek(0, SEEK_SET);
    BMessage copy;
    ASSERT_EQ(copy.Unflatten(&stream), B_OK);
    EXPECT_EQ(copy.what, uint32('STRM'));
    EXPECT_STREQ(copy.GetString("text"), "value");
}

TEST(MessageFlatten, RoundTripKeepsEveryFieldType) {
    BMessage inner('INNR');
    inner.AddString("leaf", "nested");
    int target = 0;
    rgb_color color = {1, 2, 3, 4};
    uint8 raw[3] = {7, 8, 9};

    BMessage message('ALLT');
    message.AddBool("bool", true);
    message.AddInt8("int8", -1);
    message.AddUInt8("uint8", 255);
    message.AddInt16("int16", -2);
    message.AddUInt16("uint16", 65535);
    message.AddInt32("int32", -3);
    message.AddUInt32("uint32", 4294967295u);
    message.AddInt64("int64", -4);
    message.AddUInt64("uint64", 18446744073709551615ULL);
    message.AddFloat("float", 0.5f);
    message.AddDouble("double", 0.25);
    message.AddString("string", "text");
    message.AddPointer("pointer", &target);
    message.AddMessage("message", &inner);
    message.AddPoint("point", BPoint(1, 2));
    message.AddRect("rect", BRect(1, 2, 3, 4));
    message.AddColor("color", color);
    message.AddMessenger("messenger", BMessenger());
    message.AddData("fixed", 'TYPE', raw, 3, true);
    message.AddData("variable", B_RAW_TYPE, raw, 3, false);
    message.AddData("variable", B_RAW_TYPE, raw, 1, false);

    BMessage copy = RoundTrip(message);
    EXPECT_EQ(copy.what, uint32('ALLT'));
    EXPECT_EQ(copy.CountNames(B_ANY_TYPE), message.CountNames(B_ANY_TYPE));
    EXPECT_TRUE(copy.GetBool("bool", false));
    EXPECT_EQ(copy.GetInt8("int8", 0), -1);
    EXPECT_EQ(copy.GetUInt8("uint8", 0), 255);
    EXPECT_EQ(copy.GetInt16("int16", 0), -2);
    EXPECT_EQ(copy.GetUInt16("uint16", 0), 65535);
    EXPECT_EQ(copy.GetInt32("int32", 0), -3);
    EXPECT_EQ(copy.GetUInt32("uint32", 0), 4294967295u);
    EXPECT_EQ(copy.GetInt64("int64", 0), -4);
    EXPECT_EQ(copy.GetUInt64("uint64", 0), 18446744073709551615ULL);
    EXPECT_EQ(copy.GetFloat("float", 0), 0.5f);
    EXPECT_EQ(copy.GetDouble("double", 0), 0.25);
    EXPECT_STREQ(copy.GetString("string"), "text");
    EXPECT_EQ(copy.GetPointer("pointer"), &target);
    BMessage nested;
    ASSERT_EQ(copy.FindMessage("message", &nested), B_OK);
    EXPECT_EQ(nested.what, uint32('INNR'));
    EXPECT_STREQ(nested.GetString("leaf"), "nested");
    EXPECT_EQ(copy.GetPoint("point", BPoint()), BPoint(1, 2));
    EXPECT_EQ(copy.GetRect("rect", BRect()), BRect(1, 2, 3, 4));
    rgb_color foundColor;
    ASSERT_EQ(copy.FindColor("color", &foundColor), B_OK);
    EXPECT_EQ(foundColor.blue, 3);
    BMessenger messenger;
    EXPECT_EQ(copy.FindMessenger("messenger", &messenger), B_OK);

    const void* data;
    ssize_t size;
    bool fixedSize = false;
    type_code type;
    ASSERT_EQ(copy.FindData("fixed", 'TYPE', &data, &size), B_OK);
    EXPECT_EQ(size, 3);
    EXPECT_EQ(memcmp(data, raw, 3), 0);
    copy.GetInfo("fixed", &type, &fixedSize);
    EXPECT_TRUE(fixedSize);
    ASSERT_EQ(copy.FindData("variable", B_RAW_TYPE, 1, &data, &size), B_OK);
    EXPECT_EQ(size, 1);
    copy.GetInfo("variable", &type, &fixedSize);
    EXPECT_FALSE(fixedSize);
}

TEST(MessageFlatten, RoundTripKeepsARef) {
    char folder[] = "/tmp/glimrow-message-ref-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    std::string path = std::string(folder) + "/leaf name";
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(path.c_str(), &ref), B_OK);

    BMessage message(B_REFS_RECEIVED);
    ASSERT_EQ(message.AddRef("refs", &ref), B_OK);
    BMessage copy = RoundTrip(message);
    entry_ref found;
    ASSERT_EQ(copy.FindRef("refs", &found), B_OK);
    EXPECT_TRUE(found == ref);
    EXPECT_STREQ(found.name, "leaf name");

    // The Be part of the item: device, directory, then the name and its NUL.
    const void* data;
    ssize_t size;
    ASSERT_EQ(copy.FindData("refs", B_REF_TYPE, &data, &size), B_OK);
    ASSERT_GE(size, 12 + 10);
    EXPECT_STREQ(static_cast<const char*>(data) + 12, "leaf name");
    rmdir(folder);
}

TEST(MessageFlatten, RoundTripKeepsFieldOrderAndItemOrder) {
    BMessage message('ORDR');
    message.AddString("z", "1");
    message.AddInt32("a", 1);
    message.AddString("z", "2");
    message.AddInt32("m", 2);
    BMessage copy = RoundTrip(message);
    char* name;
    type_code type;
    ASSERT_EQ(copy.GetInfo(B_ANY_TYPE, 0, &name, &type), B_OK);
    EXPECT_STREQ(name, "z");
    ASSERT_EQ(copy.GetInfo(B_ANY_TYPE, 1, &name, &type), B_OK);
    EXPECT_STREQ(name, "a");
    ASSERT_EQ(copy.GetInfo(B_ANY_TYPE, 2, &name, &type), B_OK);
    EXPECT_STREQ(name, "m");
    EXPECT_STREQ(copy.GetString("z", 1, NULL), "2");
}

TEST(MessageFlatten, NestedMessagesFlattenNested) {
    BMessage deepest('DEEP');
    deepest.AddInt32("level", 3);
    BMessage middle('MIDL');
    middle.AddMessage("child", &deepest);
    BMessage top('TOPM');
    top.AddMessage("child", &middle);

    // The item is itself a complete R5 message.
    const void* data;
    ssize_t size;
    ASSERT_EQ(top.FindData("child", B_MESSAGE_TYPE, &data, &size), B_OK);
    EXPECT_EQ(size, middle.FlattenedSize());
    EXPECT_EQ(memcmp(data, "1BOF", 4), 0);

    BMessage copy = RoundTrip(top);
    BMessage foundMiddle;
    BMessage foundDeepest;
    ASSERT_EQ(copy.FindMessage("child", &foundMiddle), B_OK);
    ASSERT_EQ(foundMiddle.FindMessage("child", &foundDeepest), B_OK);
    EXPECT_EQ(foundMiddle.what, uint32('MIDL'));
    EXPECT_EQ(foundDeepest.what, uint32('DEEP'));
    EXPECT_EQ(foundDeepest.GetInt32("level", 0), 3);
}

TEST(MessageFlatten, RoundTripOfASettingsRecord) {
    BMessage settings;
    const char* keys[] = {"location", "direction", "forInvoke",  "forExpand",
                          "flags",    "which",     "workspaces", "shelfSize"};
    for (int32 i = 0; i < 8; i++)
        settings.AddInt32(keys[i], i * 3);
    for (int32 i = 0; i < 32; i++) {
        std::string name = i % 3 == 0 ? "" : "Layer " + std::to_string(i);
        settings.AddString("layerName", name.c_str());
    }
    BMessage copy = RoundTrip(settings);
    for (int32 i = 0; i < 8; i++)
        EXPECT_EQ(copy.GetInt32(keys[i], -1), i * 3);
    for (int32 i = 0; i < 32; i++) {
        std::string name = i % 3 == 0 ? "" : "Layer " + std::to_string(i);
        EXPECT_STREQ(copy.GetString("layerName", i, NULL), name.c_str());
    }
}

TEST(MessageFlatten, UnflattenReplacesWhatAndFields) {
    BMessage source('SRCE');
    source.AddInt32("new", 1);
    std::vector<uint8> bytes = Flattened(source);
    BMessage target('TRGT');
    target.AddInt32("old", 1);
    ASSERT_EQ(target.Unflatten(reinterpret_cast<const char*>(bytes.data())), B_OK);
    EXPECT_EQ(target.what, uint32('SRCE'));
    EXPECT_FALSE(target.HasInt32("old"));
    EXPECT_TRUE(target.HasInt32("new"));
}

} // namespace
