// MenuWindow: the window of one open submenu or pop-up.
#include "interface/MenuWindow.h"

#include "interface/MenuData.h"
#include "interface/MenuPrivate.h"
#include "interface/MenuScrollArrow.h"
#include "interface/MenuTracker.h"
#include "interface/WindowPrivate.h"

#include <Menu.h>
#include <MenuItem.h>
#include <Message.h>
#include <Screen.h>

#include <math.h>

namespace BPrivate {

namespace {

const uint32 kMenuWindowFlags = B_NOT_MOVABLE | B_NOT_CLOSABLE | B_NOT_ZOOMABLE |
                                B_NOT_MINIMIZABLE | B_NOT_RESIZABLE | B_AVOID_FOCUS |
                                B_WILL_ACCEPT_FIRST_CLICK | B_ASYNCHRONOUS_CONTROLS;

// Scrolling from an arrow starts at about an item a step and speeds up while
// the pointer stays, so the far end of a folder of hundreds of files is a
// second or two away.
const float kFirstAutoScrollStep = 16.0f;
const float kLastAutoScrollStep = 160.0f;
const float kAutoScrollAcceleration = 1.2f;

const char* window_title(BMenu* menu) {
    const char* name = menu != NULL ? menu->Name() : NULL;
    return name != NULL && name[0] != '\0' ? name : "menu";
}

} // namespace

MenuWindow::MenuWindow(BMenu* menu, const BMessenger& tracker, uint32 serial,
                       std::shared_ptr<MenuSnapshot> snapshot, bool showTriggers)
    : BWindow(BRect(0, 0, 0, 0), window_title(menu), B_NO_BORDER_WINDOW_LOOK, kMenuWindowFeel,
              kMenuWindowFlags, B_CURRENT_WORKSPACE),
      fMenu(menu), fTracker(tracker), fSerial(serial), fSnapshot(std::move(snapshot)),
      fShowTriggers(showTriggers), fAttached(false), fClosed(false), fInStep(false),
      fDeleteMenu(false), fRunning(false), fUpArrow(NULL), fDownArrow(NULL), fScrollable(false),
      fAutoScroll(0), fAutoScrollStep(kFirstAutoScrollStep), fOwnedTracker(NULL),
      fRefreshPosted(false) {
    // The window is locked by the thread making it until it runs.
    fUpArrow = new MenuScrollArrow(BRect(0, 0, 0, 0), -1);
    fDownArrow = new MenuScrollArrow(BRect(0, 0, 0, 0), 1);
    fUpArrow->Hide();
    fDownArrow->Hide();
    AddChild(fUpArrow);
    AddChild(fDownArrow);
    SetPulseRate(kMenuScrollInterval);
}

MenuWindow::~MenuWindow() {
    // The menu is not the window's to delete with its views.
    if (fAttached && fMenu != NULL) {
        RemoveChild(fMenu);
        MenuPrivate(fMenu).SetSnapshot(NULL);
        MenuPrivate(fMenu).Release(this);
    }
    if (fOwnedTracker != NULL) {
        RemoveHandler(fOwnedTracker);
        delete fOwnedTracker;
    }
}

thread_id MenuWindow::Run() {
    if (fRunning)
        return Thread();
    fRunning = true;
    return BWindow::Run();
}

void MenuWindow::AdoptTracker(MenuTracker* tracker) {
    fOwnedTracker = tracker;
    fTracker = BMessenger(tracker);
}

void MenuWindow::DispatchMessage(BMessage* message, BHandler* handler) {
    switch (message->what) {
    case B_MOUSE_DOWN:
    case B_MOUSE_UP:
    case B_MOUSE_MOVED:
    case B_MOUSE_WHEEL_CHANGED:
        // The tracker decides what every pointer event means; the menu view
        // never sees them.
        if (message->HasPoint(kFieldScreenWhere)) {
            BMessage forward(*message);
            forward.what = kMessageTrackerPointer;
            forward.AddInt32("be:what", (int32)message->what);
            bigtime_t timeout = message->what == B_MOUSE_MOVED ? 0 : B_INFINITE_TIMEOUT;
            fTracker.SendMessage(&forward, (BHandler*)NULL, timeout);
            return;
        }
        break;
    case B_KEY_DOWN: {
        // The window holding the grab gets the keys: they are the tracker's.
        const char* bytes = NULL;
        if (message->FindString("bytes", &bytes) == B_OK && bytes != NULL) {
            BMessage key(kMessageTrackerKey);
            key.AddString("bytes", bytes);
            key.AddInt32("modifiers", message->GetInt32("modifiers", 0));
            fTracker.SendMessage(&key);
        }
        return;
    }
    }
    BWindow::DispatchMessage(message, handler);
}

void MenuWindow::MessageReceived(BMessage* message) {
    switch (message->what) {
    case kMessageMenuWindowAttach:
        _Attach(message);
        break;
    case kMessageMenuWindowStep:
        _Step();
        break;
    case kMessageMenuWindowSelect:
        if (fAttached && fMenu != NULL) {
            MenuPrivate(fMenu).Select(message->GetInt32("index", -1),
                                      message->GetBool("reveal", false));
            _Publish();
        }
        break;
    case kMessageMenuWindowScroll:
        if (fAttached && fMenu != NULL) {
            _ScrollBy(message->GetFloat("delta", 0.0f));
            _Publish();
        }
        break;
    case kMessageMenuWindowAutoScroll:
        _SetAutoScroll(message->GetInt32("direction", 0));
        break;
    case kMessageMenuWindowRefresh:
        fRefreshPosted.store(false);
        _Refresh();
        break;
    case kMessageMenuWindowClose:
        _Close(message);
        break;
    default:
        BWindow::MessageReceived(message);
        break;
    }
}

void MenuWindow::ScheduleRefresh(bool relayout) {
    // Steps refresh once they are done; anything else asks for one message.
    if (fInStep && IsLocked())
        return;
    bool expected = false;
    if (fRefreshPosted.compare_exchange_strong(expected, true))
        PostMessage(kMessageMenuWindowRefresh);
}

void MenuWindow::_Attach(BMessage* message) {
    if (fClosed || fAttached)
        return;
    if (fMenu == NULL) {
        _Close(NULL);
        return;
    }
    bool gone = false;
    if (!MenuPrivate(fMenu).Claim(this, &gone)) {
        if (gone) {
            // Deleted since the tracker chose it.
            fMenu = NULL;
            _Close(NULL);
            return;
        }
        // Still leaving the window it was shown in last: try again next turn.
        snooze(200);
        PostMessage(message);
        return;
    }
    if (fMenu->Window() != NULL) {
        // The menu lives in an ordinary window; it cannot open here.
        MenuPrivate(fMenu).Release(this);
        fMenu = NULL;
        _Close(NULL);
        return;
    }
    MenuPrivate menu(fMenu);
    BRect superitem;
    if (message->FindRect("superitem", &superitem) == B_OK)
        menu.SetSuperitemFrame(superitem);
    menu.SetSnapshot(fSnapshot);
    menu.Select(-1, false);
    menu.SetShowTriggers(fShowTriggers);
    fMenu->MoveTo(0, 0);
    fAttached = true;
    AddChild(fMenu);
    if (fMenu == NULL || fMenu->Window() != this) {
        // The menu's own hooks took it away again.
        fAttached = false;
        _Close(NULL);
        return;
    }
    _Place(true);
    // A pop-up holds the pointer from the moment it shows: a press that comes
    // before its tracker hears of it must not reach the window underneath.
    // Submenus get the grab from the tracker, which may have moved on.
    if (fOwnedTracker != NULL)
        WindowPrivate(this).GrabPointer();
    Show();
    _Publish();
    BMessage shown(kMessageTrackerLevelShown);
    shown.AddInt32("serial", (int32)fSerial);
    fTracker.SendMessage(&shown);
    if (menu.IsFilling())
        PostMessage(kMessageMenuWindowStep);
}

void MenuWindow::_Place(bool first) {
    float width = 0.0f;
    float height = 0.0f;
    fMenu->GetSize(&width, &height);
    if (first)
        fLocation = MenuPrivate(fMenu).ScreenLocation();
    BRect screen = BScreen(this).Frame();
    float menuHeight = height;
    width = fmaxf(0.0f, fminf(width, screen.Width()));
    height = fmaxf(0.0f, fminf(height, screen.Height()));
    // Room for both arrows and a little of the menu between them.
    bool scrollable = menuHeight > height && height > 3.0f * kMenuScrollArrowHeight;

    // Kept on screen: a submenu cascading to the right of its item that would
    // leave the screen opens on the item's left; one dropping below its item
    // opens above it; anything else moves just enough.
    auto* data = MenuPrivate(fMenu).Data();
    BPoint where = fLocation;
    BRect item = data->superitemFrame;
    bool beside = data->hasSuperitemFrame && where.x == item.right + 1.0f;
    bool below = data->hasSuperitemFrame && where.y == item.bottom + 1.0f;
    if (where.x + width > screen.right) {
        if (beside && item.left - width - 1.0f >= screen.left)
            where.x = item.left - width - 1.0f;
        else
            where.x = screen.right - width;
    }
    if (where.y + height > screen.bottom) {
        if (below && item.top - height - 1.0f >= screen.top)
            where.y = item.top - height - 1.0f;
        else
            where.y = screen.bottom - height;
    }
    where.x = fmaxf(where.x, screen.left);
    where.y = fmaxf(where.y, screen.top);

    ResizeTo(width, height);
    MoveTo(where);
    _LayoutScrolling(width, height, scrollable);
}

void MenuWindow::_LayoutScrolling(float width, float height, bool scrollable) {
    bool appeared = scrollable && !fScrollable;
    fScrollable = scrollable;
    if (!scrollable) {
        if (!fUpArrow->IsHidden()) {
            fUpArrow->Hide();
            fDownArrow->Hide();
        }
        fMenu->MoveTo(0, 0);
        fMenu->ResizeTo(width, height);
        fAutoScroll = 0;
    } else {
        float strip = kMenuScrollArrowHeight;
        fUpArrow->MoveTo(0, 0);
        fUpArrow->ResizeTo(width, strip - 1.0f);
        fDownArrow->MoveTo(0, height - strip + 1.0f);
        fDownArrow->ResizeTo(width, strip - 1.0f);
        if (fUpArrow->IsHidden()) {
            fUpArrow->Show();
            fDownArrow->Show();
        }
        fMenu->MoveTo(0, strip);
        fMenu->ResizeTo(width, height - 2.0f * strip);
    }
    // A menu that got shorter may be scrolled past its new end.
    _ScrollBy(0.0f);
    _UpdateArrows();
    if (appeared && fAttached && !IsHidden()) {
        // The arrows may have come under a pointer that rests there: the
        // tracker looks again at what it is over.
        _Publish();
        BPoint where;
        uint32 buttons = 0;
        get_mouse(&where, &buttons);
        BMessage pointer(kMessageTrackerPointer);
        pointer.AddInt32("be:what", (int32)B_MOUSE_MOVED);
        pointer.AddPoint(kFieldScreenWhere, where);
        pointer.AddInt32("buttons", (int32)buttons);
        fTracker.SendMessage(&pointer);
    }
}

float MenuWindow::_MenuHeight() {
    // A subclass's GetSize() may well fill in both sizes without asking.
    float width = 0.0f;
    float height = 0.0f;
    fMenu->GetSize(&width, &height);
    return height;
}

void MenuWindow::_ScrollBy(float delta) {
    if (fMenu == NULL)
        return;
    float extent = _MenuHeight();
    BRect bounds = fMenu->Bounds();
    float top = bounds.top + delta;
    top = fmaxf(0.0f, fminf(top, extent - bounds.Height()));
    if (top != bounds.top)
        fMenu->ScrollTo(BPoint(bounds.left, top));
}

void MenuWindow::_SetAutoScroll(int32 direction) {
    direction = direction < 0 ? -1 : (direction > 0 ? 1 : 0);
    if (!fAttached || fMenu == NULL || !fScrollable)
        direction = 0;
    if (direction != fAutoScroll)
        fAutoScrollStep = kFirstAutoScrollStep;
    fAutoScroll = direction;
    _UpdateArrows();
}

void MenuWindow::AutoScrollStep(int32 direction) {
    if (direction == 0 || direction != fAutoScroll || !fAttached || fMenu == NULL)
        return;
    _ScrollBy(direction * fAutoScrollStep);
    fAutoScrollStep = fminf(fAutoScrollStep * kAutoScrollAcceleration, kLastAutoScrollStep);
    _Publish();
}

void MenuWindow::_UpdateArrows() {
    bool canGoUp = false;
    bool canGoDown = false;
    if (fScrollable && fMenu != NULL) {
        float extent = _MenuHeight();
        BRect bounds = fMenu->Bounds();
        canGoUp = bounds.top > 0.0f;
        canGoDown = bounds.top < extent - bounds.Height();
    }
    fUpArrow->SetEnabled(canGoUp);
    fDownArrow->SetEnabled(canGoDown);
    // Pulses only while there is somewhere to go.
    fUpArrow->SetScrolling(fAutoScroll < 0 && canGoUp);
    fDownArrow->SetScrolling(fAutoScroll > 0 && canGoDown);
}

void MenuWindow::_Step() {
    if (!fAttached || fMenu == NULL)
        return;
    fInStep = true;
    bool more = MenuPrivate(fMenu).DynamicStep();
    fInStep = false;
    if (fMenu == NULL || !fAttached)
        return;
    _Refresh();
    if (more)
        PostMessage(kMessageMenuWindowStep);
}

void MenuWindow::_Refresh() {
    if (!fAttached || fMenu == NULL)
        return;
    float width = 0.0f;
    float height = 0.0f;
    fMenu->GetSize(&width, &height);
    BRect screen = BScreen(this).Frame();
    bool scrollable = height > screen.Height() && screen.Height() > 3.0f * kMenuScrollArrowHeight;
    width = fmaxf(0.0f, fminf(width, screen.Width()));
    height = fmaxf(0.0f, fminf(height, screen.Height()));
    if (width != Bounds().Width() || height != Bounds().Height() || scrollable != fScrollable)
        _Place(false);
    _Publish();
}

void MenuWindow::_Publish() {
    if (fMenu == NULL)
        return;
    _UpdateArrows();
    MenuPrivate(fMenu).Publish();
    std::lock_guard<std::mutex> lock(fSnapshot->lock);
    fSnapshot->shown = fAttached;
}

void MenuWindow::_Close(BMessage* message) {
    BMenuItem* item = NULL;
    int32 index = -1;
    bool invoke = false;
    if (message != NULL) {
        item = (BMenuItem*)message->GetPointer("item", NULL);
        index = message->GetInt32("index", -1);
        invoke = message->GetBool("invoke", false);
    }
    BMenuItem* invoked = CloseMenu(item, index, invoke);
    BMessage closed(kMessageTrackerLevelClosed);
    closed.AddInt32("serial", (int32)fSerial);
    if (invoked != NULL)
        closed.AddPointer("item", invoked);
    fTracker.SendMessage(&closed);
    Quit();
}

BMenuItem* MenuWindow::CloseMenu(BMenuItem* item, int32 index, bool invoke) {
    if (fClosed)
        return NULL;
    fClosed = true;
    BMenuItem* chosen = NULL;
    if (fAttached && fMenu != NULL) {
        MenuPrivate menu(fMenu);
        menu.AbortDynamic();
        if (item != NULL && fMenu->ItemAt(index) == item && item->IsEnabled())
            chosen = item;
        menu.Select(-1, false);
        menu.SetShowTriggers(false);
        _SetAutoScroll(0);
        WindowPrivate(this).UngrabPointer();
        RemoveChild(fMenu);
        menu.SetSnapshot(NULL);
        menu.Data()->hasSuperitemFrame = false;
        menu.Release(this);
        fAttached = false;
    }
    {
        std::lock_guard<std::mutex> lock(fSnapshot->lock);
        fSnapshot->shown = false;
    }
    // Like on Be, the item is invoked once its menu has closed.
    if (chosen != NULL && invoke)
        chosen->Invoke();
    if (fDeleteMenu && fMenu != NULL) {
        delete fMenu;
        fMenu = NULL;
    }
    return chosen;
}

void MenuWindow::MenuGone(BMenu* menu, bool complete) {
    if (menu == NULL || menu != fMenu)
        return;
    if (fOwnedTracker != NULL && fOwnedTracker->Root() == menu)
        fOwnedTracker->RootGone(menu);
    if (fAttached) {
        MenuPrivate gone(menu);
        // From the menu's destructor its subclass is already gone: no hooks of
        // its own are called then.
        if (complete)
            gone.AbortDynamic();
        else
            gone.Data()->filling = false;
        RemoveChild(menu);
        gone.SetSnapshot(NULL);
        gone.Data()->hasSuperitemFrame = false;
        gone.Release(this);
        fAttached = false;
    }
    fMenu = NULL;
    {
        std::lock_guard<std::mutex> lock(fSnapshot->lock);
        fSnapshot->shown = false;
        fSnapshot->items.clear();
    }
    if (!fClosed && fOwnedTracker == NULL)
        PostMessage(kMessageMenuWindowClose);
}

} // namespace BPrivate
