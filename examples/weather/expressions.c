#include "expressions.h"

#include <stdio.h>

#include "tensors.h"

void sheet_free(Sheet* sheet) {
  for (int i = 0; i < sheet->count; i++) MTensor_delete(sheet->tensors[i]);
  sheet->count = 0;
}

const MTensor* sheet_keep(Sheet* sheet, MTensor* tensor) {
  if (tensor == NULL) return NULL;
  if (sheet->count == MOST_TENSORS) {
    fprintf(stderr, "weather: a sheet holds %d tensors and no more\n", (int)MOST_TENSORS);
    MTensor_delete(tensor);
    return NULL;
  }
  sheet->tensors[sheet->count++] = tensor;
  return tensor;
}

const MTensor* number(Sheet* sheet, double value) {
  return sheet_keep(sheet, MTensor_newCopyFromDataArray(MTensorTypeReal, 0, NULL, &value));
}

const MTensor* column(Sheet* sheet, const double* values, mint length) {
  return sheet_keep(sheet, real_tensor(values, length));
}

/* Keeps the result of a call that gave the status. */
static const MTensor* finish(Sheet* sheet, const char* call, int32_t function, int32_t status,
                             MTensor* result) {
  const MTensor* kept = sheet_keep(sheet, result);
  if (status == LibraryOk) return kept;
  fprintf(stderr, "weather: %s of function %d (%s) gave %d\n", call, (int)function, function_name(function),
          (int)status);
  return NULL;
}

const MTensor* apply(Sheet* sheet, int32_t function, const MTensor* x) {
  MTensor* result = NULL;
  if (x == NULL) return NULL;
  const int32_t status = Math_T_T(function, MACHFUNC_CHECK_FP, x, MTensorTypeReal, &result);
  return finish(sheet, "Math_T_T", function, status, result);
}

const MTensor* combine(Sheet* sheet, int32_t function, const MTensor* x, const MTensor* y) {
  MTensor* result = NULL;
  if (x == NULL || y == NULL) return NULL;
  const int32_t status = Math_TT_T(function, MACHFUNC_CHECK_FP, x, y, MTensorTypeReal, &result);
  return finish(sheet, "Math_TT_T", function, status, result);
}

const MTensor* plus(Sheet* sheet, const MTensor* x, const MTensor* y) {
  return combine(sheet, MachFunc_plus, x, y);
}
const MTensor* subtract(Sheet* sheet, const MTensor* x, const MTensor* y) {
  return combine(sheet, MachFunc_subtract, x, y);
}
const MTensor* times(Sheet* sheet, const MTensor* x, const MTensor* y) {
  return combine(sheet, MachFunc_times, x, y);
}
const MTensor* divide(Sheet* sheet, const MTensor* x, const MTensor* y) {
  return combine(sheet, MachFunc_div, x, y);
}
const MTensor* power(Sheet* sheet, const MTensor* x, const MTensor* y) {
  return combine(sheet, MachFunc_pow, x, y);
}

const MTensor* converted(Sheet* sheet, const MTensor* x, int32_t element_type, int32_t method) {
  MNumericArray* result = NULL;
  if (x == NULL) return NULL;
  const int32_t status = MNumericArray_convert(&result, x, element_type, method);
  const MTensor* kept = sheet_keep(sheet, result);
  if (status == ArrayStatusOk) return kept;
  fprintf(stderr, "weather: conversion \"%s\" gave %d\n", MNumericArrayConvertMethodString(method),
          (int)status);
  return NULL;
}
