#include "KeyView.h"

#include "DrawingHelpers.h"
#include "Glimrow.h"

#include <Font.h>
#include <InterfaceDefs.h>
#include <Message.h>
#include <TypeConstants.h>
#include <Window.h>

#include <string.h>
#include <string>

const char* const kNoHotKeyText = "Don't Use";

namespace {

struct ModifierName {
    uint32 modifier;
    const char* name;
};

// In the order the description names them.
const ModifierName kModifierNames[] = {
    {B_SHIFT_KEY, "Shift"},
    {B_COMMAND_KEY, "Command"},
    {B_CONTROL_KEY, "Control"},
    {B_OPTION_KEY, "Option"},
};

char* copy_string(const char* text) {
    size_t length = strlen(text);
    char* copy = new char[length + 1];
    memcpy(copy, text, length + 1);
    return copy;
}

} // namespace

KeyView::KeyView(BRect frame, uint8** hotKey)
    : BView(frame, "key_view", B_FOLLOW_LEFT | B_FOLLOW_TOP, B_WILL_DRAW), fHotKey(hotKey),
      fText(copy_string(kNoHotKeyText)) {}

KeyView::~KeyView() {
    delete[] fText;
}

const char* KeyView::Text() const {
    return fText;
}

void KeyView::_SetText(const char* text) {
    char* copy = copy_string(text);
    delete[] fText;
    fText = copy;
}

void KeyView::KeyDown(const char* bytes, int32 numBytes) {
    BMessage* message = Window() != NULL ? Window()->CurrentMessage() : NULL;
    const void* states = NULL;
    ssize_t size = 0;
    int32 modifiers = 0;
    if (message == NULL || fHotKey == NULL ||
        message->FindData("states", B_UINT8_TYPE, &states, &size) != B_OK ||
        message->FindInt32("modifiers2", &modifiers) != B_OK || size < kHotKeyLength) {
        beep();
        return;
    }

    if (*fHotKey == NULL)
        *fHotKey = new uint8[kHotKeyLength];
    memcpy(*fHotKey, states, kHotKeyLength);

    std::string description;
    for (const ModifierName& entry : kModifierNames) {
        if (((uint32)modifiers & entry.modifier) == 0)
            continue;
        if (!description.empty())
            description += " + ";
        description += entry.name;
    }
    if (!description.empty())
        description += " + ";
    description += "'";
    if (bytes != NULL && numBytes > 0)
        description.append(bytes, strnlen(bytes, (size_t)numBytes));
    description += "'";
    _SetText(description.c_str());
    Invalidate();
}

void KeyView::Draw(BRect updateRect) {
    BRect bounds = Bounds();
    stroke_3d_rect(this, bounds, ui_color2(kPanelBackgroundColor2), false);
    bounds.InsetBy(1, 1);
    float width = StringWidth(fText);
    DrawString(fText, BPoint(bounds.left + (bounds.Width() - width) / 2,
                             bounds.top + bounds.Height() * 3 / 4));
}

void KeyView::AttachedToWindow() {
    SetFont(be_plain_font);
    SetViewColor(255, 255, 255, 255);
    SetLowColor(255, 255, 255, 255);
}
