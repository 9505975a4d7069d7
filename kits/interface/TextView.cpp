// BTextView: the public calls on text, selection, styles and geometry. The
// runs and the line layout are in TextViewLayout.cpp, drawing and input in
// TextViewInput.cpp.
//
// Every change goes through InsertText() and DeleteText(), relays out all the
// lines and invalidates the view; a view that is not stylable keeps one style
// for all of its text.
#include <TextView.h>

#include "interface/TextViewData.h"

#include <Region.h>
#include <Window.h>

#include <algorithm>
#include <ctype.h>
#include <math.h>
#include <new>
#include <stdlib.h>
#include <string.h>

using BPrivate::StyleRun;
using BPrivate::TextLine;
using BPrivate::TextStyle;

BTextView::BTextView(BRect frame, const char* name, BRect textRect, uint32 resizingMode,
                     uint32 flags)
    : BView(frame, name, resizingMode, flags), fPrivate(new Private) {
    _Init(textRect, NULL, NULL);
}

BTextView::BTextView(BRect frame, const char* name, BRect textRect, const BFont* initialFont,
                     const rgb_color* initialColor, uint32 resizingMode, uint32 flags)
    : BView(frame, name, resizingMode, flags), fPrivate(new Private) {
    _Init(textRect, initialFont, initialColor);
}

BTextView::~BTextView() {
    delete fPrivate;
}

void BTextView::_Init(BRect textRect, const BFont* initialFont, const rgb_color* initialColor) {
    Private* data = fPrivate;
    data->textRect = textRect;
    data->rightInset = Bounds().right - textRect.right;
    BFont font;
    GetFont(&font);
    if (initialFont != NULL) {
        font = *initialFont;
        SetFont(&font);
    }
    rgb_color color = initialColor != NULL ? *initialColor : ui_color(B_DOCUMENT_TEXT_COLOR);
    SetHighColor(color);
    SetViewColor(ui_color(B_DOCUMENT_BACKGROUND_COLOR));
    SetLowColor(ViewColor());
    data->runs.push_back(StyleRun{0, TextStyle{font, color}});
    data->Layout();
}

// #pragma mark - Text

void BTextView::SetText(const char* text, const text_run_array* runs) {
    SetText(text, text != NULL ? (int32)strlen(text) : 0, runs);
}

void BTextView::SetText(const char* text, int32 length, const text_run_array* runs) {
    Private* data = fPrivate;
    if (text == NULL || length < 0)
        length = 0;
    else
        length = (int32)strnlen(text, (size_t)length);
    // The new text starts with the style of the old text's start.
    if (data->Length() > 0)
        DeleteText(0, data->Length());
    data->hasTypingStyle = false;
    data->selectionStart = data->selectionEnd = data->anchor = 0;
    if (length > 0)
        InsertText(text, length, 0, runs);
    data->selectionStart = data->selectionEnd = data->anchor = 0;
    _Changed(false);
}

void BTextView::Insert(const char* text, const text_run_array* runs) {
    Insert(fPrivate->selectionStart, text, text != NULL ? (int32)strlen(text) : 0, runs);
}

void BTextView::Insert(const char* text, int32 length, const text_run_array* runs) {
    Insert(fPrivate->selectionStart, text, length, runs);
}

void BTextView::Insert(int32 offset, const char* text, int32 length, const text_run_array* runs) {
    if (text == NULL || length <= 0)
        return;
    length = (int32)strnlen(text, (size_t)length);
    offset = fPrivate->AlignToCharacter(offset);
    InsertText(text, length, offset, runs);
    _Changed(false);
}

void BTextView::Delete() {
    Delete(fPrivate->selectionStart, fPrivate->selectionEnd);
}

void BTextView::Delete(int32 startOffset, int32 endOffset) {
    Private* data = fPrivate;
    startOffset = data->AlignToCharacter(startOffset);
    endOffset = data->AlignToCharacter(endOffset);
    if (startOffset >= endOffset)
        return;
    DeleteText(startOffset, endOffset);
    _Changed(false);
}

void BTextView::InsertText(const char* text, int32 length, int32 offset,
                           const text_run_array* runs) {
    Private* data = fPrivate;
    if (text == NULL || length <= 0)
        return;
    offset = data->AlignToCharacter(offset);
    int32 room = data->maxBytes - data->Length();
    if (length > room) {
        // Never keep half a character.
        length = std::max(room, (int32)0);
        while (length > 0 && ((uint8)text[length] & 0xc0) == 0x80)
            length--;
    }
    if (length <= 0)
        return;

    // Typed text takes the typing style, other text that of what precedes it.
    TextStyle style = data->StyleAt(offset > 0 ? offset - 1 : 0);
    if (data->hasTypingStyle && offset == data->selectionStart)
        style = data->typingStyle;
    data->InsertBytes(offset, text, length, style);
    if (runs != NULL && data->stylable)
        data->ApplyRuns(offset, offset + length, runs);

    if (offset <= data->selectionStart) {
        data->selectionStart += length;
        data->selectionEnd += length;
        data->anchor += length;
    } else if (offset < data->selectionEnd) {
        data->selectionEnd += length;
    }
    data->Layout();
}

void BTextView::DeleteText(int32 fromOffset, int32 toOffset) {
    Private* data = fPrivate;
    fromOffset = data->Clamp(fromOffset);
    toOffset = data->Clamp(toOffset);
    if (fromOffset >= toOffset)
        return;
    data->DeleteBytes(fromOffset, toOffset);
    int32 length = toOffset - fromOffset;
    auto shift = [&](int32 offset) {
        if (offset >= toOffset)
            return offset - length;
        return std::min(offset, fromOffset);
    };
    data->selectionStart = shift(data->selectionStart);
    data->selectionEnd = shift(data->selectionEnd);
    data->anchor = shift(data->anchor);
    data->Layout();
}

const char* BTextView::Text() const {
    return fPrivate->text.c_str();
}

int32 BTextView::TextLength() const {
    return fPrivate->Length();
}

void BTextView::GetText(int32 offset, int32 length, char* buffer) const {
    if (buffer == NULL)
        return;
    offset = fPrivate->Clamp(offset);
    length = std::clamp(length, (int32)0, fPrivate->Length() - offset);
    memcpy(buffer, fPrivate->text.data() + offset, (size_t)length);
    buffer[length] = '\0';
}

uchar BTextView::ByteAt(int32 offset) const {
    if (offset < 0 || offset >= fPrivate->Length())
        return '\0';
    return (uchar)fPrivate->text[offset];
}

int32 BTextView::CountLines() const {
    return (int32)fPrivate->lines.size();
}

int32 BTextView::CurrentLine() const {
    return fPrivate->LineIndexAt(fPrivate->selectionStart);
}

void BTextView::GoToLine(int32 lineNumber) {
    lineNumber = std::clamp(lineNumber, (int32)0, CountLines() - 1);
    int32 offset = fPrivate->lines[lineNumber].offset;
    Select(offset, offset);
}

// #pragma mark - Selection

void BTextView::Select(int32 startOffset, int32 endOffset) {
    Private* data = fPrivate;
    startOffset = data->AlignToCharacter(startOffset);
    endOffset = data->AlignToCharacter(endOffset);
    if (startOffset > endOffset)
        std::swap(startOffset, endOffset);
    if (startOffset == data->selectionStart && endOffset == data->selectionEnd)
        return;
    data->selectionStart = startOffset;
    data->selectionEnd = endOffset;
    data->anchor = startOffset;
    data->hasTypingStyle = false;
    data->caretOn = true;
    Invalidate();
}

void BTextView::SelectAll() {
    Select(0, fPrivate->Length());
}

void BTextView::GetSelection(int32* startOffset, int32* endOffset) const {
    if (startOffset != NULL)
        *startOffset = fPrivate->selectionStart;
    if (endOffset != NULL)
        *endOffset = fPrivate->selectionEnd;
}

void BTextView::Highlight(int32 startOffset, int32 endOffset) {
    BRegion region;
    GetTextRegion(startOffset, endOffset, &region);
    Invalidate(&region);
}

// #pragma mark - Geometry

int32 BTextView::LineAt(int32 offset) const {
    return fPrivate->LineIndexAt(fPrivate->Clamp(offset));
}

int32 BTextView::LineAt(BPoint point) const {
    return fPrivate->LineIndexAtY(point.y);
}

BPoint BTextView::PointAt(int32 offset, float* height) const {
    Private* data = fPrivate;
    offset = data->Clamp(offset);
    const TextLine& line = data->lines[data->LineIndexAt(offset)];
    if (height != NULL)
        *height = line.height;
    return BPoint(data->XAt(offset), data->textRect.top + line.top);
}

int32 BTextView::OffsetAt(BPoint point) const {
    Private* data = fPrivate;
    if (point.y < data->textRect.top)
        return 0;
    const TextLine& last = data->lines.back();
    if (point.y >= data->textRect.top + last.top + last.height)
        return data->Length();
    return data->OffsetAtX(data->LineIndexAtY(point.y), point.x);
}

int32 BTextView::OffsetAt(int32 line) const {
    if (line < 0)
        return 0;
    if (line >= CountLines())
        return fPrivate->Length();
    return fPrivate->lines[line].offset;
}

void BTextView::FindWord(int32 offset, int32* fromOffset, int32* toOffset) {
    Private* data = fPrivate;
    offset = data->Clamp(offset);
    auto isWord = [&](int32 at) {
        uint8 byte = (uint8)data->text[at];
        return byte >= 0x80 || isalnum(byte) || byte == '_';
    };
    int32 start = offset;
    int32 end = offset;
    if (offset < data->Length() && isWord(offset)) {
        while (start > 0 && isWord(data->PreviousCharacter(start)))
            start = data->PreviousCharacter(start);
        while (end < data->Length() && isWord(end))
            end = data->NextCharacter(end);
    } else if (offset < data->Length()) {
        end = data->NextCharacter(offset);
    }
    if (fromOffset != NULL)
        *fromOffset = start;
    if (toOffset != NULL)
        *toOffset = end;
}

bool BTextView::CanEndLine(int32 offset) {
    if (offset < 0 || offset >= fPrivate->Length())
        return true;
    char byte = fPrivate->text[offset];
    return byte == ' ' || byte == '\t' || byte == '\n';
}

float BTextView::LineWidth(int32 lineNumber) const {
    if (lineNumber < 0 || lineNumber >= CountLines())
        return 0.0f;
    return fPrivate->lines[lineNumber].width;
}

float BTextView::LineHeight(int32 lineNumber) const {
    if (lineNumber < 0 || lineNumber >= CountLines())
        return 0.0f;
    return fPrivate->lines[lineNumber].height;
}

float BTextView::TextHeight(int32 startLine, int32 endLine) const {
    startLine = std::max(startLine, (int32)0);
    endLine = std::min(endLine, CountLines() - 1);
    float height = 0;
    for (int32 line = startLine; line <= endLine; line++)
        height += fPrivate->lines[line].height;
    return height;
}

void BTextView::GetTextRegion(int32 startOffset, int32 endOffset, BRegion* outRegion) const {
    if (outRegion == NULL)
        return;
    outRegion->MakeEmpty();
    Private* data = fPrivate;
    startOffset = data->Clamp(startOffset);
    endOffset = data->Clamp(endOffset);
    if (startOffset >= endOffset)
        return;
    int32 firstLine = data->LineIndexAt(startOffset);
    int32 lastLine = data->LineIndexAt(endOffset);
    for (int32 index = firstLine; index <= lastLine; index++) {
        const TextLine& line = data->lines[index];
        float top = data->textRect.top + line.top;
        float left = index == firstLine ? data->XAt(startOffset) : data->textRect.left;
        float right = index == lastLine ? data->XAt(endOffset) : data->textRect.right;
        if (right > left)
            outRegion->Include(BRect(left, top, right - 1, top + line.height - 1));
    }
}

void BTextView::ScrollToOffset(int32 offset) {
    float height;
    BPoint point = PointAt(offset, &height);
    BRect bounds = Bounds();
    float x = bounds.left;
    float y = bounds.top;
    if (point.y < bounds.top)
        y = point.y;
    else if (point.y + height - 1 > bounds.bottom)
        y = point.y + height - 1 - bounds.Height();
    if (point.x < bounds.left)
        x = point.x - fPrivate->textRect.left;
    else if (point.x > bounds.right)
        x = point.x - bounds.Width() + fPrivate->textRect.left;
    if (x != bounds.left || y != bounds.top)
        ScrollTo(BPoint(fmaxf(x, 0), fmaxf(y, 0)));
}

void BTextView::ScrollToSelection() {
    ScrollToOffset(fPrivate->selectionStart);
}

void BTextView::SetTextRect(BRect rect) {
    fPrivate->textRect = rect;
    fPrivate->rightInset = Bounds().right - rect.right;
    _Changed(false);
}

BRect BTextView::TextRect() const {
    return fPrivate->textRect;
}

// #pragma mark - Behaviour

void BTextView::SetStylable(bool stylable) {
    fPrivate->stylable = stylable;
}

bool BTextView::IsStylable() const {
    return fPrivate->stylable;
}

void BTextView::SetTabWidth(float width) {
    fPrivate->tabWidth = fmaxf(width, 0.0f);
    _Changed(false);
}

float BTextView::TabWidth() const {
    return fPrivate->tabWidth;
}

void BTextView::MakeSelectable(bool selectable) {
    if (selectable == fPrivate->selectable)
        return;
    fPrivate->selectable = selectable;
    Invalidate();
}

bool BTextView::IsSelectable() const {
    return fPrivate->selectable;
}

void BTextView::MakeEditable(bool editable) {
    if (editable == fPrivate->editable)
        return;
    fPrivate->editable = editable;
    Invalidate();
}

bool BTextView::IsEditable() const {
    return fPrivate->editable;
}

void BTextView::SetWordWrap(bool wrap) {
    fPrivate->wordWrap = wrap;
    _Changed(false);
}

bool BTextView::DoesWordWrap() const {
    return fPrivate->wordWrap;
}

void BTextView::SetMaxBytes(int32 max) {
    fPrivate->maxBytes = std::max(max, (int32)0);
    // Text beyond the new limit goes.
    if (fPrivate->Length() > fPrivate->maxBytes)
        Delete(fPrivate->AlignToCharacter(fPrivate->maxBytes), fPrivate->Length());
}

int32 BTextView::MaxBytes() const {
    return fPrivate->maxBytes;
}

void BTextView::DisallowChar(uint32 character) {
    std::vector<uint32>& disallowed = fPrivate->disallowed;
    if (std::find(disallowed.begin(), disallowed.end(), character) == disallowed.end())
        disallowed.push_back(character);
}

void BTextView::AllowChar(uint32 character) {
    std::vector<uint32>& disallowed = fPrivate->disallowed;
    disallowed.erase(std::remove(disallowed.begin(), disallowed.end(), character),
                     disallowed.end());
}

void BTextView::SetAlignment(alignment flag) {
    fPrivate->align = flag;
    _Changed(false);
}

alignment BTextView::Alignment() const {
    return fPrivate->align;
}

void BTextView::SetAutoindent(bool state) {
    fPrivate->autoindent = state;
}

bool BTextView::DoesAutoindent() const {
    return fPrivate->autoindent;
}

void BTextView::HideTyping(bool enabled) {
    fPrivate->typingHidden = enabled;
    _Changed(false);
}

bool BTextView::IsTypingHidden() const {
    return fPrivate->typingHidden;
}

void BTextView::GetPreferredSize(float* width, float* height) {
    Private* data = fPrivate;
    if (width != NULL) {
        float widest = 0;
        for (const TextLine& line : data->lines)
            widest = fmaxf(widest, line.width);
        *width = data->wordWrap ? Bounds().Width()
                                : ceilf(data->textRect.left + widest + data->rightInset);
    }
    if (height != NULL)
        *height = ceilf(data->textRect.top + TextHeight(0, CountLines() - 1));
}

void BTextView::ResizeToPreferred() {
    BView::ResizeToPreferred();
}

void BTextView::_Changed(bool scroll) {
    fPrivate->Layout();
    fPrivate->caretOn = true;
    if (scroll && Window() != NULL)
        ScrollToOffset(fPrivate->selectionEnd);
    Invalidate();
}
