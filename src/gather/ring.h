// ring.h: which value of which section each event of a block got, by following what the sections do to the ring of events: it is
// walked from the head by every section, and chord members come in beside the event that was filled last.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orlo::gather {

class Ring {
  public:
    void clear();

    /// A new event behind the last, a chord member as well, with its value of p2.
    void add_start(std::uint32_t value);

    /// A section of a p-field begins: before the first event.
    void begin_section(std::size_t pfield);

    void store_next(std::uint32_t value);
    void store_beside(std::uint32_t value);

    /// The event that was filled last may begin a chord.
    void begin_chord() { chord = cursor; }

    /// As store_beside, of an event that a repeated chord puts behind the last; its duration is made from that of the chord's
    /// first.
    void grow(std::uint32_t value);

    /// No more values: the events can be asked for, from the head on.
    void put_in_order();

    /// Value of a p-field's section that an event got.
    /// @param index of the event, counted from the head
    [[nodiscard]] std::uint32_t origin(std::size_t index, std::size_t pfield) const;

  private:
    void insert(std::uint32_t event);

    std::vector<std::uint32_t>              next;   // by event
    std::vector<std::vector<std::uint32_t>> values; // by p-field and event
    std::vector<std::uint32_t>              order;
    std::uint32_t                           tail   = 0;
    std::uint32_t                           cursor = 0;
    std::uint32_t                           chord  = 0; // the first event of the last one
    std::size_t                             field  = 2;
};

} // namespace orlo::gather
