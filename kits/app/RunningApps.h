// The processes this process started and still runs, by team id (kit-private).
//
// One watcher thread ("roster_reaper") waits on a pidfd of every child and reaps
// it as soon as it ends, so no child ever lingers as a zombie; its record goes at
// the same moment. The registry lives for the whole process and is never
// destroyed, so a child may end (and be reaped) at any time, even during exit.
#ifndef _APP_RUNNING_APPS_H
#define _APP_RUNNING_APPS_H

#include <OS.h>
#include <SupportDefs.h>

#include <string>
#include <vector>

namespace BPrivate {

struct RunningApp {
    team_id team = -1;
    std::string path; // the application file: a desktop entry or an executable
    std::string signature;
    uint32 flags = 0;
};

class RunningApps {
public:
    // Records a child just started; it is reaped and forgotten when it ends.
    static void Add(const RunningApp& app);
    static std::vector<RunningApp> List();
    static bool IsRunning(team_id team);
};

} // namespace BPrivate

#endif // _APP_RUNNING_APPS_H
