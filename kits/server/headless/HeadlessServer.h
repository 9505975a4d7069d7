// The headless backend: a screen that exists only in memory. Its input comes
// from tests (through HeadlessTestApi), its pixels are composed from the windows'
// front buffers on request.
#ifndef _SERVER_HEADLESS_SERVER_H
#define _SERVER_HEADLESS_SERVER_H

#include "server/DisplayServer.h"

namespace BPrivate {

class HeadlessServer : public DisplayServer {
public:
    HeadlessServer();
    virtual ~HeadlessServer();

    virtual const char* BackendName() const { return "headless"; }

    // Input is queued like a device's and handled in order by the server's
    // thread; each call returns once the server has handled it (and posted what
    // it produced).
    void InjectMouseMove(BPoint where);
    void InjectMouseDown(BPoint where, uint32 button, int32 clicks);
    void InjectMouseUp(BPoint where, uint32 button);
    void InjectWheel(float deltaX, float deltaY);
    // bytes NULL: what the key gives under the current modifiers.
    void InjectKey(bool down, int32 key, const char* bytes);
    void InjectModifiers(uint32 modifiers);

    void SetScreenSize(int32 width, int32 height);
    // A fresh screen for the next test; B_BUSY while windows exist.
    status_t Reset();
    uint32 CountBeeps();

    // The whole screen: the desktop colour, then the visible windows of the
    // current workspace back to front.
    CairoSurfacePointer CaptureScreen();
    // What the window last presented; NULL for an unknown id.
    CairoSurfacePointer CaptureWindow(int32 id);

private:
    void _Run(std::function<void()> job);
};

} // namespace BPrivate

#endif // _SERVER_HEADLESS_SERVER_H
