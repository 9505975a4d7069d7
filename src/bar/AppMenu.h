// The application's own strip of the bar: a one-item menu bar, pinned by the bar
// window into the screen corner, whose item (an AppMenuItem showing the
// program's mini icon) opens the application menu:
//
//   Switch Layer  >      one item per layer, the current one greyed
//   Switch Workspace >   only with the workspace command enabled
//   Hide Shelf / Show Shelf
//   ----
//   Preferences…         Command-R   (application)
//   Load Preferences     Command-L   (application)
//   ----
//   About Glimrow…                   (application)
//   Quit                 Command-Q   (application)
//
// It is also the window's key menu bar, and the handle by which the whole bar is
// dragged with the Option key held.
#ifndef GLIMROW_APP_MENU_H
#define GLIMROW_APP_MENU_H

#include <MenuBar.h>

class AppMenuItem;

class AppMenu : public BMenuBar {
public:
    AppMenu();
    virtual ~AppMenu();

    // Deletes the items of the application menu and builds them again from the
    // layer list, the workspace count and the settings.
    void BuildItems();
    // Brings the greyed current layer and workspace and the shelf item in line
    // with the live state; rebuilds first when the workspace command is on (so
    // the lists are always fresh) or when a stale workspace list remains.
    void Modify();
    // Hook function: the icon is fixed once it is made.
    void UpdateIcon();

    // What the menu is made of: the item on the bar, and the two submenus (the
    // workspace one NULL when the command is disabled). Owned by the menu tree.
    AppMenuItem* Item() const;
    BMenu* SwitchLayerMenu() const;
    BMenu* SwitchWorkspaceMenu() const;

    virtual void AttachedToWindow();
    virtual void ResizeToPreferred();
    virtual void MouseDown(BPoint point);
    virtual void MouseMoved(BPoint point, uint32 transit, const BMessage* dragMessage);
    virtual void Draw(BRect updateRect);
    virtual void MessageReceived(BMessage* message);
    virtual void WindowActivated(bool active);

private:
    void _DragWindow(BPoint point);

    BMenu* fLayerMenu;
    BMenu* fWorkspaceMenu;
};

#endif // GLIMROW_APP_MENU_H
