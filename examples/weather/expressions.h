/* Formulas over tensors: each function makes a new tensor from others by one machine function. A number is a tensor of
 * rank 0, which meets a tensor of any shape.
 *
 * All of them belong to a Sheet, which frees them together. The first call that fails prints a message; it and every
 * formula that needs its result give null, so that a caller looks once, at the end. */
#ifndef WEATHER_EXPRESSIONS_H
#define WEATHER_EXPRESSIONS_H

#include <velorim/velorim.h>

enum { MOST_TENSORS = 64 };

typedef struct {
  MTensor* tensors[MOST_TENSORS];
  int count;
} Sheet;

void sheet_free(Sheet* sheet);

/* The tensor belongs to the sheet from here on; null passes. */
const MTensor* sheet_keep(Sheet* sheet, MTensor* tensor);

const MTensor* number(Sheet* sheet, double value);
const MTensor* column(Sheet* sheet, const double* values, mint length);

/* f(x) and f(x, y) as reals, with all floating-point checks on. */
const MTensor* apply(Sheet* sheet, int32_t function, const MTensor* x);
const MTensor* combine(Sheet* sheet, int32_t function, const MTensor* x, const MTensor* y);

const MTensor* plus(Sheet* sheet, const MTensor* x, const MTensor* y);
const MTensor* subtract(Sheet* sheet, const MTensor* x, const MTensor* y);
const MTensor* times(Sheet* sheet, const MTensor* x, const MTensor* y);
const MTensor* divide(Sheet* sheet, const MTensor* x, const MTensor* y);
const MTensor* power(Sheet* sheet, const MTensor* x, const MTensor* y);

/* x as elements of another type, by a method of conversion. Null after a message if it is refused. */
const MTensor* converted(Sheet* sheet, const MTensor* x, int32_t element_type, int32_t method);

#endif
