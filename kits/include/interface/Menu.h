// BMenu: a list of items shown as a column, a row or a matrix. A menu with a
// superitem opens in a window of its own when the user chooses that item; a menu
// bar (BMenuBar) sits in an ordinary window and starts the tracking.
#ifndef _MENU_H
#define _MENU_H

#include <Font.h>
#include <InterfaceDefs.h>
#include <List.h>
#include <View.h>

class BMenu;
class BMenuBar;
class BMenuItem;
class BMessage;
class BMessenger;

namespace BPrivate {
class MenuPrivate;
class MenuTracker;
class MenuWindow;
} // namespace BPrivate

enum menu_layout { B_ITEMS_IN_ROW = 0, B_ITEMS_IN_COLUMN, B_ITEMS_IN_MATRIX };

struct menu_info {
    float font_size;
    font_family f_family;
    font_style f_style;
    rgb_color background_color;
    int32 separator;
    bool click_to_open;
    bool triggers_always_shown;
};

status_t set_menu_info(menu_info* info);
status_t get_menu_info(menu_info* info);

class BMenu : public BView {
public:
    BMenu(const char* name, menu_layout layout = B_ITEMS_IN_COLUMN);
    // A matrix menu of that size; items are placed with AddItem(item, frame).
    BMenu(const char* name, float width, float height);
    // Deletes the items (and their submenus).
    virtual ~BMenu();

    BMenu(BMessage* archive);
    static BArchivable* Instantiate(BMessage* archive);
    virtual status_t Archive(BMessage* archive, bool deep = true) const;

    virtual void AttachedToWindow();
    virtual void DetachedFromWindow();
    virtual void AllAttached();
    virtual void AllDetached();

    // The menu takes ownership of the items (and of a menu, which becomes the
    // submenu of a new item). False when the item already belongs to a menu or
    // the index is out of range; the caller keeps the item then.
    bool AddItem(BMenuItem* item);
    bool AddItem(BMenuItem* item, int32 index);
    bool AddItem(BMenuItem* item, BRect frame);
    bool AddItem(BMenu* menu);
    bool AddItem(BMenu* menu, int32 index);
    bool AddItem(BMenu* menu, BRect frame);
    bool AddList(BList* list, int32 index);
    bool AddSeparatorItem();
    // Removed items go back to the caller, who must delete them. Removing a
    // submenu deletes its item and gives the submenu back.
    bool RemoveItem(BMenuItem* item);
    BMenuItem* RemoveItem(int32 index);
    bool RemoveItems(int32 index, int32 count, bool deleteItems = false);
    bool RemoveItem(BMenu* menu);

    BMenuItem* ItemAt(int32 index) const;
    BMenu* SubmenuAt(int32 index) const;
    int32 CountItems() const;
    int32 IndexOf(BMenuItem* item) const;
    int32 IndexOf(BMenu* menu) const;
    // Searches this menu and its submenus.
    BMenuItem* FindItem(uint32 command) const;
    BMenuItem* FindItem(const char* name) const;

    virtual status_t SetTargetForItems(BHandler* target);
    virtual status_t SetTargetForItems(BMessenger messenger);
    virtual void SetEnabled(bool enabled);
    virtual void SetRadioMode(bool flag);
    virtual void SetTriggersEnabled(bool flag);
    virtual void SetMaxContentWidth(float maxWidth);

    // The superitem shows the label of the marked item; turns radio mode on.
    void SetLabelFromMarked(bool flag);
    bool IsLabelFromMarked();
    bool IsEnabled() const;
    bool IsRadioMode() const;
    bool AreTriggersEnabled() const;
    bool IsRedrawAfterSticky() const;
    float MaxContentWidth() const;

    BMenuItem* FindMarked();

    BMenu* Supermenu() const;
    BMenuItem* Superitem() const;

    virtual void MessageReceived(BMessage* message);
    virtual void KeyDown(const char* bytes, int32 numBytes);
    virtual void Draw(BRect updateRect);
    virtual void GetPreferredSize(float* width, float* height);
    virtual void ResizeToPreferred();
    // The items are measured and placed again before they are next needed.
    virtual void InvalidateLayout(bool descendants = false);

    // The size the menu's window takes when the menu opens (and while dynamic
    // items arrive): the preferred size unless a subclass knows better.
    virtual void GetSize(float* width, float* height);

    enum add_state { B_INITIAL_ADD, B_PROCESSING, B_ABORT };

    // Called while the menu opens: once with B_INITIAL_ADD, then with
    // B_PROCESSING (one call per turn of the menu window's loop, the menu
    // drawing and tracking in between) as long as it returns true; B_ABORT
    // once when the menu closes before the last call said false.
    virtual bool AddDynamicItem(add_state state);

protected:
    BMenu(BRect frame, const char* name, uint32 resizeMask, uint32 flags, menu_layout layout,
          bool resizeToFit);

    // Where the menu's window opens, in screen coordinates: below an item of a
    // row, beside an item of a column.
    virtual BPoint ScreenLocation();

    // Space around each item's content.
    void SetItemMargins(float left, float top, float right, float bottom);
    void GetItemMargins(float* left, float* top, float* right, float* bottom) const;

    menu_layout Layout() const;

    // Opens the menu where ScreenLocation() says and tracks it until the user
    // chooses an item (returned, not invoked) or closes it (NULL).
    BMenuItem* Track(bool startOpened = false, BRect* specialRect = NULL);

private:
    friend class BMenuItem;
    friend class BMenuBar;
    friend class BPrivate::MenuPrivate;

    BMenu(const BMenu&);
    BMenu& operator=(const BMenu&);

    void _InitData(menu_layout layout, bool resizeToFit, BMessage* archive);
    bool _AddItem(BMenuItem* item, int32 index);
    BMenuItem* _RemoveItem(int32 index, bool deleteItem, bool notify);
    BMenu* _Root() const;
    BWindow* _InstallWindow() const;
    void _ItemChanged(BMenuItem* item, bool relayout);
    void _ItemAppended(int32 index);
    void _ItemsChanged();
    void _MarkChanged(BMenuItem* item);

    // Layout (MenuLayout.cpp)
    void _Layout();
    void _ComputeItemSize(BMenuItem* item, float* width, float* height);
    void _ComputeColumn(int32 from);
    void _ComputeRow(int32 from);
    void _ComputeMatrix(int32 from);
    void _UpdateTriggers(int32 from);
    void _ResizeToFit();
    BRect _ItemFrame(int32 index);
    int32 _ItemIndexAt(BPoint where);

    // Drawing (MenuDrawing.cpp)
    void _DrawItems(BRect updateRect);
    void _DrawFrame();
    void _Select(int32 index, bool reveal);
    void _InvalidateItem(int32 index);
    void _Refresh(bool relayout);

    // Dynamic items
    bool _StartDynamic();
    bool _DynamicStep();
    void _AbortDynamic();

    struct Private;
    Private* fPrivate;
};

#endif // _MENU_H
