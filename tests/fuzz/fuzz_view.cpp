// What orlo-view reads and draws as a fuzz target: one input is one file, a MIDI file or a score, drawn in all three ways.
//
//   cmake --preset clang && cmake --build --preset clang --target fuzz_view
//   cd build/clang/fuzz && mkdir -p view-found && nice ./fuzz_view -dict=../../../tests/fuzz/view.dict -max_len=4096 -timeout=10
//   -max_total_time=600 view-found ../../../tests/fuzz/view-corpus
//
// The replay runs all inputs forward and backward and wants the same pictures.

#include "fuzz_orlo.h"

#include "score/midi_reader.h"
#include "view/pictures.h"
#include "score/pitch.h"
#include "score/score_reader.h"

#include <cmath>
#include <cstdlib>
#include <string_view>

namespace {

using namespace orlo::score;
using namespace orlo::view;

// so small that an input reaches them
constexpr Limits limits{4096, 2000};

std::string results;

void want(bool condition)
{
    if (!condition)
        std::abort();
}

// what the pictures count on
void check(const Score &score)
{
    want(score.values.size() <= limits.values);
    want(score.troubles.size() <= MAX_TROUBLES + 1);
    want(score.pitches.empty() || score.pitches.size() == score.instruments.size());
    want(score.pitch_field >= 0 && static_cast<std::size_t>(score.pitch_field) <= score.field_names.size());
    want((score.pitch_field == 0) == (score.pitch == Pitch::none));
    for (const Event &event : score.events) {
        want(event.fields >= 3 && event.fields <= MAX_FIELDS && static_cast<std::size_t>(event.fields) <= score.field_names.size());
        want(event.first + static_cast<std::size_t>(event.fields) <= score.values.size());
        want(event.instrument >= 0 && static_cast<std::size_t>(event.instrument) < score.instruments.size());
        want(event.start >= 0 && event.start <= LARGEST_TIME && event.duration >= 0 && event.duration <= LARGEST_TIME);
        want(event.start + event.duration <= score.end);
        for (int field = 1; field <= event.fields; ++field) {
            const double value = field_value(score, event, field);
            want(std::isnan(value) || std::abs(value) <= LARGEST_VALUE);
        }
    }
}

} // namespace

std::string last_results() { return results; }

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view bytes{reinterpret_cast<const char *>(data), size};
    Score                  score;
    score.title = "fuzz";
    if (is_midi(bytes)) {
        static_cast<void>(read_midi(bytes, limits, score));
    } else {
        read_score(bytes, limits, score);
        recognise_pitch(score);
    }
    check(score);
    results = text_roll(score, 40, 5) + text_roll(score, 120, 40) + svg_picture(score) + html_page(score);
    return 0;
}
