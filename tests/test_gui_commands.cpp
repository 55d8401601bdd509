// tests/test_gui_commands.cpp - what the keys, menu entries and panel inputs
// do, driven without a display: panel clamping, the title, opening and
// inverting images, start and stop, and the idle loop's redraw throttle.
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

// ---------------------------------------------------------------- panel inputs

TEST_F(Commands, InputsAreClampedAsStored)
{
    static const struct {
        const char *id;
        OptionField field;
        const char *text;
        double want;
    } cases[] = {
        {"samples-1.1", OPTION_SAMPLES, "-3", 1},    {"samples-1.2", OPTION_SAMPLES, "0", 1},
        {"samples-1.3", OPTION_SAMPLES, "abc", 1},   {"samples-1.4", OPTION_SAMPLES, "1", 1},
        {"samples-1.5", OPTION_SAMPLES, "12", 12},   {"start-1.1", OPTION_START, "1", -1},
        {"start-1.2", OPTION_START, "2", 2},         {"start-1.3", OPTION_START, "Auto", -1},
        {"start-1.4", OPTION_START, "-7", -1},       {"start-1.5", OPTION_START, "250", 250},
        {"end-1.1", OPTION_END, "0", 2},             {"end-1.2", OPTION_END, "-1", 2},
        {"end-1.3", OPTION_END, "1", 1},             {"end-1.4", OPTION_END, "", 2},
        {"factor-1.1", OPTION_FACTOR, "1", 1.1f},    {"factor-1.2", OPTION_FACTOR, "0.5", 1.1f},
        {"factor-1.3", OPTION_FACTOR, "abc", 1.1f},  {"factor-1.4", OPTION_FACTOR, "1.0001", 1.0001f},
        {"factor-1.5", OPTION_FACTOR, "1.25", 1.25f},
    };
    for (const auto &c : cases) {
        ApplyOptionInput(c.field, c.text);
        double got = 0;
        switch (c.field) {
        case OPTION_SAMPLES: got = options.nsamples; break;
        case OPTION_START: got = options.boxstart; break;
        case OPTION_END: got = options.boxend; break;
        case OPTION_FACTOR: got = options.boxfactor; break;
        }
        EXPECT_EQ(got, c.want) << c.id << ": typed \"" << c.text << "\"";
    }
}

TEST_F(Commands, FieldsShowTheStoredValue)
{
    static const struct {
        const char *id;
        OptionField field;
        const char *typed, *shown;
    } cases[] = {
        {"show-1.1", OPTION_SAMPLES, "-3", "1"}, {"show-1.2", OPTION_START, "1", "Auto"},
        {"show-1.3", OPTION_START, "2", "2"},    {"show-1.4", OPTION_END, "0", "2"},
        {"show-1.5", OPTION_FACTOR, "1", "1.1"}, {"show-1.6", OPTION_FACTOR, "1.25", "1.25"},
    };
    for (const auto &c : cases) {
        ApplyOptionInput(c.field, c.typed);
        char text[256];
        FormatOptionField(c.field, text, sizeof text);
        EXPECT_STREQ(text, c.shown) << c.id;
        // What a field shows reads back as the same setting.
        const Options before = options;
        ApplyOptionInput(c.field, text);
        EXPECT_EQ(0, memcmp(&before, &options, sizeof options)) << c.id << ": round trip";
    }
}

// ---------------------------------------------------------------- title

TEST_F(Commands, TitleNamesFileAndScale)
{
    char title[256];
    FormatTitle(title, sizeof title);
    EXPECT_STREQ(title, "Quorl : No Image (1:1)");

    // boundary: the longest name the record holds does not overrun the title
    memset(options.filename, 'a', sizeof options.filename - 1);
    options.filename[sizeof options.filename - 1] = '\0';
    options.scale = 4;
    char small[32];
    memset(small, 'x', sizeof small);
    FormatTitle(small, 16);
    EXPECT_EQ(strlen(small), 15u);
    EXPECT_EQ(small[16], 'x');
}

// ---------------------------------------------------------------- images

TEST_F(Commands, OpenWithoutANameChangesNothing)
{
    Steps(1000);
    const int n = nresults;
    EXPECT_EQ(OpenImage(nullptr), 0);
    EXPECT_EQ(OpenImage(""), 0);
    EXPECT_EQ(nresults, n);
}

TEST_F(Commands, OpenReadsTheFileAndResetsTheAnalysis)
{
    options.processing = 1;
    Steps(5000);
    ASSERT_GT(nresults, 1);
    const std::string name = QUORL_EXAMPLES "/dust.tga";
    EXPECT_EQ(OpenImage(name.c_str()), 1);
    EXPECT_STREQ(options.filename, name.c_str());
    EXPECT_EQ(options.imagewidth, 729);
    EXPECT_EQ(nresults, 1);
    EXPECT_EQ(nboxlist, 0);
    EXPECT_EQ(options.processing, 1) << "a running analysis goes on, reset";
}

TEST_F(Commands, UnreadableFileGivesTheBlankImage)
{
    static const std::string too_long(300, 'n');
    const char *names[] = {"/nonexistent/dir/image.tga", too_long.c_str()};
    for (const char *name : names) {
        ASSERT_EQ(OpenImage(QUORL_EXAMPLES "/dust.tga"), 1);
        EXPECT_EQ(OpenImage(name), 1) << name;
        EXPECT_STREQ(options.filename, "No Image");
        EXPECT_EQ(options.imagewidth, 400);
        EXPECT_EQ(options.imageheight, 300);
        EXPECT_EQ(nresults, 1);
    }
}

TEST_F(Commands, RegionGivenAtStartSurvivesOpen)
{
    options.useregion = 1;
    options.left = 10;
    options.right = 50;
    OpenImage(QUORL_EXAMPLES "/dust.tga");
    EXPECT_EQ(options.left, 10);
    EXPECT_EQ(options.right, 50);
}

TEST_F(Commands, InvertTwiceRestoresTheImage)
{
    ASSERT_EQ(OpenImage(QUORL_EXAMPLES "/carpet.tga"), 1);
    const size_t n = (size_t)options.imagewidth * options.imageheight;
    const std::string orig((const char *)image, n * sizeof *image);
    const std::string bw((const char *)bwimage, n);

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

// ---------------------------------------------------------------- start, stop

TEST_F(Commands, StartRestartsAndStopKeepsTheTable)
{
    StartProcessing();
    EXPECT_EQ(options.processing, 1);
    Steps(20000);
    const int n = nresults;
    ASSERT_GT(n, 2);
    StopProcessing();
    EXPECT_EQ(options.processing, 0);
    EXPECT_EQ(nresults, n) << "stop resets nothing";
    StartProcessing();
    EXPECT_EQ(nresults, 1) << "start begins again from the first size";
    EXPECT_EQ(nboxlist, 0);
}

// ---------------------------------------------------------------- idle loop

double fake_now;
double FakeClock(void)
{
    fake_now += 0.001;  // every reading advances the clock by 1 ms
    return fake_now;
}

TEST_F(Commands, IdleRedrawsEveryCallWhenNotProcessing)
{
    options.processing = 0;
    fake_now = 1000.0;
    for (int i = 0; i < 50; i++) EXPECT_EQ(IdleStep(FakeClock), 1) << "call " << i;
}

TEST_F(Commands, IdleRedrawsAtMostEveryTenthSecondWhileProcessing)
{
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
    EXPECT_EQ(options.processing, 1);
}

TEST_F(Commands, IdleRedrawsAtOnceWhenTheAnalysisFinishes)
{
    options.nsamples = 1;
    options.boxstart = 3;
    options.boxend = 3;
    StartProcessing();
    fake_now = 3000.0;
    IdleStep(FakeClock);
    int calls = 1;
    int last = 0;
    while (options.processing && calls < 1000000) {
        last = IdleStep(FakeClock);
        calls++;
    }
    EXPECT_EQ(options.processing, 0) << "the finish clears processing";
    EXPECT_EQ(last, 1) << "the finishing call redraws";
}

}  // namespace
