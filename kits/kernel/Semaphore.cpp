// Be semaphores inside one process.
//
// All semaphores live in one table guarded by one mutex; each semaphore has its own
// condition variable, waited on with that mutex. A waiting thread queues a ticket that
// release_sem_etc() fills in: the count is handed to the oldest ticket first, so a
// waiter that wants much is not starved by later waiters that want little. A waiter
// holds a shared_ptr to its semaphore, so delete_sem() can drop it from the table while
// waiters still wake up on it and see that it is gone.
//
// The table is created on first use and never destroyed: threads that still wait or
// release while the process exits must not find it torn down.
#include <OS.h>

#include <chrono>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include <limits.h>

namespace {

struct Ticket {
    int32 wanted;
    bool granted = false;
};

struct Semaphore {
    std::condition_variable changed;
    // The part of the count that no waiter has been given.
    int64 available = 0;
    // Waiters in arrival order; a ticket stays on its waiter's stack.
    std::deque<Ticket*> waiters;
    bool deleted = false;
    std::string name;

    int64 Wanted() const {
        int64 total = 0;
        for (const Ticket* ticket : waiters)
            total += ticket->wanted;
        return total;
    }

    // Hands the count to the waiters, oldest first, as far as it goes. Returns whether
    // any waiter was served.
    bool ServeWaiters() {
        bool served = false;
        while (!waiters.empty() && waiters.front()->wanted <= available) {
            Ticket* ticket = waiters.front();
            waiters.pop_front();
            available -= ticket->wanted;
            ticket->granted = true;
            served = true;
        }
        return served;
    }
};

struct SemaphoreTable {
    std::mutex lock;
    std::unordered_map<sem_id, std::shared_ptr<Semaphore>> semaphores;
    sem_id lastId = 0;
};

SemaphoreTable& semaphore_table() {
    // Leaked on purpose, see above.
    static SemaphoreTable* sTable = new SemaphoreTable;
    return *sTable;
}

// Must be called with the table locked.
std::shared_ptr<Semaphore> find_semaphore(SemaphoreTable& table, sem_id id) {
    auto found = table.semaphores.find(id);
    if (found == table.semaphores.end())
        return nullptr;
    return found->second;
}

const bigtime_t kNoDeadline = B_INFINITE_TIMEOUT;

// The moment on the system_time() clock when the wait ends, or kNoDeadline.
bigtime_t deadline_for(uint32 flags, bigtime_t timeout) {
    if ((flags & B_RELATIVE_TIMEOUT) != 0) {
        if (timeout == B_INFINITE_TIMEOUT)
            return kNoDeadline;
        bigtime_t now = system_time();
        if (timeout > B_INFINITE_TIMEOUT - now)
            return kNoDeadline;
        return now + timeout;
    }
    if ((flags & B_ABSOLUTE_TIMEOUT) != 0)
        return timeout;
    return kNoDeadline;
}

// The standard library's steady clock reads CLOCK_MONOTONIC, like system_time(), so a
// deadline in microseconds maps onto it directly. Deadlines too far away to express in
// its nanoseconds count as no deadline at all.
bool fits_steady_clock(bigtime_t deadline) {
    return deadline < LLONG_MAX / 1000;
}

} // namespace

sem_id create_sem(int32 count, const char* name) {
    if (count < 0)
        return B_BAD_VALUE;

    auto semaphore = std::make_shared<Semaphore>();
    semaphore->available = count;
    if (name != NULL)
        semaphore->name.assign(name, strnlen(name, B_OS_NAME_LENGTH - 1));

    SemaphoreTable& table = semaphore_table();
    std::lock_guard<std::mutex> locker(table.lock);
    // Ids are never reused, so a stale id can never reach a newer semaphore.
    if (table.lastId == INT32_MAX)
        return B_NO_MORE_SEMS;
    sem_id id = ++table.lastId;
    table.semaphores.emplace(id, std::move(semaphore));
    return id;
}

status_t delete_sem(sem_id sem) {
    SemaphoreTable& table = semaphore_table();
    std::lock_guard<std::mutex> locker(table.lock);
    auto found = table.semaphores.find(sem);
    if (found == table.semaphores.end())
        return B_BAD_SEM_ID;

    std::shared_ptr<Semaphore> semaphore = std::move(found->second);
    table.semaphores.erase(found);
    // Tickets still queued are dropped here, under the lock, before their waiters
    // return and take the tickets off their stacks.
    semaphore->deleted = true;
    semaphore->waiters.clear();
    semaphore->changed.notify_all();
    return B_OK;
}

status_t acquire_sem(sem_id sem) {
    return acquire_sem_etc(sem, 1, 0, 0);
}

status_t acquire_sem_etc(sem_id sem, int32 count, uint32 flags, bigtime_t timeout) {
    if (count < 1)
        return B_BAD_VALUE;

    SemaphoreTable& table = semaphore_table();
    std::unique_lock<std::mutex> locker(table.lock);
    std::shared_ptr<Semaphore> semaphore = find_semaphore(table, sem);
    if (semaphore == nullptr)
        return B_BAD_SEM_ID;

    // Earlier waiters come first even when the count would already do for this one.
    if (semaphore->waiters.empty() && semaphore->available >= count) {
        semaphore->available -= count;
        return B_OK;
    }

    if ((flags & B_RELATIVE_TIMEOUT) != 0 && timeout <= 0)
        return B_WOULD_BLOCK;
    bigtime_t deadline = deadline_for(flags, timeout);
    if (deadline != kNoDeadline && deadline <= system_time())
        return B_TIMED_OUT;

    Ticket ticket{count};
    semaphore->waiters.push_back(&ticket);
    auto done = [&] { return ticket.granted || semaphore->deleted; };

    if (deadline == kNoDeadline || !fits_steady_clock(deadline)) {
        semaphore->changed.wait(locker, done);
    } else {
        std::chrono::steady_clock::time_point until{std::chrono::microseconds(deadline)};
        semaphore->changed.wait_until(locker, until, done);
    }

    // A waiter served just as its deadline passed keeps what it was given.
    if (ticket.granted)
        return B_OK;
    if (semaphore->deleted)
        return B_BAD_SEM_ID;

    // Timed out: leave the queue. If this ticket held up the waiters behind it, the
    // count may now serve them.
    for (auto waiter = semaphore->waiters.begin(); waiter != semaphore->waiters.end(); ++waiter) {
        if (*waiter == &ticket) {
            semaphore->waiters.erase(waiter);
            break;
        }
    }
    if (semaphore->ServeWaiters())
        semaphore->changed.notify_all();
    return B_TIMED_OUT;
}

status_t release_sem(sem_id sem) {
    return release_sem_etc(sem, 1, 0);
}

status_t release_sem_etc(sem_id sem, int32 count, uint32 flags) {
    if (count < 1)
        return B_BAD_VALUE;

    SemaphoreTable& table = semaphore_table();
    std::lock_guard<std::mutex> locker(table.lock);
    std::shared_ptr<Semaphore> semaphore = find_semaphore(table, sem);
    if (semaphore == nullptr)
        return B_BAD_SEM_ID;

    // The count is reported as an int32; more than that could never be acquired anyway.
    if (semaphore->available > INT32_MAX - (int64)count)
        return B_BAD_VALUE;

    semaphore->available += count;
    if (semaphore->ServeWaiters())
        semaphore->changed.notify_all();
    return B_OK;
}

status_t get_sem_count(sem_id sem, int32* threadCount) {
    if (threadCount == NULL)
        return B_BAD_VALUE;

    SemaphoreTable& table = semaphore_table();
    std::lock_guard<std::mutex> locker(table.lock);
    std::shared_ptr<Semaphore> semaphore = find_semaphore(table, sem);
    if (semaphore == nullptr)
        return B_BAD_SEM_ID;

    int64 count = semaphore->available - semaphore->Wanted();
    if (count < INT32_MIN)
        count = INT32_MIN;
    *threadCount = (int32)count;
    return B_OK;
}
