// One run of the real program on a private X desktop: Xvfb with openbox (four
// desktops), a temporary home with layers made through the program's own layer
// files, recording applications that stand in for the user's programs, and the
// built glimrow binary started from outside, as a user's session starts it.
#ifndef GLIMROW_TEST_BAR_DESKTOP_SESSION_H
#define GLIMROW_TEST_BAR_DESKTOP_SESSION_H

#include "RecordingApps.h"
#include "TestHome.h"
#include "X11TestDisplay.h"

#include <Message.h>

#include <functional>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace testing_support {

struct WindowFrame {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

class BarDesktopSession {
public:
    BarDesktopSession();
    ~BarDesktopSession();

    // Starts the desktop (openbox too unless told otherwise); false when Xvfb or
    // openbox could not be had.
    bool StartDesktop(bool windowManager = true);

    // A layer file in the layers folder holding the given paths.
    bool MakeLayer(const std::string& name, const std::vector<std::string>& paths);
    // A real file below the home with the given MIME type; answers its path.
    std::string MakeFile(const std::string& relativePath, const std::string& type);
    // Writes the settings file: the defaults, changed by edit (on the archived record).
    bool WriteSettings(const std::function<void(BMessage*)>& edit);
    // Writes the hot-key attribute of the settings file: the keys held, as Be key codes.
    bool WriteHotKey(const std::vector<int>& keyCodes);

    // Starts the program and waits until its bar window is mapped and its frame
    // has stayed the same for a moment (the layers load in the background).
    bool StartBar();
    unsigned long BarWindow() const { return fBarWindow; }
    // The bar window's frame on the screen, read now.
    WindowFrame BarFrame();
    // Waits until the bar's frame satisfies the condition; false at the deadline.
    bool WaitForBarFrame(const std::function<bool(const WindowFrame&)>& condition);
    // What the program wrote to standard output and standard error so far.
    std::string ProgramOutput() const;
    bool ProgramRunning();

    // The window that has the input focus, as xdotool reports it; 0 for none.
    unsigned long ActiveWindow();

    // The override-redirect windows (menus) shown on the screen now, each with
    // its frame, as xwininfo reports them from outside the program.
    std::vector<std::pair<unsigned long, WindowFrame>> ShownPopups();
    // Moves the pointer to the screen point and clicks the button there.
    void ClickAt(int x, int y, int button = 1);

    X11TestDisplay& Display() { return fDisplay; }
    RecordingApps& Apps() { return fApps; }
    const TestHome& Home() const { return fHome; }
    std::string LayersPath() const;

private:
    TestHome fHome;
    RecordingApps fApps;
    X11TestDisplay fDisplay;
    pid_t fProgram;
    unsigned long fBarWindow;
    std::string fOutputPath;
};

} // namespace testing_support

#endif // GLIMROW_TEST_BAR_DESKTOP_SESSION_H
