// The floating-point environment: the one place that reads or writes the platform's exception flags.
//
// The flags that count are invalid, division by zero and overflow, together; underflow and inexact never do.
// Flags belong to the thread. A run is judged so:
//
//   fp::clear_flags();  for (...) result[i] = f(source[i]);  if (fp::test_flags()) ...
//
// What lies between the two calls. Compilers know nothing of the flags as a side effect of arithmetic and
// move operations on values in registers freely. Every function here is therefore a fence for memory:
// operands loaded from, and results stored to, memory that code elsewhere could reach (arrays behind a
// pointer) are loaded after and stored before it. A value that lives in a register, or in a local whose
// address has not escaped, is not held back; pass it through fp::pin after clear_flags and its result through
// fp::pin before test_flags.
#pragma once

#include <cfenv>
#include <cstdint>

#if defined(__x86_64__)
#include <xmmintrin.h>
#endif

namespace vlm::fp {

/// The flags that count.
inline constexpr int flag_set = FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW;

/// No access to memory moves across this point.
inline void fence() { asm volatile("" ::: "memory"); }

/// Makes the value of x opaque at this point, in order with the other functions of this file: arithmetic on x
/// that follows is done after it, arithmetic that x comes from before it.
template <class T> inline void pin(T& x) {
#if defined(__x86_64__)
  if constexpr (sizeof(T) <= 8) {
    asm volatile("" : "+x"(x));
  } else {
    asm volatile("" : "+m"(x));
  }
#else
  asm volatile("" : "+m"(x));
#endif
}

#if defined(__x86_64__)

// SSE and AVX arithmetic report in MXCSR, long double in the status word of the x87 unit; both lay the flags
// out as FE_ does. The library's own feclearexcept goes through fldenv at some 40 ns, and a write of MXCSR
// waits for the arithmetic in flight, so each is done only if there is something to clear.
static_assert(FE_INVALID == 0x01 && FE_DIVBYZERO == 0x04 && FE_OVERFLOW == 0x08);

namespace detail {
inline constexpr uint32_t mxcsr_all_masked =
    0x1F80;  // the default control bits: all traps masked, to nearest
inline constexpr uint32_t mxcsr_flags = 0x3F;
inline uint32_t x87_status() {
  uint16_t word;
  asm volatile("fnstsw %0" : "=a"(word)::"memory");
  return word;
}
}  // namespace detail

/// Clears the flags of flag_set and no others. 0, or what feclearexcept says.
inline int clear_flags() {
  fence();
  const uint32_t control = _mm_getcsr();
  if (control & flag_set) _mm_setcsr(control & ~static_cast<uint32_t>(flag_set));
  const int result = detail::x87_status() & flag_set ? std::feclearexcept(flag_set) : 0;
  fence();
  return result;
}

/// The raised flags of flag_set as a mask of FE_ bits; 0 if none is.
inline int test_flags() {
  fence();
  const uint32_t raised = (_mm_getcsr() | detail::x87_status()) & flag_set;
  fence();
  return static_cast<int>(raised);
}

/// Runs arithmetic in the default environment (to nearest, nothing flushed to zero, no traps) and keeps what it raises out of the
/// flags that count: the control and status word is saved at construction and put back by restore() or at the end of the scope.
/// Flags that count and were raised before stay, those raised in the section are forgotten; inexact and underflow may stay
/// raised, since lowering a flag makes the next read of the word wait some 80 ns. Covers float and double arithmetic, not long
/// double.
class quiet_section {
 public:
  quiet_section() {
    fence();
    saved_ = _mm_getcsr();
    if ((saved_ & ~detail::mxcsr_flags) != detail::mxcsr_all_masked)
      _mm_setcsr(detail::mxcsr_all_masked | (saved_ & detail::mxcsr_flags));
    fence();
  }
  ~quiet_section() { restore(); }
  quiet_section(const quiet_section&) = delete;
  quiet_section& operator=(const quiet_section&) = delete;

  /// Ends the section early. A second call does nothing.
  void restore() {
    if (ended_) return;
    ended_ = true;
    fence();
    constexpr uint32_t settled = detail::mxcsr_flags & ~static_cast<uint32_t>(flag_set);
    if (((_mm_getcsr() ^ saved_) & ~settled) != 0) _mm_setcsr(saved_);
    fence();
  }

 private:
  uint32_t saved_;
  bool ended_ = false;
};

/// Runs arithmetic in the default environment: to nearest, nothing flushed to zero, no traps, no flag raised at its start
/// but those of `unheeded` that the caller had raised. raised() tells what was raised since; what it says of unheeded flags
/// means nothing. The end of the scope puts the caller's environment back exactly. Pin operands after the construction and
/// results before raised(). Covers float and double arithmetic, not long double.
/// A read of MXCSR after a write that lowered a flag costs 80 ns, and 1 ns otherwise: hence unheeded, with inexact above all.
class default_section {
 public:
  explicit default_section(int unheeded = 0) {
    fence();
    saved_ = _mm_getcsr();
    const uint32_t wanted = detail::mxcsr_all_masked | (saved_ & static_cast<uint32_t>(unheeded));
    if (saved_ != wanted) _mm_setcsr(wanted);
    fence();
  }
  ~default_section() {
    fence();
    if (_mm_getcsr() != saved_) _mm_setcsr(saved_);
    fence();
  }
  default_section(const default_section&) = delete;
  default_section& operator=(const default_section&) = delete;

  /// The flags raised in the section, of all five, as FE_ bits.
  int raised() const {
    fence();
    return static_cast<int>(_mm_getcsr()) & FE_ALL_EXCEPT;
  }

 private:
  uint32_t saved_;
};

#else

/// Clears the flags of flag_set and no others. 0, or what feclearexcept says.
inline int clear_flags() {
  fence();
  const int result = std::feclearexcept(flag_set);
  fence();
  return result;
}

/// The raised flags of flag_set as a mask of FE_ bits; 0 if none is.
inline int test_flags() {
  fence();
  const int raised = std::fetestexcept(flag_set);
  fence();
  return raised;
}

/// Runs arithmetic in the default environment (to nearest, nothing flushed to zero, no traps) and keeps what it raises out of the
/// flags: the environment is saved at construction and put back exactly by restore() or at the end of the scope.
class quiet_section {
 public:
  quiet_section() {
    fence();
    save();
    fence();
  }
  ~quiet_section() { restore(); }
  quiet_section(const quiet_section&) = delete;
  quiet_section& operator=(const quiet_section&) = delete;

  /// Ends the section early. A second call does nothing.
  void restore() {
    if (ended_) return;
    ended_ = true;
    fence();
    put_back();
    fence();
  }

 private:
#if defined(__aarch64__)
  // FPSR holds the flags, FPCR the rounding mode, the flush modes and the trap enables; all zero is the default.
  void save() {
    asm volatile("mrs %0, fpsr" : "=r"(status_)::"memory");
    asm volatile("mrs %0, fpcr" : "=r"(control_)::"memory");
    if (control_ != 0) asm volatile("msr fpcr, %0" ::"r"(uint64_t{0}) : "memory");
  }
  void put_back() {
    asm volatile("msr fpsr, %0" ::"r"(status_) : "memory");
    if (control_ != 0) asm volatile("msr fpcr, %0" ::"r"(control_) : "memory");
  }
  uint64_t status_, control_;
#else
  void save() {
    std::feholdexcept(&environment_);
    std::fesetround(FE_TONEAREST);
  }
  void put_back() { std::fesetenv(&environment_); }
  std::fenv_t environment_;
#endif
  bool ended_ = false;
};

/// Runs arithmetic in the default environment: to nearest, nothing flushed to zero, no traps, no flag raised at its start.
/// raised() tells what was raised since; what it says of flags of `unheeded` means nothing, which lets a platform save work.
/// The end of the scope puts the caller's environment back exactly. Pin operands after the construction and results before
/// raised().
class default_section {
 public:
  explicit default_section([[maybe_unused]] int unheeded = 0) {
    fence();
    std::fegetenv(&saved_);
    std::fesetenv(FE_DFL_ENV);
    fence();
  }
  ~default_section() {
    fence();
    std::fesetenv(&saved_);
    fence();
  }
  default_section(const default_section&) = delete;
  default_section& operator=(const default_section&) = delete;

  /// The flags raised in the section, of all five, as FE_ bits.
  int raised() const {
    fence();
    return std::fetestexcept(FE_ALL_EXCEPT);
  }

 private:
  std::fenv_t saved_;
};

#endif

/// Raises flags (FE_ bits, of flag_set or others) as arithmetic would. 0, or what feraiseexcept says.
inline int raise(int flags) {
  fence();
  const int result = std::feraiseexcept(flags);
  fence();
  return result;
}

}  // namespace vlm::fp
