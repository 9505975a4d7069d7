// Input routing: turning pointer and key events into the Be messages windows get.
//
// Pointer events go to the grabbing window (an open menu) if there is one, else
// to the window that took the first button press until all buttons are up (the
// implicit grab), else to the top-most visible window under the pointer. While a
// message is dragged, moves also go to the window under the pointer, carrying the
// message, and releasing the buttons drops it there. A window the pointer leaves
// gets one more move marked kFieldPointerOutside so its views see the exit. Key
// events go to the grabbing window too while there is one (an open menu takes
// the keyboard with the pointer, whichever window is active), else to the
// active window.
#include "server/DisplayServer.h"

#include "app/MessagePrivate.h"
#include "interface/WindowPrivate.h"

#include <OS.h>
#include <View.h>

#include <algorithm>
#include <math.h>
#include <string.h>

namespace BPrivate {

namespace {

// A second press counts as a double click only this close to the first.
const float kClickDistance = 6.0f;

struct ModifierKey {
    int32 key;
    uint32 sideBit;
    bool locking;
};

// Which physical keys are modifiers, as the Be keymap of a PC keyboard has them:
// Alt is Command, the Windows keys are Option.
const ModifierKey kModifierKeys[] = {
    {0x4b, B_LEFT_SHIFT_KEY, false},   {0x56, B_RIGHT_SHIFT_KEY, false},
    {0x5c, B_LEFT_CONTROL_KEY, false}, {0x60, B_RIGHT_CONTROL_KEY, false},
    {0x5d, B_LEFT_COMMAND_KEY, false}, {0x5f, B_RIGHT_COMMAND_KEY, false},
    {0x66, B_LEFT_OPTION_KEY, false},  {0x67, B_RIGHT_OPTION_KEY, false},
    {0x68, B_MENU_KEY, false},         {0x3b, B_CAPS_LOCK, true},
    {0x22, B_NUM_LOCK, true},          {0x0f, B_SCROLL_LOCK, true},
};

// The generic bits follow the side bits.
uint32 with_generic_bits(uint32 modifiers) {
    modifiers &= ~(uint32)(B_SHIFT_KEY | B_COMMAND_KEY | B_CONTROL_KEY | B_OPTION_KEY);
    if (modifiers & (B_LEFT_SHIFT_KEY | B_RIGHT_SHIFT_KEY))
        modifiers |= B_SHIFT_KEY;
    if (modifiers & (B_LEFT_COMMAND_KEY | B_RIGHT_COMMAND_KEY))
        modifiers |= B_COMMAND_KEY;
    if (modifiers & (B_LEFT_CONTROL_KEY | B_RIGHT_CONTROL_KEY))
        modifiers |= B_CONTROL_KEY;
    if (modifiers & (B_LEFT_OPTION_KEY | B_RIGHT_OPTION_KEY))
        modifiers |= B_OPTION_KEY;
    return modifiers;
}

// A generic bit without a side bit stands for the left key.
uint32 with_side_bits(uint32 modifiers) {
    if ((modifiers & B_SHIFT_KEY) && !(modifiers & (B_LEFT_SHIFT_KEY | B_RIGHT_SHIFT_KEY)))
        modifiers |= B_LEFT_SHIFT_KEY;
    if ((modifiers & B_COMMAND_KEY) && !(modifiers & (B_LEFT_COMMAND_KEY | B_RIGHT_COMMAND_KEY)))
        modifiers |= B_LEFT_COMMAND_KEY;
    if ((modifiers & B_CONTROL_KEY) && !(modifiers & (B_LEFT_CONTROL_KEY | B_RIGHT_CONTROL_KEY)))
        modifiers |= B_LEFT_CONTROL_KEY;
    if ((modifiers & B_OPTION_KEY) && !(modifiers & (B_LEFT_OPTION_KEY | B_RIGHT_OPTION_KEY)))
        modifiers |= B_LEFT_OPTION_KEY;
    return with_generic_bits(modifiers);
}

} // namespace

// #pragma mark - State

void DisplayServer::GetPointer(BPoint* where, uint32* buttons) {
    std::lock_guard<std::mutex> lock(fLock);
    if (where != NULL)
        *where = fPointer;
    if (buttons != NULL)
        *buttons = fButtons;
}

uint32 DisplayServer::Modifiers() {
    std::lock_guard<std::mutex> lock(fLock);
    return fModifiers;
}

void DisplayServer::GetKeyInfo(key_info* info) {
    std::lock_guard<std::mutex> lock(fLock);
    info->modifiers = fModifiers;
    memcpy(info->key_states, fKeyStates, sizeof(fKeyStates));
}

status_t DisplayServer::WatchKeysAndWorkspaces(sem_id semaphore) {
    int32 count;
    if (get_sem_count(semaphore, &count) != B_OK)
        return B_BAD_SEM_ID;
    {
        std::lock_guard<std::mutex> lock(fWatcherLock);
        if (std::find(fWatchers.begin(), fWatchers.end(), semaphore) == fWatchers.end())
            fWatchers.push_back(semaphore);
    }
    return _SeesKeyChanges() ? B_OK : B_NOT_SUPPORTED;
}

void DisplayServer::StopWatchingKeysAndWorkspaces(sem_id semaphore) {
    std::lock_guard<std::mutex> lock(fWatcherLock);
    fWatchers.erase(std::remove(fWatchers.begin(), fWatchers.end(), semaphore), fWatchers.end());
}

void DisplayServer::_NotifyWatchers() {
    std::lock_guard<std::mutex> lock(fWatcherLock);
    fWatchers.erase(std::remove_if(fWatchers.begin(), fWatchers.end(),
                                   [](sem_id semaphore) {
                                       return release_sem_etc(semaphore, 1, B_DO_NOT_RESCHEDULE) ==
                                              B_BAD_SEM_ID;
                                   }),
                    fWatchers.end());
}

status_t DisplayServer::GrabPointer(int32 id) {
    std::lock_guard<std::mutex> lock(fLock);
    if (_Find(id) == NULL)
        return B_BAD_VALUE;
    fGrabWindow = id;
    return B_OK;
}

void DisplayServer::UngrabPointer(int32 id) {
    std::lock_guard<std::mutex> lock(fLock);
    if (fGrabWindow == id)
        fGrabWindow = 0;
}

status_t DisplayServer::StartDrag(int32 sourceId, const BMessage& message, BPoint offset,
                                  const BMessenger& replyTo) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        if (_Find(sourceId) == NULL)
            return B_BAD_VALUE;
        fDragMessage = std::make_unique<BMessage>(message);
        fDragOffset = offset;
        fDragReplyTo = replyTo;
        if (fButtons == 0)
            _Drop(fPointer, outbox);
    }
    _PostLater(std::move(outbox));
    return B_OK;
}

void DisplayServer::_ResetState() {
    std::lock_guard<std::mutex> lock(fLock);
    fScreenFrame.Set(0, 0, 1279, 799);
    fWorkspaceCount = 4;
    fCurrentWorkspace = 0;
    fBeepCount = 0;
    fPointer.Set(0, 0);
    fButtons = 0;
    fModifiers = 0;
    memset(fKeyStates, 0, sizeof(fKeyStates));
    fGrabWindow = 0;
    fMouseDownWindow = 0;
    fSwallowClick = false;
    fLastMouseWindow = 0;
    fLastClickTime = 0;
    fLastClickButtons = 0;
    fLastClickWindow = 0;
    fClickCount = 0;
    fDragMessage.reset();
    fDragReplyTo = BMessenger();
    _NotifyWatchers();
}

bool DisplayServer::IsDragging() {
    std::lock_guard<std::mutex> lock(fLock);
    return fDragMessage != NULL;
}

// #pragma mark - Pointer

ServerWindow* DisplayServer::_WindowAt(BPoint where) {
    for (auto iterator = fStack.rbegin(); iterator != fStack.rend(); iterator++) {
        ServerWindow* window = _Find(*iterator);
        if (window != NULL && _IsVisible(window) && window->frame.Contains(where))
            return window;
    }
    return NULL;
}

BMessage DisplayServer::_MouseMessage(uint32 what, ServerWindow* window, bigtime_t when) {
    BMessage message(what);
    message.AddInt64("when", when);
    message.AddPoint(kFieldScreenWhere, fPointer);
    message.AddPoint("where", fPointer - window->frame.LeftTop());
    message.AddInt32("buttons", (int32)fButtons);
    message.AddInt32("modifiers", (int32)fModifiers);
    return message;
}

void DisplayServer::_SendMoved(ServerWindow* window, bool outside, bigtime_t when, Outbox& outbox) {
    BMessage moved = _MouseMessage(B_MOUSE_MOVED, window, when);
    if (outside)
        moved.AddBool(kFieldPointerOutside, true);
    if (fDragMessage != NULL)
        moved.AddMessage(kFieldDragMessage, fDragMessage.get());
    outbox.push_back(Outgoing{window->messenger, moved, true, BMessenger()});
}

void DisplayServer::_HandleMouseMoved(BPoint where, bigtime_t when) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        fPointer = where;
        ServerWindow* under = _WindowAt(where);
        ServerWindow* grab = _Find(fGrabWindow);
        ServerWindow* down = _Find(fMouseDownWindow);

        std::vector<ServerWindow*> targets;
        if (grab != NULL) {
            targets.push_back(grab);
        } else if (down != NULL) {
            targets.push_back(down);
            if (fDragMessage != NULL && under != NULL && under != down)
                targets.push_back(under);
        } else if (under != NULL) {
            targets.push_back(under);
        }
        for (ServerWindow* window : _StackBackToFront()) {
            if (window->wantsAllPointerEvents && _IsVisible(window) &&
                std::find(targets.begin(), targets.end(), window) == targets.end())
                targets.push_back(window);
        }

        ServerWindow* last = _Find(fLastMouseWindow);
        if (last != NULL && last != under &&
            std::find(targets.begin(), targets.end(), last) == targets.end())
            _SendMoved(last, true, when, outbox);
        for (ServerWindow* window : targets)
            _SendMoved(window, window != under, when, outbox);
        fLastMouseWindow = under != NULL ? under->id : 0;
    }
    _Post(outbox);
}

void DisplayServer::_HandleMouseDown(BPoint where, uint32 button, int32 clicks, bigtime_t when) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        fPointer = where;
        bool first = fButtons == 0;
        fButtons |= button;
        if (first)
            fSwallowClick = false;

        ServerWindow* target = _Find(fGrabWindow);
        if (target == NULL && !first)
            target = _Find(fMouseDownWindow);
        if (target == NULL && first) {
            target = _WindowAt(where);
            fMouseDownWindow = target != NULL ? target->id : 0;
            if (target != NULL && fActiveWindow != target->id && _CanFocus(target)) {
                // A click into an inactive window activates it; the click itself
                // only reaches windows that accept the first click.
                _SetActive(target->id, outbox);
                _Restack(target->id, true);
                _WindowChanged(target);
                if ((target->flags & B_WILL_ACCEPT_FIRST_CLICK) == 0)
                    fSwallowClick = true;
            }
        }
        if (target != NULL && !fSwallowClick) {
            if (clicks <= 0) {
                bool again = target->id == fLastClickWindow && button == fLastClickButtons &&
                             when - fLastClickTime <= kClickSpeed &&
                             fabsf(where.x - fLastClickWhere.x) <= kClickDistance &&
                             fabsf(where.y - fLastClickWhere.y) <= kClickDistance;
                fClickCount = again ? fClickCount + 1 : 1;
            } else {
                fClickCount = clicks;
            }
            fLastClickTime = when;
            fLastClickWhere = where;
            fLastClickButtons = button;
            fLastClickWindow = target->id;

            BMessage down = _MouseMessage(B_MOUSE_DOWN, target, when);
            down.AddInt32("clicks", fClickCount);
            outbox.push_back(Outgoing{target->messenger, down, false, BMessenger()});
        }
    }
    _Post(outbox);
}

void DisplayServer::_HandleMouseUp(BPoint where, uint32 button, bigtime_t when) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        fPointer = where;
        fButtons &= ~button;
        if (fSwallowClick) {
            if (fButtons == 0) {
                fSwallowClick = false;
                fMouseDownWindow = 0;
            }
        } else {
            ServerWindow* target = _Find(fGrabWindow);
            if (target == NULL)
                target = _Find(fMouseDownWindow);
            if (target == NULL)
                target = _WindowAt(where);
            if (target != NULL) {
                BMessage up = _MouseMessage(B_MOUSE_UP, target, when);
                outbox.push_back(Outgoing{target->messenger, up, false, BMessenger()});
            }
            if (fButtons == 0) {
                if (fDragMessage != NULL)
                    _Drop(where, outbox);
                fMouseDownWindow = 0;
            }
        }
    }
    _Post(outbox);
}

void DisplayServer::_Drop(BPoint where, Outbox& outbox) {
    std::unique_ptr<BMessage> dragged = std::move(fDragMessage);
    BMessenger replyTo = fDragReplyTo;
    fDragReplyTo = BMessenger();
    ServerWindow* target = _WindowAt(where);
    if (dragged == NULL || target == NULL)
        return;
    BMessage drop(*dragged);
    drop.AddPoint("_drop_point_", where);
    drop.AddPoint("_drop_offset_", fDragOffset);
    MessagePrivate(&drop).SetWasDropped(true);
    outbox.push_back(Outgoing{target->messenger, drop, false, replyTo});
}

void DisplayServer::_HandleWheel(float deltaX, float deltaY, bigtime_t when) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        ServerWindow* target = _Find(fGrabWindow);
        if (target == NULL)
            target = _WindowAt(fPointer);
        if (target == NULL)
            return;
        BMessage wheel = _MouseMessage(B_MOUSE_WHEEL_CHANGED, target, when);
        wheel.AddFloat("be:wheel_delta_x", deltaX);
        wheel.AddFloat("be:wheel_delta_y", deltaY);
        outbox.push_back(Outgoing{target->messenger, wheel, false, BMessenger()});
    }
    _Post(outbox);
}

// #pragma mark - Keyboard

ServerWindow* DisplayServer::_KeyTarget() {
    if (ServerWindow* grab = _Find(fGrabWindow))
        return grab;
    return _Find(fActiveWindow);
}

void DisplayServer::_SetKeyState(int32 key, bool down) {
    if (key <= 0 || key >= 128)
        return;
    uint8 mask = 0x80 >> (key & 7);
    uint8 before = fKeyStates[key >> 3];
    if (down)
        fKeyStates[key >> 3] |= mask;
    else
        fKeyStates[key >> 3] &= ~mask;
    if (fKeyStates[key >> 3] != before)
        _NotifyWatchers();
}

void DisplayServer::_HandleKey(bool down, int32 key, const char* bytes, int32 rawChar,
                               bigtime_t when) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        _SetKeyState(key, down);
        uint32 oldModifiers = fModifiers;
        for (const ModifierKey& modifier : kModifierKeys) {
            if (modifier.key != key)
                continue;
            if (modifier.locking) {
                if (down)
                    fModifiers ^= modifier.sideBit;
            } else if (down) {
                fModifiers |= modifier.sideBit;
            } else {
                fModifiers &= ~modifier.sideBit;
            }
            fModifiers = with_generic_bits(fModifiers);
        }

        ServerWindow* target = _KeyTarget();
        if (target == NULL)
            return;

        bool mapped = bytes != NULL && bytes[0] != '\0';
        BMessage message(mapped ? (down ? B_KEY_DOWN : B_KEY_UP)
                                : (down ? B_UNMAPPED_KEY_DOWN : B_UNMAPPED_KEY_UP));
        message.AddInt64("when", when);
        message.AddInt32("key", key);
        message.AddInt32("modifiers", (int32)fModifiers);
        message.AddData("states", B_UINT8_TYPE, fKeyStates, sizeof(fKeyStates));
        if (mapped) {
            for (const char* byte = bytes; *byte != '\0'; byte++)
                message.AddInt8("byte", (int8)*byte);
            message.AddString("bytes", bytes);
        }
        if (rawChar >= 0)
            message.AddInt32("raw_char", rawChar & 0x7f);
        outbox.push_back(Outgoing{target->messenger, message, false, BMessenger()});

        if (fModifiers != oldModifiers) {
            BMessage changed(B_MODIFIERS_CHANGED);
            changed.AddInt64("when", when);
            changed.AddInt32("modifiers", (int32)fModifiers);
            changed.AddInt32("be:old_modifiers", (int32)oldModifiers);
            changed.AddData("states", B_UINT8_TYPE, fKeyStates, sizeof(fKeyStates));
            outbox.push_back(Outgoing{target->messenger, changed, false, BMessenger()});
        }
    }
    _Post(outbox);
}

void DisplayServer::_HandleModifiersChanged(uint32 modifiers, bigtime_t when) {
    Outbox outbox;
    {
        std::lock_guard<std::mutex> lock(fLock);
        uint32 oldModifiers = fModifiers;
        fModifiers = with_side_bits(modifiers);
        // Keep the key states in step: the modifier keys are down exactly when
        // their side bits are set.
        for (const ModifierKey& modifier : kModifierKeys) {
            if (!modifier.locking)
                _SetKeyState(modifier.key, (fModifiers & modifier.sideBit) != 0);
        }
        ServerWindow* target = _KeyTarget();
        if (target == NULL || fModifiers == oldModifiers)
            return;
        BMessage changed(B_MODIFIERS_CHANGED);
        changed.AddInt64("when", when);
        changed.AddInt32("modifiers", (int32)fModifiers);
        changed.AddInt32("be:old_modifiers", (int32)oldModifiers);
        changed.AddData("states", B_UINT8_TYPE, fKeyStates, sizeof(fKeyStates));
        outbox.push_back(Outgoing{target->messenger, changed, false, BMessenger()});
    }
    _Post(outbox);
}

} // namespace BPrivate
