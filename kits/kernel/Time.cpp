// Clocks and sleeping. system_time() and snooze_until() share CLOCK_MONOTONIC, so a
// deadline computed from one is honoured by the other.
#include <OS.h>

#include <errno.h>
#include <time.h>

namespace {

const bigtime_t kMicrosecondsPerSecond = 1000000;

timespec to_timespec(bigtime_t microseconds) {
    timespec result;
    result.tv_sec = (time_t)(microseconds / kMicrosecondsPerSecond);
    result.tv_nsec = (long)(microseconds % kMicrosecondsPerSecond) * 1000;
    return result;
}

bigtime_t read_clock(clockid_t clock) {
    timespec now;
    clock_gettime(clock, &now);
    return (bigtime_t)now.tv_sec * kMicrosecondsPerSecond + now.tv_nsec / 1000;
}

// Sleeps until the monotonic clock reaches `deadline`; with canInterrupt a signal
// ends the sleep early with B_INTERRUPTED, otherwise the sleep goes on.
status_t sleep_until(bigtime_t deadline, bool canInterrupt) {
    if (deadline <= 0)
        return B_OK;

    timespec until = to_timespec(deadline);
    while (true) {
        int error = clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, NULL);
        if (error == 0)
            return B_OK;
        if (error != EINTR)
            return B_FROM_POSIX_ERROR(error);
        if (canInterrupt)
            return B_INTERRUPTED;
    }
}

bigtime_t deadline_after(bigtime_t amount) {
    bigtime_t now = system_time();
    if (amount > B_INFINITE_TIMEOUT - now)
        return B_INFINITE_TIMEOUT;
    return now + amount;
}

} // namespace

bigtime_t system_time(void) {
    return read_clock(CLOCK_MONOTONIC);
}

nanotime_t system_time_nsecs(void) {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (nanotime_t)now.tv_sec * 1000000000LL + now.tv_nsec;
}

uint32 real_time_clock(void) {
    return (uint32)(read_clock(CLOCK_REALTIME) / kMicrosecondsPerSecond);
}

bigtime_t real_time_clock_usecs(void) {
    return read_clock(CLOCK_REALTIME);
}

status_t snooze(bigtime_t amount) {
    if (amount <= 0)
        return B_OK;
    return sleep_until(deadline_after(amount), false);
}

status_t snooze_until(bigtime_t time, int timeBase) {
    if (timeBase != B_SYSTEM_TIMEBASE)
        return B_BAD_VALUE;
    return sleep_until(time, false);
}

status_t snooze_etc(bigtime_t amount, int timeBase, uint32 flags) {
    if (timeBase != B_SYSTEM_TIMEBASE)
        return B_BAD_VALUE;

    bool canInterrupt = (flags & (B_CAN_INTERRUPT | B_KILL_CAN_INTERRUPT)) != 0;
    if ((flags & B_ABSOLUTE_TIMEOUT) != 0)
        return sleep_until(amount, canInterrupt);
    if (amount <= 0)
        return B_OK;
    return sleep_until(deadline_after(amount), canInterrupt);
}
