#include "KeyDownFilter.h"

#include <InterfaceDefs.h>
#include <MenuBar.h>
#include <Message.h>
#include <Window.h>

namespace {

// Any modifier held, but not Shift: Command-Tab, Option-Tab and the like are
// left to the system.
bool is_foreign_tab(uint32 modifiers) {
    return modifiers != 0 && (modifiers & B_SHIFT_KEY) == 0;
}

} // namespace

void rewrite_to_escape(BMessage* message, uint32 modifiers) {
    if (message->ReplaceInt32("modifiers", (int32)modifiers) != B_OK)
        message->AddInt32("modifiers", (int32)modifiers);
    message->RemoveName("byte");
    message->AddInt8("byte", B_ESCAPE);
    const char escape[] = {B_ESCAPE, '\0'};
    if (message->ReplaceString("bytes", escape) != B_OK)
        message->AddString("bytes", escape);
}

KeyDownFilter::KeyDownFilter(BWindow* window)
    : BMessageFilter(B_ANY_DELIVERY, B_ANY_SOURCE, B_KEY_DOWN), fWindow(window) {}

KeyDownFilter::~KeyDownFilter() {}

filter_result KeyDownFilter::Filter(BMessage* message, BHandler** target) {
    BWindow* window = fWindow;
    const char* bytes;
    if (window == NULL || message->FindString("bytes", &bytes) != B_OK || bytes == NULL)
        return B_DISPATCH_MESSAGE;
    uint8 byte = (uint8)bytes[0];
    if (byte < B_TAB || byte > B_DOWN_ARROW || (byte >= B_RETURN && byte <= B_SUBSTITUTE))
        return B_DISPATCH_MESSAGE;

    uint32 modifiers = (uint32)message->GetInt32("modifiers", 0);
    BMenuBar* focusBar = dynamic_cast<BMenuBar*>(window->CurrentFocus());
    BMenuBar* layerBar = dynamic_cast<BMenuBar*>(window->FindView("layer_bar"));
    BMenuBar* appMenu = dynamic_cast<BMenuBar*>(window->FindView("app_menu"));

    switch (byte) {
    case B_TAB:
        if (is_foreign_tab(modifiers))
            return B_DISPATCH_MESSAGE;
        if (focusBar != NULL) {
            // Ends the navigation in this bar; the key-up starts it in the next.
            rewrite_to_escape(message, 0);
            *target = focusBar;
            window->SetKeyMenuBar(focusBar);
        } else {
            window->SetKeyMenuBar(layerBar);
        }
        return B_DISPATCH_MESSAGE;

    case B_ESCAPE:
        if ((modifiers & B_COMMAND_KEY) == 0) {
            if (focusBar != NULL)
                return B_DISPATCH_MESSAGE;
            window->Activate(false);
            return B_SKIP_MESSAGE;
        }
        window->SetKeyMenuBar(appMenu);
        return B_DISPATCH_MESSAGE;

    default:
        // The arrows.
        if (modifiers != 0 || layerBar == NULL)
            return B_DISPATCH_MESSAGE;
        if (focusBar == NULL) {
            window->SetKeyMenuBar(layerBar);
            rewrite_to_escape(message, B_COMMAND_KEY);
            *target = layerBar;
        } else {
            window->SetKeyMenuBar(appMenu);
        }
        return B_DISPATCH_MESSAGE;
    }
}
