#include "StorageTestSupport.h"

#include <errno.h>
#include <grp.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <vector>

namespace storage_testing {

int run_unprivileged(const std::function<int()>& body) {
    pid_t child = fork();
    if (child < 0)
        return -1;
    if (child == 0) {
        if (setgroups(0, nullptr) != 0 || setgid(kUnprivilegedId) != 0 ||
            setuid(kUnprivilegedId) != 0)
            _exit(255);
        _exit(body() & 0xff);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            return -1;
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) == 255)
        return -1;
    return WEXITSTATUS(status);
}

bool supports_user_attributes(const std::string& folder) {
    const char* name = "user.storage-test-probe";
    if (setxattr(folder.c_str(), name, "x", 1, 0) != 0)
        return false;
    removexattr(folder.c_str(), name);
    return true;
}

void open_up_to(const std::string& path, const std::string& stopAt) {
    std::string current = path;
    while (!current.empty() && current != stopAt && current != "/") {
        struct stat folderStat;
        if (stat(current.c_str(), &folderStat) == 0)
            chmod(current.c_str(), (folderStat.st_mode & 07777) | 0555);
        size_t slash = current.rfind('/');
        if (slash == std::string::npos)
            break;
        current = current.substr(0, slash);
    }
}

std::string raw_attribute(const std::string& path, const std::string& name) {
    ssize_t size = lgetxattr(path.c_str(), name.c_str(), nullptr, 0);
    if (size <= 0)
        return std::string();
    std::vector<char> value(size);
    size = lgetxattr(path.c_str(), name.c_str(), value.data(), value.size());
    if (size <= 0)
        return std::string();
    return std::string(value.data(), size);
}

} // namespace storage_testing
