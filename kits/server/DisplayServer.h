// The display server: the one object that stands between the windows of this
// process and the screen.
//
// It keeps the model of the screen that windows live on: their frames, looks,
// feels, flags, workspaces, stacking order and visibility, which one is active,
// the pointer, the buttons and the keys held down, the current workspace. Windows
// call it from their own threads (with their lock held) to change their part of
// the model and to present what they drew; those calls return at once. The server
// has a thread of its own which turns input into Be messages (B_MOUSE_DOWN,
// B_KEY_DOWN, B_WORKSPACE_ACTIVATED, drops...) and posts them, in order, to the
// windows they concern through messengers, so a window that went away is never
// touched.
//
// Pixels: every window draws into its own back buffer. Present() copies the
// dirty part of it into the server's front buffer of that window, which is what
// the screen shows (the headless backend composes its screen from them; the X11
// backend puts them on its windows).
//
// Backends derive from this class: the headless one (kits/server/headless/) for
// tests and the X11 one (kits/server/x11/). The routing of pointer events (grabs,
// the implicit grab while a button is down, drags crossing windows, click counts)
// and the window management rules of a Be desktop live here, shared by both.
#ifndef _SERVER_DISPLAY_SERVER_H
#define _SERVER_DISPLAY_SERVER_H

#include <GraphicsDefs.h>
#include <InterfaceDefs.h>
#include <Message.h>
#include <Messenger.h>
#include <Rect.h>
#include <Region.h>
#include <Window.h>

#include <cairo.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace BPrivate {

struct CairoSurfaceDeleter {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
typedef std::unique_ptr<cairo_surface_t, CairoSurfaceDeleter> CairoSurfacePointer;

// Windows and their buffers are at most this many pixels wide and high (a
// buffer of that size takes 256 MB).
const int32 kMaxBufferExtent = 8192;

// The pixels a window (or buffer) span covers: a BRect width of 0 is one pixel.
int32 buffer_extent(float span);
// An ARGB32 image surface holding the pixels of the rectangle.
CairoSurfacePointer make_buffer(BRect frame);

// The server's record of one window.
struct ServerWindow {
    int32 id = 0;
    BMessenger messenger;
    std::string title;
    BRect frame;
    window_look look = B_TITLED_WINDOW_LOOK;
    window_feel feel = B_NORMAL_WINDOW_FEEL;
    uint32 flags = 0;
    uint32 workspaces = 0;
    bool hidden = true;
    bool minimized = false;
    bool running = false;
    bool wantsAllPointerEvents = false;
    bigtime_t pulseRate = 0;
    bigtime_t nextPulse = 0;
    CairoSurfacePointer frontBuffer;
    uint32 presentCount = 0;
    uint64 answeredTicket = 0;
    bool idleAtTicket = false;
    // The last of the window's own move and resize requests applied here.
    uint32 frameRequest = 0;
    // The window's own frame changes the backend has not been told of yet: they
    // wait for ReleaseFrameChanges().
    bool frameChangesHeld = false;
};

// A description of a window for tests and tools.
struct WindowListing {
    int32 id;
    std::string title;
    BRect frame;
    window_look look;
    window_feel feel;
    uint32 flags;
    uint32 workspaces;
    bool hidden;
    bool minimized;
    bool visible;
    bool active;
    uint32 presentCount;
    BMessenger messenger;
};

class DisplayServer {
public:
    // The process's display server, started on first use: the headless backend
    // when GLIMROW_DISPLAY=headless or when UseHeadless() was called first, the
    // X11 backend otherwise. NULL (with *error set and a line on stderr saying
    // what is missing) when no backend can start.
    static DisplayServer* Default(status_t* error = NULL);
    // The running server, or NULL; never starts one.
    static DisplayServer* Current();
    // Chooses the headless backend for this process. B_NOT_ALLOWED once another
    // backend runs.
    static status_t UseHeadless();

    virtual ~DisplayServer();

    virtual const char* BackendName() const = 0;

    // #pragma mark - Screen

    BRect ScreenFrame();
    color_space ScreenColorSpace();

    // #pragma mark - Windows (any thread)

    // Registers a window, hidden. Returns its id (> 0).
    int32 CreateWindow(const BMessenger& target, BRect frame, const char* title, window_look look,
                       window_feel feel, uint32 flags, uint32 workspaces);
    void DestroyWindow(int32 id);
    // The window's thread runs: it can be asked whether it is idle.
    void SetWindowRunning(int32 id);

    // From anyone: the window learns of it with B_WINDOW_MOVED or B_WINDOW_RESIZED.
    void MoveWindow(int32 id, BPoint leftTop);
    void ResizeWindow(int32 id, float width, float height);
    // The window's own requests, numbered from 1 up. The messages they cause
    // carry the number of the window's latest request applied so far
    // (kFieldFrameRequest), so the window can tell an echo of a request it
    // has since superseded from where it really is. The server's record changes
    // at once; the backend (the real window on screen) learns of them at the next
    // ReleaseFrameChanges(), which the window calls as it gives up its lock: a
    // resize and a move made together reach the screen together.
    void MoveWindow(int32 id, BPoint leftTop, uint32 request);
    void ResizeWindow(int32 id, float width, float height, uint32 request);
    void ReleaseFrameChanges(int32 id);
    void SetWindowTitle(int32 id, const char* title);
    void SetWindowLook(int32 id, window_look look);
    void SetWindowFeel(int32 id, window_feel feel);
    void SetWindowFlags(int32 id, uint32 flags);
    // B_CURRENT_WORKSPACE (0) means the current one. Posts B_WORKSPACES_CHANGED.
    void SetWindowWorkspaces(int32 id, uint32 workspaces);
    void ShowWindow(int32 id);
    void HideWindow(int32 id);
    void MinimizeWindow(int32 id, bool minimize);
    void ActivateWindow(int32 id, bool active);
    // Puts the window right behind the other one (0: at the back of its layer).
    void SendWindowBehind(int32 id, int32 behindId);
    bool IsFrontWindow(int32 id);
    // B_PULSE every rate microseconds while the rate is positive.
    void SetWindowPulseRate(int32 id, bigtime_t rate);
    // The window gets pointer events wherever the pointer is.
    void SetWindowWantsAllPointerEvents(int32 id, bool wants);

    // Copies the region (window coordinates) of the window's back buffer to the
    // screen.
    void Present(int32 id, cairo_surface_t* backBuffer, const BRegion& region);

    // #pragma mark - Input state

    void GetPointer(BPoint* where, uint32* buttons);
    uint32 Modifiers();
    // The X11 backend asks the X server, which knows keys held in other programs.
    virtual void GetKeyInfo(key_info* info);

    // Semaphores released once whenever the key states or the workspace count
    // change; see watch_keys_and_workspaces(). Any thread.
    status_t WatchKeysAndWorkspaces(sem_id semaphore);
    void StopWatchingKeysAndWorkspaces(sem_id semaphore);

    bigtime_t ClickSpeed() const { return kClickSpeed; }

    // Every pointer event goes to the grabbing window until it lets go (menus).
    virtual status_t GrabPointer(int32 id);
    virtual void UngrabPointer(int32 id);

    // Starts dragging a copy of the message; offset is where the pointer holds the
    // dragged rectangle. The drop goes to the window under the pointer when the
    // buttons are released; at once if they already are.
    status_t StartDrag(int32 sourceId, const BMessage& message, BPoint offset,
                       const BMessenger& replyTo);
    bool IsDragging();

    // #pragma mark - Workspaces

    int32 CountWorkspaces();
    int32 CurrentWorkspace();
    // Switching posts B_WORKSPACE_ACTIVATED to the windows of the old workspace
    // (false) and the new one (true), then B_SCREEN_CHANGED to the latter.
    void ActivateWorkspace(int32 workspace);
    // 1 to 32 workspaces.
    void SetWorkspaceCount(int32 count);

    void Beep();

    // #pragma mark - Synchronisation

    // Returns once the server's thread has handled everything queued before.
    void Sync();
    // Something happened that WaitForIdle() must look at again.
    void NoteActivity() { fActivity.fetch_add(1, std::memory_order_relaxed); }
    // The delivery hook of the windows and the application: a message is about
    // to join one of their queues. Counted before it is there, so a window that
    // posts to another after answering its idle probe cannot make WaitForIdle()
    // return while the other still has work.
    static void NoteDelivery(const BMessage* message);
    // A window answers kMessageIdleProbe.
    void WindowSynced(int32 id, uint64 ticket, bool idle);
    // Returns B_OK once every running window has nothing queued and no update
    // pending and the server's own queue is empty; B_TIMED_OUT otherwise.
    status_t WaitForIdle(bigtime_t timeout);

    // All windows, back to front.
    std::vector<WindowListing> ListWindows();
    // Waits until the window has presented at least count times.
    status_t WaitForPresent(int32 id, uint32 count, bigtime_t timeout);

    static constexpr bigtime_t kClickSpeed = 500000;
    static constexpr int32 kMaxWorkspaces = 32;
    // How long WaitForIdle() waits at a time for the application's lock.
    static constexpr bigtime_t kApplicationLockWait = 10000;

protected:
    DisplayServer();

    // Starts the server's thread.
    status_t _Start();
    // Ends the server's thread and waits for it. A backend calls it first in its
    // destructor, while its own members still exist; safe to call twice.
    void _StopThread();

    // Queues work for the server's thread. Activity jobs make WaitForIdle()
    // look again.
    void _Enqueue(std::function<void()> job, bool activity = true);

    // The server's thread waits here, with the queue lock held, until a job is
    // queued or the deadline (a system_time(); B_INFINITE_TIMEOUT for none) has
    // passed; it must release the lock while it waits. A backend with a
    // connection of its own waits on that too, handles what arrives, and is
    // woken by _WakeUp(), which follows every _Enqueue().
    virtual void _WaitForWork(std::unique_lock<std::mutex>& queueLock, bigtime_t deadline);
    virtual void _WakeUp();
    // A job or the end waits (queue lock held).
    bool _HasWork();

    // #pragma mark - Input, on the server's thread

    void _HandleMouseMoved(BPoint where, bigtime_t when);
    // clicks 0: counted as double clicks are.
    void _HandleMouseDown(BPoint where, uint32 button, int32 clicks, bigtime_t when);
    void _HandleMouseUp(BPoint where, uint32 button, bigtime_t when);
    void _HandleWheel(float deltaX, float deltaY, bigtime_t when);
    // bytes NULL: an unmapped key (modifiers and the like).
    void _HandleKey(bool down, int32 key, const char* bytes, int32 rawChar, bigtime_t when);
    void _HandleModifiersChanged(uint32 modifiers, bigtime_t when);
    void _SetScreenFrame(BRect frame);
    // Back to a fresh screen: default size, four workspaces with the first one
    // current, no keys or buttons down, the pointer at the origin.
    void _ResetState();

    // Whether every change of the key states reaches the watchers. Any thread.
    virtual bool _SeesKeyChanges() { return true; }
    // Releases every watcher once; forgets the ones whose semaphore is gone.
    // Any thread, with or without fLock.
    void _NotifyWatchers();

    // #pragma mark - Backend hooks, called with fLock held; they must not block

    virtual void _WindowChanged(ServerWindow* window) {}
    virtual void _WindowPresented(ServerWindow* window, const BRegion& region) {}
    virtual void _WorkspaceChanged() {}
    virtual void _BeepNow() {}
    // The visible window under a screen point, menus and grabs aside.
    virtual ServerWindow* _WindowAt(BPoint where);

    // #pragma mark - Model helpers, fLock held

    ServerWindow* _Find(int32 id);
    // Tells the backend of a frame change now, or holds it for the window's
    // ReleaseFrameChanges().
    void _FrameChanged(ServerWindow* window, bool held);
    bool _IsVisible(const ServerWindow* window) const;
    bool _InWorkspace(const ServerWindow* window, int32 workspace) const;
    std::vector<ServerWindow*> _StackBackToFront();

    struct Outgoing {
        BMessenger target;
        BMessage message;
        bool droppable;
        BMessenger replyTo;
    };
    typedef std::vector<Outgoing> Outbox;

    // Posts what the model changes produced; without fLock.
    void _Post(Outbox& outbox);
    void _PostLater(Outbox&& outbox);

    std::mutex fLock;
    std::map<int32, std::unique_ptr<ServerWindow>> fWindows;
    std::vector<int32> fStack;
    int32 fNextWindowID;
    int32 fActiveWindow;
    BRect fScreenFrame;
    int32 fWorkspaceCount;
    int32 fCurrentWorkspace;
    uint32 fBeepCount;

private:
    void _Loop();
    // Whether the application runs in a thread of its own and can be asked if
    // it is idle; B_TIMED_OUT when another thread held it too long to tell.
    status_t _WatchApplication(bool* running);
    bigtime_t _RunTimers();

    // Window management, fLock held
    int32 _Rank(const ServerWindow* window) const;
    void _Restack(int32 id, bool toFront);
    void _SetActive(int32 id, Outbox& outbox);
    void _ActivateNext(Outbox& outbox);
    bool _CanFocus(const ServerWindow* window) const;
    void _SwitchWorkspace(int32 workspace, Outbox& outbox);

    // Input helpers, fLock held
    BMessage _MouseMessage(uint32 what, ServerWindow* window, bigtime_t when);
    void _SendMoved(ServerWindow* window, bool outside, bigtime_t when, Outbox& outbox);
    void _Drop(BPoint where, Outbox& outbox);
    void _SetKeyState(int32 key, bool down);
    // Where keys go: the grabbing window, else the active one.
    ServerWindow* _KeyTarget();

    std::mutex fQueueLock;
    std::condition_variable fQueueCondition;
    struct Job {
        std::function<void()> work;
        bool activity;
    };
    std::deque<Job> fJobs;
    bool fQuitting;
    std::thread fThread;
    // Written by the server thread as it starts, read by any thread in Sync().
    std::atomic<std::thread::id> fThreadID;

    std::condition_variable fModelCondition;
    std::atomic<uint64> fActivity;
    uint64 fNextTicket;
    BMessenger fWatchedApplication;

    std::mutex fWatcherLock;
    std::vector<sem_id> fWatchers;

    // Pointer and keyboard
    BPoint fPointer;
    uint32 fButtons;
    uint32 fModifiers;
    uint8 fKeyStates[16];
    int32 fGrabWindow;
    int32 fMouseDownWindow;
    bool fSwallowClick;
    int32 fLastMouseWindow;
    bigtime_t fLastClickTime;
    BPoint fLastClickWhere;
    uint32 fLastClickButtons;
    int32 fLastClickWindow;
    int32 fClickCount;
    std::unique_ptr<BMessage> fDragMessage;
    BPoint fDragOffset;
    BMessenger fDragReplyTo;
};

// Made by the X11 backend (kits/server/x11/): NULL, with *error set and a line on
// stderr naming the display, when the display cannot be opened.
DisplayServer* create_x11_display_server(status_t* error);

} // namespace BPrivate

#endif // _SERVER_DISPLAY_SERVER_H
