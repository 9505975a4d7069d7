// Basic Be types and helpers shared by every kit.
#ifndef _SUPPORT_DEFS_H
#define _SUPPORT_DEFS_H

#include <Errors.h>
#include <TypeConstants.h>

#include <stddef.h>
#include <stdint.h>
#include <sys/types.h>

typedef int8_t int8;
typedef uint8_t uint8;
typedef int16_t int16;
typedef uint16_t uint16;
typedef int32_t int32;
typedef uint32_t uint32;
typedef int64_t int64;
typedef uint64_t uint64;

typedef volatile int8 vint8;
typedef volatile uint8 vuint8;
typedef volatile int16 vint16;
typedef volatile uint16 vuint16;
typedef volatile int32 vint32;
typedef volatile uint32 vuint32;
typedef volatile int64 vint64;
typedef volatile uint64 vuint64;

typedef int32 status_t;
typedef int64 bigtime_t;
typedef int64 nanotime_t;
typedef uint32 type_code;
typedef uint32 perform_code;

typedef unsigned char uchar;
typedef unsigned short unichar;

// The Be volume and node identifiers. On Linux a device number (st_dev) is wider
// than 32 bits, so dev_t and ino_t are the platform's own (64 bits); flattened
// entry_refs write them at the Be widths.

#ifndef NULL
#define NULL 0
#endif

// Be API "min"/"max" helpers.
#define min_c(a, b) ((a) > (b) ? (b) : (a))
#define max_c(a, b) ((a) > (b) ? (a) : (b))

#ifdef __cplusplus
extern "C" {
#endif

// Be-shaped assertion: prints the message and aborts (programmer misuse, never
// a user error).
void debugger(const char* message);

#ifdef __cplusplus
}
#endif

#endif // _SUPPORT_DEFS_H
