// The system colours and tints. The colours of the first eight codes are those
// of the classic system (menus a shade lighter than panels); the later codes keep
// the values later systems gave them.
#include <InterfaceDefs.h>

#include <mutex>

namespace {

struct DefaultColor {
    color_which which;
    rgb_color color;
};

const DefaultColor kDefaultColors[] = {
    {B_PANEL_BACKGROUND_COLOR, {216, 216, 216, 255}},
    {B_MENU_BACKGROUND_COLOR, {219, 219, 219, 255}},
    {B_WINDOW_TAB_COLOR, {255, 203, 0, 255}},
    {B_KEYBOARD_NAVIGATION_COLOR, {0, 0, 229, 255}},
    {B_DESKTOP_COLOR, {51, 102, 152, 255}},
    {B_MENU_SELECTED_BACKGROUND_COLOR, {153, 153, 153, 255}},
    {B_MENU_ITEM_TEXT_COLOR, {0, 0, 0, 255}},
    {B_MENU_SELECTED_ITEM_TEXT_COLOR, {0, 0, 0, 255}},
    {B_MENU_SELECTED_BORDER_COLOR, {0, 0, 0, 255}},
    {B_PANEL_TEXT_COLOR, {0, 0, 0, 255}},
    {B_DOCUMENT_BACKGROUND_COLOR, {255, 255, 255, 255}},
    {B_DOCUMENT_TEXT_COLOR, {0, 0, 0, 255}},
    {B_CONTROL_BACKGROUND_COLOR, {222, 222, 222, 255}},
    {B_CONTROL_TEXT_COLOR, {0, 0, 0, 255}},
    {B_CONTROL_BORDER_COLOR, {172, 172, 172, 255}},
    {B_CONTROL_HIGHLIGHT_COLOR, {102, 152, 203, 255}},
    {B_NAVIGATION_PULSE_COLOR, {0, 0, 0, 255}},
    {B_SHINE_COLOR, {255, 255, 255, 255}},
    {B_SHADOW_COLOR, {0, 0, 0, 255}},
    {B_TOOL_TIP_BACKGROUND_COLOR, {255, 255, 216, 255}},
    {B_TOOL_TIP_TEXT_COLOR, {0, 0, 0, 255}},
    {B_WINDOW_TEXT_COLOR, {0, 0, 0, 255}},
    {B_WINDOW_INACTIVE_TAB_COLOR, {232, 232, 232, 255}},
    {B_WINDOW_INACTIVE_TEXT_COLOR, {80, 80, 80, 255}},
    {B_WINDOW_BORDER_COLOR, {224, 224, 224, 255}},
    {B_WINDOW_INACTIVE_BORDER_COLOR, {232, 232, 232, 255}},
    {B_CONTROL_MARK_COLOR, {27, 82, 140, 255}},
    {B_LIST_BACKGROUND_COLOR, {255, 255, 255, 255}},
    {B_LIST_SELECTED_BACKGROUND_COLOR, {190, 190, 190, 255}},
    {B_LIST_ITEM_TEXT_COLOR, {0, 0, 0, 255}},
    {B_LIST_SELECTED_ITEM_TEXT_COLOR, {0, 0, 0, 255}},
    {B_SCROLL_BAR_THUMB_COLOR, {216, 216, 216, 255}},
    {B_LINK_TEXT_COLOR, {51, 102, 187, 255}},
    {B_LINK_HOVER_COLOR, {102, 152, 203, 255}},
    {B_LINK_VISITED_COLOR, {145, 112, 155, 255}},
    {B_LINK_ACTIVE_COLOR, {121, 142, 203, 255}},
    {B_STATUS_BAR_COLOR, {50, 150, 255, 255}},
    {B_SUCCESS_COLOR, {46, 204, 64, 255}},
    {B_FAILURE_COLOR, {255, 65, 54, 255}},
};

const int32 kColorCount = sizeof(kDefaultColors) / sizeof(kDefaultColors[0]);

// Colours changed with set_ui_color(), by the position of their code in
// kDefaultColors. Any thread may read or set them.
struct ColorOverrides {
    std::mutex lock;
    rgb_color colors[kColorCount];
    bool isSet[kColorCount] = {};
};

ColorOverrides& color_overrides() {
    static ColorOverrides* sOverrides = new ColorOverrides;
    return *sOverrides;
}

int32 index_of(color_which which) {
    for (int32 index = 0; index < kColorCount; index++) {
        if (kDefaultColors[index].which == which)
            return index;
    }
    return -1;
}

uint8 clamp_component(float value) {
    if (value <= 0.0f)
        return 0;
    if (value >= 255.0f)
        return 255;
    return (uint8)(value + 0.5f);
}

} // namespace

rgb_color ui_color(color_which which) {
    int32 index = index_of(which);
    if (index < 0)
        return make_color(0, 0, 0);

    ColorOverrides& overrides = color_overrides();
    std::lock_guard<std::mutex> guard(overrides.lock);
    if (overrides.isSet[index])
        return overrides.colors[index];
    return kDefaultColors[index].color;
}

void set_ui_color(const color_which& which, const rgb_color& color) {
    int32 index = index_of(which);
    if (index < 0)
        return;

    ColorOverrides& overrides = color_overrides();
    std::lock_guard<std::mutex> guard(overrides.lock);
    overrides.colors[index] = color;
    overrides.isSet[index] = true;
}

rgb_color tint_color(rgb_color color, float tint) {
    // Out-of-range tints would wrap around; they saturate instead. A NaN tint
    // leaves the colour as it is.
    if (!(tint >= 0.0f))
        tint = tint < 0.0f ? 0.0f : 1.0f;
    if (tint > 2.0f)
        tint = 2.0f;

    rgb_color result;
    if (tint < 1.0f) {
        result.red = clamp_component(255.0f - (255.0f - color.red) * tint);
        result.green = clamp_component(255.0f - (255.0f - color.green) * tint);
        result.blue = clamp_component(255.0f - (255.0f - color.blue) * tint);
    } else {
        result.red = clamp_component(color.red * (2.0f - tint));
        result.green = clamp_component(color.green * (2.0f - tint));
        result.blue = clamp_component(color.blue * (2.0f - tint));
    }
    result.alpha = color.alpha;
    return result;
}

rgb_color shift_color(rgb_color color, float shift) {
    return tint_color(color, shift);
}

rgb_color keyboard_navigation_color() {
    return ui_color(B_KEYBOARD_NAVIGATION_COLOR);
}
