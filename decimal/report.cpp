#include <cstdio>
#include <cstdlib>

#include "decimal/engine.h"

namespace zev::decimal {

void failForMemory(const char *function) {
  char text[128];
  std::snprintf(text, sizeof text, "'%s', Out of memory", function);
  M_apm_log_error_msg(1, text);
  std::abort();
}

void warn(M_APM r, const char *text) {
  M_apm_log_error_msg(0, text);
  M_set_to_zero(r);
}

}  // namespace zev::decimal

void M_apm_log_error_msg(int fatal, const char *text) {
  std::fprintf(stderr, fatal ? "MAPM Error: %s\n" : "MAPM Warning: %s\n", text);
  if (fatal) std::exit(100);
}
