// Catch frames: running compiled code so that its report arrives here, in whatever style it travels.
//
// A frame decides by the style on entry what it sets up, and by what came how it ends. It keeps what it found in a plain record
// that is complete before the function runs and never changes: a long jump may pass over inner frames and leaves their objects
// undestroyed, and of the locals of this one only those that did not change are worth reading after it. For the first reason
// nothing here has a destructor; for the second, setjmp has a function of its own.
#include <csetjmp>
#include <optional>
#include <type_traits>
#include <utility>

#include "Runtime/error_state.h"
#include "velorim/errors.h"

namespace vlm {
namespace {

exception_style style_now() { return current_exception_style.load(std::memory_order_relaxed); }

/// What a frame found, and the style it was entered in.
struct frame_record {
  exception_style style;
  thread_errors found;
};

frame_record enter_frame() {
  const frame_record frame{style_now(), errors_of_thread};
  errors_of_thread.kernel_abort_enabled = 1;
  if (frame.style == exception_style::flag) errors_of_thread.exception_active = 0;
  return frame;
}

/// Puts back what the frame found, and gives the code that was stored meanwhile in style 1, 0 for none. Where the style became
/// 1 in the frame only, a code that was there before it is none of its own.
uint32_t leave_frame(const frame_record& frame) {
  cut_jump_stack(frame.found.jump_stack);
  errors_of_thread.kernel_abort_enabled = frame.found.kernel_abort_enabled;
  if (frame.style != exception_style::flag && style_now() != exception_style::flag) return 0;
  const uint32_t before = frame.style == exception_style::flag ? 0 : frame.found.exception_active;
  const uint32_t stored = std::exchange(errors_of_thread.exception_active, frame.found.exception_active);
  return stored == before ? 0 : stored;
}

/// The code of the report that ended the function, if one did.
using arrival = std::optional<uint32_t>;
static_assert(std::is_trivially_destructible_v<arrival>);

template <class Function>
[[gnu::noinline]] arrival run_handled(const frame_record& frame, const Function& function) {
  try {
    function();
    return std::nullopt;
  } catch (const VelorimRuntimeException& report) {
    return report.code();
  } catch (...) {
    leave_frame(frame);
    throw;
  }
}

template <class Function>
[[gnu::noinline]] arrival run_jumpable(const frame_record& frame, const Function& function) {
  std::jmp_buf buffer;
  const int jumped = setjmp(buffer);
  if (jumped == 0) {
    SetJumpStack_Push(&buffer);
    return run_handled(frame, function);
  }
  // Frames of style 1 that the jump passed did not put their outer code back.
  errors_of_thread.exception_active = frame.found.exception_active;
  return static_cast<uint32_t>(jumped);
}

template <class Function> arrival run_frame(const Function& function) {
  const frame_record frame = enter_frame();
  const arrival report = frame.style == exception_style::long_jump ? run_jumpable(frame, function)
                                                                   : run_handled(frame, function);
  const uint32_t stored = leave_frame(frame);
  if (report) return report;
  return stored != 0 ? arrival{stored} : std::nullopt;
}

/// The function of a handler: behind two words.
struct handler_record {
  void (*run)(void* argument, void* handler);
};
struct handler_object {
  const handler_record* record;
};

constexpr int32_t frame_error_type = 4;

}  // namespace
}  // namespace vlm

CompilerError* catchExceptionHandler(void* argument, void* handler) {
  const auto run = static_cast<const vlm::handler_object*>(handler)->record->run;
  const vlm::arrival report = vlm::run_frame([=] { run(argument, handler); });
  return report ? New_CompilerError(vlm::frame_error_type, static_cast<int32_t>(*report))
                : CompilerError_null();
}

int32_t VelorimCompiler_CatchBase(void (*function)(void* a, void* b, void* c, void* d), void* a, void* b,
                                  void* c, void* d) {
  return vlm::run_frame([=] { function(a, b, c, d); }).has_value();
}
