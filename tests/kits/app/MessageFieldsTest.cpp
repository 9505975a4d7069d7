// Adding, finding, replacing and removing fields of a BMessage, with the error codes
// Be applications test for.
#include <Message.h>

#include <GraphicsDefs.h>
#include <Messenger.h>

#include <gtest/gtest.h>

#include <string.h>

#include <string>

#if __has_include(<String.h>)
#include <String.h>
#define GLIMROW_TEST_HAVE_BSTRING 1
#endif

namespace {

TEST(MessageFields, NewMessageIsEmptyWithItsWhat) {
    BMessage message('TEST');
    EXPECT_EQ(message.what, uint32('TEST'));
    EXPECT_TRUE(message.IsEmpty());
    EXPECT_EQ(message.CountNames(B_ANY_TYPE), 0);
    EXPECT_EQ(BMessage().what, 0u);
}

TEST(MessageFields, EveryNumberTypeComesBackAsAdded) {
    BMessage message;
    ASSERT_EQ(message.AddInt8("int8", -8), B_OK);
    ASSERT_EQ(message.AddUInt8("uint8", 200), B_OK);
    ASSERT_EQ(message.AddInt16("int16", -1600), B_OK);
    ASSERT_EQ(message.AddUInt16("uint16", 60000), B_OK);
    ASSERT_EQ(message.AddInt32("int32", -320000), B_OK);
    ASSERT_EQ(message.AddUInt32("uint32", 4000000000u), B_OK);
    ASSERT_EQ(message.AddInt64("int64", -6400000000LL), B_OK);
    ASSERT_EQ(message.AddUInt64("uint64", 18000000000000000000ULL), B_OK);
    ASSERT_EQ(message.AddFloat("float", 1.5f), B_OK);
    ASSERT_EQ(message.AddDouble("double", -2.25), B_OK);
    ASSERT_EQ(message.AddBool("bool", true), B_OK);

    int8 int8Value;
    uint8 uint8Value;
    int16 int16Value;
    uint16 uint16Value;
    int32 int32Value;
    uint32 uint32Value;
    int64 int64Value;
    uint64 uint64Value;
    float floatValue;
    double doubleValue;
    bool boolValue = false;
    ASSERT_EQ(message.FindInt8("int8", &int8Value), B_OK);
    ASSERT_EQ(message.FindUInt8("uint8", &uint8Value), B_OK);
    ASSERT_EQ(message.FindInt16("int16", &int16Value), B_OK);
    ASSERT_EQ(message.FindUInt16("uint16", &uint16Value), B_OK);
    ASSERT_EQ(message.FindInt32("int32", &int32Value), B_OK);
    ASSERT_EQ(message.FindUInt32("uint32", &uint32Value), B_OK);
    ASSERT_EQ(message.FindInt64("int64", &int64Value), B_OK);
    ASSERT_EQ(message.FindUInt64("uint64", &uint64Value), B_OK);
    ASSERT_EQ(message.FindFloat("float", &floatValue), B_OK);
    ASSERT_EQ(message.FindDouble("double", &doubleValue), B_OK);
    ASSERT_EQ(message.FindBool("bool", &boolValue), B_OK);
    EXPECT_EQ(int8Value, -8);
    EXPECT_EQ(uint8Value, 200);
    EXPECT_EQ(int16Value, -1600);
    EXPECT_EQ(uint16Value, 60000);
    EXPECT_EQ(int32Value, -320000);
    EXPECT_EQ(uint32Value, 4000000000u);
    EXPECT_EQ(int64Value, -6400000000LL);
    EXPECT_EQ(uint64Value, 18000000000000000000ULL);
    EXPECT_EQ(floatValue, 1.5f);
    EXPECT_EQ(doubleValue, -2.25);
    EXPECT_TRUE(boolValue);
}

TEST(MessageFields, NumberFieldsAreFixedSizeWithTheirTypeCodes) {
    BMessage message;
    message.AddInt32("a", 1);
    message.AddBool("b", false);
    message.AddDouble("c", 1.0);
    type_code type;
    bool fixedSize = false;
    ASSERT_EQ(message.GetInfo("a", &type, &fixedSize), B_OK);
    EXPECT_EQ(type, B_INT32_TYPE);
    EXPECT_TRUE(fixedSize);
    ASSERT_EQ(message.GetInfo("b", &type, &fixedSize), B_OK);
    EXPECT_EQ(type, B_BOOL_TYPE);
    ASSERT_EQ(message.GetInfo("c", &type, &fixedSize), B_OK);
    EXPECT_EQ(type, B_DOUBLE_TYPE);
}

TEST(MessageFields, BoolIsStoredAsOneByte) {
    BMessage message;
    message.AddBool("flag", true);
    const void* data;
    ssize_t size;
    ASSERT_EQ(message.FindData("flag", B_BOOL_TYPE, &data, &size), B_OK);
    ASSERT_EQ(size, 1);
    EXPECT_EQ(*static_cast<const uint8*>(data), 1);
}

TEST(MessageFields, PointRectAndColorComeBackAsAdded) {
    BMessage message;
    ASSERT_EQ(message.AddPoint("point", BPoint(3.5f, -4.0f)), B_OK);
    ASSERT_EQ(message.AddRect("rect", BRect(1, 2, 30, 40)), B_OK);
    rgb_color color = {10, 20, 30, 40};
    ASSERT_EQ(message.AddColor("color", color), B_OK);

    BPoint point;
    BRect rect;
    rgb_color found = {0, 0, 0, 0};
    ASSERT_EQ(message.FindPoint("point", &point), B_OK);
    ASSERT_EQ(message.FindRect("rect", &rect), B_OK);
    ASSERT_EQ(message.FindColor("color", &found), B_OK);
    EXPECT_EQ(point, BPoint(3.5f, -4.0f));
    EXPECT_EQ(rect, BRect(1, 2, 30, 40));
    EXPECT_EQ(found.red, 10);
    EXPECT_EQ(found.green, 20);
    EXPECT_EQ(found.blue, 30);
    EXPECT_EQ(found.alpha, 40);

    type_code type;
    message.GetInfo("color", &type);
    EXPECT_EQ(type, B_RGB_COLOR_TYPE);
    message.GetInfo("rect", &type);
    EXPECT_EQ(type, B_RECT_TYPE);
}

TEST(MessageFields, RectIsStoredAsFourFloats) {
    BMessage message;
    message.AddRect("rect", BRect(1, 2, 3, 4));
    const void* data;
    ssize_t size;
    ASSERT_EQ(message.FindData("rect", B_RECT_TYPE, &data, &size), B_OK);
    ASSERT_EQ(size, 16);
    float values[4];
    memcpy(values, data, sizeof(values));
    EXPECT_EQ(values[0], 1.0f);
    EXPECT_EQ(values[1], 2.0f);
    EXPECT_EQ(values[2], 3.0f);
    EXPECT_EQ(values[3], 4.0f);
}

TEST(MessageFields, FindColorAcceptsColoursStoredAs32BitRgb) {
    BMessage message;
    uint8 bytes[4] = {1, 2, 3, 4};
    message.AddData("color", B_RGB_32_BIT_TYPE, bytes, 4);
    rgb_color color;
    ASSERT_EQ(message.FindColor("color", &color), B_OK);
    EXPECT_EQ(color.red, 1);
    EXPECT_EQ(color.alpha, 4);
    EXPECT_TRUE(message.HasColor("color"));
}

TEST(MessageFields, StringsKeepTheirNulAndComeBackByIndex) {
    BMessage message;
    ASSERT_EQ(message.AddString("name", "first"), B_OK);
    ASSERT_EQ(message.AddString("name", ""), B_OK);
    ASSERT_EQ(message.AddString("name", "third"), B_OK);

    const char* string;
    ASSERT_EQ(message.FindString("name", 0, &string), B_OK);
    EXPECT_STREQ(string, "first");
    ASSERT_EQ(message.FindString("name", 1, &string), B_OK);
    EXPECT_STREQ(string, "");
    ASSERT_EQ(message.FindString("name", 2, &string), B_OK);
    EXPECT_STREQ(string, "third");

    const void* data;
    ssize_t size;
    ASSERT_EQ(message.FindData("name", B_STRING_TYPE, 0, &data, &size), B_OK);
    EXPECT_EQ(size, 6);
    bool fixedSize = true;
    type_code type;
    message.GetInfo("name", &type, &fixedSize);
    EXPECT_FALSE(fixedSize);
}

TEST(MessageFields, AddStringRejectsNull) {
    BMessage message;
    EXPECT_EQ(message.AddString("name", static_cast<const char*>(NULL)), B_BAD_VALUE);
    EXPECT_TRUE(message.IsEmpty());
}

TEST(MessageFields, FindStringRefusesAnItemWithoutItsNul) {
    BMessage message;
    message.AddData("text", B_STRING_TYPE, "abc", 3, false);
    const char* string = NULL;
    EXPECT_EQ(message.FindString("text", &string), B_BAD_VALUE);
    EXPECT_EQ(string, nullptr);
}

#ifdef GLIMROW_TEST_HAVE_BSTRING
TEST(MessageFields, BStringFlavoursAddFindAndReplace) {
    BMessage message;
    ASSERT_EQ(message.AddString("name", BString("value")), B_OK);
    BString found;
    ASSERT_EQ(message.FindString("name", &found), B_OK);
    EXPECT_STREQ(found.String(), "value");
    ASSERT_EQ(message.ReplaceString("name", BString("other")), B_OK);
    ASSERT_EQ(message.FindString("name", 0, &found), B_OK);
    EXPECT_STREQ(found.String(), "other");
}
#endif

TEST(MessageFields, PointerComesBackAsAdded) {
    BMessage message;
    int target = 0;
    ASSERT_EQ(message.AddPointer("source", &target), B_OK);
    void* pointer = NULL;
    ASSERT_EQ(message.FindPointer("source", &pointer), B_OK);
    EXPECT_EQ(pointer, &target);
    EXPECT_EQ(message.GetPointer("source"), &target);
}

TEST(MessageFields, MessengerComesBackAsAdded) {
    BMessage message;
    BMessenger messenger;
    ASSERT_EQ(message.AddMessenger("be:sender", messenger), B_OK);
    BMessenger found;
    ASSERT_EQ(message.FindMessenger("be:sender", &found), B_OK);
    EXPECT_TRUE(found == messenger);
    EXPECT_TRUE(message.HasMessenger("be:sender"));
    const void* data;
    ssize_t size;
    ASSERT_EQ(message.FindData("be:sender", B_MESSENGER_TYPE, &data, &size), B_OK);
    EXPECT_EQ(size, 24);
}

TEST(MessageFields, NestedMessageComesBackWithItsFields) {
    BMessage inner('INNR');
    inner.AddString("leaf", "value");
    BMessage message;
    ASSERT_EQ(message.AddMessage("inner", &inner), B_OK);

    BMessage found;
    ASSERT_EQ(message.FindMessage("inner", &found), B_OK);
    EXPECT_EQ(found.what, uint32('INNR'));
    EXPECT_STREQ(found.GetString("leaf"), "value");
}

TEST(MessageFields, NestedMessageIsASnapshot) {
    BMessage inner('INNR');
    BMessage message;
    message.AddMessage("inner", &inner);
    inner.AddInt32("later", 1);
    BMessage found;
    ASSERT_EQ(message.FindMessage("inner", &found), B_OK);
    EXPECT_FALSE(found.HasInt32("later"));
}

TEST(MessageFields, FindMessageIntoItselfReplacesItsFields) {
    BMessage inner('INNR');
    inner.AddInt32("x", 7);
    BMessage message('OUTR');
    message.AddMessage("inner", &inner);
    ASSERT_EQ(message.FindMessage("inner", &message), B_OK);
    EXPECT_EQ(message.what, uint32('INNR'));
    EXPECT_EQ(message.GetInt32("x", 0), 7);
    EXPECT_FALSE(message.HasMessage("inner"));
}

TEST(MessageFields, FindMissingNameIsNameNotFound) {
    BMessage message;
    int32 value;
    EXPECT_EQ(message.FindInt32("missing", &value), B_NAME_NOT_FOUND);
    const void* data;
    ssize_t size;
    EXPECT_EQ(message.FindData("missing", B_ANY_TYPE, &data, &size), B_NAME_NOT_FOUND);
}

TEST(MessageFields, FindWithAnotherTypeIsBadType) {
    BMessage message;
    message.AddInt32("value", 5);
    int16 small;
    EXPECT_EQ(message.FindInt16("value", &small), B_BAD_TYPE);
    const char* string;
    EXPECT_EQ(message.FindString("value", &string), B_BAD_TYPE);
}

TEST(MessageFields, FindDataWithAnyTypeFindsEveryField) {
    BMessage message;
    message.AddInt32("value", 5);
    const void* data;
    ssize_t size;
    ASSERT_EQ(message.FindData("value", B_ANY_TYPE, &data, &size), B_OK);
    EXPECT_EQ(size, 4);
}

TEST(MessageFields, FindPastTheLastItemIsBadIndex) {
    BMessage message;
    message.AddInt32("value", 5);
    message.AddInt32("value", 6);
    int32 value;
    EXPECT_EQ(message.FindInt32("value", 1, &value), B_OK);
    EXPECT_EQ(value, 6);
    EXPECT_EQ(message.FindInt32("value", 2, &value), B_BAD_INDEX);
    EXPECT_EQ(message.FindInt32("value", -1, &value), B_BAD_INDEX);
}

TEST(MessageFields, FindWithNullNameIsBadValue) {
    BMessage message;
    int32 value;
    EXPECT_EQ(message.FindInt32(NULL, &value), B_BAD_VALUE);
}

TEST(MessageFields, AddingAnotherTypeUnderAnExistingNameIsBadType) {
    BMessage message;
    message.AddInt32("value", 5);
    EXPECT_EQ(message.AddString("value", "text"), B_BAD_TYPE);
    EXPECT_EQ(message.AddInt64("value", 5), B_BAD_TYPE);
    int32 count;
    message.GetInfo("value", NULL, &count);
    EXPECT_EQ(count, 1);
}

TEST(MessageFields, AddingAnotherSizeToAFixedSizeFieldIsBadValue) {
    BMessage message;
    uint8 four[4] = {1, 2, 3, 4};
    uint8 two[2] = {1, 2};
    ASSERT_EQ(message.AddData("raw", B_RAW_TYPE, four, 4, true), B_OK);
    EXPECT_EQ(message.AddData("raw", B_RAW_TYPE, two, 2, true), B_BAD_VALUE);
    EXPECT_EQ(message.AddData("raw", B_RAW_TYPE, four, 4, true), B_OK);
}

TEST(MessageFields, VariableSizeFieldTakesItemsOfAnySize) {
    BMessage message;
    ASSERT_EQ(message.AddData("raw", B_RAW_TYPE, "abcd", 4, false), B_OK);
    ASSERT_EQ(message.AddData("raw", B_RAW_TYPE, "xy", 2, false), B_OK);
    const void* data;
    ssize_t size;
    ASSERT_EQ(message.FindData("raw", B_RAW_TYPE, 1, &data, &size), B_OK);
    ASSERT_EQ(size, 2);
    EXPECT_EQ(memcmp(data, "xy", 2), 0);
}

TEST(MessageFields, AddDataRefusesNullDataAndEmptySizes) {
    BMessage message;
    EXPECT_EQ(message.AddData("raw", B_RAW_TYPE, NULL, 4), B_BAD_VALUE);
    EXPECT_EQ(message.AddData("raw", B_RAW_TYPE, "a", 0), B_BAD_VALUE);
    EXPECT_EQ(message.AddData("raw", B_RAW_TYPE, "a", -1), B_BAD_VALUE);
    EXPECT_EQ(message.AddData(NULL, B_RAW_TYPE, "a", 1), B_BAD_VALUE);
    EXPECT_TRUE(message.IsEmpty());
}

TEST(MessageFields, CountHintIsOnlyAHint) {
    BMessage message;
    int32 value = 1;
    ASSERT_EQ(message.AddData("values", B_INT32_TYPE, &value, 4, true, 1000000000), B_OK);
    for (int32 i = 0; i < 5; i++)
        ASSERT_EQ(message.AddInt32("values", i), B_OK);
    int32 count;
    message.GetInfo("values", NULL, &count);
    EXPECT_EQ(count, 6);
}

TEST(MessageFields, FieldsKeepTheOrderTheyWereAddedIn) {
    BMessage message;
    message.AddInt32("zeta", 1);
    message.AddString("alpha", "a");
    message.AddInt32("mid", 2);
    message.AddInt32("zeta", 3);

    const char* expected[] = {"zeta", "alpha", "mid"};
    for (int32 i = 0; i < 3; i++) {
        char* name;
        type_code type;
        int32 count;
        ASSERT_EQ(message.GetInfo(B_ANY_TYPE, i, &name, &type, &count), B_OK);
        EXPECT_STREQ(name, expected[i]);
    }
}

TEST(MessageFields, GetInfoByTypeCountsOnlyThatType) {
    BMessage message;
    message.AddInt32("first", 1);
    message.AddString("text", "a");
    message.AddInt32("second", 2);
    message.AddInt32("second", 3);

    char* name;
    type_code type;
    int32 count;
    ASSERT_EQ(message.GetInfo(B_INT32_TYPE, 1, &name, &type, &count), B_OK);
    EXPECT_STREQ(name, "second");
    EXPECT_EQ(type, B_INT32_TYPE);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(message.GetInfo(B_INT32_TYPE, 2, &name, &type, &count), B_BAD_INDEX);
    EXPECT_EQ(message.GetInfo(B_DOUBLE_TYPE, 0, &name, &type, &count), B_BAD_TYPE);
    EXPECT_EQ(message.GetInfo(B_ANY_TYPE, -1, &name, &type, &count), B_BAD_INDEX);
}

TEST(MessageFields, GetInfoByNameReportsTypeCountAndFixedSize) {
    BMessage message;
    message.AddString("text", "a");
    message.AddString("text", "b");
    type_code type = 0;
    int32 count = 0;
    bool fixedSize = true;
    ASSERT_EQ(message.GetInfo("text", &type, &count, &fixedSize), B_OK);
    EXPECT_EQ(type, B_STRING_TYPE);
    EXPECT_EQ(count, 2);
    EXPECT_FALSE(fixedSize);
    EXPECT_EQ(message.GetInfo("missing", &type, &count), B_NAME_NOT_FOUND);
    EXPECT_EQ(count, 0);
}

TEST(MessageFields, CountNamesCountsFieldsOfAType) {
    BMessage message;
    message.AddInt32("a", 1);
    message.AddInt32("a", 2);
    message.AddInt32("b", 1);
    message.AddString("c", "x");
    EXPECT_EQ(message.CountNames(B_ANY_TYPE), 3);
    EXPECT_EQ(message.CountNames(B_INT32_TYPE), 2);
    EXPECT_EQ(message.CountNames(B_STRING_TYPE), 1);
    EXPECT_EQ(message.CountNames(B_FLOAT_TYPE), 0);
}

TEST(MessageFields, ReplaceChangesOnlyTheChosenItem) {
    BMessage message;
    message.AddInt32("value", 1);
    message.AddInt32("value", 2);
    ASSERT_EQ(message.ReplaceInt32("value", 1, 20), B_OK);
    ASSERT_EQ(message.ReplaceInt32("value", 10), B_OK);
    EXPECT_EQ(message.GetInt32("value", 0, -1), 10);
    EXPECT_EQ(message.GetInt32("value", 1, -1), 20);
}

TEST(MessageFields, ReplaceStringGrowsAndShrinksAnItem) {
    BMessage message;
    message.AddString("name", "one");
    message.AddString("name", "two");
    message.AddString("name", "three");
    ASSERT_EQ(message.ReplaceString("name", 1, "a much longer string"), B_OK);
    EXPECT_STREQ(message.GetString("name", 1, NULL), "a much longer string");
    EXPECT_STREQ(message.GetString("name", 2, NULL), "three");
    ASSERT_EQ(message.ReplaceString("name", 1, "x"), B_OK);
    EXPECT_STREQ(message.GetString("name", 0, NULL), "one");
    EXPECT_STREQ(message.GetString("name", 1, NULL), "x");
    EXPECT_STREQ(message.GetString("name", 2, NULL), "three");
}

TEST(MessageFields, ReplaceReportsWhatIsWrong) {
    BMessage message;
    message.AddInt32("value", 1);
    EXPECT_EQ(message.ReplaceInt32("missing", 1), B_NAME_NOT_FOUND);
    EXPECT_EQ(message.ReplaceInt64("value", 1), B_BAD_TYPE);
    EXPECT_EQ(message.ReplaceInt32("value", 1, 5), B_BAD_INDEX);
    int16 small = 1;
    EXPECT_EQ(message.ReplaceData("value", B_INT32_TYPE, &small, 2), B_BAD_VALUE);
    EXPECT_EQ(message.ReplaceData("value", B_INT32_TYPE, NULL, 4), B_BAD_VALUE);
}

TEST(MessageFields, RemoveDataTakesOutOneItem) {
    BMessage message;
    message.AddString("name", "a");
    message.AddString("name", "b");
    message.AddString("name", "c");
    ASSERT_EQ(message.RemoveData("name", 1), B_OK);
    int32 count;
    message.GetInfo("name", NULL, &count);
    EXPECT_EQ(count, 2);
    EXPECT_STREQ(message.GetString("name", 0, NULL), "a");
    EXPECT_STREQ(message.GetString("name", 1, NULL), "c");
}

TEST(MessageFields, RemovingTheLastItemRemovesTheField) {
    BMessage message;
    message.AddInt32("value", 1);
    message.AddInt32("other", 2);
    ASSERT_EQ(message.RemoveData("value"), B_OK);
    EXPECT_FALSE(message.HasInt32("value"));
    EXPECT_EQ(message.CountNames(B_ANY_TYPE), 1);
    EXPECT_EQ(message.AddString("value", "now a string"), B_OK);
}

TEST(MessageFields, RemoveReportsWhatIsWrong) {
    BMessage message;
    message.AddInt32("value", 1);
    EXPECT_EQ(message.RemoveData("missing"), B_NAME_NOT_FOUND);
    EXPECT_EQ(message.RemoveData("value", 1), B_BAD_INDEX);
    EXPECT_EQ(message.RemoveName("missing"), B_NAME_NOT_FOUND);
    EXPECT_EQ(message.RemoveName(NULL), B_BAD_VALUE);
}

TEST(MessageFields, RemoveNameTakesOutTheWholeField) {
    BMessage message;
    message.AddInt32("value", 1);
    message.AddInt32("value", 2);
    message.AddInt32("kept", 3);
    ASSERT_EQ(message.RemoveName("value"), B_OK);
    EXPECT_FALSE(message.HasInt32("value"));
    EXPECT_EQ(message.GetInt32("kept", 0), 3);
}

TEST(MessageFields, MakeEmptyKeepsTheWhat) {
    BMessage message('KEEP');
    message.AddInt32("value", 1);
    ASSERT_EQ(message.MakeEmpty(), B_OK);
    EXPECT_TRUE(message.IsEmpty());
    EXPECT_EQ(message.what, uint32('KEEP'));
}

TEST(MessageFields, RenameMovesTheItemsToTheNewName) {
    BMessage message;
    message.AddInt32("old", 1);
    ASSERT_EQ(message.Rename("old", "new"), B_OK);
    EXPECT_FALSE(message.HasInt32("old"));
    EXPECT_EQ(message.GetInt32("new", 0), 1);
    EXPECT_EQ(message.Rename("missing", "x"), B_NAME_NOT_FOUND);
}

TEST(MessageFields, CopyIsDeepAndIndependent) {
    BMessage original('ORIG');
    original.AddString("name", "value");
    BMessage copy(original);
    original.ReplaceString("name", "changed");
    EXPECT_EQ(copy.what, uint32('ORIG'));
    EXPECT_STREQ(copy.GetString("name"), "value");
}

TEST(MessageFields, AssignmentReplacesWhatAndFields) {
    BMessage source('SRCE');
    source.AddInt32("new", 2);
    BMessage target('TRGT');
    target.AddInt32("old", 1);
    target = source;
    EXPECT_EQ(target.what, uint32('SRCE'));
    EXPECT_FALSE(target.HasInt32("old"));
    EXPECT_EQ(target.GetInt32("new", 0), 2);
}

TEST(MessageFields, GetReturnsTheDefaultWhenTheItemIsMissing) {
    BMessage message;
    message.AddInt32("present", 4);
    EXPECT_EQ(message.GetInt32("present", -1), 4);
    EXPECT_EQ(message.GetInt32("missing", -1), -1);
    EXPECT_EQ(message.GetInt32("present", 1, -1), -1);
    EXPECT_TRUE(message.GetBool("missing", true));
    EXPECT_STREQ(message.GetString("missing", "fallback"), "fallback");
    EXPECT_EQ(message.GetFloat("present", 2.5f), 2.5f);
    EXPECT_EQ(message.GetRect("missing", BRect(1, 1, 2, 2)), BRect(1, 1, 2, 2));
}

TEST(MessageFields, HasTellsWhetherAnItemExists) {
    BMessage message;
    message.AddString("text", "x");
    EXPECT_TRUE(message.HasString("text"));
    EXPECT_FALSE(message.HasString("text", 1));
    EXPECT_FALSE(message.HasInt32("text"));
    EXPECT_TRUE(message.HasData("text", B_ANY_TYPE));
    EXPECT_FALSE(message.HasData("other", B_ANY_TYPE));
}

TEST(MessageFields, TypedFindRefusesItemsOfTheWrongSize) {
    BMessage message;
    int16 small = 3;
    message.AddData("value", B_INT32_TYPE, &small, 2);
    int32 value;
    EXPECT_EQ(message.FindInt32("value", &value), B_BAD_VALUE);
}

} // namespace
