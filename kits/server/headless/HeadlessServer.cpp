#include "server/headless/HeadlessServer.h"

#include "server/headless/HeadlessKeymap.h"

#include <OS.h>

#include <algorithm>
#include <math.h>

namespace BPrivate {

HeadlessServer::HeadlessServer() {}

HeadlessServer::~HeadlessServer() {}

void HeadlessServer::_Run(std::function<void()> job) {
    _Enqueue(std::move(job));
    Sync();
}

void HeadlessServer::InjectMouseMove(BPoint where) {
    bigtime_t when = system_time();
    _Run([this, where, when] { _HandleMouseMoved(where, when); });
}

void HeadlessServer::InjectMouseDown(BPoint where, uint32 button, int32 clicks) {
    bigtime_t when = system_time();
    _Run([this, where, button, clicks, when] {
        // A press somewhere else first moves the pointer there, as a real
        // pointer would.
        BPoint pointer;
        GetPointer(&pointer, NULL);
        if (pointer != where)
            _HandleMouseMoved(where, when);
        _HandleMouseDown(where, button, clicks, when);
    });
}

void HeadlessServer::InjectMouseUp(BPoint where, uint32 button) {
    bigtime_t when = system_time();
    _Run([this, where, button, when] {
        BPoint pointer;
        GetPointer(&pointer, NULL);
        if (pointer != where)
            _HandleMouseMoved(where, when);
        _HandleMouseUp(where, button, when);
    });
}

void HeadlessServer::InjectWheel(float deltaX, float deltaY) {
    bigtime_t when = system_time();
    _Run([this, deltaX, deltaY, when] { _HandleWheel(deltaX, deltaY, when); });
}

void HeadlessServer::InjectKey(bool down, int32 key, const char* bytes) {
    bigtime_t when = system_time();
    std::string given = bytes != NULL ? bytes : "";
    bool derive = bytes == NULL;
    _Run([this, down, key, given, derive, when] {
        char mapped[8];
        int32 rawChar = -1;
        bool known = HeadlessKeymap::Map(key, Modifiers(), mapped, &rawChar);
        const char* text = given.c_str();
        if (derive)
            text = known ? mapped : NULL;
        else if (rawChar < 0 && !given.empty())
            rawChar = (uint8)given[0];
        _HandleKey(down, key, text, rawChar, when);
    });
}

void HeadlessServer::InjectModifiers(uint32 modifiers) {
    bigtime_t when = system_time();
    _Run([this, modifiers, when] { _HandleModifiersChanged(modifiers, when); });
}

void HeadlessServer::SetScreenSize(int32 width, int32 height) {
    width = std::max<int32>(1, std::min<int32>(width, kMaxBufferExtent));
    height = std::max<int32>(1, std::min<int32>(height, kMaxBufferExtent));
    BRect frame(0, 0, width - 1, height - 1);
    _Run([this, frame] { _SetScreenFrame(frame); });
}

status_t HeadlessServer::Reset() {
    {
        std::lock_guard<std::mutex> lock(fLock);
        if (!fWindows.empty())
            return B_BUSY;
    }
    _Run([this] { _ResetState(); });
    return B_OK;
}

uint32 HeadlessServer::CountBeeps() {
    std::lock_guard<std::mutex> lock(fLock);
    return fBeepCount;
}

CairoSurfacePointer HeadlessServer::CaptureScreen() {
    std::lock_guard<std::mutex> lock(fLock);
    CairoSurfacePointer screen = make_buffer(fScreenFrame);
    cairo_t* cairo = cairo_create(screen.get());
    // The desktop colour.
    cairo_set_source_rgb(cairo, 51 / 255.0, 102 / 255.0, 152 / 255.0);
    cairo_paint(cairo);
    for (ServerWindow* window : _StackBackToFront()) {
        if (!_IsVisible(window))
            continue;
        cairo_set_source_surface(cairo, window->frontBuffer.get(),
                                 floorf(window->frame.left - fScreenFrame.left + 0.5f),
                                 floorf(window->frame.top - fScreenFrame.top + 0.5f));
        cairo_paint(cairo);
    }
    cairo_destroy(cairo);
    cairo_surface_flush(screen.get());
    return screen;
}

CairoSurfacePointer HeadlessServer::CaptureWindow(int32 id) {
    std::lock_guard<std::mutex> lock(fLock);
    ServerWindow* window = _Find(id);
    if (window == NULL)
        return CairoSurfacePointer();
    cairo_surface_t* source = window->frontBuffer.get();
    CairoSurfacePointer copy(cairo_image_surface_create(CAIRO_FORMAT_ARGB32,
                                                        cairo_image_surface_get_width(source),
                                                        cairo_image_surface_get_height(source)));
    cairo_t* cairo = cairo_create(copy.get());
    cairo_set_operator(cairo, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(cairo, source, 0, 0);
    cairo_paint(cairo);
    cairo_destroy(cairo);
    cairo_surface_flush(copy.get());
    return copy;
}

} // namespace BPrivate
