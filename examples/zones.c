/*
 * zones: the system's time zone tables in a database: loads zone1970.tab and iso3166.tab
 * through bound inserts, asks three questions of them by array fetch and by prefetch,
 * prints the answers and drops its tables.
 *
 * usage: zones [--zoneinfo DIRECTORY] [--country PREFIX] [--north DEGREES]
 *              [connect [user [password]]]
 *
 * The directory is /usr/share/zoneinfo unless given there or in ZONEINFO_DIR.
 */
#include "example.h"

#define COUNTRIES "zevoci_countries"
#define ZONES "zevoci_zones"
#define ZONE_COUNTRIES "zevoci_zone_countries"
#define BATCH 50 /* rows of an array fetch, and of a prefetch */
#define NULL_VALUE (-1)

struct options {
  const char *directory;
  const char *country; /* beginning of a country's name */
  double north;        /* degrees */
  struct target to;
};

/* One line of zone1970.tab, and the buffers from which it is inserted. */
struct zone {
  char codes[80]; /* comma-separated country codes */
  char coordinates[20];
  char name[40];
  char comments[100];
  sb2 comments_null;
  double latitude, longitude; /* degrees, north and east positive */
};

struct country {
  char code[3];
  char name[80];
};

/* What was read from the files, to be compared with what the server counts. */
struct counts {
  long countries, zones, uncommented, zone_countries;
};

/* ---- Input ---- */

static FILE *open_table(const char *directory, const char *name) {
  char path[1000];
  FILE *in;
  expect(snprintf(path, sizeof path, "%s/%s", directory, name) < (int)sizeof path,
         "a path of less than 1000 bytes");
  in = fopen(path, "r");
  if (!in) {
    perror(path);
    exit(EXIT_FAILURE);
  }
  return in;
}

/* Copies a field that must fit and must not be empty. */
static void take(char *to, size_t size, const char *field) {
  expect(field && *field, "no empty field but the comments");
  expect(strlen(field) < size, "fields that fit their buffers");
  strcpy(to, field);
}

/* Cuts a line at its tabs; gives the number of fields, -1 when there are more than max.
 */
static int split(char *line, char **fields, int max) {
  int n = 0;
  char *at = line;
  line[strcspn(line, "\n")] = '\0';
  while (n < max) {
    char *tab = strchr(at, '\t');
    fields[n++] = at;
    if (!tab) return n;
    *tab = '\0';
    at = tab + 1;
  }
  return -1;
}

/* The next line that is no comment, in fields; 0 at the end of the file. */
static int next_line(FILE *in, char *line, int size, char **fields, int max) {
  while (fgets(line, size, in)) {
    int n;
    expect(strchr(line, '\n') != NULL, "lines that fit their buffer");
    if (line[0] == '#') continue;
    n = split(line, fields, max);
    expect(n > 0, "no more fields than the table has columns");
    return n;
  }
  expect(!ferror(in), "a readable file");
  return 0;
}

/* "+DDMM", "+DDDMM" or either with seconds, in degrees; *end is what follows. */
static double degrees(const char *from, int degree_digits, const char **end) {
  const int sign = *from == '-' ? -1 : 1;
  const size_t short_form = (size_t)degree_digits + 2;
  size_t digits, i;
  int part[3] = {0, 0, 0};
  expect(*from == '+' || *from == '-', "coordinates with signs");
  digits = strspn(from + 1, "0123456789");
  expect(digits == short_form || digits == short_form + 2,
         "coordinates as +DDMM+DDDMM, with or without seconds");
  for (i = 0; i < digits; ++i) {
    const size_t which =
        i < (size_t)degree_digits ? 0 : 1 + (i - (size_t)degree_digits) / 2;
    part[which] = part[which] * 10 + (from[i + 1] - '0');
  }
  *end = from + 1 + digits;
  return sign * (part[0] + part[1] / 60.0 + part[2] / 3600.0);
}

static void read_zone(struct zone *z, char **field, int fields) {
  const char *rest;
  expect(fields == 3 || fields == 4, "three or four fields a zone");
  take(z->codes, sizeof z->codes, field[0]);
  take(z->coordinates, sizeof z->coordinates, field[1]);
  take(z->name, sizeof z->name, field[2]);
  z->comments_null = fields == 4 ? 0 : NULL_VALUE;
  if (fields == 4) take(z->comments, sizeof z->comments, field[3]);
  z->latitude = degrees(z->coordinates, 2, &rest);
  z->longitude = degrees(rest, 3, &rest);
  expect(*rest == '\0', "nothing after the longitude");
}

/* ---- Loading ---- */

static void drop_tables(struct session *s) {
  run(s, "DROP TABLE IF EXISTS " ZONE_COUNTRIES);
  run(s, "DROP TABLE IF EXISTS " ZONES);
  run(s, "DROP TABLE IF EXISTS " COUNTRIES);
}

static void create_tables(struct session *s) {
  run(s, "CREATE TABLE " COUNTRIES " (code text PRIMARY KEY, name text NOT NULL)");
  run(s, "CREATE TABLE " ZONES
         " (name text PRIMARY KEY, codes text NOT NULL, coordinates text NOT NULL,"
         " latitude double precision NOT NULL, longitude double precision NOT NULL,"
         " comments text)");
  run(s, "CREATE TABLE " ZONE_COUNTRIES " (zone text NOT NULL REFERENCES " ZONES
         ", code text NOT NULL REFERENCES " COUNTRIES ", PRIMARY KEY (zone, code))");
}

static void load_countries(struct session *s, const char *directory,
                           struct counts *read) {
  struct country c = {"", ""};
  char line[500], *field[2];
  FILE *in = open_table(directory, "iso3166.tab");
  OCIStmt *stmt =
      prepare(s, "INSERT INTO " COUNTRIES " (code, name) VALUES (:code, :name)");
  bind_name(s, stmt, ":code", c.code, sizeof c.code, SQLT_STR, NULL);
  bind_name(s, stmt, ":name", c.name, sizeof c.name, SQLT_STR, NULL);
  while (next_line(in, line, sizeof line, field, 2) == 2) {
    take(c.code, sizeof c.code, field[0]);
    take(c.name, sizeof c.name, field[1]);
    execute(s, stmt, 1, c.name);
    ++read->countries;
  }
  expect(feof(in), "two fields a country");
  finish(s, stmt);
  fclose(in);
}

/* The insert of zones, bound to the fields of *z. */
static OCIStmt *prepare_zone(struct session *s, struct zone *z) {
  OCIStmt *stmt =
      prepare(s, "INSERT INTO " ZONES
                 " (name, codes, coordinates, latitude, longitude, comments)"
                 " VALUES (:name, :codes, :coordinates, :latitude, :longitude,"
                 " :comments)");
  bind_name(s, stmt, ":name", z->name, sizeof z->name, SQLT_STR, NULL);
  bind_name(s, stmt, ":codes", z->codes, sizeof z->codes, SQLT_STR, NULL);
  bind_name(s, stmt, ":coordinates", z->coordinates, sizeof z->coordinates, SQLT_STR,
            NULL);
  bind_name(s, stmt, ":latitude", &z->latitude, sizeof z->latitude, SQLT_FLT, NULL);
  bind_name(s, stmt, ":longitude", &z->longitude, sizeof z->longitude, SQLT_FLT, NULL);
  bind_name(s, stmt, ":comments", z->comments, sizeof z->comments, SQLT_STR,
            &z->comments_null);
  return stmt;
}

/* One row for each of the zone's country codes; gives their number. */
static long insert_codes(struct session *s, OCIStmt *stmt, char *code, size_t size,
                         const char *codes) {
  long n = 0;
  while (*codes) {
    const size_t length = strcspn(codes, ",");
    expect(length > 0 && length < size, "country codes of two letters");
    memcpy(code, codes, length);
    code[length] = '\0';
    execute(s, stmt, 1, "inserting a country of a zone");
    codes += length + (codes[length] == ',');
    ++n;
  }
  return n;
}

static void load_zones(struct session *s, const char *directory, struct counts *read) {
  struct zone z = {"", "", "", "", 0, 0, 0};
  char line[500], *field[4], code[3] = "";
  int fields;
  FILE *in = open_table(directory, "zone1970.tab");
  OCIStmt *zones = prepare_zone(s, &z);
  OCIStmt *pairs =
      prepare(s, "INSERT INTO " ZONE_COUNTRIES " (zone, code) VALUES (:zone, :code)");
  bind_name(s, pairs, ":zone", z.name, sizeof z.name, SQLT_STR, NULL);
  bind_name(s, pairs, ":code", code, sizeof code, SQLT_STR, NULL);
  while ((fields = next_line(in, line, sizeof line, field, 4)) > 0) {
    read_zone(&z, field, fields);
    execute(s, zones, 1, z.name);
    read->zone_countries += insert_codes(s, pairs, code, sizeof code, z.codes);
    read->uncommented += z.comments_null == NULL_VALUE;
    ++read->zones;
  }
  finish(s, pairs);
  finish(s, zones);
  fclose(in);
}

/* ---- Checking ---- */

static long count(struct session *s, const char *sql) {
  sb8 n = -1;
  OCIStmt *stmt = prepare(s, sql);
  define(s, stmt, 1, &n, sizeof n, SQLT_INT, NULL, NULL, NULL);
  execute(s, stmt, 1, sql);
  finish(s, stmt);
  return (long)n;
}

static void check_counts(struct session *s, const struct counts *read) {
  printf("%ld countries, %ld zones (%ld without comments), %ld pairs\n", read->countries,
         read->zones, read->uncommented, read->zone_countries);
  expect(read->zones > 0 && read->uncommented > 0, "zones with and without comments");
  expect(count(s, "SELECT count(*) FROM " COUNTRIES) == read->countries, "all countries");
  expect(count(s, "SELECT count(*) FROM " ZONES) == read->zones, "all zones");
  expect(count(s, "SELECT count(*) FROM " ZONES " WHERE comments IS NULL") ==
             read->uncommented,
         "absent comments as NULL");
  expect(count(s, "SELECT count(*) FROM " ZONE_COUNTRIES) == read->zone_countries,
         "all pairs");
}

/* ---- Questions ---- */

/* Zones of the countries whose names begin so, by array fetch. */
static void zones_of_country(struct session *s, const char *beginning) {
  static char country[BATCH][80], zone[BATCH][40], comments[BATCH][100];
  static double latitude[BATCH], longitude[BATCH];
  static sb2 uncommented[BATCH];
  char pattern[90] = "";
  sword status;
  long total = 0;
  ub4 i, fetched;
  OCIStmt *stmt = prepare(s,
                          "SELECT c.name, z.name, z.latitude, z.longitude, z.comments"
                          " FROM " ZONES " z JOIN " ZONE_COUNTRIES
                          " p ON p.zone = z.name"
                          " JOIN " COUNTRIES
                          " c ON c.code = p.code"
                          " WHERE c.name LIKE :pattern ORDER BY c.name, z.name");

  expect(snprintf(pattern, sizeof pattern, "%s%%", beginning) < (int)sizeof pattern,
         "a short beginning of a country's name");
  bind_name(s, stmt, ":pattern", pattern, sizeof pattern, SQLT_STR, NULL);
  define(s, stmt, 1, country, sizeof country[0], SQLT_STR, NULL, NULL, NULL);
  define(s, stmt, 2, zone, sizeof zone[0], SQLT_STR, NULL, NULL, NULL);
  define(s, stmt, 3, latitude, sizeof latitude[0], SQLT_FLT, NULL, NULL, NULL);
  define(s, stmt, 4, longitude, sizeof longitude[0], SQLT_FLT, NULL, NULL, NULL);
  define(s, stmt, 5, comments, sizeof comments[0], SQLT_STR, uncommented, NULL, NULL);
  execute(s, stmt, 0, "opening the query");
  printf("\nZones of countries that begin with \"%s\"\n", beginning);
  do {
    status = OCIStmtFetch2(stmt, s->err, BATCH, OCI_FETCH_NEXT, 0, OCI_DEFAULT);
    if (status != OCI_NO_DATA) must(s->err, status, "fetching zones");
    fetched = statement_number(s, stmt, OCI_ATTR_ROWS_FETCHED);
    for (i = 0; i < fetched; ++i)
      printf("  %-16.16s %-32s %7.2f %8.2f  %s\n", country[i], zone[i], latitude[i],
             longitude[i], uncommented[i] == NULL_VALUE ? "-" : comments[i]);
    total += (long)fetched;
  } while (status != OCI_NO_DATA);
  printf("  %ld zones\n", total);
  finish(s, stmt);
}

/* The countries with at least so many zones, row by row out of one prefetched batch. */
static void zone_rich_countries(struct session *s, int least) {
  char name[80];
  sb8 zones = 0, last = -1;
  ub4 prefetch = BATCH;
  sword status;
  OCIStmt *stmt =
      prepare(s, "SELECT c.name, count(*) FROM " COUNTRIES " c JOIN " ZONE_COUNTRIES
                 " p ON p.code = c.code GROUP BY c.name"
                 " HAVING count(*) >= :least ORDER BY 2 DESC, 1");

  bind_name(s, stmt, ":least", &least, sizeof least, SQLT_INT, NULL);
  must(s->err,
       OCIAttrSet(stmt, OCI_HTYPE_STMT, &prefetch, sizeof prefetch,
                  OCI_ATTR_PREFETCH_ROWS, s->err),
       "prefetch");
  define(s, stmt, 1, name, sizeof name, SQLT_STR, NULL, NULL, NULL);
  define(s, stmt, 2, &zones, sizeof zones, SQLT_INT, NULL, NULL, NULL);
  execute(s, stmt, 0, "opening the query");
  printf("\nCountries with %d zones or more\n", least);
  while ((status = OCIStmtFetch2(stmt, s->err, 1, OCI_FETCH_NEXT, 0, OCI_DEFAULT)) !=
         OCI_NO_DATA) {
    must(s->err, status, "fetching countries");
    expect(zones >= least && (last < 0 || zones <= last),
           "countries in descending order");
    last = zones;
    printf("  %-32s %3ld\n", name, (long)zones);
  }
  finish(s, stmt);
}

/* The zones north of a latitude, the northernmost first; all of them in one call. */
static void northern_zones(struct session *s, double north) {
  static char zone[BATCH][40];
  static double latitude[BATCH];
  sword status;
  ub4 i, fetched;
  OCIStmt *stmt = prepare(s, "SELECT name, latitude FROM " ZONES
                             " WHERE latitude > :north ORDER BY latitude DESC, name");

  bind_name(s, stmt, ":north", &north, sizeof north, SQLT_FLT, NULL);
  define(s, stmt, 1, zone, sizeof zone[0], SQLT_STR, NULL, NULL, NULL);
  define(s, stmt, 2, latitude, sizeof latitude[0], SQLT_FLT, NULL, NULL, NULL);
  status = OCIStmtExecute(s->svc, stmt, s->err, BATCH, 0, NULL, NULL, OCI_DEFAULT);
  if (status != OCI_NO_DATA) must(s->err, status, "querying northern zones");
  fetched = statement_number(s, stmt, OCI_ATTR_ROWS_FETCHED);
  printf("\nZones north of %.1f degrees%s\n", north,
         status == OCI_NO_DATA ? "" : " (the first)");
  for (i = 0; i < fetched; ++i) {
    expect(latitude[i] > north, "only northern zones");
    printf("  %-32s %6.2f\n", zone[i], latitude[i]);
  }
  finish(s, stmt);
}

/* ---- Program ---- */

static struct options read_options(int argc, char **argv) {
  struct options o = {NULL, "Ar", 63.0, {NULL, NULL, NULL}};
  int i = 1;
  for (; i + 1 < argc && strncmp(argv[i], "--", 2) == 0; i += 2) {
    if (strcmp(argv[i], "--zoneinfo") == 0)
      o.directory = argv[i + 1];
    else if (strcmp(argv[i], "--country") == 0)
      o.country = argv[i + 1];
    else if (strcmp(argv[i], "--north") == 0)
      o.north = atof(argv[i + 1]);
    else
      break;
  }
  expect(i >= argc || strncmp(argv[i], "--", 2) != 0,
         "options zoneinfo, country and north");
  if (!o.directory) o.directory = getenv("ZONEINFO_DIR");
  if (!o.directory) o.directory = "/usr/share/zoneinfo";
  o.to = target_of(argc, argv, i);
  return o;
}

int main(int argc, char **argv) {
  const struct options o = read_options(argc, argv);
  struct counts read = {0, 0, 0, 0};
  struct session s = log_on(o.to);

  drop_tables(&s);
  create_tables(&s);
  load_countries(&s, o.directory, &read);
  load_zones(&s, o.directory, &read);
  must(s.err, OCITransCommit(s.svc, s.err, OCI_DEFAULT), "committing");
  check_counts(&s, &read);
  zones_of_country(&s, o.country);
  zone_rich_countries(&s, 8);
  northern_zones(&s, o.north);
  drop_tables(&s);
  log_off(&s);
  puts("\nzones: all as expected");
  return EXIT_SUCCESS;
}
