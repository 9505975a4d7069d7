#include "CommandLine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>

namespace {

const char* const kUsage = "To set a hot key, add option \"-hotkey\"\n"
                           "To convert a settings for v1.0.4, add option \"-convert\"\n";

struct Options {
    bool recognised;
    bool convert;
    bool hotKey;
};

Options parse(std::initializer_list<const char*> arguments) {
    std::vector<const char*> argv = {"glimrow"};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    Options options = {false, false, false};
    options.recognised =
        parse_command_line((int)argv.size(), argv.data(), &options.convert, &options.hotKey);
    return options;
}

} // namespace

TEST(CommandLineTest, NoArgumentsSetNothing) {
    Options options = parse({});
    EXPECT_TRUE(options.recognised);
    EXPECT_FALSE(options.convert);
    EXPECT_FALSE(options.hotKey);
}

TEST(CommandLineTest, BothOptionsInEitherOrderAndRepeated) {
    Options options = parse({"-convert", "-hotkey", "-convert"});
    EXPECT_TRUE(options.recognised);
    EXPECT_TRUE(options.convert);
    EXPECT_TRUE(options.hotKey);

    options = parse({"-hotkey"});
    EXPECT_TRUE(options.recognised);
    EXPECT_FALSE(options.convert);
    EXPECT_TRUE(options.hotKey);
}

TEST(CommandLineTest, OptionWithSomethingAppendedIsNotRecognised) {
    EXPECT_FALSE(parse({"-hotkeys"}).recognised);
    EXPECT_FALSE(parse({"-convert=yes"}).recognised);
    EXPECT_FALSE(parse({"-convert", "-hotkey1"}).recognised);
    EXPECT_FALSE(parse({"-hotke"}).recognised);
    EXPECT_FALSE(parse({"--hotkey"}).recognised);
}

TEST(CommandLineTest, UsageTextIsPrintedToStandardOutput) {
    testing::internal::CaptureStdout();
    print_usage();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), kUsage);
}

TEST(CommandLineTest, ProgramPrintsUsageAndExitsZeroForAnAppendedOption) {
    std::string program = std::string(GLIMROW_BINARY_DIR) + "/glimrow";
    for (const char* argument : {"-hotkeyx", "-convert1", "-convert=now"}) {
        std::string command = "'" + program + "' " + argument;
        FILE* output = popen(command.c_str(), "r");
        ASSERT_NE(output, nullptr);
        std::string text;
        char buffer[256];
        size_t size;
        while ((size = fread(buffer, 1, sizeof(buffer), output)) > 0)
            text.append(buffer, size);
        int status = pclose(output);
        ASSERT_TRUE(WIFEXITED(status)) << argument;
        EXPECT_EQ(WEXITSTATUS(status), 0) << argument;
        EXPECT_EQ(text, kUsage) << argument;
    }
}
