// What the unit tests share: lines to scan, the screen as text, places in the sequence of draws.
#pragma once

#include "base/random.h"
#include "input/line_reader.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace orlo::test {

/// A line to be scanned from its start, with no stream behind it.
inline Input line_of(std::string_view text)
{
    Input in{};
    EXPECT_LT(text.size(), LINE_SIZE);
    text.copy(in.line, LINE_SIZE - 1);
    return in;
}

/// What a call writes to the screen.
template <class Call> std::string screen_of(Call call)
{
    testing::internal::CaptureStderr();
    call();
    return testing::internal::GetCapturedStderr();
}

/// What a call writes to the standard output.
template <class Call> std::string output_of(Call call)
{
    testing::internal::CaptureStdout();
    call();
    return testing::internal::GetCapturedStdout();
}

/// What a call writes to a stream that is handed to it.
template <class Call> std::string file_of(Call call)
{
    std::FILE *file = std::tmpfile();
    if (file == nullptr)
        return "no temporary file";
    call(file);
    std::rewind(file);
    std::string text;
    for (int c = std::getc(file); c != EOF; c = std::getc(file))
        text.push_back(static_cast<char>(c));
    static_cast<void>(std::fclose(file));
    return text;
}

/// A float as a double, said aloud.
constexpr double wide(float value) { return static_cast<double>(value); }

/// A place in the sequence of a seed.
struct Start {
    std::uint32_t seed;
    int           skipped = 0; // draws before the place
};

/// Moves the sequence to a place.
inline void go_to(Start start)
{
    seed_draws(start.seed);
    for (int i = 0; i < start.skipped; ++i)
        static_cast<void>(draw_int());
}

/// Draws that a call takes from a place on, -1 when they are more than most.
template <class Call> int draws_of(Start start, Call call, int most = 1000)
{
    using Draws = std::array<std::int32_t, 4>;

    go_to(start);
    call();
    const Draws after{draw_int(), draw_int(), draw_int(), draw_int()};
    go_to(start);
    Draws window{draw_int(), draw_int(), draw_int(), draw_int()};
    for (int n = 0; n <= most; ++n) {
        if (window == after)
            return n;
        window = {window[1], window[2], window[3], draw_int()};
    }
    return -1;
}

// places of rare draws
inline constexpr Start ONE_IS_NEXT{29391, 985};    // 2147483642, which is 1 in 32 bits
inline constexpr Start ZERO_IS_NEXT{75879, 23976}; // 0

} // namespace orlo::test
