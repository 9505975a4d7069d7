#include "IconLoader.h"

#include "GLibHandles.h"
#include "IconTheme.h"
#include "SvgLibrary.h"
#include "interface/SystemPalette.h"

#include <Bitmap.h>

#include <stdio.h>
#include <string.h>
#include <strings.h>
#include <sys/stat.h>

#include <algorithm>
#include <map>

using namespace BPrivate::storage_glib;

namespace BPrivate {

namespace {

// Icons larger than this, or files larger than kMaxIconFileSize, are refused
// rather than decoded: a theme file is never that big, a hostile one may be.
const int32 kMaxIconEdge = 4096;
const off_t kMaxIconFileSize = 16 * 1024 * 1024;
const int32 kMaxRequestedSize = 1024;

// What partially transparent pixels are laid on (the panel background grey).
const uint8 kBackground = 216;

struct Cache {
    std::mutex lock;
    std::map<std::string, IconImageRef> images;
};

Cache& cache() {
    static Cache* sCache = new Cache;
    return *sCache;
}

IconImageRef cached(const std::string& key, bool* found) {
    Cache& shared = cache();
    std::lock_guard<std::mutex> guard(shared.lock);
    auto image = shared.images.find(key);
    *found = image != shared.images.end();
    return *found ? image->second : IconImageRef();
}

IconImageRef remember(const std::string& key, IconImageRef image) {
    Cache& shared = cache();
    std::lock_guard<std::mutex> guard(shared.lock);
    return shared.images.emplace(key, image).first->second;
}

std::shared_ptr<IconImage> image_from_surface(cairo_surface_t* source, int32 size) {
    if (cairo_surface_status(source) != CAIRO_STATUS_SUCCESS)
        return nullptr;
    int width = cairo_image_surface_get_width(source);
    int height = cairo_image_surface_get_height(source);
    if (width <= 0 || height <= 0)
        return nullptr;
    SurfacePtr target(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size, size));
    if (cairo_surface_status(target.get()) != CAIRO_STATUS_SUCCESS)
        return nullptr;
    {
        ContextPtr context(cairo_create(target.get()));
        double scale = std::min(double(size) / width, double(size) / height);
        cairo_translate(context.get(), (size - width * scale) / 2, (size - height * scale) / 2);
        cairo_scale(context.get(), scale, scale);
        cairo_set_source_surface(context.get(), source, 0, 0);
        // Whole-number enlargements keep hard pixel edges (Be icons are pixel art).
        bool wholeMultiple = scale >= 1 && scale == double(int(scale));
        cairo_pattern_set_filter(cairo_get_source(context.get()),
                                 wholeMultiple ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_GOOD);
        cairo_paint(context.get());
    }
    cairo_surface_flush(target.get());
    auto image = std::make_shared<IconImage>();
    image->size = size;
    image->pixels.resize(size_t(size) * size);
    const uint8* data = cairo_image_surface_get_data(target.get());
    int stride = cairo_image_surface_get_stride(target.get());
    for (int32 y = 0; y < size; y++)
        memcpy(&image->pixels[size_t(y) * size], data + size_t(y) * stride, size_t(size) * 4);
    return image;
}

bool png_dimensions_acceptable(const std::string& path) {
    FILE* file = fopen(path.c_str(), "rbe");
    if (file == nullptr)
        return false;
    uint8 header[24];
    size_t bytes = fread(header, 1, sizeof(header), file);
    fclose(file);
    static const uint8 kSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    if (bytes != sizeof(header) || memcmp(header, kSignature, 8) != 0 ||
        memcmp(header + 12, "IHDR", 4) != 0)
        return false;
    uint32 width =
        uint32(header[16]) << 24 | uint32(header[17]) << 16 | uint32(header[18]) << 8 | header[19];
    uint32 height =
        uint32(header[20]) << 24 | uint32(header[21]) << 16 | uint32(header[22]) << 8 | header[23];
    return width > 0 && height > 0 && width <= uint32(kMaxIconEdge) &&
           height <= uint32(kMaxIconEdge);
}

std::shared_ptr<IconImage> decode_png(const std::string& path, int32 size) {
    if (!png_dimensions_acceptable(path))
        return nullptr;
    SurfacePtr surface(cairo_image_surface_create_from_png(path.c_str()));
    return image_from_surface(surface.get(), size);
}

std::shared_ptr<IconImage> decode_svg(const std::string& path, int32 size) {
    const SvgLibrary* library = SvgLibrary::Get();
    if (library == NULL)
        return nullptr;
    GError* rawError = nullptr;
    ObjectPtr<RsvgHandle> handle(library->NewFromFile(path.c_str(), &rawError));
    ErrorPtr error(rawError);
    if (handle == nullptr)
        return nullptr;
    SurfacePtr target(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size, size));
    {
        ContextPtr context(cairo_create(target.get()));
        RsvgRectangle viewport = {0, 0, double(size), double(size)};
        rawError = nullptr;
        gboolean rendered =
            library->RenderDocument(handle.get(), context.get(), &viewport, &rawError);
        ErrorPtr renderError(rawError);
        if (!rendered)
            return nullptr;
    }
    // The target is already the right size; copying it through the scaler keeps
    // one way out.
    return image_from_surface(target.get(), size);
}

bool has_suffix(const std::string& text, const char* suffix) {
    size_t length = strlen(suffix);
    return text.size() >= length && strcasecmp(text.c_str() + text.size() - length, suffix) == 0;
}

uint32 premultiplied(uint8 alpha, uint8 red, uint8 green, uint8 blue) {
    auto multiply = [alpha](uint8 value) { return uint32((value * alpha + 127) / 255); };
    return uint32(alpha) << 24 | multiply(red) << 16 | multiply(green) << 8 | multiply(blue);
}

// The pixel laid on the panel background, as opaque red, green, blue.
void flattened(uint32 pixel, uint8* red, uint8* green, uint8* blue) {
    uint32 alpha = pixel >> 24;
    uint32 rest = (255 - alpha) * kBackground;
    *red = uint8(std::min<uint32>(255, ((pixel >> 16) & 0xff) + (rest + 127) / 255));
    *green = uint8(std::min<uint32>(255, ((pixel >> 8) & 0xff) + (rest + 127) / 255));
    *blue = uint8(std::min<uint32>(255, (pixel & 0xff) + (rest + 127) / 255));
}

void unpremultiplied(uint32 pixel, uint8* bytes) {
    uint32 alpha = pixel >> 24;
    auto divide = [alpha](uint32 value) {
        return alpha == 0 ? 0 : uint8(std::min<uint32>(255, (value * 255 + alpha / 2) / alpha));
    };
    bytes[0] = divide(pixel & 0xff);
    bytes[1] = divide((pixel >> 8) & 0xff);
    bytes[2] = divide((pixel >> 16) & 0xff);
    bytes[3] = uint8(alpha);
}

void draw_generic(cairo_t* context, generic_icon kind, double size) {
    cairo_scale(context, size / 32.0, size / 32.0);
    cairo_set_line_width(context, 1.0);
    cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
    switch (kind) {
    case kGenericDocument:
        cairo_move_to(context, 7.5, 2.5);
        cairo_line_to(context, 19.5, 2.5);
        cairo_line_to(context, 25.5, 8.5);
        cairo_line_to(context, 25.5, 29.5);
        cairo_line_to(context, 7.5, 29.5);
        cairo_close_path(context);
        cairo_set_source_rgb(context, 1, 1, 1);
        cairo_fill_preserve(context);
        cairo_set_source_rgb(context, 0, 0, 0);
        cairo_stroke(context);
        cairo_move_to(context, 19.5, 2.5);
        cairo_line_to(context, 19.5, 8.5);
        cairo_line_to(context, 25.5, 8.5);
        cairo_stroke(context);
        break;
    case kGenericFolder:
        cairo_move_to(context, 2.5, 7.5);
        cairo_line_to(context, 11.5, 7.5);
        cairo_line_to(context, 13.5, 10.5);
        cairo_line_to(context, 29.5, 10.5);
        cairo_line_to(context, 29.5, 26.5);
        cairo_line_to(context, 2.5, 26.5);
        cairo_close_path(context);
        cairo_set_source_rgb(context, 1.0, 0.8, 0.4);
        cairo_fill_preserve(context);
        cairo_set_source_rgb(context, 0.6, 0.4, 0);
        cairo_stroke(context);
        break;
    case kGenericApplication:
        cairo_move_to(context, 16, 2.5);
        cairo_line_to(context, 29.5, 16);
        cairo_line_to(context, 16, 29.5);
        cairo_line_to(context, 2.5, 16);
        cairo_close_path(context);
        cairo_set_source_rgb(context, 0.4, 0.6, 0.8);
        cairo_fill_preserve(context);
        cairo_set_source_rgb(context, 0, 0, 0);
        cairo_stroke(context);
        break;
    case kGenericVolume:
        cairo_rectangle(context, 2.5, 9.5, 27, 13);
        cairo_set_source_rgb(context, 0.75, 0.75, 0.75);
        cairo_fill_preserve(context);
        cairo_set_source_rgb(context, 0.2, 0.2, 0.2);
        cairo_stroke(context);
        cairo_rectangle(context, 23, 17, 4, 3);
        cairo_set_source_rgb(context, 0, 0.8, 0);
        cairo_fill(context);
        break;
    }
}

} // namespace

const std::vector<uint8>& IconImage::Cmap8() const {
    std::call_once(fCmap8Once, [this] {
        PaletteIndexCache indices;
        fCmap8.resize(pixels.size());
        for (size_t i = 0; i < pixels.size(); i++) {
            uint32 pixel = pixels[i];
            if ((pixel >> 24) < kIconAlphaThreshold) {
                fCmap8[i] = B_TRANSPARENT_MAGIC_CMAP8;
                continue;
            }
            uint8 red, green, blue;
            flattened(pixel, &red, &green, &blue);
            fCmap8[i] = indices.IndexFor(red, green, blue);
        }
    });
    return fCmap8;
}

IconImageRef IconLoader::FromFile(const std::string& path, int32 size) {
    if (path.empty() || size <= 0 || size > kMaxRequestedSize)
        return nullptr;
    std::string key = "file:" + std::to_string(size) + ":" + path;
    bool found = false;
    IconImageRef image = cached(key, &found);
    if (found)
        return image;
    struct stat info;
    std::shared_ptr<IconImage> decoded;
    if (stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
        info.st_size <= kMaxIconFileSize) {
        if (has_suffix(path, ".svg") || has_suffix(path, ".svgz"))
            decoded = decode_svg(path, size);
        else
            decoded = decode_png(path, size);
    }
    return remember(key, decoded);
}

IconImageRef IconLoader::FromTheme(const std::vector<std::string>& names, int32 size) {
    if (names.empty() || size <= 0 || size > kMaxRequestedSize)
        return nullptr;
    std::string key = "theme:" + std::to_string(size);
    for (const std::string& name : names)
        key += ":" + name;
    bool found = false;
    IconImageRef image = cached(key, &found);
    if (found)
        return image;
    std::string path = IconTheme::Lookup(names, size);
    return remember(key, path.empty() ? nullptr : FromFile(path, size));
}

IconImageRef IconLoader::FromCmap8(const uint8* data, int32 edge, int32 size) {
    if (data == nullptr || edge <= 0 || edge > 256 || size <= 0 || size > kMaxRequestedSize)
        return nullptr;
    const rgb_color* palette = system_palette();
    auto image = std::make_shared<IconImage>();
    image->size = edge;
    image->pixels.resize(size_t(edge) * edge);
    for (size_t i = 0; i < image->pixels.size(); i++) {
        uint8 index = data[i];
        if (index == B_TRANSPARENT_MAGIC_CMAP8) {
            image->pixels[i] = 0;
            continue;
        }
        rgb_color color = palette[index];
        image->pixels[i] = premultiplied(255, color.red, color.green, color.blue);
    }
    if (edge == size)
        return image;
    SurfacePtr source(
        cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(image->pixels.data()),
                                            CAIRO_FORMAT_ARGB32, edge, edge, edge * 4));
    return image_from_surface(source.get(), size);
}

IconImageRef IconLoader::Generic(generic_icon kind, int32 size) {
    if (size <= 0 || size > kMaxRequestedSize)
        return nullptr;
    std::string key = "generic:" + std::to_string(int(kind)) + ":" + std::to_string(size);
    bool found = false;
    IconImageRef image = cached(key, &found);
    if (found)
        return image;
    SurfacePtr surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size, size));
    {
        ContextPtr context(cairo_create(surface.get()));
        draw_generic(context.get(), kind, size);
    }
    return remember(key, image_from_surface(surface.get(), size));
}

status_t IconLoader::CheckBitmap(const BBitmap* bitmap, int32 size) {
    if (bitmap == nullptr || !bitmap->IsValid() || bitmap->Bits() == nullptr)
        return B_BAD_VALUE;
    BRect bounds = bitmap->Bounds();
    if (bounds.IntegerWidth() + 1 != size || bounds.IntegerHeight() + 1 != size)
        return B_BAD_VALUE;
    return B_OK;
}

status_t IconLoader::CopyToBitmap(const IconImage& image, BBitmap* bitmap) {
    status_t status = CheckBitmap(bitmap, image.size);
    if (status != B_OK)
        return status;
    const int32 size = image.size;
    uint8* bits = static_cast<uint8*>(bitmap->Bits());
    const int32 bytesPerRow = bitmap->BytesPerRow();
    switch (bitmap->ColorSpace()) {
    case B_CMAP8: {
        const std::vector<uint8>& indices = image.Cmap8();
        for (int32 y = 0; y < size; y++)
            memcpy(bits + size_t(y) * bytesPerRow, &indices[size_t(y) * size], size_t(size));
        return B_OK;
    }
    case B_RGB32:
        for (int32 y = 0; y < size; y++) {
            uint8* row = bits + size_t(y) * bytesPerRow;
            for (int32 x = 0; x < size; x++) {
                uint32 pixel = image.pixels[size_t(y) * size + x];
                if ((pixel >> 24) < kIconAlphaThreshold) {
                    memcpy(row + x * 4, &B_TRANSPARENT_MAGIC_RGBA32, 4);
                    continue;
                }
                uint8 red, green, blue;
                flattened(pixel, &red, &green, &blue);
                row[x * 4] = blue;
                row[x * 4 + 1] = green;
                row[x * 4 + 2] = red;
                row[x * 4 + 3] = 255;
            }
        }
        return B_OK;
    case B_RGBA32:
        for (int32 y = 0; y < size; y++) {
            uint8* row = bits + size_t(y) * bytesPerRow;
            for (int32 x = 0; x < size; x++)
                unpremultiplied(image.pixels[size_t(y) * size + x], row + x * 4);
        }
        return B_OK;
    default: {
        // Any other space: hand the bitmap straight RGBA and let it convert.
        std::vector<uint8> rgba(size_t(size) * size * 4);
        for (size_t i = 0; i < image.pixels.size(); i++)
            unpremultiplied(image.pixels[i], &rgba[i * 4]);
        return bitmap->ImportBits(rgba.data(), int32(rgba.size()), size * 4, 0, B_RGBA32);
    }
    }
}

} // namespace BPrivate
