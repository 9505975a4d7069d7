// Interface kit constants and global functions: keys and modifiers, borders and
// alignment, system colours and tints, workspaces.
#ifndef _INTERFACE_DEFS_H
#define _INTERFACE_DEFS_H

#include <GraphicsDefs.h>
#include <OS.h>
#include <SupportDefs.h>

class BPoint;
class BRect;

// #pragma mark - Keyboard

// The modifier state and a 128-bit map of the keys held down: key code c is bit
// 0x80 >> (c % 8) of key_states[c / 8].
struct key_info {
    uint32 modifiers;
    uint8 key_states[16];
};

// The first byte of "bytes" for keys that produce no printable character.
enum {
    B_BACKSPACE = 0x08,
    B_RETURN = 0x0a,
    B_ENTER = 0x0a,
    B_SPACE = 0x20,
    B_TAB = 0x09,
    B_ESCAPE = 0x1b,
    B_SUBSTITUTE = 0x1a,

    B_LEFT_ARROW = 0x1c,
    B_RIGHT_ARROW = 0x1d,
    B_UP_ARROW = 0x1e,
    B_DOWN_ARROW = 0x1f,

    B_INSERT = 0x05,
    B_DELETE = 0x7f,
    B_HOME = 0x01,
    B_END = 0x04,
    B_PAGE_UP = 0x0b,
    B_PAGE_DOWN = 0x0c,

    B_FUNCTION_KEY = 0x10,

    B_KATAKANA_HIRAGANA = 0xf2,
    B_HANKAKU_ZENKAKU = 0xf3
};

// Key codes of keys whose byte is B_FUNCTION_KEY, and a few other named keys.
enum {
    B_F1_KEY = 0x02,
    B_F2_KEY = 0x03,
    B_F3_KEY = 0x04,
    B_F4_KEY = 0x05,
    B_F5_KEY = 0x06,
    B_F6_KEY = 0x07,
    B_F7_KEY = 0x08,
    B_F8_KEY = 0x09,
    B_F9_KEY = 0x0a,
    B_F10_KEY = 0x0b,
    B_F11_KEY = 0x0c,
    B_F12_KEY = 0x0d,
    B_PRINT_KEY = 0x0e,
    B_SCROLL_KEY = 0x0f,
    B_PAUSE_KEY = 0x10,

    B_NUM_LOCK_KEY = 0x22,
    B_CAPS_LOCK_KEY = 0x3b,
    B_SPACE_BAR_KEY = 0x5e,
    B_NUMPAD_EQUAL_KEY = 0x6a,
    B_HANGUL_KEY = 0xf0,
    B_HANGUL_HANJA_KEY = 0xf1
};

// The generic bits are set whenever either side's key is down; the lock bits
// follow the lock state, not the key.
enum {
    B_SHIFT_KEY = 0x00000001,
    B_COMMAND_KEY = 0x00000002,
    B_CONTROL_KEY = 0x00000004,
    B_CAPS_LOCK = 0x00000008,
    B_SCROLL_LOCK = 0x00000010,
    B_NUM_LOCK = 0x00000020,
    B_OPTION_KEY = 0x00000040,
    B_MENU_KEY = 0x00000080,
    B_LEFT_SHIFT_KEY = 0x00000100,
    B_RIGHT_SHIFT_KEY = 0x00000200,
    B_LEFT_COMMAND_KEY = 0x00000400,
    B_RIGHT_COMMAND_KEY = 0x00000800,
    B_LEFT_CONTROL_KEY = 0x00001000,
    B_RIGHT_CONTROL_KEY = 0x00002000,
    B_LEFT_OPTION_KEY = 0x00004000,
    B_RIGHT_OPTION_KEY = 0x00008000,
    B_NO_COMMAND_KEY = 0x00010000
};

#define B_MAX_MOUSE_BUTTONS 16

// #pragma mark - Borders, orientation, alignment, strokes

enum border_style { B_PLAIN_BORDER, B_FANCY_BORDER, B_NO_BORDER };

enum orientation { B_HORIZONTAL, B_VERTICAL };

enum alignment {
    B_ALIGN_LEFT,
    B_ALIGN_RIGHT,
    B_ALIGN_CENTER,

    B_ALIGN_HORIZONTAL_CENTER = B_ALIGN_CENTER,
    B_ALIGN_HORIZONTAL_UNSET = -1,
    B_ALIGN_USE_FULL_WIDTH = -2
};

enum vertical_alignment {
    B_ALIGN_TOP = 0x10,
    B_ALIGN_MIDDLE = 0x20,
    B_ALIGN_BOTTOM = 0x30,

    B_ALIGN_VERTICAL_CENTER = B_ALIGN_MIDDLE,
    B_ALIGN_VERTICAL_UNSET = -1,
    B_ALIGN_NO_VERTICAL = B_ALIGN_VERTICAL_UNSET,
    B_ALIGN_USE_FULL_HEIGHT = -2
};

enum join_mode { B_ROUND_JOIN = 0, B_MITER_JOIN, B_BEVEL_JOIN, B_BUTT_JOIN, B_SQUARE_JOIN };

enum cap_mode {
    B_ROUND_CAP = B_ROUND_JOIN,
    B_BUTT_CAP = B_BUTT_JOIN,
    B_SQUARE_CAP = B_SQUARE_JOIN
};

const float B_DEFAULT_MITER_LIMIT = 10.0f;

// #pragma mark - System colours

// Any int32 is a valid color_which (unknown codes give black), so the enum has
// a fixed underlying type.
enum color_which : int32 {
    B_NO_COLOR = 0,
    B_PANEL_BACKGROUND_COLOR = 1,
    B_PANEL_TEXT_COLOR = 10,
    B_DOCUMENT_BACKGROUND_COLOR = 11,
    B_DOCUMENT_TEXT_COLOR = 12,
    B_CONTROL_BACKGROUND_COLOR = 13,
    B_CONTROL_TEXT_COLOR = 14,
    B_CONTROL_BORDER_COLOR = 15,
    B_CONTROL_HIGHLIGHT_COLOR = 16,
    B_CONTROL_MARK_COLOR = 27,
    B_NAVIGATION_BASE_COLOR = 4,
    B_NAVIGATION_PULSE_COLOR = 17,
    B_SHINE_COLOR = 18,
    B_SHADOW_COLOR = 19,

    B_MENU_BACKGROUND_COLOR = 2,
    B_MENU_SELECTED_BACKGROUND_COLOR = 6,
    B_MENU_ITEM_TEXT_COLOR = 7,
    B_MENU_SELECTED_ITEM_TEXT_COLOR = 8,
    B_MENU_SELECTED_BORDER_COLOR = 9,

    B_LIST_BACKGROUND_COLOR = 28,
    B_LIST_SELECTED_BACKGROUND_COLOR = 29,
    B_LIST_ITEM_TEXT_COLOR = 30,
    B_LIST_SELECTED_ITEM_TEXT_COLOR = 31,

    B_SCROLL_BAR_THUMB_COLOR = 32,

    B_TOOL_TIP_BACKGROUND_COLOR = 20,
    B_TOOL_TIP_TEXT_COLOR = 21,

    B_STATUS_BAR_COLOR = 37,

    B_SUCCESS_COLOR = 100,
    B_FAILURE_COLOR = 101,

    B_WINDOW_TAB_COLOR = 3,
    B_WINDOW_TEXT_COLOR = 22,
    B_WINDOW_INACTIVE_TAB_COLOR = 23,
    B_WINDOW_INACTIVE_TEXT_COLOR = 24,
    B_WINDOW_BORDER_COLOR = 25,
    B_WINDOW_INACTIVE_BORDER_COLOR = 26,

    B_LINK_TEXT_COLOR = 33,
    B_LINK_HOVER_COLOR = 34,
    B_LINK_VISITED_COLOR = 35,
    B_LINK_ACTIVE_COLOR = 36,

    // Older names.
    B_DESKTOP_COLOR = 5,
    B_MENU_SELECTION_BACKGROUND_COLOR = B_MENU_SELECTED_BACKGROUND_COLOR,
    B_KEYBOARD_NAVIGATION_COLOR = B_NAVIGATION_BASE_COLOR
};

// Tints for tint_color(): below 1.0 lightens towards white, above 1.0 darkens
// towards black. The comments give the result on the standard grey 216.
const float B_LIGHTEN_MAX_TINT = 0.0f; // 255
const float B_LIGHTEN_2_TINT = 0.385f; // 240
const float B_LIGHTEN_1_TINT = 0.590f; // 232
const float B_NO_TINT = 1.0f;          // 216
const float B_DARKEN_1_TINT = 1.147f;  // 184
const float B_DARKEN_2_TINT = 1.295f;  // 152
const float B_DARKEN_3_TINT = 1.407f;  // 128
const float B_DARKEN_4_TINT = 1.555f;  // 96
const float B_DARKEN_MAX_TINT = 2.0f;  // 0
const float B_DISABLED_LABEL_TINT = B_DARKEN_3_TINT;
const float B_HIGHLIGHT_BACKGROUND_TINT = B_DARKEN_2_TINT;
const float B_DISABLED_MARK_TINT = B_LIGHTEN_2_TINT;

// The colour for a code: the value set with set_ui_color(), else the default;
// black for an unknown code. Thread-safe.
rgb_color ui_color(color_which which);
void set_ui_color(const color_which& which, const rgb_color& color);

// Each of red, green and blue: 255 - (255 - c) * tint below 1.0, c * (2 - tint)
// from 1.0 on, rounded to nearest; the tint is clamped to 0..2. Alpha is kept.
rgb_color tint_color(rgb_color color, float tint);
rgb_color shift_color(rgb_color color, float shift);

rgb_color keyboard_navigation_color();

// The Be 8-bit palette with its lookup tables. Never NULL; not to be freed.
const color_map* system_colors();

// #pragma mark - Screen, workspaces, input state

int32 count_workspaces();
void set_workspace_count(int32 count);
int32 current_workspace();
void activate_workspace(int32 workspace);

status_t get_key_info(key_info* info);
// Linux addition, for threads that would otherwise poll get_key_info() and
// count_workspaces(): the display server releases the semaphore once each time
// the keys held down or the number of workspaces change, until it is asked to
// stop or the semaphore is deleted. Calling it again for the same semaphore
// changes nothing, and is how to use it: call it before each wait. It answers
// B_NOT_SUPPORTED once the server knows it cannot see every key change (an X
// server without XInput 2; it finds out shortly after the first call, and
// releases the semaphore then), and the caller has to poll while it does.
status_t watch_keys_and_workspaces(sem_id semaphore);
void stop_watching_keys_and_workspaces(sem_id semaphore);
uint32 modifiers();
status_t get_mouse(BPoint* position, uint32* buttons);
status_t get_click_speed(bigtime_t* speed);

status_t beep();

#endif // _INTERFACE_DEFS_H
