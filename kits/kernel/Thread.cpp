// Be threads on top of POSIX threads.
//
// A thread_id is the Linux thread id. Threads made by spawn_thread() have an entry in
// a process-wide registry that carries what Linux does not know: the full Be name,
// the recorded priority, the suspended-at-start state and the exit value. The entry
// outlives the thread until one wait_for_thread() has collected the exit value, so an
// id stays good for waiting after its thread ended. The POSIX threads themselves are
// detached: nobody has to join them, and a looper that quits from its own thread
// leaves nothing behind.
//
// Other threads of the process (the main thread, std::thread) get an entry only when
// something has to be remembered about them (a Be name longer than Linux keeps, a
// priority, a self-suspension); the rest comes from /proc/self/task.
#include <OS.h>

#include "ProcTask.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

#include <errno.h>
#include <pthread.h>
#include <string.h>
#include <unistd.h>

using BPrivate::proc_task_exists;

namespace {

// Collected-never threads keep their entries so their ids stay valid for waiting;
// past this many the oldest are forgotten.
const size_t kMaxUncollectedThreads = 4096;

struct ThreadEntry {
    enum State { kSuspendedAtStart, kRunning, kFinished };

    thread_id id = -1;
    bool spawned = false;
    thread_func function = NULL;
    void* data = NULL;
    char name[B_OS_NAME_LENGTH] = {};
    int32 priority = B_NORMAL_PRIORITY;
    State state = kRunning;
    bool resumeAtStart = false;
    bool killedAtStart = false;
    bool selfSuspended = false;
    // wait_for_thread() has taken the exit value.
    bool collected = false;
    status_t exitValue = B_OK;
    void* stackBase = NULL;
    void* stackEnd = NULL;
    // Signalled (under the registry lock) whenever any of the above changes.
    std::condition_variable changed;

    // Spawned, and neither resumed nor killed yet. (A resumed thread may not have
    // woken up yet, but it is no longer suspended.)
    bool IsWaitingToStart() const {
        return state == kSuspendedAtStart && !resumeAtStart && !killedAtStart;
    }
};

using EntryPointer = std::shared_ptr<ThreadEntry>;

struct Registry {
    std::mutex lock;
    std::unordered_map<thread_id, EntryPointer> entries;
    std::deque<thread_id> finishedOrder;
};

// Never destroyed: detached threads may still be using it while the process exits.
Registry& registry() {
    static Registry* sRegistry = new Registry;
    return *sRegistry;
}

struct ExitCallback {
    void (*function)(void*);
    void* data;
};

// The on_exit_thread() callbacks of the calling thread. For threads we did not make,
// the destructor of this thread_local runs them at thread exit.
struct ExitCallbacks {
    std::vector<ExitCallback> callbacks;

    void RunAll() {
        while (!callbacks.empty()) {
            ExitCallback callback = callbacks.back();
            callbacks.pop_back();
            callback.function(callback.data);
        }
    }

    ~ExitCallbacks() { RunAll(); }
};

thread_local ExitCallbacks sExitCallbacks;
thread_local thread_id sCurrentThread = -1;
thread_local ThreadEntry* sCurrentEntry = NULL;

void copy_name(char* target, const char* name) {
    if (name == NULL)
        name = "unnamed thread";
    strncpy(target, name, B_OS_NAME_LENGTH - 1);
    target[B_OS_NAME_LENGTH - 1] = '\0';
}

int32 clamp_priority(int32 priority) {
    if (priority < B_LOWEST_ACTIVE_PRIORITY)
        return B_LOWEST_ACTIVE_PRIORITY;
    if (priority > B_MAX_PRIORITY)
        return B_MAX_PRIORITY;
    return priority;
}

// The registry entry of a live or uncollected thread; a stale entry of a foreign
// thread that has gone is dropped on the way. Call with the registry lock held.
EntryPointer find_entry_locked(thread_id thread) {
    Registry& threads = registry();
    auto found = threads.entries.find(thread);
    if (found == threads.entries.end())
        return nullptr;
    bool forgettable = !found->second->spawned || found->second->collected;
    if (forgettable && !proc_task_exists(thread)) {
        threads.entries.erase(found);
        return nullptr;
    }
    return found->second;
}

// Makes an entry for a thread we did not spawn. Call with the registry lock held.
EntryPointer foreign_entry_locked(thread_id thread) {
    EntryPointer entry = find_entry_locked(thread);
    if (entry != nullptr)
        return entry;
    if (!proc_task_exists(thread))
        return nullptr;

    entry = std::make_shared<ThreadEntry>();
    entry->id = thread;
    if (BPrivate::proc_task_read_name(thread, entry->name, sizeof(entry->name)) != B_OK)
        return nullptr;
    registry().entries[thread] = entry;
    return entry;
}

void forget_oldest_finished_locked() {
    Registry& threads = registry();
    while (threads.finishedOrder.size() > kMaxUncollectedThreads) {
        thread_id oldest = threads.finishedOrder.front();
        threads.finishedOrder.pop_front();
        auto found = threads.entries.find(oldest);
        if (found != threads.entries.end() && found->second->state == ThreadEntry::kFinished)
            threads.entries.erase(found);
    }
}

// Runs in the new thread for as long as its function does; ends the thread's life as
// a Be thread also when exit_thread() unwinds it.
class ThreadLifetime {
public:
    explicit ThreadLifetime(EntryPointer entry) : fEntry(std::move(entry)) {}

    ~ThreadLifetime() {
        sExitCallbacks.RunAll();

        Registry& threads = registry();
        std::lock_guard<std::mutex> locker(threads.lock);
        fEntry->state = ThreadEntry::kFinished;
        threads.finishedOrder.push_back(fEntry->id);
        forget_oldest_finished_locked();
        fEntry->changed.notify_all();
        sCurrentEntry = NULL;
    }

    ThreadLifetime(const ThreadLifetime&) = delete;
    ThreadLifetime& operator=(const ThreadLifetime&) = delete;

private:
    EntryPointer fEntry;
};

void record_stack(ThreadEntry* entry) {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0)
        return;
    void* stackAddress = NULL;
    size_t stackSize = 0;
    if (pthread_attr_getstack(&attributes, &stackAddress, &stackSize) == 0) {
        entry->stackBase = stackAddress;
        entry->stackEnd = (char*)stackAddress + stackSize;
    }
    pthread_attr_destroy(&attributes);
}

void* thread_main(void* argument) {
    std::unique_ptr<EntryPointer> handed(static_cast<EntryPointer*>(argument));
    EntryPointer entry = *handed;
    handed.reset();

    sCurrentThread = (thread_id)gettid();
    sCurrentEntry = entry.get();
    // Named before spawn_thread() returns, so the name is in /proc at once.
    BPrivate::proc_task_write_name(sCurrentThread, entry->name);
    record_stack(entry.get());

    Registry& threads = registry();
    bool killed;
    {
        std::unique_lock<std::mutex> locker(threads.lock);
        entry->id = sCurrentThread;
        entry->changed.notify_all();
        entry->changed.wait(locker, [&] { return entry->resumeAtStart || entry->killedAtStart; });
        killed = entry->killedAtStart;
        if (killed)
            entry->exitValue = B_INTERRUPTED;
        else
            entry->state = ThreadEntry::kRunning;
    }

    ThreadLifetime lifetime(entry);
    if (!killed) {
        status_t result = entry->function(entry->data);
        std::lock_guard<std::mutex> locker(threads.lock);
        entry->exitValue = result;
    }
    return NULL;
}

} // namespace

// #pragma mark - Creating and ending threads

thread_id spawn_thread(thread_func func, const char* name, int32 priority, void* data) {
    if (func == NULL)
        return B_BAD_VALUE;

    EntryPointer entry = std::make_shared<ThreadEntry>();
    entry->spawned = true;
    entry->function = func;
    entry->data = data;
    entry->priority = clamp_priority(priority);
    entry->state = ThreadEntry::kSuspendedAtStart;
    copy_name(entry->name, name);

    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0)
        return B_NO_MEMORY;
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);

    auto* handed = new (std::nothrow) EntryPointer(entry);
    if (handed == NULL) {
        pthread_attr_destroy(&attributes);
        return B_NO_MEMORY;
    }

    pthread_t thread;
    int error = pthread_create(&thread, &attributes, thread_main, handed);
    pthread_attr_destroy(&attributes);
    if (error != 0) {
        delete handed;
        return error == EAGAIN ? B_NO_MORE_THREADS : B_FROM_POSIX_ERROR(error);
    }

    Registry& threads = registry();
    std::unique_lock<std::mutex> locker(threads.lock);
    entry->changed.wait(locker, [&] { return entry->id >= 0; });
    // Linux reuses the ids of ended threads; an uncollected entry under the same id
    // belongs to a thread that is long gone.
    threads.entries[entry->id] = entry;
    return entry->id;
}

status_t resume_thread(thread_id thread) {
    Registry& threads = registry();
    std::lock_guard<std::mutex> locker(threads.lock);
    EntryPointer entry = find_entry_locked(thread);
    if (entry == nullptr)
        return proc_task_exists(thread) ? B_BAD_THREAD_STATE : B_BAD_THREAD_ID;

    if (entry->state == ThreadEntry::kFinished)
        return B_BAD_THREAD_ID;
    if (entry->IsWaitingToStart()) {
        entry->resumeAtStart = true;
        entry->changed.notify_all();
        return B_OK;
    }
    if (entry->selfSuspended) {
        entry->selfSuspended = false;
        entry->changed.notify_all();
        return B_OK;
    }
    return B_BAD_THREAD_STATE;
}

status_t suspend_thread(thread_id thread) {
    Registry& threads = registry();
    std::unique_lock<std::mutex> locker(threads.lock);
    if (thread != find_thread(NULL)) {
        EntryPointer entry = find_entry_locked(thread);
        if (entry != nullptr && entry->state == ThreadEntry::kFinished)
            return B_BAD_THREAD_ID;
        if (entry != nullptr && entry->IsWaitingToStart())
            return B_OK;
        return entry != nullptr || proc_task_exists(thread) ? B_NOT_ALLOWED : B_BAD_THREAD_ID;
    }

    EntryPointer entry = foreign_entry_locked(thread);
    if (entry == nullptr)
        return B_NO_MEMORY;
    entry->selfSuspended = true;
    entry->changed.wait(locker, [&] { return !entry->selfSuspended; });
    return B_OK;
}

status_t kill_thread(thread_id thread) {
    if (thread == find_thread(NULL))
        exit_thread(B_OK);

    Registry& threads = registry();
    std::lock_guard<std::mutex> locker(threads.lock);
    EntryPointer entry = find_entry_locked(thread);
    if (entry == nullptr)
        return proc_task_exists(thread) ? B_NOT_ALLOWED : B_BAD_THREAD_ID;
    if (entry->state == ThreadEntry::kFinished)
        return B_BAD_THREAD_ID;
    if (!entry->IsWaitingToStart())
        return B_NOT_ALLOWED;
    entry->killedAtStart = true;
    entry->changed.notify_all();
    return B_OK;
}

void exit_thread(status_t status) {
    if (sCurrentEntry != NULL) {
        std::lock_guard<std::mutex> locker(registry().lock);
        sCurrentEntry->exitValue = status;
    } else {
        sExitCallbacks.RunAll();
    }
    // Unwinds the stack (destructors run), which ends the Be thread's lifetime.
    pthread_exit(NULL);
}

status_t wait_for_thread(thread_id thread, status_t* returnValue) {
    if (thread == find_thread(NULL))
        return B_NOT_ALLOWED;

    Registry& threads = registry();
    std::unique_lock<std::mutex> locker(threads.lock);
    EntryPointer entry = find_entry_locked(thread);
    if (entry == nullptr || !entry->spawned || entry->collected) {
        // Linux offers no way to wait for a thread that someone else created.
        return B_BAD_THREAD_ID;
    }

    if (entry->IsWaitingToStart()) {
        entry->resumeAtStart = true;
        entry->changed.notify_all();
    }
    entry->changed.wait(locker, [&] { return entry->state == ThreadEntry::kFinished; });

    // Threads that were already waiting all get the value; later calls do not. The
    // entry stays (marked) while Linux still lists the ending thread, so that a look-up
    // by its Linux name does not find it.
    entry->collected = true;

    if (returnValue != NULL)
        *returnValue = entry->exitValue;
    return B_OK;
}

status_t on_exit_thread(void (*callback)(void*), void* data) {
    if (callback == NULL)
        return B_BAD_VALUE;
    sExitCallbacks.callbacks.push_back(ExitCallback{callback, data});
    return B_OK;
}

// #pragma mark - Names and priorities

thread_id find_thread(const char* name) {
    if (name == NULL) {
        if (sCurrentThread < 0)
            sCurrentThread = (thread_id)gettid();
        return sCurrentThread;
    }

    Registry& threads = registry();
    {
        std::lock_guard<std::mutex> locker(threads.lock);
        for (auto& [id, entry] : threads.entries) {
            if (entry->state != ThreadEntry::kFinished && strcmp(entry->name, name) == 0 &&
                (entry->spawned || proc_task_exists(id))) {
                return id;
            }
        }
    }

    // Threads we know nothing special about go by their Linux name.
    char linuxName[B_OS_NAME_LENGTH];
    for (thread_id thread : BPrivate::proc_task_list()) {
        if (BPrivate::proc_task_read_name(thread, linuxName, sizeof(linuxName)) == B_OK &&
            strcmp(linuxName, name) == 0) {
            std::lock_guard<std::mutex> locker(threads.lock);
            // A thread with its own entry has a Be name, which did not match.
            if (find_entry_locked(thread) == nullptr)
                return thread;
        }
    }
    return B_NAME_NOT_FOUND;
}

status_t rename_thread(thread_id thread, const char* newName) {
    if (newName == NULL)
        return B_BAD_VALUE;

    Registry& threads = registry();
    std::lock_guard<std::mutex> locker(threads.lock);
    EntryPointer entry = foreign_entry_locked(thread);
    if (entry == nullptr || entry->state == ThreadEntry::kFinished)
        return B_BAD_THREAD_ID;

    status_t status = BPrivate::proc_task_write_name(thread, newName);
    if (status != B_OK)
        return status;
    copy_name(entry->name, newName);
    return B_OK;
}

status_t set_thread_priority(thread_id thread, int32 newPriority) {
    Registry& threads = registry();
    std::lock_guard<std::mutex> locker(threads.lock);
    EntryPointer entry = foreign_entry_locked(thread);
    if (entry == nullptr || entry->state == ThreadEntry::kFinished)
        return B_BAD_THREAD_ID;

    int32 oldPriority = entry->priority;
    entry->priority = clamp_priority(newPriority);
    return oldPriority;
}

// #pragma mark - Thread information

status_t _get_thread_info(thread_id id, thread_info* info, size_t size) {
    if (info == NULL || size != sizeof(thread_info))
        return B_BAD_VALUE;

    BPrivate::ProcTaskStat stat;
    bool suspended = false;
    thread_info result = {};
    result.thread = id;
    result.team = (team_id)getpid();
    result.priority = B_NORMAL_PRIORITY;
    result.sem = -1;

    {
        Registry& threads = registry();
        std::lock_guard<std::mutex> locker(threads.lock);
        EntryPointer entry = find_entry_locked(id);
        if (entry != nullptr) {
            if (entry->state == ThreadEntry::kFinished)
                return B_BAD_THREAD_ID;
            memcpy(result.name, entry->name, sizeof(result.name));
            result.priority = entry->priority;
            result.stack_base = entry->stackBase;
            result.stack_end = entry->stackEnd;
            suspended = entry->IsWaitingToStart() || entry->selfSuspended;
        } else if (BPrivate::proc_task_read_name(id, result.name, sizeof(result.name)) != B_OK) {
            return B_BAD_THREAD_ID;
        }
    }

    if (BPrivate::proc_task_read_stat(id, &stat) != B_OK)
        return B_BAD_THREAD_ID;

    result.user_time = stat.userTime;
    result.kernel_time = stat.kernelTime;
    if (suspended) {
        result.state = B_THREAD_SUSPENDED;
    } else {
        switch (stat.state) {
        case 'R':
            result.state = B_THREAD_RUNNING;
            break;
        case 'S':
        case 'D':
        case 'I':
            result.state = B_THREAD_WAITING;
            break;
        case 'T':
        case 't':
            result.state = B_THREAD_SUSPENDED;
            break;
        default:
            result.state = B_THREAD_READY;
            break;
        }
    }

    if (result.stack_base == NULL && id == find_thread(NULL)) {
        ThreadEntry self;
        record_stack(&self);
        result.stack_base = self.stackBase;
        result.stack_end = self.stackEnd;
    }

    *info = result;
    return B_OK;
}

status_t _get_next_thread_info(team_id team, int32* cookie, thread_info* info, size_t size) {
    if (cookie == NULL || info == NULL || size != sizeof(thread_info))
        return B_BAD_VALUE;
    if (team != B_CURRENT_TEAM && team != (team_id)getpid())
        return B_BAD_TEAM_ID;

    // The cookie is the last id handed out; threads come in ascending id order.
    for (thread_id thread : BPrivate::proc_task_list()) {
        if (thread <= *cookie)
            continue;
        if (_get_thread_info(thread, info, size) == B_OK) {
            *cookie = thread;
            return B_OK;
        }
    }
    return B_BAD_VALUE;
}
