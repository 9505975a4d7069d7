// The application object: the process's own looper, run in the main thread.
//
// The constructor queues the launch messages (B_ARGV_RECEIVED when the process has
// arguments, then B_READY_TO_RUN), so they are the first things Run() dispatches.
// Quitting asks every registered window in its own thread, by sending it a
// B_QUIT_REQUESTED and waiting for the answer; the application's lock is given up
// meanwhile, since a window that is quitting may need it.
#include <Application.h>

#include "app/AppPrivate.h"
#include "app/LooperPort.h"
#include "app/LooperPrivate.h"
#include "app/ThreadUtilities.h"
#include "app/TokenSpace.h"

#include <Entry.h>
#include <Message.h>
#include <Roster.h>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <errno.h>
#include <limits.h>
#include <stdio.h>
#include <string.h>
#include <strings.h>
#include <unistd.h>

using BPrivate::AppPrivate;
using BPrivate::current_thread;
using BPrivate::LooperPrivate;

BApplication* be_app = NULL;
BMessenger be_app_messenger;

struct BApplication::Private {
    std::string signature;
    status_t initError = B_OK;
    bool readyToRunCalled = false;

    // Pulse: a helper thread posts B_PULSE at the rate, one at a time.
    std::mutex pulseMutex;
    std::condition_variable pulseChanged;
    std::thread pulseThread;
    bigtime_t pulseRate = 0;
    bool pulseStop = false;
    std::atomic<bool> pulsePending{false};
};

namespace {

const bigtime_t kPulseGranularity = 100000;

bool is_token_character(char c) {
    if (c <= ' ' || c >= 127)
        return false;
    return strchr("()<>@,;:\\\"/[]?=", c) == NULL;
}

// "application/" followed by a non-empty MIME token.
bool is_valid_app_signature(const char* signature) {
    static const char kSupertype[] = "application/";
    if (signature == NULL || strlen(signature) >= B_MIME_TYPE_LENGTH)
        return false;
    if (strncasecmp(signature, kSupertype, sizeof(kSupertype) - 1) != 0)
        return false;
    const char* subtype = signature + sizeof(kSupertype) - 1;
    if (*subtype == '\0')
        return false;
    for (const char* c = subtype; *c != '\0'; c++) {
        if (!is_token_character(*c))
            return false;
    }
    return true;
}

// The process's own argument vector.
std::vector<std::string> read_arguments() {
    std::vector<std::string> arguments;
    FILE* file = fopen("/proc/self/cmdline", "rb");
    if (file == NULL)
        return arguments;
    std::string current;
    int c;
    while ((c = fgetc(file)) != EOF) {
        if (c == '\0') {
            arguments.push_back(current);
            current.clear();
        } else {
            current += (char)c;
        }
    }
    if (!current.empty())
        arguments.push_back(current);
    fclose(file);
    return arguments;
}

} // namespace

BApplication::BApplication(const char* signature)
    : BLooper(signature, B_NORMAL_PRIORITY + 1), fPrivate(NULL) {
    _InitData(signature, true, NULL);
}

BApplication::BApplication(const char* signature, status_t* error)
    : BLooper(signature, B_NORMAL_PRIORITY + 1), fPrivate(NULL) {
    _InitData(signature, false, error);
}

BApplication::BApplication(BMessage* data) : BLooper(data), fPrivate(NULL) {
    const char* signature = NULL;
    if (data != NULL)
        data->FindString("mime_sig", &signature);
    _InitData(signature, false, NULL);
}

void BApplication::_InitData(const char* signature, bool debuggerOnError, status_t* error) {
    if (be_app != NULL)
        debugger("BApplication: only one application object can exist");

    fPrivate = new Private;
    fPrivate->initError = is_valid_app_signature(signature) ? B_OK : B_BAD_VALUE;
    fPrivate->signature = signature != NULL ? signature : "";
    if (error != NULL)
        *error = fPrivate->initError;
    else if (debuggerOnError && fPrivate->initError != B_OK)
        debugger("BApplication: the signature is not a valid application MIME type");

    be_app = this;
    be_app_messenger = BMessenger(NULL, this);
    if (fPrivate->initError != B_OK)
        return;

    // The launch messages come before B_READY_TO_RUN.
    _PostArguments();
    PostMessage(B_READY_TO_RUN, this);
}

void BApplication::_PostArguments() {
    std::vector<std::string> arguments = read_arguments();
    if (arguments.size() < 2)
        return;
    BMessage message(B_ARGV_RECEIVED);
    message.AddInt32("argc", (int32)arguments.size());
    for (const std::string& argument : arguments)
        message.AddString("argv", argument.c_str());
    char cwd[PATH_MAX];
    if (getcwd(cwd, sizeof(cwd)) != NULL)
        message.AddString("cwd", cwd);
    PostMessage(&message, this);
}

BApplication::~BApplication() {
    _StopPulse();
    // Windows still open are closed without being asked.
    _QuitAllWindows(true);
    if (be_app == this) {
        be_app = NULL;
        be_app_messenger = BMessenger();
    }
    delete fPrivate;
    fPrivate = NULL;
}

BArchivable* BApplication::Instantiate(BMessage* data) {
    if (!validate_instantiation(data, "BApplication"))
        return NULL;
    return new BApplication(data);
}

status_t BApplication::Archive(BMessage* data, bool deep) const {
    status_t status = BLooper::Archive(data, deep);
    if (status != B_OK)
        return status;
    return data->AddString("mime_sig", fPrivate->signature.c_str());
}

status_t BApplication::InitCheck() const {
    return fPrivate->initError;
}

// #pragma mark - Running and quitting

thread_id BApplication::Run() {
    if (fPrivate->initError != B_OK)
        return fPrivate->initError;
    LooperPrivate(this).RunInCallingThread();
    _StopPulse();
    // Windows that quit themselves on the way out (B_QUIT_ON_WINDOW_CLOSE, or
    // before posting B_QUIT_REQUESTED here) may still be in their destructors.
    LooperPrivate self(this);
    int32 lockCount = IsLocked() ? self.UnlockFully() : 0;
    AppPrivate::WaitForEndingWindows();
    if (lockCount > 0)
        self.RestoreLock(lockCount);
    return Thread();
}

void BApplication::Quit() {
    bool unlock = false;
    if (!IsLocked()) {
        fprintf(stderr, "BApplication::Quit(): the application must be locked by the caller\n");
        if (!Lock())
            return;
        unlock = true;
    }
    LooperPrivate looper(this);
    if (!looper.IsRunning()) {
        delete this;
        return;
    }
    if (current_thread() == Thread())
        looper.SetTerminating();
    else
        looper.PostQuitMessage();
    if (unlock)
        Unlock();
}

bool BApplication::QuitRequested() {
    // Hook function
    return _QuitAllWindows(false);
}

bool BApplication::_QuitAllWindows(bool force) {
    LooperPrivate self(this);
    int32 lockCount = IsLocked() ? self.UnlockFully() : 0;

    bool quit = true;
    std::vector<BLooper*> windows;
    for (int32 index = 0; BLooper* window = AppPrivate::WindowAt(index); index++)
        windows.push_back(window);

    for (BLooper* window : windows) {
        // Lock() finds out whether the window still exists without touching it.
        if (!AppPrivate::HasWindow(window) || !window->Lock())
            continue;
        if (force) {
            window->Quit();
            continue;
        }
        if (!LooperPrivate(window).IsRunning()) {
            // Without a thread of its own the window is asked here.
            if (!window->QuitRequested()) {
                window->Unlock();
                quit = false;
                break;
            }
            window->Quit();
            continue;
        }

        BMessenger messenger(window, window);
        std::shared_ptr<BPrivate::LooperPort> port = BPrivate::TokenSpace::Default().PortOf(window);
        window->Unlock();

        BMessage request(B_QUIT_REQUESTED);
        BMessage reply;
        if (messenger.SendMessage(&request, &reply) != B_OK)
            continue;
        bool agreed = false;
        if (reply.FindBool("result", &agreed) != B_OK)
            agreed = !messenger.IsValid();
        if (!agreed) {
            quit = false;
            break;
        }
        // The window's thread deletes it once it is done.
        if (port != nullptr)
            port->WaitFinished();
    }
    // A window whose lock could not be taken was ending on its own.
    if (quit)
        AppPrivate::WaitForEndingWindows();

    if (lockCount > 0)
        self.RestoreLock(lockCount);
    return quit;
}

// #pragma mark - Hooks

void BApplication::Pulse() {
    // Hook function
}

void BApplication::ReadyToRun() {
    // Hook function
}

void BApplication::MessageReceived(BMessage* message) {
    // Hook function
    switch (message->what) {
    case B_SILENT_RELAUNCH:
        // Launched again while running: nothing more to do.
        break;
    default:
        BLooper::MessageReceived(message);
        break;
    }
}

void BApplication::ArgvReceived(int32 argc, char** argv) {
    // Hook function
}

void BApplication::AppActivated(bool active) {
    // Hook function
}

void BApplication::RefsReceived(BMessage* message) {
    // Hook function
}

void BApplication::AboutRequested() {
    // Hook function
}

BHandler* BApplication::ResolveSpecifier(BMessage* message, int32 index, BMessage* specifier,
                                         int32 what, const char* property) {
    return BLooper::ResolveSpecifier(message, index, specifier, what, property);
}

void BApplication::DispatchMessage(BMessage* message, BHandler* handler) {
    if (message == NULL || handler != this) {
        BLooper::DispatchMessage(message, handler);
        return;
    }

    switch (message->what) {
    case B_ARGV_RECEIVED: {
        int32 argc = 0;
        if (message->FindInt32("argc", &argc) != B_OK || argc <= 0)
            break;
        std::vector<char*> argv;
        const char* argument;
        while ((int32)argv.size() < argc &&
               message->FindString("argv", (int32)argv.size(), &argument) == B_OK) {
            argv.push_back(const_cast<char*>(argument));
        }
        if (argv.empty())
            break;
        int32 count = (int32)argv.size();
        argv.push_back(NULL);
        ArgvReceived(count, argv.data());
        break;
    }
    case B_REFS_RECEIVED:
        RefsReceived(message);
        break;
    case B_READY_TO_RUN:
        if (!fPrivate->readyToRunCalled) {
            ReadyToRun();
            fPrivate->readyToRunCalled = true;
        }
        break;
    case B_ABOUT_REQUESTED:
        AboutRequested();
        break;
    case B_PULSE:
        fPrivate->pulsePending.store(false);
        Pulse();
        break;
    case B_APP_ACTIVATED: {
        bool active;
        if (message->FindBool("active", &active) == B_OK)
            AppActivated(active);
        break;
    }
    default:
        BLooper::DispatchMessage(message, handler);
        break;
    }
}

// #pragma mark - Windows, loopers, information

int32 BApplication::CountWindows() const {
    return AppPrivate::CountWindows();
}

BWindow* BApplication::WindowAt(int32 index) const {
    // Windows are loopers of the interface kit, derived from BLooper alone, so the
    // looper's address is the window's.
    return reinterpret_cast<BWindow*>(AppPrivate::WindowAt(index));
}

int32 BApplication::CountLoopers() const {
    return BPrivate::TokenSpace::Default().CountLoopers();
}

BLooper* BApplication::LooperAt(int32 index) const {
    return BPrivate::TokenSpace::Default().LooperAt(index);
}

bool BApplication::IsLaunching() const {
    return !fPrivate->readyToRunCalled;
}

status_t BApplication::GetAppInfo(app_info* info) const {
    if (info == NULL)
        return B_BAD_VALUE;
    if (fPrivate->initError != B_OK)
        return fPrivate->initError;

    info->thread = Thread();
    info->team = Team();
    info->port = LooperPrivate(const_cast<BApplication*>(this)).PortToken();
    // Nothing keeps a second copy of a Linux program from starting.
    info->flags = B_MULTIPLE_LAUNCH;
    snprintf(info->signature, sizeof(info->signature), "%s", fPrivate->signature.c_str());

    char path[PATH_MAX];
    ssize_t length = readlink("/proc/self/exe", path, sizeof(path) - 1);
    if (length < 0)
        return B_FROM_POSIX_ERROR(errno);
    path[length] = '\0';
    return get_ref_for_path(path, &info->ref);
}

// #pragma mark - Pulse

void BApplication::SetPulseRate(bigtime_t rate) {
    if (rate < 0)
        rate = 0;
    rate -= rate % kPulseGranularity;
    if (rate == 0) {
        _StopPulse();
        return;
    }

    std::lock_guard<std::mutex> locker(fPrivate->pulseMutex);
    fPrivate->pulseRate = rate;
    if (fPrivate->pulseThread.joinable()) {
        fPrivate->pulseChanged.notify_all();
        return;
    }
    fPrivate->pulseStop = false;
    BMessenger target(this, this);
    Private* state = fPrivate;
    fPrivate->pulseThread = std::thread([state, target] {
        std::unique_lock<std::mutex> locker(state->pulseMutex);
        while (!state->pulseStop) {
            bigtime_t rate = state->pulseRate;
            bool changed =
                state->pulseChanged.wait_for(locker, std::chrono::microseconds(rate), [&] {
                    return state->pulseStop || state->pulseRate != rate;
                });
            if (changed)
                continue;
            // One pulse at a time: a busy application does not pile them up.
            if (state->pulsePending.exchange(true))
                continue;
            locker.unlock();
            if (target.SendMessage(B_PULSE) != B_OK)
                state->pulsePending.store(false);
            locker.lock();
        }
    });
}

void BApplication::_StopPulse() {
    std::thread thread;
    {
        std::lock_guard<std::mutex> locker(fPrivate->pulseMutex);
        fPrivate->pulseStop = true;
        fPrivate->pulseRate = 0;
        thread = std::move(fPrivate->pulseThread);
    }
    fPrivate->pulseChanged.notify_all();
    if (thread.joinable())
        thread.join();
}

// #pragma mark - Scripting and extensions

status_t BApplication::GetSupportedSuites(BMessage* data) {
    if (data == NULL)
        return B_BAD_VALUE;
    status_t status = data->AddString("suites", "suite/vnd.Be-application");
    if (status != B_OK)
        return status;
    return BLooper::GetSupportedSuites(data);
}

status_t BApplication::Perform(perform_code d, void* arg) {
    return BLooper::Perform(d, arg);
}

// #pragma mark - AppPrivate

const char* BPrivate::AppPrivate::Signature() {
    if (be_app == NULL || be_app->fPrivate == NULL)
        return NULL;
    return be_app->fPrivate->signature.c_str();
}
