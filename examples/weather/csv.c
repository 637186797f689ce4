#include "csv.h"

#include <ctype.h>
#include <errno.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

const char* const weather_column_names[NUMERIC_COLUMNS] = {"precipitation", "temp_max", "temp_min", "wind"};
const char* const weather_column_units[NUMERIC_COLUMNS] = {"mm", "deg C", "deg C", "m/s"};

enum { FIELDS = 6, LINE_BYTES = 256 };
static const char* const header_fields[FIELDS] = {"date",     "precipitation", "temp_max",
                                                  "temp_min", "wind",          "weather"};

/* Where the reader stands, for messages. */
typedef struct {
  const char* path;
  size_t line;
  char text[LINE_BYTES];
  char* fields[FIELDS];
} Reader;

static int malformed(const Reader* reader, const char* position, const char* expected, const char* found) {
  fprintf(stderr, "weather: %s:%zu:%zu: expected %s, found \"%s\"\n", reader->path, reader->line,
          (size_t)(position - reader->text) + 1, expected, found);
  return 1;
}

/* Cuts the line at its commas. The rest after the last field is an error, as is a missing field. */
static int split_line(Reader* reader) {
  char* field = reader->text;
  int count = 0;
  for (;;) {
    char* comma = strchr(field, ',');
    if (count == FIELDS) return malformed(reader, field - 1, "the end of the line after 6 fields", field - 1);
    reader->fields[count++] = field;
    if (comma == NULL) break;
    if (count < FIELDS) *comma = '\0';
    field = comma + 1;
  }
  if (count < FIELDS) {
    char expected[96];
    snprintf(expected, sizeof expected, "6 fields, the next being %s", header_fields[count]);
    return malformed(reader, field + strlen(field), expected, "end of line");
  }
  return 0;
}

/* Reads the next line without its end. Returns 1 if there is one, 0 at the end of the file, -1 after a
 * message. */
static int next_line(Reader* reader, FILE* file) {
  size_t length;
  errno = 0;
  if (fgets(reader->text, sizeof reader->text, file) == NULL) {
    if (!ferror(file)) return 0;
    fprintf(stderr, "weather: %s: cannot be read: %s\n", reader->path, strerror(errno));
    return -1;
  }
  reader->line++;
  length = strcspn(reader->text, "\r\n");
  if (length + 1 == sizeof reader->text) {
    fprintf(stderr, "weather: %s:%zu:%d: the line is longer than %d characters\n", reader->path, reader->line,
            LINE_BYTES, LINE_BYTES - 2);
    return -1;
  }
  reader->text[length] = '\0';
  return 1;
}

static int read_header(Reader* reader, FILE* file) {
  const int got = next_line(reader, file);
  if (got < 0) return 1;
  if (got == 0) {
    fprintf(stderr, "weather: %s:1:1: expected the header line, found an empty file\n", reader->path);
    return 1;
  }
  if (split_line(reader) != 0) return 1;
  for (int i = 0; i < FIELDS; i++) {
    if (strcmp(reader->fields[i], header_fields[i]) != 0) {
      char expected[64];
      snprintf(expected, sizeof expected, "the column name %s", header_fields[i]);
      return malformed(reader, reader->fields[i], expected, reader->fields[i]);
    }
  }
  return 0;
}

static int is_date(const char* text) {
  static const char shape[] = "dddd-dd-dd";
  if (strlen(text) != sizeof shape - 1) return 0;
  for (size_t i = 0; i < sizeof shape - 1; i++) {
    if (shape[i] == 'd' ? !isdigit((unsigned char)text[i]) : text[i] != '-') return 0;
  }
  return 1;
}

/* A decimal number that fills the field and is finite; strtod alone would take "nan", "0x10" and leading
 * spaces too. */
static int parse_number(const char* text, double* value) {
  char* end;
  if (*text == '\0' || strspn(text, "+-.0123456789eE") != strlen(text)) return 0;
  *value = strtod(text, &end);
  return *end == '\0' && isfinite(*value);
}

static void* resize(void* block, size_t bytes) {
  void* resized = realloc(block, bytes);
  if (resized == NULL) fprintf(stderr, "weather: no memory for the table\n");
  return resized;
}

static int reserve_day(WeatherTable* table) {
  if (table->days < table->capacity) return 0;
  const size_t capacity = table->capacity == 0 ? 512 : 2 * table->capacity;
  void* dates = resize(table->dates, capacity * sizeof *table->dates);
  if (dates == NULL) return 1;
  table->dates = (char(*)[11])dates;
  for (int i = 0; i < NUMERIC_COLUMNS; i++) {
    void* values = resize(table->values[i], capacity * sizeof *table->values[i]);
    if (values == NULL) return 1;
    table->values[i] = (double*)values;
  }
  table->capacity = capacity;
  return 0;
}

static int read_day(Reader* reader, WeatherTable* table) {
  if (split_line(reader) != 0) return 1;
  if (!is_date(reader->fields[0]))
    return malformed(reader, reader->fields[0], "a date YYYY-MM-DD", reader->fields[0]);
  if (reserve_day(table) != 0) return 1;
  memcpy(table->dates[table->days], reader->fields[0], sizeof table->dates[0]);
  for (int i = 0; i < NUMERIC_COLUMNS; i++) {
    const char* field = reader->fields[i + 1];
    if (!parse_number(field, &table->values[i][table->days])) {
      char expected[64];
      snprintf(expected, sizeof expected, "a number for %s", weather_column_names[i]);
      return malformed(reader, field, expected, field);
    }
  }
  table->days++;
  return 0;
}

int weather_table_read(const char* path, WeatherTable* table) {
  Reader reader;
  memset(&reader, 0, sizeof reader);
  memset(table, 0, sizeof *table);
  reader.path = path;

  FILE* file = fopen(path, "r");
  if (file == NULL) {
    fprintf(stderr, "weather: %s: cannot be opened: %s\n", path, strerror(errno));
    return 1;
  }
  int status = read_header(&reader, file);
  while (status == 0) {
    const int got = next_line(&reader, file);
    if (got == 0) break;
    status = got < 0 ? 1 : read_day(&reader, table);
  }
  fclose(file);
  if (status == 0 && table->days == 0) {
    fprintf(stderr, "weather: %s:2:1: expected a day, found the end of the file\n", path);
    status = 1;
  }
  return status;
}

void weather_table_free(WeatherTable* table) {
  free(table->dates);
  for (int i = 0; i < NUMERIC_COLUMNS; i++) free(table->values[i]);
  memset(table, 0, sizeof *table);
}
