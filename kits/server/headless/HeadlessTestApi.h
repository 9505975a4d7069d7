// What tests use to drive the headless display: pointer and keyboard input at
// screen points, workspaces and the screen size, the list of windows, captures of
// the screen or a window, and waiting until everything is idle.
//
// Input is routed as a real server routes it: to an open menu's grab first, to
// the window that holds the implicit grab while a button is down, else to the
// top-most visible window under the point in the current workspace; keys go to
// the active window. Every call returns once the server has handled the input;
// WaitForIdle() then returns once the windows have handled what it produced.
//
// Call Use() before the first window is made (or set GLIMROW_DISPLAY=headless).
// The calls must not be made from a window's thread.
#ifndef _SERVER_HEADLESS_TEST_API_H
#define _SERVER_HEADLESS_TEST_API_H

#include "interface/AlertRegistry.h"
#include "server/DisplayServer.h"

#include <GraphicsDefs.h>
#include <Point.h>
#include <View.h>
#include <Window.h>

#include <string>
#include <vector>

namespace BPrivate {

class HeadlessServer;

// Pixels of a capture, not premultiplied.
class Capture {
public:
    Capture();

    int32 Width() const { return fWidth; }
    int32 Height() const { return fHeight; }
    bool IsValid() const { return fWidth > 0 && fHeight > 0; }

    // Transparent black outside the capture.
    rgb_color ColorAt(int32 x, int32 y) const;
    // 0xAARRGGBB
    uint32 PixelAt(int32 x, int32 y) const;
    // How many pixels have exactly this colour (alpha included).
    int32 CountPixels(rgb_color color) const;
    // The smallest rectangle holding every pixel of this colour; invalid if none.
    BRect BoundsOf(rgb_color color) const;

    status_t WritePNG(const char* path) const;

    // Takes the pixels of an ARGB32 surface.
    void SetTo(cairo_surface_t* surface);

private:
    int32 fWidth;
    int32 fHeight;
    std::vector<uint32> fPixels;
};

class HeadlessTestApi {
public:
    static const uint32 kKeepModifiers = 0xffffffff;

    // Chooses the headless backend and starts it. B_NOT_ALLOWED when another
    // backend already runs.
    static status_t Use();
    // Puts the screen back as it starts (size, workspaces, pointer, keys).
    // B_BUSY while windows exist.
    static status_t Reset();

    // #pragma mark - Pointer (screen coordinates)

    static status_t MoveMouse(BPoint where);
    // clicks 0: counted as the server counts double clicks.
    static status_t PressMouse(BPoint where, uint32 buttons = B_PRIMARY_MOUSE_BUTTON,
                               int32 clicks = 0);
    static status_t ReleaseMouse(BPoint where, uint32 buttons = B_PRIMARY_MOUSE_BUTTON);
    // clicks presses and releases, counted 1 to clicks, with the modifiers held.
    static status_t Click(BPoint where, uint32 buttons = B_PRIMARY_MOUSE_BUTTON, int32 clicks = 1,
                          uint32 modifiers = kKeepModifiers);
    // Positive deltaY scrolls down.
    static status_t ScrollWheel(float deltaX, float deltaY);
    static BPoint PointerPosition();

    // #pragma mark - Keyboard (Be key codes)

    // bytes NULL: what the key gives under the current modifiers (US layout).
    static status_t PressKey(int32 key, const char* bytes = NULL);
    static status_t ReleaseKey(int32 key, const char* bytes = NULL);
    static status_t TypeKey(int32 key, const char* bytes = NULL, uint32 modifiers = kKeepModifiers);
    static status_t SetModifiers(uint32 modifiers);
    static uint32 Modifiers();

    // #pragma mark - Screen and workspaces

    static status_t SetWorkspace(int32 workspace);
    static status_t SetWorkspaceCount(int32 count);
    static status_t SetScreenSize(int32 width, int32 height);
    static uint32 CountBeeps();

    // #pragma mark - Windows

    // Back to front.
    static std::vector<WindowListing> Windows();
    static bool FindWindow(const char* title, WindowListing* listing);
    static bool FindWindow(const BWindow* window, WindowListing* listing);
    static BPoint ScreenPoint(const BWindow* window, BPoint windowPoint);

    static status_t CaptureScreen(Capture* capture);
    static status_t CaptureWindow(const BWindow* window, Capture* capture);

    // Returns once the window has presented at least count times.
    static status_t WaitForPresent(const BWindow* window, uint32 count,
                                   bigtime_t timeout = 10000000);
    // B_OK once no window has anything queued or an update pending and the
    // server is idle; B_TIMED_OUT otherwise.
    static status_t WaitForIdle(bigtime_t timeout = 10000000);

    // #pragma mark - Alerts

    // The alerts that Go() shows, oldest first: title, text, button labels.
    static std::vector<AlertListing> Alerts();
    // Waits until an alert with the title (any alert when NULL) is on screen and
    // copies the newest such one to listing (which may be NULL).
    static status_t WaitForAlert(const char* title, AlertListing* listing,
                                 bigtime_t timeout = 10000000);
    // Waits until no alert is on screen.
    static status_t WaitForNoAlert(bigtime_t timeout = 10000000);
    // Presses the button with this label in the newest alert that has one, as
    // its keyboard shortcut would. B_NAME_NOT_FOUND when no alert has it.
    static status_t PressAlertButton(const char* label);

private:
    static HeadlessServer* _Server();
};

} // namespace BPrivate

#endif // _SERVER_HEADLESS_TEST_API_H
