/* comnlib: localisation: platform reader, paths and locale names, locale cache, character classification, translation and collation. */
#ifndef COMNLIB_INTL_H
#define COMNLIB_INTL_H

#include "types.h"

COMN_BEGIN_DECLS

COMN_END_DECLS

#endif
