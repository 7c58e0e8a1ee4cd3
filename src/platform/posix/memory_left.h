// What memory the process can still take: what the system has, and what the limits of its control groups leave (cgroups(7)). Linux
// tells it in files; other systems don't. Sets nothing.
#pragma once

#include <cstdint>
#include <string>

namespace orlo {

inline constexpr std::uint64_t NOT_TOLD = UINT64_MAX;

/// Bytes of memory that the process can still take, swap and page cache that can be given back included.
/// @param root folder in which /proc and the mounted control groups are looked for, empty for the system's own; tests give theirs
/// @return NOT_TOLD where no file tells, which may be for want of memory too
[[nodiscard]] std::uint64_t memory_left(const std::string &root) noexcept;

} // namespace orlo
