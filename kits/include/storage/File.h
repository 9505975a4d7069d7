// Files: a node with data that can be read and written.
#ifndef _FILE_H
#define _FILE_H

#include <DataIO.h>
#include <Node.h>
#include <StorageDefs.h>

class BDirectory;
class BEntry;
struct entry_ref;

class BFile : public BNode, public BPositionIO {
public:
    BFile();
    BFile(const BFile& file);
    BFile(const entry_ref* ref, uint32 openMode);
    BFile(const BEntry* entry, uint32 openMode);
    BFile(const char* path, uint32 openMode);
    BFile(const BDirectory* directory, const char* path, uint32 openMode);
    virtual ~BFile();

    // openMode is one of B_READ_ONLY, B_WRITE_ONLY, B_READ_WRITE, or'ed with
    // B_CREATE_FILE, B_ERASE_FILE, B_FAIL_IF_EXISTS, B_OPEN_AT_END. Links are
    // followed; a folder gives B_IS_A_DIRECTORY.
    status_t SetTo(const entry_ref* ref, uint32 openMode);
    status_t SetTo(const BEntry* entry, uint32 openMode);
    status_t SetTo(const char* path, uint32 openMode);
    status_t SetTo(const BDirectory* directory, const char* path, uint32 openMode);
    void Unset();

    bool IsReadable() const;
    bool IsWritable() const;

    virtual ssize_t Read(void* buffer, size_t size);
    virtual ssize_t ReadAt(off_t location, void* buffer, size_t size);
    virtual ssize_t Write(const void* buffer, size_t size);
    virtual ssize_t WriteAt(off_t location, const void* buffer, size_t size);

    virtual off_t Seek(off_t offset, uint32 seekMode);
    virtual off_t Position() const;

    virtual status_t SetSize(off_t size);
    virtual status_t GetSize(off_t* size) const;

    BFile& operator=(const BFile& file);

private:
    status_t _Open(const char* path, uint32 openMode);

    uint32 fMode;
};

#endif // _FILE_H
