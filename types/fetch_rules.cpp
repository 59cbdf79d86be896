#include "types/fetch_rules.h"

sword zev::deliverNull(OCIError *errhp, sb2 *indicator, ub2 *returnCode) {
  if (returnCode) *returnCode = 1405;
  if (!indicator) return record(errhp, 1405, 1);
  *indicator = -1;
  return 0;
}
