// channels.h: MIDI channels for instruments, and for notes of one instrument that can't share one: two of the same key at a time,
// or two with different bends. Writes nothing.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace orlo::exporting {

inline constexpr int CHANNELS    = 16;
inline constexpr int DRUMS       = 9; // channel 10, left free
inline constexpr int USUAL_RANGE = 2; // semitones of a bend either way
inline constexpr int MPE_RANGE =
    48; // of a note's channel, after "MIDI Polyphonic Expression" (MIDI Manufacturers Association, 2018)

/// An instrument's channels.
struct ChannelUser {
    std::size_t      port = 0;
    std::vector<int> own; ///< from 0, the first one given to it for good
};

/// What a note gets.
struct Given {
    int         channel;
    bool        first;   ///< nothing has sounded on it before
    bool        bent;    ///< its bend has to be set
    bool        detuned; ///< none was left: it sounds with the bend of another note
    std::size_t before;  ///< note of the same key that has to end where this one begins, by its number
};

inline constexpr std::size_t NO_NOTE = static_cast<std::size_t>(-1);

class Channels {
  public:
    /// A new instrument. @param wanted channel from 0, or below 0 for any but that of drums
    [[nodiscard]] ChannelUser add_user(int wanted);

    /// A new instrument whose notes have a channel each, on a port of its own: 2 to 16.
    [[nodiscard]] ChannelUser add_mpe_user();

    /// A channel for a note; notes come in the order of their starts.
    /// @param note its number
    [[nodiscard]] Given give(ChannelUser &user, std::size_t note, std::uint64_t on, std::uint64_t off, int key, int bend);

    [[nodiscard]] std::size_t ports() const { return all.size(); }

  private:
    static constexpr int KEYS = 128;

    struct Channel {
        bool                            given = false; // to an instrument
        bool                            used  = false; // something has sounded
        int                             bend  = 0;
        std::uint64_t                   busy  = 0; // tick up to which something sounds
        std::array<std::uint64_t, KEYS> keys{};    // the same for each key
        std::array<std::size_t, KEYS>   notes{};   // that sounded last on each key
    };
    using Port = std::array<Channel, CHANNELS>;

    [[nodiscard]] int take_free(std::size_t port);

    std::vector<Port> all;
};

} // namespace orlo::exporting
