#include "AlertBox.h"

#include <Alert.h>
#include <InterfaceDefs.h>
#include <StorageDefs.h>

#include <stdio.h>
#include <string.h>

void format_alert(int32 kind, const char* text, status_t error, char* buffer, size_t size) {
    if (buffer == NULL || size == 0)
        return;
    if (text == NULL)
        text = "";
    const char* errorText = strerror(error);
    switch (kind) {
    case kReadFailedAlert:
        snprintf(buffer, size, "Glimrow Alert: \n\nFailed to read a file \"%s\".\n%s", text,
                 errorText);
        break;
    case kWriteFailedAlert:
        snprintf(buffer, size, "Glimrow Alert: \n\nFailed to write a file \"%s\".\n%s", text,
                 errorText);
        break;
    case kLaunchFailedAlert:
        snprintf(buffer, size, "Glimrow Alert: \n\nFailed to launch a file \"%s\".\n%s", text,
                 errorText);
        break;
    case kLayerIgnoredAlert:
        snprintf(buffer, size, "Glimrow Alert: \n\nA layer file \"%s\" was ignored.", text);
        break;
    case kInstallFailedAlert:
        snprintf(buffer, size, "Glimrow Alert: \n\nFailed to install an app \"%s\".\n%s", text,
                 errorText);
        break;
    default:
        snprintf(buffer, size, "Glimrow Alert: \n\n%s\n%s", text, errorText);
        break;
    }
}

void alert(int32 kind, const char* text, status_t error) {
    beep();
    char message[B_PATH_NAME_LENGTH + 256];
    format_alert(kind, text, error, message, sizeof(message));
    BAlert* box =
        new BAlert("Glimrow Alert", message, "OK", NULL, NULL, B_WIDTH_AS_USUAL, B_WARNING_ALERT);
    box->Go();
}
