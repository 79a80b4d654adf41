// Datetime to text in the numbered styles.
//
// Each style is a layout string, compiled into its own writer. Layout letters:
//   N month name (at most 9 bytes)      d dd    D day blank-padded to 2
//   m mm    y yy (low two digits)       Y yyyy  Z year blank-padded to 4
//   H hh (24-hour)    h hour on the 12-hour clock, blank-padded to 2
//   i mi    s ss      f mmm (milliseconds)      p AM/PM designator (at most 2 bytes)
// Every other character is written as it stands.
#include <array>
#include <string_view>
#include <utility>
#include <cstring>

#include "calendar.h"
#include "names.h"

namespace comn {
namespace {

constexpr int32_t kMonthNameMax = 9;

// Two-digit pairs "00".."99", and the same with a blank for a leading zero (" 0".." 9",
// "10".."99"), so that each field is one or two table copies with no branch on the value.
constexpr std::array<char, 200> make_pairs(char lead_zero) {
    std::array<char, 200> a{};
    for (int i = 0; i < 100; ++i) {
        a[static_cast<size_t>(2 * i)] = i < 10 ? lead_zero : static_cast<char>('0' + i / 10);
        a[static_cast<size_t>(2 * i + 1)] = static_cast<char>('0' + i % 10);
    }
    return a;
}
constexpr std::array<char, 200> kPairs = make_pairs('0');
constexpr std::array<char, 200> kBlankPairs = make_pairs(' ');

// Hours on the 12-hour clock, 0 and 12 both being 12, for every hour the tick field can
// hold (an invalid value's ticks may run past the end of the day, to hour 31).
constexpr size_t kHoursMax = kTickMask / kTicksPerHour + 1;
constexpr std::array<uint8_t, kHoursMax> make_clock12() {
    std::array<uint8_t, kHoursMax> a{};
    for (size_t h = 0; h < kHoursMax; ++h)
        a[h] = static_cast<uint8_t>(h % 12 == 0 ? 12 : h % 12);
    return a;
}
constexpr std::array<uint8_t, kHoursMax> kClock12 = make_clock12();

// The fields below are the writers com__cpint stands for, inlined: zero-padded pairs, and
// blank-padded fields that drop a leading zero. Every value is within its field here.
inline char *put2(char *p, int32_t v) { // [0, 99]
    std::memcpy(p, &kPairs[static_cast<size_t>(2 * v)], 2);
    return p + 2;
}
inline char *put2_blank(char *p, int32_t v) { // [0, 99]
    std::memcpy(p, &kBlankPairs[static_cast<size_t>(2 * v)], 2);
    return p + 2;
}
// A year keeps its low-order digits, as a field too narrow for it does. (Only values outside
// the valid range have years beyond four digits.)
inline int32_t low_digits(int32_t v, int32_t modulus) {
    const int32_t m = v % modulus;
    return m < 0 ? -m : m;
}
inline char *put4(char *p, int32_t v, bool blank) {
    // Every year of the valid range has four digits, none of them a leading zero.
    const bool four_digits = static_cast<uint32_t>(v - 1000) < 9000;
    if (!four_digits) [[unlikely]]
        v = low_digits(v, 10000);
    put2(p, v / 100);
    put2(p + 2, v % 100);
    for (int i = 0; blank && !four_digits && i < 3 && p[i] == '0'; ++i)
        p[i] = ' ';
    return p + 4;
}
// The output has room for the longest name, so only the name's end is tested.
inline char *put_name(char *p, const char *text) {
    int32_t i = 0;
    for (; i < kMonthNameMax && text[i] != '\0'; ++i)
        p[i] = text[i];
    return p + i;
}

// A layout as a template argument, so that each style compiles to straight-line writes.
template <size_t N>
struct Layout {
    char text[N];
    constexpr Layout(const char (&s)[N]) {
        for (size_t i = 0; i < N; ++i)
            text[i] = s[i];
    }
    constexpr size_t size() const { return N - 1; }
    constexpr bool has(char c) const {
        for (size_t i = 0; i + 1 < N; ++i)
            if (text[i] == c) return true;
        return false;
    }
    constexpr bool has_any(std::string_view letters) const {
        for (char c : letters)
            if (has(c)) return true;
        return false;
    }
    // The longest text the layout can produce.
    constexpr int32_t bound() const {
        int32_t n = 0;
        for (size_t i = 0; i + 1 < N; ++i) {
            switch (text[i]) {
            case 'N':
                n += kMonthNameMax;
                break;
            case 'Y':
            case 'Z':
                n += 4;
                break;
            case 'f':
                n += 3;
                break;
            case 'd':
            case 'D':
            case 'm':
            case 'y':
            case 'H':
            case 'h':
            case 'i':
            case 's':
            case 'p':
                n += 2;
                break;
            default:
                n += 1;
                break;
            }
        }
        return n;
    }
};

template <char C>
inline void emit(char *&p, const DateRec &r, const char *const *names) {
    if constexpr (C == 'N') {
        if (names[r.month] != nullptr) p = put_name(p, names[r.month]);
    } else if constexpr (C == 'd') {
        p = put2(p, r.day_of_month);
    } else if constexpr (C == 'D') {
        p = put2_blank(p, r.day_of_month);
    } else if constexpr (C == 'm') {
        p = put2(p, r.month + 1);
    } else if constexpr (C == 'y') {
        p = put2(p, low_digits(r.year, 100));
    } else if constexpr (C == 'Y') {
        p = put4(p, r.year, false);
    } else if constexpr (C == 'Z') {
        p = put4(p, r.year, true);
    } else if constexpr (C == 'H') {
        p = put2(p, r.hour);
    } else if constexpr (C == 'h') {
        p = put2_blank(p, kClock12[static_cast<size_t>(r.hour)]);
    } else if constexpr (C == 'i') {
        p = put2(p, r.minute);
    } else if constexpr (C == 's') {
        p = put2(p, r.second);
    } else if constexpr (C == 'f') {
        *p++ = static_cast<char>('0' + r.millisecond / 100);
        p = put2(p, r.millisecond % 100);
    } else if constexpr (C == 'p') {
        std::memcpy(p, kDayHalves[r.hour >= 12 ? 1 : 0], 2);
        p += 2;
    } else {
        *p++ = C;
    }
}

using RenderFn = int32_t (*)(const DateTimeValue &, const char *const *, char *);

template <Layout L>
int32_t render(const DateTimeValue &dt, const char *const *names, char *w) {
    // Only the fields the layout shows are cracked.
    DateRec r;
    if constexpr (L.has_any("NdDmyYZ")) crack_civil(dt.days, r);
    if constexpr (L.has_any("Hhisfp")) crack_time(dt, r);
    char *p = w;
    [&]<size_t... I>(std::index_sequence<I...>) {
        (emit<L.text[I]>(p, r, names), ...);
    }
    (std::make_index_sequence<L.size()>{});
    return static_cast<int32_t>(p - w);
}

struct Style {
    RenderFn render; // null: no such style
    int32_t bound;   // longest output
    bool names;      // shows month names
};

template <Layout L>
constexpr Style style() {
    return {render<L>, L.bound(), L.has('N')};
}

// clang-format off
constexpr std::pair<int32_t, Style> kStyles[] = {
    {0, style<"N D Z h:ip">()},       {100, style<"N D Z h:ip">()},      // Jan 15 1999 10:30PM
    {1, style<"m/d/y">()},            {101, style<"m/d/Y">()},
    {2, style<"y.m.d">()},            {102, style<"Y.m.d">()},
    {3, style<"d/m/y">()},            {103, style<"d/m/Y">()},
    {4, style<"d.m.y">()},            {104, style<"d.m.Y">()},
    {5, style<"d-m-y">()},            {105, style<"d-m-Y">()},
    {6, style<"d N y">()},            {106, style<"d N Y">()},
    {7, style<"N d, y">()},           {107, style<"N d, Y">()},
    {8, style<"H:i:s">()},            {108, style<"H:i:s">()},
    {9, style<"N D Z h:i:s:fp">()},   {109, style<"N D Z h:i:s:fp">()},  // Jan 15 1999 10:30:15:500PM
    {10, style<"m-d-y">()},           {110, style<"m-d-Y">()},
    {11, style<"y/m/d">()},           {111, style<"Y/m/d">()},
    {12, style<"ymd">()},             {112, style<"Ymd">()},
    {13, style<"y/d/m">()},
    {14, style<"m/y/d">()},
    {15, style<"d/y/m">()},
};
// clang-format on

constexpr int32_t kStyleSlots = 113; // styles 0..112; 16..99 stay empty
constexpr std::array<Style, kStyleSlots> make_style_index() {
    std::array<Style, kStyleSlots> a{};
    for (const auto &[id, s] : kStyles)
        a[static_cast<size_t>(id)] = s;
    return a;
}
constexpr std::array<Style, kStyleSlots> kStyleIndex = make_style_index();
constexpr int32_t kWorkMax = 48; // room for the longest layout
static_assert(style<"N D Z h:i:s:fp">().bound <= kWorkMax);

} // namespace
} // namespace comn

using namespace comn;

extern "C" {

// The text is written straight into the output when it surely fits, else built aside and
// its prefix copied.
COMN_API int32_t com__datetochar(const DateTimeValue *dt, char *out, int32_t max, int32_t style,
                                 const char *const *month_names) {
    if (style < 0 || style >= kStyleSlots) return COMN_DATE_NOSTYLE;
    const Style &s = kStyleIndex[static_cast<size_t>(style)];
    if (s.render == nullptr) return COMN_DATE_NOSTYLE;
    if (s.names && month_names == nullptr) return COMN_DATE_NONAMES;
    if (max < 0 || max >= s.bound) return s.render(*dt, month_names, out);
    char work[kWorkMax];
    const int32_t n = s.render(*dt, month_names, work);
    const int32_t copy = max < n ? max : n;
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
