// BArchivable: objects that can store themselves in a BMessage and be made again
// from it.
#ifndef _ARCHIVABLE_H
#define _ARCHIVABLE_H

#include <SupportDefs.h>
#include <image.h>

class BMessage;

class BArchivable {
public:
    BArchivable(BMessage* from);
    BArchivable();
    virtual ~BArchivable();

    // Adds "class" = the class name of the object to the archive. Subclasses call
    // their base class's Archive() first, then add their own fields.
    virtual status_t Archive(BMessage* into, bool deep = true) const;
    static BArchivable* Instantiate(BMessage* archive);

    virtual status_t Perform(perform_code d, void* arg);

    // Called once every object of an archive has been archived or unarchived.
    virtual status_t AllUnarchived(const BMessage* archive);
    virtual status_t AllArchived(BMessage* archive) const;
};

typedef BArchivable* (*instantiation_func)(BMessage*);

// Makes the object an archive describes, by its first "class" field. The caller owns
// the result. NULL when the archive has no class (errno = B_BAD_VALUE) or the class is
// not known to this program (errno = B_NAME_NOT_FOUND), or when the class's
// Instantiate() refused the archive.
BArchivable* instantiate_object(BMessage* from, image_id* id);
BArchivable* instantiate_object(BMessage* from);

// True when one of the archive's "class" fields names className (errno is set to
// B_MISMATCHED_VALUES otherwise).
bool validate_instantiation(BMessage* from, const char* className);

instantiation_func find_instantiation_func(const char* className, const char* signature);
instantiation_func find_instantiation_func(const char* className);
instantiation_func find_instantiation_func(BMessage* archive);

#endif // _ARCHIVABLE_H
