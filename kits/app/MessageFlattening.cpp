#include "app/MessageFlattening.h"

#include <DataIO.h>

#include <algorithm>

namespace BPrivate {

namespace {

const uint8 kR5HeaderFlagValid = 0x01;

const uint8 kR5FieldValid = 0x01;
const uint8 kR5FieldMiniData = 0x02;
const uint8 kR5FieldFixedSize = 0x04;
const uint8 kR5FieldSingleItem = 0x08;

const size_t kMaxR5NameLength = 255;
const uint64 kMaxFlattenedSize = 0x7fffffff;

// A variable-size item takes its length word, its bytes and zeros up to a multiple
// of eight.
uint64 PaddedItemSize(uint64 length) {
    return (sizeof(uint32) + length + 7) & ~uint64(7);
}

uint64 R5DataSize(const MessageField& field) {
    if (field.IsFixedSize())
        return field.data.size();
    uint64 total = 0;
    size_t offset = 0;
    for (uint32 i = 0; i < field.count; i++) {
        uint32 length;
        memcpy(&length, field.data.data() + offset, sizeof(length));
        total += PaddedItemSize(length);
        offset += sizeof(uint32) + length;
    }
    return total;
}

// Be writers use one-byte count and size words whenever the data block is that small.
bool UsesMiniData(uint64 dataSize) {
    return dataSize <= 255;
}

uint64 R5FieldSize(const MessageField& field, uint64 dataSize) {
    bool mini = UsesMiniData(dataSize);
    uint64 countSize = field.count == 1 ? 0 : (mini ? 1 : 4);
    return 1 + sizeof(type_code) + countSize + (mini ? 1 : 4) + 1 + field.name.size() + dataSize;
}

// The header checksum: the bytes from flattened_size to the first field, summed as
// big-endian words, with a short tail added as one big-endian number.
uint32 R5HeaderChecksum(const uint8* bytes, size_t length) {
    uint32 sum = 0;
    size_t i = 0;
    for (; i + 4 <= length; i += 4) {
        sum += (uint32(bytes[i]) << 24) | (uint32(bytes[i + 1]) << 16) |
               (uint32(bytes[i + 2]) << 8) | uint32(bytes[i + 3]);
    }
    uint32 tail = 0;
    for (; i < length; i++)
        tail = (tail << 8) + bytes[i];
    return sum + tail;
}

class FlatWriter {
public:
    explicit FlatWriter(uint8* buffer) : fBuffer(buffer), fPosition(0) {}

    size_t Position() const { return fPosition; }

    void Put8(uint8 value) { fBuffer[fPosition++] = value; }
    void Put32(uint32 value) { PutBytes(&value, sizeof(value)); }
    void PutBytes(const void* bytes, size_t length) {
        memcpy(fBuffer + fPosition, bytes, length);
        fPosition += length;
    }
    void PutZeros(size_t length) {
        memset(fBuffer + fPosition, 0, length);
        fPosition += length;
    }

private:
    uint8* fBuffer;
    size_t fPosition;
};

void WriteR5Field(FlatWriter& writer, const MessageField& field) {
    uint64 dataSize = R5DataSize(field);
    bool mini = UsesMiniData(dataSize);
    uint8 flags = kR5FieldValid;
    if (mini)
        flags |= kR5FieldMiniData;
    if (field.IsFixedSize())
        flags |= kR5FieldFixedSize;
    if (field.count == 1)
        flags |= kR5FieldSingleItem;

    writer.Put8(flags);
    writer.Put32(field.type);
    if (field.count != 1) {
        if (mini)
            writer.Put8(static_cast<uint8>(field.count));
        else
            writer.Put32(field.count);
    }
    if (mini)
        writer.Put8(static_cast<uint8>(dataSize));
    else
        writer.Put32(static_cast<uint32>(dataSize));
    writer.Put8(static_cast<uint8>(field.name.size()));
    writer.PutBytes(field.name.data(), field.name.size());

    if (field.IsFixedSize()) {
        writer.PutBytes(field.data.data(), field.data.size());
        return;
    }
    size_t offset = 0;
    for (uint32 i = 0; i < field.count; i++) {
        uint32 length;
        memcpy(&length, field.data.data() + offset, sizeof(length));
        writer.PutBytes(field.data.data() + offset, sizeof(uint32) + length);
        writer.PutZeros(PaddedItemSize(length) - sizeof(uint32) - length);
        offset += sizeof(uint32) + length;
    }
}

status_t ReadFromStream(BDataIO* stream, uint8* buffer, size_t length) {
    while (length > 0) {
        ssize_t bytesRead = stream->Read(buffer, length);
        if (bytesRead < 0)
            return static_cast<status_t>(bytesRead);
        if (bytesRead == 0)
            return B_BAD_VALUE;
        buffer += bytesRead;
        length -= static_cast<size_t>(bytesRead);
    }
    return B_OK;
}

bool IsDanoFormat(uint32 format) {
    return format == kMessageFormatDano || format == kMessageFormatDanoSwapped;
}

} // namespace

ssize_t r5_flattened_size(const MessageBody& body) {
    uint64 total = kR5HeaderSize + 1;
    for (int32 i = 0; i < body.CountFields(); i++) {
        const MessageField& field = body.FieldAt(i);
        if (field.name.size() > kMaxR5NameLength)
            return B_NAME_TOO_LONG;
        total += R5FieldSize(field, R5DataSize(field));
        if (total > kMaxFlattenedSize)
            return B_NO_MEMORY;
    }
    return static_cast<ssize_t>(total);
}

void flatten_r5(uint32 what, const MessageBody& body, uint8* buffer, size_t size) {
    FlatWriter writer(buffer);
    writer.Put32(kMessageFormatR5);
    writer.Put32(0);
    writer.Put32(static_cast<uint32>(size));
    writer.Put32(what);
    writer.Put8(kR5HeaderFlagValid);
    uint32 checksum = R5HeaderChecksum(buffer + 8, kR5HeaderSize - 8);
    memcpy(buffer + 4, &checksum, sizeof(checksum));

    for (int32 i = 0; i < body.CountFields(); i++)
        WriteR5Field(writer, body.FieldAt(i));
    writer.Put8(0);
}

size_t flattened_header_size(uint32 format) {
    switch (format) {
    case kMessageFormatR5:
    case kMessageFormatR5Swapped:
        return 12;
    case kMessageFormatHaiku:
        return kHaikuHeaderSize;
    default:
        return 0;
    }
}

status_t flattened_message_size(const uint8* data, size_t available, size_t* total) {
    uint32 format;
    if (available < sizeof(format))
        return B_BAD_VALUE;
    memcpy(&format, data, sizeof(format));
    size_t headerSize = flattened_header_size(format);
    if (headerSize == 0)
        return IsDanoFormat(format) ? B_NOT_SUPPORTED : B_NOT_A_MESSAGE;
    if (available < headerSize)
        return B_BAD_VALUE;

    FlatReader reader(data, headerSize, format == kMessageFormatR5Swapped);
    if (format == kMessageFormatHaiku) {
        uint32 dataSize;
        uint32 fieldCount;
        reader.Skip(36);
        reader.Read32(&dataSize);
        reader.Read32(&fieldCount);
        uint64 size = kHaikuHeaderSize + uint64(fieldCount) * kHaikuFieldHeaderSize + dataSize;
        if (size > kMaxFlattenedSize)
            return B_BAD_VALUE;
        *total = static_cast<size_t>(size);
        return B_OK;
    }

    uint32 size;
    reader.Skip(8);
    if (!reader.ReadSize32(&size) || size < kR5HeaderSize + 1)
        return B_BAD_VALUE;
    *total = size;
    return B_OK;
}

status_t unflatten_message(const uint8* data, size_t size, uint32* what, MessageBody* body) {
    uint32 format;
    if (size < sizeof(format))
        return B_BAD_VALUE;
    memcpy(&format, data, sizeof(format));
    switch (format) {
    case kMessageFormatR5:
        return unflatten_r5(data, size, false, what, body);
    case kMessageFormatR5Swapped:
        return unflatten_r5(data, size, true, what, body);
    case kMessageFormatHaiku:
        return unflatten_haiku(data, size, what, body);
    default:
        return IsDanoFormat(format) ? B_NOT_SUPPORTED : B_NOT_A_MESSAGE;
    }
}

status_t read_flattened_message(BDataIO* stream, std::vector<uint8>* buffer) {
    buffer->resize(sizeof(uint32));
    status_t status = ReadFromStream(stream, buffer->data(), sizeof(uint32));
    if (status != B_OK)
        return status;
    uint32 format;
    memcpy(&format, buffer->data(), sizeof(format));
    size_t headerSize = flattened_header_size(format);
    if (headerSize == 0)
        return IsDanoFormat(format) ? B_NOT_SUPPORTED : B_NOT_A_MESSAGE;

    buffer->resize(headerSize);
    status = ReadFromStream(stream, buffer->data() + sizeof(uint32), headerSize - sizeof(uint32));
    if (status != B_OK)
        return status;
    size_t total;
    status = flattened_message_size(buffer->data(), headerSize, &total);
    if (status != B_OK)
        return status;

    // Grow by at most what we already hold, so a header announcing gigabytes costs
    // nothing until the stream really delivers them.
    size_t have = headerSize;
    while (have < total) {
        size_t step = std::min(total - have, std::max<size_t>(have, 64 * 1024));
        buffer->resize(have + step);
        status = ReadFromStream(stream, buffer->data() + have, step);
        if (status != B_OK)
            return status;
        have += step;
    }
    return B_OK;
}

} // namespace BPrivate
