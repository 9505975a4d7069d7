// Kit-private hooks between the application and the rest of the kits.
//
// Windows live in the interface kit; they register here from their constructor and
// unregister from their destructor, so the application can count them and ask them
// to quit without the app kit knowing what a window is.
#ifndef _APP_APP_PRIVATE_H
#define _APP_APP_PRIVATE_H

#include <SupportDefs.h>

class BLooper;

namespace BPrivate {

class AppPrivate {
public:
    static void AddWindow(BLooper* window);
    static void RemoveWindow(BLooper* window);
    static int32 CountWindows();
    static BLooper* WindowAt(int32 index);
    static bool HasWindow(const BLooper* window);
    // Waits until the thread of every window that is ending (it quit, its loop is
    // over) has deleted it, so the application does not go while window
    // destructors still run. The calling thread's own window is not waited for.
    static void WaitForEndingWindows();

    // The application's signature (case as given), or NULL while there is no be_app.
    static const char* Signature();
};

} // namespace BPrivate

#endif // _APP_APP_PRIVATE_H
