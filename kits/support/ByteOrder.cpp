#include <ByteOrder.h>

#include <string.h>

namespace {

// The size of one value of a swappable type, 1 for byte types (nothing to swap), or
// 0 for types that cannot be swapped blindly.
size_t value_size(type_code type) {
    switch (type) {
    case B_BOOL_TYPE:
    case B_CHAR_TYPE:
    case B_INT8_TYPE:
    case B_UINT8_TYPE:
        return 1;

    case B_INT16_TYPE:
    case B_UINT16_TYPE:
        return 2;

    // A point and a rect are floats; swapping them value by value is right.
    case B_INT32_TYPE:
    case B_UINT32_TYPE:
    case B_FLOAT_TYPE:
    case B_POINT_TYPE:
    case B_RECT_TYPE:
        return 4;

    case B_INT64_TYPE:
    case B_UINT64_TYPE:
    case B_DOUBLE_TYPE:
    case B_OFF_T_TYPE:
        return 8;

    case B_SIZE_T_TYPE:
    case B_SSIZE_T_TYPE:
        return sizeof(size_t);
    case B_TIME_TYPE:
        return sizeof(time_t);
    case B_POINTER_TYPE:
        return sizeof(void*);

    default:
        return 0;
    }
}

bool needs_swap(swap_action action, bool* valid) {
    *valid = true;
    switch (action) {
    case B_SWAP_HOST_TO_LENDIAN:
    case B_SWAP_LENDIAN_TO_HOST:
        return B_HOST_IS_BENDIAN;
    case B_SWAP_HOST_TO_BENDIAN:
    case B_SWAP_BENDIAN_TO_HOST:
        return B_HOST_IS_LENDIAN;
    case B_SWAP_ALWAYS:
        return true;
    }
    *valid = false;
    return false;
}

} // namespace

status_t swap_data(type_code type, void* data, size_t length, swap_action action) {
    size_t size = value_size(type);
    if (data == NULL || size == 0 || length % size != 0)
        return B_BAD_VALUE;

    bool valid;
    bool swap = needs_swap(action, &valid);
    if (!valid)
        return B_BAD_VALUE;
    if (!swap || size == 1)
        return B_OK;

    // Values may sit unaligned in a flattened buffer: copy each one out and back.
    char* bytes = static_cast<char*>(data);
    for (size_t offset = 0; offset < length; offset += size) {
        if (size == 2) {
            uint16 value;
            memcpy(&value, bytes + offset, 2);
            value = __swap_int16(value);
            memcpy(bytes + offset, &value, 2);
        } else if (size == 4) {
            uint32 value;
            memcpy(&value, bytes + offset, 4);
            value = __swap_int32(value);
            memcpy(bytes + offset, &value, 4);
        } else {
            uint64 value;
            memcpy(&value, bytes + offset, 8);
            value = __swap_int64(value);
            memcpy(bytes + offset, &value, 8);
        }
    }
    return B_OK;
}

bool is_type_swapped(type_code type) {
    switch (type) {
    // The types every Be system knows, which messages convert by themselves.
    case B_ANY_TYPE:
    case B_ASCII_TYPE:
    case B_BOOL_TYPE:
    case B_CHAR_TYPE:
    case B_COLOR_8_BIT_TYPE:
    case B_DOUBLE_TYPE:
    case B_FLOAT_TYPE:
    case B_GRAYSCALE_8_BIT_TYPE:
    case B_INT16_TYPE:
    case B_INT32_TYPE:
    case B_INT64_TYPE:
    case B_INT8_TYPE:
    case B_MEDIA_PARAMETER_GROUP_TYPE:
    case B_MEDIA_PARAMETER_TYPE:
    case B_MEDIA_PARAMETER_WEB_TYPE:
    case B_MESSAGE_TYPE:
    case B_MESSENGER_TYPE:
    case B_MIME_TYPE:
    case B_MONOCHROME_1_BIT_TYPE:
    case B_OBJECT_TYPE:
    case B_OFF_T_TYPE:
    case B_PATTERN_TYPE:
    case B_POINTER_TYPE:
    case B_POINT_TYPE:
    case B_RAW_TYPE:
    case B_RECT_TYPE:
    case B_REF_TYPE:
    case B_RGB_32_BIT_TYPE:
    case B_RGB_COLOR_TYPE:
    case B_SIZE_T_TYPE:
    case B_SSIZE_T_TYPE:
    case B_STRING_TYPE:
    case B_TIME_TYPE:
    case B_UINT16_TYPE:
    case B_UINT32_TYPE:
    case B_UINT64_TYPE:
    case B_UINT8_TYPE:
        return true;
    default:
        return false;
    }
}
