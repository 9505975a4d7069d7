// BAlert: a modal window with the type's icon on a darker stripe at the left,
// the text beside it and up to three buttons along the bottom right, the last
// one the default.
//
// Go() shows the alert centred on the screen and waits. Called from a window's
// thread it keeps that window alive while it waits: every few milliseconds it
// takes the window's updates, pulses, moves, resizes and activations out of its
// queue and handles them, so the window goes on drawing; input and the
// program's own messages stay queued until Go() returns. From any other thread
// it simply blocks. Either way it returns once the alert's thread has ended.
#include <Alert.h>

#include "interface/AlertIcons.h"
#include "interface/AlertRegistry.h"
#include "interface/WindowPrivate.h"

#include <Button.h>
#include <Invoker.h>
#include <Message.h>
#include <MessageFilter.h>
#include <MessageQueue.h>
#include <OS.h>
#include <Screen.h>
#include <TextView.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <math.h>
#include <memory>
#include <mutex>
#include <string.h>

using BPrivate::AlertListing;
using BPrivate::AlertRegistry;

namespace {

const uint32 kMessageButtonPressed = '_ABP';
const float kWindowWidth = 310.0f;
const float kStripeWidth = 30.0f;
const BPoint kIconPosition(18, 6);
const float kTextLeftWithIcon = 55.0f;
const float kTextLeft = 10.0f;
const float kTextTop = 6.0f;
const float kTextRightMargin = 10.0f;
const float kTextButtonGap = 12.0f;
const float kButtonMargin = 9.0f;
const float kButtonSpacing = 7.0f;
const float kButtonUsualWidth = 75.0f;
const float kButtonLabelMargin = 20.0f;
const float kDefaultRing = 3.0f;
const bigtime_t kCallerPollInterval = 10000;

// Messages that keep a waiting window drawing and in step with the screen.
bool keeps_window_alive(uint32 what) {
    switch (what) {
    case _UPDATE_:
    case BPrivate::kMessageIdleProbe:
    case B_PULSE:
    case B_WINDOW_ACTIVATED:
    case B_WINDOW_MOVED:
    case B_WINDOW_RESIZED:
    case B_WORKSPACE_ACTIVATED:
    case B_WORKSPACES_CHANGED:
    case B_SCREEN_CHANGED:
        return true;
    default:
        return false;
    }
}

// The stripe with the icon, behind the text and the buttons.
class AlertView : public BView {
public:
    AlertView(BRect frame, alert_type type)
        : BView(frame, "_alert_view_", B_FOLLOW_ALL, B_WILL_DRAW), fType(type) {
        SetViewColor(ui_color(B_PANEL_BACKGROUND_COLOR));
    }

    void Draw(BRect updateRect) override {
        if (fType == B_EMPTY_ALERT)
            return;
        BRect stripe = Bounds();
        stripe.right = stripe.left + kStripeWidth - 1;
        SetHighColor(tint_color(ViewColor(), B_DARKEN_1_TINT));
        FillRect(stripe);
        BPrivate::draw_alert_icon(this, fType, kIconPosition);
    }

private:
    alert_type fType;
};

// Shortcut keys press their buttons.
class AlertFilter : public BMessageFilter {
public:
    explicit AlertFilter(BAlert* alert) : BMessageFilter(B_KEY_DOWN), fAlert(alert) {}

    filter_result Filter(BMessage* message, BHandler** target) override {
        const char* bytes;
        if (message->FindString("bytes", &bytes) != B_OK || bytes[0] == '\0' || bytes[1] != '\0')
            return B_DISPATCH_MESSAGE;
        uint32 modifiers = (uint32)message->GetInt32("modifiers", 0);
        if ((modifiers & (B_COMMAND_KEY | B_CONTROL_KEY | B_OPTION_KEY)) != 0)
            return B_DISPATCH_MESSAGE;
        for (int32 index = 0; index < 3; index++) {
            BButton* button = fAlert->ButtonAt(index);
            if (button == NULL || fAlert->Shortcut(index) != bytes[0])
                continue;
            if (button->IsEnabled())
                button->KeyDown(" ", 1);
            return B_SKIP_MESSAGE;
        }
        return B_DISPATCH_MESSAGE;
    }

private:
    BAlert* fAlert;
};

// What Go() waits for; shared with the alert, which may be gone first.
struct AlertWaiter {
    std::mutex lock;
    std::condition_variable condition;
    bool finished = false;
    int32 result = -1;

    void Finish(int32 value) {
        std::lock_guard<std::mutex> guard(lock);
        if (finished)
            return;
        finished = true;
        result = value;
        condition.notify_all();
    }

    bool WaitFor(bigtime_t timeout) {
        std::unique_lock<std::mutex> guard(lock);
        return condition.wait_for(guard, std::chrono::microseconds(timeout),
                                  [this] { return finished; });
    }

    void Wait() {
        std::unique_lock<std::mutex> guard(lock);
        condition.wait(guard, [this] { return finished; });
    }
};

// Takes the caller's window-keeping messages out of its queue and handles them.
void serve_caller(BWindow* caller) {
    BMessageQueue* queue = caller->MessageQueue();
    while (true) {
        BMessage* found = NULL;
        queue->Lock();
        for (int32 index = 0;; index++) {
            BMessage* message = queue->FindMessage(index);
            if (message == NULL)
                break;
            if (keeps_window_alive(message->what)) {
                found = message;
                break;
            }
        }
        if (found != NULL)
            queue->RemoveMessage(found);
        queue->Unlock();
        if (found == NULL)
            break;
        caller->DispatchMessage(found, caller);
        delete found;
    }
    caller->UpdateIfNeeded();
}

} // namespace

struct BAlert::Private {
    alert_type type = B_INFO_ALERT;
    button_width width = B_WIDTH_AS_USUAL;
    button_spacing spacing = B_EVEN_SPACING;
    BTextView* textView = NULL;
    BButton* buttons[3] = {NULL, NULL, NULL};
    int32 buttonCount = 0;
    char shortcuts[3] = {0, 0, 0};
    BInvoker* invoker = NULL;
    std::shared_ptr<AlertWaiter> waiter;
    int32 registryID = 0;
    bool finished = false;
    int32 result = -1;
};

// #pragma mark - Life

BAlert::BAlert(const char* title, const char* text, const char* button0, const char* button1,
               const char* button2, button_width width, alert_type type)
    : BWindow(BRect(0, 0, kWindowWidth - 1, 99), title, B_MODAL_WINDOW_LOOK,
              B_MODAL_APP_WINDOW_FEEL,
              B_NOT_CLOSABLE | B_NOT_RESIZABLE | B_NOT_ZOOMABLE | B_NOT_MINIMIZABLE |
                  B_ASYNCHRONOUS_CONTROLS),
      fPrivate(new Private) {
    _Init(text, button0, button1, button2, width, B_EVEN_SPACING, type);
}

BAlert::BAlert(const char* title, const char* text, const char* button0, const char* button1,
               const char* button2, button_width width, button_spacing spacing, alert_type type)
    : BWindow(BRect(0, 0, kWindowWidth - 1, 99), title, B_MODAL_WINDOW_LOOK,
              B_MODAL_APP_WINDOW_FEEL,
              B_NOT_CLOSABLE | B_NOT_RESIZABLE | B_NOT_ZOOMABLE | B_NOT_MINIMIZABLE |
                  B_ASYNCHRONOUS_CONTROLS),
      fPrivate(new Private) {
    _Init(text, button0, button1, button2, width, spacing, type);
}

BAlert::~BAlert() {
    Private* data = fPrivate;
    if (data->registryID != 0)
        AlertRegistry::Remove(data->registryID);
    if (data->waiter != NULL)
        data->waiter->Finish(data->result);
    delete data->invoker;
    delete data;
    fPrivate = NULL;
}

void BAlert::_Init(const char* text, const char* button0, const char* button1, const char* button2,
                   button_width width, button_spacing spacing, alert_type type) {
    Private* data = fPrivate;
    data->type = type;
    data->width = width;
    data->spacing = spacing;

    const char* labels[3] = {button0, button1, button2};
    for (int32 index = 0; index < 3 && labels[index] != NULL; index++) {
        BMessage* message = new BMessage(kMessageButtonPressed);
        message->AddInt32("which", index);
        char name[8] = "_b0_";
        name[2] = (char)('0' + index);
        data->buttons[index] = new BButton(BRect(0, 0, kButtonUsualWidth, 0), name, labels[index],
                                           message, B_FOLLOW_RIGHT | B_FOLLOW_BOTTOM);
        data->buttonCount++;
    }
    // Escape answers with the first button when there is a choice.
    if (data->buttonCount > 1)
        data->shortcuts[0] = B_ESCAPE;

    // The text decides the height; it wraps at the width the icon leaves.
    float textLeft = type == B_EMPTY_ALERT ? kTextLeft : kTextLeftWithIcon;
    float textWidth = kWindowWidth - textLeft - kTextRightMargin;
    BTextView* textView =
        new BTextView(BRect(0, 0, textWidth - 1, 19), "_tv_", BRect(0, 0, textWidth - 1, 19),
                      B_FOLLOW_ALL, B_WILL_DRAW | B_FRAME_EVENTS);
    textView->MakeEditable(false);
    textView->MakeSelectable(false);
    textView->SetWordWrap(true);
    textView->SetViewColor(ui_color(B_PANEL_BACKGROUND_COLOR));
    textView->SetLowColor(textView->ViewColor());
    textView->SetText(text != NULL ? text : "");
    data->textView = textView;
    float textHeight = ceilf(textView->TextHeight(0, textView->CountLines() - 1));

    float faceHeight = data->buttonCount > 0 ? data->buttons[0]->Bounds().Height() : 0.0f;
    float contentHeight =
        fmaxf(kTextTop + textHeight,
              type == B_EMPTY_ALERT ? 0.0f : kIconPosition.y + BPrivate::kAlertIconSize);
    float height = contentHeight + kTextButtonGap + faceHeight + kButtonMargin;
    ResizeTo(kWindowWidth - 1, ceilf(height));

    AlertView* background = new AlertView(Bounds(), type);
    AddChild(background);
    textView->ResizeTo(textWidth - 1, Bounds().Height() - kTextTop -
                                          (kTextButtonGap + faceHeight + kButtonMargin));
    textView->MoveTo(textLeft, kTextTop);
    background->AddChild(textView);
    for (int32 index = 0; index < data->buttonCount; index++)
        background->AddChild(data->buttons[index]);
    _LayoutButtons();
    if (data->buttonCount > 0) {
        data->buttons[data->buttonCount - 1]->MakeDefault(true);
        data->buttons[data->buttonCount - 1]->SetTarget(this);
        for (int32 index = 0; index < data->buttonCount; index++)
            data->buttons[index]->SetTarget(this);
    }
    AddCommonFilter(new AlertFilter(this));
}

void BAlert::_LayoutButtons() {
    Private* data = fPrivate;
    int32 count = data->buttonCount;
    if (count == 0)
        return;

    float labelWidths[3] = {0, 0, 0};
    float widest = 0;
    for (int32 index = 0; index < count; index++) {
        const char* label = data->buttons[index]->Label();
        labelWidths[index] = ceilf(data->buttons[index]->StringWidth(label != NULL ? label : "") +
                                   kButtonLabelMargin);
        widest = fmaxf(widest, labelWidths[index]);
    }
    float widths[3];
    for (int32 index = 0; index < count; index++) {
        switch (data->width) {
        case B_WIDTH_FROM_WIDEST:
            widths[index] = widest;
            break;
        case B_WIDTH_FROM_LABEL:
            widths[index] = labelWidths[index];
            break;
        case B_WIDTH_FIXED:
            widths[index] = fmaxf(kButtonUsualWidth, widest);
            break;
        case B_WIDTH_AS_USUAL:
        default:
            widths[index] = fmaxf(kButtonUsualWidth, labelWidths[index]);
            break;
        }
    }

    // Widen the alert when the buttons need more room than it has.
    float textLeft = data->type == B_EMPTY_ALERT ? kTextLeft : kTextLeftWithIcon;
    float needed = textLeft + kButtonMargin + (count - 1) * kButtonSpacing;
    for (int32 index = 0; index < count; index++)
        needed += widths[index] + 1;
    if (needed > Bounds().Width() + 1)
        ResizeTo(ceilf(needed) - 1, Bounds().Height());

    BRect bounds = Bounds();
    float bottom = bounds.bottom - kButtonMargin;
    float right = bounds.right - kButtonMargin;
    for (int32 index = count - 1; index >= 0; index--) {
        BButton* button = data->buttons[index];
        float height = button->Bounds().Height();
        float left = right - widths[index];
        if (index == 0 && data->spacing == B_OFFSET_SPACING && count > 1)
            left = textLeft;
        // The default button's frame holds its ring around the face.
        float ring = button->IsDefault() ? kDefaultRing : 0.0f;
        button->ResizeTo(widths[index] + 2 * ring, height);
        button->MoveTo(left - ring, bottom - (height - 2 * ring) - ring);
        right = left - kButtonSpacing - 1;
    }
}

// #pragma mark - Shortcuts and parts

void BAlert::SetShortcut(int32 index, char key) {
    if (index < 0 || index >= fPrivate->buttonCount)
        return;
    fPrivate->shortcuts[index] = key;
}

char BAlert::Shortcut(int32 index) const {
    if (index < 0 || index >= fPrivate->buttonCount)
        return 0;
    return fPrivate->shortcuts[index];
}

BButton* BAlert::ButtonAt(int32 index) const {
    if (index < 0 || index >= fPrivate->buttonCount)
        return NULL;
    return fPrivate->buttons[index];
}

BTextView* BAlert::TextView() const {
    return fPrivate->textView;
}

BPoint BAlert::AlertPosition(float width, float height) {
    BRect screen = BScreen().Frame();
    if (!screen.IsValid())
        return BPoint(100, 100);
    return BPoint(floorf(screen.left + (screen.Width() - width) / 2),
                  floorf(screen.top + (screen.Height() - height) / 2));
}

// #pragma mark - Going

int32 BAlert::Go() {
    Private* data = fPrivate;
    if (data->waiter != NULL || (Thread() >= 0 && find_thread(NULL) == Thread())) {
        debugger("BAlert::Go(): the alert already runs");
        return -1;
    }
    if (LockingThread() != find_thread(NULL)) {
        // Until it runs, the alert belongs to the thread that made it.
        debugger("BAlert::Go(): call it from the thread that made the alert");
        return -1;
    }
    if (data->buttonCount == 0) {
        // Nothing could ever answer it.
        Quit();
        return -1;
    }
    std::shared_ptr<AlertWaiter> waiter = std::make_shared<AlertWaiter>();
    data->waiter = waiter;
    BWindow* caller = dynamic_cast<BWindow*>(BLooper::LooperForThread(find_thread(NULL)));

    // Held across Show(), so the alert cannot be answered and gone before
    // its thread is known.
    Lock();
    Go((BInvoker*)NULL);
    thread_id thread = Thread();
    Unlock();
    // From here on the alert may be gone at any moment.
    if (caller != NULL && caller->IsLocked()) {
        while (!waiter->WaitFor(kCallerPollInterval))
            serve_caller(caller);
    } else {
        waiter->Wait();
    }
    if (thread >= 0) {
        status_t ignored;
        wait_for_thread(thread, &ignored);
    }
    return waiter->result;
}

status_t BAlert::Go(BInvoker* invoker) {
    Private* data = fPrivate;
    if (LockingThread() != find_thread(NULL)) {
        debugger("BAlert::Go(): call it from the thread that made the alert");
        delete invoker;
        return B_NOT_ALLOWED;
    }
    delete data->invoker;
    data->invoker = invoker;

    BRect frame = Frame();
    MoveTo(AlertPosition(frame.Width(), frame.Height()));

    AlertListing listing;
    listing.title = Title();
    listing.text = data->textView->Text();
    for (int32 index = 0; index < data->buttonCount; index++) {
        const char* label = data->buttons[index]->Label();
        listing.buttons.push_back(label != NULL ? label : "");
    }
    listing.type = data->type;
    listing.frame = Frame();
    listing.messenger = BMessenger(this);

    if (data->buttonCount > 0)
        data->buttons[data->buttonCount - 1]->MakeFocus(true);
    // Listed once it is on screen. The lock is still held after Show() (which
    // gives up one level), so no button can be answered before it is listed.
    Lock();
    Show();
    data->registryID = AlertRegistry::Add(listing);
    Unlock();
    return B_OK;
}

void BAlert::_Finish(int32 index) {
    Private* data = fPrivate;
    if (data->finished)
        return;
    data->finished = true;
    data->result = index;
    if (data->invoker != NULL) {
        BMessage* message = data->invoker->Message();
        if (message != NULL) {
            if (message->ReplaceInt32("which", index) != B_OK)
                message->AddInt32("which", index);
            data->invoker->Invoke();
        }
    }
    Quit();
}

// #pragma mark - Hooks

void BAlert::MessageReceived(BMessage* message) {
    switch (message->what) {
    case kMessageButtonPressed: {
        int32 which;
        if (message->FindInt32("which", &which) == B_OK && which >= 0 &&
            which < fPrivate->buttonCount)
            _Finish(which);
        break;
    }
    case BPrivate::kMessagePressAlertButton: {
        const char* label;
        if (message->FindString("label", &label) != B_OK)
            break;
        for (int32 index = 0; index < fPrivate->buttonCount; index++) {
            BButton* button = fPrivate->buttons[index];
            if (button->Label() != NULL && strcmp(button->Label(), label) == 0 &&
                button->IsEnabled()) {
                button->KeyDown(" ", 1);
                break;
            }
        }
        break;
    }
    default:
        BWindow::MessageReceived(message);
        break;
    }
}

void BAlert::FrameResized(float newWidth, float newHeight) {
    BWindow::FrameResized(newWidth, newHeight);
}

bool BAlert::QuitRequested() {
    // Closed some other way (the application quitting): Go() answers -1.
    return true;
}
