#include "app/AppPrivate.h"

#include <Application.h>

#include <algorithm>
#include <mutex>
#include <vector>

namespace BPrivate {

namespace {

// Windows in the order they were made. Never destroyed: window threads may still
// unregister while the process exits.
struct WindowList {
    std::mutex mutex;
    std::vector<BLooper*> windows;
};

WindowList& window_list() {
    static WindowList* sList = new WindowList;
    return *sList;
}

} // namespace

void AppPrivate::AddWindow(BLooper* window) {
    if (window == NULL)
        return;
    WindowList& list = window_list();
    std::lock_guard<std::mutex> locker(list.mutex);
    if (std::find(list.windows.begin(), list.windows.end(), window) == list.windows.end())
        list.windows.push_back(window);
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

} // namespace BPrivate
