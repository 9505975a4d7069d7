#include <Point.h>

#include <Rect.h>

#include <stdio.h>

void BPoint::ConstrainTo(BRect rect) {
    x = fmaxf(fminf(x, rect.right), rect.left);
    y = fmaxf(fminf(y, rect.bottom), rect.top);
}

void BPoint::PrintToStream() const {
    printf("BPoint(x:%.0f, y:%.0f)\n", x, y);
}
