#include "HotKeyWindow.h"

#include "Glimrow.h"
#include "KeyView.h"
#include "Settings.h"

#include <AppDefs.h>
#include <Button.h>
#include <InterfaceDefs.h>
#include <Message.h>
#include <Node.h>
#include <Screen.h>
#include <StringView.h>
#include <TypeConstants.h>

#include <stdio.h>
#include <string.h>

namespace {

const BRect kWindowFrame(0, 0, 240, 78);
const float kInset = 5;
const float kKeyViewOffset = 19;
const float kButtonWidth = 60;
const float kButtonSpacing = 65;

} // namespace

filter_result key_filter(BMessage* message, BHandler** target, BMessageFilter* filter) {
    int32 modifiers = message->GetInt32("modifiers", 0);
    if (message->ReplaceInt32("modifiers", 0) != B_OK)
        message->AddInt32("modifiers", 0);
    message->RemoveName("modifiers2");
    message->AddInt32("modifiers2", modifiers);
    return B_DISPATCH_MESSAGE;
}

bool hot_key_window_done(const bool* done) {
    return __atomic_load_n(done, __ATOMIC_ACQUIRE);
}

HotKeyWindow::HotKeyWindow(uint8** hotKey, bool* done)
    : BWindow(kWindowFrame, "Press Hot Key", B_MODAL_WINDOW_LOOK, B_MODAL_APP_WINDOW_FEEL,
              B_NOT_RESIZABLE | B_NOT_CLOSABLE | B_NOT_ZOOMABLE | B_NOT_MINIMIZABLE,
              B_CURRENT_WORKSPACE),
      fHotKey(hotKey), fDone(done), fKeyView(NULL), fUnsetButton(NULL) {
    BRect screen = BScreen(this).Frame();
    BRect frame = Frame();
    MoveTo((screen.Width() - frame.Width()) / 2, (screen.Height() - frame.Height()) / 3);

    BView* bottom = new BView(Bounds(), "bottom", B_FOLLOW_ALL_SIDES, B_WILL_DRAW);
    bottom->SetViewColor(ui_color(B_PANEL_BACKGROUND_COLOR));
    AddChild(bottom);

    BRect rect = Bounds().InsetByCopy(kInset, kInset);
    BStringView* text = new BStringView(rect, "msg_view", "Press Hot Key !!");
    text->SetAlignment(B_ALIGN_CENTER);
    float width;
    float height;
    text->GetPreferredSize(&width, &height);
    text->ResizeTo(rect.Width(), height);
    bottom->AddChild(text);

    BRect keyFrame = text->Frame().OffsetByCopy(0, kKeyViewOffset);
    keyFrame.bottom = keyFrame.top + height + 4;
    fKeyView = new KeyView(keyFrame, fHotKey);
    bottom->AddChild(fKeyView);

    BRect setFrame(rect.right - kButtonWidth, keyFrame.bottom + kInset, rect.right,
                   keyFrame.bottom + kInset + 20);
    BRect unsetFrame = setFrame.OffsetByCopy(-kButtonSpacing, 0);
    fUnsetButton = new BButton(unsetFrame, "unset", "Unset", new BMessage(B_QUIT_REQUESTED));
    bottom->AddChild(fUnsetButton);
    BButton* setButton = new BButton(setFrame, "set", "Set", new BMessage(B_QUIT_REQUESTED));
    bottom->AddChild(setButton);

    // Keys go to the key view, whatever the pointer does.
    fKeyView->MakeFocus(true);
    AddCommonFilter(new BMessageFilter(B_KEY_DOWN, key_filter));
}

HotKeyWindow::~HotKeyWindow() {
    if (fDone != NULL)
        __atomic_store_n(fDone, true, __ATOMIC_RELEASE);
}

KeyView* HotKeyWindow::Key() const {
    return fKeyView;
}

BButton* HotKeyWindow::UnsetButton() const {
    return fUnsetButton;
}

bool HotKeyWindow::QuitRequested() {
    BNode node;
    status_t status = get_settings_node(&node);
    void* source = NULL;
    if (BMessage* message = CurrentMessage())
        message->FindPointer("source", &source);

    if (source != fUnsetButton && strcmp(fKeyView->Text(), kNoHotKeyText) != 0 &&
        *fHotKey != NULL) {
        // A failed write is not checked: the message is printed all the same.
        if (status == B_OK)
            node.WriteAttr("hotKey", B_UINT8_TYPE, 0, *fHotKey, kHotKeyLength);
        printf("Your Hot Key was Set...\n");
        fflush(stdout);
        return true;
    }

    uint8* record = *fHotKey;
    *fHotKey = NULL;
    delete[] record;
    if (status == B_OK)
        node.RemoveAttr("hotKey");
    printf("Your Hot Key was Cleared...\n");
    fflush(stdout);
    return true;
}
