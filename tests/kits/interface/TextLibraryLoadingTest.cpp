// The text stack is opened when the first text is measured or drawn, never at
// start. Each test runs in a process of its own, so "not loaded yet" means not
// loaded by anything the process did so far.
#include "HeadlessAppTest.h"

#include "ControlsTestSupport.h"
#include "interface/TextLibrary.h"

#include <Font.h>
#include <View.h>
#include <Window.h>

#include "LoadedLibraries.h"

#include <gtest/gtest.h>

#include <math.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

using BPrivate::Capture;
using BPrivate::HeadlessTestApi;
using BPrivate::TextLibrary;
using testing_support::HeadlessAppTest;

using testing_support::is_library_loaded;

namespace {

const rgb_color kWhite = {255, 255, 255, 255};

bool text_stack_loaded() {
    return is_library_loaded("libpango-1.0.so.0") || is_library_loaded("libpangocairo-1.0.so.0");
}

// A white view that draws a string, or nothing when given none.
class LabelView : public BView {
public:
    LabelView(BRect frame, const char* label)
        : BView(frame, "label", B_FOLLOW_NONE, B_WILL_DRAW), fLabel(label) {}

    void Draw(BRect) override {
        SetHighColor(kWhite);
        FillRect(Bounds());
        if (fLabel == NULL)
            return;
        SetHighColor(0, 0, 0);
        SetLowColor(kWhite);
        DrawString(fLabel, BPoint(5, 20));
    }

private:
    const char* fLabel;
};

class TextLibraryLoadingTest : public HeadlessAppTest {
protected:
    BWindow* ShowWindow(const char* label) {
        BWindow* window = new BWindow(BRect(50, 50, 149, 99), "text", B_TITLED_WINDOW, 0);
        window->AddChild(new LabelView(BRect(0, 0, 99, 49), label));
        window->Show();
        WaitForIdle();
        return window;
    }
};

} // namespace

TEST_F(TextLibraryLoadingTest, ApplicationAndWindowWithoutTextLeaveTheTextLibrariesUnloaded) {
    BWindow* window = ShowWindow(NULL);
    Capture capture;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
    EXPECT_FALSE(text_stack_loaded());
}

TEST(TextLibraryLoadingStandaloneTest, ChoosingASystemFontLeavesTheTextLibrariesUnloaded) {
    BFont font(be_bold_font);
    font.SetSize(20.0f);
    ASSERT_EQ(B_OK, font.SetFamilyAndStyle("DejaVu Sans Mono", "Book"));
    ASSERT_EQ(B_OK, font.SetFamilyAndStyle("DejaVu Sans", "Bold"));
    EXPECT_FALSE(text_stack_loaded());
}

TEST(TextLibraryLoadingStandaloneTest, MeasuringTheFirstStringLoadsTheTextLibraries) {
    ASSERT_FALSE(text_stack_loaded());
    EXPECT_GT(be_plain_font->StringWidth("Glimrow"), 0.0f);
    EXPECT_TRUE(is_library_loaded("libpango-1.0.so.0"));
    EXPECT_TRUE(is_library_loaded("libpangocairo-1.0.so.0"));
}

TEST_F(TextLibraryLoadingTest, DrawingTheFirstStringLoadsTheTextLibrariesAndInksPixels) {
    ASSERT_FALSE(text_stack_loaded());
    BWindow* window = ShowWindow("Glimrow");
    Capture capture;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
    BRect ink = testing_support::ink_bounds(capture, BRect(0, 0, 99, 49), kWhite);
    ASSERT_TRUE(ink.IsValid());
    // Glyphs of a 10 pixel font on the baseline at y = 20, starting at x = 5.
    EXPECT_GE(ink.left, 5);
    EXPECT_LE(ink.bottom, 23);
    EXPECT_GT(ink.Width(), 20);
    EXPECT_TRUE(is_library_loaded("libpango-1.0.so.0"));
}

TEST(TextLibraryLoadingStandaloneTest, LoadingAMissingLibraryReportsEntryNotFound) {
    TextLibrary library;
    std::string error;
    EXPECT_EQ(B_ENTRY_NOT_FOUND, library.Load("libglimrow-no-such-library.so.0", &error));
    EXPECT_NE(std::string::npos, error.find("libglimrow-no-such-library.so.0")) << error;
    EXPECT_EQ(NULL, library.pango_layout_new);
}

TEST(TextLibraryLoadingStandaloneTest, LoadingALibraryWithoutTheTextFunctionsReportsNameNotFound) {
    TextLibrary library;
    std::string error;
    // The maths library is there on every system and has none of them.
    EXPECT_EQ(B_NAME_NOT_FOUND, library.Load("libm.so.6", &error));
    EXPECT_NE(std::string::npos, error.find("g_free")) << error;
    EXPECT_EQ(NULL, library.g_free);
    EXPECT_EQ(NULL, library.pango_layout_new);
}

TEST(TextLibraryLoadingStandaloneTest, LoadingWithoutANameIsABadValue) {
    TextLibrary library;
    EXPECT_EQ(B_BAD_VALUE, library.Load(NULL, NULL));
    EXPECT_EQ(NULL, library.pango_layout_new);
}

TEST(TextLibraryLoadingStandaloneTest, LoadingTheTextLibraryFillsEveryEntry) {
    TextLibrary library;
    std::string error;
    ASSERT_EQ(B_OK, library.Load("libpangocairo-1.0.so.0", &error)) << error;
#define GLIMROW_EXPECT_TEXT_FUNCTION(name) EXPECT_NE(nullptr, (void*)library.name) << #name;
    GLIMROW_TEXT_FUNCTIONS(GLIMROW_EXPECT_TEXT_FUNCTION)
#undef GLIMROW_EXPECT_TEXT_FUNCTION
}

TEST(TextLibraryLoadingDeathTest, ABrokenTextLibraryEndsTheProcessWithOneClearLine) {
    // A folder in the working directory where the text library's name leads to
    // the maths library, which has none of its functions. The dynamic loader
    // reads its search path when a process starts, so the death test re-runs
    // this program (which makes the same folder again) rather than forking.
    Dl_info mathsLibrary;
    ASSERT_NE(0, dladdr((void*)static_cast<double (*)(double)>(&::cos), &mathsLibrary));
    char folder[PATH_MAX];
    ASSERT_NE(nullptr, getcwd(folder, sizeof(folder)));
    std::string brokenFolder = std::string(folder) + "/broken-text-library";
    std::string brokenLibrary = brokenFolder + "/libpangocairo-1.0.so.0";
    mkdir(brokenFolder.c_str(), 0700);
    symlink(mathsLibrary.dli_fname, brokenLibrary.c_str());
    ASSERT_EQ(0, setenv("LD_LIBRARY_PATH", brokenFolder.c_str(), 1));

    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(be_plain_font->StringWidth("Glimrow"), testing::ExitedWithCode(1),
                "^glimrow: cannot draw text: .*undefined symbol: g_free\n$");

    unsetenv("LD_LIBRARY_PATH");
    unlink(brokenLibrary.c_str());
    rmdir(brokenFolder.c_str());
}
