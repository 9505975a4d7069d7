// MenuTracker: starting and ending a session, the pointer, and the levels of
// open menus. The keyboard is in MenuTrackerKeys.cpp.
//
// Pointer rules, as on Be: a press on a bar item selects it and opens its
// submenu; moving over items selects them and opens their submenus, closing the
// deeper ones; releasing over an enabled item invokes it. Releasing without
// choosing, quickly or over an item with a submenu (or inside the click-to-open
// rectangle of a pop-up), leaves the menus open in sticky mode, where the next
// click chooses, and a press outside every menu closes them all.
#include "interface/MenuTracker.h"

#include "interface/MenuData.h"
#include "interface/MenuPrivate.h"
#include "interface/MenuWindow.h"
#include "interface/WindowPrivate.h"
#include "server/DisplayServer.h"

#include <Looper.h>
#include <MenuBar.h>
#include <MenuItem.h>
#include <Message.h>
#include <MessageFilter.h>
#include <OS.h>
#include <PopUpMenu.h>
#include <Window.h>

#include <chrono>
#include <map>
#include <math.h>

namespace BPrivate {

namespace {

std::mutex sActiveLock;

// The root is the first level of every session.
const uint32 kRootSerial = 1;

// Sessions running in ordinary windows; never destroyed, as windows may close
// while static destructors run.
std::map<const BWindow*, MenuTracker*>& active_sessions() {
    static auto* sSessions = new std::map<const BWindow*, MenuTracker*>;
    return *sSessions;
}

// While a bar tracks, its window's pointer events belong to the tracker.
class TrackingFilter : public BMessageFilter {
public:
    explicit TrackingFilter(MenuTracker* tracker)
        : BMessageFilter(B_ANY_DELIVERY, B_ANY_SOURCE), fTracker(tracker) {}

    filter_result Filter(BMessage* message, BHandler** target) override {
        switch (message->what) {
        case B_MOUSE_DOWN:
        case B_MOUSE_UP:
        case B_MOUSE_MOVED:
        case B_MOUSE_WHEEL_CHANGED:
            // Only what the display server sent, not messages made by hand.
            if (!message->HasPoint(kFieldScreenWhere))
                return B_DISPATCH_MESSAGE;
            fTracker->HandlePointer(message, message->what);
            return B_SKIP_MESSAGE;
        default:
            return B_DISPATCH_MESSAGE;
        }
    }

private:
    MenuTracker* fTracker;
};

bool view_in(BView* parent, BView* view) {
    for (int32 index = 0; index < parent->CountChildren(); index++) {
        BView* child = parent->ChildAt(index);
        if (child == view || view_in(child, view))
            return true;
    }
    return false;
}

bool view_in_window(BWindow* window, BView* view) {
    for (int32 index = 0; index < window->CountChildren(); index++) {
        BView* child = window->ChildAt(index);
        if (child == view || view_in(child, view))
            return true;
    }
    return false;
}

} // namespace

// #pragma mark - Starting

MenuTracker::MenuTracker(BMenu* root, BWindow* rootWindow)
    : BHandler("menu tracker"), fRoot(root), fRootWindow(rootWindow), fNextSerial(kRootSerial),
      fMode(kDragging), fKeyboard(false), fEnded(false), fFinished(false), fRootReleased(false),
      fRootGone(false), fDeliver(true), fKeepOpen(false), fHasClickRect(false), fStartTime(0),
      fPendingSerial(0), fScrollSerial(0), fScrollDirection(0), fPreviousFocus(NULL), fFilter(NULL),
      fChosenItem(NULL), fChosenIndex(-1), fBusy(0) {}

MenuTracker::~MenuTracker() {
    {
        std::lock_guard<std::mutex> lock(sActiveLock);
        auto found = active_sessions().find(fRootWindow);
        if (found != active_sessions().end() && found->second == this)
            active_sessions().erase(found);
    }
    delete fFilter;
    if (fResult != NULL) {
        std::lock_guard<std::mutex> lock(fResult->lock);
        if (!fResult->done) {
            fResult->done = true;
            fResult->changed.notify_all();
        }
    }
}

MenuTracker* MenuTracker::ActiveIn(const BWindow* window) {
    std::lock_guard<std::mutex> lock(sActiveLock);
    auto found = active_sessions().find(window);
    return found != active_sessions().end() ? found->second : NULL;
}

MenuTracker* MenuTracker::StartBar(BMenuBar* bar, int32 index, bool sticky, bool showMenu,
                                   bool keyboard, BRect* specialRect) {
    BWindow* window = bar != NULL ? bar->Window() : NULL;
    if (window == NULL)
        return NULL;
    // One session per window: a new one ends the previous one first.
    if (MenuTracker* active = ActiveIn(window))
        active->Cancel();
    window->MenusBeginning();
    if (bar->Window() != window)
        return NULL;

    MenuTracker* tracker = new MenuTracker(bar, window);
    window->AddHandler(tracker);
    {
        std::lock_guard<std::mutex> lock(sActiveLock);
        active_sessions()[window] = tracker;
    }
    MenuPrivate(bar).SetTracker(tracker);
    tracker->fMode = sticky ? kSticky : kDragging;
    tracker->fKeyboard = keyboard;
    uint32 buttons = 0;
    get_mouse(&tracker->fStartPoint, &buttons);
    tracker->fStartTime = system_time();
    if (specialRect != NULL) {
        tracker->fHasClickRect = true;
        tracker->fClickRect = *specialRect;
    }
    Level root;
    root.menu = bar;
    root.serial = tracker->fNextSerial++;
    root.token = WindowPrivate(window).ServerToken();
    root.shown = true;
    tracker->fLevels.push_back(root);
    tracker->_BeginRoot(keyboard);

    if (keyboard)
        index = tracker->_NextSelectable(0, index - 1, 1);
    if (index >= 0 && index < bar->CountItems()) {
        tracker->_SetSelected(0, index, false);
        if (showMenu)
            tracker->_OpenSubmenu(0, index, keyboard);
    }
    return tracker;
}

BMenuItem* MenuTracker::TrackMenu(BMenu* menu, BPoint where, bool deliver, bool keepOpen,
                                  BRect* clickToOpen, bool async) {
    if (menu == NULL || menu->Window() != NULL || MenuPrivate(menu).ClaimedBy() != NULL ||
        MenuPrivate(menu).Tracker() != NULL)
        return NULL;
    BPopUpMenu* popUp = dynamic_cast<BPopUpMenu*>(menu);
    if (popUp == NULL)
        MenuPrivate(menu).SetLocation(where);

    auto result = std::make_shared<MenuTrackingResult>();
    MenuTracker* tracker = new MenuTracker(menu, NULL);
    tracker->fDeliver = deliver;
    tracker->fKeepOpen = keepOpen;
    tracker->fResult = result;
    if (clickToOpen != NULL) {
        tracker->fHasClickRect = true;
        tracker->fClickRect = *clickToOpen;
    }
    uint32 buttons = 0;
    get_mouse(&tracker->fStartPoint, &buttons);
    tracker->fStartTime = system_time();
    tracker->fMode = buttons != 0 ? kDragging : kSticky;

    Level level;
    level.menu = menu;
    level.serial = tracker->fNextSerial++;
    level.snapshot = std::make_shared<MenuSnapshot>();
    MenuWindow* window = new MenuWindow(menu, BMessenger(), level.serial, level.snapshot, false);
    // The window is locked by this thread until it runs.
    window->AddHandler(tracker);
    window->AdoptTracker(tracker);
    window->SetDeleteMenu(async && popUp != NULL && popUp->AsyncAutoDestruct());
    level.window = window;
    level.messenger = BMessenger(window);
    level.token = WindowPrivate(window).ServerToken();
    tracker->fLevels.push_back(level);
    MenuPrivate(menu).SetTracker(tracker);
    window->Run();
    window->PostMessage(kMessageMenuWindowAttach);
    if (async)
        return NULL;

    // A window thread waiting here keeps its window drawing.
    BWindow* caller = dynamic_cast<BWindow*>(BLooper::LooperForThread(find_thread(NULL)));
    std::unique_lock<std::mutex> lock(result->lock);
    while (!result->done) {
        if (caller != NULL && caller->IsLocked()) {
            lock.unlock();
            caller->UpdateIfNeeded();
            lock.lock();
            if (!result->done)
                result->changed.wait_for(lock, std::chrono::milliseconds(20));
        } else {
            result->changed.wait(lock);
        }
    }
    return result->item;
}

void MenuTracker::_BeginRoot(bool keyboard) {
    BWindow* window = fRootWindow;
    fPreviousFocus = window->CurrentFocus();
    if (fPreviousFocus == fRoot)
        fPreviousFocus = NULL;
    // Keys reach the bar while it tracks.
    fRoot->MakeFocus(true);
    fFilter = new TrackingFilter(this);
    window->AddCommonFilter(fFilter);
    menu_grab_pointer(fLevels[0].token);
    if (keyboard)
        MenuPrivate(fRoot).SetShowTriggers(true);
}

// #pragma mark - Messages

void MenuTracker::MessageReceived(BMessage* message) {
    fBusy++;
    switch (message->what) {
    case kMessageTrackerPointer:
        HandlePointer(message, (uint32)message->GetInt32("be:what", 0));
        break;
    case kMessageTrackerKey: {
        const char* bytes = NULL;
        if (message->FindString("bytes", &bytes) == B_OK)
            HandleKey(bytes, (uint32)message->GetInt32("modifiers", 0));
        break;
    }
    case kMessageTrackerLevelShown: {
        int32 level = _LevelBySerial((uint32)message->GetInt32("serial", 0));
        if (level < 0 || fEnded)
            break;
        fLevels[level].shown = true;
        if (level == (int32)fLevels.size() - 1)
            _UpdateGrab();
        if (fLevels[level].selectFirst) {
            fLevels[level].selectFirst = false;
            int32 first = _NextSelectable(level, -1, 1);
            if (first >= 0)
                _SetSelected(level, first, true);
        }
        break;
    }
    case kMessageTrackerLevelClosed: {
        uint32 serial = (uint32)message->GetInt32("serial", 0);
        if (fEnded) {
            if (serial != 0 && serial == fPendingSerial) {
                fPendingSerial = 0;
                _Finish((BMenuItem*)message->GetPointer("item", NULL));
            }
            break;
        }
        // A menu went away on its own (deleted, or taken by its hooks).
        int32 level = _LevelBySerial(serial);
        if (level == 0)
            _End(-1, -1);
        else if (level > 0)
            _CloseLevels(level, true);
        break;
    }
    case kMessageTrackerDispose:
        fBusy--;
        if (fBusy > 0 || _IsBar() == false)
            return;
        if (!fRootGone && MenuPrivate(fRoot).Tracker() == this)
            MenuPrivate(fRoot).SetTracker(NULL);
        if (Looper() != NULL)
            Looper()->RemoveHandler(this);
        delete this;
        return;
    default:
        BHandler::MessageReceived(message);
        break;
    }
    fBusy--;
}

int32 MenuTracker::_LevelBySerial(uint32 serial) const {
    for (size_t index = 0; index < fLevels.size(); index++) {
        if (fLevels[index].serial == serial)
            return (int32)index;
    }
    return -1;
}

// #pragma mark - The pointer

void MenuTracker::HandlePointer(BMessage* message, uint32 what) {
    BPoint where;
    if (fEnded || message->FindPoint(kFieldScreenWhere, &where) != B_OK)
        return;
    fBusy++;
    uint32 buttons = (uint32)message->GetInt32("buttons", 0);
    Hit hit = _HitTest(where);
    if (what != B_MOUSE_WHEEL_CHANGED)
        _AutoScroll(hit);
    switch (what) {
    case B_MOUSE_MOVED:
        if (hit.level < 0)
            _PointerOutside();
        else if (hit.arrow == 0)
            _Hover(hit);
        break;
    case B_MOUSE_DOWN:
        if (hit.level < 0) {
            // A press outside every menu closes them all; it goes nowhere else.
            _End(-1, -1);
            break;
        }
        if (fMode == kSticky && _IsBar() && hit.level == 0 && hit.index >= 0 &&
            hit.index == fLevels[0].selected && fLevels.size() > 1) {
            // Pressing the open bar item again closes its menu.
            _End(-1, -1);
            break;
        }
        if (hit.arrow == 0)
            _Hover(hit);
        break;
    case B_MOUSE_UP: {
        if (buttons != 0)
            break;
        if (hit.level >= 0 && hit.index >= 0 && hit.enabled && !hit.separator &&
            hit.submenu == NULL) {
            _End(hit.level, hit.index);
            break;
        }
        if (fMode != kDragging)
            break;
        float distance = hypotf(where.x - fStartPoint.x, where.y - fStartPoint.y);
        bool quick =
            system_time() - fStartTime <= DisplayServer::kClickSpeed && distance <= kClickSlop;
        bool stay = quick || fKeepOpen || hit.arrow != 0 ||
                    (fHasClickRect && fClickRect.Contains(where)) ||
                    (hit.level >= 0 && hit.index >= 0 && hit.submenu != NULL) ||
                    (_IsBar() && hit.level == 0);
        if (stay)
            fMode = kSticky;
        else
            _End(-1, -1);
        break;
    }
    case B_MOUSE_WHEEL_CHANGED: {
        int32 deepest = (int32)fLevels.size() - 1;
        if (fLevels[deepest].window == NULL)
            break;
        BMessage scroll(kMessageMenuWindowScroll);
        scroll.AddFloat("delta", message->GetFloat("be:wheel_delta_y", 0.0f) * 20.0f);
        fLevels[deepest].messenger.SendMessage(&scroll);
        break;
    }
    }
    fBusy--;
}

// #pragma mark - Ending

void MenuTracker::Cancel() {
    fBusy++;
    _End(-1, -1);
    fBusy--;
}

void MenuTracker::RootGone(BMenu* menu) {
    if (menu != fRoot || fRootGone)
        return;
    fRootGone = true;
    MenuPrivate(menu).SetTracker(NULL);
    if (!_IsBar()) {
        // A pop-up deleted while open: its window finishes in its own thread.
        if (!fFinished) {
            BMessage closed(kMessageTrackerLevelClosed);
            closed.AddInt32("serial", (int32)kRootSerial);
            BMessenger(this).SendMessage(&closed);
        }
        return;
    }
    if (!fEnded)
        _End(-1, -1);
    if (fBusy == 0) {
        if (Looper() != NULL)
            Looper()->RemoveHandler(this);
        delete this;
    }
}

void MenuTracker::_End(int32 level, int32 index) {
    if (fEnded)
        return;
    fEnded = true;
    // The menu windows close, deepest first; the one holding the chosen item
    // invokes it once its menu is gone and says so.
    for (int32 closing = (int32)fLevels.size() - 1; closing >= 1; closing--) {
        Level& entry = fLevels[closing];
        BMessage close(kMessageMenuWindowClose);
        Hit chosen;
        if (closing == level && index >= 0 && _Entry(closing, index, &chosen)) {
            close.AddPointer("item", chosen.item);
            close.AddInt32("index", index);
            close.AddBool("invoke", fDeliver);
            fPendingSerial = entry.serial;
        }
        entry.messenger.SendMessage(&close);
    }
    fLevels.resize(std::min<size_t>(fLevels.size(), 1));
    _ReleaseRoot();

    if (level == 0 && index >= 0) {
        Hit chosen;
        if (_Entry(0, index, &chosen)) {
            if (_IsBar()) {
                if (fDeliver && chosen.item->IsEnabled())
                    chosen.item->Invoke();
                _Finish(chosen.item);
                return;
            }
            fChosenItem = chosen.item;
            fChosenIndex = index;
        }
    }
    if (fPendingSerial != 0)
        return;
    _Finish(NULL);
}

void MenuTracker::_ReleaseRoot() {
    if (fRootReleased || !_IsBar())
        return;
    fRootReleased = true;
    BWindow* window = fRootWindow;
    window->RemoveCommonFilter(fFilter);
    menu_ungrab_pointer(WindowPrivate(window).ServerToken());
    {
        std::lock_guard<std::mutex> lock(sActiveLock);
        auto found = active_sessions().find(window);
        if (found != active_sessions().end() && found->second == this)
            active_sessions().erase(found);
    }
    if (fRootGone)
        return;
    MenuPrivate(fRoot).Select(-1, false);
    MenuPrivate(fRoot).SetShowTriggers(false);
    if (fRoot->IsFocus()) {
        if (fPreviousFocus != NULL && view_in_window(window, fPreviousFocus))
            fPreviousFocus->MakeFocus(true);
        else
            fRoot->MakeFocus(false);
    }
}

void MenuTracker::_Finish(BMenuItem* chosen) {
    if (fFinished)
        return;
    fFinished = true;
    if (_IsBar()) {
        if (!fRootGone)
            fRootWindow->MenusEnded();
        BMessenger(this).SendMessage(kMessageTrackerDispose);
        return;
    }
    // A pop-up: its own window closes last and takes the tracker with it.
    MenuWindow* window = fLevels.empty() ? NULL : fLevels[0].window;
    BMenuItem* item = chosen;
    if (window != NULL) {
        BMenuItem* invoked = window->CloseMenu(fChosenItem, fChosenIndex, fDeliver);
        if (fChosenItem != NULL)
            item = invoked;
    }
    if (!fRootGone && MenuPrivate(fRoot).Tracker() == this)
        MenuPrivate(fRoot).SetTracker(NULL);
    if (fResult != NULL) {
        std::lock_guard<std::mutex> lock(fResult->lock);
        fResult->item = item;
        fResult->done = true;
        fResult->changed.notify_all();
    }
    if (window != NULL)
        window->Quit();
}

} // namespace BPrivate
