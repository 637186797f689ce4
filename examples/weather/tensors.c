#include "tensors.h"

#include <math.h>
#include <stdio.h>

const char* function_name(int32_t number) {
  switch (number) {
    case MachFunc_exp:
      return "exp";
    case MachFunc_log:
      return "log";
    case MachFunc_log1p:
      return "log1p";
    case MachFunc_abs:
      return "abs";
    case MachFunc_sign:
      return "sign";
    case MachFunc_round:
      return "round";
    case MachFunc_sqrt:
      return "sqrt";
    case MachFunc_unitstep:
      return "unitstep";
    case MachFunc_ramp:
      return "ramp";
    case MachFunc_plus:
      return "plus";
    case MachFunc_subtract:
      return "subtract";
    case MachFunc_times:
      return "times";
    case MachFunc_div:
      return "div";
    case MachFunc_pow:
      return "pow";
    default:
      return "?";
  }
}

MTensor* real_tensor(const double* values, mint length) {
  MTensor* tensor = MTensor_newCopyFromDataArray(MTensorTypeReal, 1, &length, values);
  if (tensor == NULL) fprintf(stderr, "weather: no memory for a tensor of %lld reals\n", (long long)length);
  return tensor;
}

const mreal* real_data(const MTensor* tensor) { return (const mreal*)tensor->data; }

const mint* integer_data(const MTensor* tensor) { return (const mint*)tensor->data; }

Summary summarize(const MTensor* tensor) {
  Summary summary = {0, 0.0, 0.0, 0.0};
  for (mint i = 0; i < tensor->flattenedLength; i++) {
    const double x =
        tensor->tensorType == MTensorTypeInteger ? (double)integer_data(tensor)[i] : real_data(tensor)[i];
    if (!isfinite(x)) continue;
    if (summary.finite == 0 || x < summary.min) summary.min = x;
    if (summary.finite == 0 || x > summary.max) summary.max = x;
    summary.mean += x;
    summary.finite++;
  }
  if (summary.finite > 0) summary.mean /= (double)summary.finite;
  return summary;
}
