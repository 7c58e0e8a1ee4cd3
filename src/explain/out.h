// out.h: members of a document on its way to a file: numbers, texts, places, lists and columns, each under its name.
#pragma once

#include "base/json.h"
#include "explain/gathered.h"

#include <string_view>
#include <vector>

namespace orlo::explain {

/// A document, and the places that it has named so far: they are one table, which is written last.
struct Out {
    JsonWriter         json;
    Piece             &piece;
    bool               events;
    std::vector<Place> places;
};

void put(Out &out, std::string_view name, std::int64_t value);
void put_count(Out &out, std::string_view name, std::uint64_t value);
void put_text(Out &out, std::string_view name, std::string_view value);

template <std::floating_point Real> void put_real(Out &out, std::string_view name, Real value)
{
    out.json.key(name);
    out.json.number(value);
}

/// A truth that is left out where it is none.
void put_true(Out &out, std::string_view name, bool value);

/// Adds a place to the table. @return its index
[[nodiscard]] std::int64_t index_of(Out &out, const Place &place);

/// The index of a place; nothing where there is none.
void put_place(Out &out, std::string_view name, const Place &place);

/// Puts an array with what put_item does for each item
template <class Items, class Put> void put_list(Out &out, std::string_view name, const Items &items, Put put_item)
{
    out.json.key(name);
    out.json.begin_array();
    for (const auto &item : items)
        put_item(item);
    out.json.end_array();
}

/// As put_list, an object for each item
template <class Items, class Put> void put_objects(Out &out, std::string_view name, const Items &items, Put put_members)
{
    put_list(out, name, items, [&](const auto &item) {
        out.json.begin_object();
        put_members(item);
        out.json.end_object();
    });
}

/// A column of whole numbers, of which get gives each by its index: all, or the first and the step.
template <class Get> void put_whole_column(Out &out, std::string_view name, std::size_t count, Get get)
{
    out.json.key(name);
    const std::int64_t from = count > 0 ? get(0) : 0;
    const std::int64_t step = count > 1 ? get(1) - from : 0;
    bool               even = count > 1;
    for (std::size_t i = 2; even && i < count; ++i)
        even = get(i) - get(i - 1) == step;
    if (even) {
        out.json.begin_object();
        put(out, "from", from);
        put(out, "step", step);
        out.json.end_object();
        return;
    }
    out.json.begin_array();
    for (std::size_t i = 0; i < count; ++i)
        out.json.number(get(i));
    out.json.end_array();
}

template <class Number> void put_whole_column(Out &out, std::string_view name, const std::vector<Number> &values)
{
    put_whole_column(out, name, values.size(), [&values](std::size_t i) { return static_cast<std::int64_t>(values[i]); });
}

/// A column of numbers: all, or the one that stands for all.
void put_column(Out &out, std::string_view name, const std::vector<float> &values);

/// A column of texts, in the same way.
void put_column(Out &out, std::string_view name, const Column &column);

/// Whether two columns hold the same bits.
[[nodiscard]] bool same_values(const std::vector<float> &a, const std::vector<float> &b);

} // namespace orlo::explain
