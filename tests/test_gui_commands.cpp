// tests/test_gui_commands.cpp - what the keys, menu entries and panel inputs
// do, driven without a display. The end-to-end GUI scripts cover the visible
// behaviour; these cases pin what a screen cannot show reliably: the stored
// values, a title cut to its buffer, alpha kept by inversion, and the redraw
// throttle against a fake clock.
#include <gtest/gtest.h>

#include <cstring>

#include "app/gui/commands.h"
#include "app_fixture.h"

namespace {

struct Commands : AppTest {
    void SetUp() override
    {
        AppTest::SetUp();  // quiet: no screen copy and no progress lines
        MakeTestImage();
        UpdateImages();
    }
};

TEST_F(Commands, InputsAreClampedStoredAndShown)
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
        const double stored[] = {(double)options.nsamples, (double)options.boxstart, (double)options.boxend,
                                 (double)options.boxfactor};  // in the fields' order
        char shown[256];
        FormatOptionField(c.field, shown, sizeof shown);
        EXPECT_TRUE(stored[c.field] == c.stored && !strcmp(shown, c.shown)) << c.typed << " shows as " << shown;
        const Options before = options;  // what a field shows reads back as the same setting
        ApplyOptionInput(c.field, shown);
        EXPECT_EQ(0, memcmp(&before, &options, sizeof options)) << "round trip of \"" << shown << "\"";
    }
}

TEST_F(Commands, TitleIsCutToItsBuffer)
{
    char title[32];
    FormatTitle(title, sizeof title);
    EXPECT_STREQ(title, "Quorl : No Image (1:1)");
    memset(options.filename, 'a', sizeof options.filename - 1);  // the longest name the record holds
    memset(title, 'x', sizeof title);
    FormatTitle(title, 16);
    EXPECT_TRUE(strlen(title) == 15 && title[16] == 'x');
}

TEST_F(Commands, OpenResetsTheAnalysisAndKeepsTheRegion)
{
    options.processing = 1, options.useregion = 1, options.left = 10, options.right = 50;
    run_to_end(5000);
    ASSERT_GT(nresults, 1);
    EXPECT_TRUE(OpenImage(nullptr) == 0 && nresults > 1) << "a cancelled selector changes nothing";
    const std::string name = QUORL_EXAMPLES "/dust.tga";
    EXPECT_EQ(OpenImage(name.c_str()), 1);
    EXPECT_TRUE(options.filename == name && options.imagewidth == 729 && nresults == 1 && nboxlist == 0);
    EXPECT_EQ(options.processing, 1) << "a running analysis goes on, reset";
    EXPECT_TRUE(options.left == 10 && options.right == 50) << "a region given at start survives";
    // Unreadable, or a name too long for the record: the blank image.
    for (const std::string &bad : {std::string("/nonexistent/dir/image.tga"), std::string(300, 'n')}) {
        ASSERT_EQ(OpenImage(name.c_str()), 1);
        EXPECT_EQ(OpenImage(bad.c_str()), 1);
        EXPECT_TRUE(options.filename == std::string("No Image") && options.imagewidth == 400 && nresults == 1) << bad;
    }
}

TEST_F(Commands, InvertTwiceRestoresTheImage)
{
    ASSERT_EQ(OpenImage(QUORL_EXAMPLES "/carpet.tga"), 1);
    const size_t n = (size_t)options.imagewidth * options.imageheight;
    const std::string orig((const char *)image, n * sizeof *image), bw((const char *)bwimage, n);
    run_to_end(3000);
    InvertImage();
    EXPECT_EQ(nresults, 1) << "inverting resets the analysis";
    for (size_t i = 0; i < n; i += 997)
        EXPECT_TRUE(bwimage[i] == 255 - (unsigned char)bw[i] && image[i].a == (unsigned char)orig[i * 4 + 3]) << i;
    InvertImage();
    EXPECT_TRUE(std::string((const char *)image, n * sizeof *image) == orig && std::string((const char *)bwimage, n) == bw);
}

TEST_F(Commands, StartRestartsAndStopKeepsTheTable)
{
    StartProcessing();
    run_to_end(20000);
    const int n = nresults;
    ASSERT_GT(n, 2);
    StopProcessing();
    EXPECT_TRUE(options.processing == 0 && nresults == n) << "stop resets nothing";
    StartProcessing();
    EXPECT_TRUE(options.processing == 1 && nresults == 1 && nboxlist == 0) << "start begins again";
}

double fake_now;
double FakeClock(void) { return fake_now += 0.001; }  // every reading advances the clock by 1 ms

TEST_F(Commands, IdleRedrawThrottle)
{
    fake_now = 1000.0;  // idle: every call redraws
    for (int i = 0; i < 50; i++) EXPECT_EQ(IdleStep(FakeClock), 1) << "call " << i;

    options.nsamples = 1000, options.processing = 1;  // running for every call below
    IdleStep(FakeClock);  // settles the time of the last redraw
    double last = fake_now;
    int redraws = 0;
    for (int calls = 0; calls < 3000; calls++) {
        if (!IdleStep(FakeClock)) continue;
        EXPECT_TRUE(fake_now - last >= 0.1 - 1e-9 && fake_now - last <= 0.1025) << "redraw after " << fake_now - last;
        last = fake_now, redraws++;
    }
    EXPECT_GE(redraws, 25);

    options.nsamples = 1, options.boxstart = options.boxend = 3;  // the call that finishes redraws at once
    StartProcessing();
    IdleStep(FakeClock);
    int final_call = 0;
    for (int calls = 0; options.processing && calls < 1000000; calls++) final_call = IdleStep(FakeClock);
    EXPECT_TRUE(options.processing == 0 && final_call == 1);
}

}  // namespace
