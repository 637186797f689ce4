#include "throughput.h"

#include <stdio.h>
#include <stdlib.h>
#include <time.h>

#include "tensors.h"

enum { ELEMENTS = 10000000, WORKS = 5, TEAMS = 2 };

typedef struct {
  int32_t function;
  int column;
  int32_t result_type;
  uint32_t flags;
} Work;

static const Work works[WORKS] = {
    {MachFunc_sqrt, PRECIPITATION, MTensorTypeReal, MACHFUNC_CHECK_FP},
    {MachFunc_log1p, PRECIPITATION, MTensorTypeReal, MACHFUNC_CHECK_FP},
    {MachFunc_exp, TEMP_MIN, MTensorTypeReal, MACHFUNC_CHECK_FP},
    {MachFunc_abs, TEMP_MIN, MTensorTypeReal, MACHFUNC_CHECK_FP},
    {MachFunc_round, TEMP_MAX, MTensorTypeInteger, MACHFUNC_CHECK_INTEGER},
};

static double seconds_now(void) {
  struct timespec now;
  if (timespec_get(&now, TIME_UTC) != TIME_UTC) return 0.0;
  return (double)now.tv_sec + 1e-9 * (double)now.tv_nsec;
}

/* Writes the column again and again until the tensor is full. */
static void fill_with_column(MTensor* tensor, const WeatherTable* table, int column) {
  mreal* data = (mreal*)tensor->data;
  for (size_t i = 0, day = 0; i < ELEMENTS; i++) {
    data[i] = table->values[column][day];
    if (++day == table->days) day = 0;
  }
}

/* Runs one work `repeat` times with the thread number as it is; the seconds of the fastest run. */
static int time_work(const Work* work, const MTensor* source, MTensor** result, long repeat, mint threads,
                     double* best) {
  *best = 0.0;
  for (long run = 0; run <= repeat; run++) { /* run 0 touches the pages of the result and does not count */
    fprintf(stderr, "\r%-8s on %lld thread%s, run %ld of %ld   ", function_name(work->function),
            (long long)threads, threads == 1 ? "" : "s", run, repeat);
    fflush(stderr);
    const double start = seconds_now();
    const int32_t status = Math_T_T(work->function, work->flags, source, work->result_type, result);
    const double seconds = seconds_now() - start;
    if (status != 0) {
      fprintf(stderr, "\nweather: %s of %s over %d elements gave status %d\n", function_name(work->function),
              weather_column_names[work->column], (int)ELEMENTS, (int)status);
      return 1;
    }
    if (run > 0 && (*best == 0.0 || seconds < *best)) *best = seconds;
  }
  return 0;
}

/* The same work on each team in turn. */
static int measure_work(const Work* work, const MTensor* source, const mint team[TEAMS], long repeat) {
  double seconds[TEAMS];
  MTensor* result = NULL;
  int status = 0;
  for (int i = 0; i < TEAMS && status == 0; i++) {
    setParallelThreadNumber(team[i]);
    status = time_work(work, source, &result, repeat, team[i], &seconds[i]);
  }
  MTensor_delete(result);
  if (status != 0) return 1;
  fprintf(stderr, "\r%*s\r", 60, "");
  if (seconds[0] <= 0.0 || seconds[1] <= 0.0) {
    fprintf(stderr, "weather: the clock stood still or went back during %s\n", function_name(work->function));
    return 1;
  }
  printf("%-10s%-15s%16.0f%16.0f%9.2f\n", function_name(work->function), weather_column_names[work->column],
         1e-6 * (double)ELEMENTS / seconds[0], 1e-6 * (double)ELEMENTS / seconds[1], seconds[0] / seconds[1]);
  fflush(stdout);
  return 0;
}

int measure_throughput(const WeatherTable* table, long repeat) {
  const mint all = getParallelThreadNumber();
  const mint team[TEAMS] = {1, all};
  const mint length = ELEMENTS;
  MTensor* source = MTensor_newAllocatedCommon(MTensorTypeReal, 1, &length, FailNull);
  int status = 0;
  if (source == NULL) {
    fprintf(stderr, "weather: no memory for %d elements\n", (int)ELEMENTS);
    return 1;
  }
  printf("\nMillion elements per second, %d elements, checks on, fastest of %ld run%s\n", (int)ELEMENTS,
         repeat, repeat == 1 ? "" : "s");
  printf("%-10s%-15s%16s%8lld %s%9s\n", "function", "column", "1 thread", (long long)all,
         all == 1 ? " thread" : "threads", "ratio");
  for (int i = 0; i < WORKS && status == 0; i++) {
    fill_with_column(source, table, works[i].column);
    status = measure_work(&works[i], source, team, repeat);
  }
  restoreParallelThreadNumber(all);
  MTensor_delete(source);
  return status;
}
