// tests/test_gui_commands.cpp - what the keys, menu entries and panel inputs
// do, driven without a display. The end-to-end GUI scripts cover the visible
// behaviour; these cases pin what a screen cannot show reliably: the stored
// values, a title cut to its buffer, alpha kept by inversion, and the redraw
// throttle against a fake clock.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "app/boxcount.h"
#include "app/gui/commands.h"
#include "app/images.h"
#include "app/options.h"

namespace {

class Commands : public ::testing::Test {
protected:
    void SetUp() override
    {
        StartupArgs args;
        SetDefaultOptions(&args);
        options.quiet = 1;  // no screen copy and no progress lines
        MakeTestImage();
        UpdateImages();
    }
};

// Steps the analysis n times (or until it finishes).
void Steps(int n)
{
    for (int i = 0; i < n && !BoxCount(1); i++) {
    }
}

TEST_F(Commands, InputsAreClampedStoredAndShown)
{
    static const struct { OptionField field; const char *typed; double stored; const char *shown; } cases[] = {
        {OPTION_SAMPLES, "-3", 1, "1"},      {OPTION_SAMPLES, "0", 1, "1"},     {OPTION_SAMPLES, "abc", 1, "1"},
        {OPTION_SAMPLES, "12", 12, "12"},    {OPTION_START, "1", -1, "Auto"},   {OPTION_START, "2", 2, "2"},
        {OPTION_START, "Auto", -1, "Auto"},  {OPTION_START, "-7", -1, "Auto"},  {OPTION_START, "250", 250, "250"},
        {OPTION_END, "0", 2, "2"},           {OPTION_END, "-1", 2, "2"},        {OPTION_END, "1", 1, "1"},
        {OPTION_END, "", 2, "2"},            {OPTION_FACTOR, "1", 1.1f, "1.1"}, {OPTION_FACTOR, "0.5", 1.1f, "1.1"},
        {OPTION_FACTOR, "abc", 1.1f, "1.1"}, {OPTION_FACTOR, "1.0001", 1.0001f, "1.0001"},
        {OPTION_FACTOR, "1.25", 1.25f, "1.25"},
    };
    for (const auto &c : cases) {
        ApplyOptionInput(c.field, c.typed);
        const double got[] = {(double)options.nsamples, (double)options.boxstart, (double)options.boxend,
                              (double)options.boxfactor};
        EXPECT_EQ(got[c.field == OPTION_SAMPLES ? 0 : c.field == OPTION_START ? 1 : c.field == OPTION_END ? 2 : 3],
                  c.stored)
            << "typed \"" << c.typed << "\"";
        char text[256];
        FormatOptionField(c.field, text, sizeof text);
        EXPECT_STREQ(text, c.shown) << "typed \"" << c.typed << "\"";
        // What a field shows reads back as the same setting.
        const Options before = options;
        ApplyOptionInput(c.field, text);
        EXPECT_EQ(0, memcmp(&before, &options, sizeof options)) << "round trip of \"" << text << "\"";
    }
}

TEST_F(Commands, TitleIsCutToItsBuffer)
{
    char title[256];
    FormatTitle(title, sizeof title);
    EXPECT_STREQ(title, "Quorl : No Image (1:1)");

    memset(options.filename, 'a', sizeof options.filename - 1);  // the longest name the record holds
    options.filename[sizeof options.filename - 1] = '\0';
    options.scale = 4;
    char small[32];
    memset(small, 'x', sizeof small);
    FormatTitle(small, 16);
    EXPECT_EQ(strlen(small), 15u);
    EXPECT_EQ(small[16], 'x');
}

TEST_F(Commands, OpenResetsTheAnalysisAndKeepsTheRegion)
{
    options.processing = 1;
    options.useregion = 1;
    options.left = 10;
    options.right = 50;
    Steps(5000);
    ASSERT_GT(nresults, 1);
    EXPECT_EQ(OpenImage(nullptr), 0);  // a cancelled selector changes nothing
    EXPECT_GT(nresults, 1);
    const std::string name = QUORL_EXAMPLES "/dust.tga";
    EXPECT_EQ(OpenImage(name.c_str()), 1);
    EXPECT_STREQ(options.filename, name.c_str());
    EXPECT_EQ(options.imagewidth, 729);
    EXPECT_TRUE(nresults == 1 && nboxlist == 0);
    EXPECT_EQ(options.processing, 1) << "a running analysis goes on, reset";
    EXPECT_TRUE(options.left == 10 && options.right == 50) << "a region given at start survives";

    // Unreadable, or a name too long for the record: the blank image.
    const std::string too_long(300, 'n');
    for (const char *bad : {"/nonexistent/dir/image.tga", too_long.c_str()}) {
        ASSERT_EQ(OpenImage(name.c_str()), 1);
        EXPECT_EQ(OpenImage(bad), 1) << bad;
        EXPECT_STREQ(options.filename, "No Image");
        EXPECT_TRUE(options.imagewidth == 400 && options.imageheight == 300 && nresults == 1) << bad;
    }
}

TEST_F(Commands, InvertTwiceRestoresTheImage)
{
    ASSERT_EQ(OpenImage(QUORL_EXAMPLES "/carpet.tga"), 1);
    const size_t n = (size_t)options.imagewidth * options.imageheight;
    const std::string orig((const char *)image, n * sizeof *image), bw((const char *)bwimage, n);
    Steps(3000);
    InvertImage();
    EXPECT_EQ(nresults, 1) << "inverting resets the analysis";
    for (size_t i = 0; i < n; i += 997) {
        EXPECT_EQ(bwimage[i], 255 - (unsigned char)bw[i]) << "pixel " << i;
        EXPECT_EQ(image[i].a, (unsigned char)orig[i * 4 + 3]) << "alpha kept, pixel " << i;
    }
    InvertImage();
    EXPECT_EQ(std::string((const char *)image, n * sizeof *image), orig);
    EXPECT_EQ(std::string((const char *)bwimage, n), bw);
}

TEST_F(Commands, StartRestartsAndStopKeepsTheTable)
{
    StartProcessing();
    Steps(20000);
    const int n = nresults;
    ASSERT_GT(n, 2);
    StopProcessing();
    EXPECT_EQ(options.processing, 0);
    EXPECT_EQ(nresults, n) << "stop resets nothing";
    StartProcessing();
    EXPECT_EQ(options.processing, 1);
    EXPECT_TRUE(nresults == 1 && nboxlist == 0) << "start begins again from the first size";
}

double fake_now;
double FakeClock(void)
{
    fake_now += 0.001;  // every reading advances the clock by 1 ms
    return fake_now;
}

TEST_F(Commands, IdleRedrawThrottle)
{
    options.processing = 0;  // idle: every call redraws
    fake_now = 1000.0;
    for (int i = 0; i < 50; i++) EXPECT_EQ(IdleStep(FakeClock), 1) << "call " << i;

    options.nsamples = 1000;  // stays running for every call below
    options.processing = 1;
    fake_now = 2000.0;
    IdleStep(FakeClock);  // settles the time of the last redraw
    double last = fake_now;
    int redraws = 0;
    for (int calls = 0; calls < 3000; calls++) {
        if (!IdleStep(FakeClock)) continue;
        redraws++;
        EXPECT_GE(fake_now - last, 0.1 - 1e-9) << "redraw " << redraws;
        EXPECT_LE(fake_now - last, 0.1 + 0.0025) << "redraw " << redraws;
        last = fake_now;
    }
    EXPECT_GE(redraws, 25);

    // The call that finishes the analysis redraws at once.
    options.nsamples = 1;
    options.boxstart = options.boxend = 3;
    StartProcessing();
    fake_now = 3000.0;
    IdleStep(FakeClock);
    int final_call = 0;
    for (int calls = 0; options.processing && calls < 1000000; calls++) final_call = IdleStep(FakeClock);
    EXPECT_EQ(options.processing, 0);
    EXPECT_EQ(final_call, 1);
}

}  // namespace
