// BMessage::PrintToStream: the what code, then one line per item with the field's
// name, type, count and size, the way Be systems print messages when debugging.
#include <Message.h>

#include <Entry.h>

#include <ctype.h>
#include <inttypes.h>
#include <stdio.h>
#include <string.h>

#include "app/MessageFlattening.h"
#include "app/MessageInternals.h"
#include "storage/EntryRefFlattening.h"

namespace {

// Nested messages are printed inside their parent; crafted input could nest them
// deeper than any real message, so printing stops going down at this depth.
const int kMaxPrintDepth = 16;

void PrintTypeCode(type_code type) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        int character = static_cast<uint8>(type >> shift);
        putchar(isprint(character) ? character : '.');
    }
}

bool IsPrintableCode(uint32 code) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        if (!isprint(static_cast<uint8>(code >> shift)))
            return false;
    }
    return true;
}

template <typename Value>
Value ItemAs(const uint8* item) {
    Value value;
    memcpy(&value, item, sizeof(Value));
    return value;
}

void PrintMessage(uint32 what, const BPrivate::MessageBody& body, int depth);

void PrintHex(const uint8* item, size_t size) {
    const size_t kShown = 16;
    for (size_t i = 0; i < size && i < kShown; i++)
        printf("%s%02x", i == 0 ? "" : " ", item[i]);
    if (size > kShown)
        printf(" ...");
}

void PrintItem(type_code type, const uint8* item, size_t size, int depth) {
    switch (type) {
    case B_BOOL_TYPE:
        if (size == 1)
            return (void)printf("%s", item[0] != 0 ? "true" : "false");
        break;
    case B_INT8_TYPE:
        if (size == 1)
            return (void)printf("%d (0x%x)", ItemAs<int8>(item), item[0]);
        break;
    case B_UINT8_TYPE:
        if (size == 1)
            return (void)printf("%u (0x%x)", item[0], item[0]);
        break;
    case B_INT16_TYPE:
        if (size == 2)
            return (void)printf("%d (0x%x)", ItemAs<int16>(item), ItemAs<uint16>(item));
        break;
    case B_UINT16_TYPE:
        if (size == 2)
            return (void)printf("%u (0x%x)", ItemAs<uint16>(item), ItemAs<uint16>(item));
        break;
    case B_INT32_TYPE:
    case B_UINT32_TYPE:
        if (size == 4) {
            uint32 value = ItemAs<uint32>(item);
            if (type == B_INT32_TYPE)
                printf("%" PRId32 " (0x%" PRIx32 ")", static_cast<int32>(value), value);
            else
                printf("%" PRIu32 " (0x%" PRIx32 ")", value, value);
            if (IsPrintableCode(value)) {
                printf(" '");
                PrintTypeCode(value);
                putchar('\'');
            }
            return;
        }
        break;
    case B_INT64_TYPE:
        if (size == 8)
            return (void)printf("%" PRId64 " (0x%" PRIx64 ")", ItemAs<int64>(item),
                                ItemAs<uint64>(item));
        break;
    case B_UINT64_TYPE:
        if (size == 8)
            return (void)printf("%" PRIu64 " (0x%" PRIx64 ")", ItemAs<uint64>(item),
                                ItemAs<uint64>(item));
        break;
    case B_FLOAT_TYPE:
        if (size == 4)
            return (void)printf("%.6g", ItemAs<float>(item));
        break;
    case B_DOUBLE_TYPE:
        if (size == 8)
            return (void)printf("%.12g", ItemAs<double>(item));
        break;
    case B_STRING_TYPE: {
        size_t length = strnlen(reinterpret_cast<const char*>(item), size);
        return (void)printf("\"%.*s\"", static_cast<int>(length),
                            reinterpret_cast<const char*>(item));
    }
    case B_POINT_TYPE:
        if (size == 8)
            return (void)printf("BPoint(x:%.1f, y:%.1f)", ItemAs<float>(item),
                                ItemAs<float>(item + 4));
        break;
    case B_RECT_TYPE:
        if (size == 16)
            return (void)printf("BRect(l:%.1f, t:%.1f, r:%.1f, b:%.1f)", ItemAs<float>(item),
                                ItemAs<float>(item + 4), ItemAs<float>(item + 8),
                                ItemAs<float>(item + 12));
        break;
    case B_RGB_COLOR_TYPE:
    case B_RGB_32_BIT_TYPE:
        if (size == 4)
            return (void)printf("rgb_color(%u, %u, %u, %u)", item[0], item[1], item[2], item[3]);
        break;
    case B_POINTER_TYPE:
        if (size == sizeof(void*))
            return (void)printf("%p", ItemAs<void*>(item));
        break;
    case B_MESSENGER_TYPE:
        if (size >= 12)
            return (void)printf(
                "BMessenger(port: %" PRId32 ", token: %" PRId32 ", team: %" PRId32 ")",
                ItemAs<int32>(item), ItemAs<int32>(item + 4), ItemAs<int32>(item + 8));
        break;
    case B_REF_TYPE: {
        entry_ref ref;
        if (BPrivate::unflatten_entry_ref(item, size, &ref) == B_OK) {
            return (void)printf("entry_ref(device: %lld, directory: %lld, name: \"%s\")",
                                static_cast<long long>(ref.device),
                                static_cast<long long>(ref.directory),
                                ref.name != NULL ? ref.name : "");
        }
        break;
    }
    case B_MESSAGE_TYPE: {
        uint32 what;
        BPrivate::MessageBody nested;
        if (BPrivate::unflatten_message(item, size, &what, &nested) == B_OK) {
            if (depth >= kMaxPrintDepth)
                return (void)printf("BMessage(...)");
            return PrintMessage(what, nested, depth);
        }
        break;
    }
    default:
        break;
    }
    PrintHex(item, size);
}

void PrintIndent(int depth) {
    printf("%*s", depth * 4, "");
}

void PrintFields(const BPrivate::MessageBody& body, int depth) {
    for (int32 i = 0; i < body.CountFields(); i++) {
        const BPrivate::MessageField& field = body.FieldAt(i);
        for (uint32 index = 0; index < field.count; index++) {
            const uint8* item;
            size_t size;
            field.GetItem(static_cast<int32>(index), &item, &size);
            PrintIndent(depth + 1);
            printf("entry %14s, type='", field.name.c_str());
            PrintTypeCode(field.type);
            printf("', c=%" PRIu32 ", size=%2zu, data[%" PRIu32 "]: ", field.count, size, index);
            PrintItem(field.type, item, size, depth + 1);
            putchar('\n');
        }
    }
}

void PrintMessage(uint32 what, const BPrivate::MessageBody& body, int depth) {
    printf("BMessage: what = ");
    if (IsPrintableCode(what))
        PrintTypeCode(what);
    printf(" (0x%" PRIx32 ", or %" PRIu32 ")\n", what, what);
    PrintFields(body, depth);
}

} // namespace

void BMessage::PrintToStream() const {
    PrintMessage(what, fPrivate->body, 0);
    fflush(stdout);
}
