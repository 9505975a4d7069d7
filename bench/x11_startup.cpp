// Start-up and idle cost of a window on a real X server (a private Xvfb):
//  - the time from starting a process to its first mapped window, for a program
//    that shows one empty BWindow (this binary, run as a child with
//    --show-one-window) beside the floor of this stack, x11_floor_client (plain
//    Xlib + cairo + pango), started the same way in the same run;
//  - the CPU the BWindow program uses over 10 s with its window shown and
//    nothing happening (the display server must sleep, not poll).
// Both programs (bench/programs/) are looked for beside this binary, or at
// $GLIMROW_FLOOR_CLIENT and $GLIMROW_WINDOW_PROGRAM; without the window program
// this binary shows the window itself, with more libraries to load than the
// kits need (Google Benchmark's among them).
#include <Application.h>
#include <Window.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

#include <X11/Xlib.h>

#include <chrono>
#include <fcntl.h>
#include <libgen.h>
#include <limits.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <time.h>
#include <unistd.h>

namespace {

const char* const kShowOneWindow = "--show-one-window";

int show_one_window() {
    BApplication application("application/x-vnd.glimrow-bench-window");
    BWindow* window =
        new BWindow(BRect(100, 100, 399, 299), "empty", B_TITLED_WINDOW, B_QUIT_ON_WINDOW_CLOSE);
    window->Show();
    application.Run();
    return 0;
}

pid_t sXvfb = -1;
Display* sObserver = NULL;
std::string sSelf;
std::string sFloor;
std::vector<std::string> sWindowProgram;
double sWindowSeconds = 0;
double sFloorSeconds = 0;

pid_t spawn(const std::vector<std::string>& arguments, int keepOpen) {
    pid_t child = fork();
    if (child != 0)
        return child;
    int null = open("/dev/null", O_RDWR);
    dup2(null, 0);
    dup2(null, 1);
    for (int descriptor = 3; descriptor < 1024; descriptor++) {
        if (descriptor != keepOpen)
            close(descriptor);
    }
    std::vector<char*> pointers;
    for (const std::string& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(NULL);
    execv(pointers[0], pointers.data());
    execvp(pointers[0], pointers.data());
    _exit(127);
}

void end(pid_t child) {
    kill(child, SIGKILL);
    int status;
    waitpid(child, &status, 0);
}

bool start_xvfb() {
    int first = 600 + (int)(getpid() % 300);
    for (int attempt = 0; attempt < 30; attempt++) {
        int pipeline[2];
        if (pipe(pipeline) != 0)
            return false;
        // Built step by step: g++ 12 at -O3 warns falsely (-Wrestrict) on "literal" + string.
        std::string name = ":";
        name += std::to_string(first + attempt * 3);
        sXvfb = spawn({"Xvfb", name, "-displayfd", std::to_string(pipeline[1]), "-screen", "0",
                       "1024x768x24", "-nolisten", "tcp", "-noreset"},
                      pipeline[1]);
        close(pipeline[1]);
        std::string number;
        char character;
        while (read(pipeline[0], &character, 1) == 1 && character != '\n')
            number += character;
        close(pipeline[0]);
        if (!number.empty()) {
            std::string display = ":";
            display += number;
            setenv("DISPLAY", display.c_str(), 1);
            sObserver = XOpenDisplay(NULL);
            if (sObserver == NULL)
                return false;
            XSelectInput(sObserver, DefaultRootWindow(sObserver), SubstructureNotifyMask);
            XSync(sObserver, False);
            return true;
        }
        int status;
        waitpid(sXvfb, &status, 0);
        sXvfb = -1;
    }
    return false;
}

double now_seconds() {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec + now.tv_nsec / 1e9;
}

// Starts the program and waits for its first window on the screen; answers the
// seconds that took, or a negative number.
double time_to_first_map(const std::vector<std::string>& program, pid_t* child) {
    while (XPending(sObserver) > 0) {
        XEvent stale;
        XNextEvent(sObserver, &stale);
    }
    double start = now_seconds();
    *child = spawn(program, -1);
    while (now_seconds() - start < 20) {
        while (XPending(sObserver) > 0) {
            XEvent event;
            XNextEvent(sObserver, &event);
            if (event.type == MapNotify)
                return now_seconds() - start;
        }
        struct pollfd watched = {ConnectionNumber(sObserver), POLLIN, 0};
        poll(&watched, 1, 100);
    }
    return -1;
}

void run_first_map(benchmark::State& state, bool floor) {
    std::vector<std::string> program = floor ? std::vector<std::string>{sFloor} : sWindowProgram;
    for (auto _ : state) {
        pid_t child;
        double seconds = time_to_first_map(program, &child);
        end(child);
        if (seconds < 0) {
            state.SkipWithError("no window was mapped");
            return;
        }
        state.SetIterationTime(seconds);
    }
}

void BM_FirstMapOfEmptyBWindow(benchmark::State& state) {
    run_first_map(state, false);
}
BENCHMARK(BM_FirstMapOfEmptyBWindow)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(20);

void BM_FirstMapOfFloorClient(benchmark::State& state) {
    if (access(sFloor.c_str(), X_OK) != 0) {
        state.SkipWithError("x11_floor_client not found (set GLIMROW_FLOOR_CLIENT)");
        return;
    }
    run_first_map(state, true);
}
BENCHMARK(BM_FirstMapOfFloorClient)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

// The two programs in turns, so a machine busy with other work slows both alike;
// medians, so a single stall does not count.
void BM_FirstMapRatioInTurns(benchmark::State& state) {
    if (access(sFloor.c_str(), X_OK) != 0) {
        state.SkipWithError("x11_floor_client not found (set GLIMROW_FLOOR_CLIENT)");
        return;
    }
    for (auto _ : state) {
        std::vector<double> window;
        std::vector<double> floor;
        for (int turn = 0; turn < 30; turn++) {
            for (bool isFloor : {false, true}) {
                pid_t child;
                double seconds = time_to_first_map(
                    isFloor ? std::vector<std::string>{sFloor} : sWindowProgram, &child);
                end(child);
                if (seconds < 0) {
                    state.SkipWithError("no window was mapped");
                    return;
                }
                (isFloor ? floor : window).push_back(seconds);
            }
        }
        state.counters["window_ms"] = median(window) * 1000;
        state.counters["floor_ms"] = median(floor) * 1000;
        state.counters["ratio"] = median(window) / median(floor);
        sWindowSeconds = median(window);
        sFloorSeconds = median(floor);
    }
}
BENCHMARK(BM_FirstMapRatioInTurns)->Iterations(1)->Unit(benchmark::kSecond);

long cpu_ticks(pid_t process) {
    std::string path = "/proc/";
    path += std::to_string(process);
    path += "/stat";
    FILE* file = fopen(path.c_str(), "r");
    if (file == NULL)
        return -1;
    char line[1024];
    size_t got = fread(line, 1, sizeof(line) - 1, file);
    fclose(file);
    line[got] = '\0';
    // After the command's closing parenthesis: state, then 10 fields to utime.
    char* rest = strrchr(line, ')');
    if (rest == NULL)
        return -1;
    long utime = 0;
    long stime = 0;
    if (sscanf(rest + 2, "%*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %ld %ld", &utime, &stime) !=
        2)
        return -1;
    return utime + stime;
}

void BM_IdleCpuWithOneWindow(benchmark::State& state) {
    for (auto _ : state) {
        pid_t child;
        if (time_to_first_map(sWindowProgram, &child) < 0) {
            end(child);
            state.SkipWithError("no window was mapped");
            return;
        }
        // Let it finish drawing, then watch it do nothing.
        std::this_thread::sleep_for(std::chrono::seconds(1));
        long before = cpu_ticks(child);
        double start = now_seconds();
        std::this_thread::sleep_for(std::chrono::seconds(10));
        long after = cpu_ticks(child);
        double seconds = now_seconds() - start;
        end(child);
        double percent = 100.0 * (double)(after - before) / sysconf(_SC_CLK_TCK) / seconds;
        state.counters["idle_cpu_percent"] = percent;
        state.counters["cpu_ticks"] = (double)(after - before);
    }
}
BENCHMARK(BM_IdleCpuWithOneWindow)->Iterations(1)->Unit(benchmark::kSecond);

} // namespace

int main(int argc, char** argv) {
    if (argc > 1 && strcmp(argv[1], kShowOneWindow) == 0)
        return show_one_window();

    char self[PATH_MAX];
    ssize_t length = readlink("/proc/self/exe", self, sizeof(self) - 1);
    if (length <= 0)
        return 1;
    self[length] = '\0';
    sSelf = self;
    std::string folder(dirname(self));
    const char* floor = getenv("GLIMROW_FLOOR_CLIENT");
    sFloor = floor != NULL ? floor : std::string(folder).append("/x11_floor_client");
    const char* windowProgram = getenv("GLIMROW_WINDOW_PROGRAM");
    std::string besideUs = std::string(folder).append("/x11_one_window");
    if (windowProgram != NULL)
        sWindowProgram = {windowProgram};
    else if (access(besideUs.c_str(), X_OK) == 0)
        sWindowProgram = {besideUs};
    else
        sWindowProgram = {sSelf, kShowOneWindow};
    printf("window program: %s\n", sWindowProgram[0].c_str());
    unsetenv("GLIMROW_DISPLAY");

    benchmark::Initialize(&argc, argv);
    if (!start_xvfb()) {
        fprintf(stderr, "bench_x11_startup: Xvfb could not start\n");
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    if (sWindowSeconds > 0 && sFloorSeconds > 0) {
        printf("first map (medians, in turns): empty BWindow %.1f ms, floor %.1f ms, ratio %.2f "
               "(target <= 1.30)\n",
               sWindowSeconds * 1000, sFloorSeconds * 1000, sWindowSeconds / sFloorSeconds);
    }
    benchmark::Shutdown();
    XCloseDisplay(sObserver);
    end(sXvfb);
    return 0;
}
