// The text clipboard of the process (kit-private). Text views copy to it and
// paste from it; a display backend that has a clipboard of its own (the X11
// CLIPBOARD selection) installs hooks so the text goes there and comes from
// there, and the process's copy is the fallback when it has nothing.
#ifndef _INTERFACE_TEXT_CLIPBOARD_H
#define _INTERFACE_TEXT_CLIPBOARD_H

#include <SupportDefs.h>

#include <string>

namespace BPrivate {

struct ClipboardHooks {
    // Offers the text to the display's clipboard.
    void (*setText)(const std::string& text);
    // The display clipboard's text; false when it has none.
    bool (*getText)(std::string* text);
};

class TextClipboard {
public:
    static void SetText(const std::string& text);
    static std::string Text();

    // The hooks are copied; NULL removes them. Thread-safe.
    static void SetHooks(const ClipboardHooks* hooks);
};

} // namespace BPrivate

#endif // _INTERFACE_TEXT_CLIPBOARD_H
