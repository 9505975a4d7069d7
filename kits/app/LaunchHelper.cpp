#include "LaunchHelper.h"

#include "storage/GLibHandles.h"
#include "storage/GioLibrary.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace BPrivate::storage_glib;

namespace BPrivate {

namespace {

// Runs in the child between fork and exec: only async-signal-safe calls.
void child_setup(gpointer) {
    setsid();
}

status_t status_for_spawn_error(const GError* error) {
    if (error == nullptr || error->domain != GioLibrary::Get().g_spawn_error_quark())
        return B_LAUNCH_FAILED;
    switch (error->code) {
    case G_SPAWN_ERROR_NOENT:
    case G_SPAWN_ERROR_NOTDIR:
        return B_LAUNCH_FAILED_APP_NOT_FOUND;
    case G_SPAWN_ERROR_NOEXEC:
    case G_SPAWN_ERROR_ACCES:
    case G_SPAWN_ERROR_PERM:
    case G_SPAWN_ERROR_ISDIR:
    case G_SPAWN_ERROR_LIBBAD:
        return B_LAUNCH_FAILED_EXECUTABLE;
    default:
        return B_LAUNCH_FAILED;
    }
}

} // namespace

status_t LaunchHelper::Spawn(const std::vector<std::vector<std::string>>& commands,
                             const std::string& workingDirectory, std::vector<team_id>* teams) {
    if (teams == nullptr || commands.empty())
        return B_BAD_VALUE;
    teams->clear();
    const char* folder = nullptr;
    struct stat info;
    // A working folder that is gone is no reason not to start the program.
    if (!workingDirectory.empty() && stat(workingDirectory.c_str(), &info) == 0 &&
        S_ISDIR(info.st_mode))
        folder = workingDirectory.c_str();

    for (const std::vector<std::string>& command : commands) {
        if (command.empty() || command[0].empty())
            return B_BAD_VALUE;
        std::vector<char*> arguments;
        for (const std::string& argument : command)
            arguments.push_back(const_cast<char*>(argument.c_str()));
        arguments.push_back(nullptr);

        GPid pid = 0;
        GError* rawError = nullptr;
        GSpawnFlags flags = GSpawnFlags(G_SPAWN_DO_NOT_REAP_CHILD | G_SPAWN_SEARCH_PATH |
                                        G_SPAWN_STDIN_FROM_DEV_NULL);
        gboolean started = GioLibrary::Get().g_spawn_async(folder, arguments.data(), nullptr, flags,
                                                           child_setup, nullptr, &pid, &rawError);
        ErrorPtr error(rawError);
        if (!started)
            return status_for_spawn_error(error.get());
        teams->push_back(team_id(pid));
    }
    return B_OK;
}

status_t LaunchHelper::WrapInTerminal(std::vector<std::string>* command) {
    if (command == nullptr)
        return B_BAD_VALUE;
    for (const char* terminal : {"x-terminal-emulator", "xterm"}) {
        StringPtr program(GioLibrary::Get().g_find_program_in_path(terminal));
        if (program == nullptr)
            continue;
        command->insert(command->begin(), {program.get(), "-e"});
        return B_OK;
    }
    return B_LAUNCH_FAILED_APP_NOT_FOUND;
}

} // namespace BPrivate
