// Building flattened messages byte by byte, in either byte order, so tests can feed
// the readers data that our own writer would never produce.
#ifndef GLIMROW_TEST_FLAT_MESSAGE_BUILDER_H
#define GLIMROW_TEST_FLAT_MESSAGE_BUILDER_H

#include <SupportDefs.h>

#include <string.h>

#include <string>
#include <vector>

namespace testing_support {

class FlatMessageBuilder {
public:
    explicit FlatMessageBuilder(bool bigEndian = false) : fBigEndian(bigEndian) {}

    FlatMessageBuilder& U8(uint8 value) {
        fBytes.push_back(value);
        return *this;
    }
    FlatMessageBuilder& U16(uint16 value) { return _Number(value, 2); }
    FlatMessageBuilder& U32(uint32 value) { return _Number(value, 4); }
    FlatMessageBuilder& U64(uint64 value) { return _Number(value, 8); }
    FlatMessageBuilder& F32(float value) {
        uint32 bits;
        memcpy(&bits, &value, sizeof(bits));
        return U32(bits);
    }
    FlatMessageBuilder& F64(double value) {
        uint64 bits;
        memcpy(&bits, &value, sizeof(bits));
        return U64(bits);
    }
    // The characters without a NUL.
    FlatMessageBuilder& Text(const char* text) { return Bytes(text, strlen(text)); }
    // The characters and their NUL.
    FlatMessageBuilder& CString(const char* text) { return Bytes(text, strlen(text) + 1); }
    FlatMessageBuilder& Bytes(const void* bytes, size_t length) {
        const uint8* start = static_cast<const uint8*>(bytes);
        fBytes.insert(fBytes.end(), start, start + length);
        return *this;
    }
    FlatMessageBuilder& Bytes(const std::vector<uint8>& bytes) {
        return Bytes(bytes.data(), bytes.size());
    }
    FlatMessageBuilder& Zeros(size_t length) {
        fBytes.insert(fBytes.end(), length, 0);
        return *this;
    }

    // An R5 header: magic, checksum and size (patched by FinishR5), what, flags.
    FlatMessageBuilder& R5Header(uint32 what, uint8 flags = 0x01) {
        U32('FOB1').U32(0).U32(0).U32(what).U8(flags);
        return *this;
    }
    // Writes the total size and the checksum of the header bytes 8..headerEnd.
    FlatMessageBuilder& FinishR5(size_t headerEnd = 17) {
        Patch32(8, static_cast<uint32>(fBytes.size()));
        Patch32(4, R5Checksum(fBytes.data() + 8, headerEnd - 8));
        return *this;
    }

    void Patch32(size_t offset, uint32 value) {
        for (size_t i = 0; i < 4; i++) {
            size_t shift = fBigEndian ? (3 - i) * 8 : i * 8;
            fBytes[offset + i] = static_cast<uint8>(value >> shift);
        }
    }

    size_t Size() const { return fBytes.size(); }
    const std::vector<uint8>& Data() const { return fBytes; }
    const char* Chars() const { return reinterpret_cast<const char*>(fBytes.data()); }

    // Big-endian words summed, a short tail added as one big-endian number.
    static uint32 R5Checksum(const uint8* bytes, size_t length) {
        uint32 sum = 0;
        size_t i = 0;
        for (; i + 4 <= length; i += 4) {
            sum += (uint32(bytes[i]) << 24) | (uint32(bytes[i + 1]) << 16) |
                   (uint32(bytes[i + 2]) << 8) | bytes[i + 3];
        }
        uint32 tail = 0;
        for (; i < length; i++)
            tail = (tail << 8) + bytes[i];
        return sum + tail;
    }

private:
    FlatMessageBuilder& _Number(uint64 value, size_t width) {
        for (size_t i = 0; i < width; i++) {
            size_t shift = fBigEndian ? (width - 1 - i) * 8 : i * 8;
            fBytes.push_back(static_cast<uint8>(value >> shift));
        }
        return *this;
    }

    bool fBigEndian;
    std::vector<uint8> fBytes;
};

} // namespace testing_support

#endif // GLIMROW_TEST_FLAT_MESSAGE_BUILDER_H
