// Rules of "Naming Files, Paths, and Namespaces" (Microsoft). Systems from Windows 11 on let some device names with an extension
// be files; a new file is not made under one all the same.

#include "platform/windows_paths.h"

#include <algorithm>
#include <array>

namespace orlo::windows {
namespace {

constexpr std::array<std::string_view, 6> devices{"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
constexpr std::array<std::string_view, 2> ports{"COM", "LPT"}; // with a digit, which may be raised

constexpr std::array<std::string_view, 3> raised_digits{"\u00B9", "\u00B2", "\u00B3"};

constexpr std::string_view SEPARATORS   = "/\\";
constexpr std::string_view NOT_IN_NAMES = " ."; // at their end

bool is_letter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

std::string_view without_end(std::string_view text, std::string_view characters)
{
    return text.substr(0, text.find_last_not_of(characters) + 1);
}

bool is_port_digit(std::string_view text)
{
    return (text.size() == 1 && text[0] >= '1' && text[0] <= '9') ||
           std::find(raised_digits.begin(), raised_digits.end(), text) != raised_digits.end();
}

bool is_slash(char c) { return SEPARATORS.find(c) != std::string_view::npos; }

// "\\.\" begins the names of devices
bool begins_device(std::string_view path)
{
    return path.size() >= 4 && is_slash(path[0]) && is_slash(path[1]) && path[2] == '.' && is_slash(path[3]);
}

} // namespace

std::string_view folder_part(std::string_view path)
{
    if (const std::size_t separator = path.find_last_of(SEPARATORS); separator != std::string_view::npos)
        return path.substr(0, separator + 1);
    const bool drive = path.size() >= 2 && is_letter(path[0]) && path[1] == ':';
    return path.substr(0, drive ? 2 : 0);
}

std::string_view name_part(std::string_view path) { return without_end(path.substr(folder_part(path).size()), NOT_IN_NAMES); }

bool is_device(std::string_view path)
{
    const std::string_view name = name_part(path);
    const std::string_view stem = without_end(name.substr(0, name.find_first_of(".:")), " ");
    const auto             is   = [stem](std::string_view device) { return same_name(stem, device); };
    const auto             port = [stem](std::string_view device) {
        return same_name(stem.substr(0, device.size()), device) && is_port_digit(stem.substr(std::min(device.size(), stem.size())));
    };
    return begins_device(path) || std::any_of(devices.begin(), devices.end(), is) || std::any_of(ports.begin(), ports.end(), port);
}

bool same_name(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return upper(x) == upper(y); });
}

} // namespace orlo::windows
