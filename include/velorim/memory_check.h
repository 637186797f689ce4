/* A debugging facility that reports double frees and leaks of array records. */
#ifndef VELORIM_MEMORY_CHECK_H
#define VELORIM_MEMORY_CHECK_H

#include <velorim/array.h>

VLM_BEGIN_DECLS

extern int32_t trackTensorMemory;
void initializeTensorMemoryCheck(void (*report)(const char* message)) VLM_NOEXCEPT;
void TensorMemory_addNew(MNumericArray* array) VLM_NOEXCEPT;
void TensorMemory_free(MNumericArray* array) VLM_NOEXCEPT;
void runTensorMemoryCheck(int32_t clear) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
