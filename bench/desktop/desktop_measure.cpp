// Measures one desktop program the way a user meets it: how long from starting
// the process until its first window is mapped, how much memory it holds once it
// has settled, and how much CPU it burns while nobody touches it.
//
//   desktop_measure [--settle S] [--idle S] [--timeout S] -- command [arguments…]
//
// Prints one line:  first_map_ms=… rss_kb=… idle_cpu_percent=…
// The program and everything it started are ended afterwards.
//
// "Mapped" is the first MapNotify that the root window reports after the fork: a
// window manager maps the frame once the client asked for its window, and an
// override-redirect or dock window is mapped on the root directly.
#include <X11/Xlib.h>

#include <dirent.h>
#include <errno.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <set>
#include <string>
#include <vector>

namespace {

double monotonic_seconds() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec + now.tv_nsec / 1e9;
}

// The parent of one process.
bool read_parent(pid_t pid, pid_t* parent) {
    char path[64];
    snprintf(path, sizeof(path), "/proc/%d/stat", (int)pid);
    FILE* file = fopen(path, "r");
    if (file == NULL)
        return false;
    char buffer[1024];
    size_t length = fread(buffer, 1, sizeof(buffer) - 1, file);
    fclose(file);
    buffer[length] = '\0';
    // The command name may hold spaces and parentheses: fields start after the last ')'.
    char* rest = strrchr(buffer, ')');
    if (rest == NULL)
        return false;
    char state;
    int parentPid;
    if (sscanf(rest + 2, "%c %d", &state, &parentPid) != 2)
        return false;
    *parent = parentPid;
    return true;
}

long read_rss_kb(pid_t pid) {
    char path[64];
    snprintf(path, sizeof(path), "/proc/%d/status", (int)pid);
    FILE* file = fopen(path, "r");
    if (file == NULL)
        return 0;
    char line[256];
    long rss = 0;
    while (fgets(line, sizeof(line), file) != NULL) {
        if (strncmp(line, "VmRSS:", 6) == 0) {
            rss = atol(line + 6);
            break;
        }
    }
    fclose(file);
    return rss;
}

// The process and every process below it.
std::vector<pid_t> process_tree(pid_t root) {
    std::vector<std::pair<pid_t, pid_t>> all;
    DIR* proc = opendir("/proc");
    if (proc == NULL)
        return {root};
    while (dirent* entry = readdir(proc)) {
        pid_t pid = atoi(entry->d_name);
        if (pid <= 0)
            continue;
        pid_t parent;
        if (read_parent(pid, &parent))
            all.push_back({pid, parent});
    }
    closedir(proc);
    std::set<pid_t> tree = {root};
    bool grew = true;
    while (grew) {
        grew = false;
        for (const auto& [pid, parent] : all) {
            if (tree.count(parent) != 0 && tree.count(pid) == 0) {
                tree.insert(pid);
                grew = true;
            }
        }
    }
    return std::vector<pid_t>(tree.begin(), tree.end());
}

// Nanoseconds on a CPU of every thread of the process and of the processes below
// it; the scheduler's own account, finer than clock ticks.
unsigned long long tree_cpu_nanoseconds(pid_t root) {
    unsigned long long total = 0;
    for (pid_t pid : process_tree(root)) {
        char path[64];
        snprintf(path, sizeof(path), "/proc/%d/task", (int)pid);
        DIR* tasks = opendir(path);
        if (tasks == NULL)
            continue;
        while (dirent* entry = readdir(tasks)) {
            if (entry->d_name[0] == '.')
                continue;
            char statPath[300];
            snprintf(statPath, sizeof(statPath), "/proc/%d/task/%s/schedstat", (int)pid,
                     entry->d_name);
            FILE* file = fopen(statPath, "r");
            if (file == NULL)
                continue;
            unsigned long long running = 0;
            if (fscanf(file, "%llu", &running) == 1)
                total += running;
            fclose(file);
        }
        closedir(tasks);
    }
    return total;
}

long tree_rss_kb(pid_t root) {
    long total = 0;
    for (pid_t pid : process_tree(root))
        total += read_rss_kb(pid);
    return total;
}

void end_tree(pid_t root) {
    for (pid_t pid : process_tree(root))
        kill(pid, SIGTERM);
    for (int round = 0; round < 50; round++) {
        int status;
        if (waitpid(root, &status, WNOHANG) == root)
            return;
        usleep(20000);
    }
    for (pid_t pid : process_tree(root))
        kill(pid, SIGKILL);
    waitpid(root, NULL, 0);
}

// Waits until the root window reports a map, the child dies or the time runs out.
// Returns the seconds since start, or a negative number.
double wait_for_first_map(Display* display, pid_t child, double start, double timeout) {
    int fd = ConnectionNumber(display);
    while (monotonic_seconds() - start < timeout) {
        while (XPending(display) > 0) {
            XEvent event;
            XNextEvent(display, &event);
            if (event.type == MapNotify)
                return monotonic_seconds() - start;
        }
        int status;
        if (waitpid(child, &status, WNOHANG) == child)
            return -2;
        pollfd poller = {fd, POLLIN, 0};
        poll(&poller, 1, 10);
    }
    return -1;
}

} // namespace

int main(int argc, char** argv) {
    double settleSeconds = 3;
    double idleSeconds = 10;
    double timeoutSeconds = 20;
    int index = 1;
    for (; index < argc; index++) {
        std::string argument = argv[index];
        if (argument == "--") {
            index++;
            break;
        }
        if (index + 1 >= argc)
            break;
        if (argument == "--settle")
            settleSeconds = atof(argv[++index]);
        else if (argument == "--idle")
            idleSeconds = atof(argv[++index]);
        else if (argument == "--timeout")
            timeoutSeconds = atof(argv[++index]);
    }
    if (index >= argc) {
        fprintf(stderr, "usage: %s [--settle S] [--idle S] [--timeout S] -- command [arguments]\n",
                argv[0]);
        return 2;
    }

    Display* display = XOpenDisplay(NULL);
    if (display == NULL) {
        fprintf(stderr, "desktop_measure: cannot open display \"%s\"\n",
                getenv("DISPLAY") ? getenv("DISPLAY") : "");
        return 1;
    }
    XSelectInput(display, DefaultRootWindow(display), SubstructureNotifyMask);
    XSync(display, True);

    double start = monotonic_seconds();
    pid_t child = fork();
    if (child == 0) {
        // The measured program's chatter goes with our diagnostics, not our result.
        dup2(STDERR_FILENO, STDOUT_FILENO);
        execvp(argv[index], argv + index);
        fprintf(stderr, "desktop_measure: cannot start %s: %s\n", argv[index], strerror(errno));
        _exit(127);
    }
    double firstMap = wait_for_first_map(display, child, start, timeoutSeconds);
    if (firstMap < 0) {
        fprintf(stderr, "desktop_measure: %s %s\n", argv[index],
                firstMap == -2 ? "ended before mapping a window" : "mapped no window in time");
        end_tree(child);
        return 1;
    }

    double settleUntil = start + settleSeconds;
    while (monotonic_seconds() < settleUntil)
        usleep(20000);
    long rss = tree_rss_kb(child);

    unsigned long long before = tree_cpu_nanoseconds(child);
    double idleStart = monotonic_seconds();
    usleep((useconds_t)(idleSeconds * 1e6));
    unsigned long long after = tree_cpu_nanoseconds(child);
    double idleElapsed = monotonic_seconds() - idleStart;
    double cpuPercent = 100.0 * (after - before) / 1e9 / idleElapsed;

    printf("first_map_ms=%.1f rss_kb=%ld idle_cpu_percent=%.3f\n", firstMap * 1000, rss,
           cpuPercent);
    end_tree(child);
    XCloseDisplay(display);
    return 0;
}
