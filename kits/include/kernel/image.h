// Loaded images (executables, libraries, add-ons).
#ifndef _IMAGE_H
#define _IMAGE_H

#include <OS.h>

typedef int32 image_id;

#endif // _IMAGE_H
