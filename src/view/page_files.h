// page_files.h: the style and the script of a page, as they stand in page.css and page.js. The build makes the source from them.
#pragma once

#include <string_view>

namespace orlo::view {

extern const std::string_view PAGE_STYLE;
extern const std::string_view PAGE_SCRIPT;

} // namespace orlo::view
