#include "TextLibrary.h"

#include <dlfcn.h>
#include <stdio.h>
#include <unistd.h>

namespace BPrivate {

namespace {

// Pulls in libpango and GLib as its dependencies: lookups through its handle
// find their functions too.
const char* const kLibraryName = "libpangocairo-1.0.so.0";

} // namespace

const TextLibrary& TextLibrary::Get() {
    static const TextLibrary* sLibrary = []() {
        TextLibrary* library = new TextLibrary;
        std::string error;
        if (library->Load(kLibraryName, &error) != B_OK) {
            fprintf(stderr, "glimrow: cannot draw text: %s\n", error.c_str());
            fflush(stderr);
            _exit(1);
        }
        return library;
    }();
    return *sLibrary;
}

status_t TextLibrary::Load(const char* fileName, std::string* error) {
    if (fileName == NULL)
        return B_BAD_VALUE;
    // Symbols are bound now, so a library missing one fails here rather than
    // in the middle of drawing; kept local, so they never stand in for
    // anyone else's.
    void* handle = dlopen(fileName, RTLD_NOW | RTLD_LOCAL);
    if (handle == NULL) {
        if (error != NULL)
            *error = dlerror();
        return B_ENTRY_NOT_FOUND;
    }

    TextLibrary loaded;
    const char* missing = NULL;
#define GLIMROW_LOAD_TEXT_FUNCTION(name)                                                           \
    if (missing == NULL) {                                                                         \
        loaded.name = reinterpret_cast<decltype(loaded.name)>(dlsym(handle, #name));               \
        if (loaded.name == NULL)                                                                   \
            missing = #name;                                                                       \
    }
    GLIMROW_TEXT_FUNCTIONS(GLIMROW_LOAD_TEXT_FUNCTION)
#undef GLIMROW_LOAD_TEXT_FUNCTION

    if (missing != NULL) {
        if (error != NULL) {
            const char* reason = dlerror();
            *error = reason != NULL ? reason : std::string(fileName) + " lacks " + missing;
        }
        dlclose(handle);
        return B_NAME_NOT_FOUND;
    }
    *this = loaded;
    return B_OK;
}

} // namespace BPrivate
