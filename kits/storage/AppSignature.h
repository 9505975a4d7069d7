// The fixed rule that names Linux applications with Be signatures (kit-private).
//
// A desktop entry without a "BEOS:APP_SIG" attribute is
//     "application/x-vnd.desktop-" + its desktop file ID without ".desktop",
// an executable without one is
//     "application/x-vnd.exec-" + its absolute path,
// where every byte other than A-Z a-z 0-9 . _ + - is written %XX (upper-case hex).
// The escaping keeps the result a valid MIME string and makes the rule reversible.
// A result that does not fit B_MIME_TYPE_LENGTH is no signature (empty string).
#ifndef _STORAGE_APP_SIGNATURE_H
#define _STORAGE_APP_SIGNATURE_H

#include <string>

namespace BPrivate {

extern const char* const kDesktopSignaturePrefix;
extern const char* const kExecutableSignaturePrefix;
// Stands for the default application of inode/directory.
extern const char* const kFileManagerSignature;

std::string signature_for_desktop_id(const std::string& desktopID);
std::string signature_for_executable(const std::string& path);

// The reverse direction; false when the signature is not of that form or does not
// decode. The prefixes compare without regard to case, as MIME strings do.
bool desktop_id_for_signature(const char* signature, std::string* desktopID);
bool executable_for_signature(const char* signature, std::string* path);

} // namespace BPrivate

#endif // _STORAGE_APP_SIGNATURE_H
