#include "CommandLine.h"
#include "Glimrow.h"

#include <Screen.h>

#include <malloc.h>

int main(int argc, char** argv) {
    // A handful of threads that rarely allocate at the same time: one malloc
    // arena serves them all, without each thread's arena keeping its own pages.
    mallopt(M_ARENA_MAX, 1);

    bool convert = false;
    bool setHotKey = false;
    if (!parse_command_line(argc, argv, &convert, &setHotKey)) {
        print_usage();
        return 0;
    }

    // Without a display there is no bar to show; the display backend has already
    // told standard error why it could not open one.
    if (!BScreen().IsValid())
        return 1;

    Glimrow* application = new Glimrow(convert, setHotKey);
    application->Run();
    delete application;
    return 0;
}
