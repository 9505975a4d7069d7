#include "AlertAnswerer.h"

#include "server/headless/HeadlessTestApi.h"

#include <Alert.h>
#include <Button.h>
#include <Looper.h>
#include <Messenger.h>
#include <TextView.h>

#include <algorithm>

namespace testing_support {

using BPrivate::HeadlessTestApi;

AlertAnswerer::AlertAnswerer(const std::string& buttonLabel, int count, Inspector inspector)
    : fLabel(buttonLabel), fCount(count), fInspector(inspector), fThread([this] { _Run(); }) {}

AlertAnswerer::~AlertAnswerer() {
    {
        std::lock_guard<std::mutex> lock(fLock);
        fStop = true;
    }
    if (fThread.joinable())
        fThread.join();
}

void AlertAnswerer::Detach() {
    fThread.detach();
}

bool AlertAnswerer::Wait(std::chrono::milliseconds deadline) {
    std::unique_lock<std::mutex> lock(fLock);
    return fChanged.wait_for(lock, deadline, [&] { return (int)fSeen.size() >= fCount; });
}

std::vector<SeenAlert> AlertAnswerer::Seen() {
    std::lock_guard<std::mutex> lock(fLock);
    return fSeen;
}

void AlertAnswerer::_Run() {
    for (;;) {
        {
            std::lock_guard<std::mutex> lock(fLock);
            if (fStop || (int)fSeen.size() >= fCount)
                return;
        }
        if (!_AnswerOne())
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

bool AlertAnswerer::_AnswerOne() {
    for (const BPrivate::WindowListing& listing : HeadlessTestApi::Windows()) {
        if (!listing.visible)
            continue;
        BLooper* looper = NULL;
        listing.messenger.Target(&looper);
        BAlert* alert = dynamic_cast<BAlert*>(looper);
        if (alert == NULL)
            continue;
        {
            std::lock_guard<std::mutex> lock(fLock);
            if (std::find(fAnswered.begin(), fAnswered.end(), listing.id) != fAnswered.end())
                continue;
        }
        if (!alert->Lock())
            continue;
        SeenAlert seen;
        seen.title = alert->Title() != NULL ? alert->Title() : "";
        if (alert->TextView() != NULL && alert->TextView()->Text() != NULL)
            seen.text = alert->TextView()->Text();
        BPoint target;
        bool found = false;
        for (int32 index = 0; BButton* button = alert->ButtonAt(index); index++) {
            std::string label = button->Label() != NULL ? button->Label() : "";
            seen.buttons.push_back(label);
            if (label == fLabel && !found) {
                BRect frame = button->ConvertToScreen(button->Bounds());
                target = BPoint((frame.left + frame.right) / 2, (frame.top + frame.bottom) / 2);
                found = true;
            }
        }
        // An alert without the button is still closed, so nothing hangs; the
        // labels noted above tell the test what was there.
        if (!found && alert->ButtonAt(0) != NULL) {
            BButton* button = alert->ButtonAt(0);
            BRect frame = button->ConvertToScreen(button->Bounds());
            target = BPoint((frame.left + frame.right) / 2, (frame.top + frame.bottom) / 2);
            found = true;
        }
        if (fInspector)
            fInspector(alert);
        alert->Unlock();
        {
            std::lock_guard<std::mutex> lock(fLock);
            fAnswered.push_back(listing.id);
            fSeen.push_back(seen);
        }
        fChanged.notify_all();
        if (found)
            HeadlessTestApi::Click(target);
        return true;
    }
    return false;
}

} // namespace testing_support
