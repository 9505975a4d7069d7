// Reading the BeOS R5 layout, in the host's byte order or the opposite one (a
// message written on a PowerPC machine read on x86, or the other way round).
//
// We do not check the header checksum: some writers leave it stale, and every size
// and count below is checked against the data anyway.
#include "app/MessageFlattening.h"

namespace BPrivate {

namespace {

const uint8 kHeaderHasTarget = 0x02;
const uint8 kHeaderHasReplyInfo = 0x04;
const size_t kTargetSize = 4;
const size_t kReplyInfoSize = 3 * 4 + 4;

const uint8 kFieldValid = 0x01;
const uint8 kFieldMiniData = 0x02;
const uint8 kFieldFixedSize = 0x04;
const uint8 kFieldSingleItem = 0x08;

void SwapBytes(uint8* bytes, size_t width) {
    for (size_t low = 0, high = width - 1; low < high; low++, high--) {
        uint8 byte = bytes[low];
        bytes[low] = bytes[high];
        bytes[high] = byte;
    }
}

// Brings one item of a known type into host order. Types we know nothing about
// (strings, raw data, colours, nested messages with their own header) stay as they are.
bool SwapItem(type_code type, uint8* item, size_t size) {
    size_t width = 0;
    switch (type) {
    case B_INT16_TYPE:
    case B_UINT16_TYPE:
        width = 2;
        break;
    case B_INT32_TYPE:
    case B_UINT32_TYPE:
    case B_FLOAT_TYPE:
    case B_POINT_TYPE:
    case B_RECT_TYPE:
    case B_MESSENGER_TYPE:
        width = 4;
        break;
    case B_INT64_TYPE:
    case B_UINT64_TYPE:
    case B_DOUBLE_TYPE:
    case B_OFF_T_TYPE:
        width = 8;
        break;
    case B_POINTER_TYPE:
    case B_SIZE_T_TYPE:
    case B_SSIZE_T_TYPE:
    case B_TIME_TYPE:
        if (size != 4 && size != 8)
            return false;
        width = size;
        break;
    case B_REF_TYPE:
        // int32 device and int64 directory; the name is bytes.
        if (size < 12)
            return false;
        SwapBytes(item, 4);
        SwapBytes(item + 4, 8);
        return true;
    default:
        return true;
    }
    if (size % width != 0)
        return false;
    for (size_t offset = 0; offset < size; offset += width)
        SwapBytes(item + offset, width);
    return true;
}

status_t ReadFixedItems(const uint8* block, uint32 dataSize, uint32 count, bool swapped,
                        MessageField* field) {
    if (dataSize == 0 || dataSize % count != 0)
        return B_BAD_VALUE;
    field->itemSize = dataSize / count;
    field->data.assign(block, block + dataSize);
    field->count = count;
    if (swapped) {
        for (size_t offset = 0; offset < dataSize; offset += field->itemSize) {
            if (!SwapItem(field->type, field->data.data() + offset, field->itemSize))
                return B_BAD_VALUE;
        }
    }
    return B_OK;
}

// Each item: an int32 length, the bytes, zeros up to a multiple of eight. The last
// item's padding may be missing.
status_t ReadVariableItems(const uint8* block, uint32 dataSize, uint32 count, bool swapped,
                           MessageField* field) {
    FlatReader items(block, dataSize, swapped);
    // What we store is never larger than what we read: a 4-byte length plus the bytes.
    field->data.reserve(dataSize);
    for (uint32 i = 0; i < count; i++) {
        uint32 length;
        const uint8* item;
        if (!items.ReadSize32(&length) || !items.ReadBytes(length, &item))
            return B_BAD_VALUE;
        size_t padding = ((sizeof(uint32) + length + 7) & ~size_t(7)) - sizeof(uint32) - length;
        if (padding > items.Remaining()) {
            if (i + 1 < count)
                return B_BAD_VALUE;
            padding = items.Remaining();
        }
        items.Skip(padding);

        size_t start = field->data.size() + sizeof(uint32);
        field->AppendItem(item, length);
        if (swapped && !SwapItem(field->type, field->data.data() + start, length))
            return B_BAD_VALUE;
    }
    return items.Remaining() == 0 ? B_OK : B_BAD_VALUE;
}

status_t ReadField(FlatReader& reader, uint8 flags, bool swapped, MessageBody* body) {
    bool mini = (flags & kFieldMiniData) != 0;
    uint32 type;
    if (!reader.Read32(&type))
        return B_BAD_VALUE;

    uint32 count = 1;
    uint32 dataSize;
    uint8 small;
    if ((flags & kFieldSingleItem) == 0) {
        if (mini) {
            if (!reader.Read8(&small))
                return B_BAD_VALUE;
            count = small;
        } else if (!reader.ReadSize32(&count)) {
            return B_BAD_VALUE;
        }
    }
    if (mini) {
        if (!reader.Read8(&small))
            return B_BAD_VALUE;
        dataSize = small;
    } else if (!reader.ReadSize32(&dataSize)) {
        return B_BAD_VALUE;
    }

    uint8 nameLength;
    const uint8* name;
    const uint8* block;
    if (!reader.Read8(&nameLength) || !reader.ReadBytes(nameLength, &name) ||
        !reader.ReadBytes(dataSize, &block)) {
        return B_BAD_VALUE;
    }
    if (count == 0)
        return dataSize == 0 ? B_OK : B_BAD_VALUE;
    if (dataSize > MessageBody::kMaxFieldData)
        return B_BAD_VALUE;

    MessageField* field;
    status_t status =
        body->AppendField(reinterpret_cast<const char*>(name), nameLength, type, 0, &field);
    if (status != B_OK)
        return status;
    if ((flags & kFieldFixedSize) != 0)
        return ReadFixedItems(block, dataSize, count, swapped, field);
    return ReadVariableItems(block, dataSize, count, swapped, field);
}

} // namespace

status_t unflatten_r5(const uint8* data, size_t size, bool swapped, uint32* what,
                      MessageBody* body) {
    FlatReader header(data, size, swapped);
    uint32 format;
    uint32 checksum;
    uint32 flattenedSize;
    uint32 whatCode;
    uint8 flags;
    if (!header.Read32(&format) || !header.Read32(&checksum) ||
        !header.ReadSize32(&flattenedSize) || !header.Read32(&whatCode) || !header.Read8(&flags)) {
        return B_BAD_VALUE;
    }
    if (flattenedSize < kR5HeaderSize + 1 || flattenedSize > size)
        return B_BAD_VALUE;

    FlatReader reader(data, flattenedSize, swapped);
    reader.Skip(kR5HeaderSize);
    if ((flags & kHeaderHasTarget) != 0 && !reader.Skip(kTargetSize))
        return B_BAD_VALUE;
    if ((flags & kHeaderHasReplyInfo) != 0 && !reader.Skip(kReplyInfoSize))
        return B_BAD_VALUE;

    while (true) {
        uint8 fieldFlags;
        if (!reader.Read8(&fieldFlags))
            return B_BAD_VALUE;
        if ((fieldFlags & kFieldValid) == 0)
            break;
        status_t status = ReadField(reader, fieldFlags, swapped, body);
        if (status != B_OK)
            return status;
    }
    *what = whatCode;
    return B_OK;
}

} // namespace BPrivate
