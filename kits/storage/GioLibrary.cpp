#include "GioLibrary.h"

#include <dlfcn.h>
#include <stdio.h>
#include <unistd.h>

namespace BPrivate {

namespace {

// GIO's handle also finds the functions of GLib and GObject, which it depends on.
const char* const kLibraryName = "libgio-2.0.so.0";

[[noreturn]] void give_up(const char* reason) {
    fprintf(stderr, "glimrow: cannot read file types and applications: %s\n",
            reason != nullptr ? reason : "unknown error");
    _exit(1);
}

GioLibrary load_library() {
    void* handle = dlopen(kLibraryName, RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr)
        give_up(dlerror());
    GioLibrary library;
#define GLIMROW_GIO_LOAD(name)                                                                     \
    library.name = reinterpret_cast<decltype(library.name)>(dlsym(handle, #name));                 \
    if (library.name == nullptr)                                                                   \
        give_up(dlerror());
    GLIMROW_GIO_FUNCTIONS(GLIMROW_GIO_LOAD)
#undef GLIMROW_GIO_LOAD
    return library;
}

} // namespace

const GioLibrary& GioLibrary::Get() {
    // Initialised once even when the loader thread and a window thread ask first
    // at the same time.
    static const GioLibrary sLibrary = load_library();
    return sLibrary;
}

} // namespace BPrivate
