// What a BTextView keeps behind its private pointer (interface kit only): the
// text, its style runs, the lines it is laid out in, and the selection.
//
// Runs are sorted by offset; the first starts at 0 and there is always one,
// even for no text. Lines are recomputed from scratch after every change (the
// texts are short: labels, alerts, dialogs); a line holds its line break and
// the spaces where it wrapped, and text that ends with a line break has an
// empty last line for the caret.
#ifndef _INTERFACE_TEXT_VIEW_DATA_H
#define _INTERFACE_TEXT_VIEW_DATA_H

#include <Font.h>
#include <GraphicsDefs.h>
#include <Rect.h>
#include <TextView.h>

#include <string>
#include <vector>

namespace BPrivate {

struct TextStyle {
    BFont font;
    rgb_color color;

    bool operator==(const TextStyle& other) const;
    bool operator!=(const TextStyle& other) const { return !(*this == other); }
};

struct StyleRun {
    int32 offset;
    TextStyle style;
};

struct TextLine {
    int32 offset;
    // From the text rectangle's top.
    float top;
    float ascent;
    float height;
    // Without the line break.
    float width;
};

// Copies the fields of source that mode names into target.
void apply_font(BFont* target, const BFont& source, uint32 mode);

} // namespace BPrivate

struct BTextView::Private {
    std::string text;
    std::vector<BPrivate::StyleRun> runs;
    std::vector<BPrivate::TextLine> lines;

    BRect textRect;
    // How far the text rectangle's right edge stays from the bounds' right edge.
    float rightInset = 0.0f;

    int32 selectionStart = 0;
    int32 selectionEnd = 0;
    // The end of the selection that stays put while it is extended.
    int32 anchor = 0;
    // What is typed next, after SetFontAndColor() on an empty selection.
    bool hasTypingStyle = false;
    BPrivate::TextStyle typingStyle;
    // Where up and down arrows aim, so they keep their column over short lines.
    float goalX = -1.0f;

    bool selectable = true;
    bool editable = true;
    bool stylable = false;
    bool wordWrap = true;
    bool autoindent = false;
    bool typingHidden = false;
    float tabWidth = 28.0f;
    alignment align = B_ALIGN_LEFT;
    int32 maxBytes = 0x7fffffff;
    std::vector<uint32> disallowed;

    bool caretOn = true;
    bool tracking = false;

    // #pragma mark - Characters

    int32 Length() const { return (int32)text.size(); }
    int32 Clamp(int32 offset) const;
    // Character boundaries (UTF-8).
    int32 NextCharacter(int32 offset) const;
    int32 PreviousCharacter(int32 offset) const;
    int32 AlignToCharacter(int32 offset) const;

    // #pragma mark - Styles

    int32 RunIndexAt(int32 offset) const;
    const BPrivate::TextStyle& StyleAt(int32 offset) const;
    // Makes a run start at offset.
    void SplitAt(int32 offset);
    void SetStyle(int32 start, int32 end, const BPrivate::TextStyle& style);
    void ChangeStyle(int32 start, int32 end, const BFont* font, uint32 mode,
                     const rgb_color* color);
    // Applies runs whose offsets count from start.
    void ApplyRuns(int32 start, int32 end, const text_run_array* runs);
    // Drops runs past the text and merges neighbours of the same style.
    void NormalizeRuns();
    void InsertBytes(int32 offset, const char* bytes, int32 length,
                     const BPrivate::TextStyle& style);
    void DeleteBytes(int32 start, int32 end);

    // #pragma mark - Layout

    void Layout();
    int32 LineIndexAt(int32 offset) const;
    int32 LineIndexAtY(float y) const;
    // Where the line's text ends, without its line break.
    int32 LineEnd(int32 index) const;
    // The offset of the next line (the text's length after the last).
    int32 LineLimit(int32 index) const;
    // The left of the line's text, for the alignment.
    float LineLeft(int32 index) const;
    // Pen advance over [from, to) starting at x (from the line's left, for tabs).
    float Advance(int32 from, int32 to, float x) const;
    float XAt(int32 offset) const;
    int32 OffsetAtX(int32 index, float x) const;
    // What is shown of [from, to): the text, or bullets when typing is hidden.
    std::string Shown(int32 from, int32 to) const;
};

#endif // _INTERFACE_TEXT_VIEW_DATA_H
