#include "X11TestDisplay.h"

#include "Watchdog.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cairo.h>

#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

namespace testing_support {

namespace {

// Enough for openbox to be a window manager with four desktops, nothing of the
// user's own configuration.
const char* const kOpenboxConfig =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<openbox_config xmlns=\"http://openbox.org/3.4/rc\">\n"
    "  <focus><focusNew>yes</focusNew><followMouse>no</followMouse></focus>\n"
    "  <placement><policy>Smart</policy></placement>\n"
    "  <desktops><number>4</number><firstdesk>1</firstdesk></desktops>\n"
    "</openbox_config>\n";

pid_t spawn(const char* const arguments[], int keepOpen) {
    pid_t child = fork();
    if (child != 0)
        return child;
    // In the child: a session of its own, so nothing of the test's terminal
    // reaches it; only the descriptor it needs stays open.
    setsid();
    int null = open("/dev/null", O_RDWR);
    dup2(null, 0);
    dup2(null, 1);
    for (int descriptor = 3; descriptor < 1024; descriptor++) {
        if (descriptor != keepOpen)
            close(descriptor);
    }
    // A test may point XDG_DATA_DIRS at its own applications; the window manager
    // still needs the system's themes.
    setenv("XDG_DATA_DIRS", "/usr/local/share:/usr/share", 1);
    execvp(arguments[0], (char* const*)arguments);
    _exit(127);
}

void end(pid_t* child) {
    if (*child <= 0)
        return;
    kill(*child, SIGTERM);
    int status;
    bool gone = wait_until([&] { return waitpid(*child, &status, WNOHANG) == *child; },
                           std::chrono::seconds(5));
    if (!gone) {
        kill(*child, SIGKILL);
        waitpid(*child, &status, 0);
    }
    *child = -1;
}

} // namespace

X11TestDisplay::X11TestDisplay()
    : fServer(-1), fWindowManager(-1), fHadDisplay(false), fConnection(NULL) {
    const char* display = getenv("DISPLAY");
    fHadDisplay = display != NULL;
    if (display != NULL)
        fSavedDisplay = display;
}

X11TestDisplay::~X11TestDisplay() {
    Stop();
    if (fHadDisplay)
        setenv("DISPLAY", fSavedDisplay.c_str(), 1);
    else
        unsetenv("DISPLAY");
}

void X11TestDisplay::Stop() {
    if (fConnection != NULL) {
        XCloseDisplay((Display*)fConnection);
        fConnection = NULL;
    }
    end(&fWindowManager);
    end(&fServer);
    if (!fConfigFolder.empty()) {
        std::string command = "rm -rf '" + fConfigFolder + "'";
        if (system(command.c_str()) != 0)
            fprintf(stderr, "could not remove %s\n", fConfigFolder.c_str());
        fConfigFolder.clear();
    }
}

bool X11TestDisplay::Start(bool windowManager, int width, int height) {
    // Display numbers are tried from one that depends on the process, so tests
    // running side by side rarely meet; Xvfb refuses a number in use, and the
    // next one is tried. (Letting Xvfb choose with -displayfd alone lets two
    // servers starting together take the same one.)
    std::string screen = std::to_string(width) + "x" + std::to_string(height) + "x24";
    std::string number;
    int first = 100 + (int)(getpid() % 800);
    for (int attempt = 0; attempt < 40 && number.empty(); attempt++) {
        int pipeline[2];
        if (pipe(pipeline) != 0)
            return false;
        std::string name = ":" + std::to_string(first + attempt * 7);
        std::string descriptor = std::to_string(pipeline[1]);
        const char* serverArguments[] = {
            "Xvfb",         name.c_str(), "-displayfd", descriptor.c_str(), "-screen", "0",
            screen.c_str(), "-nolisten",  "tcp",        "-noreset",         NULL};
        fServer = spawn(serverArguments, pipeline[1]);
        close(pipeline[1]);
        // Xvfb writes its display number once it accepts clients, and nothing
        // when it gives up.
        char character;
        while (read(pipeline[0], &character, 1) == 1 && character != '\n')
            number += character;
        close(pipeline[0]);
        if (number.empty()) {
            int status;
            waitpid(fServer, &status, 0);
            fServer = -1;
        }
    }
    if (number.empty())
        return false;
    fName = ":" + number;
    setenv("DISPLAY", fName.c_str(), 1);
    Display* display = XOpenDisplay(fName.c_str());
    if (display == NULL)
        return false;
    fConnection = display;
    if (!windowManager)
        return true;

    char folder[] = "/tmp/glimrow-openbox-XXXXXX";
    if (mkdtemp(folder) == NULL)
        return false;
    fConfigFolder = folder;
    std::string config = fConfigFolder + "/rc.xml";
    FILE* file = fopen(config.c_str(), "w");
    if (file == NULL)
        return false;
    fputs(kOpenboxConfig, file);
    fclose(file);
    const char* managerArguments[] = {"openbox", "--config-file", config.c_str(), NULL};
    fWindowManager = spawn(managerArguments, -1);
    // Openbox names its check window last of what it sets up on the root.
    Display* connection = (Display*)fConnection;
    Atom check = XInternAtom(connection, "_NET_SUPPORTING_WM_CHECK", False);
    bool ready = wait_until(
        [&] {
            Atom type;
            int format;
            unsigned long count = 0;
            unsigned long remaining = 0;
            unsigned char* data = NULL;
            bool present = XGetWindowProperty(connection, DefaultRootWindow(connection), check, 0,
                                              1, False, XA_WINDOW, &type, &format, &count,
                                              &remaining, &data) == Success &&
                           data != NULL && count == 1;
            if (data != NULL)
                XFree(data);
            return present && RootCardinal("_NET_NUMBER_OF_DESKTOPS") == 4 &&
                   RootCardinal("_NET_CURRENT_DESKTOP") == 0;
        },
        std::chrono::seconds(20));
    if (!ready)
        return false;
    // The properties are there before openbox handles requests, and a request
    // that comes too early is lost: switching desktops there and back, asking
    // again until it happens, shows that it handles them.
    for (int desktop : {1, 0}) {
        bool switched = false;
        for (int attempt = 0; attempt < 100 && !switched; attempt++) {
            if (Run("xdotool set_desktop " + std::to_string(desktop)) != 0)
                return false;
            switched = wait_until([&] { return RootCardinal("_NET_CURRENT_DESKTOP") == desktop; },
                                  std::chrono::milliseconds(200));
        }
        if (!switched)
            return false;
    }
    return true;
}

int X11TestDisplay::Run(const std::string& command) {
    std::string line = "DISPLAY=" + fName + " " + command;
    int status = system(line.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string X11TestDisplay::Output(const std::string& command) {
    std::string line = "DISPLAY=" + fName + " " + command;
    FILE* pipe = popen(line.c_str(), "r");
    if (pipe == NULL)
        return std::string();
    std::string output;
    char buffer[256];
    size_t got;
    while ((got = fread(buffer, 1, sizeof(buffer), pipe)) > 0)
        output.append(buffer, got);
    pclose(pipe);
    return output;
}

long X11TestDisplay::WindowCardinal(unsigned long window, const char* property) {
    Display* display = (Display*)fConnection;
    if (display == NULL)
        return -1;
    Atom atom = XInternAtom(display, property, False);
    Atom type;
    int format;
    unsigned long count = 0;
    unsigned long remaining = 0;
    unsigned char* data = NULL;
    long value = -1;
    if (XGetWindowProperty(display, window, atom, 0, 1, False, XA_CARDINAL, &type, &format, &count,
                           &remaining, &data) == Success &&
        data != NULL && format == 32 && count == 1)
        value = (long)(((unsigned long*)data)[0] & 0xffffffff);
    if (data != NULL)
        XFree(data);
    return value;
}

long X11TestDisplay::RootCardinal(const char* property) {
    Display* display = (Display*)fConnection;
    if (display == NULL)
        return -1;
    return WindowCardinal(DefaultRootWindow(display), property);
}

bool X11TestDisplay::WindowGeometry(unsigned long window, int* x, int* y, int* width, int* height) {
    Display* display = (Display*)fConnection;
    if (display == NULL)
        return false;
    XWindowAttributes attributes;
    if (!XGetWindowAttributes(display, window, &attributes) || attributes.map_state != IsViewable)
        return false;
    Window child;
    if (!XTranslateCoordinates(display, window, DefaultRootWindow(display), 0, 0, x, y, &child))
        return false;
    *width = attributes.width;
    *height = attributes.height;
    return true;
}

bool X11TestDisplay::PointerGrabbedElsewhere() {
    Display* display = (Display*)fConnection;
    if (display == NULL)
        return false;
    int result = XGrabPointer(display, DefaultRootWindow(display), False, ButtonPressMask,
                              GrabModeAsync, GrabModeAsync, None, None, CurrentTime);
    if (result == GrabSuccess) {
        XUngrabPointer(display, CurrentTime);
        XSync(display, False);
        return false;
    }
    return result == AlreadyGrabbed;
}

bool X11TestDisplay::IsOverrideRedirect(unsigned long window) {
    Display* display = (Display*)fConnection;
    XWindowAttributes attributes;
    return display != NULL && XGetWindowAttributes(display, window, &attributes) &&
           attributes.override_redirect;
}

std::string X11TestDisplay::WindowAtoms(unsigned long window, const char* property) {
    Display* display = (Display*)fConnection;
    if (display == NULL)
        return std::string();
    Atom type;
    int format;
    unsigned long count = 0;
    unsigned long remaining = 0;
    unsigned char* data = NULL;
    std::string names;
    if (XGetWindowProperty(display, window, XInternAtom(display, property, False), 0, 64, False,
                           XA_ATOM, &type, &format, &count, &remaining, &data) == Success &&
        data != NULL && format == 32) {
        for (unsigned long index = 0; index < count; index++) {
            char* name = XGetAtomName(display, ((Atom*)data)[index]);
            if (name == NULL)
                continue;
            if (!names.empty())
                names += " ";
            names += name;
            XFree(name);
        }
    }
    if (data != NULL)
        XFree(data);
    return names;
}

std::string X11TestDisplay::WindowCardinals(unsigned long window, const char* property) {
    Display* display = (Display*)fConnection;
    if (display == NULL)
        return std::string();
    Atom atom = XInternAtom(display, property, False);
    Atom type;
    int format;
    unsigned long count = 0;
    unsigned long remaining = 0;
    unsigned char* data = NULL;
    std::string values;
    if (XGetWindowProperty(display, window, atom, 0, 64, False, AnyPropertyType, &type, &format,
                           &count, &remaining, &data) == Success &&
        data != NULL && format == 32) {
        for (unsigned long index = 0; index < count; index++) {
            if (!values.empty())
                values += " ";
            values += std::to_string(((unsigned long*)data)[index]);
        }
    }
    if (data != NULL)
        XFree(data);
    return values;
}

unsigned long X11TestDisplay::TransientFor(unsigned long window) {
    Display* display = (Display*)fConnection;
    Window parent = 0;
    if (display == NULL || !XGetTransientForHint(display, window, &parent))
        return 0;
    return parent;
}

unsigned long X11TestDisplay::Root() {
    Display* display = (Display*)fConnection;
    return display != NULL ? DefaultRootWindow(display) : 0;
}

long X11TestDisplay::ScreenPixel(int x, int y) {
    if (fConfigFolder.empty()) {
        char folder[] = "/tmp/glimrow-x11-XXXXXX";
        if (mkdtemp(folder) == NULL)
            return -1;
        fConfigFolder = folder;
    }
    std::string path = fConfigFolder + "/screen.png";
    if (Run("import -window root '" + path + "'") != 0)
        return -1;
    cairo_surface_t* image = cairo_image_surface_create_from_png(path.c_str());
    long value = -1;
    if (cairo_surface_status(image) == CAIRO_STATUS_SUCCESS &&
        x < cairo_image_surface_get_width(image) && y < cairo_image_surface_get_height(image) &&
        x >= 0 && y >= 0) {
        cairo_surface_flush(image);
        const uint8* row =
            cairo_image_surface_get_data(image) + (size_t)y * cairo_image_surface_get_stride(image);
        value = (long)(((const uint32*)row)[x] & 0xffffff);
    }
    cairo_surface_destroy(image);
    return value;
}

} // namespace testing_support
