// util/random.h - seeded uniform, Gaussian and integer random number generators.
#pragma once
