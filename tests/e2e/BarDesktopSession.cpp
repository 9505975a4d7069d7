#include "BarDesktopSession.h"

#include "LayerFile.h"
#include "Settings.h"
#include "Watchdog.h"

#include <Directory.h>
#include <File.h>
#include <Node.h>
#include <NodeInfo.h>

#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

namespace testing_support {

namespace {

bool same_frame(const WindowFrame& one, const WindowFrame& other) {
    return one.x == other.x && one.y == other.y && one.width == other.width &&
           one.height == other.height;
}

} // namespace

BarDesktopSession::BarDesktopSession() : fApps(fHome), fProgram(-1), fBarWindow(0) {
    fOutputPath = fHome.Path() + "/glimrow.log";
}

BarDesktopSession::~BarDesktopSession() {
    if (fProgram > 0) {
        kill(fProgram, SIGTERM);
        int status;
        bool gone = wait_until([&] { return waitpid(fProgram, &status, WNOHANG) == fProgram; },
                               std::chrono::seconds(5));
        if (!gone) {
            kill(fProgram, SIGKILL);
            waitpid(fProgram, &status, 0);
        }
    }
}

bool BarDesktopSession::StartDesktop(bool windowManager) {
    if (!fDisplay.Start(windowManager))
        return false;
    char failure[B_PATH_NAME_LENGTH + 256] = "";
    return check_settings_folders(failure, sizeof(failure)) == B_OK;
}

std::string BarDesktopSession::LayersPath() const {
    return fHome.ConfigHome() + "/Glimrow/layers";
}

bool BarDesktopSession::MakeLayer(const std::string& name, const std::vector<std::string>& paths) {
    BMessage request(0x6772000d);
    request.AddString("name", name.c_str());
    for (const std::string& path : paths)
        request.AddString("paths", path.c_str());
    BDirectory layers(LayersPath().c_str());
    return write_layer_file(&layers, name.c_str(), &request) == B_OK;
}

std::string BarDesktopSession::MakeFile(const std::string& relativePath, const std::string& type) {
    std::string path = fHome.WriteFile(relativePath, "contents of " + relativePath + "\n");
    BNode node(path.c_str());
    BNodeInfo info(&node);
    info.SetType(type.c_str());
    return path;
}

bool BarDesktopSession::WriteSettings(const std::function<void(BMessage*)>& edit) {
    settings record;
    BMessage archive;
    if (record.archive_to(&archive) != B_OK)
        return false;
    edit(&archive);
    if (record.set_to(&archive) != B_OK)
        return false;
    return write_settings_file(&record) == B_OK;
}

bool BarDesktopSession::WriteHotKey(const std::vector<int>& keyCodes) {
    uint8 states[16] = {};
    for (int code : keyCodes)
        states[code >> 3] |= (uint8)(0x80 >> (code & 7));
    BNode node;
    if (get_settings_node(&node) != B_OK)
        return false;
    return node.WriteAttr("hotKey", B_UINT8_TYPE, 0, states, sizeof(states)) == sizeof(states);
}

bool BarDesktopSession::StartBar() {
    fProgram = fork();
    if (fProgram == 0) {
        int output = open(fOutputPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        dup2(output, 1);
        dup2(output, 2);
        execl(GLIMROW_PROGRAM, GLIMROW_PROGRAM, (char*)NULL);
        _exit(127);
    }
    if (fProgram < 0)
        return false;

    bool found = wait_until(
        [&] {
            std::string listed =
                fDisplay.Output("xdotool search --onlyvisible --name '^Glimrow$' 2>/dev/null");
            fBarWindow = strtoul(listed.c_str(), NULL, 10);
            return fBarWindow != 0 || !ProgramRunning();
        },
        std::chrono::seconds(20));
    if (!found || fBarWindow == 0)
        return false;

    // The layers arrive after the window is shown and the bar grows with them:
    // wait until the frame has held still for half a second.
    WindowFrame last = BarFrame();
    auto stableSince = std::chrono::steady_clock::now();
    return wait_until(
        [&] {
            WindowFrame now = BarFrame();
            if (!same_frame(now, last)) {
                last = now;
                stableSince = std::chrono::steady_clock::now();
                return false;
            }
            return std::chrono::steady_clock::now() - stableSince > std::chrono::milliseconds(500);
        },
        std::chrono::seconds(20));
}

WindowFrame BarDesktopSession::BarFrame() {
    WindowFrame frame;
    fDisplay.WindowGeometry(fBarWindow, &frame.x, &frame.y, &frame.width, &frame.height);
    return frame;
}

bool BarDesktopSession::WaitForBarFrame(const std::function<bool(const WindowFrame&)>& condition) {
    return wait_until([&] { return condition(BarFrame()); }, std::chrono::seconds(10));
}

std::string BarDesktopSession::ProgramOutput() const {
    return read_file(fOutputPath);
}

bool BarDesktopSession::ProgramRunning() {
    if (fProgram <= 0)
        return false;
    int status;
    if (waitpid(fProgram, &status, WNOHANG) == fProgram) {
        fProgram = -1;
        return false;
    }
    return true;
}

unsigned long BarDesktopSession::ActiveWindow() {
    return strtoul(fDisplay.Output("xdotool getactivewindow 2>/dev/null").c_str(), NULL, 10);
}

std::vector<std::pair<unsigned long, WindowFrame>> BarDesktopSession::ShownPopups() {
    // One shell for the whole look, and no Xlib call from this process: a menu
    // that closes in between only drops out of the list.
    std::string listed = fDisplay.Output(
        "xwininfo -root -children 2>/dev/null | sed -n 's/^ *\\(0x[0-9a-f]*\\) .*/\\1/p' | "
        "while read window; do DISPLAY=" +
        fDisplay.Name() +
        " xwininfo -id $window 2>/dev/null | awk -v id=$window '"
        "/Absolute upper-left X/ { x = $NF } /Absolute upper-left Y/ { y = $NF } "
        "/^ *Width:/ { w = $NF } /^ *Height:/ { h = $NF } /Map State:/ { m = $NF } "
        "/Override Redirect State:/ { o = $NF } "
        "END { if (m == \"IsViewable\" && o == \"yes\") print id, x, y, w, h }'; done");
    std::vector<std::pair<unsigned long, WindowFrame>> popups;
    size_t start = 0;
    while (start < listed.size()) {
        size_t end = listed.find('\n', start);
        if (end == std::string::npos)
            end = listed.size();
        std::string line = listed.substr(start, end - start);
        start = end + 1;
        unsigned long window = 0;
        WindowFrame frame;
        if (sscanf(line.c_str(), "%lx %d %d %d %d", &window, &frame.x, &frame.y, &frame.width,
                   &frame.height) != 5)
            continue;
        // Helper windows parked off the screen are no menus.
        if (frame.x + frame.width <= 0 || frame.y + frame.height <= 0)
            continue;
        popups.emplace_back(window, frame);
    }
    return popups;
}

void BarDesktopSession::ClickAt(int x, int y, int button) {
    fDisplay.Run("xdotool mousemove --sync " + std::to_string(x) + " " + std::to_string(y) +
                 " click " + std::to_string(button));
}

} // namespace testing_support
