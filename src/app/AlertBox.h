// The program's one warning box. Every failure that does not end the program is
// shown through it; the caller goes on once the box is closed.
#ifndef GLIMROW_ALERT_BOX_H
#define GLIMROW_ALERT_BOX_H

#include <SupportDefs.h>

#include <stddef.h>

// The kinds of warning; any other kind shows the text and the error as they are.
enum {
    kReadFailedAlert = 0,
    kWriteFailedAlert = 1,
    kLaunchFailedAlert = 2,
    kLayerIgnoredAlert = 3,
    kInstallFailedAlert = 4,
    kPlainAlert = -1,
};

// Beeps and shows "Glimrow Alert" with the text of the kind, blocking the calling
// thread until "OK" is pressed.
void alert(int32 kind, const char* text, status_t error);

// The message that alert() shows, formatted into buffer.
void format_alert(int32 kind, const char* text, status_t error, char* buffer, size_t size);

#endif // GLIMROW_ALERT_BOX_H
