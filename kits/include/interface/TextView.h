// BTextView: text in several fonts and colours, laid out in lines that wrap at
// the text rectangle's width; it can be selected, edited from the keyboard and
// copied and pasted.
#ifndef _TEXT_VIEW_H
#define _TEXT_VIEW_H

#include <Font.h>
#include <View.h>

class BClipboard;
class BRegion;

// The style from offset on (up to the next run's offset).
struct text_run {
    int32 offset;
    BFont font;
    rgb_color color;
};

struct text_run_array {
    int32 count;
    text_run runs[1];
};

class BTextView : public BView {
public:
    // textRect is in the view's coordinates: its left, top and width say where
    // the text starts and where lines wrap; its height does not matter.
    BTextView(BRect frame, const char* name, BRect textRect, uint32 resizingMode, uint32 flags);
    BTextView(BRect frame, const char* name, BRect textRect, const BFont* initialFont,
              const rgb_color* initialColor, uint32 resizingMode, uint32 flags);
    virtual ~BTextView();

    virtual void AttachedToWindow();
    virtual void DetachedFromWindow();
    virtual void Draw(BRect updateRect);
    virtual void MouseDown(BPoint where);
    virtual void MouseUp(BPoint where);
    virtual void MouseMoved(BPoint where, uint32 code, const BMessage* dragMessage);
    virtual void WindowActivated(bool active);
    virtual void KeyDown(const char* bytes, int32 numBytes);
    // Blinks the caret (with B_PULSE_NEEDED).
    virtual void Pulse();
    virtual void FrameResized(float width, float height);
    virtual void MakeFocus(bool focus = true);
    // B_CUT, B_COPY, B_PASTE and B_SELECT_ALL.
    virtual void MessageReceived(BMessage* message);

    // #pragma mark - Text

    // The text is copied. Without runs the text takes the style of the first
    // character; the runs' offsets are relative to the text.
    void SetText(const char* text, const text_run_array* runs = NULL);
    void SetText(const char* text, int32 length, const text_run_array* runs = NULL);
    // Inserts at the start of the selection (or at offset).
    void Insert(const char* text, const text_run_array* runs = NULL);
    void Insert(const char* text, int32 length, const text_run_array* runs = NULL);
    void Insert(int32 offset, const char* text, int32 length, const text_run_array* runs = NULL);
    // Deletes the selection (or the range).
    void Delete();
    void Delete(int32 startOffset, int32 endOffset);

    // Valid until the text changes.
    const char* Text() const;
    int32 TextLength() const;
    void GetText(int32 offset, int32 length, char* buffer) const;
    uchar ByteAt(int32 offset) const;

    int32 CountLines() const;
    int32 CurrentLine() const;
    void GoToLine(int32 lineNumber);

    // The clipboard argument is not used: the text goes through the process's
    // clipboard (and the display's, where it has one).
    virtual void Cut(BClipboard* clipboard);
    virtual void Copy(BClipboard* clipboard);
    virtual void Paste(BClipboard* clipboard);
    void Clear();
    virtual bool AcceptsPaste(BClipboard* clipboard);

    virtual void Select(int32 startOffset, int32 endOffset);
    void SelectAll();
    void GetSelection(int32* startOffset, int32* endOffset) const;

    // #pragma mark - Styles

    // Over the selection; with an empty selection, the style of what is typed next.
    void SetFontAndColor(const BFont* font, uint32 mode = B_FONT_ALL,
                         const rgb_color* color = NULL);
    // Over a range; a view that is not stylable changes all of its text.
    void SetFontAndColor(int32 startOffset, int32 endOffset, const BFont* font,
                         uint32 mode = B_FONT_ALL, const rgb_color* color = NULL);
    void GetFontAndColor(int32 offset, BFont* font, rgb_color* color = NULL) const;
    // The selection's style: mode gets the font fields that are the same all over it.
    void GetFontAndColor(BFont* font, uint32* mode, rgb_color* color = NULL,
                         bool* sameColor = NULL) const;

    // The runs' offsets are relative to startOffset; the array is copied.
    void SetRunArray(int32 startOffset, int32 endOffset, const text_run_array* runs);
    // The styles of the range, offsets relative to startOffset. The caller owns
    // the array and frees it with FreeRunArray() (or free()).
    text_run_array* RunArray(int32 startOffset, int32 endOffset, int32* length = NULL) const;

    // #pragma mark - Geometry

    int32 LineAt(int32 offset) const;
    int32 LineAt(BPoint point) const;
    // The left top of the character at offset; height gets its line's height.
    BPoint PointAt(int32 offset, float* height = NULL) const;
    int32 OffsetAt(BPoint point) const;
    int32 OffsetAt(int32 line) const;
    virtual void FindWord(int32 offset, int32* fromOffset, int32* toOffset);
    virtual bool CanEndLine(int32 offset);

    float LineWidth(int32 lineNumber = 0) const;
    float LineHeight(int32 lineNumber = 0) const;
    float TextHeight(int32 startLine, int32 endLine) const;
    void GetTextRegion(int32 startOffset, int32 endOffset, BRegion* outRegion) const;

    virtual void ScrollToOffset(int32 offset);
    void ScrollToSelection();
    void Highlight(int32 startOffset, int32 endOffset);

    void SetTextRect(BRect rect);
    BRect TextRect() const;

    // #pragma mark - Behaviour

    void SetStylable(bool stylable);
    bool IsStylable() const;
    void SetTabWidth(float width);
    float TabWidth() const;
    void MakeSelectable(bool selectable = true);
    bool IsSelectable() const;
    void MakeEditable(bool editable = true);
    bool IsEditable() const;
    void SetWordWrap(bool wrap);
    bool DoesWordWrap() const;
    void SetMaxBytes(int32 max);
    int32 MaxBytes() const;
    // Typed or pasted characters that are disallowed are refused with a beep.
    void DisallowChar(uint32 character);
    void AllowChar(uint32 character);
    void SetAlignment(alignment flag);
    alignment Alignment() const;
    void SetAutoindent(bool state);
    bool DoesAutoindent() const;
    // Shows every character as a bullet.
    void HideTyping(bool enabled);
    bool IsTypingHidden() const;

    virtual void GetPreferredSize(float* width, float* height);
    virtual void ResizeToPreferred();

    static text_run_array* AllocRunArray(int32 entryCount, int32* outSize = NULL);
    static text_run_array* CopyRunArray(const text_run_array* orig, int32 countDelta = 0);
    static void FreeRunArray(text_run_array* array);

protected:
    // Where every insertion and deletion ends; overrides call the base.
    virtual void InsertText(const char* text, int32 length, int32 offset,
                            const text_run_array* runs);
    virtual void DeleteText(int32 fromOffset, int32 toOffset);

private:
    BTextView(const BTextView&);
    BTextView& operator=(const BTextView&);

    void _Init(BRect textRect, const BFont* initialFont, const rgb_color* initialColor);
    void _Changed(bool scroll);
    void _TypeText(const char* text, int32 length);
    void _MoveCaret(int32 offset, bool extend);
    void _HandleArrow(char key, uint32 modifiers);
    void _DrawLine(int32 index, BRect updateRect);

    struct Private;
    Private* fPrivate;
};

#endif // _TEXT_VIEW_H
