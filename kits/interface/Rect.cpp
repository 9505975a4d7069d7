#include <Rect.h>

#include <stdio.h>

void BRect::PrintToStream() const {
    printf("BRect(l:%.1f, t:%.1f, r:%.1f, b:%.1f)\n", left, top, right, bottom);
}
