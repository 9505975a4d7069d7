// The pixels of one window on its way to the X server: an image of the window's
// size in shared memory (MIT-SHM) when the server is on this machine, else an
// ordinary XImage sent over the connection. Small windows (the bar, most menus)
// skip the image and are sent straight from the caller's pixels: a segment as
// large as the window, kept for its whole life, costs more than sending a few
// hundred kilobytes over the connection now and then. Used only on the server's
// thread.
#ifndef _SERVER_X11_PRESENTER_H
#define _SERVER_X11_PRESENTER_H

#include <Region.h>
#include <SupportDefs.h>

#include <X11/Xlib.h>

namespace BPrivate {

class X11Presenter {
public:
    X11Presenter(Display* display, Visual* visual, int depth, bool useSharedMemory);
    ~X11Presenter();

    // Makes the image width x height; keeps it when it already is.
    status_t SetSize(int32 width, int32 height);
    int32 Width() const { return fWidth; }
    int32 Height() const { return fHeight; }

    // The image's pixels: 32 bits each, in the layout of a cairo ARGB32 surface.
    uint8* Bits() const;
    int32 BytesPerRow() const;

    // Sends a rectangle of the image to the drawable. With shared memory the
    // image must not change until the server has read it: the caller syncs with
    // the server before it writes the pixels again.
    void Put(Drawable drawable, GC context, int32 x, int32 y, int32 width, int32 height);

    bool UsesSharedMemory() const { return fShared; }

    // Whether a window of this size is worth an image of its own.
    static bool WantsImage(int32 width, int32 height);
    // Cuts the rectangle to an image of width x height; false when nothing is left.
    static bool ClipToImage(clipping_rect* rect, int32 width, int32 height);
    // Sends a rectangle straight from pixels that stay the caller's (32 bits
    // each, in the layout of a cairo ARGB32 surface of width x height); they
    // may change as soon as this returns. Frees the image if there was one.
    void PutFrom(Drawable drawable, GC context, const uint8* pixels, int32 bytesPerRow, int32 width,
                 int32 height, clipping_rect rect);

private:
    void _Release();

    struct Private;
    Private* fPrivate;
    Display* fDisplay;
    Visual* fVisual;
    int fDepth;
    bool fWantShared;
    bool fShared;
    int32 fWidth;
    int32 fHeight;
};

} // namespace BPrivate

#endif // _SERVER_X11_PRESENTER_H
