// told.h: the functions of the observer, one for each member of its record, which says what they are told.
#pragma once

#include "base/observer.h"

namespace orlo::gather::told {

void include_met(std::uint64_t begin, std::uint64_t end);
void file_opened(const char *name, bool found);
void file_text(const char *text, std::size_t length);
void file_left();
void copy_continues(std::uint64_t to, std::uint64_t from);
void line_read(std::uint64_t number, std::uint64_t offset, std::size_t length);
void call_begins(CallKind kind, const char *name, std::size_t name_length, std::size_t begin, std::size_t end, double value);
void argument_taken(const char *name, std::size_t name_length, std::size_t begin, std::size_t end);
void call_failed(const char *text, std::size_t column);
void call_replaced(std::size_t begin, std::size_t end, std::size_t length);
void definition_begins(std::size_t column);
void macro_name(std::size_t begin, std::size_t end);
void macro_parameter(const char *name, std::size_t length);
void body_part(std::size_t begin, std::size_t end);
void macro_defined(const char *name, const char *body, std::size_t end, bool stored);
void macro_undefined(const char *name, std::size_t length, std::size_t end);
void constant_defined(const char *name, double value, std::size_t begin, std::size_t end, bool stored);
void constant_used(const char *name, std::size_t length, std::size_t begin, std::size_t end);
void condition(std::size_t begin, std::size_t end, bool taken);
void condition_ends(std::size_t begin, std::size_t end);
void equation_drew();
void block_begins(std::size_t column);
void header_number(HeaderPart part, std::size_t begin, std::size_t end);
void block_header(std::int32_t instrument, std::int32_t pfields, float start, float beats, std::uint64_t events, std::size_t end);
void block_skipped(std::int32_t instrument, std::size_t end);
void block_starts(float tempo, float seconds);
void block_ends(std::size_t end);
void section_begins(std::int32_t pfield, std::size_t begin, std::size_t end);
void output_type(std::int32_t code, std::size_t begin, std::size_t end);
void input_type(std::int32_t code, std::size_t begin, std::size_t end);
void section_ends();
void command_begins(std::int32_t code, std::size_t column);
void number_read(Part part, double value, std::size_t begin, std::size_t end);
void command_read(std::size_t end);
void loop_mark(bool opens, std::size_t column);
void literal(std::size_t begin, std::size_t end);
void repeat(std::size_t begin, std::size_t end);
void fill(bool by_loop);
void covered(float first, float last);
void set_chosen(std::size_t set);
void refused(std::uint64_t draws);
void walked(float position, float low, float high);
void started(float beats, float deviated, float tempo, float beat, float start);
void lasted(float value, float deviated, float duration);
void stored(Goes goes, float value, float deviated, float result);
void chord_repeated(Goes goes, bool grows, float value);
void block_done(std::int32_t pfields);
void event(float start, float duration, float beat, const float *values, std::size_t count);
void score_begins();
void column(std::int32_t pfield, const char *text, std::size_t length);
void block_written(std::uint32_t block, double duration, double beats, double end);
void score_text(const char *text, std::size_t length);
void message_begins(Severity severity, int number);
void message_text(const char *text, std::size_t length);
void message_ends();
void message_place(const char *line, std::size_t column);
void recovery_begins();

} // namespace orlo::gather::told
