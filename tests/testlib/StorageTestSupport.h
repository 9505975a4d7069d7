// Helpers for the storage kit's tests: running a check as an unprivileged user (the
// tests run as root, which ignores permission bits), and small file utilities.
#ifndef GLIMROW_STORAGE_TEST_SUPPORT_H
#define GLIMROW_STORAGE_TEST_SUPPORT_H

#include <functional>
#include <string>

namespace storage_testing {

// The uid and gid of "nobody", which the permission tests switch to.
const unsigned kUnprivilegedId = 65534;

// Runs body in a forked child under kUnprivilegedId; returns body's result, or -1
// if the child could not switch users or died. The child ends with _exit, so it
// never runs the parent's test teardown.
int run_unprivileged(const std::function<int()>& body);

// Whether the folder's file system keeps "user." extended attributes.
bool supports_user_attributes(const std::string& folder);

// Makes every folder from the path up to (not including) stopAt world-searchable, so
// the unprivileged user can reach what lies in it.
void open_up_to(const std::string& path, const std::string& stopAt);

// The raw value of an extended attribute (empty when it is missing).
std::string raw_attribute(const std::string& path, const std::string& name);

} // namespace storage_testing

#endif // GLIMROW_STORAGE_TEST_SUPPORT_H
