// BPopUpMenu: a menu opened at a point of the screen by Go(), typically for a
// context click, which tracks it and answers the item chosen.
#ifndef _POP_UP_MENU_H
#define _POP_UP_MENU_H

#include <Menu.h>

class BPopUpMenu : public BMenu {
public:
    BPopUpMenu(const char* name, bool radioMode = true, bool labelFromMarked = true,
               menu_layout layout = B_ITEMS_IN_COLUMN);
    BPopUpMenu(BMessage* archive);
    virtual ~BPopUpMenu();

    static BArchivable* Instantiate(BMessage* archive);
    virtual status_t Archive(BMessage* archive, bool deep = true) const;

    // Opens the menu with its left-top at where (screen coordinates) and tracks
    // it. Answers the item chosen, or NULL; with deliversMessage the item is
    // also invoked. With openAnyway the menu stays open when the button is
    // released over no item; releasing inside clickToOpen keeps it open too.
    // async returns NULL at once and tracks on its own. A window thread that
    // waits keeps its window drawing.
    BMenuItem* Go(BPoint where, bool deliversMessage = false, bool openAnyway = false,
                  bool async = false);
    BMenuItem* Go(BPoint where, bool deliversMessage, bool openAnyway, BRect clickToOpen,
                  bool async = false);

    // An asynchronous pop-up deletes itself once it closes.
    void SetAsyncAutoDestruct(bool state);
    bool AsyncAutoDestruct() const;

protected:
    virtual BPoint ScreenLocation();

private:
    friend class BPrivate::MenuPrivate;

    BPopUpMenu(const BPopUpMenu&);
    BPopUpMenu& operator=(const BPopUpMenu&);

    BMenuItem* _Go(BPoint where, bool deliversMessage, bool openAnyway, BRect* clickToOpen,
                   bool async);

    BPoint fWhere;
    bool fAutoDestruct;
    uint32 _reserved[4];
};

#endif // _POP_UP_MENU_H
