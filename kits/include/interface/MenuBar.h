// BMenuBar: a menu that sits in an ordinary window, shows its items in a row
// (or a column) and opens their submenus when they are pressed, or from the
// keyboard with Command-Escape when it is the window's key menu bar.
#ifndef _MENU_BAR_H
#define _MENU_BAR_H

#include <InterfaceDefs.h>
#include <Menu.h>

enum menu_bar_border { B_BORDER_FRAME, B_BORDER_CONTENTS, B_BORDER_EACH_ITEM };

class BMenuBar : public BMenu {
public:
    // With resizeToFit the bar takes the height of its items (and, in a column,
    // their width) whenever they change.
    BMenuBar(BRect frame, const char* name,
             uint32 resizingMode = B_FOLLOW_LEFT_RIGHT | B_FOLLOW_TOP,
             menu_layout layout = B_ITEMS_IN_ROW, bool resizeToFit = true);
    BMenuBar(BMessage* archive);
    virtual ~BMenuBar();

    static BArchivable* Instantiate(BMessage* archive);
    virtual status_t Archive(BMessage* archive, bool deep = true) const;

    virtual void SetBorder(menu_bar_border border);
    menu_bar_border Border() const;

    virtual void Draw(BRect updateRect);
    // Becomes the window's key menu bar and installs the items' shortcuts.
    virtual void AttachedToWindow();
    virtual void DetachedFromWindow();
    virtual void AllAttached();
    virtual void AllDetached();
    virtual void MessageReceived(BMessage* message);
    // Opens the submenu of the item under the point and tracks the pointer;
    // subclasses call it to open their menus.
    virtual void MouseDown(BPoint where);
    virtual void MouseUp(BPoint where);
    virtual void WindowActivated(bool state);
    virtual void FrameMoved(BPoint newPosition);
    virtual void FrameResized(float newWidth, float newHeight);
    virtual void Show();
    virtual void Hide();
    virtual void MakeFocus(bool state = true);
    virtual void ResizeToPreferred();
    virtual void GetPreferredSize(float* width, float* height);

private:
    friend class BPrivate::MenuPrivate;

    BMenuBar(const BMenuBar&);
    BMenuBar& operator=(const BMenuBar&);

    // Starts tracking with the item at menuIndex selected: sticky (the menus
    // stay open without a button held), with its submenu shown or not. While
    // the pointer is released in specialRect the menus stay open.
    void StartMenuBar(int32 menuIndex, bool sticky = true, bool showMenu = false,
                      BRect* specialRect = NULL);

    menu_bar_border fBorder;
    uint32 _reserved[4];
};

#endif // _MENU_BAR_H
