// util/random.h - seeded uniform, Gaussian and integer random number generators.
//
// One portable stream per process: a lagged Fibonacci subtraction generator
// over a table of 97 doubles combined with an arithmetic carry sequence. A
// given pair of seeds gives the same sequence on every machine. The stream can
// be skipped forward and stepped back. All generators share the one module
// state, without locking: callers on several threads serialise access.
// Before the first RandomInitialise, RandomUniform and ForwardRandomUniform
// seed with the defaults (1802, 9373). PrimeNoise1 is stateless.
#pragma once

// Seeds the stream; ij in 0..31328, kl in 0..30081. If either is out of range
// both fall back to the defaults 1802 and 9373. May be called again to restart.
void RandomInitialise(int ij, int kl);
// The next value of the stream, in [0, 1).
double RandomUniform(void);
// A normally distributed value (ratio of uniforms, Leva's bounding curves).
double RandomGaussian(double mean, double stddev);
// An integer in [lower, upper], each equally likely; needs lower <= upper.
int RandomInt(int lower, int upper);
// A value in [lower, upper).
double RandomDouble(double lower, double upper);
// The next value of the stream as an integer in [0, 16777216).
long rand24(void);

// Advances the stream by n values without producing them (n <= 0: none).
void ForwardRandomUniform(long n);
// Steps the stream back by n values (n <= 0: none), so that the next
// RandomUniform repeats the value produced n calls ago. Needs a seeded stream.
void BackupRandomUniform(long n);
// Steps back one value and returns it: the value of the last RandomUniform,
// which the next RandomUniform returns again. Needs a seeded stream.
double UnRandomUniform(void);
// As UnRandomUniform, scaled as rand24.
long unRand24(void);

// Integer-hash noise in (-1, 1], the same for the same x. The hash raises
// x << 13 by x multiplications by x (32-bit, wrapping) for x >= 1.
double PrimeNoise1(int x);
