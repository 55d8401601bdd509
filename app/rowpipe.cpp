// app/rowpipe.cpp - rows from the reading thread to a counting thread, in
// batches.
#include "app/rowpipe.h"

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

struct RowPipe {
    static constexpr int kRows = 32;     // rows per batch
    static constexpr int kBatches = 8;   // batches in the ring
    size_t width = 0;
    RowTake take = nullptr;
    void *ctx = nullptr;
    std::vector<unsigned char> store;    // batch b's row i at (b * kRows + i) * width
    int ys[kBatches][kRows] = {};
    int rows[kBatches] = {};             // rows in each batch handed over
    int filling = 0;                     // rows in the batch being filled
    std::mutex m;
    std::condition_variable has_rows, has_room;
    long long handed = 0, taken = 0;     // batches handed to the thread, and taken by it
    bool ending = false;
    std::thread thread;
};

namespace {

void run(RowPipe *p)
{
    for (;;) {
        int b, n;
        {
            std::unique_lock<std::mutex> lock(p->m);
            p->has_rows.wait(lock, [p] { return p->taken < p->handed || p->ending; });
            if (p->taken == p->handed) return;  // ending, and nothing left
            b = (int)(p->taken % RowPipe::kBatches);
            n = p->rows[b];
        }
        const unsigned char *base = p->store.data() + (size_t)b * RowPipe::kRows * p->width;
        for (int i = 0; i < n; i++) p->take(p->ctx, p->ys[b][i], base + (size_t)i * p->width);
        {
            const std::lock_guard<std::mutex> lock(p->m);
            p->taken++;
        }
        p->has_room.notify_one();
    }
}

void hand_over(RowPipe *p)
{
    {
        const std::lock_guard<std::mutex> lock(p->m);
        p->rows[p->handed % RowPipe::kBatches] = p->filling;
        p->handed++;
    }
    p->filling = 0;
    p->has_rows.notify_one();
}

}  // namespace

RowPipe *StartRowPipe(int width, RowTake take, void *ctx)
{
    RowPipe *p = new (std::nothrow) RowPipe;
    if (!p) return nullptr;
    p->width = width > 0 ? (size_t)width : 1;
    p->take = take;
    p->ctx = ctx;
    try {
        p->store.resize((size_t)RowPipe::kBatches * RowPipe::kRows * p->width);
        p->thread = std::thread(run, p);
    } catch (const std::bad_alloc &) {
        delete p;
        return nullptr;
    } catch (const std::system_error &) {
        delete p;
        return nullptr;
    }
    return p;
}

unsigned char *RowPipeRoom(RowPipe *p)
{
    const long long batch = p->handed;  // only this thread changes it
    if (p->filling == 0) {
        std::unique_lock<std::mutex> lock(p->m);
        p->has_room.wait(lock, [p, batch] { return batch - p->taken < RowPipe::kBatches; });
    }
    const int b = (int)(batch % RowPipe::kBatches);
    return p->store.data() + ((size_t)b * RowPipe::kRows + p->filling) * p->width;
}

void PutRow(RowPipe *p, int y)
{
    p->ys[p->handed % RowPipe::kBatches][p->filling++] = y;
    if (p->filling == RowPipe::kRows) hand_over(p);
}

void EndRowPipe(RowPipe *p)
{
    if (!p) return;
    if (p->filling > 0) hand_over(p);
    {
        const std::lock_guard<std::mutex> lock(p->m);
        p->ending = true;
    }
    p->has_rows.notify_one();
    p->thread.join();
    delete p;
}
