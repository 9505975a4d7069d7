// Tracker icons for 200 different files: the very first icon of a run (the MIME
// database, the icon theme and the first decode), a first pass over all files,
// and warm passes. Uses the system's MIME database and icon themes with a private
// HOME. Targets: first icon under 30 ms, warm under 50 µs a file.
#include <Bitmap.h>
#include <Entry.h>
#include <NodeInfo.h>

#include <benchmark/benchmark.h>

#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

const int kFileCount = 200;

// Names and contents across many types, so that many theme icons are involved.
const char* const kKinds[][2] = {
    {"txt", "plain text\n"},
    {"c", "int main() {}\n"},
    {"sh", "#!/bin/sh\necho\n"},
    {"html", "<html></html>\n"},
    {"png", "\x89PNG\r\n\x1a\n"},
    {"jpg", "\xff\xd8\xff\xe0"},
    {"pdf", "%PDF-1.4\n"},
    {"mp3", "ID3"},
    {"zip", "PK\x03\x04"},
    {"svg", "<svg/>"},
    {"py", "print(1)\n"},
    {"desktop", "[Desktop Entry]\nType=Link\n"},
    {"", "\x7f"
         "ELF\x02\x01\x01"},
    {"json", "{}\n"},
    {"xml", "<?xml version='1.0'?><a/>"},
    {"ogg", "OggS"},
    {"tar", "ustar"},
    {"css", "a{}\n"},
    {"md", "# title\n"},
    {"gz", "\x1f\x8b"},
};

struct Files {
    std::string home;
    std::vector<entry_ref> refs;
};

Files& files() {
    static Files* sFiles = [] {
        auto* result = new Files;
        char pattern[] = "/tmp/bench-tracker-icon.XXXXXX";
        result->home = mkdtemp(pattern);
        setenv("HOME", result->home.c_str(), 1);
        setenv("XDG_CONFIG_HOME", (result->home + "/.config").c_str(), 1);
        setenv("XDG_DATA_HOME", (result->home + "/.local/share").c_str(), 1);
        unsetenv("XDG_DATA_DIRS");
        std::filesystem::create_directories(result->home + "/files");
        const size_t kindCount = sizeof(kKinds) / sizeof(kKinds[0]);
        for (int i = 0; i < kFileCount; i++) {
            const char* const* kind = kKinds[i % kindCount];
            std::string path = result->home + "/files/file" + std::to_string(i);
            if (kind[0][0] != '\0')
                path += std::string(".") + kind[0];
            if (i % 50 == 49)
                path = result->home + "/files/folder" + std::to_string(i);
            if (i % 50 == 49) {
                std::filesystem::create_directories(path);
            } else {
                std::ofstream(path) << kind[1];
            }
            entry_ref ref;
            if (get_ref_for_path(path.c_str(), &ref) != B_OK)
                abort();
            result->refs.push_back(ref);
        }
        return result;
    }();
    return *sFiles;
}

void GetTrackerIconFirstOfRun(benchmark::State& state) {
    Files& set = files();
    BBitmap icon(BRect(0, 0, 15, 15), B_CMAP8);
    for (auto _ : state) {
        auto start = std::chrono::steady_clock::now();
        status_t status = BNodeInfo::GetTrackerIcon(&set.refs[0], &icon, B_MINI_ICON);
        auto elapsed = std::chrono::steady_clock::now() - start;
        if (status != B_OK)
            state.SkipWithError("GetTrackerIcon failed");
        state.SetIterationTime(std::chrono::duration<double>(elapsed).count());
    }
}
BENCHMARK(GetTrackerIconFirstOfRun)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

void GetTrackerIcon200FilesCold(benchmark::State& state) {
    Files& set = files();
    BBitmap icon(BRect(0, 0, 15, 15), B_CMAP8);
    for (auto _ : state) {
        for (const entry_ref& ref : set.refs) {
            if (BNodeInfo::GetTrackerIcon(&ref, &icon, B_MINI_ICON) != B_OK)
                state.SkipWithError("GetTrackerIcon failed");
        }
    }
    state.counters["per_file"] =
        benchmark::Counter(double(kFileCount), benchmark::Counter::kIsIterationInvariantRate |
                                                   benchmark::Counter::kInvert);
}
BENCHMARK(GetTrackerIcon200FilesCold)->Iterations(1)->Unit(benchmark::kMillisecond);

void GetTrackerIcon200FilesWarm(benchmark::State& state) {
    Files& set = files();
    icon_size size = icon_size(state.range(0));
    BBitmap icon(BRect(0, 0, size - 1, size - 1), B_CMAP8);
    for (const entry_ref& ref : set.refs)
        BNodeInfo::GetTrackerIcon(&ref, &icon, size);
    for (auto _ : state) {
        for (const entry_ref& ref : set.refs) {
            if (BNodeInfo::GetTrackerIcon(&ref, &icon, size) != B_OK)
                state.SkipWithError("GetTrackerIcon failed");
        }
    }
    state.counters["per_file"] =
        benchmark::Counter(double(kFileCount), benchmark::Counter::kIsIterationInvariantRate |
                                                   benchmark::Counter::kInvert);
}
BENCHMARK(GetTrackerIcon200FilesWarm)
    ->Arg(B_MINI_ICON)
    ->Arg(B_LARGE_ICON)
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    files();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::error_code ignored;
    std::filesystem::remove_all(files().home, ignored);
    return 0;
}
