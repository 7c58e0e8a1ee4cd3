#include "explain/out.h"

#include <algorithm>
#include <bit>

namespace orlo::explain {
namespace {

bool same_bits(float a, float b) { return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b); }

} // namespace

void put(Out &out, std::string_view name, std::int64_t value)
{
    out.json.key(name);
    out.json.number(value);
}

void put_count(Out &out, std::string_view name, std::uint64_t value) { put(out, name, static_cast<std::int64_t>(value)); }

void put_text(Out &out, std::string_view name, std::string_view value)
{
    out.json.key(name);
    out.json.text(value);
}

void put_true(Out &out, std::string_view name, bool value)
{
    if (!value)
        return;
    out.json.key(name);
    out.json.truth(true);
}

std::int64_t index_of(Out &out, const Place &place)
{
    out.places.push_back(place);
    return static_cast<std::int64_t>(out.places.size() - 1);
}

// nothing where there is no place
void put_place(Out &out, std::string_view name, const Place &place)
{
    if (place.file != NONE)
        put(out, name, index_of(out, place));
}

void put_column(Out &out, std::string_view name, const std::vector<float> &values)
{
    out.json.key(name);
    const auto differs = [&values](float value) { return !same_bits(value, values.front()); };
    if (values.size() > 1 && std::none_of(values.begin(), values.end(), differs)) {
        out.json.begin_object();
        put_real(out, "all", values.front());
        out.json.end_object();
        return;
    }
    out.json.begin_array();
    for (const float value : values)
        out.json.number(value);
    out.json.end_array();
}

void put_column(Out &out, std::string_view name, const Column &column)
{
    out.json.key(name);
    const std::string_view text{column.text};
    const std::size_t      length = column.lengths.empty() ? 0 : column.lengths.front();
    bool                   same   = column.lengths.size() > 1;
    for (std::size_t i = 1, at = length; same && i < column.lengths.size(); at += column.lengths[i++])
        same = column.lengths[i] == length && text.substr(at, length) == text.substr(0, length);
    if (same) {
        out.json.begin_object();
        put_text(out, "all", text.substr(0, length));
        out.json.end_object();
        return;
    }
    out.json.begin_array();
    std::size_t at = 0;
    for (const std::uint16_t each : column.lengths) {
        out.json.text(text.substr(at, each));
        at += each;
    }
    out.json.end_array();
}

bool same_values(const std::vector<float> &a, const std::vector<float> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), same_bits);
}

} // namespace orlo::explain
