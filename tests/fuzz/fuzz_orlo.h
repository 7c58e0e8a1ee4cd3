// What the fuzzer and the replay share: one input is one whole run of the program.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// One run. @return 0
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

/// The files that the last run has written, one after another: score or MIDI file, trace, log.
[[nodiscard]] std::string last_results();
