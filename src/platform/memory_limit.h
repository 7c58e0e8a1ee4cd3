// The limit of the run's memory: an allocation that the machine has no memory for fails, and is reported, instead of succeeding on
// paper and having the system kill the process later.
#pragma once

namespace orlo {

/// Lowers the process's own limit of data to what it holds now and most of what is left to it: by the system, swap included, and by
/// the limits of its control groups. Where the system doesn't tell, or a lower limit is set already, nothing changes.
void limit_memory();

/// Has the program end through a function, which must not return, when memory is exhausted and that can't be thrown; where it can,
/// nothing changes.
void on_exhaustion(void (*end)());

} // namespace orlo
