// Which applications exist, what they are called and which types they open
// (kit-private). Desktop entries and the MIME associations come from the
// freedesktop folders and mimeapps.list through GIO; signatures follow the rule
// of AppSignature.h. Safe to use from any thread.
#ifndef _STORAGE_APP_DATABASE_H
#define _STORAGE_APP_DATABASE_H

#include <SupportDefs.h>

#include <string>
#include <sys/stat.h>
#include <vector>

namespace BPrivate {

enum app_kind {
    kNotAnApplication = 0,
    kDesktopApplication,
    kExecutableApplication,
};

class AppDatabase {
public:
    // A desktop entry of Type=Application, or an executable file whose content can
    // be a program (so an image that merely has an x bit stays a document).
    static app_kind KindOf(const char* path, const struct stat& info);

    // The signature of the application file at path: its "BEOS:APP_SIG"
    // attribute, else the derived one. B_BAD_VALUE when path is no application.
    static status_t SignatureFor(const char* path, std::string* signature);
    // The "BEOS:APP_FLAGS" attribute; applications without one may run many times.
    static uint32 FlagsFor(const char* path);

    // The application file that answers to a signature, or, for a document type,
    // its default application. B_LAUNCH_FAILED_APP_NOT_FOUND when nothing answers,
    // B_LAUNCH_FAILED_NO_PREFERRED_APP for a type without an application.
    static status_t FindApp(const char* signature, std::string* path);
    // The default application of a type (mimeapps.list and the installed entries,
    // the type's parents included).
    static status_t DefaultAppFor(const char* type, std::string* path);

    // Signatures of the applications for a type: those that name it, and those
    // that take it through a parent type (text/plain for text/x-csrc); the latter
    // leave out the ones that only take any file (application/octet-stream).
    static status_t SupportingApps(const char* type, std::vector<std::string>* forType,
                                   std::vector<std::string>* forParents);
    // Signatures of the applications that open any file.
    static status_t WildcardApps(std::vector<std::string>* signatures);

    // Tells the database where an application is (this process's own
    // executable, or one that the roster has seen).
    static void RememberApp(const char* signature, const char* path);
};

} // namespace BPrivate

#endif // _STORAGE_APP_DATABASE_H
