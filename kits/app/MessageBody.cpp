#include "MessageBody.h"

#include <string.h>

#include <algorithm>

namespace BPrivate {

namespace {

uint32 ReadLength(const uint8* bytes) {
    uint32 length;
    memcpy(&length, bytes, sizeof(length));
    return length;
}

// Where item index of a variable-size field begins (its length word).
size_t VariableItemOffset(const MessageField& field, int32 index) {
    size_t offset = 0;
    for (int32 i = 0; i < index; i++)
        offset += sizeof(uint32) + ReadLength(field.data.data() + offset);
    return offset;
}

} // namespace

void MessageField::GetItem(int32 index, const uint8** item, size_t* size) const {
    if (IsFixedSize()) {
        *item = data.data() + static_cast<size_t>(index) * itemSize;
        *size = itemSize;
        return;
    }
    size_t offset = VariableItemOffset(*this, index);
    *size = ReadLength(data.data() + offset);
    *item = data.data() + offset + sizeof(uint32);
}

void MessageField::AppendItem(const void* item, size_t size) {
    const uint8* bytes = static_cast<const uint8*>(item);
    if (!IsFixedSize()) {
        uint32 length = static_cast<uint32>(size);
        const uint8* lengthBytes = reinterpret_cast<const uint8*>(&length);
        data.insert(data.end(), lengthBytes, lengthBytes + sizeof(length));
    }
    data.insert(data.end(), bytes, bytes + size);
    count++;
}

// #pragma mark - MessageBody

int32 MessageBody::IndexOf(const char* name, size_t length) const {
    for (size_t i = 0; i < fFields.size(); i++) {
        const std::string& fieldName = fFields[i].name;
        if (fieldName.size() == length && memcmp(fieldName.data(), name, length) == 0)
            return static_cast<int32>(i);
    }
    return -1;
}

int32 MessageBody::IndexOf(const char* name) const {
    if (name == NULL)
        return -1;
    return IndexOf(name, strlen(name));
}

status_t MessageBody::_Lookup(const char* name, type_code type, int32 index,
                              int32* fieldIndex) const {
    if (name == NULL)
        return B_BAD_VALUE;
    int32 found = IndexOf(name);
    if (found < 0)
        return B_NAME_NOT_FOUND;
    const MessageField& field = fFields[found];
    if (type != B_ANY_TYPE && field.type != type)
        return B_BAD_TYPE;
    if (index < 0 || static_cast<uint32>(index) >= field.count)
        return B_BAD_INDEX;
    *fieldIndex = found;
    return B_OK;
}

status_t MessageBody::AddItem(const char* name, type_code type, const void* data, ssize_t size,
                              bool fixedSize, int32 countHint) {
    if (name == NULL || data == NULL || size <= 0 || type == B_ANY_TYPE)
        return B_BAD_VALUE;
    if (static_cast<size_t>(size) > kMaxFieldData)
        return B_BAD_VALUE;

    int32 index = IndexOf(name);
    if (index < 0) {
        MessageField field;
        field.name = name;
        field.type = type;
        field.itemSize = fixedSize ? static_cast<uint32>(size) : 0;
        if (countHint > 1) {
            // Only a hint: never let it reserve more than a small amount up front.
            size_t perItem = static_cast<size_t>(size) + (fixedSize ? 0 : sizeof(uint32));
            size_t items = std::min<size_t>(static_cast<size_t>(countHint), 256);
            field.data.reserve(std::min<size_t>(items * perItem, 64 * 1024));
        }
        field.AppendItem(data, static_cast<size_t>(size));
        fFields.push_back(std::move(field));
        return B_OK;
    }

    MessageField& field = fFields[index];
    if (field.type != type)
        return B_BAD_TYPE;
    if (field.IsFixedSize() && field.itemSize != static_cast<uint32>(size))
        return B_BAD_VALUE;
    size_t added = static_cast<size_t>(size) + (field.IsFixedSize() ? 0 : sizeof(uint32));
    if (field.data.size() + added > kMaxFieldData || field.count == INT32_MAX)
        return B_BAD_VALUE;
    field.AppendItem(data, static_cast<size_t>(size));
    return B_OK;
}

status_t MessageBody::FindItem(const char* name, type_code type, int32 index, const void** data,
                               ssize_t* size) const {
    int32 fieldIndex;
    status_t status = _Lookup(name, type, index, &fieldIndex);
    if (status != B_OK)
        return status;
    const uint8* item;
    size_t itemSize;
    fFields[fieldIndex].GetItem(index, &item, &itemSize);
    if (data != NULL)
        *data = item;
    if (size != NULL)
        *size = static_cast<ssize_t>(itemSize);
    return B_OK;
}

status_t MessageBody::ReplaceItem(const char* name, type_code type, int32 index, const void* data,
                                  ssize_t size) {
    if (data == NULL || size <= 0 || static_cast<size_t>(size) > kMaxFieldData)
        return B_BAD_VALUE;
    int32 fieldIndex;
    status_t status = _Lookup(name, type, index, &fieldIndex);
    if (status != B_OK)
        return status;

    MessageField& field = fFields[fieldIndex];
    const uint8* bytes = static_cast<const uint8*>(data);
    if (field.IsFixedSize()) {
        if (field.itemSize != static_cast<uint32>(size))
            return B_BAD_VALUE;
        memcpy(field.data.data() + static_cast<size_t>(index) * field.itemSize, bytes,
               field.itemSize);
        return B_OK;
    }

    size_t offset = VariableItemOffset(field, index);
    uint32 oldLength = ReadLength(field.data.data() + offset);
    if (field.data.size() - oldLength + static_cast<size_t>(size) > kMaxFieldData)
        return B_BAD_VALUE;
    uint32 newLength = static_cast<uint32>(size);
    memcpy(field.data.data() + offset, &newLength, sizeof(newLength));
    auto itemStart = field.data.begin() + static_cast<ptrdiff_t>(offset + sizeof(uint32));
    if (newLength > oldLength) {
        std::copy(bytes, bytes + oldLength, itemStart);
        field.data.insert(itemStart + oldLength, bytes + oldLength, bytes + newLength);
    } else {
        std::copy(bytes, bytes + newLength, itemStart);
        field.data.erase(itemStart + newLength, itemStart + oldLength);
    }
    return B_OK;
}

status_t MessageBody::RemoveItem(const char* name, int32 index) {
    int32 fieldIndex;
    status_t status = _Lookup(name, B_ANY_TYPE, index, &fieldIndex);
    if (status != B_OK)
        return status;

    MessageField& field = fFields[fieldIndex];
    if (field.count == 1) {
        fFields.erase(fFields.begin() + fieldIndex);
        return B_OK;
    }
    size_t offset;
    size_t length;
    if (field.IsFixedSize()) {
        offset = static_cast<size_t>(index) * field.itemSize;
        length = field.itemSize;
    } else {
        offset = VariableItemOffset(field, index);
        length = sizeof(uint32) + ReadLength(field.data.data() + offset);
    }
    auto start = field.data.begin() + static_cast<ptrdiff_t>(offset);
    field.data.erase(start, start + static_cast<ptrdiff_t>(length));
    field.count--;
    return B_OK;
}

status_t MessageBody::RemoveField(const char* name) {
    if (name == NULL)
        return B_BAD_VALUE;
    int32 index = IndexOf(name);
    if (index < 0)
        return B_NAME_NOT_FOUND;
    fFields.erase(fFields.begin() + index);
    return B_OK;
}

status_t MessageBody::Rename(const char* oldName, const char* newName) {
    if (oldName == NULL || newName == NULL)
        return B_BAD_VALUE;
    int32 index = IndexOf(oldName);
    if (index < 0)
        return B_NAME_NOT_FOUND;
    if (strcmp(oldName, newName) == 0)
        return B_OK;
    // A field already called newName gives way to the renamed one.
    int32 existing = IndexOf(newName);
    if (existing >= 0) {
        fFields.erase(fFields.begin() + existing);
        if (existing < index)
            index--;
    }
    fFields[index].name = newName;
    return B_OK;
}

void MessageBody::MakeEmpty() {
    fFields.clear();
}

status_t MessageBody::AppendField(const char* name, size_t nameLength, type_code type,
                                  uint32 itemSize, MessageField** field) {
    if (memchr(name, '\0', nameLength) != NULL || IndexOf(name, nameLength) >= 0)
        return B_BAD_VALUE;
    MessageField& added = fFields.emplace_back();
    added.name.assign(name, nameLength);
    added.type = type;
    added.itemSize = itemSize;
    *field = &added;
    return B_OK;
}

void MessageBody::DropLastField() {
    if (!fFields.empty())
        fFields.pop_back();
}

} // namespace BPrivate
