// util/maths.h - wall-clock timer, raw terminal input, integer maths, Bessel
// functions and log-gamma. Pure functions except GetRunTime (reads the clock)
// and SetKeyboardIO (changes the terminal, keeps one saved record).
#pragma once

// Wall-clock time in seconds since the epoch, microsecond resolution.
double GetRunTime(void);
// flag != 0: single-key input on standard input (canonical mode off, echo
// untouched, VMIN 1, VTIME 0), saving the current settings first. flag == 0:
// restore the saved settings (an all-zero record if none was saved). Returns
// the status of the apply call: 0 or -1.
int SetKeyboardIO(int flag);
// log(x) / log(base), unguarded.
double Logarithm(double x, double base);
// x to the power n by repeated 64-bit multiplication (wraps); 1 for n < 1.
long PowerInt(long x, long n);
// Integer square root by bitwise trial from bit 2^14: never above 32767;
// 0 for negative n.
long IntSqrt(long n);
// n! as a double; 1.0 for n < 2, infinity above 170.
double Factorial(int n);
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
