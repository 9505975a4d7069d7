#include "interface/TextClipboard.h"

#include <mutex>

namespace BPrivate {

namespace {

struct ClipboardState {
    std::mutex lock;
    std::string text;
    ClipboardHooks hooks = {NULL, NULL};
};

ClipboardState& clipboard_state() {
    static ClipboardState* state = new ClipboardState;
    return *state;
}

} // namespace

void TextClipboard::SetText(const std::string& text) {
    ClipboardState& state = clipboard_state();
    ClipboardHooks hooks;
    {
        std::lock_guard<std::mutex> lock(state.lock);
        state.text = text;
        hooks = state.hooks;
    }
    // The hooks talk to the display; they are called without the lock held.
    if (hooks.setText != NULL)
        hooks.setText(text);
}

std::string TextClipboard::Text() {
    ClipboardState& state = clipboard_state();
    ClipboardHooks hooks;
    {
        std::lock_guard<std::mutex> lock(state.lock);
        hooks = state.hooks;
    }
    std::string text;
    if (hooks.getText != NULL && hooks.getText(&text))
        return text;
    std::lock_guard<std::mutex> lock(state.lock);
    return state.text;
}

void TextClipboard::SetHooks(const ClipboardHooks* hooks) {
    ClipboardState& state = clipboard_state();
    std::lock_guard<std::mutex> lock(state.lock);
    state.hooks = hooks != NULL ? *hooks : ClipboardHooks{NULL, NULL};
}

} // namespace BPrivate
