/* comnlib: messages and diagnostics: message files, error assembly, trace, assertions, version. */
#ifndef COMNLIB_MSG_H
#define COMNLIB_MSG_H

#include "types.h"

COMN_BEGIN_DECLS

COMN_END_DECLS

#endif
