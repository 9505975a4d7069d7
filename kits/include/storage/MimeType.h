// BMimeType: a MIME type string and what the system knows about it.
//
// On Linux the type database is the shared MIME-info database and the
// freedesktop application associations (mimeapps.list and the installed desktop
// entries). Applications are named by the signatures Roster.h describes. The
// database is read-only here: the Set and Install calls of Be's API are absent.
#ifndef _MIME_TYPE_H
#define _MIME_TYPE_H

#include <Mime.h>
#include <StorageDefs.h>
#include <SupportDefs.h>

class BBitmap;
class BMessage;
struct entry_ref;

enum app_verb {
    B_OPEN,
};

extern const char* B_APP_MIME_TYPE;
extern const char* B_PEF_APP_MIME_TYPE;
extern const char* B_PE_APP_MIME_TYPE;
extern const char* B_ELF_APP_MIME_TYPE;
extern const char* B_RESOURCE_MIME_TYPE;
extern const char* B_FILE_MIME_TYPE;

class BMimeType {
public:
    BMimeType();
    BMimeType(const char* mimeType);
    virtual ~BMimeType();

    // B_BAD_VALUE (and InitCheck() the same) for NULL or an invalid string.
    status_t SetTo(const char* mimeType);
    void Unset();
    status_t InitCheck() const;

    // NULL when not initialised.
    const char* Type() const;
    bool IsValid() const;
    bool IsSupertypeOnly() const;
    // Whether the type database knows the type.
    bool IsInstalled() const;
    // "text" for "text/plain"; B_BAD_VALUE for a type that is a supertype itself.
    status_t GetSupertype(BMimeType* supertype) const;

    // Types compare without regard to case.
    bool operator==(const BMimeType& type) const;
    bool operator==(const char* type) const;
    // True for the type itself and, for a supertype, every type below it.
    bool Contains(const BMimeType* type) const;

    // The type's icon from the icon theme, scaled to which and converted into
    // the bitmap's colour space (the bitmap must be which × which pixels).
    status_t GetIcon(BBitmap* icon, icon_size which) const;
    // Copies the signature of the type's default application into signature
    // (B_MIME_TYPE_LENGTH bytes); B_ENTRY_NOT_FOUND when it has none.
    status_t GetPreferredApp(char* signature, app_verb verb = B_OPEN) const;
    // The database's description (up to B_MIME_TYPE_LENGTH bytes with the NUL);
    // B_ENTRY_NOT_FOUND when it has none. Both are the same text on Linux.
    status_t GetShortDescription(char* description) const;
    status_t GetLongDescription(char* description) const;
    // Adds "applications" (strings: the supporting signatures, those for the type
    // itself first), "be:sub" (int32: how many are for the type itself) and
    // "be:super" (int32: how many take it through its parent types) to signatures,
    // which is emptied first.
    status_t GetSupportingApps(BMessage* signatures) const;
    // For an application signature: the application's file.
    status_t GetAppHint(entry_ref* ref) const;

    static bool IsValid(const char* mimeType);
    // Adds "applications" with the signatures of the applications that open any
    // file (those that take application/octet-stream).
    static status_t GetWildcardApps(BMessage* wildcardApps);

    static status_t GuessMimeType(const entry_ref* file, BMimeType* type);
    static status_t GuessMimeType(const void* buffer, int32 length, BMimeType* type);
    static status_t GuessMimeType(const char* filename, BMimeType* type);

private:
    BMimeType(const BMimeType&);
    BMimeType& operator=(const BMimeType&);

    char* fType;
    status_t fStatus;
};

#endif // _MIME_TYPE_H
