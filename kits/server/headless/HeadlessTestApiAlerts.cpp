// The headless test API's part on alerts. Alerts record themselves in the
// interface kit's alert registry when they show; pressing a button asks the
// alert's own thread to press it, so it happens in the alert's order of events.
#include "server/headless/HeadlessTestApi.h"

#include <Message.h>

namespace BPrivate {

std::vector<AlertListing> HeadlessTestApi::Alerts() {
    return AlertRegistry::List();
}

status_t HeadlessTestApi::WaitForAlert(const char* title, AlertListing* listing,
                                       bigtime_t timeout) {
    return AlertRegistry::WaitFor(title, listing, timeout);
}

status_t HeadlessTestApi::WaitForNoAlert(bigtime_t timeout) {
    return AlertRegistry::WaitForNone(timeout);
}

status_t HeadlessTestApi::PressAlertButton(const char* label) {
    if (label == NULL)
        return B_BAD_VALUE;
    std::vector<AlertListing> alerts = AlertRegistry::List();
    for (auto alert = alerts.rbegin(); alert != alerts.rend(); alert++) {
        for (const std::string& button : alert->buttons) {
            if (button != label)
                continue;
            BMessage press(kMessagePressAlertButton);
            press.AddString("label", label);
            return alert->messenger.SendMessage(&press);
        }
    }
    return B_NAME_NOT_FOUND;
}

} // namespace BPrivate
