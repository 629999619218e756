// Displacements within thread_context, for C++ and assembly alike; asserted in
// host/translation/context.h.
#pragma once

#define CONTEXT_SP 248
#define CONTEXT_PC 256
#define CONTEXT_NZCV 264
#define CONTEXT_FPCR 272
#define CONTEXT_FPSR 280
#define CONTEXT_TPIDR 288
#define CONTEXT_HOST_SP 296
#define CONTEXT_HOST_TPIDR 304
#define CONTEXT_BRANCH_TABLE 312
#define CONTEXT_EXIT_ENTRY 328
#define CONTEXT_CALL_ENTRY 336
#define CONTEXT_EXIT 344
#define CONTEXT_ATTENTION 352
#define CONTEXT_SLOTS 360
#define CONTEXT_ENTRY 432
#define CONTEXT_Q 448
#define CONTEXT_RAW_TLS 960
