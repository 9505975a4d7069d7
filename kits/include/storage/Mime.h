// MIME basics shared by the storage kit's type classes.
#ifndef _MIME_H
#define _MIME_H

#include <StorageDefs.h>
#include <SupportDefs.h>

// Raw icons are square B_CMAP8 bitmaps of this edge length.
enum icon_size {
    B_LARGE_ICON = 32,
    B_MINI_ICON = 16,
};

#ifdef __cplusplus
class BBitmap;

// The icon of the drive holding a device node or mounted folder (for example
// "/dev/sda1" or "/"), as BVolume::GetIcon() gives it.
status_t get_device_icon(const char* device, BBitmap* icon, icon_size which);

#include <MimeType.h>
#endif

#endif // _MIME_H
