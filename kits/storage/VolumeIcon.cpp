// Icons of volumes: the drive icon of the icon theme, or a plain drive drawn by
// the kit when the theme has none.
#include <Volume.h>

#include "IconLoader.h"

#include <Bitmap.h>
#include <Mime.h>

#include <sys/stat.h>

using namespace BPrivate;

status_t BVolume::GetIcon(BBitmap* icon, icon_size which) const {
    if (InitCheck() != B_OK)
        return InitCheck();
    status_t status = IconLoader::CheckBitmap(icon, which);
    if (status != B_OK)
        return status;
    std::vector<std::string> names;
    if (IsRemovable())
        names = {"drive-removable-media", "media-removable", "drive-harddisk"};
    else if (IsShared())
        names = {"folder-remote", "network-server", "drive-harddisk"};
    else
        names = {"drive-harddisk"};
    IconImageRef image = IconLoader::FromTheme(names, which);
    if (image == nullptr)
        image = IconLoader::Generic(kGenericVolume, which);
    if (image == nullptr)
        return B_NO_MEMORY;
    return IconLoader::CopyToBitmap(*image, icon);
}

status_t get_device_icon(const char* device, BBitmap* icon, icon_size which) {
    if (device == nullptr)
        return B_BAD_VALUE;
    struct stat info;
    if (stat(device, &info) != 0)
        return B_ENTRY_NOT_FOUND;
    // A block device is known by the device number its file systems carry; any
    // other path by the volume it lies on.
    dev_t volumeDevice = S_ISBLK(info.st_mode) ? info.st_rdev : info.st_dev;
    BVolume volume(volumeDevice);
    if (volume.InitCheck() != B_OK)
        return volume.InitCheck();
    return volume.GetIcon(icon, which);
}
