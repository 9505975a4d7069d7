// Small helpers shared by the app kit's thread machinery: the calling thread's id
// and Be timeouts as std::chrono deadlines.
#ifndef _APP_THREAD_UTILITIES_H
#define _APP_THREAD_UTILITIES_H

#include <OS.h>

#include <chrono>

#include <unistd.h>

namespace BPrivate {

inline thread_id current_thread() {
    return find_thread(NULL);
}

// The process; a messenger with this team is local.
inline team_id current_team() {
    static const team_id sTeam = (team_id)getpid();
    return sTeam;
}

// Timeouts this long are waits without end: adding them to the clock would overflow.
inline bool is_infinite_timeout(bigtime_t timeout) {
    return timeout >= B_INFINITE_TIMEOUT / 2;
}

inline std::chrono::steady_clock::time_point deadline_after(bigtime_t timeout) {
    if (timeout < 0)
        timeout = 0;
    return std::chrono::steady_clock::now() + std::chrono::microseconds(timeout);
}

} // namespace BPrivate

#endif // _APP_THREAD_UTILITIES_H
