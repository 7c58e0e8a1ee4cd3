// Numbers of variable length at all their limits, and times in ticks.

#include "output/midi_numbers.h"

#include "midi_bytes.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

namespace orlo {
namespace {

using test::append_number;
using test::written;

TEST(VLSize, HasSevenBitsAByte)
{
    EXPECT_EQ(1U, VLSize(0));
    EXPECT_EQ(1U, VLSize(127));
    EXPECT_EQ(2U, VLSize(128));
    EXPECT_EQ(2U, VLSize(16383));
    EXPECT_EQ(3U, VLSize(16384));
    EXPECT_EQ(3U, VLSize(2097151));
    EXPECT_EQ(4U, VLSize(2097152));
    EXPECT_EQ(4U, VLSize(268435455));
    EXPECT_EQ(5U, VLSize(268435456));
    EXPECT_EQ(9U, VLSize(9223372036854775807U));
    EXPECT_EQ(10U, VLSize(9223372036854775808U));
    EXPECT_EQ(10U, VLSize(18446744073709551615U));
}

TEST(VariableLength, GroupLimits)
{
    for (unsigned groups = 1; groups <= 9; groups++) {
        const std::uint64_t first = groups == 1 ? 0 : std::uint64_t{1} << (7 * (groups - 1)); // smallest number of so many groups
        const std::uint64_t last  = (std::uint64_t{1} << (7 * groups)) - 1;
        EXPECT_EQ(VLSize(first), groups);
        EXPECT_EQ(VLSize(last), groups);
        for (const std::uint64_t value : {first, first + 1, (first + last) / 2, last}) {
            std::vector<std::uint8_t> expected;
            append_number(expected, value);
            EXPECT_EQ(written([value](std::FILE *file) { WriteVarLen(value, file); }), expected) << value;
            EXPECT_EQ(expected.size(), VLSize(value)) << value;
        }
    }
    EXPECT_EQ(VLSize(std::uint64_t{1} << 63), 10U);
    EXPECT_EQ(VLSize(std::numeric_limits<std::uint64_t>::max()), 10U);
}

TEST(VariableLength, KnownNumbers) // the examples of the MIDI file format
{
    const std::pair<std::uint64_t, std::vector<std::uint8_t>> known[] = {
        {0x00, {0x00}},
        {0x40, {0x40}},
        {0x7F, {0x7F}},
        {0x80, {0x81, 0x00}},
        {0x2000, {0xC0, 0x00}},
        {0x3FFF, {0xFF, 0x7F}},
        {0x4000, {0x81, 0x80, 0x00}},
        {0x100000, {0xC0, 0x80, 0x00}},
        {0x1FFFFF, {0xFF, 0xFF, 0x7F}},
        {0x200000, {0x81, 0x80, 0x80, 0x00}},
        {0x8000000, {0xC0, 0x80, 0x80, 0x00}},
        {0xFFFFFFF, {0xFF, 0xFF, 0xFF, 0x7F}},
    };
    for (const auto &[value, bytes] : known) {
        EXPECT_EQ(written([value = value](std::FILE *file) { WriteVarLen(value, file); }), bytes) << value;
    }
}

TEST(Ticks, SecondsAreCutOff)
{
    EXPECT_EQ(ticks(0.0F), 0U);
    EXPECT_EQ(ticks(1.0F), 480U);
    EXPECT_EQ(ticks(0.002F), 0U);
    EXPECT_EQ(ticks(0.999F), 479U);
    EXPECT_EQ(ticks(-1.0F), 0U);
}

} // namespace
} // namespace orlo
