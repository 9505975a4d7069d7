#include "KnownPaths.h"

#include <Errors.h>

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <map>
#include <mutex>
#include <utility>

namespace BPrivate {

namespace {

struct Record {
    std::mutex lock;
    std::map<std::pair<dev_t, ino_t>, std::string> paths;
};

Record& record() {
    // Never destroyed: threads may still resolve refs while the process exits.
    static Record* sRecord = new Record;
    return *sRecord;
}

bool path_matches(const std::string& path, dev_t device, ino_t node) {
    struct stat pathStat;
    return lstat(path.c_str(), &pathStat) == 0 && pathStat.st_dev == device &&
           pathStat.st_ino == node;
}

} // namespace

void remember_node_path(dev_t device, ino_t node, const std::string& path) {
    Record& known = record();
    std::lock_guard<std::mutex> guard(known.lock);
    known.paths[{device, node}] = path;
}

status_t find_node_path(dev_t device, ino_t node, std::string* path) {
    Record& known = record();
    {
        std::lock_guard<std::mutex> guard(known.lock);
        auto found = known.paths.find({device, node});
        if (found != known.paths.end()) {
            if (path_matches(found->second, device, node)) {
                *path = found->second;
                return B_OK;
            }
            known.paths.erase(found);
        }
    }

    // Folders every process knows without having been told.
    std::string candidates[3] = {"/"};
    if (const char* home = getenv("HOME"); home != nullptr && home[0] == '/')
        candidates[1] = home;
    if (char* cwd = getcwd(nullptr, 0); cwd != nullptr) {
        candidates[2] = cwd;
        free(cwd);
    }
    for (const std::string& candidate : candidates) {
        if (!candidate.empty() && path_matches(candidate, device, node)) {
            remember_node_path(device, node, candidate);
            *path = candidate;
            return B_OK;
        }
    }
    return B_ENTRY_NOT_FOUND;
}

} // namespace BPrivate
