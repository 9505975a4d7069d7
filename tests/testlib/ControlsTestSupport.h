// Helpers for the tests of controls, text views and alerts: a window that logs
// the messages its controls send, pixel searches in captures, and running a
// blocking call on another thread under a deadline.
#ifndef GLIMROW_TEST_CONTROLS_TEST_SUPPORT_H
#define GLIMROW_TEST_CONTROLS_TEST_SUPPORT_H

#include "HeadlessAppTest.h"
#include "Watchdog.h"

#include <Control.h>
#include <InterfaceDefs.h>
#include <Message.h>
#include <View.h>
#include <Window.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <future>
#include <string>
#include <thread>

namespace testing_support {

// Logs "<what as text> <source's name> <be:value>" for every message that
// carries a "source", and "message <what> [<which>]" for the others it gets.
class ControlsWindow : public BWindow {
public:
    ControlsWindow(BRect frame, EventLog* log, uint32 flags = B_ASYNCHRONOUS_CONTROLS)
        : BWindow(frame, "controls", B_TITLED_WINDOW, flags), fLog(log) {}

    void MessageReceived(BMessage* message) override {
        void* source = NULL;
        if (message->FindPointer("source", &source) == B_OK) {
            BView* view = static_cast<BControl*>(source);
            fLog->Add(what_text(message->what) + " " + view->Name() + " " +
                      std::to_string(message->GetInt32("be:value", -1)));
            return;
        }
        if (message->what >= 'AAAA') {
            int32 which;
            std::string line = "message " + what_text(message->what);
            if (message->FindInt32("which", &which) == B_OK)
                line += " " + std::to_string(which);
            fLog->Add(line);
            return;
        }
        BWindow::MessageReceived(message);
    }

    static std::string what_text(uint32 what) {
        std::string text;
        for (int shift = 24; shift >= 0; shift -= 8)
            text += (char)((what >> shift) & 0xff);
        return text;
    }

private:
    EventLog* fLog;
};

inline bool same_color(rgb_color a, rgb_color b) {
    return a.red == b.red && a.green == b.green && a.blue == b.blue;
}

// The smallest rectangle (capture coordinates) inside area holding every pixel
// that is not the background; invalid when there is none.
inline BRect ink_bounds(const BPrivate::Capture& capture, BRect area, rgb_color background) {
    BRect bounds;
    for (int32 y = (int32)area.top; y <= (int32)area.bottom; y++) {
        for (int32 x = (int32)area.left; x <= (int32)area.right; x++) {
            if (same_color(capture.ColorAt(x, y), background))
                continue;
            BRect pixel(x, y, x, y);
            bounds = bounds.IsValid() ? (bounds | pixel) : pixel;
        }
    }
    return bounds;
}

// How many pixels of the area have exactly this colour.
inline int32 count_color(const BPrivate::Capture& capture, BRect area, rgb_color color) {
    int32 count = 0;
    for (int32 y = (int32)area.top; y <= (int32)area.bottom; y++) {
        for (int32 x = (int32)area.left; x <= (int32)area.right; x++) {
            if (same_color(capture.ColorAt(x, y), color))
                count++;
        }
    }
    return count;
}

// The darkest grey value (the smallest of red, green and blue) in the area.
inline int32 darkest_value(const BPrivate::Capture& capture, BRect area) {
    int32 darkest = 255;
    for (int32 y = (int32)area.top; y <= (int32)area.bottom; y++) {
        for (int32 x = (int32)area.left; x <= (int32)area.right; x++) {
            rgb_color color = capture.ColorAt(x, y);
            darkest = std::min<int32>(darkest, std::min({color.red, color.green, color.blue}));
        }
    }
    return darkest;
}

// Runs a blocking call on a thread of its own. Wait() answers whether it
// finished before the deadline; a call that never returns is left behind (the
// test process ends with the test).
template <typename Result>
class BlockingCall {
public:
    explicit BlockingCall(std::function<Result()> call) {
        std::packaged_task<Result()> task(std::move(call));
        fFuture = task.get_future();
        std::thread(std::move(task)).detach();
    }

    bool Wait(std::chrono::milliseconds deadline = std::chrono::seconds(10)) {
        return fFuture.wait_for(deadline) == std::future_status::ready;
    }

    Result Get() { return fFuture.get(); }

private:
    std::future<Result> fFuture;
};

} // namespace testing_support

#endif // GLIMROW_TEST_CONTROLS_TEST_SUPPORT_H
