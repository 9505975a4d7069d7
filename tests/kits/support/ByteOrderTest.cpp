// Byte order macros and swap_data().
#include <ByteOrder.h>

#include <gtest/gtest.h>

#include <string.h>

TEST(ByteOrder, HostIsLittleEndianOnThisMachine) {
    uint32 value = 0x01020304;
    uint8 first;
    memcpy(&first, &value, 1);
    EXPECT_EQ(B_HOST_IS_LENDIAN, first == 0x04 ? 1 : 0);
    EXPECT_EQ(B_HOST_IS_BENDIAN, first == 0x01 ? 1 : 0);
}

TEST(ByteOrder, BigEndianMacrosSwapIntegers) {
    EXPECT_EQ(B_HOST_TO_BENDIAN_INT16(0x1234), 0x3412);
    EXPECT_EQ(B_HOST_TO_BENDIAN_INT32(0x12345678u), 0x78563412u);
    EXPECT_EQ(B_HOST_TO_BENDIAN_INT64(0x0102030405060708ull), 0x0807060504030201ull);
    EXPECT_EQ(B_BENDIAN_TO_HOST_INT32(B_HOST_TO_BENDIAN_INT32(0xcafebabeu)), 0xcafebabeu);
}

TEST(ByteOrder, LittleEndianMacrosKeepIntegers) {
    EXPECT_EQ(B_HOST_TO_LENDIAN_INT16(0x1234), 0x1234);
    EXPECT_EQ(B_HOST_TO_LENDIAN_INT32(0x12345678u), 0x12345678u);
    EXPECT_EQ(B_LENDIAN_TO_HOST_INT64(0x0102030405060708ull), 0x0102030405060708ull);
}

TEST(ByteOrder, FloatsAndDoublesRoundTrip) {
    float value = 3.25f;
    float swapped = B_HOST_TO_BENDIAN_FLOAT(value);
    uint32 bits;
    memcpy(&bits, &swapped, 4);
    EXPECT_EQ(bits, 0x00005040u);
    EXPECT_EQ(B_BENDIAN_TO_HOST_FLOAT(swapped), value);

    double number = -1234.5;
    EXPECT_EQ(B_BENDIAN_TO_HOST_DOUBLE(B_HOST_TO_BENDIAN_DOUBLE(number)), number);
    EXPECT_EQ(B_SWAP_DOUBLE(B_SWAP_DOUBLE(number)), number);
}

TEST(ByteOrder, SwapDataSwapsEveryValueOfAnArray) {
    uint32 values[3] = {0x11223344, 0x55667788, 0x99aabbcc};
    EXPECT_EQ(swap_data(B_UINT32_TYPE, values, sizeof(values), B_SWAP_ALWAYS), B_OK);
    EXPECT_EQ(values[0], 0x44332211u);
    EXPECT_EQ(values[2], 0xccbbaa99u);

    int16 shorts[2] = {0x0102, 0x0304};
    EXPECT_EQ(swap_data(B_INT16_TYPE, shorts, sizeof(shorts), B_SWAP_HOST_TO_BENDIAN), B_OK);
    EXPECT_EQ(shorts[1], 0x0403);

    int64 longs[1] = {0x0102030405060708};
    EXPECT_EQ(swap_data(B_INT64_TYPE, longs, sizeof(longs), B_SWAP_BENDIAN_TO_HOST), B_OK);
    EXPECT_EQ(longs[0], 0x0807060504030201);
}

TEST(ByteOrder, SwapDataLeavesValuesAloneWhenTheOrderMatches) {
    uint32 value = 0x11223344;
    EXPECT_EQ(swap_data(B_UINT32_TYPE, &value, 4, B_SWAP_HOST_TO_LENDIAN), B_OK);
    EXPECT_EQ(value, 0x11223344u);
    EXPECT_EQ(swap_data(B_UINT32_TYPE, &value, 4, B_SWAP_LENDIAN_TO_HOST), B_OK);
    EXPECT_EQ(value, 0x11223344u);
}

TEST(ByteOrder, SwapDataSwapsPointsAndRectsAsFloats) {
    float rect[4] = {1, 2, 3, 4};
    EXPECT_EQ(swap_data(B_RECT_TYPE, rect, sizeof(rect), B_SWAP_ALWAYS), B_OK);
    EXPECT_EQ(B_SWAP_FLOAT(rect[3]), 4.0f);
    float point[2] = {5, 6};
    EXPECT_EQ(swap_data(B_POINT_TYPE, point, sizeof(point), B_SWAP_ALWAYS), B_OK);
    EXPECT_EQ(B_SWAP_FLOAT(point[0]), 5.0f);
}

TEST(ByteOrder, SwapDataHandlesUnalignedData) {
    char buffer[9] = {0, 1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(swap_data(B_UINT64_TYPE, buffer + 1, 8, B_SWAP_ALWAYS), B_OK);
    EXPECT_EQ(buffer[1], 8);
    EXPECT_EQ(buffer[8], 1);
}

TEST(ByteOrder, SwapDataOfBytesChangesNothing) {
    uint8 bytes[3] = {1, 2, 3};
    EXPECT_EQ(swap_data(B_UINT8_TYPE, bytes, 3, B_SWAP_ALWAYS), B_OK);
    EXPECT_EQ(bytes[0], 1);
    EXPECT_EQ(swap_data(B_BOOL_TYPE, bytes, 3, B_SWAP_ALWAYS), B_OK);
}

TEST(ByteOrder, SwapDataRejectsWhatItCannotSwap) {
    uint32 value = 0;
    EXPECT_EQ(swap_data(B_STRING_TYPE, &value, 4, B_SWAP_ALWAYS), B_BAD_VALUE);
    EXPECT_EQ(swap_data(B_RAW_TYPE, &value, 4, B_SWAP_ALWAYS), B_BAD_VALUE);
    EXPECT_EQ(swap_data(B_UINT32_TYPE, &value, 3, B_SWAP_ALWAYS), B_BAD_VALUE);
    EXPECT_EQ(swap_data(B_UINT32_TYPE, NULL, 4, B_SWAP_ALWAYS), B_BAD_VALUE);
    EXPECT_EQ(swap_data(B_UINT32_TYPE, &value, 4, (swap_action)7), B_BAD_VALUE);
}

TEST(ByteOrder, IsTypeSwappedKnowsTheStandardTypes) {
    EXPECT_TRUE(is_type_swapped(B_INT32_TYPE));
    EXPECT_TRUE(is_type_swapped(B_STRING_TYPE));
    EXPECT_TRUE(is_type_swapped(B_RECT_TYPE));
    EXPECT_TRUE(is_type_swapped(B_MESSAGE_TYPE));
    EXPECT_FALSE(is_type_swapped('MINE'));
    EXPECT_FALSE(is_type_swapped(B_VECTOR_ICON_TYPE));
}
