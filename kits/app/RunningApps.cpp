#include "RunningApps.h"

#include <errno.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <map>
#include <mutex>
#include <thread>

namespace BPrivate {

namespace {

struct Child {
    RunningApp app;
    int pidDescriptor = -1;
};

class Watcher {
public:
    void Add(const RunningApp& app) {
        Child child;
        child.app = app;
        child.pidDescriptor = int(syscall(SYS_pidfd_open, pid_t(app.team), 0));
        std::lock_guard<std::mutex> guard(fLock);
        if (child.pidDescriptor < 0) {
            // Without pidfds (kernels before 5.3) a thread waits on this child alone.
            pid_t pid = app.team;
            fChildren[pid] = child;
            std::thread([this, pid] {
                int status;
                while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
                }
                std::lock_guard<std::mutex> guard(fLock);
                fChildren.erase(pid);
            }).detach();
            return;
        }
        fChildren[app.team] = child;
        _StartThread();
        uint64 one = 1;
        ssize_t ignored = write(fWakeDescriptor, &one, sizeof(one));
        (void)ignored;
    }

    std::vector<RunningApp> List() {
        std::lock_guard<std::mutex> guard(fLock);
        std::vector<RunningApp> result;
        for (const auto& [pid, child] : fChildren)
            result.push_back(child.app);
        return result;
    }

    bool IsRunning(team_id team) {
        std::lock_guard<std::mutex> guard(fLock);
        return fChildren.count(team) != 0;
    }

private:
    void _StartThread() {
        if (fWakeDescriptor >= 0)
            return;
        fWakeDescriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
        std::thread([this] { _Loop(); }).detach();
    }

    void _Loop() {
        pthread_setname_np(pthread_self(), "roster_reaper");
        std::vector<pollfd> descriptors;
        std::vector<pid_t> pids;
        while (true) {
            descriptors.clear();
            pids.clear();
            {
                std::lock_guard<std::mutex> guard(fLock);
                descriptors.push_back({fWakeDescriptor, POLLIN, 0});
                pids.push_back(-1);
                for (const auto& [pid, child] : fChildren) {
                    if (child.pidDescriptor >= 0) {
                        descriptors.push_back({child.pidDescriptor, POLLIN, 0});
                        pids.push_back(pid);
                    }
                }
            }
            if (poll(descriptors.data(), descriptors.size(), -1) < 0)
                continue;
            if (descriptors[0].revents != 0) {
                uint64 count;
                ssize_t ignored = read(fWakeDescriptor, &count, sizeof(count));
                (void)ignored;
            }
            for (size_t i = 1; i < descriptors.size(); i++) {
                if (descriptors[i].revents == 0)
                    continue;
                int status;
                pid_t reaped = waitpid(pids[i], &status, WNOHANG);
                // 0: not ended after all; -1 with ECHILD: someone else reaped it.
                if (reaped == 0 || (reaped < 0 && errno != ECHILD))
                    continue;
                std::lock_guard<std::mutex> guard(fLock);
                close(descriptors[i].fd);
                fChildren.erase(pids[i]);
            }
        }
    }

    std::mutex fLock;
    std::map<pid_t, Child> fChildren;
    int fWakeDescriptor = -1;
};

Watcher& watcher() {
    static Watcher* sWatcher = new Watcher;
    return *sWatcher;
}

} // namespace

void RunningApps::Add(const RunningApp& app) {
    watcher().Add(app);
}

std::vector<RunningApp> RunningApps::List() {
    return watcher().List();
}

bool RunningApps::IsRunning(team_id team) {
    return watcher().IsRunning(team);
}

} // namespace BPrivate
