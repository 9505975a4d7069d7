// The single item of the application menu strip: it draws the program's mini
// icon (or, without one, its name), faded while the bar is inactive, and its
// submenu is the application menu itself. Its content is a bar cell forced to
// 15 pixels across the bar's running direction, a thin handle.
#ifndef GLIMROW_APP_MENU_ITEM_H
#define GLIMROW_APP_MENU_ITEM_H

#include <Entry.h>
#include <MenuItem.h>

class BBitmap;

class AppMenuItem : public BMenuItem {
public:
    // Makes the submenu (titled with the application name, in a column); the
    // icon comes from the file of the application running at that moment, if any.
    AppMenuItem();
    virtual ~AppMenuItem();

    bool IsSelected2() const;
    // The 16 x 16 B_CMAP8 icon, or NULL; owned by the item.
    const BBitmap* Icon() const;

    virtual void GetContentSize(float* width, float* height);

protected:
    virtual void DrawContent();

private:
    entry_ref fAppFile;
    mutable BBitmap* fIcon;
    mutable bool fIconLooked;
};

#endif // GLIMROW_APP_MENU_ITEM_H
