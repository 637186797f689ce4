/* The C++ exception by which throwVelorimException reports in exception style 0. Nothing here is C; errors.h includes this
 * header for C++ alone. Everything is inline, so that a host which catches it needs no symbol of the library. */
#ifndef VELORIM_RUNTIME_EXCEPTION_H
#define VELORIM_RUNTIME_EXCEPTION_H

#ifdef __cplusplus

#include <velorim/status.h>

#include <cstdint>
#include <exception>

namespace vlm {

/** Name of a VelorimError code: "success" to "arraycreation" for 0 to 46, "reserved_1" to "reserved_50" for 47 to 96,
 *  "error_unknown" above. The text is a constant. Threads: any. */
inline const char* error_name(uint32_t code) noexcept {
  static constexpr const char* names[] = {"success",
                                          "integer_overflow",
                                          "indeterminate",
                                          "integer_inexact_division",
                                          "floating_point_inexact",
                                          "floating_point_invalid",
                                          "floating_point_infinite",
                                          "floating_point_overflow",
                                          "floating_point_unknown",
                                          "floating_point_nan",
                                          "floating_point_subnormal",
                                          "floating_point_environment_exception",
                                          "floating_point_environment_error",
                                          "argument",
                                          "logic",
                                          "range",
                                          "domain",
                                          "system",
                                          "divide_by_zero",
                                          "invalid_type",
                                          "invalid_range",
                                          "unknown",
                                          "unimplemented",
                                          "memory",
                                          "rankerror",
                                          "dimensionerror",
                                          "arrayparterror",
                                          "expressionconversion",
                                          "matharrayerror",
                                          "doterror",
                                          "streamnodata",
                                          "streamnospace",
                                          "streamdatanotavailable",
                                          "streamspacenotavailable",
                                          "abort",
                                          "randomnumbererror",
                                          "takeerror",
                                          "partitionerror",
                                          "reverseerror",
                                          "flattenerror",
                                          "rotateerror",
                                          "transposeerror",
                                          "sorterror",
                                          "cast",
                                          "stringextract",
                                          "zerolengtharray",
                                          "arraycreation"};
  static_assert(sizeof(names) / sizeof(*names) == VelorimError_reserved_1);

  struct reserved_names {
    char text[VelorimError_reserved_50 - VelorimError_reserved_1 + 1][12] = {};
    constexpr reserved_names() {
      for (int n = 1; n <= VelorimError_reserved_50 - VelorimError_reserved_1 + 1; ++n) {
        char* end = text[n - 1];
        for (const char* c = "reserved_"; *c != 0; ++c) *end++ = *c;
        if (n >= 10) *end++ = static_cast<char>('0' + n / 10);
        *end = static_cast<char>('0' + n % 10);
      }
    }
  };
  static constexpr reserved_names reserved;

  if (code < VelorimError_reserved_1) return names[code];
  if (code <= VelorimError_reserved_50) return reserved.text[code - VelorimError_reserved_1];
  return "error_unknown";
}

}  // namespace vlm

/** Carries a VelorimError code through the frames of compiled code to the enclosing catch frame. */
class __attribute__((visibility("default"))) VelorimRuntimeException : public std::exception {
 public:
  explicit VelorimRuntimeException(uint32_t code) noexcept : code_(code) {}
  ~VelorimRuntimeException() override = default;
  VelorimRuntimeException(const VelorimRuntimeException&) = default;
  VelorimRuntimeException& operator=(const VelorimRuntimeException&) = default;

  /** The name of the code, as vlm::error_name gives it. */
  const char* what() const noexcept override { return vlm::error_name(code_); }
  uint32_t code() const noexcept { return code_; }

 private:
  uint32_t code_;
};

#endif
#endif
