// The typed Add/Find/Replace/Has/Get families of BMessage. Each is a thin layer over
// AddData/FindData/ReplaceData that fixes the type code and the item layout; a
// typed Find insists on the exact item size, so odd data from a file can never be
// read past its end.
#include <Message.h>

#include <Entry.h>
#include <GraphicsDefs.h>
#include <Messenger.h>

#include <string.h>

#include <type_traits>
#include <vector>

#include "app/MessageInternals.h"
#include "app/MessagePrivate.h"
#include "storage/EntryRefFlattening.h"

#if __has_include(<String.h>)
#include <String.h>
#define GLIMROW_HAVE_BSTRING 1
#endif

static_assert(std::is_trivially_copyable_v<BMessenger>, "messengers are stored as raw bytes");

namespace {

template <typename Value>
status_t FindValue(const BMessage* message, const char* name, type_code type, int32 index,
                   Value* value) {
    if (value == NULL)
        return B_BAD_VALUE;
    const void* data;
    ssize_t size;
    status_t status = message->FindData(name, type, index, &data, &size);
    if (status != B_OK)
        return status;
    if (size != sizeof(Value))
        return B_BAD_VALUE;
    memcpy(value, data, sizeof(Value));
    return B_OK;
}

// Items of these layouts, as they travel: bool is one byte, points and rects are
// floats, a colour is red, green, blue, alpha.
struct PointItem {
    float x, y;
};
struct RectItem {
    float left, top, right, bottom;
};
struct ColorItem {
    uint8 red, green, blue, alpha;
};

PointItem ToItem(BPoint point) {
    return PointItem{point.x, point.y};
}
RectItem ToItem(BRect rect) {
    return RectItem{rect.left, rect.top, rect.right, rect.bottom};
}
ColorItem ToItem(rgb_color color) {
    return ColorItem{color.red, color.green, color.blue, color.alpha};
}

} // namespace

// Numbers are stored as they are in memory.
#define GLIMROW_NUMBER_ACCESSORS(Name, Type, typeCode)                                             \
    status_t BMessage::Add##Name(const char* name, Type value) {                                   \
        return AddData(name, typeCode, &value, sizeof(Type), true);                                \
    }                                                                                              \
    status_t BMessage::Find##Name(const char* name, Type* value) const {                           \
        return FindValue(this, name, typeCode, 0, value);                                          \
    }                                                                                              \
    status_t BMessage::Find##Name(const char* name, int32 index, Type* value) const {              \
        return FindValue(this, name, typeCode, index, value);                                      \
    }                                                                                              \
    status_t BMessage::Replace##Name(const char* name, Type value) {                               \
        return ReplaceData(name, typeCode, 0, &value, sizeof(Type));                               \
    }                                                                                              \
    status_t BMessage::Replace##Name(const char* name, int32 index, Type value) {                  \
        return ReplaceData(name, typeCode, index, &value, sizeof(Type));                           \
    }                                                                                              \
    bool BMessage::Has##Name(const char* name, int32 index) const {                                \
        return HasData(name, typeCode, index);                                                     \
    }                                                                                              \
    Type BMessage::Get##Name(const char* name, Type defaultValue) const {                          \
        return Get##Name(name, 0, defaultValue);                                                   \
    }                                                                                              \
    Type BMessage::Get##Name(const char* name, int32 index, Type defaultValue) const {             \
        Type value;                                                                                \
        return Find##Name(name, index, &value) == B_OK ? value : defaultValue;                     \
    }

GLIMROW_NUMBER_ACCESSORS(Int8, int8, B_INT8_TYPE)
GLIMROW_NUMBER_ACCESSORS(UInt8, uint8, B_UINT8_TYPE)
GLIMROW_NUMBER_ACCESSORS(Int16, int16, B_INT16_TYPE)
GLIMROW_NUMBER_ACCESSORS(UInt16, uint16, B_UINT16_TYPE)
GLIMROW_NUMBER_ACCESSORS(Int32, int32, B_INT32_TYPE)
GLIMROW_NUMBER_ACCESSORS(UInt32, uint32, B_UINT32_TYPE)
GLIMROW_NUMBER_ACCESSORS(Int64, int64, B_INT64_TYPE)
GLIMROW_NUMBER_ACCESSORS(UInt64, uint64, B_UINT64_TYPE)
GLIMROW_NUMBER_ACCESSORS(Float, float, B_FLOAT_TYPE)
GLIMROW_NUMBER_ACCESSORS(Double, double, B_DOUBLE_TYPE)

#undef GLIMROW_NUMBER_ACCESSORS

// #pragma mark - bool

status_t BMessage::AddBool(const char* name, bool value) {
    uint8 byte = value ? 1 : 0;
    return AddData(name, B_BOOL_TYPE, &byte, 1, true);
}

status_t BMessage::FindBool(const char* name, bool* value) const {
    return FindBool(name, 0, value);
}

status_t BMessage::FindBool(const char* name, int32 index, bool* value) const {
    uint8 byte;
    status_t status = FindValue(this, name, B_BOOL_TYPE, index, &byte);
    if (status == B_OK)
        *value = byte != 0;
    return status;
}

status_t BMessage::ReplaceBool(const char* name, bool value) {
    return ReplaceBool(name, 0, value);
}

status_t BMessage::ReplaceBool(const char* name, int32 index, bool value) {
    uint8 byte = value ? 1 : 0;
    return ReplaceData(name, B_BOOL_TYPE, index, &byte, 1);
}

bool BMessage::HasBool(const char* name, int32 index) const {
    return HasData(name, B_BOOL_TYPE, index);
}

bool BMessage::GetBool(const char* name, bool defaultValue) const {
    return GetBool(name, 0, defaultValue);
}

bool BMessage::GetBool(const char* name, int32 index, bool defaultValue) const {
    bool value;
    return FindBool(name, index, &value) == B_OK ? value : defaultValue;
}

// #pragma mark - BPoint, BRect

status_t BMessage::AddPoint(const char* name, BPoint point) {
    PointItem item = ToItem(point);
    return AddData(name, B_POINT_TYPE, &item, sizeof(item), true);
}

status_t BMessage::FindPoint(const char* name, BPoint* point) const {
    return FindPoint(name, 0, point);
}

status_t BMessage::FindPoint(const char* name, int32 index, BPoint* point) const {
    PointItem item;
    status_t status =
        point != NULL ? FindValue(this, name, B_POINT_TYPE, index, &item) : B_BAD_VALUE;
    if (status == B_OK)
        point->Set(item.x, item.y);
    return status;
}

status_t BMessage::ReplacePoint(const char* name, BPoint point) {
    return ReplacePoint(name, 0, point);
}

status_t BMessage::ReplacePoint(const char* name, int32 index, BPoint point) {
    PointItem item = ToItem(point);
    return ReplaceData(name, B_POINT_TYPE, index, &item, sizeof(item));
}

bool BMessage::HasPoint(const char* name, int32 index) const {
    return HasData(name, B_POINT_TYPE, index);
}

BPoint BMessage::GetPoint(const char* name, const BPoint& defaultValue) const {
    return GetPoint(name, 0, defaultValue);
}

BPoint BMessage::GetPoint(const char* name, int32 index, const BPoint& defaultValue) const {
    BPoint point;
    return FindPoint(name, index, &point) == B_OK ? point : defaultValue;
}

status_t BMessage::AddRect(const char* name, BRect rect) {
    RectItem item = ToItem(rect);
    return AddData(name, B_RECT_TYPE, &item, sizeof(item), true);
}

status_t BMessage::FindRect(const char* name, BRect* rect) const {
    return FindRect(name, 0, rect);
}

status_t BMessage::FindRect(const char* name, int32 index, BRect* rect) const {
    RectItem item;
    status_t status = rect != NULL ? FindValue(this, name, B_RECT_TYPE, index, &item) : B_BAD_VALUE;
    if (status == B_OK)
        *rect = BRect(item.left, item.top, item.right, item.bottom);
    return status;
}

status_t BMessage::ReplaceRect(const char* name, BRect rect) {
    return ReplaceRect(name, 0, rect);
}

status_t BMessage::ReplaceRect(const char* name, int32 index, BRect rect) {
    RectItem item = ToItem(rect);
    return ReplaceData(name, B_RECT_TYPE, index, &item, sizeof(item));
}

bool BMessage::HasRect(const char* name, int32 index) const {
    return HasData(name, B_RECT_TYPE, index);
}

BRect BMessage::GetRect(const char* name, const BRect& defaultValue) const {
    return GetRect(name, 0, defaultValue);
}

BRect BMessage::GetRect(const char* name, int32 index, const BRect& defaultValue) const {
    BRect rect;
    return FindRect(name, index, &rect) == B_OK ? rect : defaultValue;
}

// #pragma mark - rgb_color

status_t BMessage::AddColor(const char* name, rgb_color color) {
    ColorItem item = ToItem(color);
    return AddData(name, B_RGB_COLOR_TYPE, &item, sizeof(item), true);
}

status_t BMessage::FindColor(const char* name, rgb_color* color) const {
    return FindColor(name, 0, color);
}

// Haiku files keep colours under B_RGB_32_BIT_TYPE with the same layout.
status_t BMessage::FindColor(const char* name, int32 index, rgb_color* color) const {
    if (color == NULL)
        return B_BAD_VALUE;
    ColorItem item;
    status_t status = FindValue(this, name, B_RGB_COLOR_TYPE, index, &item);
    if (status == B_BAD_TYPE)
        status = FindValue(this, name, B_RGB_32_BIT_TYPE, index, &item);
    if (status == B_OK)
        color->set_to(item.red, item.green, item.blue, item.alpha);
    return status;
}

status_t BMessage::ReplaceColor(const char* name, rgb_color color) {
    return ReplaceColor(name, 0, color);
}

status_t BMessage::ReplaceColor(const char* name, int32 index, rgb_color color) {
    ColorItem item = ToItem(color);
    return ReplaceData(name, B_RGB_COLOR_TYPE, index, &item, sizeof(item));
}

bool BMessage::HasColor(const char* name, int32 index) const {
    return HasData(name, B_RGB_COLOR_TYPE, index) || HasData(name, B_RGB_32_BIT_TYPE, index);
}

// #pragma mark - Strings

status_t BMessage::AddString(const char* name, const char* string) {
    if (string == NULL)
        return B_BAD_VALUE;
    return AddData(name, B_STRING_TYPE, string, static_cast<ssize_t>(strlen(string) + 1), false);
}

status_t BMessage::FindString(const char* name, const char** string) const {
    return FindString(name, 0, string);
}

// A string item must end in its NUL, or the caller would read past it.
status_t BMessage::FindString(const char* name, int32 index, const char** string) const {
    if (string == NULL)
        return B_BAD_VALUE;
    const void* data;
    ssize_t size;
    status_t status = FindData(name, B_STRING_TYPE, index, &data, &size);
    if (status != B_OK)
        return status;
    const char* characters = static_cast<const char*>(data);
    if (size < 1 || characters[size - 1] != '\0')
        return B_BAD_VALUE;
    *string = characters;
    return B_OK;
}

status_t BMessage::ReplaceString(const char* name, const char* string) {
    return ReplaceString(name, 0, string);
}

status_t BMessage::ReplaceString(const char* name, int32 index, const char* string) {
    if (string == NULL)
        return B_BAD_VALUE;
    return ReplaceData(name, B_STRING_TYPE, index, string,
                       static_cast<ssize_t>(strlen(string) + 1));
}

bool BMessage::HasString(const char* name, int32 index) const {
    return HasData(name, B_STRING_TYPE, index);
}

const char* BMessage::GetString(const char* name, const char* defaultValue) const {
    return GetString(name, 0, defaultValue);
}

const char* BMessage::GetString(const char* name, int32 index, const char* defaultValue) const {
    const char* string;
    return FindString(name, index, &string) == B_OK ? string : defaultValue;
}

#ifdef GLIMROW_HAVE_BSTRING
status_t BMessage::AddString(const char* name, const BString& string) {
    return AddString(name, string.String());
}

status_t BMessage::FindString(const char* name, BString* string) const {
    return FindString(name, 0, string);
}

status_t BMessage::FindString(const char* name, int32 index, BString* string) const {
    if (string == NULL)
        return B_BAD_VALUE;
    const char* characters;
    status_t status = FindString(name, index, &characters);
    if (status == B_OK)
        string->SetTo(characters);
    return status;
}

status_t BMessage::ReplaceString(const char* name, const BString& string) {
    return ReplaceString(name, 0, string.String());
}

status_t BMessage::ReplaceString(const char* name, int32 index, const BString& string) {
    return ReplaceString(name, index, string.String());
}
#endif

// #pragma mark - Pointers and messengers

status_t BMessage::AddPointer(const char* name, const void* pointer) {
    return AddData(name, B_POINTER_TYPE, &pointer, sizeof(pointer), true);
}

status_t BMessage::FindPointer(const char* name, void** pointer) const {
    return FindPointer(name, 0, pointer);
}

status_t BMessage::FindPointer(const char* name, int32 index, void** pointer) const {
    return FindValue(this, name, B_POINTER_TYPE, index, pointer);
}

status_t BMessage::ReplacePointer(const char* name, const void* pointer) {
    return ReplacePointer(name, 0, pointer);
}

status_t BMessage::ReplacePointer(const char* name, int32 index, const void* pointer) {
    return ReplaceData(name, B_POINTER_TYPE, index, &pointer, sizeof(pointer));
}

bool BMessage::HasPointer(const char* name, int32 index) const {
    return HasData(name, B_POINTER_TYPE, index);
}

const void* BMessage::GetPointer(const char* name, const void* defaultValue) const {
    return GetPointer(name, 0, defaultValue);
}

const void* BMessage::GetPointer(const char* name, int32 index, const void* defaultValue) const {
    void* pointer;
    return FindPointer(name, index, &pointer) == B_OK ? pointer : defaultValue;
}

status_t BMessage::AddMessenger(const char* name, BMessenger messenger) {
    return AddData(name, B_MESSENGER_TYPE, &messenger, sizeof(messenger), true);
}

status_t BMessage::FindMessenger(const char* name, BMessenger* messenger) const {
    return FindMessenger(name, 0, messenger);
}

status_t BMessage::FindMessenger(const char* name, int32 index, BMessenger* messenger) const {
    return FindValue(this, name, B_MESSENGER_TYPE, index, messenger);
}

status_t BMessage::ReplaceMessenger(const char* name, BMessenger messenger) {
    return ReplaceMessenger(name, 0, messenger);
}

status_t BMessage::ReplaceMessenger(const char* name, int32 index, BMessenger messenger) {
    return ReplaceData(name, B_MESSENGER_TYPE, index, &messenger, sizeof(messenger));
}

bool BMessage::HasMessenger(const char* name, int32 index) const {
    return HasData(name, B_MESSENGER_TYPE, index);
}

// #pragma mark - entry_ref

static status_t FlattenRef(const entry_ref* ref, std::vector<uint8>* buffer) {
    if (ref == NULL)
        return B_BAD_VALUE;
    size_t size = BPrivate::flattened_entry_ref_size(*ref);
    buffer->resize(size);
    status_t status = BPrivate::flatten_entry_ref(*ref, buffer->data(), &size);
    if (status != B_OK)
        return status;
    buffer->resize(size);
    return B_OK;
}

status_t BMessage::AddRef(const char* name, const entry_ref* ref) {
    std::vector<uint8> buffer;
    status_t status = FlattenRef(ref, &buffer);
    if (status != B_OK)
        return status;
    return AddData(name, B_REF_TYPE, buffer.data(), static_cast<ssize_t>(buffer.size()), false);
}

status_t BMessage::FindRef(const char* name, entry_ref* ref) const {
    return FindRef(name, 0, ref);
}

status_t BMessage::FindRef(const char* name, int32 index, entry_ref* ref) const {
    if (ref == NULL)
        return B_BAD_VALUE;
    const void* data;
    ssize_t size;
    status_t status = FindData(name, B_REF_TYPE, index, &data, &size);
    if (status != B_OK)
        return status;
    return BPrivate::unflatten_entry_ref(data, static_cast<size_t>(size), ref);
}

status_t BMessage::ReplaceRef(const char* name, const entry_ref* ref) {
    return ReplaceRef(name, 0, ref);
}

status_t BMessage::ReplaceRef(const char* name, int32 index, const entry_ref* ref) {
    std::vector<uint8> buffer;
    status_t status = FlattenRef(ref, &buffer);
    if (status != B_OK)
        return status;
    return ReplaceData(name, B_REF_TYPE, index, buffer.data(), static_cast<ssize_t>(buffer.size()));
}

bool BMessage::HasRef(const char* name, int32 index) const {
    return HasData(name, B_REF_TYPE, index);
}

// #pragma mark - Nested messages

// A nested message is stored flattened, so it is a snapshot of the message as it
// was when added.
static status_t FlattenMessage(const BMessage* message, std::vector<uint8>* buffer) {
    if (message == NULL)
        return B_BAD_VALUE;
    ssize_t size = message->FlattenedSize();
    if (size < 0)
        return static_cast<status_t>(size);
    buffer->resize(static_cast<size_t>(size));
    return message->Flatten(reinterpret_cast<char*>(buffer->data()), size);
}

status_t BMessage::AddMessage(const char* name, const BMessage* message) {
    std::vector<uint8> buffer;
    status_t status = FlattenMessage(message, &buffer);
    if (status != B_OK)
        return status;
    return AddData(name, B_MESSAGE_TYPE, buffer.data(), static_cast<ssize_t>(buffer.size()), false);
}

status_t BMessage::FindMessage(const char* name, BMessage* message) const {
    return FindMessage(name, 0, message);
}

status_t BMessage::FindMessage(const char* name, int32 index, BMessage* message) const {
    if (message == NULL)
        return B_BAD_VALUE;
    const void* data;
    ssize_t size;
    status_t status = FindData(name, B_MESSAGE_TYPE, index, &data, &size);
    if (status != B_OK)
        return status;
    if (message != this)
        return BPrivate::MessagePrivate(message).Unflatten(data, static_cast<size_t>(size));
    // Unflattening into ourselves would free the bytes we read from.
    BMessage nested;
    status = BPrivate::MessagePrivate(&nested).Unflatten(data, static_cast<size_t>(size));
    if (status == B_OK) {
        message->what = nested.what;
        message->fPrivate->body = nested.fPrivate->body;
    }
    return status;
}

status_t BMessage::ReplaceMessage(const char* name, const BMessage* message) {
    return ReplaceMessage(name, 0, message);
}

status_t BMessage::ReplaceMessage(const char* name, int32 index, const BMessage* message) {
    std::vector<uint8> buffer;
    status_t status = FlattenMessage(message, &buffer);
    if (status != B_OK)
        return status;
    return ReplaceData(name, B_MESSAGE_TYPE, index, buffer.data(),
                       static_cast<ssize_t>(buffer.size()));
}

bool BMessage::HasMessage(const char* name, int32 index) const {
    return HasData(name, B_MESSAGE_TYPE, index);
}
