// Flattening and unflattening a message the size of the program's settings record:
// eight int32 fields and one field of 32 layer names.
#include <Message.h>

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

BMessage MakeSettings() {
    BMessage settings;
    const char* keys[] = {"location", "direction", "forInvoke",  "forExpand",
                          "flags",    "which",     "workspaces", "shelfSize"};
    for (int32 i = 0; i < 8; i++)
        settings.AddInt32(keys[i], i);
    for (int32 i = 0; i < 32; i++) {
        std::string name = i % 4 == 0 ? "" : "Layer number " + std::to_string(i);
        settings.AddString("layerName", name.c_str());
    }
    return settings;
}

void FlattenSettings(benchmark::State& state) {
    BMessage settings = MakeSettings();
    std::vector<char> buffer(static_cast<size_t>(settings.FlattenedSize()));
    for (auto _ : state) {
        ssize_t size = settings.FlattenedSize();
        benchmark::DoNotOptimize(settings.Flatten(buffer.data(), size));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(FlattenSettings);

void UnflattenSettings(benchmark::State& state) {
    BMessage settings = MakeSettings();
    std::vector<char> buffer(static_cast<size_t>(settings.FlattenedSize()));
    settings.Flatten(buffer.data(), static_cast<ssize_t>(buffer.size()));
    BMessage copy;
    for (auto _ : state) {
        benchmark::DoNotOptimize(copy.Unflatten(buffer.data()));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(UnflattenSettings);

// What saving and loading the settings costs: the target is under 5 us.
void FlattenUnflattenSettings(benchmark::State& state) {
    BMessage settings = MakeSettings();
    std::vector<char> buffer;
    for (auto _ : state) {
        ssize_t size = settings.FlattenedSize();
        buffer.resize(static_cast<size_t>(size));
        settings.Flatten(buffer.data(), size);
        BMessage copy;
        benchmark::DoNotOptimize(copy.Unflatten(buffer.data()));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(FlattenUnflattenSettings);

} // namespace

BENCHMARK_MAIN();
