// Owning pointers for cairo handles (kit-private).
#ifndef _CAIRO_POINTERS_H
#define _CAIRO_POINTERS_H

#include <cairo.h>

#include <memory>

namespace BPrivate {

struct SurfaceDeleter {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
typedef std::unique_ptr<cairo_surface_t, SurfaceDeleter> SurfacePointer;

struct ContextDeleter {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};
typedef std::unique_ptr<cairo_t, ContextDeleter> ContextPointer;

} // namespace BPrivate

#endif // _CAIRO_POINTERS_H
