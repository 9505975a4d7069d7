// BWindow: a looper with its own thread that owns a tree of views and a place on
// the screen. Windows are created hidden; the first Show() starts their thread.
#ifndef _WINDOW_H
#define _WINDOW_H

#include <GraphicsDefs.h>
#include <InterfaceDefs.h>
#include <Looper.h>
#include <Point.h>
#include <Rect.h>

class BButton;
class BMenuBar;
class BMessage;
class BRegion;
class BView;

namespace BPrivate {
class WindowPrivate;
}

enum window_type {
    B_UNTYPED_WINDOW = 0,
    B_TITLED_WINDOW = 1,
    B_MODAL_WINDOW = 3,
    B_DOCUMENT_WINDOW = 11,
    B_BORDERED_WINDOW = 20,
    B_FLOATING_WINDOW = 21
};

enum window_look {
    B_BORDERED_WINDOW_LOOK = 20,
    B_NO_BORDER_WINDOW_LOOK = 19,
    B_TITLED_WINDOW_LOOK = 1,
    B_DOCUMENT_WINDOW_LOOK = 11,
    B_MODAL_WINDOW_LOOK = 3,
    B_FLOATING_WINDOW_LOOK = 7
};

// Kit-private feels (menus, the desktop) lie beyond these values, hence the
// fixed underlying type.
enum window_feel : int32 {
    B_NORMAL_WINDOW_FEEL = 0,
    B_MODAL_SUBSET_WINDOW_FEEL = 2,
    B_MODAL_APP_WINDOW_FEEL = 1,
    B_MODAL_ALL_WINDOW_FEEL = 3,
    B_FLOATING_SUBSET_WINDOW_FEEL = 5,
    B_FLOATING_APP_WINDOW_FEEL = 4,
    B_FLOATING_ALL_WINDOW_FEEL = 6
};

enum window_alignment { B_BYTE_ALIGNMENT = 0, B_PIXEL_ALIGNMENT = 1 };

// Window flags
enum {
    B_NOT_MOVABLE = 0x00000001,
    B_NOT_CLOSABLE = 0x00000020,
    B_NOT_ZOOMABLE = 0x00000040,
    B_NOT_MINIMIZABLE = 0x00004000,
    B_NOT_RESIZABLE = 0x00000002,
    B_NOT_H_RESIZABLE = 0x00000004,
    B_NOT_V_RESIZABLE = 0x00000008,
    B_AVOID_FRONT = 0x00000080,
    B_AVOID_FOCUS = 0x00002000,
    B_WILL_ACCEPT_FIRST_CLICK = 0x00000010,
    B_OUTLINE_RESIZE = 0x00001000,
    B_NO_WORKSPACE_ACTIVATION = 0x00000100,
    B_NOT_ANCHORED_ON_ACTIVATE = 0x00020000,
    B_ASYNCHRONOUS_CONTROLS = 0x00080000,
    B_QUIT_ON_WINDOW_CLOSE = 0x00100000,
    B_SAME_POSITION_IN_ALL_WORKSPACES = 0x00200000,
    B_AUTO_UPDATE_SIZE_LIMITS = 0x00400000,
    B_CLOSE_ON_ESCAPE = 0x00800000,
    B_NO_SERVER_SIDE_WINDOW_MODIFIERS = 0x00000200
};

// Workspace masks: bit n is workspace n.
#define B_CURRENT_WORKSPACE 0
#define B_ALL_WORKSPACES 0xffffffff

class BWindow : public BLooper {
public:
    BWindow(BRect frame, const char* title, window_type type, uint32 flags,
            uint32 workspace = B_CURRENT_WORKSPACE);
    BWindow(BRect frame, const char* title, window_look look, window_feel feel, uint32 flags,
            uint32 workspace = B_CURRENT_WORKSPACE);
    // Never delete a window that runs: Quit() it. The window deletes its views.
    virtual ~BWindow();

    // Must be called with the window locked. From the window's own thread it does
    // not return; from another thread it returns once the thread has ended.
    virtual void Quit();
    void Close() { Quit(); }

    // The window takes ownership of the child (and its descendants).
    void AddChild(BView* child, BView* before = NULL);
    // Gives the child back to the caller, who must delete it.
    bool RemoveChild(BView* child);
    int32 CountChildren() const;
    BView* ChildAt(int32 index) const;

    virtual void DispatchMessage(BMessage* message, BHandler* handler);
    virtual void MessageReceived(BMessage* message);
    virtual void FrameMoved(BPoint newPosition);
    virtual void WorkspacesChanged(uint32 oldWorkspaces, uint32 newWorkspaces);
    virtual void WorkspaceActivated(int32 workspace, bool state);
    virtual void FrameResized(float newWidth, float newHeight);
    virtual void Minimize(bool minimize);
    virtual void Zoom(BPoint origin, float width, float height);
    void Zoom();
    void SetZoomLimits(float maxWidth, float maxHeight);
    virtual void ScreenChanged(BRect screenSize, color_space depth);

    void SetPulseRate(bigtime_t rate);
    bigtime_t PulseRate() const;

    // Command + key delivers the message (the window takes ownership) to the
    // target, the window itself by default. Letters match either case.
    void AddShortcut(uint32 key, uint32 modifiers, BMessage* message);
    void AddShortcut(uint32 key, uint32 modifiers, BMessage* message, BHandler* target);
    bool HasShortcut(uint32 key, uint32 modifiers);
    void RemoveShortcut(uint32 key, uint32 modifiers);

    void SetDefaultButton(BButton* button);
    BButton* DefaultButton() const;

    virtual void MenusBeginning();
    virtual void MenusEnded();

    bool NeedsUpdate() const;
    void UpdateIfNeeded();

    BView* FindView(const char* viewName) const;
    BView* FindView(BPoint point) const;
    BView* CurrentFocus() const;

    void Activate(bool active = true);
    virtual void WindowActivated(bool active);

    void ConvertToScreen(BPoint* point) const;
    BPoint ConvertToScreen(BPoint point) const;
    void ConvertFromScreen(BPoint* point) const;
    BPoint ConvertFromScreen(BPoint point) const;
    void ConvertToScreen(BRect* rect) const;
    BRect ConvertToScreen(BRect rect) const;
    void ConvertFromScreen(BRect* rect) const;
    BRect ConvertFromScreen(BRect rect) const;

    void MoveBy(float dx, float dy);
    void MoveTo(BPoint point);
    void MoveTo(float x, float y);
    void ResizeBy(float dx, float dy);
    void ResizeTo(float width, float height);

    // Show() and Hide() nest: the window shows while Show() has been called at
    // least as often as Hide() (it starts with one Hide()).
    virtual void Show();
    virtual void Hide();
    bool IsHidden() const;
    bool IsMinimized() const;

    // Flush() hands what was drawn to the display; Sync() also waits until it is shown.
    void Flush() const;
    void Sync() const;

    status_t SendBehind(const BWindow* window);

    void DisableUpdates();
    void EnableUpdates();

    // Between these, nothing drawn reaches the screen and no update runs; the
    // changes show at once when the outermost transaction ends.
    void BeginViewTransaction();
    void EndViewTransaction();
    bool InViewTransaction() const;

    BRect Bounds() const;
    BRect Frame() const;
    const char* Title() const;
    void SetTitle(const char* title);
    bool IsFront() const;
    bool IsActive() const;

    // The window does not own the menu bar; it forgets it when the bar is removed.
    void SetKeyMenuBar(BMenuBar* bar);
    BMenuBar* KeyMenuBar() const;

    void SetSizeLimits(float minWidth, float maxWidth, float minHeight, float maxHeight);
    void GetSizeLimits(float* minWidth, float* maxWidth, float* minHeight, float* maxHeight) const;

    uint32 Workspaces() const;
    void SetWorkspaces(uint32 workspaces);

    BView* LastMouseMovedView() const;

    status_t SetType(window_type type);
    window_type Type() const;
    status_t SetLook(window_look look);
    window_look Look() const;
    status_t SetFeel(window_feel feel);
    window_feel Feel() const;
    status_t SetFlags(uint32 flags);
    uint32 Flags() const;

    bool IsModal() const;
    bool IsFloating() const;

    status_t AddToSubset(BWindow* window);
    status_t RemoveFromSubset(BWindow* window);

    virtual bool QuitRequested();
    virtual thread_id Run();

private:
    friend class BView;
    friend class BPrivate::WindowPrivate;

    BWindow(const BWindow&);
    BWindow& operator=(const BWindow&);

    void _InitData(BRect frame, const char* title, window_look look, window_feel feel, uint32 flags,
                   uint32 workspace);
    int32 _FindShortcut(uint32 key, uint32 modifiers) const;

    // Drawing
    void _CreateBackBuffer();
    void _Resized(float width, float height);
    void _Invalidate(const BRegion& region);
    void _Erase(const BRegion& region, rgb_color color);
    void _UpdatePass();
    void _Flush();
    void _UpdatesReleased();

    // Events
    bool _HasView(BView* view) const;
    BView* _ViewTarget(BHandler* target) const;
    BView* _KeyTarget(BMessage* message, BHandler* target) const;
    void _RefreshViewOrder();
    void _AnswerIdleProbe(BMessage* message);
    void _SetActive(bool active);
    void _Pulse();
    void _SetFocus(BView* view);
    void _HandleMouse(BMessage* message, BHandler* target);
    void _ReleaseMouseEventMasks();
    void _UpdatePointerViews();
    void _UpdatePulse();
    void _HandleDrop(BMessage* message, BHandler* target);
    void _HandleKeyDown(BMessage* message, BHandler* target);
    void _KeyboardNavigation();

    struct Private;
    Private* fPrivate;
};

#endif // _WINDOW_H
