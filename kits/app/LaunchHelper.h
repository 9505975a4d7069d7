// Starting programs for the roster (kit-private).
//
// Children start in a session of their own (so that a terminal's signals to us
// do not reach them), with stdin from /dev/null and no descriptor of ours but
// stdout and stderr: the X connection, inotify and every other descriptor are
// closed in the child whatever their close-on-exec flag says.
#ifndef _APP_LAUNCH_HELPER_H
#define _APP_LAUNCH_HELPER_H

#include <OS.h>
#include <SupportDefs.h>

#include <string>
#include <vector>

namespace BPrivate {

class LaunchHelper {
public:
    // Starts one process per command line; a program without a slash is looked
    // for on $PATH. Stops at the first failure (B_LAUNCH_FAILED_APP_NOT_FOUND for
    // a missing program, B_LAUNCH_FAILED_EXECUTABLE for a file that will not run,
    // B_LAUNCH_FAILED otherwise); the processes already started keep running.
    static status_t Spawn(const std::vector<std::vector<std::string>>& commands,
                          const std::string& workingDirectory, std::vector<team_id>* teams);

    // The terminal command that runs a command line in a window of its own
    // (x-terminal-emulator, else xterm); B_LAUNCH_FAILED_APP_NOT_FOUND without one.
    static status_t WrapInTerminal(std::vector<std::string>* command);
};

} // namespace BPrivate

#endif // _APP_LAUNCH_HELPER_H
