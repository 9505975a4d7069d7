// Volumes: the mounted file systems, known by their device number.
#ifndef _VOLUME_H
#define _VOLUME_H

#include <Mime.h>
#include <StorageDefs.h>
#include <SupportDefs.h>

class BBitmap;
class BDirectory;

class BVolume {
public:
    BVolume();
    BVolume(dev_t device);
    BVolume(const BVolume& volume);
    virtual ~BVolume();

    status_t InitCheck() const;

    // B_BAD_VALUE for a device that no mounted file system has.
    status_t SetTo(dev_t device);
    void Unset();

    dev_t Device() const;

    // The folder the volume is mounted on.
    status_t GetRootDirectory(BDirectory* directory) const;

    off_t Capacity() const;
    off_t FreeBytes() const;
    off_t BlockSize() const;

    // The file system's label when it has one, else the mount point's leaf name
    // ("/" for the root file system). buffer holds B_FILE_NAME_LENGTH bytes.
    status_t GetName(char* buffer) const;
    // Renaming volumes is not supported on Linux.
    status_t SetName(const char* name);

    // The volume's icon, scaled into icon (16 or 32 pixels square).
    status_t GetIcon(BBitmap* icon, icon_size which) const;

    bool IsRemovable() const;
    bool IsReadOnly() const;
    // False for file systems that live in memory (tmpfs, proc…).
    bool IsPersistent() const;
    // True for network file systems.
    bool IsShared() const;
    // Whether the file system keeps extended attributes, and so typed attributes and
    // MIME types.
    bool KnowsMime() const;
    bool KnowsAttr() const;
    bool KnowsQuery() const;

    bool operator==(const BVolume& volume) const;
    bool operator!=(const BVolume& volume) const;
    BVolume& operator=(const BVolume& volume);

private:
    struct Private;
    Private* fPrivate;
    dev_t fDevice;
    status_t fStatus;
};

#endif // _VOLUME_H
