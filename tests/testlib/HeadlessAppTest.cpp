#include "HeadlessAppTest.h"

#include <algorithm>

namespace testing_support {

void HeadlessAppTest::SetUp() {
    ASSERT_EQ(B_OK, BPrivate::HeadlessTestApi::Use());
    ASSERT_EQ(B_OK, BPrivate::HeadlessTestApi::Reset());
    new BApplication("application/x-vnd.glimrow-headless-test");
}

void HeadlessAppTest::TearDown() {
    BPrivate::HeadlessTestApi::WaitForIdle();
    // The application quits the windows still open.
    delete be_app;
}

void HeadlessAppTest::WaitForIdle() {
    ASSERT_EQ(B_OK, BPrivate::HeadlessTestApi::WaitForIdle(10000000));
}

BPoint HeadlessAppTest::ScreenPoint(const BWindow* window, BPoint windowPoint) {
    return BPrivate::HeadlessTestApi::ScreenPoint(window, windowPoint);
}

void EventLog::Add(const std::string& line) {
    std::lock_guard<std::mutex> lock(fLock);
    fLines.push_back(line);
}

std::vector<std::string> EventLog::Lines() const {
    std::lock_guard<std::mutex> lock(fLock);
    return fLines;
}

size_t EventLog::Count(const std::string& line) const {
    std::lock_guard<std::mutex> lock(fLock);
    return (size_t)std::count(fLines.begin(), fLines.end(), line);
}

void EventLog::Clear() {
    std::lock_guard<std::mutex> lock(fLock);
    fLines.clear();
}

} // namespace testing_support
