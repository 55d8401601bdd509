// app/rowpipe.h - rows handed from the thread that reads them to a thread
// that counts them, so that reading and counting overlap.
//
// Rows travel in batches of a few dozen, through a few batches' worth of
// buffers, so that the threads meet a few hundred times per image rather
// than once per row; the reader waits only when the counter is a whole ring
// of batches behind.
#pragma once

struct RowPipe;

// The function rows are given to, on the pipe's own thread, one at a time
// in the order they were put: row y, width bytes.
typedef void (*RowTake)(void *ctx, int y, const unsigned char *row);

// A pipe for rows of width bytes. Null when the memory or the thread cannot
// be had: then call take directly.
RowPipe *StartRowPipe(int width, RowTake take, void *ctx);
// Room for the next row, to be filled and then put with PutRow.
unsigned char *RowPipeRoom(RowPipe *p);
void PutRow(RowPipe *p, int y);
// Waits until every row put has been taken, then ends the thread and frees
// the pipe.
void EndRowPipe(RowPipe *p);
