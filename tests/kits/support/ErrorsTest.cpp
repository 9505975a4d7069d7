// Every Be error code: its value and the text strerror() gives for it, and the
// translation between Linux errno values and Be codes.
#include <Errors.h>
#include <SupportDefs.h>

#include <gtest/gtest.h>

#include <errno.h>
#include <string.h>

#include <cstring>
#include <string>
#include <thread>

namespace {

struct ExpectedText {
    const char* name;
    int64 value;
    const char* text;
};

// The reference table of error codes and texts (errno names have their Be values).
const ExpectedText kExpectedTexts[] = {
    {"B_OK", 0, "No error"},
    {"B_NO_ERROR", 0, "No error"},
    {"B_ERROR", -1, "General system error"},
    {"B_NO_MEMORY", -2147483648, "Out of memory"},
    {"B_IO_ERROR", -2147483647, "I/O error"},
    {"B_PERMISSION_DENIED", -2147483646, "Permission denied"},
    {"B_BAD_INDEX", -2147483645, "Index not in range for the data set"},
    {"B_BAD_TYPE", -2147483644, "Bad argument type passed to function"},
    {"B_BAD_VALUE", -2147483643, "Invalid Argument"},
    {"B_MISMATCHED_VALUES", -2147483642, "Mismatched values passed to function"},
    {"B_NAME_NOT_FOUND", -2147483641, "Name not found"},
    {"B_NAME_IN_USE", -2147483640, "Name in use"},
    {"B_TIMED_OUT", -2147483639, "Operation timed out"},
    {"B_INTERRUPTED", -2147483638, "Interrupted system call"},
    {"B_WOULD_BLOCK", -2147483637, "Operation would block"},
    {"B_CANCELED", -2147483636, "Operation canceled"},
    {"B_NO_INIT", -2147483635, "Initialization failed"},
    {"B_NOT_INITIALIZED", -2147483635, "Initialization failed"},
    {"B_BUSY", -2147483634, "Device/File/Resource busy"},
    {"B_NOT_ALLOWED", -2147483633, "Operation not allowed"},
    {"B_BAD_DATA", -2147483632, "Bad data"},
    {"B_DONT_DO_THAT", -2147483631, "No, really, don't do that"},
    {"B_BAD_SEM_ID", -2147479552, "Bad semaphore ID"},
    {"B_NO_MORE_SEMS", -2147479551, "No more semaphores"},
    {"B_BAD_THREAD_ID", -2147479296, "Bad thread ID"},
    {"B_NO_MORE_THREADS", -2147479295, "No more threads"},
    {"B_BAD_THREAD_STATE", -2147479294, "Thread is inappropriate state"},
    {"B_BAD_TEAM_ID", -2147479293, "Operation on invalid team"},
    {"B_NO_MORE_TEAMS", -2147479292, "No more teams"},
    {"B_BAD_PORT_ID", -2147479040, "Bad port ID"},
    {"B_NO_MORE_PORTS", -2147479039, "No more ports available"},
    {"B_BAD_IMAGE_ID", -2147478784, "Bad image ID"},
    {"B_BAD_ADDRESS", -2147478783, "Bad address"},
    {"B_NOT_AN_EXECUTABLE", -2147478782, "Not an executable"},
    {"B_MISSING_LIBRARY", -2147478781, "Missing library"},
    {"B_MISSING_SYMBOL", -2147478780, "Symbol not found"},
    {"B_UNKNOWN_EXECUTABLE", -2147478779, "Unknown executable format"},
    {"B_LEGACY_EXECUTABLE", -2147478778, "Unsupported legacy executable"},
    {"B_DEBUGGER_ALREADY_INSTALLED", -2147478528, "Debugger already installed for this team"},
    {"B_BAD_REPLY", -2147475456, "Invalid or unwanted reply"},
    {"B_DUPLICATE_REPLY", -2147475455, "Duplicate reply"},
    {"B_MESSAGE_TO_SELF", -2147475454, "Can't send message to self"},
    {"B_BAD_HANDLER", -2147475453, "Bad handler"},
    {"B_ALREADY_RUNNING", -2147475452, "Already running"},
    {"B_LAUNCH_FAILED", -2147475451, "Launch failed"},
    {"B_AMBIGUOUS_APP_LAUNCH", -2147475450, "Ambiguous app launch"},
    {"B_UNKNOWN_MIME_TYPE", -2147475449, "Unknown MIME type"},
    {"B_BAD_SCRIPT_SYNTAX", -2147475448, "Bad script syntax"},
    {"B_LAUNCH_FAILED_NO_RESOLVE_LINK", -2147475447, "Could not resolve a link"},
    {"B_LAUNCH_FAILED_EXECUTABLE", -2147475446, "File is mistakenly marked as executable"},
    {"B_LAUNCH_FAILED_APP_NOT_FOUND", -2147475445, "Application could not be found"},
    {"B_LAUNCH_FAILED_APP_IN_TRASH", -2147475444, "Application is in the trash"},
    {"B_LAUNCH_FAILED_NO_PREFERRED_APP", -2147475443,
     "There is no preferred application for this type of file"},
    {"B_LAUNCH_FAILED_FILES_APP_NOT_FOUND", -2147475442,
     "This file has a preferred app, but it could not be found"},
    {"B_BAD_MIME_SNIFFER_RULE", -2147475441, "Bad sniffer rule"},
    {"B_NOT_A_MESSAGE", -2147475440, "Data is not a message"},
    {"B_SHUTDOWN_CANCELLED", -2147475439, "System shutdown cancelled"},
    {"B_SHUTTING_DOWN", -2147475438, "System shutting down"},
    {"B_FILE_ERROR", -2147459072, "Bad file descriptor"},
    {"B_FILE_EXISTS", -2147459070, "File or Directory already exists"},
    {"B_ENTRY_NOT_FOUND", -2147459069, "No such file or directory"},
    {"B_NAME_TOO_LONG", -2147459068, "File name too long"},
    {"B_NOT_A_DIRECTORY", -2147459067, "Not a directory"},
    {"B_DIRECTORY_NOT_EMPTY", -2147459066, "Directory not empty"},
    {"B_DEVICE_FULL", -2147459065, "No space left on device"},
    {"B_READ_ONLY_DEVICE", -2147459064, "Read-only file system"},
    {"B_IS_A_DIRECTORY", -2147459063, "Is a directory"},
    {"B_NO_MORE_FDS", -2147459062, "Too many open files"},
    {"B_CROSS_DEVICE_LINK", -2147459061, "Cross-device link"},
    {"B_LINK_LIMIT", -2147459060, "Too many symbolic links"},
    {"B_BUSTED_PIPE", -2147459059, "Broken pipe"},
    {"B_UNSUPPORTED", -2147459058, "Operation not supported"},
    {"B_PARTITION_TOO_SMALL", -2147459057, "Partition too small to contain filesystem"},
    {"B_PARTIAL_READ", -2147459056, "Data read partially"},
    {"B_PARTIAL_WRITE", -2147459055, "Data written partially"},
    {"B_TRANSLATION_BASE_ERROR", -2147465216, "Unknown Translation Kit Error (-2147465216)"},
    {"B_NO_TRANSLATOR", -2147465215, "No translator found"},
    {"B_ILLEGAL_DATA", -2147465214, "Illegal data"},
    {"B_NO_PRINT_SERVER", -2147446784, "No print server"},
    {"B_STREAM_NOT_FOUND", -2147467264, "Stream not found"},
    {"B_SERVER_NOT_FOUND", -2147467263, "Server not found"},
    {"B_RESOURCE_NOT_FOUND", -2147467262, "Resource not found"},
    {"B_RESOURCE_UNAVAILABLE", -2147467261, "Resource unavailable"},
    {"B_MAIL_NO_DAEMON", -2147450880, "No mail daemon"},
    {"B_DEV_INVALID_IOCTL", -2147442688, "Invalid device ioctl"},
    {"B_DEV_NO_MEDIA", -2147442685, "No media present"},
    {"B_DEV_NOT_READY", -2147442676, "Device not ready"},
    {"ENOMEM", -2147483648, "Out of memory"},
    {"EACCES", -2147483646, "Permission denied"},
    {"EINTR", -2147483638, "Interrupted system call"},
    {"EIO", -2147483647, "I/O error"},
    {"EBUSY", -2147483634, "Device/File/Resource busy"},
    {"EFAULT", -2147478783, "Bad address"},
    {"ETIMEDOUT", -2147483639, "Operation timed out"},
    {"EAGAIN", -2147483637, "Operation would block"},
    {"EWOULDBLOCK", -2147483637, "Operation would block"},
    {"EBADF", -2147459072, "Bad file descriptor"},
    {"EEXIST", -2147459070, "File or Directory already exists"},
    {"EINVAL", -2147483643, "Invalid Argument"},
    {"ENAMETOOLONG", -2147459068, "File name too long"},
    {"ENOENT", -2147459069, "No such file or directory"},
    {"EPERM", -2147483633, "Operation not allowed"},
    {"ENOTDIR", -2147459067, "Not a directory"},
    {"EISDIR", -2147459063, "Is a directory"},
    {"ENOTEMPTY", -2147459066, "Directory not empty"},
    {"ENOSPC", -2147459065, "No space left on device"},
    {"EROFS", -2147459064, "Read-only file system"},
    {"EMFILE", -2147459062, "Too many open files"},
    {"EXDEV", -2147459061, "Cross-device link"},
    {"ELOOP", -2147459060, "Too many symbolic links"},
    {"ENOEXEC", -2147478782, "Not an executable"},
    {"EPIPE", -2147459059, "Broken pipe"},
    {"B_POSIX_ENOMEM", -2147454976, "Out of memory"},
    {"E2BIG", -2147454975, "Argument too big"},
    {"ECHILD", -2147454974, "No child process"},
    {"EDEADLK", -2147454973, "Resource deadlock"},
    {"EFBIG", -2147454972, "File too large"},
    {"EMLINK", -2147454971, "Too many links"},
    {"ENFILE", -2147454970, "File table overflow"},
    {"ENODEV", -2147454969, "No such device"},
    {"ENOLCK", -2147454968, "No record locks available"},
    {"ENOSYS", -2147454967, "Function not implemented"},
    {"ENOTTY", -2147454966, "Not a tty"},
    {"ENXIO", -2147454965, "Device not accessible"},
    {"ESPIPE", -2147454964, "Seek not allowed on file descriptor"},
    {"ESRCH", -2147454963, "No such process"},
    {"EFPOS", -2147454962, "File Position Error"},
    {"ESIGPARM", -2147454961, "Signal Error"},
    {"EDOM", -2147454960, "Numerical argument out of range"},
    {"ERANGE", -2147454959, "Range Error"},
    {"EPROTOTYPE", -2147454958, "Protocol wrong type for socket"},
    {"EPROTONOSUPPORT", -2147454957, "Protocol not supported"},
    {"EPFNOSUPPORT", -2147454956, "Protocol family not supported"},
    {"EAFNOSUPPORT", -2147454955, "Address family not supported by protocol family"},
    {"EADDRINUSE", -2147454954, "Address already in use"},
    {"EADDRNOTAVAIL", -2147454953, "Can't assign requested address"},
    {"ENETDOWN", -2147454952, "Network is down"},
    {"ENETUNREACH", -2147454951, "Network is unreachable"},
    {"ENETRESET", -2147454950, "Network dropped connection on reset"},
    {"ECONNABORTED", -2147454949, "Software caused connection abort"},
    {"ECONNRESET", -2147454948, "Connection reset by peer"},
    {"EISCONN", -2147454947, "Socket is already connected"},
    {"ENOTCONN", -2147454946, "Socket is not connected"},
    {"ESHUTDOWN", -2147454945, "Can't send after socket shutdown"},
    {"ECONNREFUSED", -2147454944, "Connection refused"},
    {"EHOSTUNREACH", -2147454943, "No route to host"},
    {"ENOPROTOOPT", -2147454942, "Protocol option not available"},
    {"ENOBUFS", -2147454941, "No buffer space available"},
    {"EINPROGRESS", -2147454940, "Operation now in progress"},
    {"EALREADY", -2147454939, "Operation already in progress"},
    {"EILSEQ", -2147454938, "Illegal byte sequence"},
    {"ENOMSG", -2147454937, "No message of desired type"},
    {"ESTALE", -2147454936, "Stale file handle"},
    {"EOVERFLOW", -2147454935, "Value too large for defined type"},
    {"EMSGSIZE", -2147454934, "Message too long"},
    {"EOPNOTSUPP", -2147454933, "Operation not supported"},
    {"ENOTSOCK", -2147454932, "Socket operation on non-socket"},
    {"EHOSTDOWN", -2147454931, "Host is down"},
    {"EBADMSG", -2147454930, "Bad message"},
    {"ECANCELED", -2147454929, "Operation canceled"},
    {"EDESTADDRREQ", -2147454928, "Destination address required"},
    {"EDQUOT", -2147454927, "Reserved"},
    {"EIDRM", -2147454926, "Identifier removed"},
    {"EMULTIHOP", -2147454925, "Reserved"},
    {"ENODATA", -2147454924, "No message available"},
    {"ENOLINK", -2147454923, "Reserved"},
    {"ENOSR", -2147454922, "No STREAM resources"},
    {"ENOSTR", -2147454921, "Not a STREAM"},
    {"ENOTSUP", -2147454920, "Not supported"},
    {"EPROTO", -2147454919, "Protocol error"},
    {"ETIME", -2147454918, "STREAM ioctl() timeout"},
    {"ETXTBSY", -2147454917, "Text file busy"},
    {"ENOATTR", -2147454916, "No such attribute"},
    {"ENOTRECOVERABLE", -2147454915, "State not recoverable"},
    {"EOWNERDEAD", -2147454914, "Previous owner died"},
    {"ESOCKTNOSUPPORT", -2147454913, "Socket type not supported"},
};

struct ExpectedValue {
    const char* name;
    int64 macroValue;
    int64 value;
};

const ExpectedValue kExpectedValues[] = {
    {"B_OK", B_OK, 0},
    {"B_NO_ERROR", B_NO_ERROR, 0},
    {"B_ERROR", B_ERROR, -1},
    {"B_NO_MEMORY", B_NO_MEMORY, -2147483648},
    {"B_IO_ERROR", B_IO_ERROR, -2147483647},
    {"B_PERMISSION_DENIED", B_PERMISSION_DENIED, -2147483646},
    {"B_BAD_INDEX", B_BAD_INDEX, -2147483645},
    {"B_BAD_TYPE", B_BAD_TYPE, -2147483644},
    {"B_BAD_VALUE", B_BAD_VALUE, -2147483643},
    {"B_MISMATCHED_VALUES", B_MISMATCHED_VALUES, -2147483642},
    {"B_NAME_NOT_FOUND", B_NAME_NOT_FOUND, -2147483641},
    {"B_NAME_IN_USE", B_NAME_IN_USE, -2147483640},
    {"B_TIMED_OUT", B_TIMED_OUT, -2147483639},
    {"B_INTERRUPTED", B_INTERRUPTED, -2147483638},
    {"B_WOULD_BLOCK", B_WOULD_BLOCK, -2147483637},
    {"B_CANCELED", B_CANCELED, -2147483636},
    {"B_NO_INIT", B_NO_INIT, -2147483635},
    {"B_NOT_INITIALIZED", B_NOT_INITIALIZED, -2147483635},
    {"B_BUSY", B_BUSY, -2147483634},
    {"B_NOT_ALLOWED", B_NOT_ALLOWED, -2147483633},
    {"B_BAD_DATA", B_BAD_DATA, -2147483632},
    {"B_DONT_DO_THAT", B_DONT_DO_THAT, -2147483631},
    {"B_BAD_SEM_ID", B_BAD_SEM_ID, -2147479552},
    {"B_NO_MORE_SEMS", B_NO_MORE_SEMS, -2147479551},
    {"B_BAD_THREAD_ID", B_BAD_THREAD_ID, -2147479296},
    {"B_NO_MORE_THREADS", B_NO_MORE_THREADS, -2147479295},
    {"B_BAD_THREAD_STATE", B_BAD_THREAD_STATE, -2147479294},
    {"B_BAD_TEAM_ID", B_BAD_TEAM_ID, -2147479293},
    {"B_NO_MORE_TEAMS", B_NO_MORE_TEAMS, -2147479292},
    {"B_BAD_PORT_ID", B_BAD_PORT_ID, -2147479040},
    {"B_NO_MORE_PORTS", B_NO_MORE_PORTS, -2147479039},
    {"B_BAD_IMAGE_ID", B_BAD_IMAGE_ID, -2147478784},
    {"B_BAD_ADDRESS", B_BAD_ADDRESS, -2147478783},
    {"B_NOT_AN_EXECUTABLE", B_NOT_AN_EXECUTABLE, -2147478782},
    {"B_MISSING_LIBRARY", B_MISSING_LIBRARY, -2147478781},
    {"B_MISSING_SYMBOL", B_MISSING_SYMBOL, -2147478780},
    {"B_UNKNOWN_EXECUTABLE", B_UNKNOWN_EXECUTABLE, -2147478779},
    {"B_LEGACY_EXECUTABLE", B_LEGACY_EXECUTABLE, -2147478778},
    {"B_DEBUGGER_ALREADY_INSTALLED", B_DEBUGGER_ALREADY_INSTALLED, -2147478528},
    {"B_BAD_REPLY", B_BAD_REPLY, -2147475456},
    {"B_DUPLICATE_REPLY", B_DUPLICATE_REPLY, -2147475455},
    {"B_MESSAGE_TO_SELF", B_MESSAGE_TO_SELF, -2147475454},
    {"B_BAD_HANDLER", B_BAD_HANDLER, -2147475453},
    {"B_ALREADY_RUNNING", B_ALREADY_RUNNING, -2147475452},
    {"B_LAUNCH_FAILED", B_LAUNCH_FAILED, -2147475451},
    {"B_AMBIGUOUS_APP_LAUNCH", B_AMBIGUOUS_APP_LAUNCH, -2147475450},
    {"B_UNKNOWN_MIME_TYPE", B_UNKNOWN_MIME_TYPE, -2147475449},
    {"B_BAD_SCRIPT_SYNTAX", B_BAD_SCRIPT_SYNTAX, -2147475448},
    {"B_LAUNCH_FAILED_NO_RESOLVE_LINK", B_LAUNCH_FAILED_NO_RESOLVE_LINK, -2147475447},
    {"B_LAUNCH_FAILED_EXECUTABLE", B_LAUNCH_FAILED_EXECUTABLE, -2147475446},
    {"B_LAUNCH_FAILED_APP_NOT_FOUND", B_LAUNCH_FAILED_APP_NOT_FOUND, -2147475445},
    {"B_LAUNCH_FAILED_APP_IN_TRASH", B_LAUNCH_FAILED_APP_IN_TRASH, -2147475444},
    {"B_LAUNCH_FAILED_NO_PREFERRED_APP", B_LAUNCH_FAILED_NO_PREFERRED_APP, -2147475443},
    {"B_LAUNCH_FAILED_FILES_APP_NOT_FOUND", B_LAUNCH_FAILED_FILES_APP_NOT_FOUND, -2147475442},
    {"B_BAD_MIME_SNIFFER_RULE", B_BAD_MIME_SNIFFER_RULE, -2147475441},
    {"B_NOT_A_MESSAGE", B_NOT_A_MESSAGE, -2147475440},
    {"B_SHUTDOWN_CANCELLED", B_SHUTDOWN_CANCELLED, -2147475439},
    {"B_SHUTTING_DOWN", B_SHUTTING_DOWN, -2147475438},
    {"B_FILE_ERROR", B_FILE_ERROR, -2147459072},
    {"B_FILE_EXISTS", B_FILE_EXISTS, -2147459070},
    {"B_ENTRY_NOT_FOUND", B_ENTRY_NOT_FOUND, -2147459069},
    {"B_NAME_TOO_LONG", B_NAME_TOO_LONG, -2147459068},
    {"B_NOT_A_DIRECTORY", B_NOT_A_DIRECTORY, -2147459067},
    {"B_DIRECTORY_NOT_EMPTY", B_DIRECTORY_NOT_EMPTY, -2147459066},
    {"B_DEVICE_FULL", B_DEVICE_FULL, -2147459065},
    {"B_READ_ONLY_DEVICE", B_READ_ONLY_DEVICE, -2147459064},
    {"B_IS_A_DIRECTORY", B_IS_A_DIRECTORY, -2147459063},
    {"B_NO_MORE_FDS", B_NO_MORE_FDS, -2147459062},
    {"B_CROSS_DEVICE_LINK", B_CROSS_DEVICE_LINK, -2147459061},
    {"B_LINK_LIMIT", B_LINK_LIMIT, -2147459060},
    {"B_BUSTED_PIPE", B_BUSTED_PIPE, -2147459059},
    {"B_UNSUPPORTED", B_UNSUPPORTED, -2147459058},
    {"B_PARTITION_TOO_SMALL", B_PARTITION_TOO_SMALL, -2147459057},
    {"B_PARTIAL_READ", B_PARTIAL_READ, -2147459056},
    {"B_PARTIAL_WRITE", B_PARTIAL_WRITE, -2147459055},
    {"B_TRANSLATION_BASE_ERROR", B_TRANSLATION_BASE_ERROR, -2147465216},
    {"B_NO_TRANSLATOR", B_NO_TRANSLATOR, -2147465215},
    {"B_ILLEGAL_DATA", B_ILLEGAL_DATA, -2147465214},
    {"B_NO_PRINT_SERVER", B_NO_PRINT_SERVER, -2147446784},
    {"B_STREAM_NOT_FOUND", B_STREAM_NOT_FOUND, -2147467264},
    {"B_SERVER_NOT_FOUND", B_SERVER_NOT_FOUND, -2147467263},
    {"B_RESOURCE_NOT_FOUND", B_RESOURCE_NOT_FOUND, -2147467262},
    {"B_RESOURCE_UNAVAILABLE", B_RESOURCE_UNAVAILABLE, -2147467261},
    {"B_MAIL_NO_DAEMON", B_MAIL_NO_DAEMON, -2147450880},
    {"B_DEV_INVALID_IOCTL", B_DEV_INVALID_IOCTL, -2147442688},
    {"B_DEV_NO_MEDIA", B_DEV_NO_MEDIA, -2147442685},
    {"B_DEV_NOT_READY", B_DEV_NOT_READY, -2147442676},
    {"B_POSIX_ENOMEM", B_POSIX_ENOMEM, -2147454976},
};

std::string c_library_text(int error) {
    char buffer[256];
    return strerror_r(error, buffer, sizeof(buffer));
}

} // namespace

TEST(Errors, EveryCodeHasItsBeValue) {
    for (const ExpectedValue& expected : kExpectedValues)
        EXPECT_EQ(expected.macroValue, expected.value) << expected.name;
}

TEST(Errors, StrerrorGivesTheTextOfEveryCode) {
    for (const ExpectedText& expected : kExpectedTexts)
        EXPECT_STREQ(strerror((int)expected.value), expected.text) << expected.name;
}

TEST(Errors, StrerrorReplacesTheCLibraryOneEverywhere) {
    // Reached through the C++ header and through a pointer, the function is still ours.
    EXPECT_STREQ(std::strerror(B_BAD_VALUE), "Invalid Argument");
    char* (*function)(int) = &strerror;
    EXPECT_STREQ(function(B_FILE_EXISTS), "File or Directory already exists");
}

TEST(Errors, StrerrorKeepsTheCLibraryTextForPositiveValues) {
    EXPECT_EQ(std::string(strerror(ENOENT)), c_library_text(ENOENT));
    EXPECT_EQ(std::string(strerror(EACCES)), c_library_text(EACCES));
    EXPECT_EQ(std::string(strerror(99999)), c_library_text(99999));
}

TEST(Errors, StrerrorNamesTheKitOfAnUnknownCode) {
    EXPECT_STREQ(strerror(B_APP_ERROR_BASE + 100), "Unknown Application Kit Error (-2147475356)");
    EXPECT_STREQ(strerror(B_GENERAL_ERROR_BASE + 0x800), "Unknown General Error (-2147481600)");
    EXPECT_STREQ(strerror(B_OS_ERROR_BASE + 5), "Unknown OS Error (-2147479547)");
    EXPECT_STREQ(strerror(B_INTERFACE_ERROR_BASE), "Unknown Interface Kit Error (-2147471360)");
    EXPECT_STREQ(strerror(B_MEDIA_ERROR_BASE + 9), "Unknown Media Kit Error (-2147467255)");
    EXPECT_STREQ(strerror(B_TRANSLATION_ERROR_BASE + 9),
                 "Unknown Translation Kit Error (-2147465207)");
    EXPECT_STREQ(strerror(B_MIDI_ERROR_BASE), "Unknown Midi Kit Error (-2147463168)");
    EXPECT_STREQ(strerror(B_STORAGE_ERROR_BASE + 99), "Unknown Storage Kit Error (-2147458973)");
    EXPECT_STREQ(strerror(B_POSIX_ERROR_BASE + 64), "Unknown POSIX Error (-2147454912)");
    EXPECT_STREQ(strerror(B_MAIL_ERROR_BASE + 1), "Unknown Mail Kit Error (-2147450879)");
    EXPECT_STREQ(strerror(B_PRINT_ERROR_BASE + 1), "Unknown Print Error (-2147446783)");
    EXPECT_STREQ(strerror(B_DEVICE_ERROR_BASE + 1), "Unknown Device Error (-2147442687)");
    EXPECT_STREQ(strerror(B_ERRORS_END), "Unknown Device Error (-2147418113)");
}

TEST(Errors, StrerrorCallsCodesAboveTheBeRangeApplicationErrors) {
    EXPECT_STREQ(strerror(B_ERRORS_END + 1), "Unknown Application Error (-2147418112)");
    EXPECT_STREQ(strerror(-2), "Unknown Application Error (-2)");
}

TEST(Errors, StrerrorGivesEachThreadItsOwnBuffer) {
    const char* mine = strerror(B_APP_ERROR_BASE + 100);
    std::string other;
    std::thread thread([&] { other = strerror(B_OS_ERROR_BASE + 5); });
    thread.join();
    EXPECT_STREQ(mine, "Unknown Application Kit Error (-2147475356)");
    EXPECT_EQ(other, "Unknown OS Error (-2147479547)");
}

TEST(Errors, FromPosixMapsAliasesToBeCodes) {
    EXPECT_EQ(B_FROM_POSIX_ERROR(ENOMEM), B_NO_MEMORY);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EACCES), B_PERMISSION_DENIED);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EINTR), B_INTERRUPTED);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EIO), B_IO_ERROR);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EBUSY), B_BUSY);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EFAULT), B_BAD_ADDRESS);
    EXPECT_EQ(B_FROM_POSIX_ERROR(ETIMEDOUT), B_TIMED_OUT);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EAGAIN), B_WOULD_BLOCK);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EWOULDBLOCK), B_WOULD_BLOCK);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EBADF), B_FILE_ERROR);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EEXIST), B_FILE_EXISTS);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EINVAL), B_BAD_VALUE);
    EXPECT_EQ(B_FROM_POSIX_ERROR(ENAMETOOLONG), B_NAME_TOO_LONG);
    EXPECT_EQ(B_FROM_POSIX_ERROR(ENOENT), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EPERM), B_NOT_ALLOWED);
    EXPECT_EQ(B_FROM_POSIX_ERROR(ENOTDIR), B_NOT_A_DIRECTORY);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EISDIR), B_IS_A_DIRECTORY);
    EXPECT_EQ(B_FROM_POSIX_ERROR(ENOTEMPTY), B_DIRECTORY_NOT_EMPTY);
    EXPECT_EQ(B_FROM_POSIX_ERROR(ENOSPC), B_DEVICE_FULL);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EROFS), B_READ_ONLY_DEVICE);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EMFILE), B_NO_MORE_FDS);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EXDEV), B_CROSS_DEVICE_LINK);
    EXPECT_EQ(B_FROM_POSIX_ERROR(ELOOP), B_LINK_LIMIT);
    EXPECT_EQ(B_FROM_POSIX_ERROR(ENOEXEC), B_NOT_AN_EXECUTABLE);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EPIPE), B_BUSTED_PIPE);
}

TEST(Errors, FromPosixPlacesOtherErrnoValuesInThePosixRange) {
    EXPECT_EQ(B_FROM_POSIX_ERROR(E2BIG), B_POSIX_ERROR_BASE + 1);
    EXPECT_EQ(B_FROM_POSIX_ERROR(ESRCH), B_POSIX_ERROR_BASE + 13);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EOVERFLOW), B_BUFFER_OVERFLOW);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EFBIG), B_FILE_TOO_LARGE);
    EXPECT_EQ(B_FROM_POSIX_ERROR(ERANGE), B_RESULT_NOT_REPRESENTABLE);
    EXPECT_EQ(B_FROM_POSIX_ERROR(ENODEV), B_DEVICE_NOT_FOUND);
    EXPECT_EQ(B_FROM_POSIX_ERROR(EOPNOTSUPP), B_NOT_SUPPORTED);
    EXPECT_EQ(B_FROM_POSIX_ERROR(ECANCELED), B_POSIX_ERROR_BASE + 47);
    EXPECT_EQ(B_FROM_POSIX_ERROR(ESOCKTNOSUPPORT), B_POSIX_ERROR_BASE + 63);
}

TEST(Errors, FromPosixLeavesZeroAndBeCodesAlone) {
    EXPECT_EQ(B_FROM_POSIX_ERROR(0), B_OK);
    EXPECT_EQ(B_FROM_POSIX_ERROR(B_BAD_VALUE), B_BAD_VALUE);
    EXPECT_EQ(B_TO_POSIX_ERROR(B_OK), 0);
    EXPECT_EQ(B_TO_POSIX_ERROR(EINVAL), EINVAL);
}

TEST(Errors, EveryLinuxErrnoSurvivesARoundTrip) {
    for (int error = 1; error < 134; error++) {
        status_t code = B_FROM_POSIX_ERROR(error);
        EXPECT_LT(code, 0) << error;
        EXPECT_EQ(B_TO_POSIX_ERROR(code), error) << error;
    }
}

TEST(Errors, EveryMappedBeCodeSurvivesARoundTrip) {
    for (const ExpectedText& expected : kExpectedTexts) {
        status_t code = (status_t)expected.value;
        int error = B_TO_POSIX_ERROR(code);
        if (code == 0 || error == EIO)
            continue;
        // Linux has one number for what Be systems keep apart.
        if (code == B_POSIX_ENOMEM || code == B_POSIX_ENOTSUP || code == B_POSIX_ENOATTR)
            continue;
        EXPECT_EQ(B_FROM_POSIX_ERROR(error), code) << expected.name;
    }
}

TEST(Errors, ToPosixFoldsCodesLinuxCannotTellApart) {
    EXPECT_EQ(B_TO_POSIX_ERROR(B_POSIX_ENOMEM), ENOMEM);
    EXPECT_EQ(B_TO_POSIX_ERROR(B_POSIX_ENOTSUP), ENOTSUP);
    EXPECT_EQ(B_TO_POSIX_ERROR(B_POSIX_ENOATTR), ENODATA);
    EXPECT_EQ(B_TO_POSIX_ERROR(B_FILE_NOT_FOUND), ENOENT);
}

TEST(Errors, ToPosixGivesEIOForCodesWithoutAnErrno) {
    EXPECT_EQ(B_TO_POSIX_ERROR(B_BAD_INDEX), EIO);
    EXPECT_EQ(B_TO_POSIX_ERROR(B_ERROR), EIO);
    EXPECT_EQ(B_TO_POSIX_ERROR(B_POSIX_EFPOS), EIO);
}

TEST(Errors, LinuxOnlyErrnoKeepsItsTextThroughABeCode) {
    status_t code = B_FROM_POSIX_ERROR(ENOMEDIUM);
    EXPECT_GT(code, B_POSIX_ERROR_BASE + 63);
    EXPECT_LT(code, B_MAIL_ERROR_BASE);
    EXPECT_EQ(B_TO_POSIX_ERROR(code), ENOMEDIUM);
    EXPECT_EQ(std::string(strerror(code)), c_library_text(ENOMEDIUM));
}
