// A GoogleTest fixture for tests of windows and views: the headless display and
// an application object (not running) for the windows to belong to. Windows left
// open are quit when the test ends.
#ifndef GLIMROW_TEST_HEADLESS_APP_TEST_H
#define GLIMROW_TEST_HEADLESS_APP_TEST_H

#include "server/headless/HeadlessTestApi.h"

#include <Application.h>
#include <Window.h>

#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <vector>

namespace testing_support {

// Lines written by window threads and read by the test, under a lock.
class EventLog {
public:
    void Add(const std::string& line);
    std::vector<std::string> Lines() const;
    size_t Count(const std::string& line) const;
    void Clear();

private:
    mutable std::mutex fLock;
    std::vector<std::string> fLines;
};

class HeadlessAppTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Waits (at most ten seconds) until every window has handled everything.
    static void WaitForIdle();

    // The screen point of a point in a window's coordinates.
    static BPoint ScreenPoint(const BWindow* window, BPoint windowPoint);

    // Outlives the windows, which may still log while they quit.
    EventLog fLog;
};

} // namespace testing_support

#endif // GLIMROW_TEST_HEADLESS_APP_TEST_H
