#include "server/x11/X11Presenter.h"

#include <X11/Xutil.h>
#include <X11/extensions/XShm.h>

#include <stdlib.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/shm.h>

#include <algorithm>

namespace BPrivate {

namespace {

// Windows up to this many pixels (a 256 x 256 square's worth) are sent
// without an image of their own.
const int64 kLargestDirectPut = 256 * 256;

// Attaching a segment fails with an X error (BadAccess) on a remote server;
// the trap turns that into an answer instead of a message.
bool sAttachFailed = false;

int note_attach_error(Display* display, XErrorEvent* error) {
    sAttachFailed = true;
    return 0;
}

} // namespace

struct X11Presenter::Private {
    XImage* image = NULL;
    XShmSegmentInfo segment;
    bool attached = false;
};

X11Presenter::X11Presenter(Display* display, Visual* visual, int depth, bool useSharedMemory)
    : fPrivate(new Private), fDisplay(display), fVisual(visual), fDepth(depth),
      fWantShared(useSharedMemory), fShared(false), fWidth(0), fHeight(0) {
    memset(&fPrivate->segment, 0, sizeof(fPrivate->segment));
    fPrivate->segment.shmid = -1;
}

X11Presenter::~X11Presenter() {
    _Release();
    delete fPrivate;
}

void X11Presenter::_Release() {
    if (fPrivate->attached) {
        XShmDetach(fDisplay, &fPrivate->segment);
        XSync(fDisplay, False);
        fPrivate->attached = false;
    }
    if (fPrivate->image != NULL) {
        // The pixels are ours (or the segment's), not Xlib's.
        if (!fShared)
            free(fPrivate->image->data);
        fPrivate->image->data = NULL;
        XDestroyImage(fPrivate->image);
        fPrivate->image = NULL;
    }
    if (fPrivate->segment.shmaddr != NULL && fPrivate->segment.shmaddr != (char*)-1)
        shmdt(fPrivate->segment.shmaddr);
    fPrivate->segment.shmaddr = NULL;
    fPrivate->segment.shmid = -1;
    fWidth = 0;
    fHeight = 0;
}

status_t X11Presenter::SetSize(int32 width, int32 height) {
    if (width <= 0 || height <= 0)
        return B_BAD_VALUE;
    if (width == fWidth && height == fHeight && fPrivate->image != NULL)
        return B_OK;
    _Release();
    fShared = false;

    if (fWantShared) {
        XImage* image = XShmCreateImage(fDisplay, fVisual, fDepth, ZPixmap, NULL,
                                        &fPrivate->segment, width, height);
        if (image != NULL && image->bits_per_pixel == 32) {
            int id = shmget(IPC_PRIVATE, (size_t)image->bytes_per_line * height, IPC_CREAT | 0600);
            if (id >= 0) {
                fPrivate->segment.shmid = id;
                fPrivate->segment.shmaddr = (char*)shmat(id, NULL, 0);
                fPrivate->segment.readOnly = True;
                if (fPrivate->segment.shmaddr != (char*)-1) {
                    image->data = fPrivate->segment.shmaddr;
                    sAttachFailed = false;
                    XErrorHandler previous = XSetErrorHandler(note_attach_error);
                    XShmAttach(fDisplay, &fPrivate->segment);
                    XSync(fDisplay, False);
                    XSetErrorHandler(previous);
                    fPrivate->attached = !sAttachFailed;
                }
                // Marked for removal now: it goes away once both sides detach,
                // even if this process dies.
                shmctl(id, IPC_RMID, NULL);
            }
            if (fPrivate->attached) {
                fPrivate->image = image;
                fShared = true;
                fWidth = width;
                fHeight = height;
                return B_OK;
            }
            if (fPrivate->segment.shmaddr != NULL && fPrivate->segment.shmaddr != (char*)-1)
                shmdt(fPrivate->segment.shmaddr);
            fPrivate->segment.shmaddr = NULL;
        }
        if (image != NULL) {
            image->data = NULL;
            XDestroyImage(image);
        }
        // Shared memory does not work with this server; don't try again.
        fWantShared = false;
    }

    char* data = (char*)calloc((size_t)width * height, 4);
    if (data == NULL)
        return B_NO_MEMORY;
    XImage* image =
        XCreateImage(fDisplay, fVisual, fDepth, ZPixmap, 0, data, width, height, 32, width * 4);
    if (image == NULL) {
        free(data);
        return B_NO_MEMORY;
    }
    fPrivate->image = image;
    fWidth = width;
    fHeight = height;
    return B_OK;
}

uint8* X11Presenter::Bits() const {
    return fPrivate->image != NULL ? (uint8*)fPrivate->image->data : NULL;
}

int32 X11Presenter::BytesPerRow() const {
    return fPrivate->image != NULL ? fPrivate->image->bytes_per_line : 0;
}

bool X11Presenter::WantsImage(int32 width, int32 height) {
    return (int64)width * height > kLargestDirectPut;
}

bool X11Presenter::ClipToImage(clipping_rect* rect, int32 width, int32 height) {
    rect->left = std::max<int32>(rect->left, 0);
    rect->top = std::max<int32>(rect->top, 0);
    rect->right = std::min<int32>(rect->right, width - 1);
    rect->bottom = std::min<int32>(rect->bottom, height - 1);
    return rect->left <= rect->right && rect->top <= rect->bottom;
}

void X11Presenter::PutFrom(Drawable drawable, GC context, const uint8* pixels, int32 bytesPerRow,
                           int32 width, int32 height, clipping_rect rect) {
    if (fPrivate->image != NULL)
        _Release();
    if (pixels == NULL || width <= 0 || height <= 0 || bytesPerRow < width * 4)
        return;
    if (!ClipToImage(&rect, width, height))
        return;
    // Xlib sends the pixels before XPutImage returns; it never keeps them.
    XImage* image = XCreateImage(fDisplay, fVisual, fDepth, ZPixmap, 0, (char*)pixels, width,
                                 height, 32, bytesPerRow);
    if (image == NULL)
        return;
    XPutImage(fDisplay, drawable, context, image, rect.left, rect.top, rect.left, rect.top,
              rect.right - rect.left + 1, rect.bottom - rect.top + 1);
    image->data = NULL;
    XDestroyImage(image);
}

void X11Presenter::Put(Drawable drawable, GC context, int32 x, int32 y, int32 width, int32 height) {
    if (fPrivate->image == NULL || width <= 0 || height <= 0)
        return;
    if (fShared) {
        XShmPutImage(fDisplay, drawable, context, fPrivate->image, x, y, x, y, width, height,
                     False);
    } else {
        XPutImage(fDisplay, drawable, context, fPrivate->image, x, y, x, y, width, height);
    }
}

} // namespace BPrivate
