// The X11 backend's connection: opening the display, the thread's wait on the
// connection and the wake-up eventfd, the hooks the model calls, and a lost
// connection. Bringing X in line with the model is in X11ServerSync.cpp, the
// X events in X11ServerEvents.cpp.
#include "server/x11/X11Server.h"

#include "server/x11/X11DropTarget.h"
#include "server/x11/X11KeyState.h"
#include "server/x11/X11Keyboard.h"
#include "server/x11/X11ServerRecord.h"

#include <AppDefs.h>
#include <Application.h>
#include <OS.h>

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/extensions/XShm.h>
#include <X11/extensions/Xrandr.h>
#include <X11/keysym.h>

#include <chrono>
#include <future>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>

namespace BPrivate {

namespace {

// The thread that owns the connection; Xlib's handlers run on it, and so can
// GetKeyInfo() when the display server itself asks.
std::atomic<std::thread::id> sServerThread;

// Errors about our own requests on windows that went away meanwhile (a window
// manager's frame, a focus request racing an unmap) are expected; they must not
// end the program as Xlib's default handler would.
int ignore_error(Display* display, XErrorEvent* error) {
    return 0;
}

int report_lost_connection(Display* display) {
    fprintf(stderr, "glimrow: lost the connection to the X display \"%s\"\n",
            DisplayString(display));
    return 0;
}

void end_after_lost_connection(Display* display, void* data) {
    X11Server* server = (X11Server*)data;
    if (server != NULL)
        server->NoteConnectionLost();
    // Xlib must not be entered again once its connection broke, and the server's
    // thread is in the middle of a batch of calls: it stays here while the
    // application quits (or the process is ended a few seconds later).
    if (std::this_thread::get_id() == sServerThread.load()) {
        while (true)
            pause();
    }
}

} // namespace

// #pragma mark - Life

X11Server* X11Server::Create(status_t* error) {
    Display* display = XOpenDisplay(NULL);
    if (display == NULL) {
        const char* name = XDisplayName(NULL);
        fprintf(stderr,
                "glimrow: cannot open display \"%s\" (is $DISPLAY set and the X server running?)\n",
                name != NULL ? name : "");
        if (error != NULL)
            *error = B_DEVICE_NOT_FOUND;
        return NULL;
    }
    X11Server* server = new X11Server(display);
    status_t status = server->_Init();
    if (status != B_OK) {
        delete server;
        server = NULL;
    }
    if (error != NULL)
        *error = status;
    return server;
}

X11Server::X11Server(Display* display)
    : fDisplay(display), fScreen(DefaultScreen(display)), fRoot(RootWindow(display, fScreen)),
      fLeader(0), fWindowManager(0), fWakeFD(-1), fSharedMemory(false), fRandREventBase(-1),
      fInputMethod(NULL), fInputMethodTried(false), fInitFinished(false), fNumLockMask(0),
      fLost(false), fAppliedActive(0), fAppliedDesktop(0), fAppliedDesktopCount(1), fAppliedGrab(0),
      fGrabRetryUntil(0), fLastEventTime(CurrentTime), fTimeOffset(0), fHaveTimeOffset(false),
      fWorkspacesDirty(false), fGrabDirty(false), fGrabbing(0), fPendingBeeps(0),
      fPointerWindow(0) {}

X11Server::~X11Server() {
    // The thread goes first: nothing may use the connection afterwards.
    _StopThread();
    if (!fLost) {
        for (auto& entry : fRecords) {
            Record* record = entry.second.get();
            record->presenter.reset();
            if (record->inputContext != NULL)
                XDestroyIC(record->inputContext);
            if (record->context != 0)
                XFreeGC(fDisplay, record->context);
            XDestroyWindow(fDisplay, record->window);
        }
        fRecords.clear();
        if (fInputMethod != NULL)
            XCloseIM(fInputMethod);
        if (fLeader != 0)
            XDestroyWindow(fDisplay, fLeader);
        XCloseDisplay(fDisplay);
    }
    if (fWakeFD >= 0)
        close(fWakeFD);
}

status_t X11Server::_Init() {
    Visual* visual = DefaultVisual(fDisplay, fScreen);
    int depth = DefaultDepth(fDisplay, fScreen);
    if (visual->c_class != TrueColor || (depth != 24 && depth != 32) ||
        visual->red_mask != 0xff0000 || visual->green_mask != 0xff00 || visual->blue_mask != 0xff) {
        fprintf(stderr, "glimrow: the X display \"%s\" has no 24-bit true colour visual\n",
                DisplayString(fDisplay));
        return B_NOT_SUPPORTED;
    }

    fWakeFD = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (fWakeFD < 0)
        return B_FROM_POSIX_ERROR(errno);

    // A write to a connection the X server closed must end in the I/O error
    // handler's message, not in a silent SIGPIPE.
    struct sigaction pipeAction;
    if (sigaction(SIGPIPE, NULL, &pipeAction) == 0 && pipeAction.sa_handler == SIG_DFL)
        signal(SIGPIPE, SIG_IGN);

    XSetErrorHandler(ignore_error);
    XSetIOErrorHandler(report_lost_connection);
    XSetIOErrorExitHandler(fDisplay, end_after_lost_connection, this);

    fAtoms.Intern(fDisplay);
    fDropTarget = std::make_unique<X11DropTarget>(fDisplay, fAtoms);
    fKeyState = std::make_unique<X11KeyState>(fDisplay, fRoot);

    XSelectInput(fDisplay, fRoot, PropertyChangeMask | StructureNotifyMask);

    // The unmapped window that groups ours for the window manager.
    fLeader = XCreateSimpleWindow(fDisplay, fRoot, -1, -1, 1, 1, 0, 0, 0);
    XClassHint classHint;
    classHint.res_name = (char*)"glimrow";
    classHint.res_class = (char*)"Glimrow";
    XSetClassHint(fDisplay, fLeader, &classHint);

    _DetectWindowManager();
    int32 count = 1;
    int32 current = 0;
    _ReadDesktops(&count, &current);
    fAppliedDesktop = current;
    fAppliedDesktopCount = count;
    {
        std::lock_guard<std::mutex> lock(fLock);
        fScreenFrame.Set(0, 0, DisplayWidth(fDisplay, fScreen) - 1,
                         DisplayHeight(fDisplay, fScreen) - 1);
        fWorkspaceCount = count;
        fCurrentWorkspace = current;
    }
    XFlush(fDisplay);
    return B_OK;
}

void X11Server::_FinishInit() {
    // What the first window does not need to be mapped: asked once it is, so
    // the program shows up sooner.
    fInitFinished = true;
    int major = 0;
    int minor = 0;
    Bool pixmaps = False;
    fSharedMemory = XShmQueryVersion(fDisplay, &major, &minor, &pixmaps);
    int errorBase = 0;
    if (XRRQueryExtension(fDisplay, &fRandREventBase, &errorBase))
        XRRSelectInput(fDisplay, fRoot, RRScreenChangeNotifyMask);
    else
        fRandREventBase = -1;

    Bool detectable = False;
    XkbSetDetectableAutoRepeat(fDisplay, True, &detectable);
    if (XModifierKeymap* map = XGetModifierMapping(fDisplay)) {
        KeyCode numLock = XKeysymToKeycode(fDisplay, XK_Num_Lock);
        for (int modifier = 0; modifier < 8; modifier++) {
            for (int index = 0; index < map->max_keypermod; index++) {
                KeyCode code = map->modifiermap[modifier * map->max_keypermod + index];
                if (code != 0 && code == numLock)
                    fNumLockMask = 1u << modifier;
            }
        }
        XFreeModifiermap(map);
    }
}

void X11Server::_DetectWindowManager() {
    fWindowManager = 0;
    ::Window check = 0;
    if (!_ReadWindowProperty(fRoot, fAtoms.netSupportingWMCheck, &check) || check == 0)
        return;
    // A stale property names a window that is gone or does not point back.
    ::Window confirmed = 0;
    if (_ReadWindowProperty(check, fAtoms.netSupportingWMCheck, &confirmed) && confirmed == check)
        fWindowManager = check;
}

bool X11Server::_ReadWindowProperty(::Window window, Atom property, ::Window* value) {
    Atom actualType;
    int actualFormat;
    unsigned long count = 0;
    unsigned long remaining = 0;
    unsigned char* data = NULL;
    bool found = false;
    if (XGetWindowProperty(fDisplay, window, property, 0, 1, False, XA_WINDOW, &actualType,
                           &actualFormat, &count, &remaining, &data) == Success &&
        data != NULL && actualFormat == 32 && count == 1) {
        *value = (::Window)((unsigned long*)data)[0];
        found = true;
    }
    if (data != NULL)
        XFree(data);
    return found;
}

bool X11Server::_ReadCardinal(::Window window, Atom property, unsigned long* value) {
    Atom actualType;
    int actualFormat;
    unsigned long count = 0;
    unsigned long remaining = 0;
    unsigned char* data = NULL;
    bool found = false;
    if (XGetWindowProperty(fDisplay, window, property, 0, 1, False, XA_CARDINAL, &actualType,
                           &actualFormat, &count, &remaining, &data) == Success &&
        data != NULL && actualFormat == 32 && count == 1) {
        *value = ((unsigned long*)data)[0];
        found = true;
    }
    if (data != NULL)
        XFree(data);
    return found;
}

void X11Server::_ReadDesktops(int32* count, int32* current) {
    *count = 1;
    *current = 0;
    if (fWindowManager == 0)
        return;
    unsigned long value = 0;
    if (_ReadCardinal(fRoot, fAtoms.netNumberOfDesktops, &value) && value >= 1)
        *count = (int32)std::min<unsigned long>(value, kMaxWorkspaces);
    if (_ReadCardinal(fRoot, fAtoms.netCurrentDesktop, &value) && value < (unsigned long)*count)
        *current = (int32)value;
}

void X11Server::NoteConnectionLost() {
    if (fLost.exchange(true))
        return;
    // Ask the application to quit as the user would; should it hang, the process
    // ends anyway.
    if (be_app != NULL) {
        BMessage quit(B_QUIT_REQUESTED);
        be_app_messenger.SendMessage(&quit, (BHandler*)NULL, 0);
    }
    std::thread([] {
        std::this_thread::sleep_for(std::chrono::seconds(5));
        fprintf(stderr, "glimrow: quitting without the X display\n");
        _exit(1);
    }).detach();
}

// #pragma mark - The thread's wait

void X11Server::_WakeUp() {
    DisplayServer::_WakeUp();
    uint64_t one = 1;
    if (fWakeFD >= 0) {
        ssize_t written = write(fWakeFD, &one, sizeof(one));
        (void)written;
    }
}

void X11Server::_WaitForWork(std::unique_lock<std::mutex>& queueLock, bigtime_t deadline) {
    sServerThread = std::this_thread::get_id();
    queueLock.unlock();
    if (!fLost) {
        _SyncWithModel();
        _HandleEvents();
        _SyncWithModel();
        XFlush(fDisplay);
    }

    int timeout = -1;
    if (deadline != B_INFINITE_TIMEOUT) {
        bigtime_t left = deadline - system_time();
        timeout = left <= 0 ? 0 : (int)std::min<bigtime_t>((left + 999) / 1000, 3600 * 1000);
    }
    // A menu's grab that another client's held up is tried again soon.
    if (fGrabRetryUntil != 0)
        timeout = timeout < 0 ? 10 : std::min(timeout, 10);
    bool queued = !fLost && XEventsQueued(fDisplay, QueuedAlready) > 0;
    if (!queued) {
        struct pollfd watched[2];
        watched[0].fd = fWakeFD;
        watched[0].events = POLLIN;
        watched[0].revents = 0;
        watched[1].fd = fLost ? -1 : ConnectionNumber(fDisplay);
        watched[1].events = POLLIN;
        watched[1].revents = 0;
        poll(watched, 2, timeout);
    }
    uint64_t value;
    ssize_t got = read(fWakeFD, &value, sizeof(value));
    (void)got;

    if (!fLost) {
        _HandleEvents();
        _SyncWithModel();
        if (fGrabRetryUntil != 0)
            _ApplyGrab();
        XFlush(fDisplay);
    }
    queueLock.lock();
}

// #pragma mark - Hooks of the model (fLock held, any thread)

void X11Server::_WindowChanged(ServerWindow* window) {
    fDirtyWindows.insert(window->id);
    if (window->hidden && fGrabbing == window->id) {
        fGrabbing = 0;
        fGrabDirty = true;
    }
    _WakeUp();
}

void X11Server::_WindowPresented(ServerWindow* window, const BRegion& region) {
    fDamage[window->id].Include(&region);
    _WakeUp();
}

void X11Server::_WorkspaceChanged() {
    fWorkspacesDirty = true;
    // Without a window manager we show and hide windows ourselves.
    for (auto& entry : fWindows)
        fDirtyWindows.insert(entry.first);
    _WakeUp();
}

void X11Server::_BeepNow() {
    fPendingBeeps++;
    _WakeUp();
}

ServerWindow* X11Server::_WindowAt(BPoint where) {
    // X knows which window is under the pointer, others' windows included; the
    // events tell us whenever it is one of ours.
    ServerWindow* window = _Find(fPointerWindow);
    if (window != NULL && _IsVisible(window))
        return window;
    return NULL;
}

// #pragma mark - Any thread

unsigned long X11Server::XWindowFor(int32 id) {
    std::lock_guard<std::mutex> lock(fLock);
    auto found = fXWindows.find(id);
    return found != fXWindows.end() ? found->second : 0;
}

status_t X11Server::GrabPointer(int32 id) {
    status_t status = DisplayServer::GrabPointer(id);
    if (status != B_OK)
        return status;
    std::lock_guard<std::mutex> lock(fLock);
    fGrabbing = id;
    fGrabDirty = true;
    _WakeUp();
    return B_OK;
}

void X11Server::UngrabPointer(int32 id) {
    DisplayServer::UngrabPointer(id);
    std::lock_guard<std::mutex> lock(fLock);
    if (fGrabbing != id)
        return;
    fGrabbing = 0;
    fGrabDirty = true;
    _WakeUp();
}

void X11Server::GetKeyInfo(key_info* info) {
    if (info == NULL)
        return;
    if (fLost) {
        DisplayServer::GetKeyInfo(info);
        return;
    }
    // Once tracked, the keyboard is read without waking the server's thread.
    if (_ReadKeyState(info))
        return;
    if (std::this_thread::get_id() == sServerThread.load()) {
        _StartKeyState();
        _QueryKeys(info);
        return;
    }
    auto answer = std::make_shared<std::promise<key_info>>();
    std::future<key_info> future = answer->get_future();
    _Enqueue(
        [this, answer] {
            _StartKeyState();
            key_info queried;
            _QueryKeys(&queried);
            answer->set_value(queried);
        },
        false);
    if (future.wait_for(std::chrono::seconds(2)) != std::future_status::ready) {
        DisplayServer::GetKeyInfo(info);
        return;
    }
    *info = future.get();
}

bool X11Server::TracksKeysPassively() const {
    return fKeyState != NULL && fKeyState->IsActive();
}

void X11Server::_StartKeyState() {
    // Programs that never ask for the keyboard never have X send its events.
    if (fKeyStateTried || fLost)
        return;
    fKeyStateTried = true;
    if (fKeyState->Start() != B_OK)
        fKeyStateFailed = true;
    // Whoever waits for key changes looks again: at the keys as they are now,
    // or at the news that it has to poll them.
    _NotifyWatchers();
}

bool X11Server::_SeesKeyChanges() {
    if (fLost)
        return false;
    if (!fKeyStateRequested.exchange(true))
        _Enqueue([this] { _StartKeyState(); }, false);
    return !fKeyStateFailed;
}

bool X11Server::_ReadKeyState(key_info* info) {
    return fKeyState != NULL && fKeyState->Read(info);
}

void X11Server::_QueryKeys(key_info* info) {
    memset(info, 0, sizeof(key_info));
    if (fLost)
        return;
    char keys[32];
    XQueryKeymap(fDisplay, keys);
    X11Keyboard::BeStatesFromKeymap(keys, info->key_states);
    info->modifiers = X11Keyboard::ModifiersFromStates(info->key_states);
    ::Window rootReturn;
    ::Window childReturn;
    int rootX;
    int rootY;
    int windowX;
    int windowY;
    unsigned int mask = 0;
    if (XQueryPointer(fDisplay, fRoot, &rootReturn, &childReturn, &rootX, &rootY, &windowX,
                      &windowY, &mask)) {
        if (mask & LockMask)
            info->modifiers |= B_CAPS_LOCK;
        if (fNumLockMask != 0 && (mask & fNumLockMask))
            info->modifiers |= B_NUM_LOCK;
    }
}

// The factory the display server looks for.
DisplayServer* create_x11_display_server(status_t* error) {
    return X11Server::Create(error);
}

} // namespace BPrivate
