// The clock seam of the date code: where the current calendar time comes from. Tests pin
// it; everything else reads the system clock.
#pragma once

#include <ctime>

namespace comn {

using ClockSource = std::time_t (*)();

// Replaces the clock (null restores the system clock); returns the previous source.
ClockSource set_clock_source(ClockSource source);

} // namespace comn
