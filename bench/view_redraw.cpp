// Redrawing a window of 50 views, each drawing a 32 x 32 icon and a label, on the
// headless display: the whole window, one view, and the time from Show() to
// the first picture on the screen.
//
// The redraws are timed inside the window's thread, from the invalidation to
// the end of the update pass (which includes handing the pixels over), so the
// figures leave out the messaging that asks for them.
#include "server/headless/HeadlessTestApi.h"

#include <Application.h>
#include <Bitmap.h>
#include <Message.h>
#include <Messenger.h>
#include <OS.h>
#include <View.h>
#include <Window.h>

#include <benchmark/benchmark.h>

#include <stdio.h>
#include <string>

using BPrivate::HeadlessTestApi;

namespace {

const int32 kColumns = 10;
const int32 kRows = 5;
const float kCell = 32;
const float kGap = 1;

enum { kFullRedraw = 'full', kOneView = 'once' };

BBitmap* make_icon() {
    BBitmap* icon = new BBitmap(BRect(0, 0, 31, 31), B_RGBA32);
    uint8* bits = (uint8*)icon->Bits();
    for (int32 y = 0; y < 32; y++) {
        for (int32 x = 0; x < 32; x++) {
            uint8* pixel = bits + y * icon->BytesPerRow() + x * 4;
            bool inside = (x - 16) * (x - 16) + (y - 16) * (y - 16) < 14 * 14;
            pixel[0] = (uint8)(x * 8);
            pixel[1] = (uint8)(y * 8);
            pixel[2] = 200;
            pixel[3] = inside ? 255 : 0;
        }
    }
    return icon;
}

class ItemView : public BView {
public:
    ItemView(BRect frame, int32 index, const BBitmap* icon)
        : BView(frame, "item", B_FOLLOW_NONE, B_WILL_DRAW), fIcon(icon),
          fLabel("Item " + std::to_string(index)) {
        SetViewColor(216, 216, 216);
    }

    void Draw(BRect) override {
        SetDrawingMode(B_OP_OVER);
        DrawBitmap(fIcon, BPoint(0, 0));
        SetHighColor(0, 0, 0);
        DrawString(fLabel.c_str(), BPoint(1, 30));
        SetDrawingMode(B_OP_COPY);
    }

private:
    const BBitmap* fIcon;
    std::string fLabel;
};

class BenchWindow : public BWindow {
public:
    BenchWindow(const BBitmap* icon)
        : BWindow(BRect(100, 100, 100 + kColumns * (kCell + kGap), 100 + kRows * (kCell + kGap)),
                  "redraw", B_TITLED_WINDOW, 0) {
        for (int32 index = 0; index < kColumns * kRows; index++) {
            float left = (index % kColumns) * (kCell + kGap);
            float top = (index / kColumns) * (kCell + kGap);
            BView* view =
                new ItemView(BRect(left, top, left + kCell - 1, top + kCell - 1), index, icon);
            AddChild(view);
            fViews.push_back(view);
        }
    }

    void MessageReceived(BMessage* message) override {
        if (message->what != kFullRedraw && message->what != kOneView) {
            BWindow::MessageReceived(message);
            return;
        }
        bigtime_t start = system_time_nsecs();
        if (message->what == kFullRedraw) {
            for (BView* view : fViews)
                view->Invalidate();
        } else {
            fViews[fViews.size() / 2]->Invalidate();
        }
        UpdateIfNeeded();
        bigtime_t elapsed = system_time_nsecs() - start;
        BMessage reply(B_REPLY);
        reply.AddInt64("nanoseconds", elapsed);
        message->SendReply(&reply);
    }

private:
    std::vector<BView*> fViews;
};

void run_redraw(benchmark::State& state, uint32 what) {
    BBitmap* icon = make_icon();
    BenchWindow* window = new BenchWindow(icon);
    window->Show();
    HeadlessTestApi::WaitForIdle();
    BMessenger messenger(window);
    for (auto _ : state) {
        BMessage request(what);
        BMessage reply;
        if (messenger.SendMessage(&request, &reply) != B_OK) {
            state.SkipWithError("the window did not answer");
            break;
        }
        state.SetIterationTime(reply.GetInt64("nanoseconds", 0) / 1e9);
    }
    window->Lock();
    window->Quit();
    delete icon;
}

void BM_FullRedraw(benchmark::State& state) {
    run_redraw(state, kFullRedraw);
}
BENCHMARK(BM_FullRedraw)->UseManualTime()->Unit(benchmark::kMicrosecond);

void BM_OneViewRedraw(benchmark::State& state) {
    run_redraw(state, kOneView);
}
BENCHMARK(BM_OneViewRedraw)->UseManualTime()->Unit(benchmark::kMicrosecond);

void BM_ShowToFirstPresent(benchmark::State& state) {
    BBitmap* icon = make_icon();
    for (auto _ : state) {
        BenchWindow* window = new BenchWindow(icon);
        bigtime_t start = system_time_nsecs();
        window->Show();
        HeadlessTestApi::WaitForPresent(window, 1);
        state.SetIterationTime((system_time_nsecs() - start) / 1e9);
        window->Lock();
        window->Quit();
    }
    delete icon;
}
BENCHMARK(BM_ShowToFirstPresent)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    if (HeadlessTestApi::Use() != B_OK) {
        fprintf(stderr, "view_redraw: the headless display is not available\n");
        return 1;
    }
    BApplication* application = new BApplication("application/x-vnd.glimrow-view-redraw");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    delete application;
    return 0;
}
