// What Linux tells about the threads of this process, through /proc/self/task.
#ifndef _KERNEL_PROC_TASK_H
#define _KERNEL_PROC_TASK_H

#include <OS.h>

#include <vector>

namespace BPrivate {

struct ProcTaskStat {
    char state = '?';
    bigtime_t userTime = 0;
    bigtime_t kernelTime = 0;
};

// Whether the thread id is a live thread of this process.
bool proc_task_exists(thread_id thread);

// The Linux name of the thread (at most 15 bytes). B_BAD_THREAD_ID when it is gone.
status_t proc_task_read_name(thread_id thread, char* name, size_t size);
// Sets the Linux name, cut to the longest UTF-8 prefix of at most 15 bytes.
status_t proc_task_write_name(thread_id thread, const char* name);
// Copies into `name` the longest prefix of `source` that is whole UTF-8 characters
// and fits in size - 1 bytes.
void proc_task_truncate_name(const char* source, char* name, size_t size);

status_t proc_task_read_stat(thread_id thread, ProcTaskStat* stat);

// The ids of the live threads of this process, ascending.
std::vector<thread_id> proc_task_list();

} // namespace BPrivate

#endif // _KERNEL_PROC_TASK_H
