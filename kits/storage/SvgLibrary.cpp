#include "SvgLibrary.h"

#include <dlfcn.h>
#include <stdio.h>

namespace BPrivate {

namespace {

const char* const kLibraryName = "librsvg-2.so.2";

const SvgLibrary* open_library() {
    void* handle = dlopen(kLibraryName, RTLD_NOW | RTLD_LOCAL);
    if (handle == NULL) {
        fprintf(stderr, "glimrow: SVG icons cannot be drawn: %s\n", dlerror());
        return NULL;
    }
    static SvgLibrary sLibrary;
    sLibrary.NewFromFile = reinterpret_cast<decltype(sLibrary.NewFromFile)>(
        dlsym(handle, "rsvg_handle_new_from_file"));
    sLibrary.RenderDocument = reinterpret_cast<decltype(sLibrary.RenderDocument)>(
        dlsym(handle, "rsvg_handle_render_document"));
    if (sLibrary.NewFromFile == NULL || sLibrary.RenderDocument == NULL) {
        fprintf(stderr,
                "glimrow: SVG icons cannot be drawn: %s lacks rsvg_handle_render_document\n",
                kLibraryName);
        return NULL;
    }
    return &sLibrary;
}

} // namespace

const SvgLibrary* SvgLibrary::Get() {
    static const SvgLibrary* sLibrary = open_library();
    return sLibrary;
}

} // namespace BPrivate
