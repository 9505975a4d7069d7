// The kernel kit: threads and time.
//
// On Linux a thread_id is the kernel's thread id (gettid()), so ids are unique in the
// system and show up in /proc and in ps/top; the team is the process (getpid()).
// Threads made by spawn_thread() start suspended and run their function once
// resume_thread() (or wait_for_thread()) lets them go. Every other thread of the
// process (the main thread, std::thread, library threads) is a thread too: find_thread,
// rename_thread, get_thread_info and exit_thread work on them.
//
// Priorities are recorded and reported, but they never change the Linux scheduling
// class or nice value: an unprivileged desktop program cannot raise them, and lowering
// them could not be undone.
#ifndef _OS_H
#define _OS_H

#include <SupportDefs.h>

#define B_OS_NAME_LENGTH 32
#define B_INFINITE_TIMEOUT (9223372036854775807LL)

typedef int32 area_id;
typedef int32 port_id;
typedef int32 sem_id;
typedef int32 team_id;
typedef int32 thread_id;

// Timeout flags, as the Be calls that wait take them.
enum {
    B_CAN_INTERRUPT = 0x01,
    B_CHECK_PERMISSION = 0x04,
    B_KILL_CAN_INTERRUPT = 0x20,
    B_DO_NOT_RESCHEDULE = 0x02,
    B_RELATIVE_TIMEOUT = 0x08,
    B_TIMEOUT = B_RELATIVE_TIMEOUT,
    B_ABSOLUTE_TIMEOUT = 0x10,
};

// Time bases for snooze_until() and snooze_etc().
enum {
    B_SYSTEM_TIMEBASE = 0,
};

// Teams.
#define B_CURRENT_TEAM 0
#define B_SYSTEM_TEAM 1

// Thread priorities.
enum {
    B_IDLE_PRIORITY = 0,
    B_LOWEST_ACTIVE_PRIORITY = 1,
    B_LOW_PRIORITY = 5,
    B_NORMAL_PRIORITY = 10,
    B_DISPLAY_PRIORITY = 15,
    B_URGENT_DISPLAY_PRIORITY = 20,
    B_REAL_TIME_DISPLAY_PRIORITY = 100,
    B_URGENT_PRIORITY = 110,
    B_REAL_TIME_PRIORITY = 120,
};

#define B_FIRST_REAL_TIME_PRIORITY B_REAL_TIME_DISPLAY_PRIORITY
#define B_MAX_PRIORITY B_REAL_TIME_PRIORITY

typedef enum {
    B_THREAD_RUNNING = 1,
    B_THREAD_READY,
    B_THREAD_RECEIVING,
    B_THREAD_ASLEEP,
    B_THREAD_SUSPENDED,
    B_THREAD_WAITING,
} thread_state;

typedef struct {
    thread_id thread;
    team_id team;
    char name[B_OS_NAME_LENGTH];
    thread_state state;
    int32 priority;
    sem_id sem;
    bigtime_t user_time;
    bigtime_t kernel_time;
    void* stack_base;
    void* stack_end;
} thread_info;

typedef status_t (*thread_func)(void*);
#define thread_entry thread_func

#ifdef __cplusplus
extern "C" {
#endif

// Threads.

// Creates a suspended thread running func(data); the name is copied (the first
// B_OS_NAME_LENGTH - 1 bytes; Linux tools see at most 15 of them). Returns the new
// thread's id, or B_NO_MORE_THREADS / B_NO_MEMORY / B_BAD_VALUE (func is NULL).
thread_id spawn_thread(thread_func func, const char* name, int32 priority, void* data);

// Stops a thread. Only possible while a spawned thread has not been resumed yet (it
// then never runs, and wait_for_thread() gives B_INTERRUPTED as its value), or for the
// calling thread (same as exit_thread(B_OK)); a running thread cannot be stopped
// safely on Linux and the call returns B_NOT_ALLOWED.
status_t kill_thread(thread_id thread);
status_t resume_thread(thread_id thread);
// Only the calling thread can suspend itself (until resume_thread()); other threads
// give B_NOT_ALLOWED.
status_t suspend_thread(thread_id thread);

status_t rename_thread(thread_id thread, const char* newName);
// Returns the previous priority, or B_BAD_THREAD_ID / B_BAD_VALUE.
status_t set_thread_priority(thread_id thread, int32 newPriority);
void exit_thread(status_t status);
// Waits until the thread has ended and gives its return value. A spawned thread that
// has not been resumed is resumed first. The id of a spawned thread stays valid for
// this call after the thread ended, until one wait_for_thread() has collected it.
// Threads not made by spawn_thread() cannot be waited for (B_BAD_THREAD_ID), nor can
// the calling thread wait for itself (B_NOT_ALLOWED).
status_t wait_for_thread(thread_id thread, status_t* returnValue);
status_t on_exit_thread(void (*callback)(void*), void* data);

// NULL gives the calling thread; otherwise the thread of this team with that name.
thread_id find_thread(const char* name);

status_t _get_thread_info(thread_id id, thread_info* info, size_t size);
status_t _get_next_thread_info(team_id team, int32* cookie, thread_info* info, size_t size);

#define get_thread_info(id, info) _get_thread_info((id), (info), sizeof(*(info)))
#define get_next_thread_info(team, cookie, info)                                                   \
    _get_next_thread_info((team), (cookie), (info), sizeof(*(info)))

// Time.

// Microseconds on a monotonic clock (the system's uptime).
bigtime_t system_time(void);
nanotime_t system_time_nsecs(void);

// Seconds and microseconds since 1970-01-01 UTC.
uint32 real_time_clock(void);
bigtime_t real_time_clock_usecs(void);

status_t snooze(bigtime_t amount);
status_t snooze_etc(bigtime_t amount, int timeBase, uint32 flags);
// Sleeps until system_time() reaches `time`.
status_t snooze_until(bigtime_t time, int timeBase);

// Semaphores.
//
// Ids are positive and never reused within the process. A semaphore's count drops
// below zero by what the threads waiting on it still want; waiters are served in the
// order they arrived. Deleting a semaphore wakes its waiters, whose acquire then
// returns B_BAD_SEM_ID.

// The name is copied (the first B_OS_NAME_LENGTH - 1 bytes) and may be NULL.
// Returns the new id, or B_BAD_VALUE (negative count) / B_NO_MORE_SEMS.
sem_id create_sem(int32 count, const char* name);
status_t delete_sem(sem_id sem);
status_t acquire_sem(sem_id sem);
// flags: B_RELATIVE_TIMEOUT (a timeout of 0 or less gives B_WOULD_BLOCK at once when
// the count is short), B_ABSOLUTE_TIMEOUT (against system_time()), neither for no
// timeout. A timeout that expires gives B_TIMED_OUT. B_CAN_INTERRUPT is accepted, but
// signals never interrupt the wait.
status_t acquire_sem_etc(sem_id sem, int32 count, uint32 flags, bigtime_t timeout);
status_t release_sem(sem_id sem);
// B_DO_NOT_RESCHEDULE is accepted and changes nothing. A release that would take the
// count past INT32_MAX gives B_BAD_VALUE.
status_t release_sem_etc(sem_id sem, int32 count, uint32 flags);
status_t get_sem_count(sem_id sem, int32* threadCount);

#ifdef __cplusplus
}
#endif

#endif // _OS_H
