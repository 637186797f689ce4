/* Processor counts, the thread number, length thresholds, and a pool of worker threads. */
#ifndef VELORIM_PARALLEL_H
#define VELORIM_PARALLEL_H

#include <velorim/base.h>

VLM_BEGIN_DECLS

/** Non-zero keeps all array work on the calling thread. The host sets it; startup clears it. */
extern int32_t ListableCompileEvaluatingThreaded;

VLM_END_DECLS

#endif
