// What a BMenu keeps behind its private pointer, and the snapshot of a menu that
// its window publishes for the tracker (interface kit only).
#ifndef _INTERFACE_MENU_DATA_H
#define _INTERFACE_MENU_DATA_H

#include <Menu.h>
#include <Rect.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace BPrivate {

class MenuTracker;
class MenuWindow;

// One item as the tracker sees it: enough to hit-test, to move the selection
// with the keyboard and to open a submenu, without touching the menu itself,
// which belongs to another window's thread.
struct MenuSnapshotItem {
    BRect frame;
    BMenuItem* item;
    BMenu* submenu;
    bool enabled;
    bool separator;
    char trigger;
};

// Written by the menu's window after every change, read by the tracker; both
// under the lock.
struct MenuSnapshot {
    std::mutex lock;
    // Screen coordinates of the menu's window, of the part of it the menu shows
    // in (all of it but the scroll arrows of a menu taller than the screen),
    // and the menu's scrolling origin.
    BRect windowFrame;
    BRect menuFrame;
    BPoint scroll;
    menu_layout layout = B_ITEMS_IN_COLUMN;
    bool shown = false;
    bool triggersEnabled = true;
    std::vector<MenuSnapshotItem> items;
};

} // namespace BPrivate

struct BMenu::Private {
    std::vector<BMenuItem*> items;
    menu_layout layout = B_ITEMS_IN_COLUMN;
    bool resizeToFit = false;
    BMenuItem* superitem = NULL;

    float marginLeft = 0.0f;
    float marginTop = 0.0f;
    float marginRight = 0.0f;
    float marginBottom = 0.0f;
    // 0: no limit.
    float maxContentWidth = 0.0f;

    bool enabled = true;
    bool radioMode = false;
    bool labelFromMarked = false;
    bool triggersEnabled = true;

    // Layout: items [0, laidOut) have their frames. A full layout is needed
    // when layoutValid is false; items appended at the end are placed alone.
    bool layoutValid = false;
    int32 laidOut = 0;
    // The widest frame of a column, the tallest of a row.
    float columnWidth = 0.0f;
    float rowHeight = 0.0f;
    float shortcutWidth = 0.0f;
    // The right and bottom edge of everything laid out.
    float extentRight = -1.0f;
    float extentBottom = -1.0f;
    bool hasSubmenus = false;
    // Letters already taken as triggers, for items appended one at a time.
    bool triggerUsed[128] = {};

    int32 selected = -1;
    bool showTriggers = false;

    // Dynamic items: between B_INITIAL_ADD and the last B_PROCESSING.
    bool filling = false;

    // The session this menu is the root of (bars and pop-ups).
    std::atomic<BPrivate::MenuTracker*> tracker{NULL};
    // The menu window the menu is shown in; claimed before it is added there.
    std::atomic<BPrivate::MenuWindow*> menuWindow{NULL};
    std::shared_ptr<BPrivate::MenuSnapshot> snapshot;
    int32 published = 0;
    std::atomic<bool> publishAll{true};

    // Where the superitem is on screen while the menu opens from it.
    bool hasSuperitemFrame = false;
    BRect superitemFrame;
    // A pop-up's Go() point.
    bool hasLocation = false;
    BPoint location;
};

#endif // _INTERFACE_MENU_DATA_H
