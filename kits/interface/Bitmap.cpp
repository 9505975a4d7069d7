// Bitmaps are plain memory here: there is no server-side copy to keep in step,
// so Bits() is the image itself and views that draw into a bitmap draw straight
// into this memory. Conversions between colour spaces go through straight
// rgb_color pixels (ColorConversion.h).
#include <Bitmap.h>

#include "ColorConversion.h"
#include "SystemPalette.h"

#include <math.h>
#include <string.h>

#include <algorithm>
#include <memory>
#include <new>

namespace {

// Big enough for any screen-sized image, small enough that the byte count of a
// bitmap always fits in an int32.
const int32 kMaximumSide = 32768;
const int64 kMaximumBytes = 1 << 30;

// Pixels are converted through a small buffer so that a row never needs a heap
// allocation.
const int32 kChunkPixels = 256;

bool is_finite_rect(const BRect& rect) {
    return isfinite(rect.left) && isfinite(rect.top) && isfinite(rect.right) &&
           isfinite(rect.bottom);
}

void convert_run(const uint8* sourceRow, int32 sourceX, color_space sourceSpace, uint8* targetRow,
                 int32 targetX, color_space targetSpace, int32 count,
                 BPrivate::PaletteIndexCache& cache) {
    if (sourceSpace == targetSpace) {
        int32 bytes = BPrivate::bits_per_pixel(sourceSpace) / 8;
        memcpy(targetRow + (int64)targetX * bytes, sourceRow + (int64)sourceX * bytes,
               (size_t)count * bytes);
        return;
    }

    rgb_color pixels[kChunkPixels];
    while (count > 0) {
        int32 chunk = std::min(count, kChunkPixels);
        BPrivate::read_pixels(sourceRow, sourceX, chunk, sourceSpace, pixels);
        BPrivate::write_pixels(targetRow, targetX, chunk, targetSpace, pixels, cache);
        sourceX += chunk;
        targetX += chunk;
        count -= chunk;
    }
}

} // namespace

struct BBitmap::Private {
    status_t initStatus = B_NO_INIT;
    BRect bounds;
    color_space colorSpace = B_NO_COLOR_SPACE;
    uint32 flags = 0;
    int32 width = 0;
    int32 height = 0;
    int32 bytesPerRow = 0;
    int32 bitsLength = 0;
    std::unique_ptr<uint8[]> bits;
};

BBitmap::BBitmap(BRect bounds, uint32 flags, color_space colorSpace, int32 bytesPerRow,
                 screen_id screenID)
    : fPrivate(new Private) {
    _InitObject(bounds, colorSpace, flags, bytesPerRow);
}

BBitmap::BBitmap(BRect bounds, color_space colorSpace, bool acceptsViews, bool needsContiguous)
    : fPrivate(new Private) {
    uint32 flags = (acceptsViews ? B_BITMAP_ACCEPTS_VIEWS : 0) |
                   (needsContiguous ? B_BITMAP_IS_CONTIGUOUS : 0);
    _InitObject(bounds, colorSpace, flags, B_ANY_BYTES_PER_ROW);
}

BBitmap::BBitmap(const BBitmap& source, uint32 flags) : fPrivate(new Private) {
    _CopyFrom(source, flags);
}

BBitmap::BBitmap(const BBitmap& source) : fPrivate(new Private) {
    _CopyFrom(source, source.Flags());
}

BBitmap::BBitmap(const BBitmap* source, bool acceptsViews, bool needsContiguous)
    : fPrivate(new Private) {
    if (source == NULL) {
        fPrivate->initStatus = B_BAD_VALUE;
        return;
    }
    uint32 flags = (acceptsViews ? B_BITMAP_ACCEPTS_VIEWS : 0) |
                   (needsContiguous ? B_BITMAP_IS_CONTIGUOUS : 0);
    _CopyFrom(*source, flags);
}

BBitmap::~BBitmap() {
    delete fPrivate;
}

BBitmap& BBitmap::operator=(const BBitmap& source) {
    if (this != &source) {
        Private* fresh = new Private;
        delete fPrivate;
        fPrivate = fresh;
        _CopyFrom(source, source.Flags());
    }
    return *this;
}

status_t BBitmap::InitCheck() const {
    return fPrivate->initStatus;
}

bool BBitmap::IsValid() const {
    return fPrivate->initStatus == B_OK;
}

status_t BBitmap::LockBits(uint32* state) {
    return IsValid() ? B_OK : B_NO_INIT;
}

void BBitmap::UnlockBits() {}

area_id BBitmap::Area() const {
    return B_ERROR;
}

void* BBitmap::Bits() const {
    return IsValid() ? fPrivate->bits.get() : NULL;
}

int32 BBitmap::BitsLength() const {
    return IsValid() ? fPrivate->bitsLength : 0;
}

int32 BBitmap::BytesPerRow() const {
    return IsValid() ? fPrivate->bytesPerRow : 0;
}

color_space BBitmap::ColorSpace() const {
    return IsValid() ? fPrivate->colorSpace : B_NO_COLOR_SPACE;
}

BRect BBitmap::Bounds() const {
    return IsValid() ? fPrivate->bounds : BRect();
}

uint32 BBitmap::Flags() const {
    return fPrivate->flags;
}

void BBitmap::SetBits(const void* data, int32 length, int32 offset, color_space colorSpace) {
    // Palette data for a bitmap of another space comes without row padding.
    int32 bytesPerRow = B_ANY_BYTES_PER_ROW;
    if (colorSpace == B_CMAP8 && fPrivate->colorSpace != B_CMAP8)
        bytesPerRow = fPrivate->width;
    ImportBits(data, length, bytesPerRow, offset, colorSpace);
}

status_t BBitmap::ImportBits(const void* data, int32 length, int32 bpr, int32 offset,
                             color_space colorSpace) {
    if (!IsValid())
        return B_NO_INIT;
    Private& bitmap = *fPrivate;
    if (data == NULL || length < 0 || offset < 0 || offset > bitmap.bitsLength)
        return B_BAD_VALUE;
    if (!BPrivate::is_supported_color_space(colorSpace))
        return B_BAD_VALUE;

    int32 sourcePixelBytes = BPrivate::bits_per_pixel(colorSpace) / 8;
    int32 targetPixelBytes = BPrivate::bits_per_pixel(bitmap.colorSpace) / 8;
    if (bpr < 0)
        bpr = BPrivate::bytes_per_row_for(colorSpace, bitmap.width);
    if (bpr < (int64)bitmap.width * sourcePixelBytes)
        return B_BAD_VALUE;

    // The source is a stream of rows as wide as the bitmap; its pixels go to the
    // bitmap's pixels one after the other from the offset on, across row ends.
    int64 targetPixel =
        (int64)(offset / bitmap.bytesPerRow) * bitmap.width +
        std::min<int64>((offset % bitmap.bytesPerRow) / targetPixelBytes, bitmap.width);
    const int64 targetEnd = (int64)bitmap.width * bitmap.height;
    const uint8* source = static_cast<const uint8*>(data);
    BPrivate::PaletteIndexCache cache;

    for (int64 sourceY = 0; targetPixel < targetEnd; sourceY++) {
        int64 rowStart = sourceY * bpr;
        if (rowStart >= length)
            break;
        int32 sourceCount =
            (int32)std::min<int64>(bitmap.width, (length - rowStart) / sourcePixelBytes);
        int32 sourceX = 0;
        while (sourceX < sourceCount && targetPixel < targetEnd) {
            int32 targetY = (int32)(targetPixel / bitmap.width);
            int32 targetX = (int32)(targetPixel % bitmap.width);
            int32 count = std::min(sourceCount - sourceX, bitmap.width - targetX);
            convert_run(source + rowStart, sourceX, colorSpace,
                        bitmap.bits.get() + (int64)targetY * bitmap.bytesPerRow, targetX,
                        bitmap.colorSpace, count, cache);
            sourceX += count;
            targetPixel += count;
        }
        if (sourceCount < bitmap.width)
            break;
    }
    return B_OK;
}

status_t BBitmap::ImportBits(const void* data, int32 length, int32 bpr, color_space colorSpace,
                             BPoint from, BPoint to, int32 width, int32 height) {
    if (!IsValid())
        return B_NO_INIT;
    Private& bitmap = *fPrivate;
    if (data == NULL || length < 0 || width < 0 || height < 0)
        return B_BAD_VALUE;
    if (!BPrivate::is_supported_color_space(colorSpace))
        return B_BAD_VALUE;
    if (!isfinite(from.x) || !isfinite(from.y) || !isfinite(to.x) || !isfinite(to.y))
        return B_BAD_VALUE;

    int32 sourcePixelBytes = BPrivate::bits_per_pixel(colorSpace) / 8;
    if (bpr < 0)
        bpr = BPrivate::bytes_per_row_for(colorSpace, width + (int32)std::max(0.0f, from.x));
    if (bpr <= 0)
        return B_BAD_VALUE;

    int64 sourceX = (int64)floorf(from.x);
    int64 sourceY = (int64)floorf(from.y);
    int64 targetX = (int64)floorf(to.x);
    int64 targetY = (int64)floorf(to.y);
    if (sourceX < 0 || sourceY < 0)
        return B_BAD_VALUE;

    // Clip to the bitmap; what falls outside is skipped in the source too.
    int64 columns = width;
    int64 rows = height;
    if (targetX < 0) {
        columns += targetX;
        sourceX -= targetX;
        targetX = 0;
    }
    if (targetY < 0) {
        rows += targetY;
        sourceY -= targetY;
        targetY = 0;
    }
    columns = std::min<int64>(columns, bitmap.width - targetX);
    rows = std::min<int64>(rows, bitmap.height - targetY);
    // And to the source rows.
    columns = std::min<int64>(columns, bpr / sourcePixelBytes - sourceX);
    if (columns <= 0 || rows <= 0)
        return B_OK;

    const uint8* source = static_cast<const uint8*>(data);
    BPrivate::PaletteIndexCache cache;
    for (int64 row = 0; row < rows; row++) {
        int64 rowStart = (sourceY + row) * bpr;
        if (rowStart + (sourceX + columns) * sourcePixelBytes > length)
            break;
        convert_run(source + rowStart, (int32)sourceX, colorSpace,
                    bitmap.bits.get() + (targetY + row) * bitmap.bytesPerRow, (int32)targetX,
                    bitmap.colorSpace, (int32)columns, cache);
    }
    return B_OK;
}

status_t BBitmap::ImportBits(const BBitmap* source) {
    if (!IsValid())
        return B_NO_INIT;
    if (source == NULL || !source->IsValid())
        return B_BAD_VALUE;
    if (source->fPrivate->width != fPrivate->width || source->fPrivate->height != fPrivate->height)
        return B_BAD_VALUE;
    return ImportBits(source, B_ORIGIN, B_ORIGIN, fPrivate->width, fPrivate->height);
}

status_t BBitmap::ImportBits(const BBitmap* source, BPoint from, BPoint to, int32 width,
                             int32 height) {
    if (!IsValid())
        return B_NO_INIT;
    if (source == NULL || !source->IsValid())
        return B_BAD_VALUE;
    // Stay inside the source's own rows.
    if (isfinite(from.x) && isfinite(from.y) && width >= 0 && height >= 0) {
        int64 columns = source->fPrivate->width - (int64)floorf(from.x);
        int64 rows = source->fPrivate->height - (int64)floorf(from.y);
        width = (int32)std::clamp<int64>(columns, 0, width);
        height = (int32)std::clamp<int64>(rows, 0, height);
    }
    return ImportBits(source->Bits(), source->BitsLength(), source->BytesPerRow(),
                      source->ColorSpace(), from, to, width, height);
}

// #pragma mark - Private

void BBitmap::_InitObject(BRect bounds, color_space colorSpace, uint32 flags, int32 bytesPerRow) {
    Private& bitmap = *fPrivate;
    bitmap.flags = flags;
    if (!is_finite_rect(bounds) || !bounds.IsValid() ||
        !BPrivate::is_supported_color_space(colorSpace)) {
        bitmap.initStatus = B_BAD_VALUE;
        return;
    }

    int64 width = (int64)ceilf(bounds.right - bounds.left) + 1;
    int64 height = (int64)ceilf(bounds.bottom - bounds.top) + 1;
    if (width > kMaximumSide || height > kMaximumSide) {
        bitmap.initStatus = B_BAD_VALUE;
        return;
    }

    int32 minimumBytesPerRow = BPrivate::bytes_per_row_for(colorSpace, (int32)width);
    if (bytesPerRow == B_ANY_BYTES_PER_ROW)
        bytesPerRow = minimumBytesPerRow;
    else if (bytesPerRow < (int64)width * BPrivate::bits_per_pixel(colorSpace) / 8) {
        bitmap.initStatus = B_BAD_VALUE;
        return;
    }
    if ((int64)bytesPerRow * height > kMaximumBytes) {
        bitmap.initStatus = B_NO_MEMORY;
        return;
    }

    bitmap.bitsLength = (int32)(bytesPerRow * height);
    bitmap.bits.reset(new (std::nothrow) uint8[bitmap.bitsLength]());
    if (bitmap.bits == NULL) {
        bitmap.initStatus = B_NO_MEMORY;
        return;
    }

    bitmap.bounds = bounds;
    bitmap.colorSpace = colorSpace;
    bitmap.width = (int32)width;
    bitmap.height = (int32)height;
    bitmap.bytesPerRow = bytesPerRow;
    bitmap.initStatus = B_OK;

    if ((flags & B_BITMAP_CLEAR_TO_WHITE) != 0) {
        // White is palette index 63, not 255 (which is the transparent entry).
        uint8 white = colorSpace == B_CMAP8 ? 63 : 0xff;
        memset(bitmap.bits.get(), white, bitmap.bitsLength);
    }
}

void BBitmap::_CopyFrom(const BBitmap& source, uint32 flags) {
    if (!source.IsValid()) {
        fPrivate->initStatus = B_BAD_VALUE;
        return;
    }
    _InitObject(source.fPrivate->bounds, source.fPrivate->colorSpace,
                flags & ~B_BITMAP_CLEAR_TO_WHITE, source.fPrivate->bytesPerRow);
    if (IsValid())
        memcpy(fPrivate->bits.get(), source.fPrivate->bits.get(), fPrivate->bitsLength);
}
