// messages.h: what orlo-view says on standard error. At a terminal what would command it is shown instead of sent.
#pragma once

#include <string>
#include <string_view>

namespace orlo::view {

/// Says a line.
/// @param line without its end
void tell(const std::string &line);

/// Says what another program has said: lines, among them some that a line with a caret points into.
void pass_on(std::string_view messages);

} // namespace orlo::view
