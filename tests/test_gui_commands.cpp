// What the keys, menu entries and panel inputs do, without a display: the
// values stored, a title cut to its buffer, and the redraw throttle.
#include <gtest/gtest.h>

#include <cstring>

#include "app/gui/commands.h"
#include "app_fixture.h"

struct Commands : AppTest {
    void SetUp() override { AppTest::SetUp(), MakeTestImage(), stderr_of(UpdateImages); }  // the blank image
};

TEST_F(Commands, InputsAndTitle)
{
    const struct { OptionField field; const char *typed; double stored; const char *shown; } cases[] = {
        {OPTION_SAMPLES, "-3", 1, "1"},  {OPTION_SAMPLES, "abc", 1, "1"},  {OPTION_SAMPLES, "12", 12, "12"},
        {OPTION_START, "1", -1, "Auto"}, {OPTION_START, "Auto", -1, "Auto"}, {OPTION_START, "2", 2, "2"},
        {OPTION_END, "0", 2, "2"},       {OPTION_END, "", 2, "2"},          {OPTION_END, "1", 1, "1"},
        {OPTION_FACTOR, "1", 1.1f, "1.1"}, {OPTION_FACTOR, "abc", 1.1f, "1.1"}, {OPTION_FACTOR, "nan", 1.1f, "1.1"},
        {OPTION_FACTOR, "1.0001", 1.0001f, "1.0001"}, {OPTION_FACTOR, "1.25", 1.25f, "1.25"},
    };
    for (const auto &c : cases) {
        ApplyOptionInput(c.field, c.typed);
        const double stored[] = {(double)options.nsamples, (double)options.boxstart, (double)options.boxend, options.boxfactor};
        char shown[256];
        FormatOptionField(c.field, shown, sizeof shown);
        const Options before = options;  // what a field shows reads back as the same setting
        ApplyOptionInput(c.field, shown);
        EXPECT_TRUE(stored[c.field] == c.stored && !strcmp(shown, c.shown) && !memcmp(&before, &options, sizeof options))
            << "\"" << c.typed << "\" is shown as \"" << shown << "\"";
    }
    char title[32];  // the window title, cut to its buffer
    FormatTitle(title, sizeof title);
    EXPECT_STREQ(title, "Quorl : No Image (1:1)");
    memset(options.filename, 'a', sizeof options.filename - 1);  // the longest name the record holds
    memset(title, 'x', sizeof title);
    FormatTitle(title, 16);
    EXPECT_TRUE(strlen(title) == 15 && title[16] == 'x');
}

TEST_F(Commands, OpenInvertStartAndStop)
{
    options.processing = 1, options.useregion = 1, options.left = 10, options.right = 50;
    run_to_end(5000);
    EXPECT_TRUE(OpenImage(nullptr) == 0 && nresults > 1) << "a cancelled selector changes nothing";
    const std::string name = QUORL_EXAMPLES "/carpet.tga";
    EXPECT_TRUE(OpenImage(name.c_str()) == 1 && options.filename == name && options.imagewidth == 729);
    EXPECT_TRUE(nresults == 1 && nboxlist == 0 && options.processing == 1 && options.left == 10 && options.right == 50)
        << "a running analysis goes on, reset; a region given at start survives";

    // Inverting complements r, g and b of the image itself, and twice restores it.
    const size_t n = (size_t)options.imagewidth * options.imageheight;
    const std::string orig((const char *)image, n * sizeof *image), bw((const char *)bwimage, n);
    run_to_end(3000);
    InvertImage();
    EXPECT_EQ(nresults, 1) << "inverting resets the analysis";
    for (size_t i = 0; i < n; i += 997)
        EXPECT_TRUE(bwimage[i] == 255 - (unsigned char)bw[i] && image[i].a == (unsigned char)orig[i * 4 + 3]) << i;
    InvertImage();
    EXPECT_TRUE(std::string((const char *)image, n * sizeof *image) == orig && std::string((const char *)bwimage, n) == bw);

    StopProcessing();  // stop resets nothing; start begins again from the first size
    run_to_end(20000);
    EXPECT_TRUE(options.processing == 0 && nresults > 2);
    StartProcessing();
    EXPECT_TRUE(options.processing == 1 && nresults == 1 && nboxlist == 0);

    // Unreadable, or a name too long for the record: the blank image.
    for (const std::string &bad : {std::string("/nonexistent/dir/image.tga"), std::string(300, 'n')}) {
        ASSERT_EQ(OpenImage(name.c_str()), 1);
        EXPECT_TRUE(stderr_of([&] { OpenImage(bad.c_str()); }).find("Creating blank image\n") != std::string::npos);
        EXPECT_TRUE(options.filename == std::string("No Image") && options.imagewidth == 400 && nresults == 1) << bad;
    }
}

static double fake_now;
static double fake_clock(void) { return fake_now += 0.001; }  // every reading advances it by 1 ms

TEST_F(Commands, IdleRedrawThrottle)
{
    // Idle: a redraw about every 1/60 s, and the loop may sleep until it is due.
    double last = fake_now;
    const double t0 = fake_now;
    int redraws = 0;
    for (int calls = 0; calls < 200; calls++) {
        const double wait = IdleSleep(fake_clock);
        EXPECT_TRUE(wait >= 0 && wait <= kIdleFrame) << wait;
        if (!IdleStep(fake_clock)) continue;
        EXPECT_TRUE(calls < 2 || (fake_now - last >= kIdleFrame && fake_now - last <= kIdleFrame + 0.004))
            << "idle redraw after " << fake_now - last;
        last = fake_now, redraws++;
    }
    EXPECT_TRUE(redraws >= 20 && redraws <= (fake_now - t0) * 60 + 1) << redraws << " idle redraws";

    options.nsamples = 1000, options.processing = 1;  // running for every call below
    fake_now += 1;
    IdleStep(fake_clock);  // a redraw, after a second without one
    last = fake_now, redraws = 0;
    for (int calls = 0; calls < 3000; calls++) {
        if (!IdleStep(fake_clock)) continue;
        EXPECT_TRUE(fake_now - last >= 0.1 - 1e-9 && fake_now - last <= 0.1025) << "redraw after " << fake_now - last;
        last = fake_now, redraws++;
    }
    EXPECT_GE(redraws, 25);

    options.nsamples = 1, options.boxstart = options.boxend = 3;  // the call that finishes redraws at once
    StartProcessing();
    int last_call = 0;
    for (int calls = 0; options.processing && calls < 1000000; calls++) last_call = IdleStep(fake_clock);
    EXPECT_TRUE(options.processing == 0 && last_call == 1);
}
