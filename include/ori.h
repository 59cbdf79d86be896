/*
 * ori.h: the object interface.
 *
 * Programs that work with objects include this header by name. What it is made of stands
 * in the headers below: references, pin and lock options in oro.h, types in ort.h, values
 * in orl.h.
 */
#ifndef ZEVOCI_ORI_H
#define ZEVOCI_ORI_H

#include "oratypes.h"
#include "orl.h"
#include "oro.h"
#include "ort.h"

#endif /* ZEVOCI_ORI_H */
