/* comnlib: money values: arithmetic, text and scaling. */
#ifndef COMNLIB_MONEY_H
#define COMNLIB_MONEY_H

#include "types.h"

COMN_BEGIN_DECLS

COMN_END_DECLS

#endif
