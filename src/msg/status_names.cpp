// The status codes with their names, generated from the one list in types.h.
#include "comnlib/msg.h"

extern "C" {
const ComErrorName Com_errors[COM_ERRORS_COUNT] = {
#define COMN_NAME_ROW_(name, value) {value, #name},
    COMN_STATUS_CODES(COMN_NAME_ROW_)
#undef COMN_NAME_ROW_
};
}
