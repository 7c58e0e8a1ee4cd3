#include "view/summary.h"

#include "base/markup.h"

namespace orlo::view {
namespace {

constexpr std::size_t MOST_PITCHES_TOLD = 4;

const char *pitch_unit(Pitch pitch)
{
    switch (pitch) {
    case Pitch::none:
        break;
    case Pitch::pch:
        return "octave.pitch-class";
    case Pitch::oct:
        return "octave.fraction";
    case Pitch::hertz:
        return "hertz";
    case Pitch::key:
        return "MIDI key";
    }
    return "";
}

std::string field_text(int field, Pitch pitch) { return joined({"p", std::to_string(field), ", ", pitch_unit(pitch)}); }

// the first instruments that have a pitch, each with its own
std::string pitches_text(const Score &score)
{
    std::string text;
    std::size_t told = 0;
    for (std::size_t i = 0; i < score.pitches.size(); i++) {
        if (score.pitches[i].field == 0)
            continue;
        if (told++ == MOST_PITCHES_TOLD)
            return joined({"pitches of ", text, " and so on"});
        text += joined({text.empty() ? "" : "; ", instrument_name(score.instruments[i]), ": ",
                        field_text(score.pitches[i].field, score.pitches[i].pitch)});
    }
    return joined({"pitches of ", text});
}

} // namespace

std::string summary_text(const Score &score)
{
    if (score.events.empty())
        return "no events";
    return joined({counted(score.events.size(), "event"), ", ", counted(score.instruments.size(), "instrument"), ", ",
                   time_text(score.end, score.beats)});
}

std::string pitch_text(const Score &score, const Plan &plan)
{
    if (!plan.pitched)
        return {};
    return score.pitches.empty() ? joined({"pitch: ", field_text(score.pitch_field, score.pitch)}) : pitches_text(score);
}

std::string trouble_text(const Score &score)
{
    const std::size_t count = score.troubles_left_out > 0 ? MAX_TROUBLES + score.troubles_left_out : score.troubles.size();
    return count == 0 ? std::string() : counted(count, "thing") + " could not be read, or left out";
}

std::string lane_text(const Lane &lane)
{
    std::string text;
    if (lane.count == 0)
        text = "no numbers";
    else if (lane.range.low < lane.range.high)
        text = number_text(lane.range.low, 9) + " to " + number_text(lane.range.high, 9) + ", " + counted(lane.count, "value");
    else
        text = "always " + number_text(lane.range.low, 9) + ", " + counted(lane.count, "value");
    if (lane.missing > 0)
        text += ", " + count_text(lane.missing) + " without a number";
    return text;
}

std::string left_out_text(const Plan &plan)
{
    std::string text;
    if (plan.many)
        text = "More than " + count_text(MANY_EVENTS) +
               " events: notes and dots of an instrument that fall on the same place are drawn as one. ";
    if (plan.lanes_left_out > 0)
        text += "P-fields above p" + std::to_string(FIRST_LANE + MOST_LANES - 1) + " have no lane. ";
    if (!text.empty())
        text.pop_back();
    return text;
}

} // namespace orlo::view
