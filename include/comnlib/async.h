/* comnlib: the asynchronous operation manager. */
#ifndef COMNLIB_ASYNC_H
#define COMNLIB_ASYNC_H

#include "types.h"

COMN_BEGIN_DECLS

COMN_END_DECLS

#endif
