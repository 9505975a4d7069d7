// The Be 8-bit system palette and nearest-colour lookups (kit-private).
#ifndef _SYSTEM_PALETTE_H
#define _SYSTEM_PALETTE_H

#include <GraphicsDefs.h>

namespace BPrivate {

// The 256 palette colours; index 255 is the transparent entry (alpha 0).
const rgb_color* system_palette();

// Weighted distance between two colours (red and blue weighted by the mean red,
// green four times), the measure every nearest-colour lookup uses.
int32 palette_distance(rgb_color first, rgb_color second);

// The opaque palette entry nearest to the colour: an exact search over the
// palette, never the transparent index. Colours in the palette map to their index.
uint8 nearest_palette_index(uint8 red, uint8 green, uint8 blue);

// A small memo in front of nearest_palette_index() for converting whole bitmaps,
// whose pixels tend to repeat a few colours. One per conversion, not shared.
class PaletteIndexCache {
public:
    PaletteIndexCache();

    uint8 IndexFor(uint8 red, uint8 green, uint8 blue);

private:
    static const int32 kSize = 1024;

    uint32 fKeys[kSize];
    uint8 fIndices[kSize];
};

} // namespace BPrivate

#endif // _SYSTEM_PALETTE_H
