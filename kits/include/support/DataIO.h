// Byte streams: BDataIO (read and write), BPositionIO (with a position and random
// access), and the two memory streams BMemoryIO (a caller's buffer) and BMallocIO
// (a growing heap buffer). As on Be systems all four are declared here; each class
// has its own source file.
#ifndef _DATA_IO_H
#define _DATA_IO_H

#include <SupportDefs.h>

class BDataIO {
public:
    BDataIO();
    virtual ~BDataIO();

    // Return the number of bytes moved (possibly fewer than asked) or an error.
    // The defaults answer B_NOT_SUPPORTED.
    virtual ssize_t Read(void* buffer, size_t size);
    virtual ssize_t Write(const void* buffer, size_t size);

    virtual status_t Flush();

    // Loop until every byte is moved: B_PARTIAL_READ / B_PARTIAL_WRITE when the
    // stream ends first, or the stream's error.
    status_t ReadExactly(void* buffer, size_t size, size_t* _bytesRead = NULL);
    status_t WriteExactly(const void* buffer, size_t size, size_t* _bytesWritten = NULL);

private:
    BDataIO(const BDataIO&);
    BDataIO& operator=(const BDataIO&);
};

class BPositionIO : public BDataIO {
public:
    BPositionIO();
    virtual ~BPositionIO();

    // Read and Write at Position(), moving it by the bytes moved.
    virtual ssize_t Read(void* buffer, size_t size);
    virtual ssize_t Write(const void* buffer, size_t size);

    virtual ssize_t ReadAt(off_t position, void* buffer, size_t size) = 0;
    virtual ssize_t WriteAt(off_t position, const void* buffer, size_t size) = 0;

    status_t ReadAtExactly(off_t position, void* buffer, size_t size, size_t* _bytesRead = NULL);
    status_t WriteAtExactly(off_t position, const void* buffer, size_t size,
                            size_t* _bytesWritten = NULL);

    // seekMode is SEEK_SET, SEEK_CUR or SEEK_END; returns the new position or an error.
    virtual off_t Seek(off_t position, uint32 seekMode) = 0;
    virtual off_t Position() const = 0;

    virtual status_t SetSize(off_t size);
    virtual status_t GetSize(off_t* size) const;
};

class BMemoryIO : public BPositionIO {
public:
    // The stream works in place on the caller's buffer, which must outlive it; the
    // const form is read-only. The stream never grows beyond `length`.
    BMemoryIO(void* data, size_t length);
    BMemoryIO(const void* data, size_t length);
    virtual ~BMemoryIO();

    virtual ssize_t ReadAt(off_t position, void* buffer, size_t size);
    virtual ssize_t WriteAt(off_t position, const void* buffer, size_t size);

    virtual off_t Seek(off_t position, uint32 seekMode);
    virtual off_t Position() const;

    // Between 0 and the buffer's length.
    virtual status_t SetSize(off_t size);

private:
    BMemoryIO(const BMemoryIO&);
    BMemoryIO& operator=(const BMemoryIO&);

    bool fReadOnly;
    char* fBuffer;
    size_t fLength;
    size_t fBufferSize;
    size_t fPosition;
};

class BMallocIO : public BPositionIO {
public:
    BMallocIO();
    virtual ~BMallocIO();

    virtual ssize_t ReadAt(off_t position, void* buffer, size_t size);
    // Writing past the end grows the buffer; a gap is filled with zeros.
    virtual ssize_t WriteAt(off_t position, const void* buffer, size_t size);

    virtual off_t Seek(off_t position, uint32 seekMode);
    virtual off_t Position() const;

    virtual status_t SetSize(off_t size);

    // The buffer grows in multiples of this many bytes (256 by default).
    void SetBlockSize(size_t blockSize);

    // The stream's bytes, owned by the stream; valid until it next changes.
    const void* Buffer() const;
    size_t BufferLength() const;

private:
    BMallocIO(const BMallocIO&);
    BMallocIO& operator=(const BMallocIO&);

    status_t _Reserve(size_t length);

    size_t fBlockSize;
    size_t fMallocSize;
    size_t fLength;
    char* fData;
    off_t fPosition;
};

#endif // _DATA_IO_H
