// BMessage::Unflatten on arbitrary bytes, from a stream and from a buffer of known
// length. Whatever comes in, reading it must end in a status; a message that was
// accepted is then read field by field, printed, and must survive its own round trip
// through Flatten and Unflatten.
#include <DataIO.h>
#include <Entry.h>
#include <Message.h>

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <vector>

#include "app/MessagePrivate.h"

namespace {

const int kMaxNesting = 4;

void Check(bool condition, const char* what) {
    if (!condition) {
        fprintf(stderr, "message_unflatten: %s\n", what);
        abort();
    }
}

void Exercise(const BMessage& message, int depth);

void ReadItem(const BMessage& message, const char* name, type_code type, int32 index, int depth) {
    const void* data;
    ssize_t size;
    Check(message.FindData(name, type, index, &data, &size) == B_OK, "listed item not found");
    Check(size >= 0, "negative item size");
    if (size > 0) {
        // Touch the first and last byte so the sanitizers see any short item.
        volatile uint8 first = static_cast<const uint8*>(data)[0];
        volatile uint8 last = static_cast<const uint8*>(data)[size - 1];
        (void)first;
        (void)last;
    }

    switch (type) {
    case B_STRING_TYPE: {
        const char* string;
        if (message.FindString(name, index, &string) == B_OK)
            Check(strlen(string) < static_cast<size_t>(size), "string ran past its item");
        break;
    }
    case B_MESSAGE_TYPE: {
        BMessage nested;
        if (depth < kMaxNesting && message.FindMessage(name, index, &nested) == B_OK)
            Exercise(nested, depth + 1);
        break;
    }
    case B_REF_TYPE: {
        entry_ref ref;
        message.FindRef(name, index, &ref);
        break;
    }
    case B_INT32_TYPE: {
        int32 value;
        message.FindInt32(name, index, &value);
        break;
    }
    case B_RECT_TYPE: {
        BRect rect;
        message.FindRect(name, index, &rect);
        break;
    }
    case B_BOOL_TYPE: {
        bool value;
        message.FindBool(name, index, &value);
        break;
    }
    default:
        break;
    }
}

void Exercise(const BMessage& message, int depth) {
    char* name;
    type_code type;
    int32 count;
    for (int32 i = 0; message.GetInfo(B_ANY_TYPE, i, &name, &type, &count) == B_OK; i++) {
        Check(count > 0, "field without items");
        int32 namedCount = 0;
        Check(message.GetInfo(name, &type, &namedCount) == B_OK && namedCount == count,
              "field not found by its name");
        for (int32 index = 0; index < count; index++)
            ReadItem(message, name, type, index, depth);
    }
}

// What we accepted, we can write; what we wrote, we read back the same.
void CheckRoundTrip(const BMessage& message) {
    ssize_t size = message.FlattenedSize();
    if (size == B_NAME_TOO_LONG)
        return; // Haiku names may be longer than the R5 layout can hold
    Check(size > 0, "accepted message cannot be flattened");
    std::vector<char> buffer(static_cast<size_t>(size));
    Check(message.Flatten(buffer.data(), size) == B_OK, "Flatten failed");
    BMessage copy;
    Check(BPrivate::MessagePrivate(&copy).Unflatten(buffer.data(), buffer.size()) == B_OK,
          "our own flattening was refused");
    Check(copy.what == message.what, "what changed in a round trip");
    Check(copy.CountNames(B_ANY_TYPE) == message.CountNames(B_ANY_TYPE),
          "fields changed in a round trip");
    Check(copy.FlattenedSize() == size, "size changed in a round trip");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // PrintToStream runs on every accepted input; keep its output out of the log.
    if (freopen("/dev/null", "w", stdout) == NULL)
        abort();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    BMessage fromStream;
    BMemoryIO stream(data, size);
    status_t streamStatus = fromStream.Unflatten(&stream);

    BMessage fromBuffer;
    status_t bufferStatus = BPrivate::MessagePrivate(&fromBuffer).Unflatten(data, size);

    if (streamStatus == B_OK) {
        Check(bufferStatus == B_OK, "stream accepted what the buffer refused");
        Exercise(fromStream, 0);
        fromStream.PrintToStream();
        CheckRoundTrip(fromStream);
    } else {
        Check(fromStream.IsEmpty(), "refused message kept fields");
    }
    if (bufferStatus != B_OK)
        Check(fromBuffer.IsEmpty(), "refused message kept fields");
    return 0;
}
