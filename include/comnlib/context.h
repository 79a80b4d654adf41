/* comnlib: context start-up and tear-down in one call each. */
#ifndef COMNLIB_CONTEXT_H
#define COMNLIB_CONTEXT_H

#include "types.h"

COMN_BEGIN_DECLS

/* comn_ctx_setup fills a zero-filled context: conversion table, null values, then the default
   locale named by the environment (LC_ALL, else LANG, else "default"), which becomes
   ctx->conv.default_locale, a handle owned by the context and kept out of its handle list;
   last this library's message file "cslib.loc" of that locale when the locale has one.
   Returns 1, or the first failing step's status after undoing the steps before it.
   comn_ctx_teardown releases, in reverse order, the handles, the default handle, the locale
   cache with its message caches, the character set descriptions, the null values and the
   conversion table, leaving the context zero-filled in those parts. */
COMN_API int32_t comn_ctx_setup(ComContext *ctx);
COMN_API void comn_ctx_teardown(ComContext *ctx);

COMN_END_DECLS

#endif
