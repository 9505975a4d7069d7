// Byte order: swapping values between the host's order and big- or little-endian.
#ifndef _BYTE_ORDER_H
#define _BYTE_ORDER_H

#include <SupportDefs.h>
#include <TypeConstants.h>

#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
#define B_HOST_IS_LENDIAN 0
#define B_HOST_IS_BENDIAN 1
#else
#define B_HOST_IS_LENDIAN 1
#define B_HOST_IS_BENDIAN 0
#endif

typedef enum {
    B_SWAP_HOST_TO_LENDIAN,
    B_SWAP_HOST_TO_BENDIAN,
    B_SWAP_LENDIAN_TO_HOST,
    B_SWAP_BENDIAN_TO_HOST,
    B_SWAP_ALWAYS,
} swap_action;

#ifdef __cplusplus
extern "C" {
#endif

// Swaps, in place, every value of an array of `type` (the integer, float, double,
// point, rect, size_t, ssize_t, off_t, time_t and pointer types) when the action requires it
// on this host. length is in bytes and must be a multiple of the value size.
// B_BAD_VALUE for other types or a bad length.
status_t swap_data(type_code type, void* data, size_t length, swap_action action);
// True for the types swap_data() can swap.
bool is_type_swapped(type_code type);

#ifdef __cplusplus
}
#endif

static inline uint16 __swap_int16(uint16 value) {
    return __builtin_bswap16(value);
}

static inline uint32 __swap_int32(uint32 value) {
    return __builtin_bswap32(value);
}

static inline uint64 __swap_int64(uint64 value) {
    return __builtin_bswap64(value);
}

static inline float __swap_float(float value) {
    uint32 bits;
    __builtin_memcpy(&bits, &value, sizeof(bits));
    bits = __builtin_bswap32(bits);
    __builtin_memcpy(&value, &bits, sizeof(value));
    return value;
}

static inline double __swap_double(double value) {
    uint64 bits;
    __builtin_memcpy(&bits, &value, sizeof(bits));
    bits = __builtin_bswap64(bits);
    __builtin_memcpy(&value, &bits, sizeof(value));
    return value;
}

#define B_SWAP_INT16(value) __swap_int16(value)
#define B_SWAP_INT32(value) __swap_int32(value)
#define B_SWAP_INT64(value) __swap_int64(value)
#define B_SWAP_FLOAT(value) __swap_float(value)
#define B_SWAP_DOUBLE(value) __swap_double(value)

#if B_HOST_IS_LENDIAN

#define B_HOST_TO_LENDIAN_DOUBLE(value) (double)(value)
#define B_HOST_TO_LENDIAN_FLOAT(value) (float)(value)
#define B_HOST_TO_LENDIAN_INT64(value) (uint64)(value)
#define B_HOST_TO_LENDIAN_INT32(value) (uint32)(value)
#define B_HOST_TO_LENDIAN_INT16(value) (uint16)(value)

#define B_LENDIAN_TO_HOST_DOUBLE(value) (double)(value)
#define B_LENDIAN_TO_HOST_FLOAT(value) (float)(value)
#define B_LENDIAN_TO_HOST_INT64(value) (uint64)(value)
#define B_LENDIAN_TO_HOST_INT32(value) (uint32)(value)
#define B_LENDIAN_TO_HOST_INT16(value) (uint16)(value)

#define B_HOST_TO_BENDIAN_DOUBLE(value) __swap_double(value)
#define B_HOST_TO_BENDIAN_FLOAT(value) __swap_float(value)
#define B_HOST_TO_BENDIAN_INT64(value) __swap_int64(value)
#define B_HOST_TO_BENDIAN_INT32(value) __swap_int32(value)
#define B_HOST_TO_BENDIAN_INT16(value) __swap_int16(value)

#define B_BENDIAN_TO_HOST_DOUBLE(value) __swap_double(value)
#define B_BENDIAN_TO_HOST_FLOAT(value) __swap_float(value)
#define B_BENDIAN_TO_HOST_INT64(value) __swap_int64(value)
#define B_BENDIAN_TO_HOST_INT32(value) __swap_int32(value)
#define B_BENDIAN_TO_HOST_INT16(value) __swap_int16(value)

#else

#define B_HOST_TO_LENDIAN_DOUBLE(value) __swap_double(value)
#define B_HOST_TO_LENDIAN_FLOAT(value) __swap_float(value)
#define B_HOST_TO_LENDIAN_INT64(value) __swap_int64(value)
#define B_HOST_TO_LENDIAN_INT32(value) __swap_int32(value)
#define B_HOST_TO_LENDIAN_INT16(value) __swap_int16(value)

#define B_LENDIAN_TO_HOST_DOUBLE(value) __swap_double(value)
#define B_LENDIAN_TO_HOST_FLOAT(value) __swap_float(value)
#define B_LENDIAN_TO_HOST_INT64(value) __swap_int64(value)
#define B_LENDIAN_TO_HOST_INT32(value) __swap_int32(value)
#define B_LENDIAN_TO_HOST_INT16(value) __swap_int16(value)

#define B_HOST_TO_BENDIAN_DOUBLE(value) (double)(value)
#define B_HOST_TO_BENDIAN_FLOAT(value) (float)(value)
#define B_HOST_TO_BENDIAN_INT64(value) (uint64)(value)
#define B_HOST_TO_BENDIAN_INT32(value) (uint32)(value)
#define B_HOST_TO_BENDIAN_INT16(value) (uint16)(value)

#define B_BENDIAN_TO_HOST_DOUBLE(value) (double)(value)
#define B_BENDIAN_TO_HOST_FLOAT(value) (float)(value)
#define B_BENDIAN_TO_HOST_INT64(value) (uint64)(value)
#define B_BENDIAN_TO_HOST_INT32(value) (uint32)(value)
#define B_BENDIAN_TO_HOST_INT16(value) (uint16)(value)

#endif

#endif // _BYTE_ORDER_H
