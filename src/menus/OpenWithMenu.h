// The applications that can open one file, listed while the menu opens and
// grouped as find_supporting_apps groups them, with a separator between groups.
// Choosing one sends the invoker's message with "applications" set to the
// application's signature and "refs" to the file.
#ifndef GLIMROW_OPEN_WITH_MENU_H
#define GLIMROW_OPEN_WITH_MENU_H

#include <Entry.h>
#include <Invoker.h>
#include <Menu.h>
#include <Message.h>

class OpenWithMenu : public BMenu, public BInvoker {
public:
    // Titled with the file's name and always a column, whatever layout says.
    // Takes ownership of the message.
    OpenWithMenu(const entry_ref* ref, BMessage* message, menu_layout layout);
    virtual ~OpenWithMenu();

    // B_INTERRUPTED while the menu is shown.
    status_t SetEntryRef(const entry_ref* ref);
    // Adds "applications" and "refs" = the file, then keeps the message.
    virtual status_t SetMessage(BMessage* message);
    const entry_ref* EntryRef() const;

    virtual void AttachedToWindow();
    virtual bool AddDynamicItem(add_state state);

private:
    void _RemoveAllItems();
    void _AddApplications();

    entry_ref fFile;
    BMessage fSupportingApps;
};

#endif // GLIMROW_OPEN_WITH_MENU_H
