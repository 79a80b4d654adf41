// Natural storage lengths of the built-in datatypes, and the layout checks of the value
// records that travel over the wire and through the C ABI.
#include "comnlib/types.h"

static_assert(sizeof(MoneyValue) == 8);
static_assert(sizeof(Money4Value) == 4);
static_assert(sizeof(NumericValue) == 35);
static_assert(sizeof(DateTimeValue) == 8);
static_assert(sizeof(DateTime4Value) == 4);
static_assert(sizeof(DateRec) == 9 * 4);
static_assert(offsetof(DataFormat, namelen) == CS_MAX_NAME);
static_assert(offsetof(DataFormat, datatype) == CS_MAX_NAME + 4);
static_assert(offsetof(DataFormat, format) == CS_MAX_NAME + 8);
static_assert(offsetof(DataFormat, maxlength) == CS_MAX_NAME + 12);
static_assert(offsetof(DataFormat, scale) == CS_MAX_NAME + 16);
static_assert(offsetof(DataFormat, precision) == CS_MAX_NAME + 20);
static_assert(offsetof(DataFormat, usertype) == CS_MAX_NAME + 32);

extern "C" COMN_API int32_t comn_typelen(int32_t datatype, int32_t len) {
    switch (datatype) {
    case CS_TINYINT:
    case CS_BIT:
        return 1;
    case CS_SMALLINT:
        return 2;
    case CS_INT:
    case CS_REAL:
    case CS_DATETIME4:
    case CS_MONEY4:
        return 4;
    case CS_FLOAT:
    case CS_DATETIME:
    case CS_MONEY:
        return 8;
    case CS_NUMERIC:
    case CS_DECIMAL:
        return 35;
    case CS_VARCHAR:
    case CS_VARBINARY:
        return 258;
    default:
        return len;
    }
}
