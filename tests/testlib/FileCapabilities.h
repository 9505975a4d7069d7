// Root ignores permission bits. A process that gives up the capabilities behind
// that is held to them like any other user, which is what a read-only folder
// means to the people who meet one. Meant for forked children (death tests).
#ifndef GLIMROW_TEST_FILE_CAPABILITIES_H
#define GLIMROW_TEST_FILE_CAPABILITIES_H

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace testing_support {

// Drops the capabilities that override file permissions for good; false when the
// system refused.
inline bool drop_file_capabilities() {
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2] = {};
    if (syscall(SYS_capget, &header, data) != 0)
        return false;
    const unsigned dropped =
        (1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH) | (1u << CAP_FOWNER);
    for (auto& set : data) {
        set.effective &= ~dropped;
        set.permitted &= ~dropped;
        set.inheritable &= ~dropped;
    }
    return syscall(SYS_capset, &header, data) == 0;
}

} // namespace testing_support

#endif // GLIMROW_TEST_FILE_CAPABILITIES_H
