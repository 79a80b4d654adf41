// The built-in day-half designators, shared by the accessor that hands them out and the
// formatter, which writes them as fixed two-byte units.
#pragma once

namespace comn {

inline constexpr char kDayHalves[2][3] = {"AM", "PM"};

} // namespace comn
