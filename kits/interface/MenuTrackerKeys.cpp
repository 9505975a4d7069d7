// MenuTracker: the keyboard. Keys come from the bar's KeyDown() while it tracks.
//
// The arrows along the deepest open menu move its selection (skipping
// separators and disabled items, wrapping around); the arrow across it opens
// the selected item's submenu or, at the end of the chain, moves to the next
// item of a row bar; the opposite arrow closes the menu or moves back along the
// bar. Return or Space chooses the deepest selected item (a bar item that has a
// message is invoked, one that has only a submenu opens it), a trigger letter
// chooses its item, and Escape closes everything.
#include "interface/MenuTracker.h"

#include "interface/MenuData.h"
#include "interface/MenuPrivate.h"

#include <InterfaceDefs.h>
#include <Menu.h>
#include <MenuItem.h>
#include <Message.h>

#include <ctype.h>
#include <string.h>

namespace BPrivate {

bool MenuTracker::HandleKey(const char* bytes, uint32 modifiers) {
    if (fEnded || bytes == NULL || bytes[0] == '\0')
        return false;
    if ((modifiers & (B_COMMAND_KEY | B_CONTROL_KEY | B_OPTION_KEY)) != 0)
        return false;
    fBusy++;
    bool taken = true;
    char key = bytes[0];
    switch (key) {
    case B_ESCAPE:
        _End(-1, -1);
        break;
    case B_RETURN:
    case B_SPACE:
        _ChooseSelected();
        break;
    case B_UP_ARROW:
    case B_DOWN_ARROW:
    case B_LEFT_ARROW:
    case B_RIGHT_ARROW:
        if (!fKeyboard) {
            fKeyboard = true;
            if (_IsBar() && !fRootGone)
                MenuPrivate(fRoot).SetShowTriggers(true);
        }
        _HandleArrow(key);
        break;
    default:
        _HandleTrigger(key);
        break;
    }
    fBusy--;
    return taken;
}

void MenuTracker::_ChooseSelected() {
    int32 level = (int32)fLevels.size() - 1;
    while (level >= 0 && fLevels[level].selected < 0)
        level--;
    if (level < 0) {
        _End(-1, -1);
        return;
    }
    Hit entry;
    if (!_Entry(level, fLevels[level].selected, &entry)) {
        _End(-1, -1);
        return;
    }
    bool barItem = fLevels[level].window == NULL;
    bool opens = entry.submenu != NULL && !(barItem && entry.item->Message() != NULL);
    if (opens) {
        if (!entry.enabled)
            return;
        bool open = (int32)fLevels.size() > level + 1 && fLevels[level + 1].menu == entry.submenu;
        if (!open) {
            _CloseLevels(level + 1);
            _OpenSubmenu(level, entry.index, true);
        } else if (!fLevels[level + 1].shown) {
            fLevels[level + 1].selectFirst = true;
        } else {
            int32 first = _NextSelectable(level + 1, -1, 1);
            if (first >= 0)
                _SetSelected(level + 1, first, true);
        }
        return;
    }
    if (!entry.enabled || entry.separator)
        return;
    _End(level, entry.index);
}

bool MenuTracker::_HandleArrow(char key) {
    int32 deepest = (int32)fLevels.size() - 1;
    bool row = _LevelLayout(deepest) == B_ITEMS_IN_ROW;
    char next = row ? B_RIGHT_ARROW : B_DOWN_ARROW;
    char previous = row ? B_LEFT_ARROW : B_UP_ARROW;
    char open = row ? B_DOWN_ARROW : B_RIGHT_ARROW;
    char close = row ? B_UP_ARROW : B_LEFT_ARROW;
    bool rootRow = _LevelLayout(0) == B_ITEMS_IN_ROW;
    char rootNext = rootRow ? B_RIGHT_ARROW : B_DOWN_ARROW;
    char rootPrevious = rootRow ? B_LEFT_ARROW : B_UP_ARROW;

    if (key == next || key == previous) {
        if (!fLevels[deepest].shown) {
            fLevels[deepest].selectFirst = true;
            return true;
        }
        _MoveSelection(deepest, key == next ? 1 : -1, false);
        return true;
    }
    if (key == open) {
        int32 selected = fLevels[deepest].selected;
        Hit entry;
        if (selected >= 0 && _Entry(deepest, selected, &entry) && entry.submenu != NULL &&
            entry.enabled) {
            _OpenSubmenu(deepest, selected, true);
            return true;
        }
        if (deepest >= 1 && _IsBar() && key == rootNext) {
            _CloseLevels(1);
            _MoveSelection(0, 1, true);
        }
        return true;
    }
    if (key == close) {
        if (deepest == 1 && _IsBar() && key == rootPrevious) {
            _CloseLevels(1);
            _MoveSelection(0, -1, true);
        } else if (deepest >= 1) {
            _CloseLevels(deepest);
        }
        return true;
    }
    return false;
}

bool MenuTracker::_HandleTrigger(char key) {
    unsigned char character = (unsigned char)key;
    if (character >= 128 || !isalnum(character))
        return false;
    int wanted = tolower(character);
    int32 deepest = (int32)fLevels.size() - 1;
    Level& level = fLevels[deepest];
    if (!level.shown)
        return false;
    int32 found = -1;
    if (level.window == NULL) {
        if (fRootGone || !fRoot->AreTriggersEnabled())
            return false;
        MenuPrivate(fRoot).Layout();
        for (int32 index = 0; index < fRoot->CountItems() && found < 0; index++) {
            BMenuItem* item = fRoot->ItemAt(index);
            int32 trigger = MenuPrivate::TriggerIndex(item);
            if (trigger >= 0 && tolower((unsigned char)item->Label()[trigger]) == wanted)
                found = index;
        }
    } else {
        std::lock_guard<std::mutex> lock(level.snapshot->lock);
        if (!level.snapshot->triggersEnabled)
            return false;
        const std::vector<MenuSnapshotItem>& items = level.snapshot->items;
        for (size_t index = 0; index < items.size() && found < 0; index++) {
            if (items[index].trigger == wanted)
                found = (int32)index;
        }
    }
    if (found < 0)
        return false;
    _SetSelected(deepest, found, true);
    Hit entry;
    if (!_Entry(deepest, found, &entry))
        return true;
    bool barItem = level.window == NULL;
    if (entry.submenu != NULL && !(barItem && entry.item->Message() != NULL)) {
        if (entry.enabled)
            _OpenSubmenu(deepest, found, true);
    } else if (entry.enabled && !entry.separator) {
        _End(deepest, found);
    }
    return true;
}

int32 MenuTracker::_NextSelectable(int32 level, int32 from, int32 direction) {
    int32 count = _CountItems(level);
    if (count <= 0)
        return -1;
    if (from < -1 || from >= count)
        from = -1;
    int32 index = from;
    for (int32 step = 0; step < count; step++) {
        if (index < 0)
            index = direction > 0 ? 0 : count - 1;
        else
            index = (index + direction + count) % count;
        Hit entry;
        if (_Entry(level, index, &entry) && entry.enabled && !entry.separator)
            return index;
    }
    return -1;
}

void MenuTracker::_MoveSelection(int32 level, int32 direction, bool open) {
    int32 next = _NextSelectable(level, fLevels[level].selected, direction);
    if (next < 0)
        return;
    bool hadOpen = (int32)fLevels.size() > level + 1;
    _CloseLevels(level + 1);
    _SetSelected(level, next, true);
    // Moving along a bar with a menu open opens the next item's menu.
    if ((hadOpen || open) && fLevels[level].window == NULL) {
        Hit entry;
        if (_Entry(level, next, &entry) && entry.submenu != NULL && entry.enabled)
            _OpenSubmenu(level, next, true);
    }
}

} // namespace BPrivate
