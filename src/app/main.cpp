#include "CommandLine.h"
#include "Glimrow.h"

int main(int argc, char** argv) {
    bool convert = false;
    bool setHotKey = false;
    if (!parse_command_line(argc, argv, &convert, &setHotKey)) {
        print_usage();
        return 0;
    }

    Glimrow* application = new Glimrow(convert, setHotKey);
    application->Run();
    delete application;
    return 0;
}
