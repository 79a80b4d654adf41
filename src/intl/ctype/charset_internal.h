// Internals of the character set and sort order loaders, reachable by tests and fuzz targets.
#pragma once

#include "comnlib/intl.h"

namespace comn {

// The translation id of a character set name (COM_XLATE_UNKNOWN when it has none).
int32_t charset_xlate_id(const char *charset);

// Reads an open "charset.loc" into a malloc'ed image and attribute record over it. Answers 1,
// CS_MEM_ERROR, or COM_INTL_ERROR with the reader's status (or INTL_E_SYNTAX for tables that
// do not hold together) in *reader_status.
int32_t read_charset(IntlFile *f, const char *name, int32_t *reader_status, uint8_t **image_out,
                     CharAttrib **attr_out);

// Reads an open ".srt" file into a malloc'ed weight table; results as read_charset.
int32_t read_sortorder(IntlFile *f, int32_t *reader_status, uint8_t **table_out, int32_t *size_out);

} // namespace comn
