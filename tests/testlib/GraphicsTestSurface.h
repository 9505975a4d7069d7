// An in-memory ARGB32 surface for checking drawn pixels in tests.
#ifndef GLIMROW_TEST_GRAPHICS_SURFACE_H
#define GLIMROW_TEST_GRAPHICS_SURFACE_H

#include <GraphicsDefs.h>
#include <Rect.h>

#include <cairo.h>

#include <stdint.h>

namespace testing_support {

class GraphicsTestSurface {
public:
    GraphicsTestSurface(int width, int height, rgb_color background = {255, 255, 255, 255},
                        cairo_format_t format = CAIRO_FORMAT_ARGB32)
        : fSurface(cairo_image_surface_create(format, width, height)), fWidth(width),
          fHeight(height) {
        Fill(background);
    }
    ~GraphicsTestSurface() { cairo_surface_destroy(fSurface); }

    GraphicsTestSurface(const GraphicsTestSurface&) = delete;
    GraphicsTestSurface& operator=(const GraphicsTestSurface&) = delete;

    cairo_surface_t* Surface() const { return fSurface; }
    int Width() const { return fWidth; }
    int Height() const { return fHeight; }

    // Fills with a straight colour, stored premultiplied as cairo wants.
    void Fill(rgb_color color) {
        cairo_surface_flush(fSurface);
        uint32_t alpha = color.alpha;
        uint32_t value = (alpha << 24) | ((color.red * alpha + 127) / 255 << 16) |
                         ((color.green * alpha + 127) / 255 << 8) |
                         ((color.blue * alpha + 127) / 255);
        for (int y = 0; y < fHeight; y++) {
            for (int x = 0; x < fWidth; x++)
                Row(y)[x] = value;
        }
        cairo_surface_mark_dirty(fSurface);
    }

    // The raw premultiplied pixel.
    uint32_t Pixel(int x, int y) const {
        cairo_surface_flush(fSurface);
        return Row(y)[x];
    }

    // Colour and alpha as stored (premultiplied components).
    rgb_color Color(int x, int y) const {
        uint32_t pixel = Pixel(x, y);
        return rgb_color{(uint8)(pixel >> 16), (uint8)(pixel >> 8), (uint8)pixel,
                         (uint8)(pixel >> 24)};
    }

    // Opaque colour at a pixel (alpha forced to 255).
    rgb_color Rgb(int x, int y) const {
        rgb_color color = Color(x, y);
        color.alpha = 255;
        return color;
    }

    int CountPixels(rgb_color color) const {
        int count = 0;
        for (int y = 0; y < fHeight; y++) {
            for (int x = 0; x < fWidth; x++) {
                if (Rgb(x, y) == color)
                    count++;
            }
        }
        return count;
    }

    int CountPixelsNot(rgb_color color) const { return fWidth * fHeight - CountPixels(color); }

    // The smallest rectangle holding every pixel that differs from the colour;
    // invalid when there is none.
    BRect InkBounds(rgb_color background) const {
        BRect bounds;
        bool found = false;
        for (int y = 0; y < fHeight; y++) {
            for (int x = 0; x < fWidth; x++) {
                if (Rgb(x, y) == background)
                    continue;
                if (!found) {
                    bounds.Set(x, y, x, y);
                    found = true;
                    continue;
                }
                bounds.left = bounds.left < x ? bounds.left : x;
                bounds.top = bounds.top < y ? bounds.top : y;
                bounds.right = bounds.right > x ? bounds.right : x;
                bounds.bottom = bounds.bottom > y ? bounds.bottom : y;
            }
        }
        return bounds;
    }

private:
    uint32_t* Row(int y) const {
        return reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(fSurface) +
                                           y * cairo_image_surface_get_stride(fSurface));
    }

    cairo_surface_t* fSurface;
    int fWidth;
    int fHeight;
};

} // namespace testing_support

#endif // GLIMROW_TEST_GRAPHICS_SURFACE_H
