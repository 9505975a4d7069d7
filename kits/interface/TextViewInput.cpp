// BTextView on screen: drawing the lines, the selection and the caret, and the
// mouse, keyboard and clipboard.
//
// The selection shows while the view has the focus in the active window; the
// caret shows there too when the view is editable and nothing is selected, and
// blinks on Pulse() (for views with B_PULSE_NEEDED). The mouse selects by
// character, word (double click) or line (triple click), and extends with Shift.
#include <TextView.h>

#include "interface/TextClipboard.h"
#include "interface/TextViewData.h"

#include <AppDefs.h>
#include <Message.h>
#include <Window.h>

#include <algorithm>
#include <math.h>
#include <string.h>

using BPrivate::TextClipboard;
using BPrivate::TextLine;
using BPrivate::TextStyle;

namespace {

uint32 current_modifiers(BWindow* window) {
    BMessage* message = window != NULL ? window->CurrentMessage() : NULL;
    int32 modifiers;
    if (message != NULL && message->FindInt32("modifiers", &modifiers) == B_OK)
        return (uint32)modifiers;
    return 0;
}

// The first character of a UTF-8 string.
uint32 first_character(const char* bytes, int32 length) {
    const uint8* text = (const uint8*)bytes;
    if (length <= 0)
        return 0;
    if (text[0] < 0x80 || length < 2)
        return text[0];
    if ((text[0] & 0xe0) == 0xc0)
        return ((text[0] & 0x1f) << 6) | (text[1] & 0x3f);
    if ((text[0] & 0xf0) == 0xe0 && length >= 3)
        return ((text[0] & 0x0f) << 12) | ((text[1] & 0x3f) << 6) | (text[2] & 0x3f);
    if (length >= 4)
        return ((text[0] & 0x07) << 18) | ((text[1] & 0x3f) << 12) | ((text[2] & 0x3f) << 6) |
               (text[3] & 0x3f);
    return text[0];
}

} // namespace

void BTextView::AttachedToWindow() {
    fPrivate->caretOn = true;
    fPrivate->Layout();
}

void BTextView::DetachedFromWindow() {
    fPrivate->tracking = false;
}

// #pragma mark - Drawing

void BTextView::Draw(BRect updateRect) {
    Private* data = fPrivate;
    PushState();
    SetDrawingMode(B_OP_OVER);
    for (int32 index = 0; index < (int32)data->lines.size(); index++) {
        const TextLine& line = data->lines[index];
        float top = data->textRect.top + line.top;
        if (top > updateRect.bottom)
            break;
        if (top + line.height - 1 < updateRect.top)
            continue;
        _DrawLine(index, updateRect);
    }
    PopState();

    BWindow* window = Window();
    bool active = IsFocus() && window != NULL && window->IsActive();
    if (active && data->editable && data->selectionStart == data->selectionEnd && data->caretOn) {
        float height;
        BPoint caret = PointAt(data->selectionStart, &height);
        SetHighColor(data->StyleAt(std::max(data->selectionStart - 1, (int32)0)).color);
        StrokeLine(caret, caret + BPoint(0, height - 1));
    }
}

void BTextView::_DrawLine(int32 index, BRect updateRect) {
    Private* data = fPrivate;
    const TextLine& line = data->lines[index];
    float top = data->textRect.top + line.top;
    float left = data->LineLeft(index);
    int32 start = line.offset;
    int32 end = data->LineEnd(index);
    int32 limit = data->LineLimit(index);

    BWindow* window = Window();
    bool showSelection = data->selectable && IsFocus() && window != NULL && window->IsActive();
    if (showSelection && data->selectionStart < data->selectionEnd &&
        data->selectionStart < std::max(limit, start + 1) && data->selectionEnd > start) {
        int32 from = std::max(data->selectionStart, start);
        float x1 = left + data->Advance(start, from, 0);
        float x2 = data->selectionEnd > end && index + 1 < (int32)data->lines.size()
                       ? fmaxf(data->textRect.right, x1)
                       : left + data->Advance(start, std::min(data->selectionEnd, end), 0);
        if (x2 > x1) {
            SetHighColor(tint_color(ViewColor(), B_HIGHLIGHT_BACKGROUND_TINT));
            SetDrawingMode(B_OP_COPY);
            FillRect(BRect(x1, top, x2 - 1, top + line.height - 1));
            SetDrawingMode(B_OP_OVER);
        }
    }

    float baseline = top + line.ascent;
    int32 offset = start;
    while (offset < end) {
        if (data->text[offset] == '\t') {
            offset++;
            continue;
        }
        int32 runIndex = data->RunIndexAt(offset);
        int32 runEnd = runIndex + 1 < (int32)data->runs.size()
                           ? std::min(data->runs[runIndex + 1].offset, end)
                           : end;
        int32 chunkEnd = offset;
        while (chunkEnd < runEnd && data->text[chunkEnd] != '\t')
            chunkEnd++;
        const TextStyle& style = data->runs[runIndex].style;
        float x = left + data->Advance(start, offset, 0);
        std::string shown = data->Shown(offset, chunkEnd);
        SetFont(&style.font);
        SetHighColor(style.color);
        DrawString(shown.c_str(), (int32)shown.size(), BPoint(x, baseline));
        offset = chunkEnd;
    }
}

// #pragma mark - Mouse

void BTextView::MouseDown(BPoint where) {
    Private* data = fPrivate;
    if (!data->selectable && !data->editable) {
        BView::MouseDown(where);
        return;
    }
    MakeFocus(true);
    int32 offset = OffsetAt(where);
    BMessage* message = Window()->CurrentMessage();
    int32 clicks = message != NULL ? message->GetInt32("clicks", 1) : 1;
    uint32 modifiers = current_modifiers(Window());

    if (!data->selectable) {
        Select(offset, offset);
    } else if (clicks == 2) {
        int32 start;
        int32 end;
        FindWord(offset, &start, &end);
        Select(start, end);
    } else if (clicks >= 3) {
        int32 line = data->LineIndexAt(offset);
        Select(data->lines[line].offset, data->LineLimit(line));
    } else if ((modifiers & B_SHIFT_KEY) != 0) {
        int32 anchor = data->anchor;
        Select(std::min(anchor, offset), std::max(anchor, offset));
        data->anchor = anchor;
    } else {
        Select(offset, offset);
    }
    data->goalX = -1;
    data->tracking = data->selectable && clicks < 2;
    if (data->tracking)
        SetMouseEventMask(B_POINTER_EVENTS, B_LOCK_WINDOW_FOCUS);
}

void BTextView::MouseUp(BPoint where) {
    fPrivate->tracking = false;
}

void BTextView::MouseMoved(BPoint where, uint32 code, const BMessage* dragMessage) {
    Private* data = fPrivate;
    if (!data->tracking)
        return;
    int32 offset = OffsetAt(where);
    int32 anchor = data->anchor;
    Select(std::min(anchor, offset), std::max(anchor, offset));
    data->anchor = anchor;
    ScrollToOffset(offset);
}

// #pragma mark - Keyboard

void BTextView::KeyDown(const char* bytes, int32 numBytes) {
    Private* data = fPrivate;
    if (bytes == NULL || numBytes < 1)
        return;
    char key = bytes[0];
    uint32 modifiers = current_modifiers(Window());
    if (!data->editable) {
        if (key == B_TAB)
            BView::KeyDown(bytes, numBytes);
        return;
    }

    switch (key) {
    case B_BACKSPACE:
        if (data->selectionStart < data->selectionEnd)
            Delete();
        else if (data->selectionStart > 0)
            Delete(data->PreviousCharacter(data->selectionStart), data->selectionStart);
        _Changed(true);
        break;
    case B_DELETE:
        if (data->selectionStart < data->selectionEnd)
            Delete();
        else if (data->selectionEnd < data->Length())
            Delete(data->selectionEnd, data->NextCharacter(data->selectionEnd));
        _Changed(true);
        break;
    case B_LEFT_ARROW:
    case B_RIGHT_ARROW:
    case B_UP_ARROW:
    case B_DOWN_ARROW:
    case B_HOME:
    case B_END:
    case B_PAGE_UP:
    case B_PAGE_DOWN:
        _HandleArrow(key, modifiers);
        break;
    case B_ESCAPE:
    case B_INSERT:
    case B_FUNCTION_KEY:
        break;
    case B_TAB:
        // A text view that refuses tabs lets Tab move the focus on.
        if (std::find(data->disallowed.begin(), data->disallowed.end(), (uint32)B_TAB) !=
            data->disallowed.end())
            BView::KeyDown(bytes, numBytes);
        else
            _TypeText("\t", 1);
        break;
    case B_ENTER: {
        std::string text = "\n";
        if (data->autoindent) {
            int32 line = data->lines[data->LineIndexAt(data->selectionStart)].offset;
            while (line < data->selectionStart &&
                   (data->text[line] == ' ' || data->text[line] == '\t'))
                text += data->text[line++];
        }
        _TypeText(text.c_str(), (int32)text.size());
        break;
    }
    default:
        if ((uint8)key < B_SPACE)
            break;
        _TypeText(bytes, (int32)strnlen(bytes, (size_t)numBytes));
        break;
    }
}

void BTextView::_TypeText(const char* text, int32 length) {
    Private* data = fPrivate;
    for (int32 offset = 0; offset < length;) {
        uint32 character = first_character(text + offset, length - offset);
        if (std::find(data->disallowed.begin(), data->disallowed.end(), character) !=
            data->disallowed.end()) {
            beep();
            return;
        }
        offset++;
        while (offset < length && ((uint8)text[offset] & 0xc0) == 0x80)
            offset++;
    }
    int32 room = data->maxBytes - (data->Length() - (data->selectionEnd - data->selectionStart));
    if (length > room) {
        beep();
        if (room <= 0)
            return;
    }
    bool hadTypingStyle = data->hasTypingStyle;
    TextStyle typingStyle = data->typingStyle;
    if (data->selectionStart < data->selectionEnd) {
        // The replaced text lends its style to what replaces it.
        if (!hadTypingStyle) {
            typingStyle = data->StyleAt(data->selectionStart);
            hadTypingStyle = true;
        }
        DeleteText(data->selectionStart, data->selectionEnd);
    }
    data->hasTypingStyle = hadTypingStyle;
    data->typingStyle = typingStyle;
    InsertText(text, length, data->selectionStart, NULL);
    data->hasTypingStyle = false;
    data->anchor = data->selectionStart = data->selectionEnd;
    data->goalX = -1;
    _Changed(true);
}

void BTextView::_MoveCaret(int32 offset, bool extend) {
    Private* data = fPrivate;
    offset = data->AlignToCharacter(offset);
    if (extend) {
        int32 anchor = data->anchor;
        Select(std::min(anchor, offset), std::max(anchor, offset));
        data->anchor = anchor;
    } else {
        Select(offset, offset);
    }
    ScrollToOffset(offset);
}

void BTextView::_HandleArrow(char key, uint32 modifiers) {
    Private* data = fPrivate;
    bool extend = (modifiers & B_SHIFT_KEY) != 0 && data->selectable;
    bool collapsed = data->selectionStart == data->selectionEnd;
    // The end that moves: the one away from the anchor.
    int32 moving = data->anchor == data->selectionStart ? data->selectionEnd : data->selectionStart;
    int32 line = data->LineIndexAt(moving);

    switch (key) {
    case B_LEFT_ARROW:
        data->goalX = -1;
        if (!extend && !collapsed)
            _MoveCaret(data->selectionStart, false);
        else
            _MoveCaret(data->PreviousCharacter(moving), extend);
        break;
    case B_RIGHT_ARROW:
        data->goalX = -1;
        if (!extend && !collapsed)
            _MoveCaret(data->selectionEnd, false);
        else
            _MoveCaret(data->NextCharacter(moving), extend);
        break;
    case B_UP_ARROW:
    case B_DOWN_ARROW: {
        if (data->goalX < 0)
            data->goalX = data->XAt(moving);
        float goal = data->goalX;
        int32 target = key == B_UP_ARROW ? line - 1 : line + 1;
        int32 offset;
        if (target < 0)
            offset = 0;
        else if (target >= (int32)data->lines.size())
            offset = data->Length();
        else
            offset = data->OffsetAtX(target, goal);
        _MoveCaret(offset, extend);
        data->goalX = goal;
        break;
    }
    case B_HOME:
        data->goalX = -1;
        _MoveCaret(data->lines[line].offset, extend);
        break;
    case B_END:
        data->goalX = -1;
        _MoveCaret(data->LineEnd(line), extend);
        break;
    case B_PAGE_UP:
        data->goalX = -1;
        _MoveCaret(0, extend);
        break;
    case B_PAGE_DOWN:
        data->goalX = -1;
        _MoveCaret(data->Length(), extend);
        break;
    }
}

// #pragma mark - Focus, activation, pulse, size

void BTextView::WindowActivated(bool active) {
    Invalidate();
}

void BTextView::MakeFocus(bool focus) {
    if (focus == IsFocus())
        return;
    BView::MakeFocus(focus);
    fPrivate->caretOn = true;
    Invalidate();
}

void BTextView::Pulse() {
    Private* data = fPrivate;
    if (!IsFocus() || !data->editable || data->selectionStart != data->selectionEnd)
        return;
    data->caretOn = !data->caretOn;
    float height;
    BPoint caret = PointAt(data->selectionStart, &height);
    Invalidate(BRect(caret.x - 1, caret.y, caret.x + 1, caret.y + height - 1));
}

void BTextView::FrameResized(float width, float height) {
    Private* data = fPrivate;
    data->textRect.right = fmaxf(Bounds().right - data->rightInset, data->textRect.left);
    _Changed(false);
}

// #pragma mark - Clipboard

void BTextView::MessageReceived(BMessage* message) {
    switch (message->what) {
    case B_CUT:
        Cut(NULL);
        break;
    case B_COPY:
        Copy(NULL);
        break;
    case B_PASTE:
        Paste(NULL);
        break;
    case B_SELECT_ALL:
        if (fPrivate->selectable)
            SelectAll();
        break;
    default:
        BView::MessageReceived(message);
        break;
    }
}

void BTextView::Cut(BClipboard* clipboard) {
    Private* data = fPrivate;
    if (!data->editable || data->selectionStart == data->selectionEnd)
        return;
    Copy(clipboard);
    Delete();
}

void BTextView::Copy(BClipboard* clipboard) {
    Private* data = fPrivate;
    // Hidden typing (a password) never leaves the view.
    if (!data->selectable || data->typingHidden || data->selectionStart == data->selectionEnd)
        return;
    TextClipboard::SetText(data->text.substr((size_t)data->selectionStart,
                                             (size_t)(data->selectionEnd - data->selectionStart)));
}

void BTextView::Paste(BClipboard* clipboard) {
    if (!AcceptsPaste(clipboard))
        return;
    std::string text = TextClipboard::Text();
    if (!text.empty())
        _TypeText(text.c_str(), (int32)text.size());
}

void BTextView::Clear() {
    if (fPrivate->editable)
        Delete();
}

bool BTextView::AcceptsPaste(BClipboard* clipboard) {
    return fPrivate->editable;
}
