// What the tests of MIDI files share: bytes that are written, numbers of variable length.
#pragma once

#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <vector>

namespace orlo::test {

/// What the functions write.
template <class Write> std::vector<std::uint8_t> written(Write write)
{
    std::FILE *file = std::tmpfile();
    if (file == nullptr) {
        throw std::runtime_error("no temporary file");
    }
    write(file);
    std::rewind(file);
    std::vector<std::uint8_t> bytes;
    for (int c = std::getc(file); c != EOF; c = std::getc(file)) {
        bytes.push_back(static_cast<std::uint8_t>(c));
    }
    std::fclose(file);
    return bytes;
}

/// Appends a number of variable length.
inline void append_number(std::vector<std::uint8_t> &bytes, std::uint64_t value)
{
    std::vector<std::uint8_t> groups{static_cast<std::uint8_t>(value % 128)};
    for (value /= 128; value != 0; value /= 128) {
        groups.insert(groups.begin(), static_cast<std::uint8_t>(128 + value % 128));
    }
    bytes.insert(bytes.end(), groups.begin(), groups.end());
}

} // namespace orlo::test
