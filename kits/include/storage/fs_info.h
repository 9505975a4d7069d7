// File system information: the volume a path lies on.
#ifndef _FS_INFO_H
#define _FS_INFO_H

#include <SupportDefs.h>

#ifdef __cplusplus
extern "C" {
#endif

// The device of the volume holding path (links followed). On failure the result is
// the negative status_t, read as a signed number: test with (int64)device < 0.
dev_t dev_for_path(const char* path);

#ifdef __cplusplus
}
#endif

#endif // _FS_INFO_H
