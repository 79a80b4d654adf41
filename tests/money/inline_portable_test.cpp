// The inline money addition and subtraction built on the plain C overflow test, which
// compilers without checked-arithmetic builtins use, held to the routines' answers.
#define COMN_PORTABLE_INLINE
#include "inline_addsub_check.h"

namespace {

TEST(MoneyArith, PortableInlineAddSubAgreeWithTheRoutines) {
    check_inline_addsub();
}

} // namespace
