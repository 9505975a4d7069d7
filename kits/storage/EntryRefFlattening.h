// How an entry_ref travels inside a flattened BMessage (B_REF_TYPE items).
//
// The Be layout comes first: int32 device, int64 directory, then the leaf name with
// its NUL (no name bytes when the ref has none). After that we append the absolute
// path of the ref's folder with its NUL, so that a ref still resolves after a round
// trip through another process or a file; Be readers stop at the name's NUL and never
// see it. Numbers are in host byte order, as in the rest of a flattened message.
#ifndef _STORAGE_ENTRY_REF_FLATTENING_H
#define _STORAGE_ENTRY_REF_FLATTENING_H

#include <Entry.h>
#include <SupportDefs.h>

namespace BPrivate {

// Bytes flatten_entry_ref() will write for ref.
size_t flattened_entry_ref_size(const entry_ref& ref);

// Writes ref into buffer; *size is the capacity on entry and the bytes used on
// return. B_BAD_VALUE for NULL arguments, B_NO_MEMORY when the capacity is too small
// (then *size holds the size needed).
status_t flatten_entry_ref(const entry_ref& ref, void* buffer, size_t* size);

// Reads a ref written by flatten_entry_ref() or by a Be system (without the path).
// B_BAD_VALUE for fewer than 12 bytes or NULL arguments; a name without its NUL is
// taken up to the end of the data. Never reads past data + size.
status_t unflatten_entry_ref(const void* data, size_t size, entry_ref* ref);

} // namespace BPrivate

#endif // _STORAGE_ENTRY_REF_FLATTENING_H
