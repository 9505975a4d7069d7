// BRoster::FindApp for a document, warm: the document's type and preferred
// application, the default application of the type from mimeapps.list, and the
// application file's entry_ref. Target: under 1 ms.
#include <Entry.h>
#include <Roster.h>

#include <benchmark/benchmark.h>

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

struct World {
    std::string home;
    entry_ref document;
    entry_ref application;
};

World& world() {
    static World* sWorld = [] {
        auto* result = new World;
        char pattern[] = "/tmp/bench-find-app.XXXXXX";
        result->home = mkdtemp(pattern);
        const std::string& home = result->home;
        // The system's MIME database, but only our own applications.
        std::filesystem::create_directories(home + "/system");
        std::filesystem::create_directory_symlink("/usr/share/mime", home + "/system/mime");
        std::filesystem::create_directories(home + "/.local/share/applications");
        std::filesystem::create_directories(home + "/.config");
        setenv("HOME", home.c_str(), 1);
        setenv("XDG_CONFIG_HOME", (home + "/.config").c_str(), 1);
        setenv("XDG_DATA_HOME", (home + "/.local/share").c_str(), 1);
        setenv("XDG_DATA_DIRS", (home + "/system").c_str(), 1);
        std::string applications = home + "/.local/share/applications";
        for (const char* id : {"editor", "viewer", "player"}) {
            std::ofstream(applications + "/" + id + ".desktop")
                << "[Desktop Entry]\nType=Application\nName=" << id << "\nExec=true %F\n"
                << "MimeType=text/plain;image/png;\n";
        }
        std::ofstream(applications + "/mimeinfo.cache")
            << "[MIME Cache]\ntext/plain=viewer.desktop;editor.desktop;player.desktop;\n";
        std::ofstream(home + "/.config/mimeapps.list")
            << "[Default Applications]\ntext/plain=editor.desktop;\n";
        std::string document = home + "/notes.txt";
        std::ofstream(document) << "hello\n";
        get_ref_for_path(document.c_str(), &result->document);
        get_ref_for_path((applications + "/editor.desktop").c_str(), &result->application);
        return result;
    }();
    return *sWorld;
}

void FindAppForDocumentWarm(benchmark::State& state) {
    World& set = world();
    entry_ref application;
    if (be_roster->FindApp(&set.document, &application) != B_OK || application != set.application)
        state.SkipWithError("FindApp did not find the editor");
    for (auto _ : state) {
        be_roster->FindApp(&set.document, &application);
        benchmark::DoNotOptimize(application);
    }
}
BENCHMARK(FindAppForDocumentWarm)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    world();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::error_code ignored;
    std::filesystem::remove_all(world().home, ignored);
    return 0;
}
