// Be error codes on Linux: their texts and their translation to and from errno.
//
// Be systems give every POSIX errno a negative value that is either one of the Be
// codes (ENOENT is B_ENTRY_NOT_FOUND) or B_POSIX_ERROR_BASE + n. Linux keeps errno
// positive, so the kits translate at every system call with B_FROM_POSIX_ERROR(), and
// the program's strerror(status) must answer Be codes. This file therefore defines
// strerror() itself: linked into the executable, it takes precedence over the C
// library's (whose text it still gives for positive values).
//
// Linux knows errno values that Be systems never had (ENOMEDIUM, EKEYEXPIRED…); they
// become B_POSIX_ERROR_BASE + kLinuxOnlyOffset + errno, inside the POSIX range and
// clear of every Be value, so they survive a round trip and keep the Linux text.
#include <Errors.h>
#include <SupportDefs.h>

#include <errno.h>
#include <stdio.h>
#include <string.h>

namespace {

const int32 kLinuxOnlyOffset = 0x100;
const int kMaxLinuxError = 0xe00;

struct ErrorText {
    int32 code;
    const char* text;
};

// Every Be code with its text. B_OK comes first: it is the one non-negative entry.
const ErrorText kErrorTexts[] = {
    {B_OK, "No error"},
    {B_ERROR, "General system error"},

    {B_NO_MEMORY, "Out of memory"},
    {B_IO_ERROR, "I/O error"},
    {B_PERMISSION_DENIED, "Permission denied"},
    {B_BAD_INDEX, "Index not in range for the data set"},
    {B_BAD_TYPE, "Bad argument type passed to function"},
    {B_BAD_VALUE, "Invalid Argument"},
    {B_MISMATCHED_VALUES, "Mismatched values passed to function"},
    {B_NAME_NOT_FOUND, "Name not found"},
    {B_NAME_IN_USE, "Name in use"},
    {B_TIMED_OUT, "Operation timed out"},
    {B_INTERRUPTED, "Interrupted system call"},
    {B_WOULD_BLOCK, "Operation would block"},
    {B_CANCELED, "Operation canceled"},
    {B_NO_INIT, "Initialization failed"},
    {B_BUSY, "Device/File/Resource busy"},
    {B_NOT_ALLOWED, "Operation not allowed"},
    {B_BAD_DATA, "Bad data"},
    {B_DONT_DO_THAT, "No, really, don't do that"},

    {B_BAD_SEM_ID, "Bad semaphore ID"},
    {B_NO_MORE_SEMS, "No more semaphores"},
    {B_BAD_THREAD_ID, "Bad thread ID"},
    {B_NO_MORE_THREADS, "No more threads"},
    {B_BAD_THREAD_STATE, "Thread is inappropriate state"},
    {B_BAD_TEAM_ID, "Operation on invalid team"},
    {B_NO_MORE_TEAMS, "No more teams"},
    {B_BAD_PORT_ID, "Bad port ID"},
    {B_NO_MORE_PORTS, "No more ports available"},
    {B_BAD_IMAGE_ID, "Bad image ID"},
    {B_BAD_ADDRESS, "Bad address"},
    {B_NOT_AN_EXECUTABLE, "Not an executable"},
    {B_MISSING_LIBRARY, "Missing library"},
    {B_MISSING_SYMBOL, "Symbol not found"},
    {B_UNKNOWN_EXECUTABLE, "Unknown executable format"},
    {B_LEGACY_EXECUTABLE, "Unsupported legacy executable"},
    {B_DEBUGGER_ALREADY_INSTALLED, "Debugger already installed for this team"},

    {B_BAD_REPLY, "Invalid or unwanted reply"},
    {B_DUPLICATE_REPLY, "Duplicate reply"},
    {B_MESSAGE_TO_SELF, "Can't send message to self"},
    {B_BAD_HANDLER, "Bad handler"},
    {B_ALREADY_RUNNING, "Already running"},
    {B_LAUNCH_FAILED, "Launch failed"},
    {B_AMBIGUOUS_APP_LAUNCH, "Ambiguous app launch"},
    {B_UNKNOWN_MIME_TYPE, "Unknown MIME type"},
    {B_BAD_SCRIPT_SYNTAX, "Bad script syntax"},
    {B_LAUNCH_FAILED_NO_RESOLVE_LINK, "Could not resolve a link"},
    {B_LAUNCH_FAILED_EXECUTABLE, "File is mistakenly marked as executable"},
    {B_LAUNCH_FAILED_APP_NOT_FOUND, "Application could not be found"},
    {B_LAUNCH_FAILED_APP_IN_TRASH, "Application is in the trash"},
    {B_LAUNCH_FAILED_NO_PREFERRED_APP, "There is no preferred application for this type of file"},
    {B_LAUNCH_FAILED_FILES_APP_NOT_FOUND,
     "This file has a preferred app, but it could not be found"},
    {B_BAD_MIME_SNIFFER_RULE, "Bad sniffer rule"},
    {B_NOT_A_MESSAGE, "Data is not a message"},
    {B_SHUTDOWN_CANCELLED, "System shutdown cancelled"},
    {B_SHUTTING_DOWN, "System shutting down"},

    {B_FILE_ERROR, "Bad file descriptor"},
    {B_FILE_NOT_FOUND, "No such file or directory"},
    {B_FILE_EXISTS, "File or Directory already exists"},
    {B_ENTRY_NOT_FOUND, "No such file or directory"},
    {B_NAME_TOO_LONG, "File name too long"},
    {B_NOT_A_DIRECTORY, "Not a directory"},
    {B_DIRECTORY_NOT_EMPTY, "Directory not empty"},
    {B_DEVICE_FULL, "No space left on device"},
    {B_READ_ONLY_DEVICE, "Read-only file system"},
    {B_IS_A_DIRECTORY, "Is a directory"},
    {B_NO_MORE_FDS, "Too many open files"},
    {B_CROSS_DEVICE_LINK, "Cross-device link"},
    {B_LINK_LIMIT, "Too many symbolic links"},
    {B_BUSTED_PIPE, "Broken pipe"},
    {B_UNSUPPORTED, "Operation not supported"},
    {B_PARTITION_TOO_SMALL, "Partition too small to contain filesystem"},
    {B_PARTIAL_READ, "Data read partially"},
    {B_PARTIAL_WRITE, "Data written partially"},

    {B_NO_TRANSLATOR, "No translator found"},
    {B_ILLEGAL_DATA, "Illegal data"},
    {B_NO_PRINT_SERVER, "No print server"},
    {B_STREAM_NOT_FOUND, "Stream not found"},
    {B_SERVER_NOT_FOUND, "Server not found"},
    {B_RESOURCE_NOT_FOUND, "Resource not found"},
    {B_RESOURCE_UNAVAILABLE, "Resource unavailable"},
    {B_MAIL_NO_DAEMON, "No mail daemon"},
    {B_DEV_INVALID_IOCTL, "Invalid device ioctl"},
    {B_DEV_NO_MEDIA, "No media present"},
    {B_DEV_NOT_READY, "Device not ready"},

    {B_POSIX_ENOMEM, "Out of memory"},
    {B_POSIX_E2BIG, "Argument too big"},
    {B_POSIX_ECHILD, "No child process"},
    {B_POSIX_EDEADLK, "Resource deadlock"},
    {B_POSIX_EFBIG, "File too large"},
    {B_POSIX_EMLINK, "Too many links"},
    {B_POSIX_ENFILE, "File table overflow"},
    {B_POSIX_ENODEV, "No such device"},
    {B_POSIX_ENOLCK, "No record locks available"},
    {B_POSIX_ENOSYS, "Function not implemented"},
    {B_POSIX_ENOTTY, "Not a tty"},
    {B_POSIX_ENXIO, "Device not accessible"},
    {B_POSIX_ESPIPE, "Seek not allowed on file descriptor"},
    {B_POSIX_ESRCH, "No such process"},
    {B_POSIX_EFPOS, "File Position Error"},
    {B_POSIX_ESIGPARM, "Signal Error"},
    {B_POSIX_EDOM, "Numerical argument out of range"},
    {B_POSIX_ERANGE, "Range Error"},
    {B_POSIX_EPROTOTYPE, "Protocol wrong type for socket"},
    {B_POSIX_EPROTONOSUPPORT, "Protocol not supported"},
    {B_POSIX_EPFNOSUPPORT, "Protocol family not supported"},
    {B_POSIX_EAFNOSUPPORT, "Address family not supported by protocol family"},
    {B_POSIX_EADDRINUSE, "Address already in use"},
    {B_POSIX_EADDRNOTAVAIL, "Can't assign requested address"},
    {B_POSIX_ENETDOWN, "Network is down"},
    {B_POSIX_ENETUNREACH, "Network is unreachable"},
    {B_POSIX_ENETRESET, "Network dropped connection on reset"},
    {B_POSIX_ECONNABORTED, "Software caused connection abort"},
    {B_POSIX_ECONNRESET, "Connection reset by peer"},
    {B_POSIX_EISCONN, "Socket is already connected"},
    {B_POSIX_ENOTCONN, "Socket is not connected"},
    {B_POSIX_ESHUTDOWN, "Can't send after socket shutdown"},
    {B_POSIX_ECONNREFUSED, "Connection refused"},
    {B_POSIX_EHOSTUNREACH, "No route to host"},
    {B_POSIX_ENOPROTOOPT, "Protocol option not available"},
    {B_POSIX_ENOBUFS, "No buffer space available"},
    {B_POSIX_EINPROGRESS, "Operation now in progress"},
    {B_POSIX_EALREADY, "Operation already in progress"},
    {B_POSIX_EILSEQ, "Illegal byte sequence"},
    {B_POSIX_ENOMSG, "No message of desired type"},
    {B_POSIX_ESTALE, "Stale file handle"},
    {B_POSIX_EOVERFLOW, "Value too large for defined type"},
    {B_POSIX_EMSGSIZE, "Message too long"},
    {B_POSIX_EOPNOTSUPP, "Operation not supported"},
    {B_POSIX_ENOTSOCK, "Socket operation on non-socket"},
    {B_POSIX_EHOSTDOWN, "Host is down"},
    {B_POSIX_EBADMSG, "Bad message"},
    {B_POSIX_ECANCELED, "Operation canceled"},
    {B_POSIX_EDESTADDRREQ, "Destination address required"},
    {B_POSIX_EDQUOT, "Reserved"},
    {B_POSIX_EIDRM, "Identifier removed"},
    {B_POSIX_EMULTIHOP, "Reserved"},
    {B_POSIX_ENODATA, "No message available"},
    {B_POSIX_ENOLINK, "Reserved"},
    {B_POSIX_ENOSR, "No STREAM resources"},
    {B_POSIX_ENOSTR, "Not a STREAM"},
    {B_POSIX_ENOTSUP, "Not supported"},
    {B_POSIX_EPROTO, "Protocol error"},
    {B_POSIX_ETIME, "STREAM ioctl() timeout"},
    {B_POSIX_ETXTBSY, "Text file busy"},
    {B_POSIX_ENOATTR, "No such attribute"},
    {B_POSIX_ENOTRECOVERABLE, "State not recoverable"},
    {B_POSIX_EOWNERDEAD, "Previous owner died"},
    {B_POSIX_ESOCKTNOSUPPORT, "Socket type not supported"},
};

struct ErrnoCode {
    int error;
    int32 code;
};

// Linux errno values and their Be codes. The first entry for a code is the errno it
// translates back to; Linux gives EWOULDBLOCK, EDEADLOCK and ENOTSUP the numbers of
// EAGAIN, EDEADLK and EOPNOTSUPP, and names missing attributes ENODATA.
const ErrnoCode kErrnoCodes[] = {
    {ENOMEM, B_NO_MEMORY},
    {EACCES, B_PERMISSION_DENIED},
    {EINTR, B_INTERRUPTED},
    {EIO, B_IO_ERROR},
    {EBUSY, B_BUSY},
    {EFAULT, B_BAD_ADDRESS},
    {ETIMEDOUT, B_TIMED_OUT},
    {EAGAIN, B_WOULD_BLOCK},
    {EBADF, B_FILE_ERROR},
    {EEXIST, B_FILE_EXISTS},
    {EINVAL, B_BAD_VALUE},
    {ENAMETOOLONG, B_NAME_TOO_LONG},
    {ENOENT, B_ENTRY_NOT_FOUND},
    {EPERM, B_NOT_ALLOWED},
    {ENOTDIR, B_NOT_A_DIRECTORY},
    {EISDIR, B_IS_A_DIRECTORY},
    {ENOTEMPTY, B_DIRECTORY_NOT_EMPTY},
    {ENOSPC, B_DEVICE_FULL},
    {EROFS, B_READ_ONLY_DEVICE},
    {EMFILE, B_NO_MORE_FDS},
    {EXDEV, B_CROSS_DEVICE_LINK},
    {ELOOP, B_LINK_LIMIT},
    {ENOEXEC, B_NOT_AN_EXECUTABLE},
    {EPIPE, B_BUSTED_PIPE},

    {ENOMEM, B_POSIX_ENOMEM},
    {E2BIG, B_POSIX_E2BIG},
    {ECHILD, B_POSIX_ECHILD},
    {EDEADLK, B_POSIX_EDEADLK},
    {EFBIG, B_POSIX_EFBIG},
    {EMLINK, B_POSIX_EMLINK},
    {ENFILE, B_POSIX_ENFILE},
    {ENODEV, B_POSIX_ENODEV},
    {ENOLCK, B_POSIX_ENOLCK},
    {ENOSYS, B_POSIX_ENOSYS},
    {ENOTTY, B_POSIX_ENOTTY},
    {ENXIO, B_POSIX_ENXIO},
    {ESPIPE, B_POSIX_ESPIPE},
    {ESRCH, B_POSIX_ESRCH},
    {EDOM, B_POSIX_EDOM},
    {ERANGE, B_POSIX_ERANGE},
    {EPROTOTYPE, B_POSIX_EPROTOTYPE},
    {EPROTONOSUPPORT, B_POSIX_EPROTONOSUPPORT},
    {EPFNOSUPPORT, B_POSIX_EPFNOSUPPORT},
    {EAFNOSUPPORT, B_POSIX_EAFNOSUPPORT},
    {EADDRINUSE, B_POSIX_EADDRINUSE},
    {EADDRNOTAVAIL, B_POSIX_EADDRNOTAVAIL},
    {ENETDOWN, B_POSIX_ENETDOWN},
    {ENETUNREACH, B_POSIX_ENETUNREACH},
    {ENETRESET, B_POSIX_ENETRESET},
    {ECONNABORTED, B_POSIX_ECONNABORTED},
    {ECONNRESET, B_POSIX_ECONNRESET},
    {EISCONN, B_POSIX_EISCONN},
    {ENOTCONN, B_POSIX_ENOTCONN},
    {ESHUTDOWN, B_POSIX_ESHUTDOWN},
    {ECONNREFUSED, B_POSIX_ECONNREFUSED},
    {EHOSTUNREACH, B_POSIX_EHOSTUNREACH},
    {ENOPROTOOPT, B_POSIX_ENOPROTOOPT},
    {ENOBUFS, B_POSIX_ENOBUFS},
    {EINPROGRESS, B_POSIX_EINPROGRESS},
    {EALREADY, B_POSIX_EALREADY},
    {EILSEQ, B_POSIX_EILSEQ},
    {ENOMSG, B_POSIX_ENOMSG},
    {ESTALE, B_POSIX_ESTALE},
    {EOVERFLOW, B_POSIX_EOVERFLOW},
    {EMSGSIZE, B_POSIX_EMSGSIZE},
    {EOPNOTSUPP, B_POSIX_EOPNOTSUPP},
    {ENOTSOCK, B_POSIX_ENOTSOCK},
    {EHOSTDOWN, B_POSIX_EHOSTDOWN},
    {EBADMSG, B_POSIX_EBADMSG},
    {ECANCELED, B_POSIX_ECANCELED},
    {EDESTADDRREQ, B_POSIX_EDESTADDRREQ},
    {EDQUOT, B_POSIX_EDQUOT},
    {EIDRM, B_POSIX_EIDRM},
    {EMULTIHOP, B_POSIX_EMULTIHOP},
    {ENODATA, B_POSIX_ENODATA},
    {ENOLINK, B_POSIX_ENOLINK},
    {ENOSR, B_POSIX_ENOSR},
    {ENOSTR, B_POSIX_ENOSTR},
    {ENOTSUP, B_POSIX_ENOTSUP},
    {EPROTO, B_POSIX_EPROTO},
    {ETIME, B_POSIX_ETIME},
    {ETXTBSY, B_POSIX_ETXTBSY},
    {ENODATA, B_POSIX_ENOATTR},
    {ENOTRECOVERABLE, B_POSIX_ENOTRECOVERABLE},
    {EOWNERDEAD, B_POSIX_EOWNERDEAD},
    {ESOCKTNOSUPPORT, B_POSIX_ESOCKTNOSUPPORT},

    // The old Be name for a missing entry.
    {ENOENT, B_FILE_NOT_FOUND},
};

struct KitRange {
    int32 base;
    const char* name;
};

// Highest base first: an unknown code belongs to the first base at or below it.
const KitRange kKitRanges[] = {
    {B_DEVICE_ERROR_BASE, "Device "},
    {B_PRINT_ERROR_BASE, "Print "},
    {B_MAIL_ERROR_BASE, "Mail Kit "},
    {B_POSIX_ERROR_BASE, "POSIX "},
    {B_STORAGE_ERROR_BASE, "Storage Kit "},
    {B_MIDI_ERROR_BASE, "Midi Kit "},
    {B_TRANSLATION_ERROR_BASE, "Translation Kit "},
    {B_MEDIA_ERROR_BASE, "Media Kit "},
    {B_INTERFACE_ERROR_BASE, "Interface Kit "},
    {B_APP_ERROR_BASE, "Application Kit "},
    {B_OS_ERROR_BASE, "OS "},
    {B_GENERAL_ERROR_BASE, "General "},
};

const size_t kTextBufferSize = 256;
thread_local char sTextBuffer[kTextBufferSize];

const char* find_text(int32 code) {
    for (const ErrorText& entry : kErrorTexts) {
        if (entry.code == code)
            return entry.text;
    }
    return NULL;
}

bool is_linux_only_code(int32 code) {
    return code > B_POSIX_ERROR_BASE + kLinuxOnlyOffset &&
           code < B_POSIX_ERROR_BASE + kLinuxOnlyOffset + kMaxLinuxError;
}

// The C library's own text, without going through strerror() (which is this file's).
const char* c_library_text(int error) {
    // The XSI variant fills the buffer; the GNU one may return a static string.
#if defined(__GLIBC__) && defined(_GNU_SOURCE)
    return strerror_r(error, sTextBuffer, sizeof(sTextBuffer));
#else
    if (strerror_r(error, sTextBuffer, sizeof(sTextBuffer)) != 0)
        snprintf(sTextBuffer, sizeof(sTextBuffer), "Unknown error %d", error);
    return sTextBuffer;
#endif
}

} // namespace

int32_t B_FROM_POSIX_ERROR(int error) {
    if (error <= 0)
        return error;

    for (const ErrnoCode& entry : kErrnoCodes) {
        if (entry.error == error)
            return entry.code;
    }
    if (error < kMaxLinuxError)
        return B_POSIX_ERROR_BASE + kLinuxOnlyOffset + error;
    return B_ERROR;
}

int B_TO_POSIX_ERROR(int32_t error) {
    if (error >= 0)
        return error;

    for (const ErrnoCode& entry : kErrnoCodes) {
        if (entry.code == error)
            return entry.error;
    }
    if (is_linux_only_code(error))
        return error - B_POSIX_ERROR_BASE - kLinuxOnlyOffset;
    return EIO;
}

// Declared by <string.h>; this definition replaces the C library's for the program.
extern "C" char* strerror(int error) noexcept {
    if (const char* text = find_text(error))
        return const_cast<char*>(text);
    if (error > 0)
        return const_cast<char*>(c_library_text(error));
    if (is_linux_only_code(error))
        return const_cast<char*>(c_library_text(B_TO_POSIX_ERROR(error)));

    const char* kit = "Application ";
    if (error <= B_ERRORS_END) {
        for (const KitRange& range : kKitRanges) {
            if (error >= range.base) {
                kit = range.name;
                break;
            }
        }
    }
    snprintf(sTextBuffer, sizeof(sTextBuffer), "Unknown %sError (%d)", kit, (int)error);
    return sTextBuffer;
}
