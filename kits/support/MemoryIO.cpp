#include <DataIO.h>

#include <stdio.h>
#include <string.h>

BMemoryIO::BMemoryIO(void* data, size_t length)
    : fReadOnly(false), fBuffer(static_cast<char*>(data)), fLength(data != NULL ? length : 0),
      fBufferSize(fLength), fPosition(0) {}

BMemoryIO::BMemoryIO(const void* data, size_t length)
    : fReadOnly(true), fBuffer(const_cast<char*>(static_cast<const char*>(data))),
      fLength(data != NULL ? length : 0), fBufferSize(fLength), fPosition(0) {}

BMemoryIO::~BMemoryIO() {}

ssize_t BMemoryIO::ReadAt(off_t position, void* buffer, size_t size) {
    if (buffer == NULL || position < 0)
        return B_BAD_VALUE;
    if ((uint64)position >= fLength)
        return 0;

    size_t available = fLength - (size_t)position;
    if (size > available)
        size = available;
    memcpy(buffer, fBuffer + position, size);
    return (ssize_t)size;
}

ssize_t BMemoryIO::WriteAt(off_t position, const void* buffer, size_t size) {
    if (fReadOnly)
        return B_NOT_ALLOWED;
    if (buffer == NULL || position < 0)
        return B_BAD_VALUE;
    if ((uint64)position >= fBufferSize)
        return 0;

    size_t room = fBufferSize - (size_t)position;
    if (size > room)
        size = room;
    memcpy(fBuffer + position, buffer, size);
    if ((size_t)position + size > fLength)
        fLength = (size_t)position + size;
    return (ssize_t)size;
}

off_t BMemoryIO::Seek(off_t position, uint32 seekMode) {
    off_t base;
    switch (seekMode) {
    case SEEK_SET:
        base = 0;
        break;
    case SEEK_CUR:
        base = (off_t)fPosition;
        break;
    case SEEK_END:
        base = (off_t)fLength;
        break;
    default:
        return B_BAD_VALUE;
    }

    off_t newPosition;
    if (__builtin_add_overflow(base, position, &newPosition) || newPosition < 0)
        return B_BAD_VALUE;
    fPosition = (size_t)newPosition;
    return newPosition;
}

off_t BMemoryIO::Position() const {
    return (off_t)fPosition;
}

status_t BMemoryIO::SetSize(off_t size) {
    if (fReadOnly)
        return B_NOT_ALLOWED;
    if (size < 0 || (uint64)size > fBufferSize)
        return B_ERROR;

    fLength = (size_t)size;
    return B_OK;
}
