// Kit-private: what the window's key handling asks of its default button.
#ifndef _INTERFACE_BUTTON_PRIVATE_H
#define _INTERFACE_BUTTON_PRIVATE_H

class BWindow;

namespace BPrivate {

// Enter pressed in the window: presses its default button and answers true,
// unless there is none that can be pressed or an editable text view has the
// focus (which then gets the key).
bool press_default_button(BWindow* window);

} // namespace BPrivate

#endif // _INTERFACE_BUTTON_PRIVATE_H
