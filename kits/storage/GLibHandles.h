// Owning handles for the GLib, GIO and cairo objects the storage kit uses, so that
// every early return releases what it took (kit-private). GLib is released through
// the table of the library opened at run time; a handle only holds something once
// that library is loaded, so releasing never loads anything new.
#ifndef _STORAGE_GLIB_HANDLES_H
#define _STORAGE_GLIB_HANDLES_H

#include "GioLibrary.h"

#include <cairo.h>

#include <memory>

namespace BPrivate {
namespace storage_glib {

struct ObjectUnref {
    void operator()(gpointer object) const {
        if (object != nullptr)
            GioLibrary::Get().g_object_unref(object);
    }
};

struct Free {
    void operator()(gpointer memory) const { GioLibrary::Get().g_free(memory); }
};

struct StrvFree {
    void operator()(gchar** vector) const { GioLibrary::Get().g_strfreev(vector); }
};

struct ErrorFree {
    void operator()(GError* error) const {
        if (error != nullptr)
            GioLibrary::Get().g_error_free(error);
    }
};

struct AppInfoListFree {
    void operator()(GList* list) const {
        const GioLibrary& library = GioLibrary::Get();
        library.g_list_free_full(list, library.g_object_unref);
    }
};

struct SurfaceDestroy {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};

struct ContextDestroy {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};

template <typename Type>
using ObjectPtr = std::unique_ptr<Type, ObjectUnref>;
using StringPtr = std::unique_ptr<gchar, Free>;
using StrvPtr = std::unique_ptr<gchar*, StrvFree>;
using ErrorPtr = std::unique_ptr<GError, ErrorFree>;
using AppInfoList = std::unique_ptr<GList, AppInfoListFree>;
using SurfacePtr = std::unique_ptr<cairo_surface_t, SurfaceDestroy>;
using ContextPtr = std::unique_ptr<cairo_t, ContextDestroy>;

} // namespace storage_glib
} // namespace BPrivate

#endif // _STORAGE_GLIB_HANDLES_H
