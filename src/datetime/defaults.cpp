// The built-in English date and time names and settings. They stand in wherever no locale
// record is at hand: a context without a default locale, a format without a locale, or a
// locale whose files could not be read.
#include <cstring>

#include "comnlib/datetime.h"
#include "names.h"

namespace comn {
namespace {

constexpr const char *kAmPm[2] = {kDayHalves[0], kDayHalves[1]};
constexpr const char *kWeekdays[7] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                      "Thursday", "Friday", "Saturday"};
constexpr const char *kShortMonths[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr const char *kDays[7] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};

// Date order texts in id order: "mdy" is 1 ... "dym" is 6.
constexpr const char *kDateOrders[6] = {"mdy", "dmy", "ymd", "ydm", "myd", "dym"};

// The default output style of each date order id 1..6.
constexpr int32_t kOrderStyle[6] = {9, 3, 11, 13, 14, 15};

constexpr int32_t kFirstDay = 7;
constexpr int32_t kDateOrderId = 1;

} // namespace
} // namespace comn

using namespace comn;

extern "C" {

const char *const Com__Months[12] = {"January",   "February", "March",    "April",
                                     "May",       "June",     "July",     "August",
                                     "September", "October",  "November", "December"};

COMN_API const char *const *com__get_ampm(void) {
    return kAmPm;
}
COMN_API const char *const *com__get_weekdays(void) {
    return kWeekdays;
}
COMN_API const char *const *com__get_months(void) {
    return Com__Months;
}
COMN_API const char *const *com__get_shortmonths(void) {
    return kShortMonths;
}
COMN_API const char *const *com__get_days(void) {
    return kDays;
}
COMN_API int32_t com__get_firstday(void) {
    return kFirstDay;
}
COMN_API const char *com__get_date_order(void) {
    return kDateOrders[kDateOrderId - 1];
}
COMN_API int32_t com__get_date_order_id(void) {
    return kDateOrderId;
}

// Unknown or missing texts read as "mdy".
COMN_API int32_t com__get_dateorder_id(const char *order) {
    if (order == nullptr) return 1;
    for (int32_t i = 0; i < 6; ++i)
        if (std::strcmp(order, kDateOrders[i]) == 0) return i + 1;
    return 1;
}

COMN_API int32_t com__map_dateorder_id_to_fmt(int32_t id) {
    return id >= 1 && id <= 6 ? kOrderStyle[id - 1] : -1;
}
}
