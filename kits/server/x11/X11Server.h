// The X11 backend of the display server.
//
// One Xlib connection, used only by the server's thread. That thread sleeps in
// poll() on the connection and on an eventfd: window threads change the model
// (DisplayServer) and present their pixels from their own threads, the model's
// hooks only note what changed and write to the eventfd, and the server's thread
// then brings the X windows in line with the model (_SyncWithModel) and copies
// the presented pixels to them. X events flow the other way: they go through the
// model's input routing (_HandleMouseDown...), or, for what the window manager
// decided (focus, frames, desktops), they update the model directly so it never
// asks X for what X just did.
//
// Each X window remembers what was last asked of X (its frame, desktop, title,
// look), so a change the window manager made is adopted, not fought.
#ifndef _SERVER_X11_SERVER_H
#define _SERVER_X11_SERVER_H

#include "server/DisplayServer.h"
#include "server/x11/X11Atoms.h"

#include <X11/Xlib.h>

#include <atomic>
#include <map>
#include <memory>
#include <set>

namespace BPrivate {

class X11DropTarget;
class X11KeyState;
class X11Presenter;

class X11Server : public DisplayServer {
public:
    // Opens the display named by $DISPLAY; NULL with *error set (and a line on
    // stderr naming the display) when it cannot.
    static X11Server* Create(status_t* error);
    virtual ~X11Server();

    virtual const char* BackendName() const { return "x11"; }

    virtual void GetKeyInfo(key_info* info);
    virtual status_t GrabPointer(int32 id);
    virtual void UngrabPointer(int32 id);

    // Whether get_key_info() answers from the tracked keyboard state, without
    // asking X; it starts doing so after its first call. Any thread.
    bool TracksKeysPassively() const;

    // Whether a window manager that speaks EWMH runs on the display.
    bool HasWindowManager() const { return fWindowManager != 0; }
    // The X window that shows a server window; 0 before it exists. Any thread.
    unsigned long XWindowFor(int32 id);

    // Called by Xlib when the connection broke: the application is asked to
    // quit, and nothing uses the connection any more.
    void NoteConnectionLost();

protected:
    virtual void _WaitForWork(std::unique_lock<std::mutex>& queueLock, bigtime_t deadline);
    virtual void _WakeUp();

    virtual void _WindowChanged(ServerWindow* window);
    virtual void _WindowPresented(ServerWindow* window, const BRegion& region);
    virtual void _WorkspaceChanged();
    virtual void _BeepNow();
    virtual bool _SeesKeyChanges();
    virtual ServerWindow* _WindowAt(BPoint where);

private:
    struct Record;
    struct Snapshot;

    X11Server(Display* display);
    status_t _Init();
    void _FinishInit();
    void _DetectWindowManager();
    bool _ReadWindowProperty(::Window window, Atom property, ::Window* value);
    bool _ReadCardinal(::Window window, Atom property, unsigned long* value);

    // #pragma mark - Bringing X in line with the model (X11Server.cpp)
    void _SyncWithModel();
    Record* _CreateRecord(const Snapshot& snapshot);
    void _DestroyRecord(int32 id);
    void _ApplyProperties(Record* record, const Snapshot& snapshot, int32 count, int32 current);
    void _ApplySizeHints(Record* record);
    void _ApplyGeometry(Record* record, const Snapshot& snapshot);
    void _ApplyMapping(Record* record, const Snapshot& snapshot, int32 current);
    void _ApplyPixels(const std::map<int32, BRegion>& damage);
    void _ApplyActivation(int32 active);
    void _ApplyWorkspaces(int32 current, int32 count);
    void _ApplyGrab();
    void _SendRootMessage(::Window window, Atom type, long data0, long data1, long data2,
                          long data3);
    void _ReadDesktops(int32* count, int32* current);
    uint32 _NetDesktopFor(uint32 workspaces, int32 count, int32 current);

    // #pragma mark - X events (X11ServerEvents.cpp)
    void _HandleEvents();
    void _HandleEvent(XEvent& event);
    void _HandlePointer(XEvent& event);
    void _HandleKeyEvent(XKeyEvent& event);
    void _HandleConfigure(Record* record, const XConfigureEvent& event);
    void _HandleClientMessage(const XClientMessageEvent& message);
    void _HandleProperty(const XPropertyEvent& event);
    void _HandleDropEvent(const void* dropEvent);
    void _AdoptActive(int32 id);
    void _AdoptFrame(Record* record, BRect frame);
    void _SyncModifiers(unsigned int state, bigtime_t when);
    void _QueryKeys(key_info* info);
    bool _ReadKeyState(key_info* info);
    void _StartKeyState();
    XIC _InputContextFor(Record* record);
    bigtime_t _When(Time time);
    Record* _RecordFor(::Window window);
    // Sends the region of a window without an image of its own straight from
    // the server's copy of its pixels; fLock held.
    void _PutFrontBuffer(Record* record, ServerWindow* window, const BRegion& region);

    Display* fDisplay;
    int fScreen;
    ::Window fRoot;
    ::Window fLeader;
    ::Window fWindowManager;
    X11Atoms fAtoms;
    int fWakeFD;
    bool fSharedMemory;
    int fRandREventBase;
    XIM fInputMethod;
    bool fInputMethodTried;
    bool fInitFinished;
    unsigned int fNumLockMask;
    std::unique_ptr<X11DropTarget> fDropTarget;
    // Created before the thread starts, never replaced.
    std::unique_ptr<X11KeyState> fKeyState;
    std::atomic<bool> fLost;

    // Server thread only.
    std::map<int32, std::unique_ptr<Record>> fRecords;
    int32 fAppliedActive;
    int32 fAppliedDesktop;
    int32 fAppliedDesktopCount;
    ::Window fAppliedGrab;
    bigtime_t fGrabRetryUntil;
    Time fLastEventTime;
    bool fKeyStateTried = false;
    // Any thread: whether a watcher asked for the keyboard to be tracked, and
    // whether X could not track it.
    std::atomic<bool> fKeyStateRequested{false};
    std::atomic<bool> fKeyStateFailed{false};
    bigtime_t fTimeOffset;
    bool fHaveTimeOffset;

    // Under fLock: what the hooks noted for the server's thread.
    std::set<int32> fDirtyWindows;
    std::map<int32, BRegion> fDamage;
    std::map<int32, unsigned long> fXWindows;
    bool fWorkspacesDirty;
    bool fGrabDirty;
    int32 fGrabbing;
    uint32 fPendingBeeps;
    int32 fPointerWindow;
};

} // namespace BPrivate

#endif // _SERVER_X11_SERVER_H
