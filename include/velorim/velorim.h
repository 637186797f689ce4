/* VelorimRTL: everything. Each header below can be included alone. */
#ifndef VELORIM_VELORIM_H
#define VELORIM_VELORIM_H

#include <velorim/array.h>
#include <velorim/base.h>
#include <velorim/errors.h>
#include <velorim/floating_point.h>
#include <velorim/machine_functions.h>
#include <velorim/memory.h>
#include <velorim/parallel.h>
#include <velorim/runtime.h>
#include <velorim/scalar_functions.h>
#include <velorim/status.h>
#include <velorim/thread.h>

#endif
