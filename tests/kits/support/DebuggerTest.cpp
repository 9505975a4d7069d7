#include <SupportDefs.h>

#include <gtest/gtest.h>

TEST(Debugger, DebuggerPrintsItsMessageAndAborts) {
    EXPECT_DEATH(debugger("the looper was deleted twice"), "the looper was deleted twice");
}
