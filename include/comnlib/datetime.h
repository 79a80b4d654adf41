/* comnlib: datetime values: calendar arithmetic, parsing and formatting. */
#ifndef COMNLIB_DATETIME_H
#define COMNLIB_DATETIME_H

#include "types.h"

COMN_BEGIN_DECLS

COMN_END_DECLS

#endif
