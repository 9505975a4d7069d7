#include <SupportDefs.h>

#include <stdio.h>
#include <stdlib.h>

// Programmer misuse ends the process where it happened, so a debugger or a core dump
// shows the guilty stack.
extern "C" void debugger(const char* message) {
    fprintf(stderr, "debugger() called: %s\n", message != NULL ? message : "(no message)");
    fflush(stderr);
    abort();
}
