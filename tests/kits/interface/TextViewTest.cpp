// BTextView: text and styles, layout, drawing of styled ranges, and editing by
// keyboard, mouse and clipboard.
#include "ControlsTestSupport.h"

#include <TextView.h>

#include <gtest/gtest.h>

#include <stdlib.h>
#include <string>

using BPrivate::Capture;
using BPrivate::HeadlessTestApi;
using testing_support::count_color;
using testing_support::HeadlessAppTest;
using testing_support::ink_bounds;
using testing_support::same_color;

namespace {

const int32 kBackspaceKey = 0x1e;
const int32 kLeftKey = 0x61;
const int32 kRightKey = 0x63;
const int32 kKeyA = 0x3c;
const uint32 kShift = B_SHIFT_KEY | B_LEFT_SHIFT_KEY;

BTextView* make_text_view(BRect frame = BRect(10, 10, 289, 189)) {
    BRect textRect(0, 0, frame.Width(), frame.Height());
    return new BTextView(frame, "text", textRect, B_FOLLOW_NONE, B_WILL_DRAW);
}

class TextViewTest : public HeadlessAppTest {
protected:
    // A shown window holding the text view, which has the focus.
    BWindow* Show(BTextView* view) {
        BWindow* window = new BWindow(BRect(100, 100, 399, 299), "text", B_TITLED_WINDOW, 0);
        window->AddChild(view);
        window->Lock();
        view->MakeFocus(true);
        window->Unlock();
        window->Show();
        WaitForIdle();
        return window;
    }

    std::string TextOf(BWindow* window, BTextView* view) {
        window->Lock();
        std::string text = view->Text();
        window->Unlock();
        return text;
    }

    void Type(const char* text) {
        for (const char* character = text; *character != '\0'; character++) {
            char bytes[2] = {*character, '\0'};
            ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kKeyA, bytes, 0));
        }
        WaitForIdle();
    }
};

} // namespace

// #pragma mark - Text and styles

TEST_F(TextViewTest, SetTextReplacesTheTextAndPutsTheCaretAtTheStart) {
    BTextView view(BRect(0, 0, 100, 100), "text", BRect(0, 0, 100, 100), B_FOLLOW_NONE, 0);
    view.SetText("first");
    view.SetText("second text");
    EXPECT_STREQ("second text", view.Text());
    EXPECT_EQ(11, view.TextLength());
    int32 start;
    int32 end;
    view.GetSelection(&start, &end);
    EXPECT_EQ(0, start);
    EXPECT_EQ(0, end);
    view.SetText(NULL);
    EXPECT_STREQ("", view.Text());
}

TEST_F(TextViewTest, SetTextWithALengthTakesOnlyThatMuch) {
    BTextView view(BRect(0, 0, 100, 100), "text", BRect(0, 0, 100, 100), B_FOLLOW_NONE, 0);
    view.SetText("abcdef", 3);
    EXPECT_STREQ("abc", view.Text());
    view.SetText("xy", 10);
    EXPECT_STREQ("xy", view.Text());
}

TEST_F(TextViewTest, InsertGoesBeforeTheSelectionAndMovesIt) {
    BTextView view(BRect(0, 0, 100, 100), "text", BRect(0, 0, 100, 100), B_FOLLOW_NONE, 0);
    view.SetText("hello world");
    view.Select(6, 11);
    view.Insert("big ");
    EXPECT_STREQ("hello big world", view.Text());
    int32 start;
    int32 end;
    view.GetSelection(&start, &end);
    EXPECT_EQ(10, start);
    EXPECT_EQ(15, end);
    view.Insert(0, "Oh, ", 4);
    EXPECT_STREQ("Oh, hello big world", view.Text());
}

TEST_F(TextViewTest, DeleteRemovesTheSelectionOrARange) {
    BTextView view(BRect(0, 0, 100, 100), "text", BRect(0, 0, 100, 100), B_FOLLOW_NONE, 0);
    view.SetText("one two three");
    view.Select(3, 7);
    view.Delete();
    EXPECT_STREQ("one three", view.Text());
    view.Delete(0, 4);
    EXPECT_STREQ("three", view.Text());
    view.Delete(-5, 100);
    EXPECT_STREQ("", view.Text());
}

TEST_F(TextViewTest, GetTextAndByteAtStayInsideTheText) {
    BTextView view(BRect(0, 0, 100, 100), "text", BRect(0, 0, 100, 100), B_FOLLOW_NONE, 0);
    view.SetText("abcdef");
    char buffer[16];
    view.GetText(2, 100, buffer);
    EXPECT_STREQ("cdef", buffer);
    EXPECT_EQ('a', view.ByteAt(0));
    EXPECT_EQ('\0', view.ByteAt(6));
    EXPECT_EQ('\0', view.ByteAt(-1));
}

TEST_F(TextViewTest, SetFontAndColorOverARangeSplitsTheRuns) {
    BTextView view(BRect(0, 0, 100, 100), "text", BRect(0, 0, 100, 100), B_FOLLOW_NONE, 0);
    view.SetStylable(true);
    view.SetText("Hello World");
    BFont big(be_plain_font);
    big.SetSize(20);
    rgb_color red = make_color(200, 0, 0);
    view.SetFontAndColor(0, 5, &big, B_FONT_SIZE, &red);

    BFont font;
    rgb_color color;
    view.GetFontAndColor(2, &font, &color);
    EXPECT_EQ(20, font.Size());
    EXPECT_TRUE(same_color(red, color));
    view.GetFontAndColor(7, &font, &color);
    EXPECT_EQ(be_plain_font->Size(), font.Size());
    EXPECT_TRUE(same_color(make_color(0, 0, 0), color));

    int32 size;
    text_run_array* runs = view.RunArray(0, view.TextLength(), &size);
    ASSERT_NE(nullptr, runs);
    ASSERT_EQ(2, runs->count);
    EXPECT_EQ(0, runs->runs[0].offset);
    EXPECT_EQ(5, (&runs->runs[0])[1].offset);
    EXPECT_GT(size, 0);
    BTextView::FreeRunArray(runs);
}

TEST_F(TextViewTest, ViewThatIsNotStylableChangesAllOfItsText) {
    BTextView view(BRect(0, 0, 100, 100), "text", BRect(0, 0, 100, 100), B_FOLLOW_NONE, 0);
    view.SetText("Hello World");
    rgb_color blue = make_color(0, 0, 150);
    view.SetFontAndColor(0, 2, NULL, 0, &blue);
    rgb_color color;
    view.GetFontAndColor(8, NULL, &color);
    EXPECT_TRUE(same_color(blue, color));
    text_run_array* runs = view.RunArray(0, view.TextLength());
    ASSERT_NE(nullptr, runs);
    EXPECT_EQ(1, runs->count);
    free(runs);
}

TEST_F(TextViewTest, SetRunArrayAppliesRunsFromTheStartOffset) {
    BTextView view(BRect(0, 0, 100, 100), "text", BRect(0, 0, 100, 100), B_FOLLOW_NONE, 0);
    view.SetStylable(true);
    view.SetText("abcdefgh");
    text_run_array* runs = BTextView::AllocRunArray(2);
    ASSERT_NE(nullptr, runs);
    text_run* entries = runs->runs;
    entries[0].offset = 0;
    entries[0].color = make_color(10, 20, 30);
    entries[1].offset = 2;
    entries[1].color = make_color(40, 50, 60);
    view.SetRunArray(2, 6, runs);
    BTextView::FreeRunArray(runs);

    rgb_color color;
    view.GetFontAndColor(1, NULL, &color);
    EXPECT_TRUE(same_color(make_color(0, 0, 0), color));
    view.GetFontAndColor(3, NULL, &color);
    EXPECT_TRUE(same_color(make_color(10, 20, 30), color));
    view.GetFontAndColor(5, NULL, &color);
    EXPECT_TRUE(same_color(make_color(40, 50, 60), color));
    view.GetFontAndColor(6, NULL, &color);
    EXPECT_TRUE(same_color(make_color(0, 0, 0), color));
}

TEST_F(TextViewTest, InsertedTextTakesTheStyleOfWhatPrecedesIt) {
    BTextView view(BRect(0, 0, 100, 100), "text", BRect(0, 0, 100, 100), B_FOLLOW_NONE, 0);
    view.SetStylable(true);
    view.SetText("abcd");
    rgb_color green = make_color(0, 120, 0);
    view.SetFontAndColor(0, 2, NULL, 0, &green);
    view.Insert(2, "XY", 2);
    rgb_color color;
    view.GetFontAndColor(3, NULL, &color);
    EXPECT_TRUE(same_color(green, color));
    view.GetFontAndColor(4, NULL, &color);
    EXPECT_TRUE(same_color(make_color(0, 0, 0), color));
}

TEST_F(TextViewTest, DeletingKeepsTheStyleOfTheFollowingText) {
    BTextView view(BRect(0, 0, 100, 100), "text", BRect(0, 0, 100, 100), B_FOLLOW_NONE, 0);
    view.SetStylable(true);
    view.SetText("aabbcc");
    rgb_color green = make_color(0, 120, 0);
    view.SetFontAndColor(2, 4, NULL, 0, &green);
    view.Delete(1, 3);
    EXPECT_STREQ("abcc", view.Text());
    rgb_color color;
    view.GetFontAndColor(1, NULL, &color);
    EXPECT_TRUE(same_color(green, color));
    view.GetFontAndColor(2, NULL, &color);
    EXPECT_TRUE(same_color(make_color(0, 0, 0), color));
}

TEST_F(TextViewTest, SelectionStyleReportsWhichFontFieldsAgree) {
    BTextView view(BRect(0, 0, 100, 100), "text", BRect(0, 0, 100, 100), B_FOLLOW_NONE, 0);
    view.SetStylable(true);
    view.SetText("abcd");
    BFont big(be_plain_font);
    big.SetSize(18);
    view.SetFontAndColor(2, 4, &big, B_FONT_SIZE);
    view.Select(0, 4);
    BFont font;
    uint32 mode;
    bool sameColor;
    view.GetFontAndColor(&font, &mode, NULL, &sameColor);
    EXPECT_EQ(0u, mode & B_FONT_SIZE);
    EXPECT_NE(0u, mode & B_FONT_FAMILY_AND_STYLE);
    EXPECT_TRUE(sameColor);
}

// #pragma mark - Layout

TEST_F(TextViewTest, LongTextWrapsAtTheTextRectangleWidth) {
    BTextView view(BRect(0, 0, 100, 300), "text", BRect(0, 0, 100, 300), B_FOLLOW_NONE, 0);
    view.SetText("one two three four five six seven eight nine ten eleven twelve");
    EXPECT_GT(view.CountLines(), 2);
    for (int32 line = 0; line < view.CountLines(); line++)
        EXPECT_LE(view.LineWidth(line), 101);
    view.SetWordWrap(false);
    EXPECT_EQ(1, view.CountLines());
}

TEST_F(TextViewTest, LineBreaksStartLinesAndAFinalOneLeavesAnEmptyLine) {
    BTextView view(BRect(0, 0, 300, 300), "text", BRect(0, 0, 300, 300), B_FOLLOW_NONE, 0);
    view.SetText("first\nsecond\n");
    EXPECT_EQ(3, view.CountLines());
    EXPECT_EQ(6, view.OffsetAt(1));
    EXPECT_EQ(13, view.OffsetAt(2));
    EXPECT_EQ(1, view.LineAt(8));
    EXPECT_EQ(2, view.LineAt(13));
    view.SetText("");
    EXPECT_EQ(1, view.CountLines());
    EXPECT_GT(view.LineHeight(0), 0);
}

TEST_F(TextViewTest, PointAtAndOffsetAtAgree) {
    BTextView view(BRect(0, 0, 300, 300), "text", BRect(5, 5, 295, 295), B_FOLLOW_NONE, 0);
    view.SetText("abc def\nghi");
    for (int32 offset = 0; offset <= view.TextLength(); offset++) {
        float height;
        BPoint point = view.PointAt(offset, &height);
        EXPECT_EQ(offset, view.OffsetAt(point + BPoint(0.5, height / 2))) << offset;
    }
    EXPECT_EQ(5, view.PointAt(0).x);
    EXPECT_EQ(5, view.PointAt(0).y);
}

TEST_F(TextViewTest, LargerRunMakesItsLineTaller) {
    BTextView view(BRect(0, 0, 300, 300), "text", BRect(0, 0, 300, 300), B_FOLLOW_NONE, 0);
    view.SetStylable(true);
    view.SetText("small\nbig");
    float small = view.LineHeight(0);
    BFont big(be_plain_font);
    big.SetSize(30);
    view.SetFontAndColor(6, 9, &big, B_FONT_SIZE);
    EXPECT_EQ(small, view.LineHeight(0));
    EXPECT_GT(view.LineHeight(1), small * 2);
    EXPECT_EQ(view.LineHeight(0) + view.LineHeight(1), view.TextHeight(0, 1));
}

TEST_F(TextViewTest, CenteredAlignmentSplitsTheRoomOnALine) {
    BTextView view(BRect(0, 0, 200, 100), "text", BRect(0, 0, 200, 100), B_FOLLOW_NONE, 0);
    view.SetText("mid");
    view.SetAlignment(B_ALIGN_CENTER);
    float left = view.PointAt(0).x;
    float right = view.PointAt(3).x;
    EXPECT_NEAR(left, 200 - right, 2);
}

// #pragma mark - Drawing

TEST_F(TextViewTest, StyledRangeIsDrawnInItsColourAndSize) {
    BTextView* view = make_text_view();
    view->SetStylable(true);
    view->SetText("Hello World");
    BFont big(be_plain_font);
    big.SetSize(24);
    rgb_color red = make_color(200, 0, 0);
    view->SetFontAndColor(0, 5, &big, B_FONT_SIZE, &red);
    // No caret: only the glyphs are drawn.
    view->MakeEditable(false);
    BWindow* window = Show(view);

    Capture capture;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
    window->Lock();
    float styledEnd = 10 + view->PointAt(5).x;
    window->Unlock();
    rgb_color white = make_color(255, 255, 255);
    BRect redInk = capture.BoundsOf(make_color(200, 0, 0, 255));
    BRect styledInk = ink_bounds(capture, BRect(10, 10, styledEnd - 1, 80), white);
    BRect plainInk = ink_bounds(capture, BRect(styledEnd, 10, 289, 80), white);
    ASSERT_TRUE(redInk.IsValid());
    ASSERT_TRUE(plainInk.IsValid());
    // The red glyphs are the styled ones, left of the end of "Hello", more
    // than half again as tall as the plain ones, which have no red.
    EXPECT_EQ(styledInk, redInk | styledInk);
    EXPECT_GT(redInk.Height(), styledInk.Height() * 0.8);
    EXPECT_EQ(0, count_color(capture, BRect(styledEnd, 10, 289, 80), make_color(200, 0, 0)));
    EXPECT_GT(styledInk.Height(), plainInk.Height() * 1.6);
    EXPECT_GT(count_color(capture, plainInk, make_color(0, 0, 0)) +
                  (testing_support::darkest_value(capture, plainInk) < 60 ? 1 : 0),
              0);
    // Both share one baseline.
    EXPECT_NEAR(styledInk.bottom, plainInk.bottom, 1);
}

TEST_F(TextViewTest, SelectionIsHighlightedWhileTheViewHasTheFocus) {
    BTextView* view = make_text_view();
    view->SetText("select me");
    BWindow* window = Show(view);
    window->Lock();
    view->Select(0, 6);
    window->Unlock();
    WaitForIdle();

    Capture capture;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
    rgb_color highlight = tint_color(make_color(255, 255, 255), B_HIGHLIGHT_BACKGROUND_TINT);
    EXPECT_GT(count_color(capture, BRect(10, 10, 289, 40), highlight), 20);
}

TEST_F(TextViewTest, HiddenTypingShowsBulletsAndRefusesToCopy) {
    BTextView* view = make_text_view();
    view->HideTyping(true);
    view->SetText("secret");
    // No caret: only the bullets are drawn.
    view->MakeEditable(false);
    BWindow* window = Show(view);
    EXPECT_EQ("secret", TextOf(window, view));
    Capture capture;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
    BRect ink = ink_bounds(capture, BRect(10, 10, 289, 40), make_color(255, 255, 255));
    ASSERT_TRUE(ink.IsValid());
    // Six bullets sit around the middle of the line, above the baseline's descenders.
    window->Lock();
    float lineHeight = view->LineHeight(0);
    window->Unlock();
    EXPECT_LT(ink.Height(), lineHeight / 2);
}

// #pragma mark - Editing

TEST_F(TextViewTest, TypingInsertsAtTheCaret) {
    BTextView* view = make_text_view();
    view->SetText("ac");
    BWindow* window = Show(view);
    window->Lock();
    view->Select(1, 1);
    window->Unlock();
    Type("b");
    EXPECT_EQ("abc", TextOf(window, view));
    Type("XY");
    EXPECT_EQ("abXYc", TextOf(window, view));
}

TEST_F(TextViewTest, TypingReplacesTheSelection) {
    BTextView* view = make_text_view();
    view->SetText("replace this");
    BWindow* window = Show(view);
    window->Lock();
    view->Select(8, 12);
    window->Unlock();
    Type("that");
    EXPECT_EQ("replace that", TextOf(window, view));
}

TEST_F(TextViewTest, BackspaceDeletesTheWholePreviousCharacter) {
    BTextView* view = make_text_view();
    view->SetText("caf\xC3\xA9");
    BWindow* window = Show(view);
    window->Lock();
    view->Select(5, 5);
    window->Unlock();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kBackspaceKey));
    WaitForIdle();
    EXPECT_EQ("caf", TextOf(window, view));
}

TEST_F(TextViewTest, ArrowsMoveTheCaretAndShiftExtendsTheSelection) {
    BTextView* view = make_text_view();
    view->SetText("abcdef");
    BWindow* window = Show(view);
    window->Lock();
    view->Select(2, 2);
    window->Unlock();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kRightKey, NULL, 0));
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kRightKey, NULL, kShift));
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kRightKey, NULL, kShift));
    WaitForIdle();
    int32 start;
    int32 end;
    window->Lock();
    view->GetSelection(&start, &end);
    window->Unlock();
    EXPECT_EQ(3, start);
    EXPECT_EQ(5, end);

    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kLeftKey, NULL, 0));
    WaitForIdle();
    window->Lock();
    view->GetSelection(&start, &end);
    window->Unlock();
    EXPECT_EQ(3, start);
    EXPECT_EQ(3, end);
}

TEST_F(TextViewTest, DisallowedCharacterIsRefusedWithABeep) {
    BTextView* view = make_text_view();
    view->DisallowChar('x');
    BWindow* window = Show(view);
    uint32 beeps = HeadlessTestApi::CountBeeps();
    Type("axb");
    EXPECT_EQ("ab", TextOf(window, view));
    EXPECT_EQ(beeps + 1, HeadlessTestApi::CountBeeps());
}

TEST_F(TextViewTest, MaxBytesLimitsWhatCanBeTyped) {
    BTextView* view = make_text_view();
    view->SetMaxBytes(3);
    BWindow* window = Show(view);
    Type("abcdef");
    EXPECT_EQ("abc", TextOf(window, view));
}

TEST_F(TextViewTest, ViewThatIsNotEditableIgnoresTyping) {
    BTextView* view = make_text_view();
    view->SetText("fixed");
    view->MakeEditable(false);
    BWindow* window = Show(view);
    Type("zz");
    EXPECT_EQ("fixed", TextOf(window, view));
}

TEST_F(TextViewTest, SingleLineFieldRefusingLineBreaksKeepsOneLine) {
    BTextView* view = make_text_view(BRect(10, 10, 289, 30));
    view->DisallowChar(B_ENTER);
    BWindow* window = Show(view);
    Type("one");
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x47));
    Type("two");
    EXPECT_EQ("onetwo", TextOf(window, view));
    window->Lock();
    EXPECT_EQ(1, view->CountLines());
    window->Unlock();
}

TEST_F(TextViewTest, CopyAndPasteGoThroughTheClipboard) {
    BTextView* view = make_text_view();
    view->SetText("copy paste");
    BWindow* window = Show(view);
    window->Lock();
    view->Select(0, 4);
    window->Unlock();
    ASSERT_EQ(B_OK, window->PostMessage(B_COPY, view));
    WaitForIdle();
    window->Lock();
    view->Select(10, 10);
    window->Unlock();
    ASSERT_EQ(B_OK, window->PostMessage(B_PASTE, view));
    WaitForIdle();
    EXPECT_EQ("copy pastecopy", TextOf(window, view));
}

TEST_F(TextViewTest, CommandXCutsTheSelectionOfTheFocusedView) {
    BTextView* view = make_text_view();
    view->SetText("cut here");
    BWindow* window = Show(view);
    window->Lock();
    view->Select(3, 8);
    window->Unlock();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x4d, "x", B_COMMAND_KEY | B_LEFT_COMMAND_KEY));
    WaitForIdle();
    EXPECT_EQ("cut", TextOf(window, view));
    ASSERT_EQ(B_OK, window->PostMessage(B_PASTE, view));
    WaitForIdle();
    EXPECT_EQ("cut here", TextOf(window, view));
}

TEST_F(TextViewTest, ClickPlacesTheCaretAndDragSelects) {
    BTextView* view = make_text_view();
    view->SetText("drag over this text");
    BWindow* window = Show(view);
    window->Lock();
    float height;
    BPoint from = view->PointAt(5, &height) + BPoint(10, 10 + height / 2);
    BPoint to = view->PointAt(9) + BPoint(10, 10 + height / 2);
    window->Unlock();

    ASSERT_EQ(B_OK, HeadlessTestApi::PressMouse(ScreenPoint(window, from)));
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(ScreenPoint(window, to)));
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseMouse(ScreenPoint(window, to)));
    WaitForIdle();
    int32 start;
    int32 end;
    window->Lock();
    view->GetSelection(&start, &end);
    window->Unlock();
    EXPECT_EQ(5, start);
    EXPECT_EQ(9, end);
}

TEST_F(TextViewTest, DoubleClickSelectsAWord) {
    BTextView* view = make_text_view();
    view->SetText("pick a word");
    BWindow* window = Show(view);
    window->Lock();
    float height;
    BPoint inside = view->PointAt(8, &height) + BPoint(12, 10 + height / 2);
    window->Unlock();

    ASSERT_EQ(B_OK, HeadlessTestApi::Click(ScreenPoint(window, inside), B_PRIMARY_MOUSE_BUTTON, 2));
    WaitForIdle();
    int32 start;
    int32 end;
    window->Lock();
    view->GetSelection(&start, &end);
    window->Unlock();
    EXPECT_EQ(7, start);
    EXPECT_EQ(11, end);
}

TEST_F(TextViewTest, TabInAViewThatIsNotEditableMovesTheFocusOn) {
    BTextView* view = make_text_view(BRect(10, 10, 289, 60));
    view->MakeEditable(false);
    view->SetFlags(view->Flags() | B_NAVIGABLE);
    BTextView* other = make_text_view(BRect(10, 100, 289, 150));
    other->SetFlags(other->Flags() | B_NAVIGABLE);
    BWindow* window = Show(view);
    window->Lock();
    window->AddChild(other);
    window->Unlock();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x26));
    WaitForIdle();
    window->Lock();
    EXPECT_EQ(other, window->CurrentFocus());
    window->Unlock();
}
