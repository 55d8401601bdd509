// util/bessel.h - Bessel functions and log-gamma. Pure functions.
#pragma once

// Modified Bessel function I0 by its first nine series terms.
double BesselI0(double x);
// Bessel function J_n(x) by the rectangle rule over [0, pi), step pi/10000.
double Bessel(int n, double x);
// The k-th zero (k from 1) of J_n, scanning in steps of 0.001 and returning
// the first sample past the crossing. J_n(0) = 0 for n > 0 counts as the
// first zero. 0.0 for k < 1; -1.0 when no zero lies below 100.
double BesselZero(int k, int n);
// ln(gamma(x)) by the six-term Lanczos series; valid for x > 0.
double LnGamma(double x);
