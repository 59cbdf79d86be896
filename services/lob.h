/// Large objects behind their locators.
#pragma once

#include <libpq-fe.h>

#include "zevoci/lob_locator.h"

extern "C" {
/// Opens a locator for reading and writing. 0, with `*wasOpen` telling whether it stood
/// open already; -1 with record 1733.
ZEV_HELPER sword OpenPGLob(PGconn *conn, OCIError *errhp, OCILobLocator *locator,
                           boolean *wasOpen);
/// The bytes of an open large object; its position is then at their end. -1 for a closed
/// locator, a failure, and a size that 32 bits cannot tell.
ZEV_HELPER sword GetPGLobSize(ub4 *size, PGconn *conn, OCILobLocator *locator);
}
