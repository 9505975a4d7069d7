// BMenuBar: a menu in an ordinary window that starts the tracking, by a press on
// one of its items or by Command-Escape when it is the window's key menu bar.
#include <MenuBar.h>

#include "interface/MenuData.h"
#include "interface/MenuPrivate.h"
#include "interface/MenuTracker.h"
#include "interface/WindowPrivate.h"

#include <MenuItem.h>
#include <Message.h>
#include <Window.h>

#include <math.h>
#include <mutex>

using namespace BPrivate;

namespace {

// Command-Escape in a window opens its key menu bar from the keyboard; pressed
// again while that bar tracks, it closes the menus.
bool start_key_menu_bar(BMenuBar* bar, BMessage* keyMessage) {
    if (bar == NULL || bar->Window() == NULL || bar->IsHidden())
        return false;
    MenuTracker* active = MenuTracker::ActiveIn(bar->Window());
    if (active != NULL && active->Root() == bar && active->IsTracking()) {
        active->Cancel();
        return true;
    }
    MenuPrivate::StartMenuBar(bar, 0, true, false, true);
    return true;
}

void install_key_menu_bar_starter() {
    static std::once_flag sOnce;
    std::call_once(sOnce, [] { WindowPrivate::SetKeyMenuBarStarter(start_key_menu_bar); });
}

} // namespace

BMenuBar::BMenuBar(BRect frame, const char* name, uint32 resizingMode, menu_layout layout,
                   bool resizeToFit)
    : BMenu(frame, name, resizingMode, B_WILL_DRAW | B_FRAME_EVENTS, layout, resizeToFit),
      fBorder(B_BORDER_FRAME) {
    install_key_menu_bar_starter();
    if (layout == B_ITEMS_IN_ROW) {
        SetItemMargins(kBarItemMargins.left, kBarItemMargins.top, kBarItemMargins.right,
                       kBarItemMargins.bottom);
    }
}

BMenuBar::BMenuBar(BMessage* archive) : BMenu(archive), fBorder(B_BORDER_FRAME) {
    install_key_menu_bar_starter();
    if (archive != NULL) {
        int32 border = archive->GetInt32("_border", B_BORDER_FRAME);
        if (border >= B_BORDER_FRAME && border <= B_BORDER_EACH_ITEM)
            fBorder = (menu_bar_border)border;
    }
    if (Layout() == B_ITEMS_IN_ROW) {
        SetItemMargins(kBarItemMargins.left, kBarItemMargins.top, kBarItemMargins.right,
                       kBarItemMargins.bottom);
    }
}

BMenuBar::~BMenuBar() {}

BArchivable* BMenuBar::Instantiate(BMessage* archive) {
    if (!validate_instantiation(archive, "BMenuBar"))
        return NULL;
    return new BMenuBar(archive);
}

status_t BMenuBar::Archive(BMessage* archive, bool deep) const {
    status_t status = BMenu::Archive(archive, deep);
    if (status == B_OK && fBorder != B_BORDER_FRAME)
        status = archive->AddInt32("_border", fBorder);
    return status;
}

void BMenuBar::SetBorder(menu_bar_border border) {
    if (fBorder == border)
        return;
    fBorder = border;
    if (Window() != NULL)
        Invalidate();
}

menu_bar_border BMenuBar::Border() const {
    return fBorder;
}

void BMenuBar::Draw(BRect updateRect) {
    _Layout();
    _DrawItems(updateRect);
    switch (fBorder) {
    case B_BORDER_FRAME:
        _DrawFrame();
        break;
    case B_BORDER_EACH_ITEM: {
        rgb_color background = LowColor();
        rgb_color light = tint_color(background, B_LIGHTEN_MAX_TINT);
        rgb_color dark = tint_color(background, B_DARKEN_2_TINT);
        for (int32 index = 0; index < CountItems(); index++) {
            BRect frame = ItemAt(index)->Frame();
            if (!frame.Intersects(updateRect))
                continue;
            BeginLineArray(4);
            AddLine(frame.LeftBottom(), frame.LeftTop(), light);
            AddLine(frame.LeftTop(), frame.RightTop(), light);
            AddLine(frame.RightTop(), frame.RightBottom(), dark);
            AddLine(frame.RightBottom(), frame.LeftBottom(), dark);
            EndLineArray();
        }
        break;
    }
    case B_BORDER_CONTENTS:
    default:
        break;
    }
}

void BMenuBar::AttachedToWindow() {
    // The bar attached last is the one Command-Escape opens.
    Window()->SetKeyMenuBar(this);
    BMenu::AttachedToWindow();
    if (fPrivate->resizeToFit)
        _ResizeToFit();
}

void BMenuBar::DetachedFromWindow() {
    if (MenuTracker* tracker = fPrivate->tracker.load())
        tracker->Cancel();
    BMenu::DetachedFromWindow();
}

void BMenuBar::AllAttached() {
    BMenu::AllAttached();
}

void BMenuBar::AllDetached() {
    BMenu::AllDetached();
}

void BMenuBar::MessageReceived(BMessage* message) {
    BMenu::MessageReceived(message);
}

void BMenuBar::MouseDown(BPoint where) {
    BWindow* window = Window();
    if (window == NULL)
        return;
    MenuTracker* active = fPrivate->tracker.load();
    if (active != NULL && active->IsTracking())
        return;
    int32 index = _ItemIndexAt(where);
    if (index < 0)
        return;
    // Called by hand without a button held, the menus open to stay.
    BMessage* current = window->CurrentMessage();
    uint32 buttons = 0;
    if (current != NULL && current->what == B_MOUSE_DOWN)
        buttons = (uint32)current->GetInt32("buttons", 0);
    else
        get_mouse(NULL, &buttons);
    StartMenuBar(index, buttons == 0, true, NULL);
}

void BMenuBar::MouseUp(BPoint where) {
    BMenu::MouseUp(where);
}

void BMenuBar::WindowActivated(bool state) {
    if (!state) {
        if (MenuTracker* tracker = fPrivate->tracker.load())
            tracker->Cancel();
    }
    BMenu::WindowActivated(state);
}

void BMenuBar::FrameMoved(BPoint newPosition) {
    BMenu::FrameMoved(newPosition);
}

void BMenuBar::FrameResized(float newWidth, float newHeight) {
    BMenu::FrameResized(newWidth, newHeight);
}

void BMenuBar::Show() {
    BView::Show();
}

void BMenuBar::Hide() {
    if (MenuTracker* tracker = fPrivate->tracker.load())
        tracker->Cancel();
    BView::Hide();
}

void BMenuBar::MakeFocus(bool state) {
    BMenu::MakeFocus(state);
}

void BMenuBar::ResizeToPreferred() {
    BMenu::ResizeToPreferred();
}

void BMenuBar::GetPreferredSize(float* width, float* height) {
    BMenu::GetPreferredSize(width, height);
    if (CountItems() > 0 || height == NULL)
        return;
    // An empty bar is as tall as a line of its font.
    font_height fontHeight;
    GetFontHeight(&fontHeight);
    float top;
    float bottom;
    GetItemMargins(NULL, &top, NULL, &bottom);
    *height = ceilf(fontHeight.ascent + fontHeight.descent + fontHeight.leading) + top + bottom;
}

void BMenuBar::StartMenuBar(int32 menuIndex, bool sticky, bool showMenu, BRect* specialRect) {
    MenuTracker::StartBar(this, menuIndex, sticky, showMenu, sticky && !showMenu, specialRect);
}
