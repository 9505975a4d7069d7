// BScreen: the screen a window stands on: its frame and colour space.
#ifndef _SCREEN_H
#define _SCREEN_H

#include <GraphicsDefs.h>
#include <Rect.h>
#include <SupportDefs.h>

class BWindow;

class BScreen {
public:
    BScreen(screen_id id = B_MAIN_SCREEN_ID);
    BScreen(BWindow* window);
    ~BScreen();

    // False when there is no such screen or no display at all.
    bool IsValid();
    // There is one screen: B_ERROR.
    status_t SetToNext();

    color_space ColorSpace();
    // In screen coordinates: the left-top is (0, 0).
    BRect Frame();
    screen_id ID();

    // The display has no vertical retrace to wait for; returns at once.
    status_t WaitForRetrace();
    status_t WaitForRetrace(bigtime_t timeout);

    rgb_color DesktopColor();
    const color_map* ColorMap();
    uint8 IndexForColor(rgb_color color);
    uint8 IndexForColor(uint8 red, uint8 green, uint8 blue, uint8 alpha = 255);
    rgb_color ColorForIndex(uint8 index);

private:
    BScreen(const BScreen&);
    BScreen& operator=(const BScreen&);

    screen_id fID;
    bool fValid;
};

#endif // _SCREEN_H
