// Flattened messages written from the byte layouts by hand, shared by the tests of
// the readers.
#ifndef GLIMROW_TEST_FLAT_MESSAGE_EXAMPLES_H
#define GLIMROW_TEST_FLAT_MESSAGE_EXAMPLES_H

#include <DataIO.h>
#include <Message.h>

#include <vector>

#include "FlatMessageBuilder.h"
#include "app/MessagePrivate.h"

namespace testing_support {

inline status_t UnflattenBytes(BMessage* message, const std::vector<uint8>& bytes, size_t length) {
    return BPrivate::MessagePrivate(message).Unflatten(bytes.data(), length);
}

inline status_t UnflattenStream(BMessage* message, const std::vector<uint8>& bytes, size_t length) {
    BMemoryIO stream(bytes.data(), length);
    return message->Unflatten(&stream);
}

// The R5 example: what = 'TEST', int32 "x" = 5, string "s" = "hi" (x86).
inline const uint8 kR5Example[] = {
    0x31, 0x42, 0x4f, 0x46, 0x55, 0x45, 0x53, 0x82, 0x2e, 0x00, 0x00, 0x00, 0x54, 0x53, 0x45, 0x54,
    0x01, 0x0f, 0x47, 0x4e, 0x4f, 0x4c, 0x04, 0x01, 0x78, 0x05, 0x00, 0x00, 0x00, 0x0b, 0x52, 0x54,
    0x53, 0x43, 0x08, 0x01, 0x73, 0x03, 0x00, 0x00, 0x00, 0x68, 0x69, 0x00, 0x00, 0x00};

// The same message in Haiku's layout.
inline const uint8 kHaikuExample[] = {
    0x48, 0x4d, 0x46, 0x31, 0x54, 0x53, 0x45, 0x54, 0x01, 0x00, 0x00, 0x00, 0xff, 0xff, 0xff,
    0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff,
    0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x0f, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00, 0x05,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff,
    0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x03, 0x00, 0x02, 0x00, 0x47, 0x4e, 0x4f,
    0x4c, 0x01, 0x00, 0x00, 0x00, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00,
    0x00, 0x00, 0x01, 0x00, 0x02, 0x00, 0x52, 0x54, 0x53, 0x43, 0x01, 0x00, 0x00, 0x00, 0x07,
    0x00, 0x00, 0x00, 0x06, 0x00, 0x00, 0x00, 0xff, 0xff, 0xff, 0xff, 0x78, 0x00, 0x05, 0x00,
    0x00, 0x00, 0x73, 0x00, 0x03, 0x00, 0x00, 0x00, 0x68, 0x69, 0x00};

inline std::vector<uint8> R5Example() {
    return std::vector<uint8>(kR5Example, kR5Example + sizeof(kR5Example));
}

inline std::vector<uint8> HaikuExample() {
    return std::vector<uint8>(kHaikuExample, kHaikuExample + sizeof(kHaikuExample));
}

// An R5 message with one field of each common type, in either byte order.
inline std::vector<uint8> RichR5Message(bool bigEndian) {
    FlatMessageBuilder nested(bigEndian);
    nested.R5Header('NEST').U8(0x0f).U32(B_INT32_TYPE).U8(4).U8(1).Text("v").U32(77).U8(0);
    nested.FinishR5();

    FlatMessageBuilder message(bigEndian);
    message.R5Header('RICH');
    message.U8(0x0f).U32(B_INT16_TYPE).U8(2).U8(3).Text("s16").U16(0xfffe);
    message.U8(0x0f).U32(B_INT32_TYPE).U8(4).U8(3).Text("i32").U32(0x01020304);
    message.U8(0x0f).U32(B_INT64_TYPE).U8(8).U8(3).Text("i64").U64(0x0102030405060708ULL);
    message.U8(0x0f).U32(B_FLOAT_TYPE).U8(4).U8(1).Text("f").F32(1.5f);
    message.U8(0x0f).U32(B_DOUBLE_TYPE).U8(8).U8(1).Text("d").F64(-2.5);
    message.U8(0x0f).U32(B_POINT_TYPE).U8(8).U8(1).Text("p").F32(1).F32(2);
    message.U8(0x0f).U32(B_RECT_TYPE).U8(16).U8(1).Text("r").F32(1).F32(2).F32(3).F32(4);
    message.U8(0x0f).U32(B_BOOL_TYPE).U8(1).U8(1).Text("b").U8(1);
    // A string: length word, "hello\0", padding to 16.
    message.U8(0x0b).U32(B_STRING_TYPE).U8(16).U8(3).Text("str").U32(6).CString("hello").Zeros(6);
    // Three int32 items with full-size count and size words.
    message.U8(0x05).U32(B_INT32_TYPE).U32(3).U32(12).U8(4).Text("many").U32(10).U32(20).U32(30);
    // An entry_ref the Be way: device, directory, name; 4 + 17 padded to 24.
    message.U8(0x0b)
        .U32(B_REF_TYPE)
        .U8(24)
        .U8(3)
        .Text("ref")
        .U32(17)
        .U32(3)
        .U64(1234)
        .CString("file")
        .Zeros(3);
    size_t nestedPadding = ((4 + nested.Size() + 7) & ~size_t(7)) - 4 - nested.Size();
    message.U8(0x0b)
        .U32(B_MESSAGE_TYPE)
        .U8(static_cast<uint8>(4 + nested.Size() + nestedPadding))
        .U8(6)
        .Text("nested")
        .U32(static_cast<uint32>(nested.Size()))
        .Bytes(nested.Data())
        .Zeros(nestedPadding);
    message.U8(0);
    message.FinishR5();
    return message.Data();
}

} // namespace testing_support

#endif // GLIMROW_TEST_FLAT_MESSAGE_EXAMPLES_H
