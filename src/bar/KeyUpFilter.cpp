#include "KeyUpFilter.h"

#include "KeyDownFilter.h"
#include "ShelfBar.h"

#include <InterfaceDefs.h>
#include <MenuBar.h>
#include <Message.h>
#include <Window.h>

namespace {

// Where the bar window parks the strips that do not show.
const BPoint kParkingPlace(-2000, -2000);

} // namespace

KeyUpFilter::KeyUpFilter(BWindow* window)
    : BMessageFilter(B_ANY_DELIVERY, B_ANY_SOURCE, B_KEY_UP), fWindow(window) {}

KeyUpFilter::~KeyUpFilter() {}

filter_result KeyUpFilter::Filter(BMessage* message, BHandler** target) {
    BWindow* window = fWindow;
    const char* bytes;
    if (window == NULL || message->FindString("bytes", &bytes) != B_OK || bytes == NULL)
        return B_DISPATCH_MESSAGE;
    uint32 modifiers = (uint32)message->GetInt32("modifiers", 0);

    switch ((uint8)bytes[0]) {
    case B_SPACE:
    case B_RETURN:
        // An item was chosen: the navigation is over.
        if (BMenuBar* keyBar = window->KeyMenuBar()) {
            keyBar->MakeFocus(false);
            window->SetKeyMenuBar(NULL);
        }
        return B_DISPATCH_MESSAGE;

    case B_TAB: {
        if (modifiers != 0 && (modifiers & B_SHIFT_KEY) == 0)
            return B_DISPATCH_MESSAGE;
        BMenuBar* next = NextMenuBar((modifiers & B_SHIFT_KEY) == 0);
        window->SetKeyMenuBar(next);
        if (next == NULL)
            return B_SKIP_MESSAGE;
        // The key-down of Tab ended the navigation in one bar; its key-up starts
        // it in the next, as a Command-Escape press would.
        *target = next;
        message->what = B_KEY_DOWN;
        rewrite_to_escape(message, B_COMMAND_KEY);
        return B_DISPATCH_MESSAGE;
    }

    default:
        return B_DISPATCH_MESSAGE;
    }
}

BMenuBar* KeyUpFilter::NextMenuBar(bool forward) const {
    BWindow* window = fWindow;
    if (window == NULL)
        return NULL;
    BMenuBar* current = window->KeyMenuBar();
    int32 count = window->CountHandlers();
    bool found = false;
    int32 index = 0;
    // Starts at the first handler, not at the current bar, and goes round twice
    // so that a bar before the current one is reached after wrapping.
    for (int32 step = 0; step < 2 * count; step++) {
        BMenuBar* bar = dynamic_cast<BMenuBar*>(window->HandlerAt(index));
        if (bar != NULL) {
            if (found && dynamic_cast<ShelfBar*>(bar) == NULL &&
                bar->Frame().LeftTop() != kParkingPlace)
                return bar;
            if (current == NULL)
                current = bar;
            if (bar == current)
                found = true;
        }
        index = forward ? (index + 1) % count : (index + count - 1) % count;
    }
    return NULL;
}
