// The loader and saver at work, in a private home on the headless display:
//
// - BM_LoadLayer: a layer file of 200 lines, 50 of them comments, loaded by the
//   real loader into a shown layer manager until the last reply has reached the
//   layer. The loader pauses 20 ms after every item so the window can draw; the
//   reported time is the processor time the whole process spent on the load
//   (reading, making and delivering the items), which the pauses do not add to.
//   "wall_ms" is the load as the user waits for it, pauses included.
// - BM_LoaderPause: the pause itself, each one timed; it must last 20 ms ± 2 ms.
// - BM_SaveLayer: the saver writing a layer of 1,000 paths.
#include "Commands.h"
#include "Globals.h"
#include "IOSlave.h"
#include "LayerInfo.h"
#include "LayerManager.h"
#include "Settings.h"

#include <Application.h>
#include <Message.h>
#include <Node.h>
#include <OS.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>

#include <limits.h>
#include <stdlib.h>
#include <time.h>
#include <unistd.h>

namespace {

const int kLayerLines = 200;
const int kCommentLines = 50;
const int kSavedItems = 1000;
const bigtime_t kPause = 20000;
const bigtime_t kPauseTolerance = 2000;

// A private HOME beside the executable (a real disk, so attributes work).
class BenchHome {
public:
    BenchHome() {
        char self[PATH_MAX];
        ssize_t length = readlink("/proc/self/exe", self, sizeof(self) - 1);
        self[length > 0 ? length : 0] = '\0';
        std::string pattern =
            std::filesystem::path(self).parent_path().string() + "/bench-home.XXXXXX";
        fPath = mkdtemp(pattern.data()) != NULL ? pattern : "";
        setenv("HOME", fPath.c_str(), 1);
        setenv("XDG_CONFIG_HOME", (fPath + "/.config").c_str(), 1);
        setenv("XDG_DATA_HOME", (fPath + "/.local/share").c_str(), 1);
        setenv("GLIMROW_DISPLAY", "headless", 1);
        std::filesystem::create_directories(fPath + "/.config");
    }
    ~BenchHome() {
        std::error_code ignored;
        std::filesystem::remove_all(fPath, ignored);
    }
    const std::string& Path() const { return fPath; }

private:
    std::string fPath;
};

// A manager that wakes the benchmark when a layer's last reply has been handled.
class BenchManager : public LayerManager {
public:
    BenchManager()
        : LayerManager(BRect(0, 0, 100, 40), "bench", 0, which_test_items, which_test_items) {}

    void DispatchMessage(BMessage* message, BHandler* handler) override {
        LayerManager::DispatchMessage(message, handler);
        bool finish;
        if (message->what == kLayerItemsFound && message->FindBool("finish", &finish) == B_OK &&
            finish) {
            std::lock_guard<std::mutex> lock(fLock);
            fFinished = true;
            fCondition.notify_all();
        }
    }

    void WaitForFinish() {
        std::unique_lock<std::mutex> lock(fLock);
        fCondition.wait(lock, [&] { return fFinished; });
        fFinished = false;
    }

private:
    std::mutex fLock;
    std::condition_variable fCondition;
    bool fFinished = false;
};

void write_bench_layer(const std::string& home, const char* name) {
    std::string path = home + "/.config/Glimrow/layers/" + name;
    std::ofstream stream(path, std::ios::trunc);
    for (int line = 0; line < kLayerLines; line++) {
        if (line % 4 == 3)
            stream << "# a comment line " << line << "\n";
        else
            stream << home << "/item-" << line << "\n";
    }
    stream.close();
    BNode node(path.c_str());
    node.WriteAttr("BEOS:TYPE", B_MIME_TYPE, 0, "text/plain", 11);
}

// The processor time of every thread of the process: the loader's reading and
// making of items and the window's taking of the replies. The pauses, spent
// asleep, do not count, however late a busy machine wakes the loader.
double process_cpu_seconds() {
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return now.tv_sec + now.tv_nsec / 1e9;
}

void BM_LoadLayer(benchmark::State& state) {
    BenchHome home;
    char text[512];
    if (check_settings_folders(text, sizeof(text)) != B_OK) {
        state.SkipWithError(text);
        return;
    }
    write_bench_layer(home.Path(), "Bench");
    BApplication application("application/x-vnd.glimrow-bench");
    IOSlave* slave = new IOSlave;
    slave->Run();
    gr_slave = slave;
    BenchManager* manager = new BenchManager;
    manager->Show();
    manager->WaitForFinish(); // the targets list

    // What the process spends with nothing to do (display server, idle
    // windows), so that it can be told apart from the load.
    double idleStart = process_cpu_seconds();
    snooze(1000000);
    double idlePerSecond = process_cpu_seconds() - idleStart;

    const int items = kLayerLines - kCommentLines;
    double cpuSeconds = 0;
    double wallSeconds = 0;
    for (auto _ : state) {
        auto wallStart = std::chrono::steady_clock::now();
        double cpuStart = process_cpu_seconds();
        manager->Lock();
        manager->AddLayer("Bench", true);
        manager->Unlock();
        manager->WaitForFinish();
        double cpu = process_cpu_seconds() - cpuStart;
        wallSeconds +=
            std::chrono::duration<double>(std::chrono::steady_clock::now() - wallStart).count();
        cpuSeconds += cpu;
        state.SetIterationTime(cpu);

        manager->Lock();
        delete manager->RemoveLayer("Bench");
        manager->Unlock();
    }
    state.counters["items"] = items;
    state.counters["per_item_us"] = cpuSeconds * 1e6 / state.iterations() / items;
    state.counters["wall_ms"] = wallSeconds * 1e3 / state.iterations();
    state.counters["idle_cpu_ms_per_s"] = idlePerSecond * 1e3;
    state.counters["per_item_us_less_idle"] =
        (cpuSeconds - idlePerSecond * wallSeconds) * 1e6 / state.iterations() / items;

    gr_slave = NULL;
    manager->Lock();
    manager->Quit();
    slave->Lock();
    slave->Quit();
}
BENCHMARK(BM_LoadLayer)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

void BM_LoaderPause(benchmark::State& state) {
    bigtime_t shortest = LLONG_MAX;
    bigtime_t longest = 0;
    bigtime_t total = 0;
    int outside = 0;
    for (auto _ : state) {
        bigtime_t start = system_time();
        snooze(kPause);
        bigtime_t length = system_time() - start;
        state.SetIterationTime(length / 1e6);
        shortest = std::min(shortest, length);
        longest = std::max(longest, length);
        total += length;
        if (length < kPause - kPauseTolerance || length > kPause + kPauseTolerance)
            outside++;
    }
    state.counters["mean_ms"] = total / 1000.0 / state.iterations();
    state.counters["shortest_ms"] = shortest / 1000.0;
    state.counters["longest_ms"] = longest / 1000.0;
    // Pauses that left the 20 ms +/- 2 ms window; on a busy machine the wake-up
    // can come late.
    state.counters["outside_window"] = outside;
}
BENCHMARK(BM_LoaderPause)->UseManualTime()->Iterations(200)->Unit(benchmark::kMillisecond);

void BM_SaveLayer(benchmark::State& state) {
    BenchHome home;
    char text[512];
    if (check_settings_folders(text, sizeof(text)) != B_OK) {
        state.SkipWithError(text);
        return;
    }
    BMessage request(kSaveLayer);
    request.AddString("name", "Saved");
    for (int item = 0; item < kSavedItems; item++) {
        std::string path = home.Path() + "/Documents/item-" + std::to_string(item) + ".txt";
        request.AddString("paths", path.c_str());
    }
    // Never run: SaveLayer is called directly, as the loader's thread would.
    IOSlave* slave = new IOSlave;
    for (auto _ : state)
        slave->SaveLayer(&request);
    state.counters["items"] = kSavedItems;
    state.SetBytesProcessed(
        state.iterations() *
        (int64_t)std::filesystem::file_size(home.Path() + "/.config/Glimrow/layers/Saved"));
    slave->Quit();
}
BENCHMARK(BM_SaveLayer)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
