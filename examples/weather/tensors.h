/* What the host adds to the library's tensors: making one from a column, and the summary of one. */
#ifndef WEATHER_TENSORS_H
#define WEATHER_TENSORS_H

#include <velorim/velorim.h>

/* Name of a machine function that the example runs. */
const char* function_name(int32_t number);

/* A rank-1 tensor of reals; the library owns the storage, MTensor_delete gives it back. Null after a message
 * on stderr. */
MTensor* real_tensor(const double* values, mint length);

const mreal* real_data(const MTensor* tensor);
const mint* integer_data(const MTensor* tensor);

/* Over the finite elements of a real or integer tensor. min, mean and max are 0 if there is none. */
typedef struct {
  mint finite;
  double min, mean, max;
} Summary;

Summary summarize(const MTensor* tensor);

#endif
