// Opening menus from a menu bar on the headless display: a menu of 20 items,
// and a menu that lists 10,000 names one per step of its window's loop.
//
// Each iteration presses the bar item (as the display server delivers it) and
// times, from the press, the end of the menu's first drawing, which its window
// presents in the same update pass; for the dynamic menu also the moment the
// last name is added. The menus are closed again between iterations, untimed.
#include "server/headless/HeadlessTestApi.h"

#include <Application.h>
#include <Menu.h>
#include <MenuBar.h>
#include <MenuItem.h>
#include <Message.h>
#include <OS.h>
#include <Window.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <stdio.h>
#include <string>
#include <thread>

using BPrivate::HeadlessTestApi;

namespace {

// Remembers when it was first drawn and when its last item came.
class TimedMenu : public BMenu {
public:
    TimedMenu(const char* name, int32 dynamicCount) : BMenu(name), fDynamicCount(dynamicCount) {}

    void Draw(BRect updateRect) override {
        BMenu::Draw(updateRect);
        bigtime_t expected = 0;
        fFirstDraw.compare_exchange_strong(expected, system_time());
    }

    bool AddDynamicItem(add_state state) override {
        if (fDynamicCount == 0)
            return false;
        switch (state) {
        case B_INITIAL_ADD:
            RemoveItems(0, CountItems(), true);
            fNext = 0;
            return true;
        case B_PROCESSING: {
            std::string name = "entry " + std::to_string(fNext);
            AddItem(new BMenuItem(name.c_str(), new BMessage('entr')));
            if (++fNext < fDynamicCount)
                return true;
            fComplete.store(system_time());
            return false;
        }
        case B_ABORT:
            return false;
        }
        return false;
    }

    void Reset() {
        fFirstDraw.store(0);
        fComplete.store(0);
    }
    bigtime_t FirstDraw() const { return fFirstDraw.load(); }
    bigtime_t Complete() const { return fComplete.load(); }

private:
    int32 fDynamicCount;
    int32 fNext = 0;
    std::atomic<bigtime_t> fFirstDraw{0};
    std::atomic<bigtime_t> fComplete{0};
};

template <typename Condition>
bool spin_until(Condition condition, bigtime_t timeout) {
    bigtime_t deadline = system_time() + timeout;
    while (!condition()) {
        if (system_time() > deadline)
            return false;
        std::this_thread::yield();
    }
    return true;
}

void run_open(benchmark::State& state, int32 staticCount, int32 dynamicCount) {
    BWindow* window =
        new BWindow(BRect(100, 100, 499, 399), "bench", B_TITLED_WINDOW, B_WILL_ACCEPT_FIRST_CLICK);
    BMenuBar* bar = new BMenuBar(BRect(0, 0, 399, 19), "bar");
    TimedMenu* menu = new TimedMenu("Items", dynamicCount);
    for (int32 index = 0; index < staticCount; index++) {
        std::string label = "Item number " + std::to_string(index);
        menu->AddItem(new BMenuItem(label.c_str(), new BMessage('item')));
    }
    bar->AddItem(menu);
    window->AddChild(bar);
    window->Show();
    HeadlessTestApi::WaitForIdle();
    window->Lock();
    BPoint item = window->ConvertToScreen(bar->ConvertToParent(bar->ItemAt(0)->Frame().LeftTop()));
    window->Unlock();
    item += BPoint(5, 5);

    double completeTotal = 0;
    int64 iterations = 0;
    for (auto _ : state) {
        menu->Reset();
        bigtime_t start = system_time();
        HeadlessTestApi::Click(item);
        if (!spin_until([&] { return menu->FirstDraw() != 0; }, 5000000)) {
            state.SkipWithError("the menu was not drawn");
            break;
        }
        state.SetIterationTime((menu->FirstDraw() - start) / 1e6);
        if (dynamicCount > 0) {
            if (!spin_until([&] { return menu->Complete() != 0; }, 20000000)) {
                state.SkipWithError("the menu did not complete");
                break;
            }
            completeTotal += (menu->Complete() - start) / 1000.0;
        }
        iterations++;
        HeadlessTestApi::WaitForIdle();
        HeadlessTestApi::Click(BPoint(1000, 700));
        HeadlessTestApi::WaitForIdle();
    }
    if (dynamicCount > 0 && iterations > 0)
        state.counters["complete_ms"] = completeTotal / iterations;
    window->Lock();
    window->Quit();
}

void BM_OpenMenuOf20Items(benchmark::State& state) {
    run_open(state, 20, 0);
}
BENCHMARK(BM_OpenMenuOf20Items)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(100);

void BM_OpenDynamicMenuOf10000Entries(benchmark::State& state) {
    run_open(state, 0, 10000);
}
BENCHMARK(BM_OpenDynamicMenuOf10000Entries)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(10);

} // namespace

int main(int argc, char** argv) {
    if (HeadlessTestApi::Use() != B_OK) {
        fprintf(stderr, "menu_open: the headless display is not available\n");
        return 1;
    }
    BApplication* application = new BApplication("application/x-vnd.glimrow-menu-open");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    delete application;
    return 0;
}
