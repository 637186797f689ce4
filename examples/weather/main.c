/* A host of VelorimRTL in plain C: reads a table of daily weather, runs machine functions over its columns
 * and tells which day is the first that has no logarithm. */
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <velorim/velorim.h>

#include "csv.h"
#include "derived.h"
#include "report.h"
#include "throughput.h"

enum { EXIT_USAGE = 2, MOST_REPEATS = 1000000 };

static const char usage[] =
    "usage: weather [--repeat N] FILE\n"
    "\n"
    "Runs machine functions over the columns of a table of daily weather and prints what came out.\n"
    "FILE is a CSV file with the columns date, precipitation, temp_max, temp_min, wind, weather,\n"
    "such as examples/data/seattle-weather.csv.\n"
    "\n"
    "  --repeat N   then run a set of functions N times over the columns blown up to 10 million elements\n"
    "               and print elements per second, on 1 thread and on all\n"
    "  --help       print this text\n"
    "\n"
    "Exit status: 0 done, 1 the file or a call failed, 2 wrong usage.\n";

typedef struct {
  const char* path;
  long repeat;
  int help;
} Options;

static int usage_error(const char* problem, const char* argument) {
  fprintf(stderr, "weather: %s%s\nTry 'weather --help'.\n", problem, argument);
  return EXIT_USAGE;
}

static int parse_repeat(const char* text, long* repeat) {
  char* end;
  errno = 0;
  *repeat = strtol(text, &end, 10);
  return errno == 0 && end != text && *end == '\0' && *repeat >= 1 && *repeat <= MOST_REPEATS;
}

static int parse_options(int count, char** arguments, Options* options) {
  for (int i = 1; i < count; i++) {
    const char* argument = arguments[i];
    if (strcmp(argument, "--help") == 0) {
      options->help = 1;
      return 0;
    }
    if (strcmp(argument, "--repeat") == 0) {
      if (++i == count) return usage_error("--repeat needs a number", "");
      if (!parse_repeat(arguments[i], &options->repeat))
        return usage_error("--repeat needs a whole number from 1 to 1000000, not ", arguments[i]);
    } else if (argument[0] == '-') {
      return usage_error("unknown option ", argument);
    } else if (options->path != NULL) {
      return usage_error("one file at a time; cannot take also ", argument);
    } else {
      options->path = argument;
    }
  }
  if (options->path == NULL) return usage_error("which file?", "");
  return 0;
}

int main(int count, char** arguments) {
  Options options = {NULL, 0, 0};
  WeatherTable table;
  int status = parse_options(count, arguments, &options);
  if (status != 0) return status;
  if (options.help) {
    fputs(usage, stdout);
    return 0;
  }

  status = weather_table_read(options.path, &table);
  if (status == 0) {
    VelorimRTL_initialize();
    status = report_weather(&table);
    if (status == 0) status = report_derived(&table);
    if (status == 0 && options.repeat > 0) status = measure_throughput(&table, options.repeat);
    DeinitializeRuntimeLibrary(1);
  }
  weather_table_free(&table);
  if (status == 0 && (fflush(stdout) != 0 || ferror(stdout))) {
    fprintf(stderr, "weather: standard output cannot be written: %s\n", strerror(errno));
    status = 1;
  }
  return status == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
