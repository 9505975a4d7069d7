// The program bench_x11_startup times against the floor: one empty BWindow, and
// nothing else linked in than the kits.
#include <Application.h>
#include <Window.h>

int main() {
    BApplication application("application/x-vnd.glimrow-bench-window");
    BWindow* window =
        new BWindow(BRect(100, 100, 399, 299), "empty", B_TITLED_WINDOW, B_QUIT_ON_WINDOW_CLOSE);
    window->Show();
    application.Run();
    return 0;
}
