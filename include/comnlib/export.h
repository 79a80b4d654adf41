/* comnlib: export and linkage macros shared by every public header. */
#ifndef COMNLIB_EXPORT_H
#define COMNLIB_EXPORT_H

#if defined(__GNUC__) || defined(__clang__)
#define COMN_API __attribute__((visibility("default")))
#else
#define COMN_API
#endif

#ifdef __cplusplus
#define COMN_BEGIN_DECLS extern "C" {
#define COMN_END_DECLS }
#else
#define COMN_BEGIN_DECLS
#define COMN_END_DECLS
#endif

#endif
