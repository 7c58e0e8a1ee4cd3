#include "export/channels.h"

#include <algorithm>
#include <cstdlib>

namespace orlo::exporting {

int Channels::take_free(std::size_t port)
{
    for (int channel = 0; channel < CHANNELS; ++channel) {
        Channel &each = all[port][static_cast<std::size_t>(channel)];
        if (channel == DRUMS || each.given)
            continue;
        each.given = true;
        return channel;
    }
    return -1;
}

ChannelUser Channels::add_user(int wanted)
{
    for (std::size_t port = 0;; ++port) { // ends with a new port
        if (port == all.size())
            all.emplace_back();
        if (wanted < 0) {
            const int channel = take_free(port);
            if (channel >= 0)
                return {port, {channel}};
        } else if (Channel &each = all[port][static_cast<std::size_t>(wanted)]; !each.given) {
            each.given = true;
            return {port, {wanted}};
        }
    }
}

ChannelUser Channels::add_mpe_user()
{
    ChannelUser user{all.size(), {}};
    all.emplace_back();
    for (int channel = 1; channel < CHANNELS; ++channel) {
        all.back()[static_cast<std::size_t>(channel)].given = true;
        user.own.push_back(channel);
    }
    return user;
}

Given Channels::give(ChannelUser &user, std::size_t note, std::uint64_t on, std::uint64_t off, int key, int bend)
{
    const auto k    = static_cast<std::size_t>(key);
    Port      &port = all[user.port];
    const auto at   = [&port](int channel) -> Channel   &{ return port[static_cast<std::size_t>(channel)]; };
    const auto fits = [&](int channel) { return at(channel).bend == bend && at(channel).keys[k] <= on; };
    const auto idle = [&](int channel) { return at(channel).busy <= on; };
    auto       best = std::find_if(user.own.begin(), user.own.end(), fits);
    if (best == user.own.end())
        best = std::find_if(user.own.begin(), user.own.end(), idle);
    if (best == user.own.end()) {
        const int more = take_free(user.port);
        if (more >= 0) {
            user.own.push_back(more);
            best = user.own.end() - 1;
        }
    }
    if (best == user.own.end()) // the one whose bend is nearest
        best = std::min_element(user.own.begin(), user.own.end(),
                                [&](int a, int b) { return std::abs(at(a).bend - bend) < std::abs(at(b).bend - bend); });
    Channel &channel = at(*best);
    Given    given{*best, !channel.used, false, false, NO_NOTE};
    if (channel.bend != bend && channel.busy <= on) {
        given.bent   = true;
        channel.bend = bend;
    }
    given.detuned = channel.bend != bend;
    if (channel.keys[k] > on)
        given.before = channel.notes[k];
    channel.used     = true;
    channel.busy     = std::max(channel.busy, off);
    channel.keys[k]  = off;
    channel.notes[k] = note;
    return given;
}

} // namespace orlo::exporting
