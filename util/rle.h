// util/rle.h - byte run-length codec.
#pragma once
