// A painter on an in-memory surface, for checking drawn pixels in tests.
#ifndef GLIMROW_TEST_PAINTER_CANVAS_H
#define GLIMROW_TEST_PAINTER_CANVAS_H

#include "interface/Painter.h"

#include <GraphicsTestSurface.h>

namespace testing_support {

const rgb_color kWhite = {255, 255, 255, 255};
const rgb_color kBlack = {0, 0, 0, 255};
const rgb_color kRed = {255, 0, 0, 255};
const rgb_color kBlue = {0, 0, 255, 255};

// Draws black on white in B_OP_COPY until told otherwise.
struct PainterCanvas {
    PainterCanvas(int width, int height, rgb_color background = kWhite)
        : surface(width, height, background), painter(surface.Surface()) {
        painter.SetHighColor(kBlack);
        painter.SetLowColor(kWhite);
    }

    GraphicsTestSurface surface;
    BPrivate::Painter painter;
};

} // namespace testing_support

#endif // GLIMROW_TEST_PAINTER_CANVAS_H
