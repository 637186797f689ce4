/* How compiled code reports a failure to its host, and how long work is stopped from outside.
 *
 * Library functions return a status (status.h) and never throw. Compiled code that gets a nonzero status, or finds a failure
 * of its own, calls throwVelorimException with a VelorimError code; the enclosing catch frame (catchExceptionHandler,
 * VelorimCompiler_CatchBase) receives it.
 *
 * Exception styles. How a report travels is a setting of the process:
 *   0  a C++ exception, VelorimRuntimeException (runtime_exception.h). One that no frame catches ends the process.
 *   1  a code in the thread's state, exceptionActive, where 0 means none; the reporter goes on running and unwinds by itself.
 *      The style at load time.
 *   2  a long jump to the innermost jump buffer of the thread's list. Reporting without one ends the process.
 *   Any other value acts like 0.
 * The style is meant to be set once, before compiled code runs. Where it changes all the same: reporting obeys the style at
 * that moment; a frame receives an exception in every style, a jump if the style was 2 when it was entered, and a stored code
 * if the style is 1 when it is entered or left.
 *
 * Frames nest, in any mix of styles. Each puts back, however it is left, what it found: kernelAbortEnabled, the list of jump
 * buffers, and exceptionActive if it looked there or a jump ended it. A frame in style 1 therefore hides the code of an inner
 * failure from the outer frame unless the inner caller reports it again. C++ exceptions of other types pass through frames.
 *
 * Polling for aborts. A loop reads `watch`; only if that is nonzero it asks abortPoll; a nonzero answer ends it with
 * ArrayStatusAborted. The poll of this runtime always answers 0: a host's request through triggerAPIAbort is seen by
 * checkAPIAbort alone.
 *
 * Threads. exceptionActive, kernelAbortEnabled and the list of jump buffers belong to the calling thread and are 0 or empty in
 * a fresh one; the style, `watch` and the abort flags belong to the process. Every function may be called on any thread. */
#ifndef VELORIM_ERRORS_H
#define VELORIM_ERRORS_H

#include <velorim/base.h>
#include <velorim/status.h>
#ifdef __cplusplus
#include <velorim/runtime_exception.h>
#endif

/** A failure that a catch frame received. NULL stands for none. */
typedef struct CompilerError {
  int32_t type; /**< 4 in a record that a catch frame made */
  int32_t code; /**< VelorimError code */
} CompilerError;

VLM_BEGIN_DECLS

/** Nonzero: an abort may be pending, ask abortPoll. Read and written without a lock; a late read does no harm. 0 from phase 0
 *  of the initialisation on. */
extern uint32_t watch;
/** Staging word of watch: writers store here, then copy to watch. */
extern uint32_t watch1;

/* ---- Reporting ---- */

/** Sets the exception style of the process. */
void setExceptionStyle(uint32_t style) VLM_NOEXCEPT;
/** Reports code, which is not 0. returns  in style 1 alone: code, now stored in exceptionActive. In the other styles the call
 *  does not return; in style 2 destructors between here and the jump buffer do not run. */
int32_t throwVelorimException(int32_t code);

/** The thread's pending code of style 1; 0 for none. */
uint32_t getExceptionActive(void) VLM_NOEXCEPT;
/** Stores the pending code. returns  the old one. */
uint32_t setExceptionActive(uint32_t code) VLM_NOEXCEPT;
/** Where the calling thread keeps its pending code; valid as long as the thread lives. */
uint32_t* getExceptionActiveHandle(void) VLM_NOEXCEPT;

/** Stores kernelAbortEnabled: with 1, which frames set, an abort becomes a report. returns  the old value. */
uint32_t setKernelAbortEnabled(uint32_t value) VLM_NOEXCEPT;
/** Where the calling thread keeps kernelAbortEnabled (an address, not the value); valid as long as the thread lives. */
uint32_t* getKernelAbortEnabled(void) VLM_NOEXCEPT;

/** Puts buffer, the address of a jmp_buf, on top of the thread's list for style 2; buffer stays the caller's and must outlive
 *  its place there. Allocates 16 bytes with FailFatal. returns  the address of the thread's list head. */
void** SetJumpStack_Push(void* buffer) VLM_NOEXCEPT;
/** The top buffer; NULL if the list is empty. */
void* SetJumpStack_Peek(void) VLM_NOEXCEPT;
/** Takes the top buffer off the list, which must not be empty (asserted in debug builds; otherwise nothing happens). */
void SetJumpStack_Pop(void) VLM_NOEXCEPT;

/** New record, allocated with FailFatal; give it back with Delete_CompilerError. */
CompilerError* New_CompilerError(int32_t type, int32_t code) VLM_NOEXCEPT;
/** Frees a record; NULL is ignored. */
void Delete_CompilerError(CompilerError* error) VLM_NOEXCEPT;
/** NULL, the record that means no error. */
CompilerError* CompilerError_null(void) VLM_NOEXCEPT;

/* ---- Catch frames. kernelAbortEnabled is 1 while the function runs. ---- */

/** Runs a function under a frame. handler is the address of an object whose first word addresses a record whose first word is
 *  the function, void (*)(void* argument, void* handler); it gets both arguments.
 *  returns  NULL if the function ended without a report; else a new CompilerError of type 4 with the code of the report. */
CompilerError* catchExceptionHandler(void* argument, void* handler);
/** Runs function(a, b, c, d) under a frame. returns  0; 1 if a report arrived. */
int32_t VelorimCompiler_CatchBase(void (*function)(void* a, void* b, void* c, void* d), void* a, void* b,
                                  void* c, void* d);

/* ---- Aborts ---- */

/** Address of watch. */
uint32_t* getAbortWatchHandle(void) VLM_NOEXCEPT;
/** returns  0 if watch is 0; else 1 if abortPoll("Compiler") answers yes, 0 if not. */
int32_t checkAbortWatch(void) VLM_NOEXCEPT;
/** As checkAbortWatch, and on a yes reports VelorimError_abort (34) if kernelAbortEnabled is 1. returns  0 without a yes or
 *  without kernelAbortEnabled; 1 in style 1, with 34 stored in exceptionActive. In the other styles a report leaves by
 *  exception or jump, as from throwVelorimException. */
int32_t checkAbortWatchThrow(void);
/** returns  1: this library has the requests below. */
int32_t checkAPIAbortSupported(void) VLM_NOEXCEPT;
/** Requests an abort: sets the request, then watch. Takes no lock and allocates nothing; may be called at any time, from
 *  signal handlers too. */
void triggerAPIAbort(void) VLM_NOEXCEPT;
/** returns  1 if an abort is requested and requests are armed, else 0. */
int32_t checkAPIAbort(void) VLM_NOEXCEPT;
/** Withdraws the request; watch stays as it is. */
void clearAPIAbort(void) VLM_NOEXCEPT;
/** Arms requests, as they are at load time; sets watch if one is pending. */
void armAPIAbort(void) VLM_NOEXCEPT;
/** Makes checkAPIAbort answer 0; a request stays pending. */
void disarmAPIAbort(void) VLM_NOEXCEPT;
/** Whether the computation must stop; where is a short text that names the asking place, or NULL. returns  0, always. */
int32_t abortPoll(const char* where) VLM_NOEXCEPT;

/* ---- Forwarders: each one call of the platform, and no more ---- */

/** feraiseexcept. returns  its result: 0 if all of excepts (FE_ bits) were raised. Acts on the calling thread's flags. */
int32_t feraiseexcept_wrapper(int32_t excepts) VLM_NOEXCEPT;
/** _Unwind_Resume: goes on with the unwinding of object at the end of a landing pad. Does not return. */
void Unwind_Resume_Velorim(void* object);
/** __register_frame: makes the unwind tables at frame known, for code generated at run time. */
void __register_frame_Velorim(void* frame) VLM_NOEXCEPT;
/** __deregister_frame: withdraws them. */
void __deregister_frame_Velorim(void* frame) VLM_NOEXCEPT;

/* ---- Test helpers ---- */

/** Does nothing. */
void dummyFunction(void) VLM_NOEXCEPT;
/** The next value of one counter of the process, which starts at 0 and goes up by 1 with each of these three calls. */
void* TestPointVoidHandle(void) VLM_NOEXCEPT;
/** The same, as an integer. */
mint TestPointMint(void) VLM_NOEXCEPT;
/** The same, as an unsigned integer. */
umint TestPointUMint(void) VLM_NOEXCEPT;
/** returns  0 if x is finite; 1 not a number; 2 plus infinity; 3 minus infinity. Raises no floating-point exception. */
int32_t TestException(mreal x) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
