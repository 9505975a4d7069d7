// BAppFileInfo: what an application file says about itself.
//
// Applications on Linux are desktop entries and executables; their signature is
// the "BEOS:APP_SIG" attribute, else the one derived from the desktop file ID or
// the path (the rule is in Roster.h).
#ifndef _APP_FILE_INFO_H
#define _APP_FILE_INFO_H

#include <NodeInfo.h>
#include <SupportDefs.h>

class BFile;
class BMessage;

class BAppFileInfo : public BNodeInfo {
public:
    BAppFileInfo();
    // The file is not copied: it must outlive the BAppFileInfo.
    BAppFileInfo(BFile* file);
    virtual ~BAppFileInfo();

    status_t SetTo(BFile* file);

    // Copies the signature into signature (B_MIME_TYPE_LENGTH bytes).
    // B_BAD_TYPE when the file is no application.
    status_t GetSignature(char* signature) const;
    status_t SetSignature(const char* signature);
    // The "BEOS:APP_FLAGS" attribute; B_ENTRY_NOT_FOUND without one.
    status_t GetAppFlags(uint32* flags) const;
    status_t SetAppFlags(uint32 flags);
    // Adds "types" (strings): the types the application opens (a desktop entry's
    // MimeType list, or the "BEOS:FILE_TYPES" attribute).
    status_t GetSupportedTypes(BMessage* types) const;
    bool IsSupportedType(const char* type) const;

private:
    BAppFileInfo(const BAppFileInfo&);
    BAppFileInfo& operator=(const BAppFileInfo&);

    BFile* fFile;
};

#endif // _APP_FILE_INFO_H
