// The events of a block come in the order of the ring that its sections have made; rests are among them and are not written.

#include "gather/told.h"

#include "events/tempo_map.h"
#include "gather/gathering.h"

namespace orlo::gather::told {

void block_done(std::int32_t pfields)
{
    now.told = 0;
    if (!wants_values())
        return;
    Events &events = block().notes.emplace();
    events.values.resize(static_cast<std::size_t>(pfields) - 1);
    events.origins.resize(events.values.size());
    now.ring.put_in_order();
}

void event(float start, float duration, float beat, const float *values, std::size_t count)
{
    if (!wants_values())
        return;
    Events           &events = *block().notes;
    const std::size_t index  = now.told++;
    if (duration <= 0.0F) {
        ++events.rests;
        return;
    }
    ++events.count;
    events.beat.push_back(beat);
    events.beats.push_back(static_cast<float>(static_cast<double>(duration) * find_tempo(beat) / 60.0));
    events.values[0].push_back(start);
    events.values[1].push_back(duration);
    for (std::size_t p = 0; p < count; ++p)
        events.values[p + 2].push_back(values[p]);
    for (std::size_t p = 0; p < events.origins.size(); ++p)
        events.origins[p].push_back(now.ring.origin(index, p + 2));
}

void score_begins()
{
    now.piece->score.push_back({"", now.block});
    if (block().notes)
        block().notes->printed.resize(block().notes->values.size());
}

void column(std::int32_t pfield, const char *text, std::size_t length)
{
    if (!block().notes)
        return;
    Column &column = block().notes->printed[static_cast<std::size_t>(pfield) - 2];
    column.text.append(text, length);
    column.lengths.push_back(static_cast<std::uint16_t>(length));
}

void block_written(std::uint32_t number, double duration, double beats, double end)
{
    block().written   = true;
    block().number    = number;
    block().duration  = duration;
    block().last_beat = beats;
    block().end       = end;
}

void score_text(const char *text, std::size_t length)
{
    if (now.recovering)
        return;
    if (now.piece->score.empty() || now.piece->score.back().block != NONE)
        now.piece->score.emplace_back();
    now.piece->score.back().text.append(text, length);
}

} // namespace orlo::gather::told
