// Kit-private access to menus for their windows, the tracker and tests: the
// message codes they exchange, the look's measures and colours, and the calls
// that are not part of the Be surface.
#ifndef _INTERFACE_MENU_PRIVATE_H
#define _INTERFACE_MENU_PRIVATE_H

#include <Font.h>
#include <GraphicsDefs.h>
#include <Menu.h>
#include <Rect.h>

#include <memory>

class BMenuBar;
class BMenuItem;
class BPopUpMenu;
class BWindow;

namespace BPrivate {

class MenuTracker;
class MenuWindow;
struct MenuSnapshot;

enum {
    // To a root menu from its window's shortcut table: "key", "modifiers".
    kMessageMenuShortcut = '_MSC',
    // A pointer event a menu window passes on to the tracker; "be:what" holds
    // the event's own code.
    kMessageTrackerPointer = '_MTP',
    // A key a menu window passes on to the tracker: "bytes", "modifiers".
    kMessageTrackerKey = '_MTK',
    // From a menu window to the tracker: "serial" (int32) of the level.
    kMessageTrackerLevelShown = '_MTS',
    // "serial", and "item" (pointer) when an item was invoked on closing.
    kMessageTrackerLevelClosed = '_MTC',
    kMessageTrackerDispose = '_MTD',
    // From the tracker to a menu window.
    kMessageMenuWindowAttach = '_MWA',
    // "index", "reveal" (bool).
    kMessageMenuWindowSelect = '_MWS',
    // "index" and "item" of the item to invoke once closed, if any.
    kMessageMenuWindowClose = '_MWC',
    kMessageMenuWindowStep = '_MWD',
    // The menu changed from another thread: draw and publish it again.
    kMessageMenuWindowRefresh = '_MWR',
    // "delta" (float): scroll a menu taller than the screen.
    kMessageMenuWindowScroll = '_MWW',
    // "direction" (int32): -1 scrolls up, 1 down, again and again while the
    // pointer rests on a scroll arrow; 0 stops.
    kMessageMenuWindowAutoScroll = '_MWU',
};

// The look: space around an item's content, by kind of menu.
extern const BRect kColumnItemMargins;
extern const BRect kRowItemMargins;
extern const BRect kBarItemMargins;
// Room for the Command symbol in front of a shortcut's key.
const float kShortcutSymbolWidth = 11.0f;
const float kShortcutGap = 12.0f;
const float kSeparatorHeight = 4.0f;
// How far a click may move and still open a menu that stays open.
const float kClickSlop = 4.0f;

// Drawn in front of a shortcut's key for the other modifiers.
extern const char* const kShiftSymbol;
extern const char* const kOptionSymbol;
extern const char* const kControlSymbol;

rgb_color menu_background_color();
rgb_color menu_selected_background_color();
rgb_color menu_text_color(bool enabled);

class MenuPrivate {
public:
    explicit MenuPrivate(BMenu* menu) : fMenu(menu) {}

    BMenu::Private* Data() const;

    // Layout, selection and drawing state (the menu's window locked).
    void Layout();
    BRect ItemFrame(int32 index);
    int32 ItemIndexAt(BPoint where);
    void Select(int32 index, bool reveal);
    int32 Selected() const;
    void SetShowTriggers(bool show);
    bool ShowTriggers() const;
    BPoint ScreenLocation();

    // Dynamic items.
    bool IsFilling() const;
    bool DynamicStep();
    void AbortDynamic();

    // Menu windows claim a menu before adding it and let it go once removed,
    // so a menu is never in two windows. A menu deleted in the meantime (the
    // tracker only knows it from a snapshot) cannot be claimed.
    bool Claim(MenuWindow* window, bool* gone);
    void Release(MenuWindow* window);
    MenuWindow* ClaimedBy() const;
    // Takes a menu and its submenus out of the menu windows they are shown in,
    // hooks and all, before they are deleted (any thread).
    void LeaveMenuWindow();
    void SetSnapshot(std::shared_ptr<MenuSnapshot> snapshot);
    // Brings the snapshot up to date (the menu's window locked).
    void Publish();
    void SetSuperitemFrame(BRect screenFrame);
    void SetLocation(BPoint screenPoint);

    MenuTracker* Tracker() const;
    void SetTracker(MenuTracker* tracker);

    // The enabled item whose shortcut this is, in this menu or below.
    BMenuItem* ItemForShortcut(uint32 key, uint32 modifiers);

    // Every menu is known from its construction to its destruction; the latter
    // answers the window that had claimed it then, if any.
    static void Register(BMenu* menu);
    static MenuWindow* Unregister(BMenu* menu);

    static void StartMenuBar(BMenuBar* bar, int32 index, bool sticky, bool showMenu, bool keyboard);
    static bool IsSeparator(const BMenuItem* item);
    static bool IsItemSelected(const BMenuItem* item);
    static int32 TriggerIndex(const BMenuItem* item);

private:
    BMenu* fMenu;
};

// Changing a menu that is shown in a menu window from another thread (as a
// program written for tracking threads does) takes that window's lock.
class MenuWindowLocker {
public:
    explicit MenuWindowLocker(const BMenu* menu);
    ~MenuWindowLocker();

private:
    BWindow* fWindow;
};

// The text of a key for a shortcut or a trigger, compared case-insensitively.
uint32 menu_key_of(uint32 key);
// How wide the item's shortcut is drawn with the font: symbols and key.
float shortcut_width(const BMenuItem* item, const BFont& font);
// Every pointer event goes to the window with this server token while it
// holds the grab.
void menu_grab_pointer(int32 token);
void menu_ungrab_pointer(int32 token);
// Registers the menu classes for instantiate_object().
void register_menu_archivables();

} // namespace BPrivate

#endif // _INTERFACE_MENU_PRIVATE_H
