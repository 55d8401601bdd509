// util/rle.h - byte run-length codec.
//
// Packet format: a count byte c, read as a signed 8-bit value, then data.
//   c in 1..127    a run: one data byte, repeated c times
//   c in -1..-128  a literal: -c data bytes copied as they are
//   c == 0         an empty packet with no data byte, skipped
// The compressor writes runs of 2 to 127 and literals of 1 to 127 bytes only.
// This is not the TGA packet format. Pure: no allocation, no output.
#pragma once

// Compresses in[0..n-1] into out and returns the number of bytes written (0
// when n < 1). out must hold n + n/127 + 1 bytes, the worst case.
int RLECompress(unsigned char *out, const unsigned char *in, int n);

// Decodes packets from in until at least n bytes are in out; does nothing
// when n < 1. in must hold packets for at least n bytes: the decoder has no
// input length and reads on until it has them.
// The final packet is written whole, so out must hold n + 127 bytes unless
// in holds exactly n bytes' worth of packets (as RLECompress of n bytes
// does), when n bytes are enough and exactly n are written.
void RLEUncompress(unsigned char *out, const unsigned char *in, int n);
