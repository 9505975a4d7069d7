// librsvg, opened the first time an SVG icon is drawn rather than at start: the
// library and what it pulls in (libxml2, ICU) cost a few megabytes of resident
// memory, and the sized PNG icons most themes ship need none of it.
#ifndef _STORAGE_SVG_LIBRARY_H
#define _STORAGE_SVG_LIBRARY_H

#include <librsvg/rsvg.h>

namespace BPrivate {

class SvgLibrary {
public:
    // The library's entry points, or NULL when it cannot be opened (it is then
    // not tried again). Thread-safe; the library stays loaded.
    static const SvgLibrary* Get();

    RsvgHandle* (*NewFromFile)(const char* path, GError** error);
    gboolean (*RenderDocument)(RsvgHandle* handle, cairo_t* context, const RsvgRectangle* viewport,
                               GError** error);
};

} // namespace BPrivate

#endif // _STORAGE_SVG_LIBRARY_H
