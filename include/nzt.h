/*
 * nzt.h: wallets and certificates.
 *
 * Included by programs along with oci.h. No call of this library takes a wallet, so the
 * header brings the scalar types alone.
 */
#ifndef ZEVOCI_NZT_H
#define ZEVOCI_NZT_H

#include "oratypes.h"

#endif /* ZEVOCI_NZT_H */
