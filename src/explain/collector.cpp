// The run tells one thing after the other, and what belongs together is found by their order.

#include "explain/collector.h"

#include "explain/gathering.h"
#include "explain/told.h"

#include <new>

namespace orlo::explain {
namespace {

// Nothing may leave a function that the run calls: where memory is exhausted, nothing more is gathered.
template <auto function> struct Guarded;
template <class... Arguments, void (*function)(Arguments...)> struct Guarded<function> {
    static void tell(Arguments... arguments)
    {
        if (now.lost)
            return;
        try {
            function(arguments...);
        } catch (const std::bad_alloc &) {
            now.lost = true;
        }
    }
};

constexpr Observer functions = {
    Guarded<told::include_met>::tell,     Guarded<told::file_opened>::tell,
    Guarded<told::file_text>::tell,       Guarded<told::file_left>::tell,
    Guarded<told::copy_continues>::tell,  Guarded<told::line_read>::tell,
    Guarded<told::call_begins>::tell,     Guarded<told::argument_taken>::tell,
    Guarded<told::call_replaced>::tell,   Guarded<told::definition_begins>::tell,
    Guarded<told::macro_name>::tell,      Guarded<told::macro_parameter>::tell,
    Guarded<told::body_part>::tell,       Guarded<told::macro_defined>::tell,
    Guarded<told::macro_undefined>::tell, Guarded<told::constant_defined>::tell,
    Guarded<told::constant_used>::tell,   Guarded<told::condition>::tell,
    Guarded<told::condition_ends>::tell,  Guarded<told::equation_drew>::tell,
    Guarded<told::block_begins>::tell,    Guarded<told::block_header>::tell,
    Guarded<told::block_skipped>::tell,   Guarded<told::block_starts>::tell,
    Guarded<told::block_ends>::tell,      Guarded<told::section_begins>::tell,
    Guarded<told::output_type>::tell,     Guarded<told::input_type>::tell,
    Guarded<told::section_ends>::tell,    Guarded<told::command_begins>::tell,
    Guarded<told::number_read>::tell,     Guarded<told::command_read>::tell,
    Guarded<told::loop_mark>::tell,       Guarded<told::literal>::tell,
    Guarded<told::repeat>::tell,          Guarded<told::fill>::tell,
    Guarded<told::set_chosen>::tell,      Guarded<told::refused>::tell,
    Guarded<told::walked>::tell,          Guarded<told::started>::tell,
    Guarded<told::lasted>::tell,          Guarded<told::stored>::tell,
    Guarded<told::chord_repeated>::tell,  Guarded<told::rest>::tell,
    Guarded<told::block_done>::tell,      Guarded<told::event>::tell,
    Guarded<told::score_begins>::tell,    Guarded<told::column>::tell,
    Guarded<told::block_written>::tell,   Guarded<told::score_text>::tell,
    Guarded<told::message_begins>::tell,  Guarded<told::message_text>::tell,
    Guarded<told::message_ends>::tell,    Guarded<told::message_place>::tell,
    Guarded<told::recovery_begins>::tell,
};

} // namespace

void start_collecting(Piece &piece, Detail detail)
{
    now        = {};
    now.piece  = &piece;
    now.detail = detail;
}

const Observer &collecting_observer() { return functions; }

void end_collecting()
{
    const bool lost = now.lost;
    if (!lost) {
        end_section();
        now.piece->source.index_files();
    }
    now = {};
    if (lost)
        throw std::bad_alloc{};
}

} // namespace orlo::explain
