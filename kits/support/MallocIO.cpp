#include <DataIO.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

namespace {

const size_t kDefaultBlockSize = 256;
// A stream larger than a terabyte is refused outright rather than asked of the
// allocator: no real stream gets there, and a corrupt length must not try.
const uint64 kMaxLength = ((uint64)1 << 40) - 1;

} // namespace

BMallocIO::BMallocIO()
    : fBlockSize(kDefaultBlockSize), fMallocSize(0), fLength(0), fData(NULL), fPosition(0) {}

BMallocIO::~BMallocIO() {
    free(fData);
}

ssize_t BMallocIO::ReadAt(off_t position, void* buffer, size_t size) {
    if (buffer == NULL || position < 0)
        return B_BAD_VALUE;
    if ((uint64)position >= fLength)
        return 0;

    size_t available = fLength - (size_t)position;
    if (size > available)
        size = available;
    memcpy(buffer, fData + position, size);
    return (ssize_t)size;
}

ssize_t BMallocIO::WriteAt(off_t position, const void* buffer, size_t size) {
    if (buffer == NULL || position < 0)
        return B_BAD_VALUE;
    if (size == 0)
        return 0;
    if ((uint64)position > kMaxLength || size > kMaxLength - (uint64)position)
        return B_NO_MEMORY;

    size_t end = (size_t)position + size;
    if (end > fLength) {
        status_t status = SetSize((off_t)end);
        if (status != B_OK)
            return status;
    }
    memcpy(fData + position, buffer, size);
    return (ssize_t)size;
}

off_t BMallocIO::Seek(off_t position, uint32 seekMode) {
    off_t base;
    switch (seekMode) {
    case SEEK_SET:
        base = 0;
        break;
    case SEEK_CUR:
        base = fPosition;
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
    fPosition = newPosition;
    return newPosition;
}

off_t BMallocIO::Position() const {
    return fPosition;
}

status_t BMallocIO::SetSize(off_t size) {
    if (size < 0)
        return B_BAD_VALUE;
    if ((uint64)size > kMaxLength)
        return B_NO_MEMORY;

    if (size == 0) {
        free(fData);
        fData = NULL;
        fMallocSize = 0;
        fLength = 0;
        return B_OK;
    }

    status_t status = _Reserve((size_t)size);
    if (status != B_OK)
        return status;

    // Bytes between the old and the new end read as zeros.
    if ((size_t)size > fLength)
        memset(fData + fLength, 0, (size_t)size - fLength);
    fLength = (size_t)size;
    return B_OK;
}

void BMallocIO::SetBlockSize(size_t blockSize) {
    fBlockSize = blockSize > 0 ? blockSize : 1;
}

const void* BMallocIO::Buffer() const {
    return fData;
}

size_t BMallocIO::BufferLength() const {
    return fLength;
}

// Sizes the allocation to `length` rounded up to the block size (growing or
// shrinking).
status_t BMallocIO::_Reserve(size_t length) {
    size_t blocks = length / fBlockSize + (length % fBlockSize != 0 ? 1 : 0);
    size_t newSize;
    if (__builtin_mul_overflow(blocks, fBlockSize, &newSize))
        return B_NO_MEMORY;
    if (newSize == fMallocSize)
        return B_OK;

    char* newData = static_cast<char*>(realloc(fData, newSize));
    if (newData == NULL)
        return B_NO_MEMORY;
    fData = newData;
    fMallocSize = newSize;
    return B_OK;
}
