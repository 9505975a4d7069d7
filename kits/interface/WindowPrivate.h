// Kit-private access to windows: the private feels, the message codes the display
// server and the windows exchange, and the calls menus and tests need.
#ifndef _INTERFACE_WINDOW_PRIVATE_H
#define _INTERFACE_WINDOW_PRIVATE_H

#include <Window.h>

typedef struct _cairo_surface cairo_surface_t;

namespace BPrivate {

// Feels above the public ones. Menu windows stand above every other window and
// never take the focus; a desktop window stands below all.
const window_feel kDesktopWindowFeel = window_feel(1024);
const window_feel kMenuWindowFeel = window_feel(1025);

enum {
    // Sent by the display server to ask a window whether it is idle; "ticket"
    // (int64) comes back to DisplayServer::WindowSynced().
    kMessageIdleProbe = '_IDL',
};

// Field names on mouse messages. kFieldPointerOutside is true when the pointer is
// not over this window: the window then only tells its views that it left.
extern const char* const kFieldPointerOutside;
extern const char* const kFieldTransit;
extern const char* const kFieldDragMessage;
extern const char* const kFieldViewWhere;
extern const char* const kFieldScreenWhere;
// On B_WINDOW_MOVED and B_WINDOW_RESIZED from the display server: the number of
// the window's latest move or resize request the server had applied (int32).
extern const char* const kFieldFrameRequest;

// Called when Command-Escape reaches a window that has a key menu bar; the menu
// kit installs it. Answers whether the key was taken.
typedef bool (*key_menu_bar_starter)(BMenuBar* bar, BMessage* keyMessage);

class WindowPrivate {
public:
    explicit WindowPrivate(BWindow* window) : fWindow(window) {}

    // The window's id at the display server; 0 before it has one.
    int32 ServerToken() const;

    // While grabbed, every pointer event goes to this window (menus).
    status_t GrabPointer();
    void UngrabPointer();

    // The window's back buffer: its pixels as last drawn (window locked).
    cairo_surface_t* BackBuffer() const;

    // How many update passes ran; tests count redraws with it.
    uint32 CountUpdatePasses() const;

    // The window's unlock hook: frame changes made under the lock go to the
    // screen as it is given up.
    static void ReleaseFrameChanges(BLooper* window);

    static void SetKeyMenuBarStarter(key_menu_bar_starter starter);
    static key_menu_bar_starter KeyMenuBarStarter();

private:
    BWindow* fWindow;
};

} // namespace BPrivate

#endif // _INTERFACE_WINDOW_PRIVATE_H
