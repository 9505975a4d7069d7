#include "server/headless/HeadlessTestApi.h"

#include "interface/WindowPrivate.h"
#include "server/headless/HeadlessServer.h"

#include <string.h>

namespace BPrivate {

// #pragma mark - Capture

Capture::Capture() : fWidth(0), fHeight(0) {}

void Capture::SetTo(cairo_surface_t* surface) {
    fWidth = 0;
    fHeight = 0;
    fPixels.clear();
    if (surface == NULL || cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS ||
        cairo_image_surface_get_format(surface) != CAIRO_FORMAT_ARGB32)
        return;
    cairo_surface_flush(surface);
    fWidth = cairo_image_surface_get_width(surface);
    fHeight = cairo_image_surface_get_height(surface);
    int stride = cairo_image_surface_get_stride(surface);
    const uint8* data = cairo_image_surface_get_data(surface);
    fPixels.resize((size_t)fWidth * fHeight);
    for (int32 y = 0; y < fHeight; y++) {
        const uint32* row = (const uint32*)(data + (size_t)y * stride);
        for (int32 x = 0; x < fWidth; x++) {
            uint32 pixel = row[x];
            uint32 alpha = pixel >> 24;
            if (alpha != 0 && alpha != 255) {
                // Cairo keeps colours multiplied by their alpha.
                uint32 red = ((pixel >> 16) & 0xff) * 255 / alpha;
                uint32 green = ((pixel >> 8) & 0xff) * 255 / alpha;
                uint32 blue = (pixel & 0xff) * 255 / alpha;
                pixel = (alpha << 24) | (red << 16) | (green << 8) | blue;
            }
            fPixels[(size_t)y * fWidth + x] = pixel;
        }
    }
}

uint32 Capture::PixelAt(int32 x, int32 y) const {
    if (x < 0 || y < 0 || x >= fWidth || y >= fHeight)
        return 0;
    return fPixels[(size_t)y * fWidth + x];
}

rgb_color Capture::ColorAt(int32 x, int32 y) const {
    uint32 pixel = PixelAt(x, y);
    return make_color((pixel >> 16) & 0xff, (pixel >> 8) & 0xff, pixel & 0xff, pixel >> 24);
}

int32 Capture::CountPixels(rgb_color color) const {
    uint32 wanted = ((uint32)color.alpha << 24) | ((uint32)color.red << 16) |
                    ((uint32)color.green << 8) | color.blue;
    int32 count = 0;
    for (uint32 pixel : fPixels) {
        if (pixel == wanted)
            count++;
    }
    return count;
}

BRect Capture::BoundsOf(rgb_color color) const {
    uint32 wanted = ((uint32)color.alpha << 24) | ((uint32)color.red << 16) |
                    ((uint32)color.green << 8) | color.blue;
    BRect bounds;
    for (int32 y = 0; y < fHeight; y++) {
        for (int32 x = 0; x < fWidth; x++) {
            if (fPixels[(size_t)y * fWidth + x] != wanted)
                continue;
            if (!bounds.IsValid())
                bounds.Set(x, y, x, y);
            else
                bounds = bounds | BRect(x, y, x, y);
        }
    }
    return bounds;
}

status_t Capture::WritePNG(const char* path) const {
    if (path == NULL || !IsValid())
        return B_BAD_VALUE;
    CairoSurfacePointer surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, fWidth, fHeight));
    cairo_surface_flush(surface.get());
    uint8* data = cairo_image_surface_get_data(surface.get());
    int stride = cairo_image_surface_get_stride(surface.get());
    for (int32 y = 0; y < fHeight; y++) {
        uint32* row = (uint32*)(data + (size_t)y * stride);
        for (int32 x = 0; x < fWidth; x++) {
            uint32 pixel = fPixels[(size_t)y * fWidth + x];
            uint32 alpha = pixel >> 24;
            uint32 red = ((pixel >> 16) & 0xff) * alpha / 255;
            uint32 green = ((pixel >> 8) & 0xff) * alpha / 255;
            uint32 blue = (pixel & 0xff) * alpha / 255;
            row[x] = (alpha << 24) | (red << 16) | (green << 8) | blue;
        }
    }
    cairo_surface_mark_dirty(surface.get());
    cairo_status_t status = cairo_surface_write_to_png(surface.get(), path);
    return status == CAIRO_STATUS_SUCCESS ? B_OK : B_IO_ERROR;
}

// #pragma mark - Test API

HeadlessServer* HeadlessTestApi::_Server() {
    if (DisplayServer::UseHeadless() != B_OK)
        return NULL;
    DisplayServer* server = DisplayServer::Default();
    if (server == NULL || strcmp(server->BackendName(), "headless") != 0)
        return NULL;
    return static_cast<HeadlessServer*>(server);
}

status_t HeadlessTestApi::Use() {
    return _Server() != NULL ? B_OK : B_NOT_ALLOWED;
}

status_t HeadlessTestApi::Reset() {
    HeadlessServer* server = _Server();
    if (server == NULL)
        return B_NO_INIT;
    return server->Reset();
}

status_t HeadlessTestApi::MoveMouse(BPoint where) {
    HeadlessServer* server = _Server();
    if (server == NULL)
        return B_NO_INIT;
    server->InjectMouseMove(where);
    return B_OK;
}

status_t HeadlessTestApi::PressMouse(BPoint where, uint32 buttons, int32 clicks) {
    HeadlessServer* server = _Server();
    if (server == NULL)
        return B_NO_INIT;
    if (buttons == 0)
        return B_BAD_VALUE;
    server->InjectMouseDown(where, buttons, clicks);
    return B_OK;
}

status_t HeadlessTestApi::ReleaseMouse(BPoint where, uint32 buttons) {
    HeadlessServer* server = _Server();
    if (server == NULL)
        return B_NO_INIT;
    server->InjectMouseUp(where, buttons);
    return B_OK;
}

status_t HeadlessTestApi::Click(BPoint where, uint32 buttons, int32 clicks, uint32 modifiers) {
    HeadlessServer* server = _Server();
    if (server == NULL)
        return B_NO_INIT;
    if (buttons == 0 || clicks < 1)
        return B_BAD_VALUE;
    uint32 previous = server->Modifiers();
    if (modifiers != kKeepModifiers)
        server->InjectModifiers(modifiers);
    for (int32 click = 1; click <= clicks; click++) {
        server->InjectMouseDown(where, buttons, click);
        server->InjectMouseUp(where, buttons);
    }
    if (modifiers != kKeepModifiers)
        server->InjectModifiers(previous);
    return B_OK;
}

status_t HeadlessTestApi::ScrollWheel(float deltaX, float deltaY) {
    HeadlessServer* server = _Server();
    if (server == NULL)
        return B_NO_INIT;
    server->InjectWheel(deltaX, deltaY);
    return B_OK;
}

BPoint HeadlessTestApi::PointerPosition() {
    BPoint where;
    if (HeadlessServer* server = _Server())
        server->GetPointer(&where, NULL);
    return where;
}

status_t HeadlessTestApi::PressKey(int32 key, const char* bytes) {
    HeadlessServer* server = _Server();
    if (server == NULL)
        return B_NO_INIT;
    if (key <= 0 || key >= 256)
        return B_BAD_VALUE;
    server->InjectKey(true, key, bytes);
    return B_OK;
}

status_t HeadlessTestApi::ReleaseKey(int32 key, const char* bytes) {
    HeadlessServer* server = _Server();
    if (server == NULL)
        return B_NO_INIT;
    if (key <= 0 || key >= 256)
        return B_BAD_VALUE;
    server->InjectKey(false, key, bytes);
    return B_OK;
}

status_t HeadlessTestApi::TypeKey(int32 key, const char* bytes, uint32 modifiers) {
    HeadlessServer* server = _Server();
    if (server == NULL)
        return B_NO_INIT;
    if (key <= 0 || key >= 256)
        return B_BAD_VALUE;
    uint32 previous = server->Modifiers();
    if (modifiers != kKeepModifiers)
        server->InjectModifiers(modifiers);
    server->InjectKey(true, key, bytes);
    server->InjectKey(false, key, bytes);
    if (modifiers != kKeepModifiers)
        server->InjectModifiers(previous);
    return B_OK;
}

status_t HeadlessTestApi::SetModifiers(uint32 modifiers) {
    HeadlessServer* server = _Server();
    if (server == NULL)
        return B_NO_INIT;
    server->InjectModifiers(modifiers);
    return B_OK;
}

uint32 HeadlessTestApi::Modifiers() {
    HeadlessServer* server = _Server();
    return server != NULL ? server->Modifiers() : 0;
}

status_t HeadlessTestApi::SetWorkspace(int32 workspace) {
    HeadlessServer* server = _Server();
    if (server == NULL)
        return B_NO_INIT;
    if (workspace < 0 || workspace >= server->CountWorkspaces())
        return B_BAD_INDEX;
    server->ActivateWorkspace(workspace);
    server->Sync();
    return B_OK;
}

status_t HeadlessTestApi::SetWorkspaceCount(int32 count) {
    HeadlessServer* server = _Server();
    if (server == NULL)
        return B_NO_INIT;
    if (count < 1 || count > 32)
        return B_BAD_VALUE;
    server->SetWorkspaceCount(count);
    server->Sync();
    return B_OK;
}

status_t HeadlessTestApi::SetScreenSize(int32 width, int32 height) {
    HeadlessServer* server = _Server();
    if (server == NULL)
        return B_NO_INIT;
    if (width < 1 || height < 1 || width > kMaxBufferExtent || height > kMaxBufferExtent)
        return B_BAD_VALUE;
    server->SetScreenSize(width, height);
    return B_OK;
}

uint32 HeadlessTestApi::CountBeeps() {
    HeadlessServer* server = _Server();
    return server != NULL ? server->CountBeeps() : 0;
}

std::vector<WindowListing> HeadlessTestApi::Windows() {
    HeadlessServer* server = _Server();
    if (server == NULL)
        return std::vector<WindowListing>();
    return server->ListWindows();
}

bool HeadlessTestApi::FindWindow(const char* title, WindowListing* listing) {
    if (title == NULL)
        return false;
    for (const WindowListing& window : Windows()) {
        if (window.title == title) {
            if (listing != NULL)
                *listing = window;
            return true;
        }
    }
    return false;
}

bool HeadlessTestApi::FindWindow(const BWindow* window, WindowListing* listing) {
    if (window == NULL)
        return false;
    int32 token = WindowPrivate(const_cast<BWindow*>(window)).ServerToken();
    for (const WindowListing& entry : Windows()) {
        if (entry.id == token) {
            if (listing != NULL)
                *listing = entry;
            return true;
        }
    }
    return false;
}

BPoint HeadlessTestApi::ScreenPoint(const BWindow* window, BPoint windowPoint) {
    WindowListing listing;
    if (!FindWindow(window, &listing))
        return windowPoint;
    return windowPoint + listing.frame.LeftTop();
}

status_t HeadlessTestApi::CaptureScreen(Capture* capture) {
    HeadlessServer* server = _Server();
    if (server == NULL)
        return B_NO_INIT;
    if (capture == NULL)
        return B_BAD_VALUE;
    CairoSurfacePointer surface = server->CaptureScreen();
    capture->SetTo(surface.get());
    return capture->IsValid() ? B_OK : B_ERROR;
}

status_t HeadlessTestApi::CaptureWindow(const BWindow* window, Capture* capture) {
    HeadlessServer* server = _Server();
    if (server == NULL)
        return B_NO_INIT;
    if (window == NULL || capture == NULL)
        return B_BAD_VALUE;
    int32 token = WindowPrivate(const_cast<BWindow*>(window)).ServerToken();
    CairoSurfacePointer surface = server->CaptureWindow(token);
    if (surface == NULL)
        return B_BAD_VALUE;
    capture->SetTo(surface.get());
    return capture->IsValid() ? B_OK : B_ERROR;
}

status_t HeadlessTestApi::WaitForPresent(const BWindow* window, uint32 count, bigtime_t timeout) {
    HeadlessServer* server = _Server();
    if (server == NULL)
        return B_NO_INIT;
    if (window == NULL)
        return B_BAD_VALUE;
    int32 token = WindowPrivate(const_cast<BWindow*>(window)).ServerToken();
    return server->WaitForPresent(token, count, timeout);
}

status_t HeadlessTestApi::WaitForIdle(bigtime_t timeout) {
    HeadlessServer* server = _Server();
    if (server == NULL)
        return B_NO_INIT;
    return server->WaitForIdle(timeout);
}

} // namespace BPrivate
