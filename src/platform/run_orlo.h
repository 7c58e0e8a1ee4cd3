// run_orlo.h: has the program orlo make a score of its input. Owns the temporary file of that score and the process that makes it;
// both are gone when the call is over, and also when a signal ends the program.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace orlo {

/// Takes the score from a file. @return what went wrong, empty when nothing did
using TakeScore = std::function<std::string(const std::string &file)>;

/// Runs the orlo that lies beside this program, else the one on PATH.
/// @param name the input, as it stands on orlo's command line
/// @param take_score gets the score that came out
/// @param messages what orlo has said, at most MOST_MESSAGES bytes
/// @return what went wrong, empty when nothing did
[[nodiscard]] std::string make_score(const std::string &name, const TakeScore &take_score, std::string &messages);

inline constexpr std::size_t MOST_MESSAGES = 1'000'000;

} // namespace orlo
