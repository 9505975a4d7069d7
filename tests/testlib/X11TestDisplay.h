// A private X server for one test: Xvfb on a free display number, optionally
// with openbox as the window manager (four desktops), DISPLAY pointing at it
// while the object lives. Also the tools the tests drive it with: xdotool,
// screenshots, and a look at the root window's properties.
#ifndef GLIMROW_TEST_X11_TEST_DISPLAY_H
#define GLIMROW_TEST_X11_TEST_DISPLAY_H

#include <SupportDefs.h>

#include <string>
#include <sys/types.h>

namespace testing_support {

class X11TestDisplay {
public:
    X11TestDisplay();
    ~X11TestDisplay();

    X11TestDisplay(const X11TestDisplay&) = delete;
    X11TestDisplay& operator=(const X11TestDisplay&) = delete;

    // Starts Xvfb (width x height, 24 bits) and waits until it answers; with a
    // window manager, also openbox, and waits until it manages the screen.
    bool Start(bool windowManager, int width = 1024, int height = 768);
    const std::string& Name() const { return fName; }

    // Runs a shell command against the display; answers its exit status.
    int Run(const std::string& command);
    // Runs it and answers what it printed.
    std::string Output(const std::string& command);

    // The root window's CARDINAL property, -1 if it has none.
    long RootCardinal(const char* property);
    // A window's CARDINAL property, -1 if it has none.
    long WindowCardinal(unsigned long window, const char* property);
    // Where the window's contents are on the screen, and their size; false while
    // it is not shown.
    bool WindowGeometry(unsigned long window, int* x, int* y, int* width, int* height);
    // Whether some client holds the pointer grabbed: the test's own connection
    // tries to grab it.
    bool PointerGrabbedElsewhere();
    // Whether the window is override-redirect (the window manager ignores it).
    bool IsOverrideRedirect(unsigned long window);
    // The atoms of a window's ATOM[] property, by name, space-separated.
    std::string WindowAtoms(unsigned long window, const char* property);
    // A window's CARDINAL[] property with format 32, or empty.
    std::string WindowCardinals(unsigned long window, const char* property);
    // The WM_TRANSIENT_FOR of a window; 0 if it has none.
    unsigned long TransientFor(unsigned long window);
    unsigned long Root();

    // The screen's pixel at x, y as 0xRRGGBB, read back from a screenshot of the
    // root window; -1 when none could be taken.
    long ScreenPixel(int x, int y);

    // Ends the X server (and the window manager) now.
    void Stop();

private:
    pid_t fServer;
    pid_t fWindowManager;
    std::string fName;
    std::string fConfigFolder;
    std::string fSavedDisplay;
    bool fHadDisplay;
    void* fConnection;
};

} // namespace testing_support

#endif // GLIMROW_TEST_X11_TEST_DISPLAY_H
