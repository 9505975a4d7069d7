// The program's two options: "-hotkey" records a new hot key at start, "-convert"
// turns the previous release's settings file into this one's.
#ifndef GLIMROW_COMMAND_LINE_H
#define GLIMROW_COMMAND_LINE_H

// Looks at every argument after the program's name. Only the exact option texts
// count; repeats are harmless. Answers false at the first other argument.
bool parse_command_line(int argc, const char* const* argv, bool* convert, bool* setHotKey);

// Prints the usage text to standard output.
void print_usage();

#endif // GLIMROW_COMMAND_LINE_H
