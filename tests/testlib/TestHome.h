// A private HOME for one test: a fresh folder under the build tree (a real disk file
// system, so extended attributes work), with HOME and the XDG variables pointing into
// it. The folder is removed and the variables restored when the object goes away.
#ifndef GLIMROW_TEST_HOME_H
#define GLIMROW_TEST_HOME_H

#include <string>
#include <utility>
#include <vector>

namespace testing_support {

class TestHome {
public:
    TestHome();
    ~TestHome();

    TestHome(const TestHome&) = delete;
    TestHome& operator=(const TestHome&) = delete;

    const std::string& Path() const { return fPath; }
    std::string ConfigHome() const { return fPath + "/.config"; }
    std::string DataHome() const { return fPath + "/.local/share"; }

    // Writes a file below the home, creating its folders; returns its full path.
    std::string WriteFile(const std::string& relativePath, const std::string& contents,
                          bool executable = false) const;
    std::string MakeFolder(const std::string& relativePath) const;

private:
    std::string fPath;
    std::vector<std::pair<std::string, std::pair<bool, std::string>>> fSavedEnvironment;
};

// Reads a whole file; empty when it does not exist.
std::string read_file(const std::string& path);

} // namespace testing_support

#endif // GLIMROW_TEST_HOME_H
