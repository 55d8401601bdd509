// util/complexq.h - complex numbers and quaternions.
//
// Value types: every function takes its operands by value and returns a new
// value. Nothing fails loudly: a division by zero returns zero, and the other
// special cases return the values stated beside each function. Pure: no
// state, no allocation, no output. Angles are in radians; theta below is
// atan2(imag, real), in (-pi, pi].
#pragma once

// z = real + i*imag.
struct Complex {
    double real, imag;
};

// w + x*i + y*j + z*k: the scalar part first, then the three vector parts.
struct Quaternion {
    double w, x, y, z;
};

// ---- Complex arithmetic -----------------------------------------------------

Complex Cadd(Complex z, Complex w);
Complex Csub(Complex z, Complex w);
// (xu - yv, yu + xv) for z = x + iy, w = u + iv.
Complex Cmult(Complex z, Complex w);
// (x*d, y*d).
Complex Cmultd(Complex z, double d);
// z / w by scaled division (no overflow in the squared modulus of w).
// (0, 0) when z or w is exactly zero: dividing by zero gives zero, not infinity.
Complex Cdiv(Complex z, Complex w);
// (x/d, y/d); (0, 0) when d or z is zero.
Complex Cdivd(Complex z, double d);
// 1 / z by scaled division; (0, 0) when z is zero.
Complex Cinv(Complex z);
// The modulus |z|, scaled so that squaring cannot overflow.
double Cabs(Complex z);

// ---- Complex functions ------------------------------------------------------

// sqrt(|z|) * (cos(theta/2), sin(theta/2)): the principal root.
Complex Csqrt(Complex z);
// exp(p * ln(x^2 + y^2) / 2) * (cos(p*theta), sin(p*theta)).
Complex Cpowd(Complex z, double p);
// exp(x) * (cos y, sin y).
Complex Cexp(Complex z);
// (ln|z|, theta), except on the imaginary axis: (ln y, pi/2) for y > 0 and
// (ln(-y), -pi/2) otherwise, so Clog(0) = (-infinity, -pi/2).
Complex Clog(Complex z);
// Circular functions; real results (sin x, 0), (cos x, 0), (tan x, 0) when y = 0.
Complex Csin(Complex z);
Complex Ccos(Complex z);
Complex Ctan(Complex z);
// Hyperbolic functions; Ctanh gives (tanh x, 0) when y = 0.
Complex Csinh(Complex z);
Complex Ccosh(Complex z);
Complex Ctanh(Complex z);
// Inverse circular functions; (asin x, 0), (acos x, 0), (atan x, 0) when
// y = 0 (not a number for |x| > 1 in Casin and Cacos). Casin's imaginary part
// is never negative and Cacos's never positive, as in the upper half plane,
// whatever the sign of y. Catan's real part is
// 0.5*atan(2x / (1 - x^2 - y^2)), a one-argument arc tangent, so it stays
// within +-pi/4 and differs from the principal value outside the unit circle.
Complex Casin(Complex z);
Complex Cacos(Complex z);
Complex Catan(Complex z);
// Clog((s.real + x + y, s.imag)) with s = Csqrt((x^2 - y^2 + 1, 2xy)). Both x
// and y go into the real part, unlike Cacosh: this is the established result
// of this function (Casinh((0, 1)) = (0, 0)) and callers rely on it.
Complex Casinh(Complex z);
// Clog((s.real + x, s.imag + y)) with s = Csqrt((x^2 - y^2 - 1, 2xy)).
Complex Cacosh(Complex z);
// Half the logarithm of (1 + z)/(1 - z), the quotient taken by Cdiv.
Complex Catanh(Complex z);

// ---- Quaternions ------------------------------------------------------------

Quaternion Qadd(Quaternion q1, Quaternion q2);
Quaternion Qsub(Quaternion q1, Quaternion q2);
// The Hamilton product q1*q2 (i*j = k, j*i = -k).
Quaternion Qmult(Quaternion q1, Quaternion q2);
// (w, -x, -y, -z).
Quaternion Qconj(Quaternion q);
// sqrt(w^2 + x^2 + y^2 + z^2).
double Qmod(Quaternion q);
// The conjugate over the squared modulus; all zero when q is zero.
Quaternion Qinv(Quaternion q);
// q1 times the inverse of q2 on the right; all zero when q2 is zero.
Quaternion Qdiv(Quaternion q1, Quaternion q2);
// exp(w) * (cos r, sin r * (x, y, z)/r) with r = |(x, y, z)|; (exp(w), 0, 0, 0)
// when r = 0.
Quaternion Qexp(Quaternion q);
