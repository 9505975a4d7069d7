#include <Font.h>
#include <String.h>

#include <Watchdog.h>

#include <gtest/gtest.h>

#include <stdint.h>
#include <string.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace {

const char* const kEllipsis = "\xE2\x80\xA6";

// Whether the string is well-formed UTF-8: every sequence complete, no overlong
// form, no surrogate, nothing above U+10FFFF.
bool is_valid_utf8(const char* text) {
    const uint8_t* byte = (const uint8_t*)text;
    while (*byte != 0) {
        uint32_t lead = *byte;
        int continuations;
        uint32_t codePoint;
        uint32_t smallest;
        if (lead < 0x80) {
            byte++;
            continue;
        } else if (lead >= 0xc2 && lead < 0xe0) {
            continuations = 1;
            codePoint = lead & 0x1f;
            smallest = 0x80;
        } else if (lead >= 0xe0 && lead < 0xf0) {
            continuations = 2;
            codePoint = lead & 0x0f;
            smallest = 0x800;
        } else if (lead >= 0xf0 && lead < 0xf5) {
            continuations = 3;
            codePoint = lead & 0x07;
            smallest = 0x10000;
        } else {
            return false;
        }
        byte++;
        for (int i = 0; i < continuations; i++, byte++) {
            if ((*byte & 0xc0) != 0x80)
                return false;
            codePoint = (codePoint << 6) | (*byte & 0x3f);
        }
        if (codePoint < smallest || codePoint > 0x10ffff ||
            (codePoint >= 0xd800 && codePoint < 0xe000)) {
            return false;
        }
    }
    return true;
}

} // namespace

// font_family is an array; return it through a small wrapper instead.
struct FamilyName {
    font_family name;
};

static FamilyName family_name(const BFont& font) {
    FamilyName result;
    font_style style;
    font.GetFamilyAndStyle(&result.name, &style);
    return result;
}

TEST(FontTest, PlainFontIsASansSerifFaceAtTenPixels) {
    EXPECT_STREQ("DejaVu Sans", family_name(*be_plain_font).name);
    EXPECT_EQ(10.0f, be_plain_font->Size());
    EXPECT_NE(0, be_plain_font->Face() & B_REGULAR_FACE);
    EXPECT_FALSE(be_plain_font->IsFixed());
}

TEST(FontTest, BoldFontIsTheBoldFaceAtTwelvePixels) {
    EXPECT_STREQ("DejaVu Sans", family_name(*be_bold_font).name);
    EXPECT_EQ(12.0f, be_bold_font->Size());
    EXPECT_NE(0, be_bold_font->Face() & B_BOLD_FACE);
}

TEST(FontTest, FixedFontIsMonospacedAtTwelvePixels) {
    EXPECT_EQ(12.0f, be_fixed_font->Size());
    EXPECT_TRUE(be_fixed_font->IsFixed());
    EXPECT_EQ(be_fixed_font->StringWidth("iiii"), be_fixed_font->StringWidth("WWWW"));
}

TEST(FontTest, DefaultFontIsACopyOfThePlainFont) {
    BFont font;
    EXPECT_TRUE(font == *be_plain_font);
    BFont fromPointer(be_bold_font);
    EXPECT_TRUE(fromPointer == *be_bold_font);
    BFont fromNull((const BFont*)NULL);
    EXPECT_TRUE(fromNull == *be_plain_font);
}

TEST(FontTest, StringWidthGrowsWithLength) {
    BFont font(be_plain_font);
    float previous = 0.0f;
    const char* text = "Glimrow launcher";
    for (int length = 1; length <= (int)strlen(text); length++) {
        float width = font.StringWidth(text, length);
        if (text[length - 1] != ' ') {
            EXPECT_GT(width, previous) << length;
        }
        previous = width;
    }
}

TEST(FontTest, StringWidthOfNothingIsZero) {
    EXPECT_EQ(0.0f, be_plain_font->StringWidth(""));
    EXPECT_EQ(0.0f, be_plain_font->StringWidth(NULL));
    EXPECT_EQ(0.0f, be_plain_font->StringWidth("abc", 0));
}

TEST(FontTest, StringWidthCountsOnlyTheGivenBytes) {
    EXPECT_EQ(be_plain_font->StringWidth("He"), be_plain_font->StringWidth("Hello", 2));
    // A length past the end stops at the terminating NUL.
    EXPECT_EQ(be_plain_font->StringWidth("Hi"), be_plain_font->StringWidth("Hi", 100));
}

TEST(FontTest, StringWidthsAreWholePixels) {
    float width = be_plain_font->StringWidth("Terminal Emulator");
    EXPECT_EQ(width, floorf(width));
    EXPECT_GT(width, 50.0f);
    EXPECT_LT(width, 150.0f);
}

TEST(FontTest, LargerSizesMeasureWider) {
    BFont font(be_plain_font);
    float small = font.StringWidth("Preferences");
    font.SetSize(20.0f);
    float large = font.StringWidth("Preferences");
    EXPECT_GT(large, small * 1.7f);
}

TEST(FontTest, InvalidUtf8IsMeasuredWithoutFailing) {
    const char broken[] = {'a', (char)0xff, (char)0xc3, 'b', 0};
    EXPECT_GT(be_plain_font->StringWidth(broken), be_plain_font->StringWidth("ab"));
}

TEST(FontTest, HeightHasAscentDescentAndLeading) {
    font_height height;
    be_plain_font->GetHeight(&height);
    EXPECT_GT(height.ascent, 7.0f);
    EXPECT_LT(height.ascent, 12.0f);
    EXPECT_GT(height.descent, 1.0f);
    EXPECT_LT(height.descent, height.ascent);
    EXPECT_GE(height.leading, 0.0f);
    // The program's 15-pixel cells hold a line of the plain font.
    EXPECT_LE(height.ascent + height.descent, 15.0f);
}

TEST(FontTest, TruncateEndKeepsTheStart) {
    BString text("Hello World");
    float width = be_plain_font->StringWidth("Hello W\xE2\x80\xA6");
    be_plain_font->TruncateString(&text, B_TRUNCATE_END, width);
    EXPECT_STREQ("Hello W\xE2\x80\xA6", text.String());
}

TEST(FontTest, TruncateBeginningKeepsTheEnd) {
    BString text("Hello World");
    float width = be_plain_font->StringWidth("\xE2\x80\xA6o World");
    be_plain_font->TruncateString(&text, B_TRUNCATE_BEGINNING, width);
    EXPECT_STREQ("\xE2\x80\xA6o World", text.String());
}

TEST(FontTest, TruncateMiddleKeepsBothEnds) {
    BString text("Hello World");
    float width = be_plain_font->StringWidth("Hel\xE2\x80\xA6rld");
    be_plain_font->TruncateString(&text, B_TRUNCATE_MIDDLE, width);
    EXPECT_STREQ("Hel\xE2\x80\xA6rld", text.String());
}

TEST(FontTest, TruncateSmartCutsInTheMiddle) {
    BString smart("Hello World");
    BString middle("Hello World");
    float width = be_plain_font->StringWidth("Hel\xE2\x80\xA6rld");
    be_plain_font->TruncateString(&smart, B_TRUNCATE_SMART, width);
    be_plain_font->TruncateString(&middle, B_TRUNCATE_MIDDLE, width);
    EXPECT_STREQ(middle.String(), smart.String());
}

TEST(FontTest, TruncatedStringsFitTheWidth) {
    const uint32 modes[] = {B_TRUNCATE_END, B_TRUNCATE_BEGINNING, B_TRUNCATE_MIDDLE};
    for (uint32 mode : modes) {
        for (float width = 12.0f; width < 90.0f; width += 3.5f) {
            BString text("Application Preferences");
            be_plain_font->TruncateString(&text, mode, width);
            EXPECT_LE(be_plain_font->StringWidth(text.String()), width) << mode << " " << width;
            EXPECT_NE(-1, text.FindFirst(kEllipsis)) << mode << " " << width;
        }
    }
}

TEST(FontTest, TruncateKeepsAStringThatFits) {
    BString text("Mail");
    be_plain_font->TruncateString(&text, B_TRUNCATE_MIDDLE, 1000.0f);
    EXPECT_STREQ("Mail", text.String());
}

TEST(FontTest, TruncateBelowTheEllipsisWidthGivesNothing) {
    BString text("Hello World");
    be_plain_font->TruncateString(&text, B_TRUNCATE_END, 1.0f);
    EXPECT_STREQ("", text.String());
    BString negative("Hello");
    be_plain_font->TruncateString(&negative, B_TRUNCATE_END, -5.0f);
    EXPECT_STREQ("", negative.String());
}

TEST(FontTest, TruncateNeverSplitsACharacter) {
    // The checker itself rejects a cut sequence.
    ASSERT_FALSE(is_valid_utf8("\xC3\xA9t\xC3"));
    for (float width = 10.0f; width < 80.0f; width += 1.0f) {
        BString text(
            "\xC3\xA9t\xC3\xA9 \xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC \xC3\xBC\xC3\xBC\xC3\xBC");
        be_plain_font->TruncateString(&text, B_TRUNCATE_MIDDLE, width);
        EXPECT_TRUE(is_valid_utf8(text.String())) << width;
    }
}

TEST(FontTest, GetTruncatedStringsFillsEveryResult) {
    const char* strings[] = {"Hello World", "Hi", "Another long label"};
    float width = be_plain_font->StringWidth("Hel\xE2\x80\xA6rld");
    BString results[3];
    be_plain_font->GetTruncatedStrings(strings, 3, B_TRUNCATE_MIDDLE, width, results);
    EXPECT_STREQ("Hel\xE2\x80\xA6rld", results[0].String());
    EXPECT_STREQ("Hi", results[1].String());
    EXPECT_LE(be_plain_font->StringWidth(results[2].String()), width);

    char first[32];
    char second[32];
    char third[32];
    char* buffers[3] = {first, second, third};
    be_plain_font->GetTruncatedStrings(strings, 3, B_TRUNCATE_MIDDLE, width, buffers);
    EXPECT_STREQ(results[0].String(), first);
    EXPECT_STREQ("Hi", second);
    EXPECT_STREQ(results[2].String(), third);
}

TEST(FontTest, GetStringWidthsMatchesStringWidth) {
    const char* strings[] = {"one", "three", "eleven"};
    const int32 lengths[] = {3, 5, 3};
    float widths[3];
    be_plain_font->GetStringWidths(strings, lengths, 3, widths);
    EXPECT_EQ(be_plain_font->StringWidth("one"), widths[0]);
    EXPECT_EQ(be_plain_font->StringWidth("three"), widths[1]);
    EXPECT_EQ(be_plain_font->StringWidth("ele"), widths[2]);
}

TEST(FontTest, EscapementsAreFractionsOfTheSize) {
    float escapements[3];
    be_plain_font->GetEscapements("Wi ", 3, escapements);
    EXPECT_FLOAT_EQ(be_plain_font->StringWidth("W") / 10.0f, escapements[0]);
    EXPECT_LT(escapements[1], escapements[0]);
    escapement_delta delta = {1.0f, 5.0f};
    float spaced[3];
    be_plain_font->GetEscapements("Wi ", 3, &delta, spaced);
    EXPECT_FLOAT_EQ(escapements[0] + 0.1f, spaced[0]);
    EXPECT_FLOAT_EQ(escapements[2] + 0.5f, spaced[2]);
}

TEST(FontTest, UnknownFamilyIsRefusedAndLeavesTheFont) {
    BFont font(be_plain_font);
    EXPECT_EQ(B_NAME_NOT_FOUND, font.SetFamilyAndStyle("No Such Family Anywhere", "Roman"));
    EXPECT_EQ(B_NAME_NOT_FOUND, font.SetFamilyAndStyle("DejaVu Sans", "No Such Style"));
    EXPECT_TRUE(font == *be_plain_font);
}

TEST(FontTest, InstalledFamilyAndStyleAreAccepted) {
    BFont font(be_plain_font);
    ASSERT_EQ(B_OK, font.SetFamilyAndStyle("DejaVu Serif", "Bold"));
    font_family family;
    font_style style;
    font.GetFamilyAndStyle(&family, &style);
    EXPECT_STREQ("DejaVu Serif", family);
    EXPECT_STREQ("Bold", style);
    EXPECT_NE(0, font.Face() & B_BOLD_FACE);

    ASSERT_EQ(B_OK, font.SetFamilyAndStyle("DejaVu Sans Mono", NULL));
    font.GetFamilyAndStyle(&family, &style);
    EXPECT_STREQ("DejaVu Sans Mono", family);
    EXPECT_EQ(0, font.Face() & (B_BOLD_FACE | B_ITALIC_FACE));
}

TEST(FontTest, SetFacePicksTheMatchingStyle) {
    BFont font(be_plain_font);
    font.SetFace(B_BOLD_FACE | B_ITALIC_FACE);
    uint16 face = font.Face();
    EXPECT_NE(0, face & B_BOLD_FACE);
    EXPECT_NE(0, face & B_ITALIC_FACE);
    EXPECT_STREQ("DejaVu Sans", family_name(font).name);
    font.SetFace(B_REGULAR_FACE | B_UNDERSCORE_FACE);
    EXPECT_EQ(B_REGULAR_FACE | B_UNDERSCORE_FACE, font.Face());
    EXPECT_TRUE(font.StringWidth("Bold") < BFont(be_bold_font).StringWidth("Bold"));
}

TEST(FontTest, BoldMeasuresWiderThanPlainAtTheSameSize) {
    BFont plain(be_plain_font);
    BFont bold(be_bold_font);
    bold.SetSize(plain.Size());
    EXPECT_GT(bold.StringWidth("Workspaces"), plain.StringWidth("Workspaces"));
}

TEST(FontTest, SettersStoreAndClamp) {
    BFont font;
    font.SetSize(0.0f);
    EXPECT_EQ(1.0f, font.Size());
    font.SetSize(NAN);
    EXPECT_EQ(1.0f, font.Size());
    font.SetRotation(90.0f);
    EXPECT_EQ(90.0f, font.Rotation());
    font.SetShear(10.0f);
    EXPECT_EQ(45.0f, font.Shear());
    font.SetFlags(B_DISABLE_ANTIALIASING);
    EXPECT_EQ((uint32)B_DISABLE_ANTIALIASING, font.Flags());
    font.SetSpacing(B_FIXED_SPACING);
    EXPECT_EQ(B_FIXED_SPACING, font.Spacing());
    EXPECT_TRUE(font != *be_plain_font);
}

TEST(FontTest, FamiliesIncludeTheDejaVuFaces) {
    int32 count = count_font_families();
    ASSERT_GT(count, 0);
    bool foundSans = false;
    bool foundMono = false;
    for (int32 i = 0; i < count; i++) {
        font_family family;
        uint32 flags = 0;
        ASSERT_EQ(B_OK, get_font_family(i, &family, &flags));
        if (strcmp(family, "DejaVu Sans") == 0)
            foundSans = true;
        if (strcmp(family, "DejaVu Sans Mono") == 0) {
            foundMono = true;
            EXPECT_NE(0u, flags & B_IS_FIXED);
        }
    }
    EXPECT_TRUE(foundSans);
    EXPECT_TRUE(foundMono);
    font_family family;
    EXPECT_EQ(B_BAD_VALUE, get_font_family(count, &family));

    font_family sans = "DejaVu Sans";
    int32 styles = count_font_styles(sans);
    ASSERT_GT(styles, 1);
    bool foundBold = false;
    for (int32 i = 0; i < styles; i++) {
        font_style style;
        uint16 face = 0;
        ASSERT_EQ(B_OK, get_font_style(sans, i, &style, &face));
        if (strcmp(style, "Bold") == 0) {
            foundBold = true;
            EXPECT_EQ(B_BOLD_FACE, face);
        }
    }
    EXPECT_TRUE(foundBold);
}

TEST(FontTest, ThreadsMeasureAtTheSameTimeWithTheSameResults) {
    static const char* const kLabels[] = {"Terminal", "Mail", "Preferences", "Workspaces", "Trash"};
    // Shared with the threads by ownership, so a thread outliving a failed
    // wait still finds it.
    struct Shared {
        std::vector<float> expected;
        std::atomic<int> finished{0};
        std::atomic<int> mismatches{0};
    };
    auto shared = std::make_shared<Shared>();
    for (const char* label : kLabels)
        shared->expected.push_back(be_plain_font->StringWidth(label));

    const int kThreads = 4;
    for (int thread = 0; thread < kThreads; thread++) {
        std::thread([shared, thread]() {
            BFont font(thread % 2 == 0 ? be_plain_font : be_bold_font);
            font.SetSize(10.0f);
            font.SetFace(B_REGULAR_FACE);
            for (int round = 0; round < 50; round++) {
                for (size_t i = 0; i < shared->expected.size(); i++) {
                    float expected = shared->expected[i];
                    if (font.StringWidth(kLabels[i]) != expected)
                        shared->mismatches++;
                    BString text(kLabels[i]);
                    font.TruncateString(&text, B_TRUNCATE_MIDDLE, expected - 3.0f);
                    if (font.StringWidth(text.String()) > expected - 3.0f)
                        shared->mismatches++;
                }
            }
            shared->finished++;
        }).detach();
    }
    ASSERT_TRUE(testing_support::wait_until([&]() { return shared->finished.load() == kThreads; }));
    EXPECT_EQ(0, shared->mismatches.load());
}
