// The type-bit tests both classification families answer, one row each: the test's name and
// the type bits it answers. The attribute-record family (ctype_attr.cpp) also has ispunct;
// the older global-map family (ctype_global.cpp) has only these.
#pragma once

#include "comnlib/intl.h"

#define COMN_CTYPE_TESTS(X)                                                                        \
    X(isalpha, COM_CT_UPPER | COM_CT_LOWER)                                                        \
    X(isupper, COM_CT_UPPER)                                                                       \
    X(islower, COM_CT_LOWER)                                                                       \
    X(isdigit, COM_CT_DIGIT)                                                                       \
    X(isxdigit, COM_CT_XDIGIT)                                                                     \
    X(isspace, COM_CT_SPACE)                                                                       \
    X(isgraph, COM_CT_GRAPH)
