// Flattened messages: we write the BeOS R5 layout (so Be systems can read our files)
// and read R5 in either byte order as well as Haiku's native layout.
//
// Every reader works on a buffer of known length and checks each count, size and
// offset against what is left of it before using it; nothing is allocated for data
// the input does not actually contain.
#ifndef _APP_MESSAGE_FLATTENING_H
#define _APP_MESSAGE_FLATTENING_H

#include <SupportDefs.h>

#include <string.h>

#include <vector>

#include "app/MessageBody.h"

class BDataIO;

namespace BPrivate {

// The first four bytes, read as a host-order uint32.
const uint32 kMessageFormatR5 = 'FOB1';
const uint32 kMessageFormatR5Swapped = '1BOF';
const uint32 kMessageFormatHaiku = '1FMH';
const uint32 kMessageFormatHaikuSwapped = 'HMF1';
const uint32 kMessageFormatDano = 'FOB2';
const uint32 kMessageFormatDanoSwapped = '2BOF';

const size_t kR5HeaderSize = 17;
const size_t kHaikuHeaderSize = 68;
const size_t kHaikuFieldHeaderSize = 24;

// Size of the R5 flattening of a message, header and terminator included; a negative
// error when it cannot be written (a name longer than 255 bytes, over 2 GB).
ssize_t r5_flattened_size(const MessageBody& body);
// Writes it; size must be at least r5_flattened_size(body).
void flatten_r5(uint32 what, const MessageBody& body, uint8* buffer, size_t size);

// How many leading bytes flattened_message_size() needs for this format: 0 when the
// format is not one we read.
size_t flattened_header_size(uint32 format);
// The total length the header at data announces. B_NOT_A_MESSAGE for an unknown
// format, B_BAD_VALUE when available is short of flattened_header_size() or the
// sizes make no sense.
status_t flattened_message_size(const uint8* data, size_t available, size_t* total);

// Reads a whole flattened message of any accepted format from [data, data + size)
// into an empty body.
status_t unflatten_message(const uint8* data, size_t size, uint32* what, MessageBody* body);
status_t unflatten_r5(const uint8* data, size_t size, bool swapped, uint32* what,
                      MessageBody* body);
status_t unflatten_haiku(const uint8* data, size_t size, uint32* what, MessageBody* body);

// Reads exactly one flattened message from a stream into buffer; the buffer grows
// with what the stream really delivers, never by the size a header claims.
status_t read_flattened_message(BDataIO* stream, std::vector<uint8>* buffer);

// Bounds-checked reading of host- or opposite-order numbers.
class FlatReader {
public:
    FlatReader(const uint8* data, size_t size, bool swapped)
        : fData(data), fSize(size), fPosition(0), fSwapped(swapped) {}

    size_t Position() const { return fPosition; }
    size_t Remaining() const { return fSize - fPosition; }

    bool Skip(size_t bytes) {
        if (bytes > Remaining())
            return false;
        fPosition += bytes;
        return true;
    }

    bool ReadBytes(size_t bytes, const uint8** start) {
        if (bytes > Remaining())
            return false;
        *start = fData + fPosition;
        fPosition += bytes;
        return true;
    }

    bool Read8(uint8* value) {
        if (Remaining() < 1)
            return false;
        *value = fData[fPosition++];
        return true;
    }

    bool Read16(uint16* value) {
        if (Remaining() < sizeof(uint16))
            return false;
        memcpy(value, fData + fPosition, sizeof(uint16));
        if (fSwapped)
            *value = __builtin_bswap16(*value);
        fPosition += sizeof(uint16);
        return true;
    }

    bool Read32(uint32* value) {
        if (Remaining() < sizeof(uint32))
            return false;
        memcpy(value, fData + fPosition, sizeof(uint32));
        if (fSwapped)
            *value = __builtin_bswap32(*value);
        fPosition += sizeof(uint32);
        return true;
    }

    // A non-negative int32, as R5 stores counts and sizes.
    bool ReadSize32(uint32* value) { return Read32(value) && *value <= 0x7fffffff; }

private:
    const uint8* fData;
    size_t fSize;
    size_t fPosition;
    bool fSwapped;
};

} // namespace BPrivate

#endif // _APP_MESSAGE_FLATTENING_H
