// Reading Haiku's native layout: a 68-byte header, one 24-byte header per field, then
// a data area where each field has its NUL-terminated name followed by its items.
// Only the host byte order exists for it. The hash table in the header only speeds
// up Haiku's own lookups, so we do not need it.
#include "app/MessageFlattening.h"

namespace BPrivate {

namespace {

const uint32 kHeaderFlagValid = 0x0001;
const uint16 kFieldFlagValid = 0x0001;
const uint16 kFieldFlagFixedSize = 0x0002;

// Variable-size items: a uint32 length and the bytes, no padding.
status_t ReadVariableItems(const uint8* block, uint32 dataSize, uint32 count, MessageField* field) {
    FlatReader items(block, dataSize, false);
    field->data.reserve(dataSize);
    for (uint32 i = 0; i < count; i++) {
        uint32 length;
        const uint8* item;
        if (!items.Read32(&length) || !items.ReadBytes(length, &item))
            return B_BAD_VALUE;
        if (field->data.size() + sizeof(uint32) + length > MessageBody::kMaxFieldData)
            return B_BAD_VALUE;
        field->AppendItem(item, length);
    }
    return items.Remaining() == 0 ? B_OK : B_BAD_VALUE;
}

status_t ReadField(const uint8* fieldHeader, const uint8* area, uint32 areaSize,
                   MessageBody* body) {
    FlatReader reader(fieldHeader, kHaikuFieldHeaderSize, false);
    uint16 flags;
    uint16 nameLength;
    uint32 type;
    uint32 count;
    uint32 dataSize;
    uint32 offset;
    reader.Read16(&flags);
    reader.Read16(&nameLength);
    reader.Read32(&type);
    reader.Read32(&count);
    reader.Read32(&dataSize);
    reader.Read32(&offset);

    if ((flags & kFieldFlagValid) == 0 || nameLength == 0)
        return B_BAD_VALUE;
    if (offset > areaSize || nameLength > areaSize - offset ||
        dataSize > areaSize - offset - nameLength) {
        return B_BAD_VALUE;
    }
    const uint8* name = area + offset;
    if (name[nameLength - 1] != '\0')
        return B_BAD_VALUE;
    if (count == 0)
        return dataSize == 0 ? B_OK : B_BAD_VALUE;
    if (dataSize > MessageBody::kMaxFieldData)
        return B_BAD_VALUE;

    MessageField* field;
    status_t status =
        body->AppendField(reinterpret_cast<const char*>(name), nameLength - 1u, type, 0, &field);
    if (status != B_OK)
        return status;

    const uint8* block = name + nameLength;
    if ((flags & kFieldFlagFixedSize) == 0)
        return ReadVariableItems(block, dataSize, count, field);
    if (dataSize == 0 || dataSize % count != 0)
        return B_BAD_VALUE;
    field->itemSize = dataSize / count;
    field->data.assign(block, block + dataSize);
    field->count = count;
    return B_OK;
}

} // namespace

status_t unflatten_haiku(const uint8* data, size_t size, uint32* what, MessageBody* body) {
    if (size < kHaikuHeaderSize)
        return B_BAD_VALUE;
    FlatReader header(data, kHaikuHeaderSize, false);
    uint32 format;
    uint32 whatCode;
    uint32 flags;
    uint32 dataSize;
    uint32 fieldCount;
    header.Read32(&format);
    header.Read32(&whatCode);
    header.Read32(&flags);
    // target, current specifier, area, reply port, reply target, reply team
    header.Skip(6 * sizeof(int32));
    header.Read32(&dataSize);
    header.Read32(&fieldCount);

    if ((flags & kHeaderFlagValid) == 0)
        return B_BAD_VALUE;
    size_t available = size - kHaikuHeaderSize;
    if (fieldCount > available / kHaikuFieldHeaderSize)
        return B_BAD_VALUE;
    size_t fieldsSize = size_t(fieldCount) * kHaikuFieldHeaderSize;
    if (dataSize > available - fieldsSize)
        return B_BAD_VALUE;

    const uint8* fieldHeaders = data + kHaikuHeaderSize;
    const uint8* area = fieldHeaders + fieldsSize;
    for (uint32 i = 0; i < fieldCount; i++) {
        status_t status =
            ReadField(fieldHeaders + size_t(i) * kHaikuFieldHeaderSize, area, dataSize, body);
        if (status != B_OK)
            return status;
    }
    *what = whatCode;
    return B_OK;
}

} // namespace BPrivate
