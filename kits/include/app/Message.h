// BMessage: a command code ("what") plus named, typed fields, each holding one or
// more items. Messages are what loopers pass around and what settings files hold.
#ifndef _MESSAGE_H
#define _MESSAGE_H

#include <AppDefs.h>
#include <OS.h>
#include <Point.h>
#include <Rect.h>
#include <SupportDefs.h>
#include <TypeConstants.h>

class BDataIO;
class BHandler;
class BMessenger;
class BString;
struct entry_ref;
struct rgb_color;

namespace BPrivate {
class MessagePrivate;
}

// Scripting specifier kinds (the what of a specifier message)
enum {
    B_NO_SPECIFIER = 0,
    B_DIRECT_SPECIFIER = 1,
    B_INDEX_SPECIFIER,
    B_REVERSE_INDEX_SPECIFIER,
    B_RANGE_SPECIFIER,
    B_REVERSE_RANGE_SPECIFIER,
    B_NAME_SPECIFIER,
    B_ID_SPECIFIER,

    B_SPECIFIERS_END = 128
};

class BMessage {
public:
    uint32 what;

    BMessage();
    BMessage(uint32 what);
    BMessage(const BMessage& other);
    virtual ~BMessage();

    BMessage& operator=(const BMessage& other);

    // Statistics and miscellany
    status_t GetInfo(type_code typeRequested, int32 index, char** nameFound, type_code* typeFound,
                     int32* countFound = NULL) const;
    status_t GetInfo(const char* name, type_code* typeFound, int32* countFound = NULL) const;
    status_t GetInfo(const char* name, type_code* typeFound, bool* fixedSize) const;
    status_t GetInfo(const char* name, type_code* typeFound, int32* countFound,
                     bool* fixedSize) const;

    int32 CountNames(type_code type) const;
    bool IsEmpty() const;
    bool IsSystem() const;
    bool IsReply() const;
    void PrintToStream() const;

    status_t Rename(const char* oldName, const char* newName);

    // Delivery information
    bool WasDelivered() const;
    bool IsSourceWaiting() const;
    bool IsSourceRemote() const;
    BMessenger ReturnAddress() const;
    const BMessage* Previous() const;
    bool WasDropped() const;
    BPoint DropPoint(BPoint* offset = NULL) const;

    // Replying (the reply is copied; the caller keeps it)
    status_t SendReply(uint32 command, BHandler* replyTo = NULL);
    status_t SendReply(BMessage* reply, BHandler* replyTo = NULL,
                       bigtime_t timeout = B_INFINITE_TIMEOUT);
    status_t SendReply(BMessage* reply, BMessenger replyTo, bigtime_t timeout = B_INFINITE_TIMEOUT);
    status_t SendReply(uint32 command, BMessage* replyToReply);
    status_t SendReply(BMessage* reply, BMessage* replyToReply,
                       bigtime_t sendTimeout = B_INFINITE_TIMEOUT,
                       bigtime_t replyTimeout = B_INFINITE_TIMEOUT);

    // Flattening: writes the BeOS R5 format; reads R5 (either byte order) and Haiku's
    ssize_t FlattenedSize() const;
    status_t Flatten(char* buffer, ssize_t size) const;
    status_t Flatten(BDataIO* stream, ssize_t* size = NULL) const;
    // The buffer must hold the whole flattened message its header announces.
    status_t Unflatten(const char* flatBuffer);
    status_t Unflatten(BDataIO* stream);

    // Adding data
    status_t AddRect(const char* name, BRect rect);
    status_t AddPoint(const char* name, BPoint point);
    status_t AddString(const char* name, const char* string);
    status_t AddString(const char* name, const BString& string);
    status_t AddInt8(const char* name, int8 value);
    status_t AddUInt8(const char* name, uint8 value);
    status_t AddInt16(const char* name, int16 value);
    status_t AddUInt16(const char* name, uint16 value);
    status_t AddInt32(const char* name, int32 value);
    status_t AddUInt32(const char* name, uint32 value);
    status_t AddInt64(const char* name, int64 value);
    status_t AddUInt64(const char* name, uint64 value);
    status_t AddBool(const char* name, bool value);
    status_t AddFloat(const char* name, float value);
    status_t AddDouble(const char* name, double value);
    status_t AddColor(const char* name, rgb_color color);
    status_t AddPointer(const char* name, const void* pointer);
    status_t AddMessenger(const char* name, BMessenger messenger);
    status_t AddRef(const char* name, const entry_ref* ref);
    status_t AddMessage(const char* name, const BMessage* message);
    status_t AddData(const char* name, type_code type, const void* data, ssize_t numBytes,
                     bool isFixedSize = true, int32 count = 1);

    // Removing data
    status_t RemoveData(const char* name, int32 index = 0);
    status_t RemoveName(const char* name);
    status_t MakeEmpty();

    // Finding data (pointers returned stay valid until the message changes)
    status_t FindRect(const char* name, BRect* rect) const;
    status_t FindRect(const char* name, int32 index, BRect* rect) const;
    status_t FindPoint(const char* name, BPoint* point) const;
    status_t FindPoint(const char* name, int32 index, BPoint* point) const;
    status_t FindString(const char* name, const char** string) const;
    status_t FindString(const char* name, int32 index, const char** string) const;
    status_t FindString(const char* name, BString* string) const;
    status_t FindString(const char* name, int32 index, BString* string) const;
    status_t FindInt8(const char* name, int8* value) const;
    status_t FindInt8(const char* name, int32 index, int8* value) const;
    status_t FindUInt8(const char* name, uint8* value) const;
    status_t FindUInt8(const char* name, int32 index, uint8* value) const;
    status_t FindInt16(const char* name, int16* value) const;
    status_t FindInt16(const char* name, int32 index, int16* value) const;
    status_t FindUInt16(const char* name, uint16* value) const;
    status_t FindUInt16(const char* name, int32 index, uint16* value) const;
    status_t FindInt32(const char* name, int32* value) const;
    status_t FindInt32(const char* name, int32 index, int32* value) const;
    status_t FindUInt32(const char* name, uint32* value) const;
    status_t FindUInt32(const char* name, int32 index, uint32* value) const;
    status_t FindInt64(const char* name, int64* value) const;
    status_t FindInt64(const char* name, int32 index, int64* value) const;
    status_t FindUInt64(const char* name, uint64* value) const;
    status_t FindUInt64(const char* name, int32 index, uint64* value) const;
    status_t FindBool(const char* name, bool* value) const;
    status_t FindBool(const char* name, int32 index, bool* value) const;
    status_t FindFloat(const char* name, float* value) const;
    status_t FindFloat(const char* name, int32 index, float* value) const;
    status_t FindDouble(const char* name, double* value) const;
    status_t FindDouble(const char* name, int32 index, double* value) const;
    status_t FindColor(const char* name, rgb_color* color) const;
    status_t FindColor(const char* name, int32 index, rgb_color* color) const;
    status_t FindPointer(const char* name, void** pointer) const;
    status_t FindPointer(const char* name, int32 index, void** pointer) const;
    status_t FindMessenger(const char* name, BMessenger* messenger) const;
    status_t FindMessenger(const char* name, int32 index, BMessenger* messenger) const;
    status_t FindRef(const char* name, entry_ref* ref) const;
    status_t FindRef(const char* name, int32 index, entry_ref* ref) const;
    status_t FindMessage(const char* name, BMessage* message) const;
    status_t FindMessage(const char* name, int32 index, BMessage* message) const;
    status_t FindData(const char* name, type_code type, const void** data, ssize_t* numBytes) const;
    status_t FindData(const char* name, type_code type, int32 index, const void** data,
                      ssize_t* numBytes) const;

    // Replacing data
    status_t ReplaceRect(const char* name, BRect rect);
    status_t ReplaceRect(const char* name, int32 index, BRect rect);
    status_t ReplacePoint(const char* name, BPoint point);
    status_t ReplacePoint(const char* name, int32 index, BPoint point);
    status_t ReplaceString(const char* name, const char* string);
    status_t ReplaceString(const char* name, int32 index, const char* string);
    status_t ReplaceString(const char* name, const BString& string);
    status_t ReplaceString(const char* name, int32 index, const BString& string);
    status_t ReplaceInt8(const char* name, int8 value);
    status_t ReplaceInt8(const char* name, int32 index, int8 value);
    status_t ReplaceUInt8(const char* name, uint8 value);
    status_t ReplaceUInt8(const char* name, int32 index, uint8 value);
    status_t ReplaceInt16(const char* name, int16 value);
    status_t ReplaceInt16(const char* name, int32 index, int16 value);
    status_t ReplaceUInt16(const char* name, uint16 value);
    status_t ReplaceUInt16(const char* name, int32 index, uint16 value);
    status_t ReplaceInt32(const char* name, int32 value);
    status_t ReplaceInt32(const char* name, int32 index, int32 value);
    status_t ReplaceUInt32(const char* name, uint32 value);
    status_t ReplaceUInt32(const char* name, int32 index, uint32 value);
    status_t ReplaceInt64(const char* name, int64 value);
    status_t ReplaceInt64(const char* name, int32 index, int64 value);
    status_t ReplaceUInt64(const char* name, uint64 value);
    status_t ReplaceUInt64(const char* name, int32 index, uint64 value);
    status_t ReplaceBool(const char* name, bool value);
    status_t ReplaceBool(const char* name, int32 index, bool value);
    status_t ReplaceFloat(const char* name, float value);
    status_t ReplaceFloat(const char* name, int32 index, float value);
    status_t ReplaceDouble(const char* name, double value);
    status_t ReplaceDouble(const char* name, int32 index, double value);
    status_t ReplaceColor(const char* name, rgb_color color);
    status_t ReplaceColor(const char* name, int32 index, rgb_color color);
    status_t ReplacePointer(const char* name, const void* pointer);
    status_t ReplacePointer(const char* name, int32 index, const void* pointer);
    status_t ReplaceMessenger(const char* name, BMessenger messenger);
    status_t ReplaceMessenger(const char* name, int32 index, BMessenger messenger);
    status_t ReplaceRef(const char* name, const entry_ref* ref);
    status_t ReplaceRef(const char* name, int32 index, const entry_ref* ref);
    status_t ReplaceMessage(const char* name, const BMessage* message);
    status_t ReplaceMessage(const char* name, int32 index, const BMessage* message);
    status_t ReplaceData(const char* name, type_code type, const void* data, ssize_t numBytes);
    status_t ReplaceData(const char* name, type_code type, int32 index, const void* data,
                         ssize_t numBytes);

    // Presence tests
    bool HasRect(const char* name, int32 index = 0) const;
    bool HasPoint(const char* name, int32 index = 0) const;
    bool HasString(const char* name, int32 index = 0) const;
    bool HasInt8(const char* name, int32 index = 0) const;
    bool HasUInt8(const char* name, int32 index = 0) const;
    bool HasInt16(const char* name, int32 index = 0) const;
    bool HasUInt16(const char* name, int32 index = 0) const;
    bool HasInt32(const char* name, int32 index = 0) const;
    bool HasUInt32(const char* name, int32 index = 0) const;
    bool HasInt64(const char* name, int32 index = 0) const;
    bool HasUInt64(const char* name, int32 index = 0) const;
    bool HasBool(const char* name, int32 index = 0) const;
    bool HasFloat(const char* name, int32 index = 0) const;
    bool HasDouble(const char* name, int32 index = 0) const;
    bool HasColor(const char* name, int32 index = 0) const;
    bool HasPointer(const char* name, int32 index = 0) const;
    bool HasMessenger(const char* name, int32 index = 0) const;
    bool HasRef(const char* name, int32 index = 0) const;
    bool HasMessage(const char* name, int32 index = 0) const;
    bool HasData(const char* name, type_code type, int32 index = 0) const;

    // Finding data with a fallback: the default comes back when the item is absent
    bool GetBool(const char* name, bool defaultValue = false) const;
    bool GetBool(const char* name, int32 index, bool defaultValue) const;
    int8 GetInt8(const char* name, int8 defaultValue) const;
    int8 GetInt8(const char* name, int32 index, int8 defaultValue) const;
    uint8 GetUInt8(const char* name, uint8 defaultValue) const;
    uint8 GetUInt8(const char* name, int32 index, uint8 defaultValue) const;
    int16 GetInt16(const char* name, int16 defaultValue) const;
    int16 GetInt16(const char* name, int32 index, int16 defaultValue) const;
    uint16 GetUInt16(const char* name, uint16 defaultValue) const;
    uint16 GetUInt16(const char* name, int32 index, uint16 defaultValue) const;
    int32 GetInt32(const char* name, int32 defaultValue) const;
    int32 GetInt32(const char* name, int32 index, int32 defaultValue) const;
    uint32 GetUInt32(const char* name, uint32 defaultValue) const;
    uint32 GetUInt32(const char* name, int32 index, uint32 defaultValue) const;
    int64 GetInt64(const char* name, int64 defaultValue) const;
    int64 GetInt64(const char* name, int32 index, int64 defaultValue) const;
    uint64 GetUInt64(const char* name, uint64 defaultValue) const;
    uint64 GetUInt64(const char* name, int32 index, uint64 defaultValue) const;
    float GetFloat(const char* name, float defaultValue) const;
    float GetFloat(const char* name, int32 index, float defaultValue) const;
    double GetDouble(const char* name, double defaultValue) const;
    double GetDouble(const char* name, int32 index, double defaultValue) const;
    const char* GetString(const char* name, const char* defaultValue = NULL) const;
    const char* GetString(const char* name, int32 index, const char* defaultValue) const;
    BPoint GetPoint(const char* name, const BPoint& defaultValue) const;
    BPoint GetPoint(const char* name, int32 index, const BPoint& defaultValue) const;
    BRect GetRect(const char* name, const BRect& defaultValue) const;
    BRect GetRect(const char* name, int32 index, const BRect& defaultValue) const;
    const void* GetPointer(const char* name, const void* defaultValue = NULL) const;
    const void* GetPointer(const char* name, int32 index, const void* defaultValue) const;

private:
    friend class BPrivate::MessagePrivate;

    struct Private;
    Private* fPrivate;
};

#endif // _MESSAGE_H
