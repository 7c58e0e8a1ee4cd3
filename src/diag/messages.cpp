// Both tables are in number order, so that a lookup is a binary search; the compiler checks the order.

#include "diag/messages.h"

#include <cstddef>

namespace orlo {
namespace {

constexpr int LAST_WITHOUT_LINE = 9; // of the numbers that have no row

// the row of a number, or one with the text for numbers without a row
template <class Number, std::size_t N> Message<Number> find(const Message<Number> (&table)[N], int number, const char *unspecified)
{
    const Message<Number> wanted{static_cast<Number>(number), unspecified,
                                 number <= LAST_WITHOUT_LINE ? Line::left_out : Line::shown};
    const auto           *found = std::lower_bound(std::begin(table), std::end(table), wanted, by_number);
    return found != std::end(table) && found->number == number ? *found : wanted;
}

Message<Status> find_error(int number) { return find(error_messages, number, "Unspecified error..."); }

Message<Warning> find_warning(int number) { return find(warning_messages, number, "Unspecified warning..."); }

} // namespace

const char *error_text(int number) { return find_error(number).text; }

const char *warning_text(int number) { return find_warning(number).text; }

bool error_has_line(int number) { return find_error(number).line == Line::shown; }

bool warning_has_line(int number) { return find_warning(number).line == Line::shown; }

} // namespace orlo
