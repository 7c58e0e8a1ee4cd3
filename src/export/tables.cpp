// Times are written with the digits that they have; p-fields as the score has them.

#include "export/tables.h"

#include "base/json.h"
#include "base/markup.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace orlo::exporting {
namespace {

constexpr std::size_t FLUSHED = 65536; // bytes that are gathered before they are written

std::string name_of(int field, const Names &names)
{
    const auto found = names.find(field);
    return found != names.end() ? found->second : joined({"p", std::to_string(field)});
}

// the p-fields that any event has
std::size_t widest(const Music &music)
{
    std::int32_t most = 0;
    for (const Note &note : music.notes)
        most = std::max(most, note.count);
    return static_cast<std::size_t>(most);
}

// RFC 4180: in quotes where something in it would be taken for something else
void put_cell(std::string &line, std::string_view text)
{
    if (!line.empty())
        line += ',';
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
        line += text;
        return;
    }
    line += '"';
    for (const char c : text)
        line += c == '"' ? std::string{"\"\""} : std::string{c};
    line += '"';
}

// those of a piece have 32 bits
std::string time_text(bool of_piece, double value)
{
    if (std::isnan(value))
        return {};
    return decimal_text(value, of_piece ? 6 : 9);
}

std::string file_of(const Music &music, const Note &note)
{
    return note.file == NONE ? "" : music.files[static_cast<std::size_t>(note.file)];
}

std::string cells_of(const Music &music, const Note &note, std::size_t columns)
{
    std::string line;
    put_cell(line, music.parts[static_cast<std::size_t>(note.part)].name);
    put_cell(line, time_text(note.block != NONE, note.start));
    put_cell(line, time_text(note.block != NONE, note.duration));
    put_cell(line, time_text(note.block != NONE, note.beat));
    put_cell(line, time_text(note.block != NONE, note.beats));
    put_cell(line, note.block == NONE ? "" : std::to_string(music.blocks[static_cast<std::size_t>(note.block)].number));
    put_cell(line, file_of(music, note));
    put_cell(line, note.line == 0 ? "" : std::to_string(note.line));
    for (std::size_t p = 0; p < columns; ++p)
        put_cell(line, p < static_cast<std::size_t>(note.count) ? music.printed[note.first + p] : "");
    return line;
}

// ---- JSON

void put_text(JsonWriter &json, std::string_view name, std::string_view text)
{
    json.key(name);
    json.text(text);
}

void put_time(JsonWriter &json, std::string_view name, const std::string &text)
{
    if (text.empty())
        return;
    json.key(name);
    json.number(std::strtod(text.c_str(), nullptr));
}

void put_whole(JsonWriter &json, std::string_view name, std::int64_t value)
{
    json.key(name);
    json.number(value);
}

void put_blocks(JsonWriter &json, const Music &music)
{
    json.key("blocks");
    json.begin_array();
    for (const Block &block : music.blocks) {
        json.begin_object();
        put_whole(json, "number", block.number);
        put_text(json, "instrument", music.parts[static_cast<std::size_t>(block.part)].name);
        put_time(json, "beat", time_text(true, block.beat));
        put_time(json, "seconds", time_text(true, block.seconds));
        if (!block.comment.empty())
            put_text(json, "comment", block.comment);
        json.end_object();
    }
    json.end_array();
}

// a p-field that is a number is one, and keeps its digits
void put_field(JsonWriter &json, const std::string &name, const std::string &printed, double value)
{
    if (printed.empty())
        return;
    char        *end  = nullptr;
    const double read = std::strtod(printed.c_str(), &end);
    json.key(name);
    if (*end == '\0' && std::isfinite(value))
        json.number(read);
    else
        json.text(printed);
}

void put_note(JsonWriter &json, const Music &music, const Note &note, const Names &names)
{
    json.begin_object();
    put_text(json, "instrument", music.parts[static_cast<std::size_t>(note.part)].name);
    put_time(json, "start", time_text(note.block != NONE, note.start));
    put_time(json, "duration", time_text(note.block != NONE, note.duration));
    put_time(json, "beat", time_text(note.block != NONE, note.beat));
    put_time(json, "beats", time_text(note.block != NONE, note.beats));
    if (note.block != NONE)
        put_whole(json, "block", music.blocks[static_cast<std::size_t>(note.block)].number);
    if (note.file != NONE)
        put_text(json, "file", file_of(music, note));
    if (note.line != 0)
        put_whole(json, "line", note.line);
    const std::vector<Field> &fields = fields_of(music, note);
    for (std::int32_t p = 0; p < note.count; ++p) {
        const std::size_t at = note.first + static_cast<std::size_t>(p);
        put_field(json, name_of(fields[static_cast<std::size_t>(p)].number, names), music.printed[at], music.values[at]);
    }
    json.end_object();
}

} // namespace

bool write_csv(const Music &music, const Names &names, std::FILE *file)
{
    const std::size_t columns = widest(music);
    std::string       out     = "instrument,start,duration,beat,beats,block,file,line";
    for (std::size_t p = 0; p < columns; ++p)
        put_cell(out, name_of(static_cast<int>(p) + 4, names));
    out += "\r\n";
    for (const Note &note : music.notes) {
        out += cells_of(music, note, columns) + "\r\n";
        if (out.size() < FLUSHED)
            continue;
        if (std::fwrite(out.data(), 1, out.size(), file) != out.size())
            return false;
        out.clear();
    }
    return std::fwrite(out.data(), 1, out.size(), file) == out.size();
}

bool write_json(const Music &music, const Names &names, std::FILE *file)
{
    JsonWriter json{file};
    json.begin_object();
    put_text(json, "title", music.title);
    put_blocks(json, music);
    json.key("events");
    json.begin_array();
    for (const Note &note : music.notes)
        put_note(json, music, note, names);
    json.end_array();
    json.end_object();
    return json.finish();
}

} // namespace orlo::exporting
