/* The three families of codes by which the library reports. 0 is success in each of them. */
#ifndef VELORIM_STATUS_H
#define VELORIM_STATUS_H

/** Codes of compiled code: the argument of throwVelorimException, the code of a CompilerError, and how kernels
 *  classify a failure among themselves. Codes 47 to 96 are reserved. The text of a code is the enumerator's
 *  name without its prefix, such as "integer_overflow". */
typedef enum VelorimError {
  VelorimError_success = 0,
  VelorimError_integer_overflow = 1,
  VelorimError_indeterminate = 2,
  VelorimError_integer_inexact_division = 3,
  VelorimError_floating_point_inexact = 4,
  VelorimError_floating_point_invalid = 5,
  VelorimError_floating_point_infinite = 6,
  VelorimError_floating_point_overflow = 7,
  VelorimError_floating_point_unknown = 8,
  VelorimError_floating_point_nan = 9,
  VelorimError_floating_point_subnormal = 10,
  VelorimError_floating_point_environment_exception = 11,
  VelorimError_floating_point_environment_error = 12,
  VelorimError_argument = 13,
  VelorimError_logic = 14,
  VelorimError_range = 15,
  VelorimError_domain = 16,
  VelorimError_system = 17,
  VelorimError_divide_by_zero = 18,
  VelorimError_invalid_type = 19,
  VelorimError_invalid_range = 20,
  VelorimError_unknown = 21,
  VelorimError_unimplemented = 22,
  VelorimError_memory = 23,
  VelorimError_rankerror = 24,
  VelorimError_dimensionerror = 25,
  VelorimError_arrayparterror = 26,
  VelorimError_expressionconversion = 27,
  VelorimError_matharrayerror = 28,
  VelorimError_doterror = 29,
  VelorimError_streamnodata = 30,
  VelorimError_streamnospace = 31,
  VelorimError_streamdatanotavailable = 32,
  VelorimError_streamspacenotavailable = 33,
  VelorimError_abort = 34,
  VelorimError_randomnumbererror = 35,
  VelorimError_takeerror = 36,
  VelorimError_partitionerror = 37,
  VelorimError_reverseerror = 38,
  VelorimError_flattenerror = 39,
  VelorimError_rotateerror = 40,
  VelorimError_transposeerror = 41,
  VelorimError_sorterror = 42,
  VelorimError_cast = 43,
  VelorimError_stringextract = 44,
  VelorimError_zerolengtharray = 45,
  VelorimError_arraycreation = 46,
  VelorimError_reserved_1 = 47,
  VelorimError_reserved_50 = 96
} VelorimError;

/** Codes of the array layer, returned by the MNumericArray_ and MTensor_ operations. */
typedef enum ArrayStatus {
  ArrayStatusOk = 0,
  ArrayStatusLengthMismatch = 203,    /**< operand lengths differ */
  ArrayStatusBadNormOrder = 204,      /**< element type or order that a norm does not handle */
  ArrayStatusBadDimensions = 402,     /**< a dimension is negative */
  ArrayStatusNoMemory = 403,          /**< storage failed, or its size overflowed */
  ArrayStatusAborted = 1000,          /**< the abort poll answered yes */
  ArrayStatusArithmetic = 1001,       /**< overflow or another arithmetic failure in a reduction or product */
  ArrayStatusBadLevel = 1008,         /**< a negative level */
  ArrayStatusNullArgument = 1300,     /**< an array argument is null */
  ArrayStatusBadType = 1301,          /**< element type out of range or of the wrong kind */
  ArrayStatusBadRank = 1302,          /**< wrong rank */
  ArrayStatusBadShape = 1303,         /**< dimensions differ, or an iterator has no finite count */
  ArrayStatusBadMethod = 1304,        /**< conversion method out of range */
  ArrayStatusNotRepresentable = 1305, /**< a value or block does not fit the target */
  ArrayStatusCountTooLarge = 1307     /**< a real iterator's count does not fit mint */
} ArrayStatus;

/** Codes of the plug-in callback tables and of named calls; the elementwise front ends return 4 and 5 of
 * them. */
typedef enum LibraryStatus {
  LibraryOk = 0,
  LibraryTypeError = 1,          /**< wrong type of an argument */
  LibraryRankError = 2,          /**< wrong rank of an argument */
  LibraryDimensionError = 3,     /**< wrong or empty dimensions */
  LibraryNumericalError = 4,     /**< a value is out of its domain, or a numeric kernel failed */
  LibraryMemoryError = 5,        /**< out of memory */
  LibraryFunctionError = 6,      /**< the operation is not available */
  LibraryVersionError = 7,       /**< an unimplemented table slot was called */
  LibraryRandomError = 11,       /**< a random operation failed */
  LibraryCallArgumentError = 12, /**< a named call got the wrong number of arguments */
  LibraryUnimplementedCall = 14  /**< a named call without implementation */
} LibraryStatus;

#endif
