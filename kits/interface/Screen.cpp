#include <Screen.h>

#include "server/DisplayServer.h"

#include <InterfaceDefs.h>
#include <Window.h>

using BPrivate::DisplayServer;

namespace {

// The nearest palette entry, by the palette's own 15-bit lookup table.
uint8 palette_index(rgb_color color) {
    const color_map* map = system_colors();
    if (color.alpha < 128)
        return B_TRANSPARENT_MAGIC_CMAP8;
    return map
        ->index_map[((color.red & 0xf8) << 7) | ((color.green & 0xf8) << 2) | (color.blue >> 3)];
}

} // namespace

BScreen::BScreen(screen_id id) : fID(id), fValid(false) {
    fValid = id.id == B_MAIN_SCREEN_ID.id && DisplayServer::Default() != NULL;
}

BScreen::BScreen(BWindow* window) : fID(B_MAIN_SCREEN_ID), fValid(false) {
    fValid = DisplayServer::Default() != NULL;
}

BScreen::~BScreen() {}

bool BScreen::IsValid() {
    return fValid;
}

status_t BScreen::SetToNext() {
    return B_ERROR;
}

color_space BScreen::ColorSpace() {
    DisplayServer* server = fValid ? DisplayServer::Default() : NULL;
    return server != NULL ? server->ScreenColorSpace() : B_NO_COLOR_SPACE;
}

BRect BScreen::Frame() {
    DisplayServer* server = fValid ? DisplayServer::Default() : NULL;
    return server != NULL ? server->ScreenFrame() : BRect(0, 0, 0, 0);
}

screen_id BScreen::ID() {
    return fID;
}

status_t BScreen::WaitForRetrace() {
    return fValid ? B_OK : B_ERROR;
}

status_t BScreen::WaitForRetrace(bigtime_t timeout) {
    return fValid ? B_OK : B_ERROR;
}

rgb_color BScreen::DesktopColor() {
    return ui_color(B_DESKTOP_COLOR);
}

const color_map* BScreen::ColorMap() {
    return system_colors();
}

uint8 BScreen::IndexForColor(rgb_color color) {
    return palette_index(color);
}

uint8 BScreen::IndexForColor(uint8 red, uint8 green, uint8 blue, uint8 alpha) {
    return palette_index(make_color(red, green, blue, alpha));
}

rgb_color BScreen::ColorForIndex(uint8 index) {
    return system_colors()->color_list[index];
}
