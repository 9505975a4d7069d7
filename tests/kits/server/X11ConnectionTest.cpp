// The X connection's two ends: no display to open, and a display that goes away
// while the program runs.
// Before the X headers, whose macros (None, Bool) would clash with its names.
#include <gtest/gtest.h>

#include "X11TestDisplay.h"

#include "server/DisplayServer.h"

#include <Application.h>
#include <Window.h>

#include "Watchdog.h"

#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

using BPrivate::DisplayServer;

TEST(X11ConnectionTest, UnreachableDisplayIsNamedAndRefused) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            unsetenv("GLIMROW_DISPLAY");
            setenv("DISPLAY", ":59321", 1);
            status_t error = B_OK;
            DisplayServer* server = DisplayServer::Default(&error);
            exit(server == NULL && error != B_OK ? 3 : 0);
        },
        ::testing::ExitedWithCode(3), "cannot open display \":59321\"");
}

TEST(X11ConnectionTest, LostDisplayEndsTheProgramWithAMessage) {
    testing_support::X11TestDisplay display;
    ASSERT_TRUE(display.Start(false));
    int errors[2];
    ASSERT_EQ(0, pipe(errors));
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        dup2(errors[1], 2);
        close(errors[0]);
        unsetenv("GLIMROW_DISPLAY");
        BApplication application("application/x-vnd.glimrow-x11-lost-test");
        BWindow* window = new BWindow(BRect(10, 10, 109, 109), "lost", B_TITLED_WINDOW, 0);
        window->Show();
        application.Run();
        _exit(0);
    }
    close(errors[1]);
    // Once the window is up, the X server goes away under it.
    ASSERT_TRUE(testing_support::wait_until(
        [&] { return display.Output("xdotool search --name '^lost$'").size() > 0; }));
    display.Stop();
    int status = 0;
    bool ended = testing_support::wait_until(
        [&] { return waitpid(child, &status, WNOHANG) == child; }, std::chrono::seconds(15));
    if (!ended) {
        kill(child, SIGKILL);
        waitpid(child, &status, 0);
    }
    std::string output;
    char buffer[256];
    ssize_t got;
    while ((got = read(errors[0], buffer, sizeof(buffer))) > 0)
        output.append(buffer, got);
    close(errors[0]);
    EXPECT_TRUE(ended) << "the program hung without its display";
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_NE(std::string::npos, output.find("lost the connection to the X display")) << output;
}
