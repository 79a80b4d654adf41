/* comnlib: TDS datatype, version and token maps. */
#ifndef COMNLIB_TDS_H
#define COMNLIB_TDS_H

#include "types.h"

COMN_BEGIN_DECLS

COMN_END_DECLS

#endif
