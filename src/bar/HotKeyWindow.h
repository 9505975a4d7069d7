// The small modal window that records the global hot key ("-hotkey" on the
// command line). Every key combination pressed replaces the last one; "Set"
// stores the 16-byte key-state record as the attribute "hotKey" of the settings
// file, "Unset" (or "Set" with nothing pressed) removes it.
//
// The record belongs to the application object: the window receives the
// address of its pointer and allocates or frees the 16 bytes itself. Whoever
// started the window learns that it is gone through the done flag, which the
// destructor sets.
#ifndef GLIMROW_HOT_KEY_WINDOW_H
#define GLIMROW_HOT_KEY_WINDOW_H

#include <MessageFilter.h>
#include <Window.h>

class BButton;
class KeyView;

class HotKeyWindow : public BWindow {
public:
    HotKeyWindow(uint8** hotKey, bool* done);
    virtual ~HotKeyWindow();

    virtual bool QuitRequested();

    KeyView* Key() const;
    BButton* UnsetButton() const;

private:
    uint8** fHotKey;
    bool* fDone;
    KeyView* fKeyView;
    BButton* fUnsetButton;
};

// The hot-key window's common filter for B_KEY_DOWN: moves "modifiers" to
// "modifiers2" and leaves 0 in its place, so that Command combinations reach the
// key view as ordinary keys instead of triggering the window's shortcuts.
filter_result key_filter(BMessage* message, BHandler** target, BMessageFilter* filter);

// Whether the done flag of a hot-key window has been set; the flag is written by
// the window's thread and polled by another.
bool hot_key_window_done(const bool* done);

#endif // GLIMROW_HOT_KEY_WINDOW_H
