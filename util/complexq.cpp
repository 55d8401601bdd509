// util/complexq.cpp - complex numbers and quaternions. Uses only <cmath>.
#include "util/complexq.h"

#include <cmath>

namespace {

bool is_zero(Complex z)
{
    return z.real == 0.0 && z.imag == 0.0;
}

}  // namespace

// ---- Complex arithmetic -----------------------------------------------------

Complex Cadd(Complex z, Complex w)
{
    return {z.real + w.real, z.imag + w.imag};
}

Complex Csub(Complex z, Complex w)
{
    return {z.real - w.real, z.imag - w.imag};
}

Complex Cmult(Complex z, Complex w)
{
    return {z.real * w.real - z.imag * w.imag, z.imag * w.real + z.real * w.imag};
}

Complex Cmultd(Complex z, double d)
{
    return {z.real * d, z.imag * d};
}

Complex Cdiv(Complex z, Complex w)
{
    if (is_zero(z) || is_zero(w)) return {0.0, 0.0};  // zero divisor: zero, not infinity
    const double x = z.real, y = z.imag, u = w.real, v = w.imag;
    // Divide through by the larger part of w so that u^2 + v^2 is never formed.
    if (fabs(u) >= fabs(v)) {
        const double r = v / u, den = u + v * r;
        return {(x + r * y) / den, (y - r * x) / den};
    }
    const double r = u / v, den = v + u * r;
    return {(r * x + y) / den, (r * y - x) / den};
}

Complex Cdivd(Complex z, double d)
{
    if (d == 0.0 || is_zero(z)) return {0.0, 0.0};
    return {z.real / d, z.imag / d};
}

Complex Cinv(Complex z)
{
    return Cdiv({1.0, 0.0}, z);
}

double Cabs(Complex z)
{
    const double a = fabs(z.real), b = fabs(z.imag);
    if (a == 0.0) return b;
    if (b == 0.0) return a;
    // Square the ratio (at most 1), never the parts, so that nothing overflows.
    if (a <= b) return b * sqrt(1.0 + (a / b) * (a / b));
    return a * sqrt(1.0 + (b / a) * (b / a));
}

// ---- Complex functions ------------------------------------------------------

Complex Csqrt(Complex z)
{
    const double r = sqrt(Cabs(z)), half = 0.5 * atan2(z.imag, z.real);
    return {r * cos(half), r * sin(half)};
}

Complex Cpowd(Complex z, double p)
{
    const double mod = exp(p * log(z.real * z.real + z.imag * z.imag) / 2.0);
    const double theta = atan2(z.imag, z.real);
    return {mod * cos(p * theta), mod * sin(p * theta)};
}

Complex Cexp(Complex z)
{
    const double e = exp(z.real);
    return {e * cos(z.imag), e * sin(z.imag)};
}

Complex Clog(Complex z)
{
    const double x = z.real, y = z.imag;
    if (x > 0.0 && y == 0.0) return {log(x), 0.0};
    if (x != 0.0) return {log(sqrt(x * x + y * y)), atan2(y, x)};
    if (y > 0.0) return {log(y), M_PI_2};
    return {log(-y), -M_PI_2};  // includes z = 0: (-infinity, -pi/2)
}

Complex Csin(Complex z)
{
    if (z.imag == 0.0) return {sin(z.real), 0.0};
    return {sin(z.real) * cosh(z.imag), cos(z.real) * sinh(z.imag)};
}

Complex Ccos(Complex z)
{
    if (z.imag == 0.0) return {cos(z.real), 0.0};
    return {cos(z.real) * cosh(z.imag), -sin(z.real) * sinh(z.imag)};
}

Complex Ctan(Complex z)
{
    if (z.imag == 0.0) return {tan(z.real), 0.0};
    const double den = cos(2.0 * z.real) + cosh(2.0 * z.imag);
    return {sin(2.0 * z.real) / den, sinh(2.0 * z.imag) / den};
}

Complex Csinh(Complex z)
{
    const double ep = exp(z.real), em = exp(-z.real);
    return {(ep - em) / 2.0 * cos(z.imag), (ep + em) / 2.0 * sin(z.imag)};
}

Complex Ccosh(Complex z)
{
    const double ep = exp(z.real), em = exp(-z.real);
    return {(ep + em) / 2.0 * cos(z.imag), (ep - em) / 2.0 * sin(z.imag)};
}

Complex Ctanh(Complex z)
{
    if (z.imag == 0.0) return {tanh(z.real), 0.0};
    // tanh z = (1 - e^-2z) / (1 + e^-2z), with e^-2z = e*(c + i s).
    const double e = exp(-2.0 * z.real), c = cos(-2.0 * z.imag), s = sin(-2.0 * z.imag);
    return Cdiv({1.0 - e * c, -e * s}, {1.0 + e * c, e * s});
}

// a + b and a - b of the inverse sine and cosine: half the distances of z
// from +1 and -1.
static void asin_ab(Complex z, double *a, double *b)
{
    const double xp = z.real + 1.0, xm = z.real - 1.0, y2 = z.imag * z.imag;
    *a = sqrt(xp * xp + y2) / 2.0;
    *b = sqrt(xm * xm + y2) / 2.0;
}

Complex Casin(Complex z)
{
    if (z.imag == 0.0) return {asin(z.real), 0.0};
    double a, b;
    asin_ab(z, &a, &b);
    const double s = a + b;
    return {asin(a - b), log(s + sqrt(s * s - 1.0))};
}

Complex Cacos(Complex z)
{
    if (z.imag == 0.0) return {acos(z.real), 0.0};
    double a, b;
    asin_ab(z, &a, &b);
    const double s = a + b;
    return {acos(a - b), -log(s + sqrt(s * s - 1.0))};
}

Complex Catan(Complex z)
{
    const double x = z.real, y = z.imag;
    if (y == 0.0) return {atan(x), 0.0};
    const double r2 = x * x + y * y;
    return {0.5 * atan(2.0 * x / (1.0 - r2)),
            0.25 * log((r2 + 2.0 * y + 1.0) / (r2 - 2.0 * y + 1.0))};
}

Complex Casinh(Complex z)
{
    const double x = z.real, y = z.imag;
    const Complex s = Csqrt({x * x - y * y + 1.0, 2.0 * x * y});
    return Clog({s.real + x + y, s.imag});  // y joins the real part: kept as established
}

Complex Cacosh(Complex z)
{
    const double x = z.real, y = z.imag;
    const Complex s = Csqrt({x * x - y * y - 1.0, 2.0 * x * y});
    return Clog({s.real + x, s.imag + y});
}

Complex Catanh(Complex z)
{
    const Complex q = Cdiv({1.0 + z.real, z.imag}, {1.0 - z.real, -z.imag});
    if (q.real > 0.0 && q.imag == 0.0) return {0.5 * log(q.real), 0.0};
    if (q.real == 0.0 && q.imag > 0.0) return {0.5 * log(q.imag), M_PI_4};
    if (q.real != 0.0) return {0.5 * log(Cabs(q)), 0.5 * atan2(q.imag, q.real)};
    return {0.5 * log(-q.imag), -M_PI_4};
}

// ---- Quaternions ------------------------------------------------------------

Quaternion Qadd(Quaternion q1, Quaternion q2)
{
    return {q1.w + q2.w, q1.x + q2.x, q1.y + q2.y, q1.z + q2.z};
}

Quaternion Qsub(Quaternion q1, Quaternion q2)
{
    return {q1.w - q2.w, q1.x - q2.x, q1.y - q2.y, q1.z - q2.z};
}

Quaternion Qmult(Quaternion q1, Quaternion q2)
{
    return {q1.w * q2.w - q1.x * q2.x - q1.y * q2.y - q1.z * q2.z,
            q1.w * q2.x + q1.x * q2.w + q1.y * q2.z - q1.z * q2.y,
            q1.w * q2.y - q1.x * q2.z + q1.y * q2.w + q1.z * q2.x,
            q1.w * q2.z + q1.x * q2.y - q1.y * q2.x + q1.z * q2.w};
}

Quaternion Qconj(Quaternion q)
{
    return {q.w, -q.x, -q.y, -q.z};
}

static double norm2(Quaternion q)
{
    return q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z;
}

double Qmod(Quaternion q)
{
    return sqrt(norm2(q));
}

Quaternion Qinv(Quaternion q)
{
    const double n = norm2(q);
    if (n == 0.0) return {0.0, 0.0, 0.0, 0.0};
    return {q.w / n, -q.x / n, -q.y / n, -q.z / n};
}

Quaternion Qdiv(Quaternion q1, Quaternion q2)
{
    const double n = norm2(q2);
    if (n == 0.0) return {0.0, 0.0, 0.0, 0.0};
    const Quaternion p = Qmult(q1, Qconj(q2));
    return {p.w / n, p.x / n, p.y / n, p.z / n};
}

Quaternion Qexp(Quaternion q)
{
    const double e = exp(q.w);
    const double r = sqrt(q.x * q.x + q.y * q.y + q.z * q.z);
    if (r == 0.0) return {e, 0.0, 0.0, 0.0};
    const double s = e * sin(r) / r;
    Quaternion out;
    out.w = e * cos(r);
    out.x = s * q.x;
    out.y = s * q.y;
    out.z = s * q.z;
    return out;
}
