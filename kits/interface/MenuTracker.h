// The tracking of open menus: one MenuTracker per session, from the press on a
// menu bar (or Command-Escape, or BPopUpMenu::Go()) until the menus close.
//
// The tracker is a handler in its home looper: the menu bar's window, or the
// pop-up's own menu window. Everything it decides happens in that thread. It
// keeps the chain of open menus as levels: level 0 is the root (the bar, or the
// pop-up), every further level a submenu in a MenuWindow. Pointer events reach
// it wherever they happen (the grab goes to the deepest menu window, or to the
// bar's window), keys through the bar's KeyDown(). It never locks another
// window: the menu windows publish snapshots of their items, and it sends them
// messages to select, open, close and invoke.
#ifndef _INTERFACE_MENU_TRACKER_H
#define _INTERFACE_MENU_TRACKER_H

#include <Handler.h>
#include <Messenger.h>
#include <Point.h>
#include <Rect.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

class BMenu;
class BMenuBar;
class BMenuItem;
class BMessage;
class BMessageFilter;
class BView;
class BWindow;

namespace BPrivate {

class MenuWindow;
struct MenuSnapshot;

// What a synchronous pop-up waits on.
struct MenuTrackingResult {
    std::mutex lock;
    std::condition_variable changed;
    bool done = false;
    BMenuItem* item = NULL;
};

class MenuTracker : public BHandler {
public:
    // A session on a menu bar, in the bar's window thread (window locked).
    static MenuTracker* StartBar(BMenuBar* bar, int32 index, bool sticky, bool showMenu,
                                 bool keyboard, BRect* specialRect);
    // Opens the menu at a screen point in a window of its own and tracks it;
    // waits for the outcome unless async. deliver: invoke the chosen item.
    static BMenuItem* TrackMenu(BMenu* menu, BPoint where, bool deliver, bool keepOpen,
                                BRect* clickToOpen, bool async);
    // The session running in the window, if any.
    static MenuTracker* ActiveIn(const BWindow* window);

    virtual ~MenuTracker();

    bool IsTracking() const { return !fEnded; }
    BMenu* Root() const { return fRoot; }

    // A mouse message (with "screen_where") from any window of the session.
    void HandlePointer(BMessage* message, uint32 what);
    // A key typed while tracking; answers whether it was taken.
    bool HandleKey(const char* bytes, uint32 modifiers);
    // Closes every menu without choosing anything.
    void Cancel();
    // The root menu is being deleted (home thread).
    void RootGone(BMenu* menu);

    virtual void MessageReceived(BMessage* message);

private:
    struct Level {
        BMenu* menu = NULL;
        MenuWindow* window = NULL;
        BMessenger messenger;
        std::shared_ptr<MenuSnapshot> snapshot;
        int32 selected = -1;
        uint32 serial = 0;
        // The window's id at the display server, for the pointer grab.
        int32 token = 0;
        bool shown = false;
        bool selectFirst = false;
    };

    // What lies under a screen point.
    struct Hit {
        int32 level = -1;
        int32 index = -1;
        bool enabled = false;
        bool separator = false;
        BMenu* submenu = NULL;
        BMenuItem* item = NULL;
        BRect frame;
        // -1 or 1 on the scroll arrow above or below a menu (no item then).
        int32 arrow = 0;
    };

    enum mode { kDragging, kSticky };

    MenuTracker(BMenu* root, BWindow* rootWindow);

    bool _IsBar() const { return fRootWindow != NULL; }
    Hit _HitTest(BPoint screenPoint);
    bool _Entry(int32 level, int32 index, Hit* hit);
    int32 _CountItems(int32 level);
    int32 _LevelLayout(int32 level);
    int32 _LevelBySerial(uint32 serial) const;

    void _Hover(const Hit& hit);
    // Starts or stops the scrolling of the menu whose arrow the pointer is on.
    void _AutoScroll(const Hit& hit);
    void _PointerOutside();
    void _SetSelected(int32 level, int32 index, bool reveal);
    void _OpenSubmenu(int32 level, int32 index, bool selectFirst);
    void _OpenLevel(BMenu* menu, BRect superitemFrame, bool hasSuperitem, bool selectFirst);
    void _CloseLevels(int32 from, bool alreadyClosed = false);
    void _UpdateGrab();
    int32 _NextSelectable(int32 level, int32 from, int32 direction);
    void _MoveSelection(int32 level, int32 direction, bool open);
    bool _HandleArrow(char key);
    bool _HandleTrigger(char key);
    void _ChooseSelected();

    void _BeginRoot(bool keyboard);
    void _ReleaseRoot();
    void _End(int32 level, int32 index);
    void _Finish(BMenuItem* chosen);

    BMenu* fRoot;
    BWindow* fRootWindow;
    std::vector<Level> fLevels;
    uint32 fNextSerial;
    mode fMode;
    bool fKeyboard;
    bool fEnded;
    bool fFinished;
    bool fRootReleased;
    bool fRootGone;
    bool fDeliver;
    bool fKeepOpen;
    bool fHasClickRect;
    BRect fClickRect;
    BPoint fStartPoint;
    bigtime_t fStartTime;
    uint32 fPendingSerial;
    // The level scrolling from an arrow (its serial, 0 for none), and which way.
    uint32 fScrollSerial;
    int32 fScrollDirection;

    BView* fPreviousFocus;
    BMessageFilter* fFilter;
    std::shared_ptr<MenuTrackingResult> fResult;
    // A pop-up item chosen in the pop-up itself, invoked as its window closes.
    BMenuItem* fChosenItem;
    int32 fChosenIndex;
    // Nesting of the tracker's own handlers; it is deleted only outside them.
    int32 fBusy;
};

} // namespace BPrivate

#endif // _INTERFACE_MENU_TRACKER_H
