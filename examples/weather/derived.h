/* What several columns give together: wind chill, degree-days, monthly means, and what conversions make of a column
 * that does not fit. */
#ifndef WEATHER_DERIVED_H
#define WEATHER_DERIVED_H

#include "csv.h"

/* Prints the second part of the report on stdout. Returns 0, or 1 after a message on stderr if a call of the library
 * failed in a way that the data cannot explain. A conversion that refuses a column is a result, not an error. */
int report_derived(const WeatherTable* table);

#endif
