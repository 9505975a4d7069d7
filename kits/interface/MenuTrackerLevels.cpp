// MenuTracker: what lies under the pointer, moving over items, and the levels
// of open menus: selecting in them, opening and closing menu windows, and
// keeping the pointer grabbed by the deepest one that shows.
#include "interface/MenuTracker.h"

#include "interface/MenuData.h"
#include "interface/MenuPrivate.h"
#include "interface/MenuWindow.h"
#include "interface/WindowPrivate.h"

#include <Menu.h>
#include <MenuItem.h>
#include <Message.h>
#include <Window.h>

namespace BPrivate {

// #pragma mark - Under the pointer

MenuTracker::Hit MenuTracker::_HitTest(BPoint where) {
    Hit hit;
    for (int32 level = (int32)fLevels.size() - 1; level >= 0; level--) {
        Level& entry = fLevels[level];
        if (entry.window == NULL) {
            if (fRootGone || fRoot->Window() == NULL || fRoot->IsHidden())
                continue;
            BRect bounds = fRoot->ConvertToScreen(fRoot->Bounds());
            if (!bounds.Contains(where))
                continue;
            hit.level = level;
            int32 index = MenuPrivate(fRoot).ItemIndexAt(fRoot->ConvertFromScreen(where));
            if (index >= 0)
                _Entry(level, index, &hit);
            return hit;
        }
        if (!entry.shown)
            continue;
        MenuSnapshot& snapshot = *entry.snapshot;
        std::lock_guard<std::mutex> lock(snapshot.lock);
        if (!snapshot.shown || !snapshot.windowFrame.Contains(where))
            continue;
        hit.level = level;
        if (!snapshot.menuFrame.Contains(where)) {
            // On the scroll arrow above or below the menu.
            hit.arrow = where.y < snapshot.menuFrame.top ? -1 : 1;
            return hit;
        }
        BPoint local = where - snapshot.menuFrame.LeftTop() + snapshot.scroll;
        const std::vector<MenuSnapshotItem>& items = snapshot.items;
        int32 found = -1;
        if (snapshot.layout == B_ITEMS_IN_MATRIX) {
            for (int32 index = (int32)items.size() - 1; index >= 0 && found < 0; index--) {
                if (items[index].frame.Contains(local))
                    found = index;
            }
        } else if (!items.empty()) {
            // Sorted along the axis: a binary search, then the item's extent.
            bool column = snapshot.layout == B_ITEMS_IN_COLUMN;
            float position = column ? local.y : local.x;
            int32 low = 0;
            int32 high = (int32)items.size() - 1;
            while (low < high) {
                int32 middle = (low + high + 1) / 2;
                float start = column ? items[middle].frame.top : items[middle].frame.left;
                if (start <= position)
                    low = middle;
                else
                    high = middle - 1;
            }
            const BRect& frame = items[low].frame;
            float end = column ? frame.bottom : frame.right;
            float start = column ? frame.top : frame.left;
            if (position >= start && position <= end)
                found = low;
        }
        if (found >= 0) {
            const MenuSnapshotItem& item = items[found];
            hit.index = found;
            hit.item = item.item;
            hit.submenu = item.submenu;
            hit.enabled = item.enabled;
            hit.separator = item.separator;
        }
        return hit;
    }
    return hit;
}

bool MenuTracker::_Entry(int32 level, int32 index, Hit* hit) {
    if (level < 0 || level >= (int32)fLevels.size())
        return false;
    Level& entry = fLevels[level];
    hit->level = level;
    hit->index = index;
    if (entry.window == NULL) {
        BMenuItem* item = fRootGone ? NULL : fRoot->ItemAt(index);
        if (item == NULL)
            return false;
        hit->item = item;
        hit->enabled = item->IsEnabled();
        hit->separator = MenuPrivate::IsSeparator(item);
        hit->submenu = item->Submenu();
        hit->frame = fRoot->ConvertToScreen(item->Frame());
        return true;
    }
    MenuSnapshot& snapshot = *entry.snapshot;
    std::lock_guard<std::mutex> lock(snapshot.lock);
    if (index < 0 || index >= (int32)snapshot.items.size())
        return false;
    const MenuSnapshotItem& item = snapshot.items[index];
    hit->item = item.item;
    hit->enabled = item.enabled;
    hit->separator = item.separator;
    hit->submenu = item.submenu;
    BRect frame = item.frame;
    frame.OffsetBy(snapshot.menuFrame.LeftTop() - snapshot.scroll);
    // Items of a column span the window, those of a row its height.
    if (snapshot.layout == B_ITEMS_IN_COLUMN) {
        frame.left = snapshot.windowFrame.left;
        frame.right = snapshot.windowFrame.right;
    } else if (snapshot.layout == B_ITEMS_IN_ROW) {
        frame.top = snapshot.windowFrame.top;
        frame.bottom = snapshot.windowFrame.bottom;
    }
    hit->frame = frame;
    return true;
}

int32 MenuTracker::_CountItems(int32 level) {
    Level& entry = fLevels[level];
    if (entry.window == NULL)
        return fRootGone ? 0 : fRoot->CountItems();
    std::lock_guard<std::mutex> lock(entry.snapshot->lock);
    return (int32)entry.snapshot->items.size();
}

int32 MenuTracker::_LevelLayout(int32 level) {
    Level& entry = fLevels[level];
    if (entry.window == NULL)
        return fRootGone ? B_ITEMS_IN_ROW : MenuPrivate(fRoot).Data()->layout;
    std::lock_guard<std::mutex> lock(entry.snapshot->lock);
    return entry.snapshot->layout;
}

void MenuTracker::_Hover(const Hit& hit) {
    int32 level = hit.level;
    Level& entry = fLevels[level];
    if (hit.index < 0 || hit.separator) {
        // Over the frame of a menu or a separator; a bar keeps its item.
        if (entry.window == NULL)
            return;
        if (entry.selected >= 0) {
            _CloseLevels(level + 1);
            _SetSelected(level, -1, false);
        }
        return;
    }
    if (entry.selected == hit.index) {
        bool open = (int32)fLevels.size() > level + 1 && fLevels[level + 1].menu == hit.submenu;
        if (open) {
            _CloseLevels(level + 2);
            return;
        }
        _CloseLevels(level + 1);
        if (hit.submenu != NULL && hit.enabled)
            _OpenSubmenu(level, hit.index, false);
        return;
    }
    _CloseLevels(level + 1);
    _SetSelected(level, hit.index, false);
    if (hit.submenu != NULL && hit.enabled)
        _OpenSubmenu(level, hit.index, false);
}

void MenuTracker::_AutoScroll(const Hit& hit) {
    uint32 serial = 0;
    int32 direction = 0;
    if (hit.arrow != 0 && hit.level >= 0 && fLevels[hit.level].window != NULL) {
        serial = fLevels[hit.level].serial;
        direction = hit.arrow;
    }
    if (serial == fScrollSerial && direction == fScrollDirection)
        return;
    if (fScrollSerial != 0) {
        // Its window may have closed meanwhile; then there is nothing to stop.
        int32 previous = _LevelBySerial(fScrollSerial);
        if (previous >= 0 && fLevels[previous].window != NULL) {
            BMessage stop(kMessageMenuWindowAutoScroll);
            stop.AddInt32("direction", 0);
            fLevels[previous].messenger.SendMessage(&stop);
        }
    }
    fScrollSerial = serial;
    fScrollDirection = direction;
    if (serial != 0) {
        BMessage start(kMessageMenuWindowAutoScroll);
        start.AddInt32("direction", direction);
        fLevels[hit.level].messenger.SendMessage(&start);
    }
}

void MenuTracker::_PointerOutside() {
    // The deepest menu lets go of its item, so a release there chooses nothing.
    int32 deepest = (int32)fLevels.size() - 1;
    if (fLevels[deepest].window == NULL)
        return;
    if (fLevels[deepest].selected >= 0)
        _SetSelected(deepest, -1, false);
}

// #pragma mark - Levels

void MenuTracker::_SetSelected(int32 level, int32 index, bool reveal) {
    Level& entry = fLevels[level];
    entry.selected = index;
    if (entry.window == NULL) {
        if (!fRootGone)
            MenuPrivate(fRoot).Select(index, reveal);
        return;
    }
    BMessage select(kMessageMenuWindowSelect);
    select.AddInt32("index", index);
    select.AddBool("reveal", reveal);
    entry.messenger.SendMessage(&select);
}

void MenuTracker::_OpenSubmenu(int32 level, int32 index, bool selectFirst) {
    Hit entry;
    if (!_Entry(level, index, &entry) || entry.submenu == NULL || !entry.enabled)
        return;
    // A menu is never open twice (a submenu that contains its own parent).
    for (const Level& open : fLevels) {
        if (open.menu == entry.submenu)
            return;
    }
    _OpenLevel(entry.submenu, entry.frame, true, selectFirst);
}

void MenuTracker::_OpenLevel(BMenu* menu, BRect superitemFrame, bool hasSuperitem,
                             bool selectFirst) {
    Level level;
    level.menu = menu;
    level.serial = fNextSerial++;
    level.snapshot = std::make_shared<MenuSnapshot>();
    level.selectFirst = selectFirst;
    MenuWindow* window =
        new MenuWindow(menu, BMessenger(this), level.serial, level.snapshot, fKeyboard);
    level.window = window;
    level.messenger = BMessenger(window);
    level.token = WindowPrivate(window).ServerToken();
    fLevels.push_back(level);
    window->Run();
    BMessage attach(kMessageMenuWindowAttach);
    if (hasSuperitem)
        attach.AddRect("superitem", superitemFrame);
    window->PostMessage(&attach);
}

void MenuTracker::_CloseLevels(int32 from, bool alreadyClosed) {
    if (from < 1)
        from = 1;
    if (from >= (int32)fLevels.size())
        return;
    for (int32 level = (int32)fLevels.size() - 1; level >= from; level--) {
        if (alreadyClosed && level == from)
            continue;
        fLevels[level].messenger.SendMessage(kMessageMenuWindowClose);
    }
    fLevels.resize(from);
    if (fLevels[from - 1].selected >= 0 && alreadyClosed)
        _SetSelected(from - 1, -1, false);
    _UpdateGrab();
}

void MenuTracker::_UpdateGrab() {
    for (int32 level = (int32)fLevels.size() - 1; level >= 0; level--) {
        const Level& entry = fLevels[level];
        if (entry.token != 0 && entry.shown) {
            menu_grab_pointer(entry.token);
            return;
        }
    }
}

} // namespace BPrivate
