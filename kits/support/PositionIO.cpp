#include <DataIO.h>

#include <stdio.h>

BPositionIO::BPositionIO() {}

BPositionIO::~BPositionIO() {}

ssize_t BPositionIO::Read(void* buffer, size_t size) {
    off_t position = Position();
    if (position < 0)
        return (ssize_t)position;

    ssize_t result = ReadAt(position, buffer, size);
    if (result > 0)
        Seek(result, SEEK_CUR);
    return result;
}

ssize_t BPositionIO::Write(const void* buffer, size_t size) {
    off_t position = Position();
    if (position < 0)
        return (ssize_t)position;

    ssize_t result = WriteAt(position, buffer, size);
    if (result > 0)
        Seek(result, SEEK_CUR);
    return result;
}

status_t BPositionIO::ReadAtExactly(off_t position, void* buffer, size_t size, size_t* _bytesRead) {
    char* out = static_cast<char*>(buffer);
    size_t total = 0;
    status_t status = B_OK;
    while (total < size) {
        ssize_t bytes = ReadAt(position + (off_t)total, out + total, size - total);
        if (bytes < 0) {
            status = (status_t)bytes;
            break;
        }
        if (bytes == 0) {
            status = B_PARTIAL_READ;
            break;
        }
        total += (size_t)bytes;
    }

    if (_bytesRead != NULL)
        *_bytesRead = total;
    return status;
}

status_t BPositionIO::WriteAtExactly(off_t position, const void* buffer, size_t size,
                                     size_t* _bytesWritten) {
    const char* in = static_cast<const char*>(buffer);
    size_t total = 0;
    status_t status = B_OK;
    while (total < size) {
        ssize_t bytes = WriteAt(position + (off_t)total, in + total, size - total);
        if (bytes < 0) {
            status = (status_t)bytes;
            break;
        }
        if (bytes == 0) {
            status = B_PARTIAL_WRITE;
            break;
        }
        total += (size_t)bytes;
    }

    if (_bytesWritten != NULL)
        *_bytesWritten = total;
    return status;
}

status_t BPositionIO::SetSize(off_t size) {
    return B_ERROR;
}

status_t BPositionIO::GetSize(off_t* size) const {
    if (size == NULL)
        return B_BAD_VALUE;

    // Without a size of its own, a stream's size is where its end is: seek there and
    // come back.
    BPositionIO* self = const_cast<BPositionIO*>(this);
    off_t position = Position();
    if (position < 0)
        return (status_t)position;

    off_t end = self->Seek(0, SEEK_END);
    if (end < 0)
        return (status_t)end;

    off_t restored = self->Seek(position, SEEK_SET);
    if (restored != position)
        return restored < 0 ? (status_t)restored : B_ERROR;

    *size = end;
    return B_OK;
}
