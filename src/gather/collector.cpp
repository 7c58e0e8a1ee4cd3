// The run tells one thing after the other, and what belongs together is found by their order.

#include "gather/collector.h"

#include "base/exhaustion.h"
#include "gather/gathering.h"
#include "gather/told.h"

namespace orlo::gather {
namespace {

// Nothing may leave a function that the run calls: where memory is exhausted, nothing more is gathered.
template <auto function> struct Guarded;
template <class... Arguments, void (*function)(Arguments...)> struct Guarded<function> {
    static void tell(Arguments... arguments)
    {
        if (now.lost)
            return;
        now.lost = unless_exhausted([&] { return function(arguments...), false; }, true);
    }
};

constexpr Observer functions = {
    .include_met       = Guarded<told::include_met>::tell,
    .file_opened       = Guarded<told::file_opened>::tell,
    .file_text         = Guarded<told::file_text>::tell,
    .file_left         = Guarded<told::file_left>::tell,
    .copy_continues    = Guarded<told::copy_continues>::tell,
    .line_read         = Guarded<told::line_read>::tell,
    .call_begins       = Guarded<told::call_begins>::tell,
    .argument_taken    = Guarded<told::argument_taken>::tell,
    .call_failed       = Guarded<told::call_failed>::tell,
    .call_replaced     = Guarded<told::call_replaced>::tell,
    .definition_begins = Guarded<told::definition_begins>::tell,
    .macro_name        = Guarded<told::macro_name>::tell,
    .macro_parameter   = Guarded<told::macro_parameter>::tell,
    .body_part         = Guarded<told::body_part>::tell,
    .macro_defined     = Guarded<told::macro_defined>::tell,
    .macro_undefined   = Guarded<told::macro_undefined>::tell,
    .constant_defined  = Guarded<told::constant_defined>::tell,
    .constant_used     = Guarded<told::constant_used>::tell,
    .condition         = Guarded<told::condition>::tell,
    .condition_ends    = Guarded<told::condition_ends>::tell,
    .equation_drew     = Guarded<told::equation_drew>::tell,
    .block_begins      = Guarded<told::block_begins>::tell,
    .header_number     = Guarded<told::header_number>::tell,
    .block_header      = Guarded<told::block_header>::tell,
    .block_skipped     = Guarded<told::block_skipped>::tell,
    .block_starts      = Guarded<told::block_starts>::tell,
    .block_ends        = Guarded<told::block_ends>::tell,
    .section_begins    = Guarded<told::section_begins>::tell,
    .output_type       = Guarded<told::output_type>::tell,
    .input_type        = Guarded<told::input_type>::tell,
    .section_ends      = Guarded<told::section_ends>::tell,
    .command_begins    = Guarded<told::command_begins>::tell,
    .number_read       = Guarded<told::number_read>::tell,
    .command_read      = Guarded<told::command_read>::tell,
    .loop_mark         = Guarded<told::loop_mark>::tell,
    .literal           = Guarded<told::literal>::tell,
    .repeat            = Guarded<told::repeat>::tell,
    .fill              = Guarded<told::fill>::tell,
    .covered           = Guarded<told::covered>::tell,
    .set_chosen        = Guarded<told::set_chosen>::tell,
    .refused           = Guarded<told::refused>::tell,
    .walked            = Guarded<told::walked>::tell,
    .started           = Guarded<told::started>::tell,
    .lasted            = Guarded<told::lasted>::tell,
    .stored            = Guarded<told::stored>::tell,
    .chord_repeated    = Guarded<told::chord_repeated>::tell,
    .block_done        = Guarded<told::block_done>::tell,
    .event             = Guarded<told::event>::tell,
    .score_begins      = Guarded<told::score_begins>::tell,
    .column            = Guarded<told::column>::tell,
    .block_written     = Guarded<told::block_written>::tell,
    .score_text        = Guarded<told::score_text>::tell,
    .message_begins    = Guarded<told::message_begins>::tell,
    .message_text      = Guarded<told::message_text>::tell,
    .message_ends      = Guarded<told::message_ends>::tell,
    .message_place     = Guarded<told::message_place>::tell,
    .recovery_begins   = Guarded<told::recovery_begins>::tell,
};

constexpr Observer without_events = [] {
    Observer fewer = functions;
    fewer.event    = nullptr;
    fewer.column   = nullptr;
    return fewer;
}();

} // namespace

void start_collecting(Piece &piece, Detail detail)
{
    now        = {};
    now.piece  = &piece;
    now.detail = detail;
}

const Observer &collecting_observer(Detail detail) { return detail == Detail::events ? functions : without_events; }

bool end_collecting()
{
    const bool lost = now.lost;
    if (!lost) {
        end_section();
        now.piece->source.index_files();
    }
    now = {};
    return !lost;
}

} // namespace orlo::gather
