/* The main job: machine functions over the columns, and what became of the logarithm of the precipitation. */
#ifndef WEATHER_REPORT_H
#define WEATHER_REPORT_H

#include "csv.h"

/* Prints the report on stdout. Returns 0, or 1 after a message on stderr if a call of the library failed in a
 * way that the data cannot explain. A day that fails a check is a result, not an error. */
int report_weather(const WeatherTable* table);

#endif
