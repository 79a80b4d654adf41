// The section table of this library's message files, from the one list in msg.h.
#include "comnlib/msg.h"
#include "comnlib/tds.h"

#define COMN_MSG_SECTION_ENTRY_(name, id, text) {name, text},

extern "C" {
const ComErrSection Com_msg_sections[COM_MSG_SECTION_COUNT] = {
    COMN_MSG_SECTIONS(COMN_MSG_SECTION_ENTRY_)};
}

// The TDS maps report these two numbers; the message files must answer them.
static_assert(COM_MSG_TDS_BADTYPE == COM_TDS_ERR_BADTDSTYPE);
static_assert(COM_MSG_TDS_BADDATATYPE == COM_TDS_ERR_BADDATATYPE);
