// The icons of the alert types (kit-private), drawn with the view's own calls.
#ifndef _INTERFACE_ALERT_ICONS_H
#define _INTERFACE_ALERT_ICONS_H

#include <Alert.h>

class BView;

namespace BPrivate {

const float kAlertIconSize = 32.0f;

// Draws the icon of the type, 32 by 32 pixels with its left top at where, with
// a shadow one pixel further right and down. B_EMPTY_ALERT draws nothing.
void draw_alert_icon(BView* view, alert_type type, BPoint where);

// The colour that fills most of the icon (tests look for it).
rgb_color alert_icon_color(alert_type type);

} // namespace BPrivate

#endif // _INTERFACE_ALERT_ICONS_H
