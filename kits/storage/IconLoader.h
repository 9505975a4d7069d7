// Decoded icons, ready to copy into a BBitmap (kit-private).
//
// An IconImage is a square of premultiplied ARGB32 pixels (cairo's format).
// Decoded images are kept per file (or theme names) and size, so that asking
// again for an icon costs a map lookup and a copy.
#ifndef _STORAGE_ICON_LOADER_H
#define _STORAGE_ICON_LOADER_H

#include <GraphicsDefs.h>
#include <SupportDefs.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

class BBitmap;

namespace BPrivate {

// Pixels with less alpha than this become transparent in colour spaces that have
// only "transparent" or "opaque" (B_CMAP8, B_RGB32); the others are laid on the
// panel background, so antialiased edges look right on the bar and in menus.
const uint8 kIconAlphaThreshold = 32;

struct IconImage {
    int32 size = 0;
    std::vector<uint32> pixels; // size * size, premultiplied 0xAARRGGBB

    // The raw B_CMAP8 form, made once when first asked for.
    const std::vector<uint8>& Cmap8() const;

private:
    mutable std::once_flag fCmap8Once;
    mutable std::vector<uint8> fCmap8;
};

typedef std::shared_ptr<const IconImage> IconImageRef;

enum generic_icon {
    kGenericDocument,
    kGenericFolder,
    kGenericApplication,
    kGenericVolume,
};

class IconLoader {
public:
    // A PNG or SVG file, scaled to size (keeping its proportions, centred).
    static IconImageRef FromFile(const std::string& path, int32 size);
    // The first of the names the icon theme has, at size.
    static IconImageRef FromTheme(const std::vector<std::string>& names, int32 size);
    // A raw B_CMAP8 icon of edge × edge bytes, scaled to size.
    static IconImageRef FromCmap8(const uint8* data, int32 edge, int32 size);
    // A plain icon drawn here, for when nothing else has one.
    static IconImageRef Generic(generic_icon kind, int32 size);

    // Copies the image into the bitmap (size × size pixels), converting it into
    // the bitmap's colour space. B_BAD_VALUE for a bitmap of another size.
    static status_t CopyToBitmap(const IconImage& image, BBitmap* bitmap);
    // Whether a bitmap can hold an icon of that size.
    static status_t CheckBitmap(const BBitmap* bitmap, int32 size);
};

} // namespace BPrivate

#endif // _STORAGE_ICON_LOADER_H
