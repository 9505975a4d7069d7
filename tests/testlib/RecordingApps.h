// Test applications for launch tests: desktop entries in a private home whose
// Exec runs a small script that records its arguments, so a launch is proven by
// the process it started. The system's MIME database stays visible, its
// applications do not.
#ifndef GLIMROW_TEST_RECORDING_APPS_H
#define GLIMROW_TEST_RECORDING_APPS_H

#include "TestHome.h"

#include <chrono>
#include <string>
#include <vector>

namespace testing_support {

class RecordingApps {
public:
    // Points XDG_DATA_DIRS at a private folder (holding only a link to the
    // system's MIME database) below the home. Make it before the first kit call
    // that looks at applications or types.
    explicit RecordingApps(const TestHome& home);

    // Installs applications/<id>.desktop for the given types ("text/plain;…").
    // fieldCode is how files reach it ("%F", "%f", "%U"…). Returns the path of
    // the desktop file.
    std::string Add(const std::string& id, const std::string& mimeTypes,
                    const std::string& fieldCode = "%F");
    // Makes the application the default for the type (mimeapps.list).
    void SetDefault(const std::string& mimeType, const std::string& id);

    std::string DesktopFile(const std::string& id) const;

    // The argument lists of every run of the application so far, in no order.
    std::vector<std::vector<std::string>> Runs(const std::string& id) const;
    // Waits until the application has run count times; false at the deadline.
    bool WaitForRuns(const std::string& id, size_t count,
                     std::chrono::milliseconds deadline = std::chrono::seconds(10)) const;

private:
    void _WriteCaches() const;

    const TestHome& fHome;
    std::string fApplications;
    std::string fRecords;
    std::string fScript;
    std::vector<std::pair<std::string, std::string>> fTypes;
    std::vector<std::pair<std::string, std::string>> fDefaults;
};

} // namespace testing_support

#endif // GLIMROW_TEST_RECORDING_APPS_H
