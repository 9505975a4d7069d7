// BView input: mouse and key hooks, GetMouse(), event masks, focus and dragging.
#include <View.h>

#include "interface/ViewData.h"
#include "interface/WindowData.h"
#include "interface/WindowPrivate.h"

#include <Bitmap.h>
#include <Message.h>
#include <MessageQueue.h>
#include <Messenger.h>
#include <Window.h>

using BPrivate::kFieldScreenWhere;
using BPrivate::kFieldViewWhere;

// #pragma mark - Hooks

void BView::MouseDown(BPoint where) {
    // Hook function
}

void BView::MouseUp(BPoint where) {
    // Hook function
}

void BView::MouseMoved(BPoint where, uint32 code, const BMessage* dragMessage) {
    // Hook function
}

void BView::KeyDown(const char* bytes, int32 numBytes) {
    // Tab moves the focus on to the next navigable view.
    if (fPrivate->window != NULL)
        fPrivate->window->_KeyboardNavigation();
}

void BView::KeyUp(const char* bytes, int32 numBytes) {
    // Hook function
}

void BView::BeginRectTracking(BRect startRect, uint32 style) {
    // The display draws no tracking outline; there is nothing to start.
}

void BView::EndRectTracking() {}

// #pragma mark - The pointer

void BView::GetMouse(BPoint* location, uint32* buttons, bool checkMessageQueue) {
    if (location == NULL && buttons == NULL)
        return;
    _CheckLock();
    BWindow* window = fPrivate->window;
    BWindow::Private* data = window != NULL ? window->fPrivate : NULL;
    if (data == NULL || data->server == NULL) {
        if (location != NULL)
            *location = BPoint(0, 0);
        if (buttons != NULL)
            *buttons = 0;
        return;
    }

    uint32 options = fPrivate->eventOptions | fPrivate->mouseEventOptions;
    if (checkMessageQueue && (options & B_NO_POINTER_HISTORY) == 0) {
        window->UpdateIfNeeded();
        BMessageQueue* queue = window->MessageQueue();
        queue->Lock();
        for (int32 index = 0;; index++) {
            BMessage* message = queue->FindMessage(index);
            if (message == NULL)
                break;
            if (message->what != B_MOUSE_MOVED && message->what != B_MOUSE_UP &&
                message->what != B_MOUSE_DOWN)
                continue;
            // Only what the display server sent, not messages made by hand.
            BPoint screenWhere;
            if (message->FindPoint(kFieldScreenWhere, &screenWhere) != B_OK)
                continue;
            if (message->what == B_MOUSE_MOVED && (options & B_FULL_POINTER_HISTORY) == 0) {
                // Moves that piled up long ago are skipped, not answered.
                int64 when;
                if (message->FindInt64("when", &when) == B_OK && system_time() - when > 500000)
                    continue;
            }
            uint32 messageButtons = (uint32)message->GetInt32("buttons", 0);
            bool released = message->what == B_MOUSE_UP && messageButtons == 0;
            queue->RemoveMessage(message);
            queue->Unlock();
            delete message;
            if (location != NULL)
                *location = ConvertFromScreen(screenWhere);
            if (buttons != NULL)
                *buttons = messageButtons;
            if (released)
                window->_ReleaseMouseEventMasks();
            return;
        }
        queue->Unlock();
    }

    BPoint screenWhere;
    uint32 currentButtons;
    data->server->GetPointer(&screenWhere, &currentButtons);
    if (location != NULL)
        *location = ConvertFromScreen(screenWhere);
    if (buttons != NULL)
        *buttons = currentButtons;
}

status_t BView::SetEventMask(uint32 mask, uint32 options) {
    _CheckLock();
    fPrivate->eventMask = mask;
    fPrivate->eventOptions = options;
    if (fPrivate->window != NULL)
        fPrivate->window->_UpdatePointerViews();
    return B_OK;
}

uint32 BView::EventMask() {
    return fPrivate->eventMask | fPrivate->mouseEventMask;
}

status_t BView::SetMouseEventMask(uint32 mask, uint32 options) {
    BWindow* window = fPrivate->window;
    if (window == NULL)
        return B_ERROR;
    _CheckLock();
    // Only while a button is down: the mask ends when the buttons are released.
    BMessage* current = window->CurrentMessage();
    bool pressing = current != NULL && current->what == B_MOUSE_DOWN;
    if (!pressing && window->fPrivate->server != NULL) {
        uint32 buttons = 0;
        window->fPrivate->server->GetPointer(NULL, &buttons);
        pressing = buttons != 0;
    }
    if (!pressing)
        return B_ERROR;
    fPrivate->mouseEventMask = mask;
    fPrivate->mouseEventOptions = options;
    window->_UpdatePointerViews();
    return B_OK;
}

// #pragma mark - Focus

void BView::MakeFocus(bool focusState) {
    BWindow* window = fPrivate->window;
    if (window == NULL)
        return;
    _CheckLock();
    BView* focus = window->fPrivate->focus;
    if (focusState) {
        if (focus == this)
            return;
        if (focus != NULL)
            focus->MakeFocus(false);
        window->_SetFocus(this);
    } else if (focus == this) {
        window->_SetFocus(NULL);
    }
}

bool BView::IsFocus() const {
    return fPrivate->window != NULL && fPrivate->window->fPrivate->focus == this;
}

// #pragma mark - Dragging

void BView::DragMessage(BMessage* message, BRect dragRect, BHandler* replyTo) {
    if (message == NULL)
        return;
    BWindow* window = fPrivate->window;
    if (window == NULL) {
        debugger("BView::DragMessage(): the view is not in a window");
        return;
    }
    _CheckLock();
    // The grab point: where the pointer went down, if a mouse message is being
    // handled, else where it is now.
    BPoint where;
    BMessage* current = window->CurrentMessage();
    if (current == NULL || current->FindPoint(kFieldViewWhere, &where) != B_OK) {
        uint32 buttons;
        GetMouse(&where, &buttons, false);
    }
    _StartDrag(message, where - dragRect.LeftTop(), replyTo);
}

void BView::DragMessage(BMessage* message, BBitmap* bitmap, BPoint offset, BHandler* replyTo) {
    DragMessage(message, bitmap, B_OP_COPY, offset, replyTo);
}

void BView::DragMessage(BMessage* message, BBitmap* bitmap, drawing_mode dragMode, BPoint offset,
                        BHandler* replyTo) {
    // The display shows no drag image; the bitmap was handed over all the same.
    delete bitmap;
    if (message == NULL)
        return;
    if (fPrivate->window == NULL) {
        debugger("BView::DragMessage(): the view is not in a window");
        return;
    }
    _CheckLock();
    _StartDrag(message, offset, replyTo);
}

void BView::_StartDrag(BMessage* message, BPoint offset, BHandler* replyTo) {
    BWindow::Private* data = fPrivate->window->fPrivate;
    if (data->server == NULL)
        return;
    if (replyTo == NULL)
        replyTo = this;
    BMessenger reply(replyTo);
    data->server->StartDrag(data->serverToken, *message, offset, reply);
}
