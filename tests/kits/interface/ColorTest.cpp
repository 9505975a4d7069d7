#include <GraphicsDefs.h>
#include <InterfaceDefs.h>

#include <gtest/gtest.h>

#include <math.h>

namespace {

// The tint formula for one component: lighten towards 255 below 1.0, darken
// towards 0 from 1.0 on, rounded to the nearest value.
uint8 expected_component(uint8 component, float tint) {
    float value;
    if (tint < 1.0f)
        value = 255.0f - (255.0f - component) * tint;
    else
        value = component * (2.0f - tint);
    return (uint8)floorf(value + 0.5f);
}

} // namespace

TEST(ColorTest, MakeColorIsOpaqueByDefault) {
    rgb_color color = make_color(1, 2, 3);
    EXPECT_EQ(1, color.red);
    EXPECT_EQ(2, color.green);
    EXPECT_EQ(3, color.blue);
    EXPECT_EQ(255, color.alpha);
}

TEST(ColorTest, RgbColorIsFourBytesInRedGreenBlueAlphaOrder) {
    rgb_color color = {0x11, 0x22, 0x33, 0x44};
    ASSERT_EQ(4u, sizeof(rgb_color));
    const uint8* bytes = reinterpret_cast<const uint8*>(&color);
    EXPECT_EQ(0x11, bytes[0]);
    EXPECT_EQ(0x22, bytes[1]);
    EXPECT_EQ(0x33, bytes[2]);
    EXPECT_EQ(0x44, bytes[3]);
}

TEST(ColorTest, ColorEqualityIncludesAlpha) {
    rgb_color color;
    color.set_to(10, 20, 30);
    EXPECT_TRUE(color == make_color(10, 20, 30, 255));
    EXPECT_TRUE(color != make_color(10, 20, 30, 0));
}

TEST(ColorTest, PatternsHaveTheirBeBits) {
    for (int i = 0; i < 8; i++) {
        EXPECT_EQ(0xff, B_SOLID_HIGH.data[i]);
        EXPECT_EQ(0x00, B_SOLID_LOW.data[i]);
        EXPECT_EQ(i % 2 == 0 ? 0xaa : 0x55, B_MIXED_COLORS.data[i]);
    }
}

TEST(ColorTest, TransparentConstantsHaveTheirBeValues) {
    EXPECT_EQ(make_color(0x77, 0x74, 0x77, 0x00), B_TRANSPARENT_COLOR);
    EXPECT_EQ(B_TRANSPARENT_COLOR, B_TRANSPARENT_32_BIT);
    EXPECT_EQ(0xff, B_TRANSPARENT_MAGIC_CMAP8);
    EXPECT_EQ(0xff, B_TRANSPARENT_8_BIT);
    EXPECT_EQ(0x00777477u, B_TRANSPARENT_MAGIC_RGBA32);
    EXPECT_EQ(0x39ce, B_TRANSPARENT_MAGIC_RGBA15);
}

// Tints are rounded to the nearest value, so the standard grey 216 lands on
// round steps: 240, 232, 184, 152, 128, 96.
TEST(ColorTest, TintsOfStandardGreyLandOnTheirSteps) {
    rgb_color grey = make_color(216, 216, 216);
    EXPECT_EQ(255, tint_color(grey, B_LIGHTEN_MAX_TINT).red);
    EXPECT_EQ(240, tint_color(grey, B_LIGHTEN_2_TINT).red);
    EXPECT_EQ(232, tint_color(grey, B_LIGHTEN_1_TINT).red);
    EXPECT_EQ(216, tint_color(grey, B_NO_TINT).red);
    EXPECT_EQ(184, tint_color(grey, B_DARKEN_1_TINT).red);
    EXPECT_EQ(152, tint_color(grey, B_DARKEN_2_TINT).red);
    EXPECT_EQ(128, tint_color(grey, B_DARKEN_3_TINT).red);
    EXPECT_EQ(96, tint_color(grey, B_DARKEN_4_TINT).red);
    EXPECT_EQ(0, tint_color(grey, B_DARKEN_MAX_TINT).red);
}

TEST(ColorTest, TintColorFollowsTheFormulaForEveryComponent) {
    const float tints[] = {0.0f,
                           0.2f,
                           B_LIGHTEN_2_TINT,
                           B_LIGHTEN_1_TINT,
                           0.9f,
                           1.0f,
                           B_DARKEN_1_TINT,
                           B_DARKEN_2_TINT,
                           B_DARKEN_3_TINT,
                           B_DARKEN_4_TINT,
                           1.8f,
                           2.0f};
    for (float tint : tints) {
        for (int component = 0; component < 256; component += 3) {
            rgb_color color = make_color(component, 255 - component, component / 2, 77);
            rgb_color tinted = tint_color(color, tint);
            ASSERT_EQ(expected_component(color.red, tint), tinted.red) << tint << " " << component;
            ASSERT_EQ(expected_component(color.green, tint), tinted.green);
            ASSERT_EQ(expected_component(color.blue, tint), tinted.blue);
            ASSERT_EQ(77, tinted.alpha);
        }
    }
}

TEST(ColorTest, TintsOutsideTheRangeSaturate) {
    rgb_color color = make_color(100, 150, 200);
    EXPECT_EQ(make_color(255, 255, 255), tint_color(color, -3.0f));
    EXPECT_EQ(make_color(0, 0, 0), tint_color(color, 7.0f));
    EXPECT_EQ(color, tint_color(color, NAN));
}

TEST(ColorTest, ShiftColorIsTintColor) {
    rgb_color color = make_color(10, 100, 200);
    EXPECT_EQ(tint_color(color, 1.3f), shift_color(color, 1.3f));
}

TEST(ColorTest, UiColorsHaveTheirDefaults) {
    struct Expected {
        color_which which;
        rgb_color color;
    };
    const Expected expected[] = {
        {B_PANEL_BACKGROUND_COLOR, make_color(216, 216, 216)},
        {B_MENU_BACKGROUND_COLOR, make_color(219, 219, 219)},
        {B_WINDOW_TAB_COLOR, make_color(255, 203, 0)},
        {B_KEYBOARD_NAVIGATION_COLOR, make_color(0, 0, 229)},
        {B_DESKTOP_COLOR, make_color(51, 102, 152)},
        {B_MENU_SELECTED_BACKGROUND_COLOR, make_color(153, 153, 153)},
        {B_MENU_ITEM_TEXT_COLOR, make_color(0, 0, 0)},
        {B_MENU_SELECTED_ITEM_TEXT_COLOR, make_color(0, 0, 0)},
        {B_PANEL_TEXT_COLOR, make_color(0, 0, 0)},
        {B_DOCUMENT_BACKGROUND_COLOR, make_color(255, 255, 255)},
        {B_CONTROL_BACKGROUND_COLOR, make_color(222, 222, 222)},
        {B_CONTROL_BORDER_COLOR, make_color(172, 172, 172)},
        {B_CONTROL_HIGHLIGHT_COLOR, make_color(102, 152, 203)},
        {B_SHINE_COLOR, make_color(255, 255, 255)},
        {B_SHADOW_COLOR, make_color(0, 0, 0)},
        {B_TOOL_TIP_BACKGROUND_COLOR, make_color(255, 255, 216)},
        {B_WINDOW_INACTIVE_TEXT_COLOR, make_color(80, 80, 80)},
        {B_CONTROL_MARK_COLOR, make_color(27, 82, 140)},
        {B_LIST_SELECTED_BACKGROUND_COLOR, make_color(190, 190, 190)},
        {B_LINK_VISITED_COLOR, make_color(145, 112, 155)},
        {B_STATUS_BAR_COLOR, make_color(50, 150, 255)},
        {B_SUCCESS_COLOR, make_color(46, 204, 64)},
        {B_FAILURE_COLOR, make_color(255, 65, 54)},
    };
    for (const Expected& entry : expected)
        EXPECT_EQ(entry.color, ui_color(entry.which)) << "code " << entry.which;
}

TEST(ColorTest, UnknownUiColorCodeIsBlack) {
    EXPECT_EQ(make_color(0, 0, 0), ui_color((color_which)12345));
    EXPECT_EQ(make_color(0, 0, 0), ui_color((color_which)-10));
    EXPECT_EQ(make_color(0, 0, 0), ui_color(B_NO_COLOR));
}

TEST(ColorTest, SetUiColorReplacesTheColor) {
    set_ui_color(B_PANEL_BACKGROUND_COLOR, make_color(1, 2, 3));
    EXPECT_EQ(make_color(1, 2, 3), ui_color(B_PANEL_BACKGROUND_COLOR));
    EXPECT_EQ(make_color(219, 219, 219), ui_color(B_MENU_BACKGROUND_COLOR));
}

TEST(ColorTest, KeyboardNavigationColorIsTheNavigationBase) {
    EXPECT_EQ(ui_color(B_KEYBOARD_NAVIGATION_COLOR), keyboard_navigation_color());
    EXPECT_EQ(make_color(0, 0, 229), keyboard_navigation_color());
}
