// Datetime to text in the numbered styles.
//
// Each style is a layout string read by one writer. Layout letters:
//   N month name (at most 9 bytes)      d dd    D day blank-padded to 2
//   m mm    y yy (low two digits)       Y yyyy  Z year blank-padded to 4
//   H hh (24-hour)    h hour on the 12-hour clock, blank-padded to 2
//   i mi    s ss      f mmm (milliseconds)      p AM/PM designator (at most 2 bytes)
// Every other character is written as it stands.
#include <array>
#include <cstring>

#include "calendar.h"

namespace comn {
namespace {

struct StyleLayout {
    int32_t style;
    const char *layout;
};
// clang-format off
constexpr StyleLayout kLayouts[] = {
    {0, "N D Z h:ip"},       {100, "N D Z h:ip"},      // Jan 15 1999 10:30PM
    {1, "m/d/y"},            {101, "m/d/Y"},
    {2, "y.m.d"},            {102, "Y.m.d"},
    {3, "d/m/y"},            {103, "d/m/Y"},
    {4, "d.m.y"},            {104, "d.m.Y"},
    {5, "d-m-y"},            {105, "d-m-Y"},
    {6, "d N y"},            {106, "d N Y"},
    {7, "N d, y"},           {107, "N d, Y"},
    {8, "H:i:s"},            {108, "H:i:s"},
    {9, "N D Z h:i:s:fp"},   {109, "N D Z h:i:s:fp"},  // Jan 15 1999 10:30:15:500PM
    {10, "m-d-y"},           {110, "m-d-Y"},
    {11, "y/m/d"},           {111, "Y/m/d"},
    {12, "ymd"},             {112, "Ymd"},
    {13, "y/d/m"},
    {14, "m/y/d"},
    {15, "d/y/m"},
};
// clang-format on

constexpr int32_t kStyleSlots = 113; // styles 0..112; 16..99 stay empty
constexpr std::array<const char *, kStyleSlots> make_style_index() {
    std::array<const char *, kStyleSlots> a{};
    for (const StyleLayout &l : kLayouts)
        a[static_cast<size_t>(l.style)] = l.layout;
    return a;
}
constexpr std::array<const char *, kStyleSlots> kStyleIndex = make_style_index();

constexpr bool needs_names(const char *layout) {
    for (; *layout; ++layout)
        if (*layout == 'N') return true;
    return false;
}

constexpr int32_t kMonthNameMax = 9;
constexpr int32_t kWorkMax = 48; // longest layout: 9 + 23 bytes

int32_t render(const char *layout, const DateRec &r, const char *const *names, char *w) {
    char *p = w;
    const int32_t h12 = r.hour % 12 == 0 ? 12 : r.hour % 12;
    for (; *layout; ++layout) {
        switch (*layout) {
        case 'N':
            if (names[r.month] != nullptr) p += com__cpchar(p, names[r.month], 0, kMonthNameMax);
            break;
        case 'd':
            p += com__cpint(p, r.day_of_month, 0, -2);
            break;
        case 'D':
            p += com__cpint(p, r.day_of_month, 0, 2);
            break;
        case 'm':
            p += com__cpint(p, r.month + 1, 0, -2);
            break;
        case 'y':
            p += com__cpint(p, r.year, 0, -2);
            break;
        case 'Y':
            p += com__cpint(p, r.year, 0, -4);
            break;
        case 'Z':
            p += com__cpint(p, r.year, 0, 4);
            break;
        case 'H':
            p += com__cpint(p, r.hour, 0, -2);
            break;
        case 'h':
            p += com__cpint(p, h12, 0, 2);
            break;
        case 'i':
            p += com__cpint(p, r.minute, 0, -2);
            break;
        case 's':
            p += com__cpint(p, r.second, 0, -2);
            break;
        case 'f':
            p += com__cpint(p, r.millisecond, 0, -3);
            break;
        case 'p':
            p += com__cpchar(p, com__get_ampm()[r.hour >= 12 ? 1 : 0], 0, 2);
            break;
        default:
            *p++ = *layout;
            break;
        }
    }
    return static_cast<int32_t>(p - w);
}

} // namespace
} // namespace comn

using namespace comn;

extern "C" {

COMN_API int32_t com__datetochar(const DateTimeValue *dt, char *out, int32_t max, int32_t style,
                                 const char *const *month_names) {
    if (style < 0 || style >= kStyleSlots || kStyleIndex[static_cast<size_t>(style)] == nullptr)
        return -1;
    const char *layout = kStyleIndex[static_cast<size_t>(style)];
    if (month_names == nullptr && needs_names(layout)) return -2;
    DateRec r;
    com__datecrack(dt, &r);
    com__timecrack(dt, &r);
    char work[kWorkMax];
    const int32_t n = render(layout, r, month_names, work);
    const int32_t copy = max >= 0 && max < n ? max : n;
    std::memcpy(out, work, static_cast<size_t>(copy));
    return copy < n ? 0 : n;
}

COMN_API int32_t com__date4tochar(const DateTime4Value *dt4, char *out, int32_t max, int32_t style,
                                  const char *const *month_names) {
    DateTimeValue dt;
    com__date4todt(dt4, &dt);
    return com__datetochar(&dt, out, max, style, month_names);
}

COMN_API int32_t com_cvtdatetochar(const DateTimeValue *dt, char *out, int32_t max, int32_t style,
                                   const char *const *month_names) {
    return com__datetochar(dt, out, max, style, month_names);
}

COMN_API int32_t com_cvtdate4tochar(const DateTime4Value *dt4, char *out, int32_t max,
                                    int32_t style, const char *const *month_names) {
    return com__date4tochar(dt4, out, max, style, month_names);
}
}
