/* How many elements a second the machine functions take, on one thread and on all. */
#ifndef WEATHER_THROUGHPUT_H
#define WEATHER_THROUGHPUT_H

#include "csv.h"

/* Runs a set of functions `repeat` times over the columns, repeated to 10 million elements, with a progress
 * line on stderr, and prints elements per second. Returns 0, or 1 after a message on stderr. */
int measure_throughput(const WeatherTable* table, long repeat);

#endif
