// Finding icons by name in the freedesktop icon themes (kit-private).
//
// Themes are read from $HOME/.icons, $XDG_DATA_HOME/icons and each
// $XDG_DATA_DIRS/icons; unthemed icons also from /usr/share/pixmaps. The theme
// chain is the one GTK is set to use ($XDG_CONFIG_HOME/gtk-3.0/settings.ini,
// gtk-icon-theme-name) with its parents, then Adwaita with its parents, then
// hicolor. PNG and SVG files are used; XPM is not.
#ifndef _STORAGE_ICON_THEME_H
#define _STORAGE_ICON_THEME_H

#include <SupportDefs.h>

#include <string>
#include <vector>

namespace BPrivate {

class IconTheme {
public:
    // The file of the best icon for the size: every name is tried in a theme
    // (most wanted first) before the theme's parents are; within a theme an exact
    // size beats the nearest one. Empty when no theme has any of the names.
    // Answers are remembered for the life of the process.
    static std::string Lookup(const std::vector<std::string>& names, int32 size);
};

} // namespace BPrivate

#endif // _STORAGE_ICON_THEME_H
