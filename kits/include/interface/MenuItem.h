// BMenuItem: one entry of a menu. It has a label, a message sent when the user
// chooses it (through BInvoker), an optional keyboard shortcut and an optional
// submenu, which opens when the item is chosen instead.
#ifndef _MENU_ITEM_H
#define _MENU_ITEM_H

#include <Archivable.h>
#include <InterfaceDefs.h>
#include <Invoker.h>
#include <Menu.h>

class BMessage;

namespace BPrivate {
class MenuPrivate;
}

class BMenuItem : public BArchivable, public BInvoker {
public:
    // The item takes ownership of the message. The shortcut is the character
    // typed with Command (and the given modifiers) to choose the item.
    BMenuItem(const char* label, BMessage* message, char shortcut = 0, uint32 modifiers = 0);
    // The item takes ownership of the submenu and is labelled with its name.
    BMenuItem(BMenu* menu, BMessage* message = NULL);
    BMenuItem(BMessage* archive);
    // Deletes the submenu. An item still in a menu must be removed first.
    virtual ~BMenuItem();

    static BArchivable* Instantiate(BMessage* archive);
    virtual status_t Archive(BMessage* archive, bool deep = true) const;

    // The label is copied.
    virtual void SetLabel(const char* name);
    virtual void SetEnabled(bool enabled);
    virtual void SetMarked(bool mark);
    virtual void SetTrigger(char trigger);
    virtual void SetShortcut(char shortcut, uint32 modifiers);

    const char* Label() const;
    // False when the item, its menu or a menu above it is disabled.
    bool IsEnabled() const;
    bool IsMarked() const;
    char Trigger() const;
    char Shortcut(uint32* modifiers = NULL) const;

    BMenu* Submenu() const;
    // The menu the item is in, or NULL.
    BMenu* Menu() const;
    // In the menu's coordinates.
    BRect Frame() const;

    // Sends a copy of the message (or of the item's own) with "when", "source"
    // (this item) and "index" (its place in the menu) added. B_ERROR when the
    // item is disabled; in radio mode the item becomes the marked one.
    virtual status_t Invoke(BMessage* message = NULL);

protected:
    virtual void GetContentSize(float* width, float* height);
    // newLabel receives the label cut to fit maxWidth; it needs room for
    // strlen(Label()) + 3 bytes.
    virtual void TruncateLabel(float maxWidth, char* newLabel);
    // Draws the label at the menu's pen location, which Draw() sets to
    // ContentLocation().
    virtual void DrawContent();
    virtual void Draw();
    virtual void Highlight(bool on);
    bool IsSelected() const;
    BPoint ContentLocation() const;

private:
    friend class BMenu;
    friend class BPrivate::MenuPrivate;

    BMenuItem(const BMenuItem&);
    BMenuItem& operator=(const BMenuItem&);

    void _InitData();
    void _InitMenuData(BMenu* menu);
    void _SetSupermenu(BMenu* menu);
    void _Install(BWindow* window);
    void _Uninstall();
    void _DrawMark();
    void _DrawShortcut();
    void _DrawSubmenuSymbol();
    void _DrawTrigger(BPoint contentLocation, const char* label);

    char* fLabel;
    BMenu* fSubmenu;
    BMenu* fSuper;
    BWindow* fWindow;
    BRect fBounds;
    uint32 fModifiers;
    float fCachedWidth;
    int32 fTriggerIndex;
    char fUserTrigger;
    char fShortcutChar;
    bool fMark;
    bool fEnabled;
    bool fSelected;
    uint32 _reserved[4];
};

#include <SeparatorItem.h>

#endif // _MENU_ITEM_H
