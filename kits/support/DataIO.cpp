#include <DataIO.h>

BDataIO::BDataIO() {}

BDataIO::~BDataIO() {}

ssize_t BDataIO::Read(void* buffer, size_t size) {
    return B_NOT_SUPPORTED;
}

ssize_t BDataIO::Write(const void* buffer, size_t size) {
    return B_NOT_SUPPORTED;
}

status_t BDataIO::Flush() {
    return B_OK;
}

status_t BDataIO::ReadExactly(void* buffer, size_t size, size_t* _bytesRead) {
    char* out = static_cast<char*>(buffer);
    size_t total = 0;
    status_t status = B_OK;
    while (total < size) {
        ssize_t bytes = Read(out + total, size - total);
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

status_t BDataIO::WriteExactly(const void* buffer, size_t size, size_t* _bytesWritten) {
    const char* in = static_cast<const char*>(buffer);
    size_t total = 0;
    status_t status = B_OK;
    while (total < size) {
        ssize_t bytes = Write(in + total, size - total);
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
