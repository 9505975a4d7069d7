// BPopUpMenu: a menu opened at a screen point by Go() and tracked in a window of
// its own; the caller waits for the outcome unless it asked not to.
#include <PopUpMenu.h>

#include "interface/MenuPrivate.h"
#include "interface/MenuTracker.h"

#include <Message.h>

using namespace BPrivate;

BPopUpMenu::BPopUpMenu(const char* name, bool radioMode, bool labelFromMarked, menu_layout layout)
    : BMenu(name, layout), fWhere(0, 0), fAutoDestruct(false) {
    SetRadioMode(radioMode);
    if (labelFromMarked)
        SetLabelFromMarked(true);
}

BPopUpMenu::BPopUpMenu(BMessage* archive) : BMenu(archive), fWhere(0, 0), fAutoDestruct(false) {}

BPopUpMenu::~BPopUpMenu() {}

BArchivable* BPopUpMenu::Instantiate(BMessage* archive) {
    if (!validate_instantiation(archive, "BPopUpMenu"))
        return NULL;
    return new BPopUpMenu(archive);
}

status_t BPopUpMenu::Archive(BMessage* archive, bool deep) const {
    return BMenu::Archive(archive, deep);
}

BMenuItem* BPopUpMenu::Go(BPoint where, bool deliversMessage, bool openAnyway, bool async) {
    return _Go(where, deliversMessage, openAnyway, NULL, async);
}

BMenuItem* BPopUpMenu::Go(BPoint where, bool deliversMessage, bool openAnyway, BRect clickToOpen,
                          bool async) {
    return _Go(where, deliversMessage, openAnyway, &clickToOpen, async);
}

BMenuItem* BPopUpMenu::_Go(BPoint where, bool deliversMessage, bool openAnyway, BRect* clickToOpen,
                           bool async) {
    fWhere = where;
    return MenuTracker::TrackMenu(this, where, deliversMessage, openAnyway, clickToOpen, async);
}

void BPopUpMenu::SetAsyncAutoDestruct(bool state) {
    fAutoDestruct = state;
}

bool BPopUpMenu::AsyncAutoDestruct() const {
    return fAutoDestruct;
}

BPoint BPopUpMenu::ScreenLocation() {
    return fWhere;
}
