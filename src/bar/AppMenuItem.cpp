#include "AppMenuItem.h"

#include "Globals.h"
#include "Settings.h"

#include <Application.h>
#include <Bitmap.h>
#include <Font.h>
#include <Menu.h>
#include <NodeInfo.h>
#include <Roster.h>
#include <String.h>
#include <Window.h>

#include <math.h>

namespace {

// Across the bar's running direction the handle is this thin.
const float kHandleThickness = 15;

// The content of one bar cell, as the layer bar sizes its items.
void bar_cell_content(float* width, float* height) {
    int32 which = gr_settings != NULL ? gr_settings->which : B_MINI_ICON;
    bool label = gr_settings != NULL ? (gr_settings->flags & kDrawLabelFlag) != 0 : true;
    if (which == B_LARGE_ICON) {
        *width = label ? 53 : 33;
        *height = label ? 45 : 33;
    } else {
        *width = label ? 96 : 15;
        *height = 15;
    }
}

bool is_row_bar() {
    // The bar's own default direction (1) runs in a column.
    return gr_settings != NULL && gr_settings->direction >= 2;
}

} // namespace

AppMenuItem::AppMenuItem()
    : BMenuItem(new BMenu(gr_app_name, B_ITEMS_IN_COLUMN)), fIcon(NULL), fIconLooked(true) {
    app_info info;
    if (be_app == NULL || be_app->GetAppInfo(&info) != B_OK)
        return;
    fAppFile = info.ref;
    fIconLooked = false;
}

AppMenuItem::~AppMenuItem() {
    delete fIcon;
}

bool AppMenuItem::IsSelected2() const {
    return IsSelected();
}

const BBitmap* AppMenuItem::Icon() const {
    // The icon is found when it is first wanted, which is the first draw: finding
    // it guesses the program file's type and searches the icon theme, and the bar
    // maps its window sooner without that.
    if (fIconLooked)
        return fIcon;
    fIconLooked = true;
    fIcon = new BBitmap(BRect(0, 0, 15, 15), B_CMAP8);
    if (fIcon->InitCheck() != B_OK ||
        BNodeInfo::GetTrackerIcon(&fAppFile, fIcon, B_MINI_ICON) != B_OK) {
        delete fIcon;
        fIcon = NULL;
    }
    return fIcon;
}

void AppMenuItem::GetContentSize(float* width, float* height) {
    float contentWidth;
    float contentHeight;
    bar_cell_content(&contentWidth, &contentHeight);
    if (is_row_bar())
        contentWidth = kHandleThickness;
    else
        contentHeight = kHandleThickness;
    if (width != NULL)
        *width = contentWidth;
    if (height != NULL)
        *height = contentHeight;
}

void AppMenuItem::DrawContent() {
    BMenu* menu = Menu();
    if (menu == NULL)
        return;
    BRect frame = Frame();

    if (const BBitmap* icon = Icon()) {
        menu->SetDrawingMode(B_OP_OVER);
        menu->DrawBitmap(icon, BPoint(ceilf(frame.left + (frame.Width() - 16) / 2),
                                      ceilf(frame.top + (frame.Height() - 16) / 2)));
        menu->SetDrawingMode(B_OP_COPY);
    } else {
        BFont savedFont;
        menu->GetFont(&savedFont);
        BFont font(be_plain_font);
        BString label(Label() != NULL ? Label() : "");
        float size = font.Size();
        if (is_row_bar()) {
            font.TruncateString(&label, B_TRUNCATE_END, frame.Height() - 4);
            font.SetRotation(90);
            menu->SetFont(&font);
            float width = font.StringWidth(label.String());
            menu->DrawString(label.String(), BPoint(frame.left + (frame.Width() + size) / 2,
                                                    frame.top + (frame.Height() + width) / 2));
        } else {
            font.TruncateString(&label, B_TRUNCATE_END, frame.Width() - 4);
            menu->SetFont(&font);
            float width = font.StringWidth(label.String());
            menu->DrawString(label.String(), BPoint(frame.left + (frame.Width() - width) / 2,
                                                    frame.top + (frame.Height() + size) / 2));
        }
        menu->SetFont(&savedFont);
    }

    // The handle looks faded while the bar is inactive.
    BWindow* window = menu->Window();
    if (window != NULL && !window->IsActive()) {
        rgb_color high = menu->HighColor();
        menu->SetDrawingMode(B_OP_BLEND);
        menu->SetHighColor(menu->ViewColor());
        menu->FillRect(frame);
        menu->SetHighColor(high);
        menu->SetDrawingMode(B_OP_COPY);
    }
}
