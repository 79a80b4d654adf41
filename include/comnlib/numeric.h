/* comnlib: exact numerics: layout tables, magnitude arithmetic, signed operations, text. */
#ifndef COMNLIB_NUMERIC_H
#define COMNLIB_NUMERIC_H

#include "types.h"

COMN_BEGIN_DECLS

/* Bytes of sign and magnitude needed for each precision 0..77. */
COMN_API extern const uint8_t Com__Nume_Prec_To_Len[CS_MAX_PREC + 1];

COMN_END_DECLS

#endif
