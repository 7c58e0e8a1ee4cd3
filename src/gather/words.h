// words.h: the words of the language by their codes, from the tables that read them.
#pragma once

#include "base/observer.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace orlo::gather {

/// Word of a code, in capitals for a generator; empty for a code without one.
[[nodiscard]] std::string name_of_code(std::int32_t code);

/// Letter of a curve by its code; empty for none.
[[nodiscard]] std::string letter_of_curve(int curve);

/// As compilers call it.
[[nodiscard]] const char *name_of_severity(Severity severity);

/// Name of a distribution by its code.
[[nodiscard]] std::string_view name_of_distribution(int distribution);

} // namespace orlo::gather
