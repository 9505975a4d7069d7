// Helpers shared by everything that handles files: the type of an entry with the
// program's fallbacks, the signature of the application that opens it, paths and
// leaf names, a relative path, and the applications that can open an entry.
// They keep no state and show nothing: every failure is a status_t.
#ifndef GLIMROW_FILE_HELPERS_H
#define GLIMROW_FILE_HELPERS_H

#include <Entry.h>
#include <StorageDefs.h>
#include <SupportDefs.h>

class BMessage;

// Why an application is offered for an entry.
enum {
    kPreferredApp = 1,       // the entry's preferred application
    kFullTypeSupporter = 2,  // supports the entry's full type
    kSuperTypeSupporter = 3, // supports only its super type
    kAnyTypeSupporter = 4,   // accepts any type
};

// One candidate application, stored as one B_OBJECT_TYPE entry of the field
// "supporting_apps". The name of ref points into storage kept for the life of
// the process, so a copy of the record's bytes stays valid; the record itself
// is never destroyed as an object.
struct supporting_app {
    entry_ref ref;
    char signature[B_MIME_TYPE_LENGTH];
    int32 reserved;
    int32 kind;
};

// The MIME type of an entry into type (B_MIME_TYPE_LENGTH bytes). Without mode
// the type attribute's answer is returned as it is; with mode a missing type
// falls back by the kind of node and *mode receives st_mode.
status_t get_type(const entry_ref* ref, char* type, uint32* mode, bool traverse);
status_t get_type(const char* path, char* type, uint32* mode, bool traverse);

// The signature of the application that opens ref (the file manager for a
// folder); *isApplication tells whether ref is that application itself.
status_t get_signature(const entry_ref* ref, char* signature, bool* isApplication);

// The absolute path of ref into path (B_PATH_NAME_LENGTH bytes); the entry need
// not exist.
status_t get_path(const entry_ref* ref, char* path, bool traverse);

// The leaf of a path: the text after its last "/" (empty when the path ends in
// one), or the whole path when it has none. Points into path.
const char* ref_name(const char* path);

// A relative path from one entry to another, found by comparing the two paths
// character by character (not by component), into result (B_PATH_NAME_LENGTH
// bytes). The two entries must differ.
status_t get_relative_path(const entry_ref* from, const entry_ref* to, char* result);

// Appends a "supporting_apps" record for each application that can open ref:
// the preferred one, then the supporters of its full type and of its super
// type in the type database's order, then those that accept anything.
status_t find_supporting_apps(const entry_ref* ref, BMessage* message);

#endif // GLIMROW_FILE_HELPERS_H
