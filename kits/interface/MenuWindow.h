// The borderless window an open submenu or pop-up lives in, above every other
// window and never focused. It attaches the menu in its own thread (so the
// menu's AttachedToWindow() and dynamic items run there), places itself where
// the menu's ScreenLocation() says, kept on screen, and grows while dynamic
// items arrive, one per loop turn. A menu taller than the screen gets a scroll
// arrow above and below it (MenuScrollArrow). Pointer and key events it
// receives go to the tracker; the tracker's messages select, scroll, close and
// invoke.
#ifndef _INTERFACE_MENU_WINDOW_H
#define _INTERFACE_MENU_WINDOW_H

#include <Messenger.h>
#include <Window.h>

#include <atomic>
#include <memory>

class BMenu;
class BMenuItem;

namespace BPrivate {

class MenuScrollArrow;
class MenuTracker;
struct MenuSnapshot;
struct MenuTrackingResult;

class MenuWindow : public BWindow {
public:
    // Made and run by the tracker's thread; the menu is attached when the
    // window gets kMessageMenuWindowAttach.
    MenuWindow(BMenu* menu, const BMessenger& tracker, uint32 serial,
               std::shared_ptr<MenuSnapshot> snapshot, bool showTriggers);
    virtual ~MenuWindow();

    virtual void DispatchMessage(BMessage* message, BHandler* handler);
    virtual void MessageReceived(BMessage* message);
    // The tracker starts the thread before the window shows; showing it later
    // must not start it again.
    virtual thread_id Run();

    // A pop-up's tracker lives in its window and goes with it.
    void AdoptTracker(MenuTracker* tracker);
    // The menu is about to be deleted (window locked): it leaves at once, with
    // its hooks called if it is still complete (not yet in its destructor).
    void MenuGone(BMenu* menu, bool complete);
    // Draws, sizes and publishes the menu again soon (any thread).
    void ScheduleRefresh(bool relayout);
    // Closes the menu in this thread: aborts dynamic items, removes it, invokes
    // the item if one is given and still belongs to it. Answers the item invoked.
    BMenuItem* CloseMenu(BMenuItem* item, int32 index, bool invoke);
    // The pop-up menu is deleted once it is removed.
    void SetDeleteMenu(bool deleteMenu) { fDeleteMenu = deleteMenu; }
    // One step of the scrolling while the pointer rests on a scroll arrow;
    // each step goes a little further than the one before.
    void AutoScrollStep(int32 direction);

private:
    void _Attach(BMessage* message);
    void _Place(bool first);
    // Fits the menu, and the arrows when it is taller than the window.
    void _LayoutScrolling(float width, float height, bool scrollable);
    float _MenuHeight();
    void _ScrollBy(float delta);
    void _SetAutoScroll(int32 direction);
    void _UpdateArrows();
    void _Step();
    void _Refresh();
    void _Publish();
    void _Close(BMessage* message);

    BMenu* fMenu;
    BMessenger fTracker;
    uint32 fSerial;
    std::shared_ptr<MenuSnapshot> fSnapshot;
    bool fShowTriggers;
    bool fAttached;
    bool fClosed;
    bool fInStep;
    bool fDeleteMenu;
    bool fRunning;
    BPoint fLocation;
    MenuScrollArrow* fUpArrow;
    MenuScrollArrow* fDownArrow;
    bool fScrollable;
    // -1 or 1 while the pointer rests on an arrow.
    int32 fAutoScroll;
    float fAutoScrollStep;
    MenuTracker* fOwnedTracker;
    std::atomic<bool> fRefreshPosted;
};

} // namespace BPrivate

#endif // _INTERFACE_MENU_WINDOW_H
