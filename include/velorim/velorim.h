/* VelorimRTL: everything. Each header below can be included alone. */
#ifndef VELORIM_VELORIM_H
#define VELORIM_VELORIM_H

#include <velorim/array.h>
#include <velorim/array_services.h>
#include <velorim/base.h>
#include <velorim/binary_scalar_functions.h>
#include <velorim/blas.h>
#include <velorim/complex_functions.h>
#include <velorim/containers.h>
#include <velorim/conversion.h>
#include <velorim/errors.h>
#include <velorim/floating_point.h>
#include <velorim/hash.h>
#include <velorim/hash_table.h>
#include <velorim/machine_functions.h>
#include <velorim/memory.h>
#include <velorim/memory_check.h>
#include <velorim/norms.h>
#include <velorim/parallel.h>
#include <velorim/parts.h>
#include <velorim/runtime.h>
#include <velorim/scalar_functions.h>
#include <velorim/status.h>
#include <velorim/structural.h>
#include <velorim/tensor_arithmetic.h>
#include <velorim/thread.h>

#endif
