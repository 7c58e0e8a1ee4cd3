#include "explain/gcc_messages.h"

#include "explain/hints_text.h"
#include "gather/words.h"

#include <algorithm>

namespace orlo::explain {
namespace {

struct Out {
    Piece      &piece;
    std::string text;
};

// a message is one line, whatever it quotes
std::string in_one_line(std::string text)
{
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

void put_line(Out &out, const Place &place, const char *kind, const std::string &text)
{
    if (place.file != NONE) {
        const Position at = out.piece.source.position(place.file, place.begin);
        out.text += in_one_line(out.piece.source.files()[static_cast<std::size_t>(place.file)].name) + ":" +
                    std::to_string(at.line + 1) + ":" + std::to_string(at.byte + 1) + ": ";
    } else if (!out.piece.source.files().empty()) {
        out.text += in_one_line(out.piece.source.files().front().name) + ": ";
    }
    out.text += kind;
    out.text += ": " + in_one_line(text) + "\n";
}

std::string call_text(const Call &call)
{
    switch (call.kind) {
    case CallKind::macro:
        return "in the call of macro \"" + call.name + "\"";
    case CallKind::argument:
        return "in the argument \"" + call.name + "\"";
    case CallKind::constant:
        return "in the constant \"" + call.name + "\"";
    case CallKind::equation:
        return "in an equation";
    case CallKind::time:
        break;
    }
    return "in a time";
}

// the calls, then the includes, that lead to a place
void put_chain(Out &out, Place place)
{
    while (place.file != NONE) { // ends at the piece
        if (place.call != NONE) {
            const Call &call = out.piece.source.calls()[static_cast<std::size_t>(place.call)];
            place            = call.place;
            put_line(out, place, "note", call_text(call));
        } else {
            place = out.piece.source.files()[static_cast<std::size_t>(place.file)].included;
            if (place.file != NONE)
                put_line(out, place, "note", "included here");
        }
    }
}

} // namespace

std::string gcc_messages(Piece &piece, const Hints &hints)
{
    Out out{piece, {}};
    for (const Diagnostic &diagnostic : piece.diagnostics) {
        put_line(out, diagnostic.place, name_of_severity(diagnostic.severity), diagnostic.text);
        put_chain(out, diagnostic.place);
        for (const Related &related : diagnostic.related)
            put_line(out, related.place, "note", related.text);
    }
    for (const Hint &hint : hints.list) {
        put_line(out, hint.place, "warning", hint.text + " [" + std::string{name_of(hint.kind)} + "]");
        put_chain(out, hint.place);
        put_line(out, hint.place, "note", hint.reason);
        for (const Edit &edit : hint.edits)
            put_line(out, edit.place, "note", fix_text(piece.source, edit));
    }
    if (hints.full)
        put_line(out, {}, "note", full_text());
    return std::move(out.text);
}

} // namespace orlo::explain
