// The fields of a message: names, types and items, kept in insertion order.
//
// Each field owns one byte buffer. A fixed-size field keeps its items back to back,
// itemSize bytes each; a variable-size field keeps every item as a host-order uint32
// length followed by the item's bytes, so items are found by walking the buffer. Both
// shapes are validated when they are built (by Add or by a reader of flattened
// data), so walking never needs to check again.
#ifndef _APP_MESSAGE_BODY_H
#define _APP_MESSAGE_BODY_H

#include <SupportDefs.h>

#include <string>
#include <vector>

namespace BPrivate {

struct MessageField {
    std::string name;
    type_code type = 0;
    uint32 count = 0;
    uint32 itemSize = 0; // bytes per item of a fixed-size field; 0 for variable size
    std::vector<uint8> data;

    bool IsFixedSize() const { return itemSize != 0; }

    // Item index (0 <= index < count): where its bytes start and how many there are.
    void GetItem(int32 index, const uint8** item, size_t* size) const;
    // Appends one item; the caller has checked that it fits this field.
    void AppendItem(const void* item, size_t size);
};

class MessageBody {
public:
    // Items and fields never grow past this, so every size fits the int32 words of
    // the flattened formats.
    static const size_t kMaxFieldData = 0x7fff0000;

    int32 CountFields() const { return static_cast<int32>(fFields.size()); }
    const MessageField& FieldAt(int32 index) const { return fFields[index]; }
    bool IsEmpty() const { return fFields.empty(); }

    // Index of the field called name, -1 when there is none.
    int32 IndexOf(const char* name, size_t length) const;
    int32 IndexOf(const char* name) const;

    status_t AddItem(const char* name, type_code type, const void* data, ssize_t size,
                     bool fixedSize, int32 countHint);
    status_t FindItem(const char* name, type_code type, int32 index, const void** data,
                      ssize_t* size) const;
    status_t ReplaceItem(const char* name, type_code type, int32 index, const void* data,
                         ssize_t size);
    status_t RemoveItem(const char* name, int32 index);
    status_t RemoveField(const char* name);
    status_t Rename(const char* oldName, const char* newName);
    void MakeEmpty();

    // For the readers of flattened data: starts a new, empty field. B_BAD_VALUE when
    // the name is already taken or holds a NUL byte; itemSize 0 makes it variable-size.
    status_t AppendField(const char* name, size_t nameLength, type_code type, uint32 itemSize,
                         MessageField** field);
    // Drops the last field again (a reader that found it empty).
    void DropLastField();

private:
    status_t _Lookup(const char* name, type_code type, int32 index, int32* fieldIndex) const;

    std::vector<MessageField> fFields;
};

} // namespace BPrivate

#endif // _APP_MESSAGE_BODY_H
