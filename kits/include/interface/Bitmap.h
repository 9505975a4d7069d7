// BBitmap: an image in memory, in one of the Be colour spaces. Rows are padded
// to a multiple of four bytes. B_RGB32 and B_RGBA32 hold the bytes B, G, R, A of
// each pixel in memory (0xAARRGGBB as a little-endian uint32), not premultiplied.
#ifndef _BITMAP_H
#define _BITMAP_H

#include <GraphicsDefs.h>
#include <OS.h>
#include <Rect.h>

enum {
    B_BITMAP_CLEAR_TO_WHITE = 0x00000001,
    B_BITMAP_ACCEPTS_VIEWS = 0x00000002,
    B_BITMAP_IS_AREA = 0x00000004,
    B_BITMAP_IS_LOCKED = 0x00000008 | B_BITMAP_IS_AREA,
    B_BITMAP_IS_CONTIGUOUS = 0x00000010 | B_BITMAP_IS_LOCKED,
    B_BITMAP_IS_OFFSCREEN = 0x00000020,
    B_BITMAP_WILL_OVERLAY = 0x00000040 | B_BITMAP_IS_OFFSCREEN,
    B_BITMAP_RESERVE_OVERLAY = 0x00000080,
    B_BITMAP_NO_SERVER_LINK = 0x00000100
};

#define B_ANY_BYTES_PER_ROW -1

class BBitmap {
public:
    BBitmap(BRect bounds, uint32 flags, color_space colorSpace,
            int32 bytesPerRow = B_ANY_BYTES_PER_ROW, screen_id screenID = B_MAIN_SCREEN_ID);
    BBitmap(BRect bounds, color_space colorSpace, bool acceptsViews = false,
            bool needsContiguous = false);
    BBitmap(const BBitmap& source, uint32 flags);
    BBitmap(const BBitmap& source);
    BBitmap(const BBitmap* source, bool acceptsViews = false, bool needsContiguous = false);
    virtual ~BBitmap();

    BBitmap& operator=(const BBitmap& source);

    // B_OK, or why the bitmap could not be made (B_BAD_VALUE for bounds or a
    // colour space it cannot hold, B_NO_MEMORY).
    status_t InitCheck() const;
    bool IsValid() const;

    // Bitmaps live in ordinary memory: locking always succeeds, and there is no area.
    status_t LockBits(uint32* state = NULL);
    void UnlockBits();
    area_id Area() const;

    // NULL when the bitmap is not valid. The memory belongs to the bitmap.
    void* Bits() const;
    int32 BitsLength() const;
    int32 BytesPerRow() const;
    color_space ColorSpace() const;
    BRect Bounds() const;
    uint32 Flags() const;

    // Copies length bytes of pixels in colorSpace into the bitmap, starting at
    // byte offset of its data and converting as needed. The source rows are as
    // wide as the bitmap (a B_CMAP8 source into another space is read unpadded).
    void SetBits(const void* data, int32 length, int32 offset, color_space colorSpace);

    // Like SetBits, with the source's bytes per row given (B_ANY_BYTES_PER_ROW:
    // padded as in a bitmap). Returns B_BAD_VALUE for bad arguments or a colour
    // space that cannot be converted, B_NO_INIT for an invalid bitmap.
    status_t ImportBits(const void* data, int32 length, int32 bpr, int32 offset,
                        color_space colorSpace);
    // Copies the width x height pixels at from in the source to to in the
    // bitmap, clipped to both.
    status_t ImportBits(const void* data, int32 length, int32 bpr, color_space colorSpace,
                        BPoint from, BPoint to, int32 width, int32 height);
    // The other bitmap must have the same size.
    status_t ImportBits(const BBitmap* bitmap);
    status_t ImportBits(const BBitmap* bitmap, BPoint from, BPoint to, int32 width, int32 height);

private:
    void _InitObject(BRect bounds, color_space colorSpace, uint32 flags, int32 bytesPerRow);
    void _CopyFrom(const BBitmap& source, uint32 flags);

    struct Private;
    Private* fPrivate;
};

#endif // _BITMAP_H
