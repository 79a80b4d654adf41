/* A plain C99 consumer of the umbrella header, linked against the shared library. */
#include <comnlib.h>
#include <stdio.h>
#include <string.h>

int main(void) {
    ComContext ctx;
    DataFormat src, dst;
    int32_t in = 40000, len = 0;
    int16_t out = 0;
    ComConvFunc f;

    memset(&ctx, 0, sizeof ctx);
    memset(&src, 0, sizeof src);
    memset(&dst, 0, sizeof dst);
    if (com_conv_init(&ctx) != CS_SUCCEED) return 1;
    f = com_conv_func(&ctx, CS_INT, CS_SMALLINT);
    if (f == NULL) return 2;
    if (f(&ctx, &src, &in, &dst, &out, &len) != CS_CONV_OVERFLOW || out != 32767 || len != 2)
        return 3;
    if (comn_typelen(CS_VARCHAR, 7) != 258) return 4;
    com_conv_free(&ctx);
    puts("c99 consumer ok");
    return 0;
}
