// Reading and writing pixels of the colour spaces bitmaps can hold (kit-private).
// Pixels travel as straight (not premultiplied) rgb_color. Transparency follows
// each space's own convention: the palette's transparent index, the magic colour
// B_TRANSPARENT_MAGIC_RGBA32 in spaces without alpha, the alpha channel otherwise.
// Spaces without alpha cut at half transparency when written.
#ifndef _COLOR_CONVERSION_H
#define _COLOR_CONVERSION_H

#include <GraphicsDefs.h>

namespace BPrivate {

class PaletteIndexCache;

// Whether pixels of the space can be read and written here.
bool is_supported_color_space(color_space space);

// Bits per pixel of a supported space, 0 otherwise.
int32 bits_per_pixel(color_space space);

// Bytes in a row of the given width: rows are padded to 4 bytes. -1 for an
// unsupported space or a width that does not fit.
int32 bytes_per_row_for(color_space space, int32 width);

// Reads count pixels starting at pixel first of the row.
void read_pixels(const uint8* row, int32 first, int32 count, color_space space, rgb_color* pixels);

// Writes count pixels starting at pixel first of the row. The cache serves
// palette lookups when the space is B_CMAP8.
void write_pixels(uint8* row, int32 first, int32 count, color_space space, const rgb_color* pixels,
                  PaletteIndexCache& cache);

} // namespace BPrivate

#endif // _COLOR_CONVERSION_H
