// util/vectors.h - the Vec3 and Vec2 records, vector arithmetic, rotations,
// polar conversions and interpolation.
//
// Pure functions of their arguments: records go in and come out by value,
// except where a function takes a pointer and updates the record in place.
// Rotation angles are in radians. The polar conversions (XYZ2Polar,
// Polar2XYZ) work in degrees, converting with the short factors 0.0174532925
// and 57.2957795, so a round trip is exact only to about 1e-8 relative.
// Inputs come first, output pointers last, in the order the results are named.
#pragma once

// A point or a direction in space.
struct Vec3 {
    double x, y, z;
};

// A point in the plane; polygons are arrays of these, closed implicitly.
struct Vec2 {
    double x, y;
};

// ---- arithmetic --------------------------------------------------------------

Vec3 MakeVector(double x, double y, double z);
Vec3 VectorAdd(Vec3 p1, Vec3 p2);
// p2 - p1: the second minus the first (the vector from p1 to p2).
Vec3 VectorSub(Vec3 p1, Vec3 p2);
Vec3 VectorMul(Vec3 p, double s);
// -p.
Vec3 VectorInvert(Vec3 p);
// a*p1 + b*p2 + c*p3.
Vec3 VectorCombination(double a, double b, double c, Vec3 p1, Vec3 p2, Vec3 p3);
Vec3 MidPoint(Vec3 p1, Vec3 p2);
// Mean of p[0..n-1]. n < 1 still divides the (zero) sum by n: NaN for n == 0.
Vec3 Centroid(const Vec3 *p, int n);
// Widens the box [*min, *max] to include p, coordinate by coordinate.
void MinMaxXYZ(Vec3 *min, Vec3 *max, Vec3 p);
double DotProduct(Vec3 p1, Vec3 p2);
Vec3 CrossProduct(Vec3 p1, Vec3 p2);

// ---- lengths, angles, normals ------------------------------------------------

// Length of p.
double Modulus(Vec3 p);
// Distance between the points p1 and p2.
double VectorLength(Vec3 p1, Vec3 p2);
// Scales *p to unit length; a zero vector stays (0, 0, 0).
void Normalise(Vec3 *p);
// Normalises *p as above, then scales it to length len.
void SetVectorLength(Vec3 *p, double len);
// 1 when every coordinate differs by at most 0.000001, else 0.
int VectorEqual(Vec3 p1, Vec3 p2);
// Angle between the vectors in radians, [0, pi]; 0 when |p1|*|p2| <= 0.00001.
double VectorAngle(Vec3 p1, Vec3 p2);
// Replaces *v by its part perpendicular to n, keeping the length of *v.
// A v parallel to n (or a zero n) becomes (0, 0, 0).
void VectorPerp(Vec3 *v, Vec3 n);
// Unit normal (p2 - p1) x (p3 - p1) of a triangle; (0, 0, 0) when degenerate.
Vec3 CalcNormal(Vec3 p1, Vec3 p2, Vec3 p3);
// Exchanges *p1 and *p2.
void SwapXYZ(Vec3 *p1, Vec3 *p2);
// Signed angle from (x1, y1) to (x2, y2), in [-pi, pi].
double Angle2D(double x1, double y1, double x2, double y2);
// Pseudo-angle of the direction (dx, dy) in [0, 8): 0, 2, 4, 6 for 0, 90, 180
// and 270 degrees, monotonic in the true angle, with no trigonometry.
// Note the argument order: dy first. (0, 0) gives 0.
double FowlerAngle(double dy, double dx);

// ---- rotations ---------------------------------------------------------------
// All turn the same way: a positive theta turns clockwise when looking from
// the positive axis towards the origin, so RotateZ((1,0,0), pi/2) = (0,-1,0).

// (x, y) turned as RotateZ turns (x, y, 0).
Vec2 Vector2DRotate(double x, double y, double theta);
Vec3 RotateX(Vec3 p, double theta);
Vec3 RotateY(Vec3 p, double theta);
Vec3 RotateZ(Vec3 p, double theta);
// p rotated by theta about the axis r through the origin (r need not be unit;
// a zero axis gives cos(theta)*p). This turns counter-clockwise seen from the
// tip of r: about (0,0,1) it equals RotateZ by -theta.
Vec3 ArbitraryRotate(Vec3 p, double theta, Vec3 r);
// p rotated as ArbitraryRotate about the line through p1 and p2.
Vec3 ArbitraryRotate2(Vec3 p, double theta, Vec3 p1, Vec3 p2);

// ---- polar conversions ---------------------------------------------------------

// Radius, latitude in [-90, 90] and longitude in [0, 180] degrees (longitude
// is formed with asin, so the half-space y < 0 folds onto y > 0). At the
// origin or on the z axis the longitude is 90.
void XYZ2Polar(double x, double y, double z, double *radius, double *latitude, double *longitude);
// Inverse of XYZ2Polar for longitudes in [0, 180]: x = r cos(lat) cos(lon - 90),
// y = r cos(lat) sin(lon - 90), z = r sin(lat), angles in degrees.
void Polar2XYZ(double radius, double latitude, double longitude, double *x, double *y, double *z);
// Direction of p as two angles in radians: theta = atan2(y, x) + pi in
// [0, 2pi] and phi = atan2(z, sqrt(x^2 + y^2)) in [-pi/2, pi/2].
void InverseSpherical(Vec3 p, double *theta, double *phi);

// ---- interpolation between samples ---------------------------------------------
// mu in [0, 1] runs from y1 to y2; y0 and y3 are the outer neighbours.

double LinearInterpolate(double y1, double y2, double mu);
double CosineInterpolate(double y1, double y2, double mu);
// a0 mu^3 + a1 mu^2 + a2 mu + y1 with a0 = y3 - y2 - y0 + y1, a1 = y0 - y1 - a0,
// a2 = y2 - y0. The end slopes are y2 - y0 and y3 - y1, not their halves, so
// samples on a straight line do not stay on it (0,1,2,3 at mu 0.3 gives 1.384).
double CubicInterpolate(double y0, double y1, double y2, double y3, double mu);
// Tension 1 gives zero tangents; bias 0 weighs both neighbouring segments
// equally, bias > 0 leans towards the first segment.
double HermiteInterpolate(double y0, double y1, double y2, double y3, double mu, double tension,
                          double bias);
