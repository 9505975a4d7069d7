#include "app/AppPrivate.h"

#include "app/LooperPort.h"
#include "app/ThreadUtilities.h"
#include "app/TokenSpace.h"

#include <Application.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <vector>

namespace BPrivate {

namespace {

// Windows in the order they were made. Never destroyed: window threads may still
// unregister while the process exits.
struct WindowList {
    std::mutex mutex;
    std::vector<BLooper*> windows;
    // The ports of the windows made, kept past their windows until their threads
    // are done: an ending window has left the list before its thread finishes.
    std::vector<std::shared_ptr<LooperPort>> ports;
};

WindowList& window_list() {
    static WindowList* sList = new WindowList;
    return *sList;
}

} // namespace

void AppPrivate::AddWindow(BLooper* window) {
    if (window == NULL)
        return;
    std::shared_ptr<LooperPort> port = TokenSpace::Default().PortOf(window);
    WindowList& list = window_list();
    std::lock_guard<std::mutex> locker(list.mutex);
    if (std::find(list.windows.begin(), list.windows.end(), window) == list.windows.end())
        list.windows.push_back(window);
    std::erase_if(list.ports, [](const std::shared_ptr<LooperPort>& known) {
        return known->IsFinished() || (known->IsClosed() && known->ReaderThread() < 0);
    });
    if (port != nullptr)
        list.ports.push_back(port);
}

void AppPrivate::RemoveWindow(BLooper* window) {
    WindowList& list = window_list();
    std::lock_guard<std::mutex> locker(list.mutex);
    auto found = std::find(list.windows.begin(), list.windows.end(), window);
    if (found != list.windows.end())
        list.windows.erase(found);
}

int32 AppPrivate::CountWindows() {
    WindowList& list = window_list();
    std::lock_guard<std::mutex> locker(list.mutex);
    return (int32)list.windows.size();
}

BLooper* AppPrivate::WindowAt(int32 index) {
    WindowList& list = window_list();
    std::lock_guard<std::mutex> locker(list.mutex);
    if (index < 0 || index >= (int32)list.windows.size())
        return NULL;
    return list.windows[index];
}

bool AppPrivate::HasWindow(const BLooper* window) {
    WindowList& list = window_list();
    std::lock_guard<std::mutex> locker(list.mutex);
    return std::find(list.windows.begin(), list.windows.end(), window) != list.windows.end();
}

void AppPrivate::WaitForEndingWindows() {
    thread_id self = current_thread();
    std::vector<std::shared_ptr<LooperPort>> ending;
    {
        WindowList& list = window_list();
        std::lock_guard<std::mutex> locker(list.mutex);
        for (const std::shared_ptr<LooperPort>& port : list.ports) {
            thread_id thread = port->ReaderThread();
            if (port->IsClosed() && thread >= 0 && thread != self && !port->IsFinished())
                ending.push_back(port);
        }
    }
    // Without the list's lock: the windows unregister while they end.
    for (const std::shared_ptr<LooperPort>& port : ending)
        port->WaitFinished();
}

} // namespace BPrivate
