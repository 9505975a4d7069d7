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

} // namespace testing_support
