#include "base/conversions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace orlo {
namespace {

constexpr std::int32_t MIN_32 = std::numeric_limits<std::int32_t>::min();

class Conversions : public testing::Test {
  protected:
    void SetUp() override { reset_conversions(); }
    void TearDown() override { reset_conversions(); }
};

TEST_F(Conversions, SemitonesToPitchClass)
{
    EXPECT_FLOAT_EQ(4.0F, cpc_to_pch(0.0F));
    EXPECT_FLOAT_EQ(5.0F, cpc_to_pch(12.0F));
    EXPECT_FLOAT_EQ(5.015F, cpc_to_pch(13.5F));
    EXPECT_FLOAT_EQ(8.09F, cpc_to_pch(57.0F));
}

TEST_F(Conversions, PitchClassBelowZeroIsTakenOffOctaveFour)
{
    EXPECT_FLOAT_EQ(3.99F, cpc_to_pch(-1.0F));
    EXPECT_FLOAT_EQ(2.99F, cpc_to_pch(-13.0F)); // 4 - 1 - 0.01
}

TEST_F(Conversions, SemitonesToDecimalOctave)
{
    EXPECT_FLOAT_EQ(4.0F, cpc_to_oct(0.0F));
    EXPECT_FLOAT_EQ(5.5F, cpc_to_oct(18.0F));
    EXPECT_FLOAT_EQ(3.5F, cpc_to_oct(-6.0F));
    EXPECT_FLOAT_EQ(2.5F, cpc_to_oct(-18.0F));
}

TEST_F(Conversions, SemitonesToHertz)
{
    EXPECT_FLOAT_EQ(16.35159783F, cpc_to_hz(0.0F));
    EXPECT_FLOAT_EQ(440.0F, cpc_to_hz(57.0F));
    EXPECT_FLOAT_EQ(32.70319566F, cpc_to_hz(12.0F));
    EXPECT_FLOAT_EQ(8.175798915F, cpc_to_hz(-12.0F));
}

TEST_F(Conversions, TheExponentOfAFrequencyHas32Bits)
{
    int differing = 0;
    for (float pitch = 0.25F; pitch < 120.0F; pitch += 1.0F) {
        const float  octaves  = std::floor(pitch / 12.0F);
        const float  exponent = octaves + (pitch - 12.0F * octaves) / 12.0F;
        const double hertz    = std::pow(2.0, static_cast<double>(exponent)) * 16.35159783;
        EXPECT_EQ(static_cast<float>(hertz), cpc_to_hz(pitch)) << pitch;
        const double exact = std::pow(2.0, static_cast<double>(pitch) / 12.0) * 16.35159783;
        differing += static_cast<float>(exact) != static_cast<float>(hertz) ? 1 : 0;
    }
    EXPECT_GT(differing, 0);
}

TEST_F(Conversions, SemitonesToTheNearestBin)
{
    EXPECT_EQ(41, cpc_to_bin(4, 57.0F));
    EXPECT_EQ(3, cpc_to_bin(0, 57.0F));   // 440 / 172.27
    EXPECT_EQ(5, cpc_to_bin(1, 57.0F));   // 440 / 86.13
    EXPECT_EQ(163, cpc_to_bin(6, 57.0F)); // 440 / 2.6917 = 163.47
    EXPECT_EQ(0, cpc_to_bin(4, -60.0F));
}

TEST_F(Conversions, BinSizeSevenCountsAsSix)
{
    for (const float pitch : {0.0F, 33.3F, 57.0F, 100.0F})
        EXPECT_EQ(cpc_to_bin(6, pitch), cpc_to_bin(7, pitch)) << pitch;
}

TEST_F(Conversions, BinsFollowTheSamplingRate)
{
    SRATE = 4096;
    EXPECT_EQ(440, cpc_to_bin(4, 57.0F));
    SRATE = 48000;
    EXPECT_EQ(38, cpc_to_bin(4, 57.0F)); // 440 / 11.72 = 37.55
}

TEST_F(Conversions, BinWidthsKeepTheirFraction)
{
    SRATE = 6144; // 4096 points: 1.5 Hz a bin
    EXPECT_EQ(293, cpc_to_bin(4, 57.0F));
}

TEST_F(Conversions, ASamplingRateOfZeroHasNoBins)
{
    SRATE = 0;
    EXPECT_EQ(MIN_32, cpc_to_bin(4, 57.0F));
}

TEST_F(Conversions, SemitonesToTranspositionRatio)
{
    EXPECT_FLOAT_EQ(1.0F, st_to_tr(0.0F));
    EXPECT_FLOAT_EQ(2.0F, st_to_tr(12.0F));
    EXPECT_FLOAT_EQ(0.5F, st_to_tr(-12.0F));
    EXPECT_FLOAT_EQ(1.059463094F, st_to_tr(1.0F));
}

TEST_F(Conversions, DecibelsToAmplitudeAreTruncated)
{
    EXPECT_EQ(1, db_to_amp(0));
    EXPECT_EQ(1, db_to_amp(1));    // 1.122
    EXPECT_EQ(1, db_to_amp(6));    // 1.995
    EXPECT_EQ(2, db_to_amp(7));    // 2.239
    EXPECT_EQ(999, db_to_amp(60)); // 999.9997: the constant is a little below ln(10) / 20
    EXPECT_EQ(31622, db_to_amp(90));
    EXPECT_EQ(63095, db_to_amp(96));
}

TEST_F(Conversions, DecibelsOutOfRangeGiveTheMostNegative)
{
    EXPECT_EQ(MIN_32, db_to_amp(200));
    EXPECT_EQ(MIN_32, db_to_amp(2147483647));
    EXPECT_EQ(0, db_to_amp(-1));
    EXPECT_EQ(0, db_to_amp(MIN_32));
}

TEST_F(Conversions, AmplitudeToDecibels)
{
    EXPECT_EQ(0.0F, amp_to_db(1));
    EXPECT_NEAR(60.0, static_cast<double>(amp_to_db(1000)), 1e-4);
    EXPECT_NEAR(90.3087, static_cast<double>(amp_to_db(32767)), 1e-4);
}

TEST_F(Conversions, AmplitudeZeroIsMinusInfinity)
{
    EXPECT_EQ(-std::numeric_limits<float>::infinity(), amp_to_db(0));
    EXPECT_TRUE(std::isnan(amp_to_db(-1)));
}

} // namespace
} // namespace orlo
