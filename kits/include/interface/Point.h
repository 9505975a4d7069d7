// BPoint: a location in a two-dimensional coordinate system, in floats.
#ifndef _POINT_H
#define _POINT_H

#include <SupportDefs.h>

class BRect;

class BPoint {
public:
    float x;
    float y;

    constexpr BPoint() : x(0.0f), y(0.0f) {}
    constexpr BPoint(float X, float Y) : x(X), y(Y) {}
    constexpr BPoint(const BPoint& other) = default;

    BPoint& operator=(const BPoint& other) = default;

    void Set(float X, float Y) {
        x = X;
        y = Y;
    }

    // Moves the point to the nearest location inside the rectangle.
    void ConstrainTo(BRect rect);

    void PrintToStream() const;

    BPoint operator-() const { return BPoint(-x, -y); }
    BPoint operator+(const BPoint& other) const { return BPoint(x + other.x, y + other.y); }
    BPoint operator-(const BPoint& other) const { return BPoint(x - other.x, y - other.y); }
    BPoint& operator+=(const BPoint& other) {
        x += other.x;
        y += other.y;
        return *this;
    }
    BPoint& operator-=(const BPoint& other) {
        x -= other.x;
        y -= other.y;
        return *this;
    }

    bool operator!=(const BPoint& other) const { return x != other.x || y != other.y; }
    bool operator==(const BPoint& other) const { return x == other.x && y == other.y; }
};

// The origin (0, 0). Constant-initialised, so it is usable from any static initialiser.
inline constexpr BPoint B_ORIGIN(0.0f, 0.0f);

#endif // _POINT_H
