#include "ddf/generator.h"

#include <gtest/gtest.h>

namespace orlo {
namespace {

TEST(FixPercents, TheFirstNumbersOfRecordsAreCopied)
{
    float  a[]       = {0.25F, 9.0F};
    float  b[]       = {0.75F};
    float *records[] = {a, b};
    float  out[]     = {-1.0F, -1.0F, -1.0F};
    fix_percents(records, out, 2);
    EXPECT_EQ(0.25F, out[0]);
    EXPECT_EQ(0.75F, out[1]);
    EXPECT_EQ(-1.0F, out[2]);
}

} // namespace
} // namespace orlo
