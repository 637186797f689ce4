/* A debugging facility: while it is on, every array record that is made or deleted goes through a table, so that double frees and
 * leaks are reported. It is off until a host turns it on.
 *
 * Threads: arrays may be made and deleted on any thread while it is on; report runs under the check's lock, one call at a time.
 * initializeTensorMemoryCheck and runTensorMemoryCheck are called while no other thread makes or deletes arrays. */
#ifndef VELORIM_MEMORY_CHECK_H
#define VELORIM_MEMORY_CHECK_H

#include <velorim/array.h>

VLM_BEGIN_DECLS

/** 1 while the check is on. Read without the lock. Setting it without initializeTensorMemoryCheck turns nothing on. */
extern int32_t trackTensorMemory;

/** Turns the check on with an empty table. report receives the messages; NULL drops them. A table left from before is destroyed as
 *  runTensorMemoryCheck(1) does. */
void initializeTensorMemoryCheck(void (*report)(const char* message)) VLM_NOEXCEPT;

/** What every creation of an array does while the check is on: enters it in the table. Reports "MTensor already created" if it is there,
 *  and enters it again. Nothing without a table. */
void TensorMemory_addNew(MNumericArray* array) VLM_NOEXCEPT;

/** What every deletion does instead of freeing: marks the array. Its record and storage stay, so that its address cannot be reused and a
 *  second deletion is seen. Reports "MTensor cannot be found" for an array made before the check, which then stays allocated, and
 *  "MTensor has already been freed". Nothing without a table. */
void TensorMemory_free(MNumericArray* array) VLM_NOEXCEPT;

/** Turns the check off, and reports "MTensor not freed" once for every array that was not deleted, but those with ArrayFlagInExpr.
 *  clear not 0: deletes the marked arrays for good and destroys the table. */
void runTensorMemoryCheck(int32_t clear) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
