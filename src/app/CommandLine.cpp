#include "CommandLine.h"

#include <stdio.h>
#include <string.h>

bool parse_command_line(int argc, const char* const* argv, bool* convert, bool* setHotKey) {
    bool convertFound = false;
    bool hotKeyFound = false;
    for (int index = 1; index < argc; index++) {
        const char* argument = argv[index];
        if (argument != NULL && strcmp(argument, "-hotkey") == 0)
            hotKeyFound = true;
        else if (argument != NULL && strcmp(argument, "-convert") == 0)
            convertFound = true;
        else
            return false;
    }
    if (convert != NULL)
        *convert = convertFound;
    if (setHotKey != NULL)
        *setHotKey = hotKeyFound;
    return true;
}

void print_usage() {
    fputs("To set a hot key, add option \"-hotkey\"\n"
          "To convert a settings for v1.0.4, add option \"-convert\"\n",
          stdout);
    fflush(stdout);
}
