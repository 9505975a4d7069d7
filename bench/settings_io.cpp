// Reading and writing the settings file: the record archived into a message and
// flattened into the file, and the way back (unflatten, then set_to), as the
// preferences and the layer managers do it. Also the in-memory halves alone.
#include "Settings.h"

#include <File.h>
#include <Message.h>

#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include <limits.h>
#include <stdlib.h>
#include <unistd.h>

namespace {

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
        std::filesystem::create_directories(fPath + "/.config");
    }
    ~BenchHome() {
        std::error_code ignored;
        std::filesystem::remove_all(fPath, ignored);
    }

private:
    std::string fPath;
};

// A record with a layer named for every workspace, the largest a real one gets.
void fill(settings* record) {
    BMessage archive;
    record->archive_to(&archive);
    archive.RemoveName("layerName");
    for (int workspace = 0; workspace < kLayerNameCount; workspace++) {
        std::string name = "Layer for workspace " + std::to_string(workspace);
        archive.AddString("layerName", name.c_str());
    }
    record->set_to(&archive);
}

void BM_WriteSettingsFile(benchmark::State& state) {
    BenchHome home;
    char text[512];
    if (check_settings_folders(text, sizeof(text)) != B_OK) {
        state.SkipWithError(text);
        return;
    }
    settings record;
    fill(&record);
    for (auto _ : state) {
        if (write_settings_file(&record) != B_OK) {
            state.SkipWithError("writing failed");
            break;
        }
    }
}
BENCHMARK(BM_WriteSettingsFile)->Unit(benchmark::kMicrosecond);

void BM_ReadSettingsFile(benchmark::State& state) {
    BenchHome home;
    char text[512];
    if (check_settings_folders(text, sizeof(text)) != B_OK) {
        state.SkipWithError(text);
        return;
    }
    settings written;
    fill(&written);
    write_settings_file(&written);
    for (auto _ : state) {
        settings record;
        if (read_settings_file(&record) != B_OK) {
            state.SkipWithError("reading failed");
            break;
        }
        benchmark::DoNotOptimize(record.layerName[31]);
    }
}
BENCHMARK(BM_ReadSettingsFile)->Unit(benchmark::kMicrosecond);

void BM_ArchiveSettings(benchmark::State& state) {
    settings record;
    fill(&record);
    for (auto _ : state) {
        BMessage archive;
        record.archive_to(&archive);
        benchmark::DoNotOptimize(archive.FlattenedSize());
    }
}
BENCHMARK(BM_ArchiveSettings)->Unit(benchmark::kMicrosecond);

void BM_RestoreSettings(benchmark::State& state) {
    settings source;
    fill(&source);
    BMessage archive;
    source.archive_to(&archive);
    for (auto _ : state) {
        settings record;
        record.set_to(&archive);
        benchmark::DoNotOptimize(record.layerName[31]);
    }
}
BENCHMARK(BM_RestoreSettings)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
