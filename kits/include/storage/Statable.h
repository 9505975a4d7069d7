// What every entry and node can tell about itself: the stat data.
#ifndef _STATABLE_H
#define _STATABLE_H

#include <StorageDefs.h>
#include <SupportDefs.h>

#include <sys/stat.h>
#include <time.h>

class BVolume;
struct node_ref;

class BStatable {
public:
    virtual ~BStatable();

    virtual status_t GetStat(struct stat* stat) const = 0;

    bool IsFile() const;
    bool IsDirectory() const;
    bool IsSymLink() const;

    status_t GetNodeRef(node_ref* ref) const;

    status_t GetOwner(uid_t* owner) const;
    status_t SetOwner(uid_t owner);

    status_t GetGroup(gid_t* group) const;
    status_t SetGroup(gid_t group);

    status_t GetPermissions(mode_t* permissions) const;
    status_t SetPermissions(mode_t permissions);

    status_t GetSize(off_t* size) const;

    status_t GetModificationTime(time_t* modificationTime) const;
    status_t SetModificationTime(time_t modificationTime);

    // The birth time where the file system records one, else the modification time.
    status_t GetCreationTime(time_t* creationTime) const;
    // Linux cannot set a birth time: B_NOT_SUPPORTED.
    status_t SetCreationTime(time_t creationTime);

    status_t GetAccessTime(time_t* accessTime) const;
    status_t SetAccessTime(time_t accessTime);

    status_t GetVolume(BVolume* volume) const;

private:
    // Where the calls above go: an open descriptor (*descriptor >= 0), else a path
    // whose final link is not followed.
    virtual status_t _StatTarget(int* descriptor, const char** path) const = 0;
};

#endif // _STATABLE_H
