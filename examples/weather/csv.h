/* Reads the daily weather table. */
#ifndef WEATHER_CSV_H
#define WEATHER_CSV_H

#include <stddef.h>

enum { PRECIPITATION, TEMP_MAX, TEMP_MIN, WIND, NUMERIC_COLUMNS };

typedef struct {
  size_t days;
  size_t capacity;
  char (*dates)[11]; /* "YYYY-MM-DD" */
  double* values[NUMERIC_COLUMNS];
} WeatherTable;

extern const char* const weather_column_names[NUMERIC_COLUMNS];
extern const char* const weather_column_units[NUMERIC_COLUMNS];

/* Reads the file into the table, which weather_table_free gives back in either case. Returns 0, or 1 after a
 * message on stderr that names the file and, for a malformed line, line and column (both from 1; a column is
 * a byte). */
int weather_table_read(const char* path, WeatherTable* table);
void weather_table_free(WeatherTable* table);

#endif
