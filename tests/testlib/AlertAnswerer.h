// Answers the alerts a test makes the program show, on the headless display: a
// thread of its own waits for the next BAlert to open, notes its title, text and
// button labels, and presses the button with the given label, so the thread
// blocked in Go() goes on.
#ifndef GLIMROW_TEST_ALERT_ANSWERER_H
#define GLIMROW_TEST_ALERT_ANSWERER_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

class BAlert;

namespace testing_support {

struct SeenAlert {
    std::string title;
    std::string text;
    std::vector<std::string> buttons;
};

class AlertAnswerer {
public:
    // Looks at the alert (locked) before the button is pressed.
    typedef std::function<void(BAlert* alert)> Inspector;

    // Starts waiting for alerts at once; answers up to count of them in turn.
    explicit AlertAnswerer(const std::string& buttonLabel, int count = 1,
                           Inspector inspector = Inspector());
    ~AlertAnswerer();

    AlertAnswerer(const AlertAnswerer&) = delete;
    AlertAnswerer& operator=(const AlertAnswerer&) = delete;

    // For a process that will end while the alert is up (exit() in the code
    // under test): the thread is let go instead of joined.
    void Detach();

    // Waits until count alerts were answered; false at the deadline.
    bool Wait(std::chrono::milliseconds deadline = std::chrono::seconds(20));
    std::vector<SeenAlert> Seen();

private:
    void _Run();
    bool _AnswerOne();

    std::string fLabel;
    int fCount;
    Inspector fInspector;
    std::mutex fLock;
    std::condition_variable fChanged;
    std::vector<SeenAlert> fSeen;
    std::vector<int32_t> fAnswered;
    bool fStop = false;
    std::thread fThread;
};

} // namespace testing_support

#endif // GLIMROW_TEST_ALERT_ANSWERER_H
