// BWindow drawing: the back buffer, invalidation, the update pass and handing
// what was drawn to the display server.
//
// Invalidate() only adds to the window's dirty region and posts one _UPDATE_
// message if none waits, so any number of invalidations in one turn of the loop
// give one update pass. The pass erases every dirty view with its view colour and
// calls Draw() from the back to the front, then presents the region. Drawing
// outside a pass is presented when the message being handled is done, or on
// Flush(). Transactions and DisableUpdates() hold both back until they end.
#include <Window.h>

#include "interface/ViewData.h"
#include "interface/WindowData.h"
#include "interface/WindowPrivate.h"

#include <Autolock.h>
#include <OS.h>
#include <View.h>

using BPrivate::CairoSurfacePointer;

void BWindow::_CreateBackBuffer() {
    Private* data = fPrivate;
    CairoSurfacePointer buffer = BPrivate::make_buffer(Bounds());
    cairo_t* cairo = cairo_create(buffer.get());
    cairo_set_operator(cairo, CAIRO_OPERATOR_SOURCE);
    if (data->backBuffer != NULL) {
        // Keep what was drawn; new parts start white until they are drawn.
        cairo_set_source_rgb(cairo, 1, 1, 1);
        cairo_paint(cairo);
        cairo_set_source_surface(cairo, data->backBuffer.get(), 0, 0);
    } else {
        cairo_set_source_rgb(cairo, 1, 1, 1);
    }
    cairo_paint(cairo);
    cairo_destroy(cairo);

    data->painter.reset();
    data->backBuffer = std::move(buffer);
    data->painter = std::make_unique<BPrivate::Painter>(data->backBuffer.get());
    data->painterView = NULL;
}

void BWindow::_Resized(float width, float height) {
    Private* data = fPrivate;
    BRect oldBounds = Bounds();
    data->frame.right = data->frame.left + width;
    data->frame.bottom = data->frame.top + height;
    _CreateBackBuffer();
    data->geometrySerial++;

    BRegion exposed(Bounds());
    exposed.Exclude(oldBounds);
    _Invalidate(exposed);
    BRegion bounds(Bounds());
    data->dirty.IntersectWith(&bounds);
    data->presentPending.IntersectWith(&bounds);

    data->topView->_ParentResized(width - oldBounds.Width(), height - oldBounds.Height());
}

void BWindow::_Invalidate(const BRegion& region) {
    Private* data = fPrivate;
    BRegion clipped(region);
    BRegion bounds(Bounds());
    clipped.IntersectWith(&bounds);
    if (clipped.CountRects() == 0)
        return;
    data->dirty.Include(&clipped);
    if (!data->updatePosted && data->transactionLevel == 0 && data->disabledUpdatesLevel == 0) {
        data->updatePosted = true;
        PostMessage(_UPDATE_);
    }
}

void BWindow::_Erase(const BRegion& region, rgb_color color) {
    cairo_t* cairo = cairo_create(fPrivate->backBuffer.get());
    cairo_set_operator(cairo, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_rgb(cairo, color.red / 255.0, color.green / 255.0, color.blue / 255.0);
    int32 count = region.CountRects();
    for (int32 index = 0; index < count; index++) {
        clipping_rect rect = region.RectAtInt(index);
        cairo_rectangle(cairo, rect.left, rect.top, rect.right - rect.left + 1,
                        rect.bottom - rect.top + 1);
    }
    cairo_fill(cairo);
    cairo_destroy(cairo);
}

void BWindow::_UpdatePass() {
    Private* data = fPrivate;
    if (data->transactionLevel > 0 || data->disabledUpdatesLevel > 0 || data->inUpdate)
        return;
    if (data->dirty.CountRects() > 0) {
        BRegion region(data->dirty);
        data->dirty.MakeEmpty();
        data->inUpdate = true;
        data->updateRegion = region;
        data->updateSerial++;
        data->topView->_Draw(region);
        data->inUpdate = false;
        data->updateSerial++;
        data->updatePasses++;
        data->presentPending.Include(&region);
    }
    _Flush();
}

void BWindow::_Flush() {
    Private* data = fPrivate;
    if (data->transactionLevel > 0 || data->disabledUpdatesLevel > 0 ||
        data->presentPending.CountRects() == 0)
        return;
    // The screen gets the window's new frame before the pixels drawn for it.
    BPrivate::WindowPrivate::ReleaseFrameChanges(this);
    if (data->server != NULL)
        data->server->Present(data->serverToken, data->backBuffer.get(), data->presentPending);
    data->presentPending.MakeEmpty();
    data->presentSerial++;
}

void BWindow::Flush() const {
    BWindow* self = const_cast<BWindow*>(this);
    BAutolock lock(self);
    self->_Flush();
}

void BWindow::Sync() const {
    Flush();
    if (fPrivate->server != NULL)
        fPrivate->server->Sync();
}

bool BWindow::NeedsUpdate() const {
    return fPrivate->dirty.CountRects() > 0;
}

void BWindow::UpdateIfNeeded() {
    // Only the window's own thread draws.
    if (find_thread(NULL) != Thread())
        return;
    BAutolock lock(this);
    if (fPrivate->dirty.CountRects() > 0)
        _UpdatePass();
}

void BWindow::DisableUpdates() {
    BAutolock lock(this);
    fPrivate->disabledUpdatesLevel++;
}

void BWindow::EnableUpdates() {
    BAutolock lock(this);
    if (fPrivate->disabledUpdatesLevel == 0)
        return;
    fPrivate->disabledUpdatesLevel--;
    _UpdatesReleased();
}

void BWindow::BeginViewTransaction() {
    BAutolock lock(this);
    fPrivate->transactionLevel++;
}

void BWindow::EndViewTransaction() {
    BAutolock lock(this);
    if (fPrivate->transactionLevel == 0)
        return;
    fPrivate->transactionLevel--;
    _UpdatesReleased();
}

bool BWindow::InViewTransaction() const {
    return fPrivate->transactionLevel > 0;
}

void BWindow::_UpdatesReleased() {
    Private* data = fPrivate;
    if (data->transactionLevel > 0 || data->disabledUpdatesLevel > 0)
        return;
    // The window's own thread draws at once; another thread leaves it to the
    // next turn of the window's loop.
    if (find_thread(NULL) == Thread()) {
        _UpdatePass();
        return;
    }
    if (data->dirty.CountRects() > 0 && !data->updatePosted) {
        data->updatePosted = true;
        PostMessage(_UPDATE_);
    }
    _Flush();
}
