// util/vectors.h - the Vec3 and Vec2 records, vector arithmetic, rotations, polar conversions and interpolation.
#pragma once

// A point or a direction in space.
struct Vec3 {
    double x, y, z;
};

// A point in the plane; polygons are arrays of these, closed implicitly.
struct Vec2 {
    double x, y;
};
