// The display server's core: choosing the backend, the thread and its queue of
// jobs, the screen, workspaces, and idle detection for tests. The window model is
// in DisplayServerWindows.cpp, input routing in DisplayServerInput.cpp.
#include "server/DisplayServer.h"

#include "app/LooperPrivate.h"
#include "app/MessagePrivate.h"
#include "interface/WindowPrivate.h"
#include "server/headless/HeadlessServer.h"

#include <Application.h>
#include <OS.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

namespace BPrivate {

namespace {

std::mutex sServerLock;
DisplayServer* sServer = NULL;
bool sUseHeadless = false;
status_t sFailure = B_OK;

// A message that cannot wait (a press, a key) may hold the server's thread this
// long when the window's queue is full; pointer moves are dropped instead.
const bigtime_t kPostTimeout = 500000;

std::chrono::steady_clock::time_point deadline_after(bigtime_t timeout) {
    if (timeout < 0)
        timeout = 0;
    // Far enough to mean "never" without overflowing the clock.
    if (timeout > (bigtime_t)3600 * 24 * 365 * 1000000)
        timeout = (bigtime_t)3600 * 24 * 365 * 1000000;
    return std::chrono::steady_clock::now() + std::chrono::microseconds(timeout);
}

} // namespace

int32 buffer_extent(float span) {
    if (!(span >= 0.0f))
        return 1;
    if (span > (float)(kMaxBufferExtent - 1))
        return kMaxBufferExtent;
    return (int32)floorf(span + 0.5f) + 1;
}

CairoSurfacePointer make_buffer(BRect frame) {
    cairo_surface_t* surface = cairo_image_surface_create(
        CAIRO_FORMAT_ARGB32, buffer_extent(frame.Width()), buffer_extent(frame.Height()));
    return CairoSurfacePointer(surface);
}

// #pragma mark - Backend choice

DisplayServer* DisplayServer::Default(status_t* error) {
    std::lock_guard<std::mutex> lock(sServerLock);
    if (sServer != NULL) {
        if (error != NULL)
            *error = B_OK;
        return sServer;
    }
    if (sFailure != B_OK) {
        if (error != NULL)
            *error = sFailure;
        return NULL;
    }

    const char* choice = getenv("GLIMROW_DISPLAY");
    bool headless = sUseHeadless || (choice != NULL && strcmp(choice, "headless") == 0);
    status_t status = B_OK;
    DisplayServer* server = NULL;
    if (!headless && choice != NULL && choice[0] != '\0' && strcmp(choice, "x11") != 0) {
        fprintf(stderr,
                "glimrow: unknown display backend \"%s\" in GLIMROW_DISPLAY "
                "(use \"x11\" or \"headless\")\n",
                choice);
        status = B_BAD_VALUE;
    } else if (headless) {
        server = new HeadlessServer();
        status = server->_Start();
    } else {
        // The backend says itself what kept it from opening the display.
        server = create_x11_display_server(&status);
        if (server == NULL && status == B_OK)
            status = B_ERROR;
        if (server != NULL && status == B_OK) {
            status = server->_Start();
            if (status != B_OK)
                fprintf(stderr, "glimrow: cannot start the X11 display server (error %d)\n",
                        (int)status);
        }
    }

    if (status != B_OK) {
        delete server;
        sFailure = status;
        if (error != NULL)
            *error = status;
        return NULL;
    }
    sServer = server;
    if (error != NULL)
        *error = B_OK;
    return sServer;
}

DisplayServer* DisplayServer::Current() {
    std::lock_guard<std::mutex> lock(sServerLock);
    return sServer;
}

status_t DisplayServer::UseHeadless() {
    std::lock_guard<std::mutex> lock(sServerLock);
    if (sServer != NULL && strcmp(sServer->BackendName(), "headless") != 0)
        return B_NOT_ALLOWED;
    sUseHeadless = true;
    sFailure = B_OK;
    return B_OK;
}

// #pragma mark - Life

DisplayServer::DisplayServer()
    : fNextWindowID(1), fActiveWindow(0), fScreenFrame(0, 0, 1279, 799), fWorkspaceCount(4),
      fCurrentWorkspace(0), fBeepCount(0), fQuitting(false), fActivity(0), fNextTicket(0),
      fPointer(0, 0), fButtons(0), fModifiers(0), fGrabWindow(0), fMouseDownWindow(0),
      fSwallowClick(false), fLastMouseWindow(0), fLastClickTime(0), fLastClickButtons(0),
      fLastClickWindow(0), fClickCount(0) {
    memset(fKeyStates, 0, sizeof(fKeyStates));
}

DisplayServer::~DisplayServer() {
    _StopThread();
}

void DisplayServer::_StopThread() {
    {
        std::lock_guard<std::mutex> lock(fQueueLock);
        fQuitting = true;
    }
    _WakeUp();
    if (fThread.joinable())
        fThread.join();
}

status_t DisplayServer::_Start() {
    fThread = std::thread([this] { _Loop(); });
    return B_OK;
}

void DisplayServer::_Enqueue(std::function<void()> job, bool activity) {
    {
        std::lock_guard<std::mutex> lock(fQueueLock);
        fJobs.push_back(Job{std::move(job), activity});
    }
    _WakeUp();
}

bool DisplayServer::_HasWork() {
    return fQuitting || !fJobs.empty();
}

void DisplayServer::_WaitForWork(std::unique_lock<std::mutex>& queueLock, bigtime_t deadline) {
    auto ready = [this] { return _HasWork(); };
    if (deadline == B_INFINITE_TIMEOUT)
        fQueueCondition.wait(queueLock, ready);
    else
        fQueueCondition.wait_until(queueLock, deadline_after(deadline - system_time()), ready);
}

void DisplayServer::_WakeUp() {
    fQueueCondition.notify_one();
}

void DisplayServer::_Loop() {
    fThreadID = std::this_thread::get_id();
    while (true) {
        bigtime_t nextTimer = _RunTimers();
        Job job;
        {
            std::unique_lock<std::mutex> lock(fQueueLock);
            if (!_HasWork())
                _WaitForWork(lock, nextTimer);
            if (fQuitting && fJobs.empty())
                return;
            if (fJobs.empty())
                continue;
            job = std::move(fJobs.front());
            fJobs.pop_front();
        }
        if (job.activity)
            NoteActivity();
        job.work();
    }
}

bigtime_t DisplayServer::_RunTimers() {
    Outbox outbox;
    bigtime_t next = B_INFINITE_TIMEOUT;
    {
        std::lock_guard<std::mutex> lock(fLock);
        bigtime_t now = system_time();
        for (auto& entry : fWindows) {
            ServerWindow* window = entry.second.get();
            if (window->pulseRate <= 0 || !window->running)
                continue;
            if (window->nextPulse <= now) {
                BMessage pulse(B_PULSE);
                pulse.AddInt64("when", now);
                outbox.push_back(Outgoing{window->messenger, pulse, true, BMessenger()});
                window->nextPulse = now + window->pulseRate;
            }
            next = std::min(next, window->nextPulse);
        }
    }
    _Post(outbox);
    return next;
}

void DisplayServer::_Post(Outbox& outbox) {
    for (Outgoing& outgoing : outbox) {
        outgoing.target.SendMessage(&outgoing.message, outgoing.replyTo,
                                    outgoing.droppable ? 0 : kPostTimeout);
    }
    outbox.clear();
}

void DisplayServer::_PostLater(Outbox&& outbox) {
    if (outbox.empty())
        return;
    auto shared = std::make_shared<Outbox>(std::move(outbox));
    _Enqueue([this, shared] { _Post(*shared); });
}

// #pragma mark - Screen

BRect DisplayServer::ScreenFrame() {
    std::lock_guard<std::mutex> lock(fLock);
    return fScreenFrame;
}

color_space DisplayServer::ScreenColorSpace() {
    return B_RGB32;
}

void DisplayServer::_SetScreenFrame(BRect frame) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        fScreenFrame = frame;
        bigtime_t now = system_time();
        for (ServerWindow* window : _StackBackToFront()) {
            BMessage changed(B_SCREEN_CHANGED);
            changed.AddInt64("when", now);
            changed.AddRect("frame", frame);
            changed.AddInt32("mode", B_RGB32);
            outbox.push_back(Outgoing{window->messenger, changed, false, BMessenger()});
        }
    }
    _Post(outbox);
}

// #pragma mark - Workspaces

int32 DisplayServer::CountWorkspaces() {
    std::lock_guard<std::mutex> lock(fLock);
    return fWorkspaceCount;
}

int32 DisplayServer::CurrentWorkspace() {
    std::lock_guard<std::mutex> lock(fLock);
    return fCurrentWorkspace;
}

void DisplayServer::ActivateWorkspace(int32 workspace) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        if (workspace < 0 || workspace >= fWorkspaceCount || workspace == fCurrentWorkspace)
            return;
        _SwitchWorkspace(workspace, outbox);
    }
    _PostLater(std::move(outbox));
}

void DisplayServer::_SwitchWorkspace(int32 workspace, Outbox& outbox) {
    int32 previous = fCurrentWorkspace;
    fCurrentWorkspace = workspace;
    bigtime_t now = system_time();
    std::vector<ServerWindow*> windows = _StackBackToFront();
    for (ServerWindow* window : windows) {
        if (!_InWorkspace(window, previous))
            continue;
        BMessage message(B_WORKSPACE_ACTIVATED);
        message.AddInt64("when", now);
        message.AddInt32("workspace", previous);
        message.AddBool("active", false);
        outbox.push_back(Outgoing{window->messenger, message, false, BMessenger()});
    }
    for (ServerWindow* window : windows) {
        if (!_InWorkspace(window, workspace))
            continue;
        BMessage message(B_WORKSPACE_ACTIVATED);
        message.AddInt64("when", now);
        message.AddInt32("workspace", workspace);
        message.AddBool("active", true);
        outbox.push_back(Outgoing{window->messenger, message, false, BMessenger()});
    }
    for (ServerWindow* window : windows) {
        if (!_InWorkspace(window, workspace))
            continue;
        BMessage changed(B_SCREEN_CHANGED);
        changed.AddInt64("when", now);
        changed.AddRect("frame", fScreenFrame);
        changed.AddInt32("mode", B_RGB32);
        outbox.push_back(Outgoing{window->messenger, changed, false, BMessenger()});
    }
    ServerWindow* active = _Find(fActiveWindow);
    if (active == NULL || !_IsVisible(active)) {
        fActiveWindow = active != NULL ? fActiveWindow : 0;
        _ActivateNext(outbox);
    }
    if (fGrabWindow != 0) {
        ServerWindow* grab = _Find(fGrabWindow);
        if (grab == NULL || !_IsVisible(grab))
            fGrabWindow = 0;
    }
    _WorkspaceChanged();
}

void DisplayServer::SetWorkspaceCount(int32 count) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        count = std::max<int32>(1, std::min<int32>(count, kMaxWorkspaces));
        if (count == fWorkspaceCount)
            return;
        fWorkspaceCount = count;
        if (fCurrentWorkspace >= count)
            _SwitchWorkspace(count - 1, outbox);
        _WorkspaceChanged();
    }
    _NotifyWatchers();
    _PostLater(std::move(outbox));
}

void DisplayServer::Beep() {
    std::lock_guard<std::mutex> lock(fLock);
    fBeepCount++;
    _BeepNow();
}

// #pragma mark - Synchronisation

void DisplayServer::Sync() {
    if (std::this_thread::get_id() == fThreadID.load())
        return;
    auto done = std::make_shared<std::promise<void>>();
    std::future<void> future = done->get_future();
    _Enqueue([done] { done->set_value(); }, false);
    future.wait();
}

void DisplayServer::NoteDelivery(const BMessage* message) {
    // Probes are how idleness is measured; pulses come on their own forever.
    if (message->what == kMessageIdleProbe || message->what == B_PULSE)
        return;
    if (DisplayServer* server = Current())
        server->NoteActivity();
}

void DisplayServer::WindowSynced(int32 id, uint64 ticket, bool idle) {
    {
        std::lock_guard<std::mutex> lock(fLock);
        ServerWindow* window = _Find(id);
        if (window == NULL || ticket <= window->answeredTicket)
            return;
        window->answeredTicket = ticket;
        window->idleAtTicket = idle;
    }
    fModelCondition.notify_all();
}

status_t DisplayServer::_WatchApplication(bool* running) {
    *running = false;
    // Only an application running in a thread of its own can be asked; one that
    // is not running handles nothing anyway.
    BApplication* application = be_app;
    if (application == NULL)
        return B_OK;
    // Another thread may hold the application for as long as it likes (one
    // that has not called Run() yet): that is busy, not a reason to hang.
    status_t status = application->LockWithTimeout(kApplicationLockWait);
    if (status == B_TIMED_OUT || status == B_WOULD_BLOCK)
        return B_TIMED_OUT;
    if (status != B_OK)
        return B_OK;
    *running = LooperPrivate(application).IsRunning() && application->Thread() != find_thread(NULL);
    if (*running) {
        std::lock_guard<std::mutex> lock(fLock);
        if (!(fWatchedApplication == be_app_messenger)) {
            LooperPrivate(application).SetDeliveryHook(NoteDelivery);
            fWatchedApplication = be_app_messenger;
        }
    }
    application->Unlock();
    return B_OK;
}

status_t DisplayServer::WaitForIdle(bigtime_t timeout) {
    auto deadline = deadline_after(timeout);
    while (true) {
        uint64 activityBefore = fActivity.load();
        bool idle = true;
        bool application = false;
        if (_WatchApplication(&application) != B_OK)
            idle = false;
        Sync();

        if (application) {
            // The reply comes once everything queued before the probe is handled.
            BMessage probe(kMessageIdleProbe);
            BMessage reply;
            bigtime_t left = std::chrono::duration_cast<std::chrono::microseconds>(
                                 deadline - std::chrono::steady_clock::now())
                                 .count();
            status_t status =
                be_app_messenger.SendMessage(&probe, &reply, 0, std::max<bigtime_t>(left, 0));
            if (status == B_TIMED_OUT)
                return B_TIMED_OUT;
            // A full queue is busy; a gone application is not ours to wait for.
            if (status == B_WOULD_BLOCK)
                idle = false;
        }

        std::vector<std::pair<int32, uint64>> probes;
        std::vector<BMessenger> targets;
        {
            std::lock_guard<std::mutex> lock(fLock);
            for (auto& entry : fWindows) {
                if (!entry.second->running)
                    continue;
                probes.push_back(std::make_pair(entry.first, ++fNextTicket));
                targets.push_back(entry.second->messenger);
            }
        }
        for (size_t index = 0; index < probes.size(); index++) {
            BMessage probe(kMessageIdleProbe);
            probe.AddInt64("ticket", (int64)probes[index].second);
            status_t status = targets[index].SendMessage(&probe, (BHandler*)NULL, 0);
            if (status != B_OK) {
                // A window that is going away answers nothing; a full queue
                // is not idle.
                if (targets[index].IsValid())
                    idle = false;
                probes[index].second = 0;
            }
        }

        {
            std::unique_lock<std::mutex> lock(fLock);
            auto answered = [&] {
                for (auto& probe : probes) {
                    ServerWindow* window = _Find(probe.first);
                    if (probe.second != 0 && window != NULL &&
                        window->answeredTicket < probe.second)
                        return false;
                }
                return true;
            };
            if (!fModelCondition.wait_until(lock, deadline, answered))
                return B_TIMED_OUT;
            for (auto& probe : probes) {
                ServerWindow* window = _Find(probe.first);
                if (probe.second != 0 && window != NULL && !window->idleAtTicket)
                    idle = false;
            }
        }

        Sync();
        if (idle && fActivity.load() == activityBefore)
            return B_OK;
        if (std::chrono::steady_clock::now() > deadline)
            return B_TIMED_OUT;
    }
}

std::vector<WindowListing> DisplayServer::ListWindows() {
    std::lock_guard<std::mutex> lock(fLock);
    std::vector<WindowListing> listing;
    for (ServerWindow* window : _StackBackToFront()) {
        listing.push_back(WindowListing{
            window->id, window->title, window->frame, window->look, window->feel, window->flags,
            window->workspaces, window->hidden, window->minimized, _IsVisible(window),
            fActiveWindow == window->id, window->presentCount, window->messenger});
    }
    return listing;
}

status_t DisplayServer::WaitForPresent(int32 id, uint32 count, bigtime_t timeout) {
    std::unique_lock<std::mutex> lock(fLock);
    bool done = fModelCondition.wait_until(lock, deadline_after(timeout), [&] {
        ServerWindow* window = _Find(id);
        return window == NULL || window->presentCount >= count;
    });
    if (!done)
        return B_TIMED_OUT;
    return _Find(id) != NULL ? B_OK : B_BAD_VALUE;
}

} // namespace BPrivate
