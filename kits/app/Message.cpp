// BMessage keeps its fields in a MessageBody (MessageBody.h) and its delivery data
// beside them (MessageInternals.h). Flattening lives in MessageFlattening.cpp and
// the per-format readers; the typed Add/Find/Replace families are in
// MessageAccessors.cpp and PrintToStream in MessagePrinting.cpp.
//
// Replies: the messenger gives a message the address to answer and, for a sender
// that waits, marks it reply-required. SendReply() answers once; a message that is
// deleted while its sender still waits answers B_NO_REPLY by itself, so no sender
// waits for ever on a handler that ignored the message.
#include <Message.h>

#include <DataIO.h>
#include <Messenger.h>

#include <ctype.h>
#include <string.h>

#include <vector>

#include "app/MessageFlattening.h"
#include "app/MessageInternals.h"
#include "app/MessagePrivate.h"

using BPrivate::MessagePrivate;

BMessage::BMessage() : what(0), fPrivate(new Private) {}

BMessage::BMessage(uint32 command) : what(command), fPrivate(new Private) {}

BMessage::BMessage(const BMessage& other)
    : what(other.what), fPrivate(new Private(*other.fPrivate)) {}

BMessage::~BMessage() {
    if (IsSourceWaiting())
        SendReply(B_NO_REPLY);
    delete fPrivate;
}

BMessage& BMessage::operator=(const BMessage& other) {
    if (this == &other)
        return *this;
    if (IsSourceWaiting())
        SendReply(B_NO_REPLY);
    Private* copy = new Private(*other.fPrivate);
    delete fPrivate;
    fPrivate = copy;
    what = other.what;
    return *this;
}

// #pragma mark - Statistics

status_t BMessage::GetInfo(type_code typeRequested, int32 index, char** nameFound,
                           type_code* typeFound, int32* countFound) const {
    if (index < 0)
        return B_BAD_INDEX;
    const BPrivate::MessageBody& body = fPrivate->body;
    int32 matching = -1;
    for (int32 i = 0; i < body.CountFields(); i++) {
        const BPrivate::MessageField& field = body.FieldAt(i);
        if (typeRequested != B_ANY_TYPE && field.type != typeRequested)
            continue;
        if (++matching != index)
            continue;
        if (nameFound != NULL)
            *nameFound = const_cast<char*>(field.name.c_str());
        if (typeFound != NULL)
            *typeFound = field.type;
        if (countFound != NULL)
            *countFound = static_cast<int32>(field.count);
        return B_OK;
    }
    return matching < 0 ? B_BAD_TYPE : B_BAD_INDEX;
}

status_t BMessage::GetInfo(const char* name, type_code* typeFound, int32* countFound) const {
    return GetInfo(name, typeFound, countFound, NULL);
}

status_t BMessage::GetInfo(const char* name, type_code* typeFound, bool* fixedSize) const {
    return GetInfo(name, typeFound, NULL, fixedSize);
}

status_t BMessage::GetInfo(const char* name, type_code* typeFound, int32* countFound,
                           bool* fixedSize) const {
    if (countFound != NULL)
        *countFound = 0;
    if (name == NULL)
        return B_BAD_VALUE;
    int32 index = fPrivate->body.IndexOf(name);
    if (index < 0)
        return B_NAME_NOT_FOUND;
    const BPrivate::MessageField& field = fPrivate->body.FieldAt(index);
    if (typeFound != NULL)
        *typeFound = field.type;
    if (countFound != NULL)
        *countFound = static_cast<int32>(field.count);
    if (fixedSize != NULL)
        *fixedSize = field.IsFixedSize();
    return B_OK;
}

int32 BMessage::CountNames(type_code type) const {
    const BPrivate::MessageBody& body = fPrivate->body;
    if (type == B_ANY_TYPE)
        return body.CountFields();
    int32 count = 0;
    for (int32 i = 0; i < body.CountFields(); i++) {
        if (body.FieldAt(i).type == type)
            count++;
    }
    return count;
}

bool BMessage::IsEmpty() const {
    return fPrivate->body.IsEmpty();
}

// System codes are an underscore and three capitals, such as '_QRQ'.
bool BMessage::IsSystem() const {
    uint8 first = static_cast<uint8>(what >> 24);
    return first == '_' && isupper(static_cast<uint8>(what >> 16)) &&
           isupper(static_cast<uint8>(what >> 8)) && isupper(static_cast<uint8>(what));
}

bool BMessage::IsReply() const {
    return fPrivate->isReply;
}

status_t BMessage::Rename(const char* oldName, const char* newName) {
    return fPrivate->body.Rename(oldName, newName);
}

// #pragma mark - Delivery

bool BMessage::WasDelivered() const {
    return fPrivate->wasDelivered;
}

bool BMessage::IsSourceWaiting() const {
    return fPrivate->replyRequired && !fPrivate->replyDone;
}

// Every sender is in this process.
bool BMessage::IsSourceRemote() const {
    return false;
}

BMessenger BMessage::ReturnAddress() const {
    return fPrivate->replyTo;
}

const BMessage* BMessage::Previous() const {
    return fPrivate->previous.get();
}

bool BMessage::WasDropped() const {
    return fPrivate->wasDropped;
}

BPoint BMessage::DropPoint(BPoint* offset) const {
    if (offset != NULL)
        *offset = GetPoint("_drop_offset_", BPoint());
    return GetPoint("_drop_point_", BPoint());
}

// #pragma mark - Replying

status_t BMessage::SendReply(uint32 command, BHandler* replyTo) {
    BMessage reply(command);
    return SendReply(&reply, replyTo);
}

status_t BMessage::SendReply(uint32 command, BMessage* replyToReply) {
    BMessage reply(command);
    return SendReply(&reply, replyToReply);
}

// The reply travels as a copy that knows it is a reply and which message it answers
// (without that message's own delivery data, so chains of replies stay short).
static BMessage* MakeReply(const BMessage* original, const BMessage* reply) {
    BMessage* copy = new BMessage(*reply);
    MessagePrivate copyPrivate(copy);
    copyPrivate.ClearDelivery();
    copyPrivate.SetIsReply(true);
    BMessage* previous = new BMessage(*original);
    MessagePrivate(previous).ClearDelivery();
    copyPrivate.SetPrevious(previous);
    return copy;
}

template <typename Send>
static status_t SendReplyThrough(const BMessage* message, const BMessenger& replyAddress,
                                 bool* replyDone, const BMessage* reply, Send send) {
    if (reply == NULL)
        return B_BAD_VALUE;
    // Answered once already: the address may be gone by now, but the answer is that
    // this is a second reply.
    if (*replyDone)
        return B_DUPLICATE_REPLY;
    if (!replyAddress.IsValid())
        return B_BAD_REPLY;

    *replyDone = true;
    BMessage* copy = MakeReply(message, reply);
    status_t status = send(copy);
    delete copy;
    if (status != B_OK)
        *replyDone = false;
    return status;
}

status_t BMessage::SendReply(BMessage* reply, BHandler* replyTo, bigtime_t timeout) {
    const BMessenger& address = fPrivate->replyTo;
    return SendReplyThrough(this, address, &fPrivate->replyDone, reply, [&](BMessage* copy) {
        return address.SendMessage(copy, replyTo, timeout);
    });
}

status_t BMessage::SendReply(BMessage* reply, BMessenger replyTo, bigtime_t timeout) {
    const BMessenger& address = fPrivate->replyTo;
    return SendReplyThrough(this, address, &fPrivate->replyDone, reply, [&](BMessage* copy) {
        return address.SendMessage(copy, replyTo, timeout);
    });
}

status_t BMessage::SendReply(BMessage* reply, BMessage* replyToReply, bigtime_t sendTimeout,
                             bigtime_t replyTimeout) {
    if (replyToReply == NULL)
        return SendReply(reply, static_cast<BHandler*>(NULL), sendTimeout);
    const BMessenger& address = fPrivate->replyTo;
    return SendReplyThrough(this, address, &fPrivate->replyDone, reply, [&](BMessage* copy) {
        return address.SendMessage(copy, replyToReply, sendTimeout, replyTimeout);
    });
}

// #pragma mark - Flattening

ssize_t BMessage::FlattenedSize() const {
    return BPrivate::r5_flattened_size(fPrivate->body);
}

status_t BMessage::Flatten(char* buffer, ssize_t size) const {
    if (buffer == NULL || size < 0)
        return B_BAD_VALUE;
    ssize_t needed = FlattenedSize();
    if (needed < 0)
        return static_cast<status_t>(needed);
    if (size < needed)
        return B_BUFFER_OVERFLOW;
    BPrivate::flatten_r5(what, fPrivate->body, reinterpret_cast<uint8*>(buffer),
                         static_cast<size_t>(needed));
    return B_OK;
}

status_t BMessage::Flatten(BDataIO* stream, ssize_t* size) const {
    if (stream == NULL)
        return B_BAD_VALUE;
    ssize_t needed = FlattenedSize();
    if (needed < 0)
        return static_cast<status_t>(needed);
    std::vector<uint8> buffer(static_cast<size_t>(needed));
    BPrivate::flatten_r5(what, fPrivate->body, buffer.data(), buffer.size());

    size_t written = 0;
    while (written < buffer.size()) {
        ssize_t result = stream->Write(buffer.data() + written, buffer.size() - written);
        if (result < 0)
            return static_cast<status_t>(result);
        if (result == 0)
            return B_IO_ERROR;
        written += static_cast<size_t>(result);
    }
    if (size != NULL)
        *size = needed;
    return B_OK;
}

status_t BMessage::Unflatten(const char* flatBuffer) {
    if (flatBuffer == NULL) {
        MakeEmpty();
        return B_BAD_VALUE;
    }
    // The caller vouches that the buffer holds the whole message, so its header
    // tells how far we may read.
    size_t size;
    status_t status = BPrivate::flattened_message_size(reinterpret_cast<const uint8*>(flatBuffer),
                                                       SIZE_MAX, &size);
    if (status != B_OK) {
        MakeEmpty();
        return status;
    }
    return MessagePrivate(this).Unflatten(flatBuffer, size);
}

status_t BMessage::Unflatten(BDataIO* stream) {
    if (stream == NULL) {
        MakeEmpty();
        return B_BAD_VALUE;
    }
    std::vector<uint8> buffer;
    status_t status = BPrivate::read_flattened_message(stream, &buffer);
    if (status != B_OK) {
        MakeEmpty();
        return status;
    }
    return MessagePrivate(this).Unflatten(buffer.data(), buffer.size());
}

// #pragma mark - Raw data

status_t BMessage::AddData(const char* name, type_code type, const void* data, ssize_t numBytes,
                           bool isFixedSize, int32 count) {
    return fPrivate->body.AddItem(name, type, data, numBytes, isFixedSize, count);
}

status_t BMessage::RemoveData(const char* name, int32 index) {
    return fPrivate->body.RemoveItem(name, index);
}

status_t BMessage::RemoveName(const char* name) {
    return fPrivate->body.RemoveField(name);
}

status_t BMessage::MakeEmpty() {
    fPrivate->body.MakeEmpty();
    return B_OK;
}

status_t BMessage::FindData(const char* name, type_code type, const void** data,
                            ssize_t* numBytes) const {
    return FindData(name, type, 0, data, numBytes);
}

status_t BMessage::FindData(const char* name, type_code type, int32 index, const void** data,
                            ssize_t* numBytes) const {
    if (data == NULL)
        return B_BAD_VALUE;
    *data = NULL;
    return fPrivate->body.FindItem(name, type, index, data, numBytes);
}

status_t BMessage::ReplaceData(const char* name, type_code type, const void* data,
                               ssize_t numBytes) {
    return ReplaceData(name, type, 0, data, numBytes);
}

status_t BMessage::ReplaceData(const char* name, type_code type, int32 index, const void* data,
                               ssize_t numBytes) {
    return fPrivate->body.ReplaceItem(name, type, index, data, numBytes);
}

bool BMessage::HasData(const char* name, type_code type, int32 index) const {
    return fPrivate->body.FindItem(name, type, index, NULL, NULL) == B_OK;
}
