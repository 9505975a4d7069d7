// The alerts on screen (kit-private), for the headless test API: each alert
// that Go() shows records what it says here, and forgets it as it goes.
#ifndef _INTERFACE_ALERT_REGISTRY_H
#define _INTERFACE_ALERT_REGISTRY_H

#include <Alert.h>
#include <Messenger.h>
#include <Rect.h>

#include <string>
#include <vector>

namespace BPrivate {

enum {
    // To an alert: press the button whose label is the string "label".
    kMessagePressAlertButton = '_APB',
};

struct AlertListing {
    int32 id = 0;
    std::string title;
    std::string text;
    // Left to right.
    std::vector<std::string> buttons;
    alert_type type = B_EMPTY_ALERT;
    BRect frame;
    BMessenger messenger;
};

class AlertRegistry {
public:
    // Returns the id the alert is known by.
    static int32 Add(const AlertListing& listing);
    static void Remove(int32 id);
    // Oldest first.
    static std::vector<AlertListing> List();
    // Waits until an alert with the title (any alert when NULL) is listed; the
    // newest such alert is copied to listing. B_TIMED_OUT otherwise.
    static status_t WaitFor(const char* title, AlertListing* listing, bigtime_t timeout);
    // Waits until no alert is listed.
    static status_t WaitForNone(bigtime_t timeout);
};

} // namespace BPrivate

#endif // _INTERFACE_ALERT_REGISTRY_H
