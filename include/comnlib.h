/*
 * comnlib: the common library of the database client toolkit.
 * Umbrella header: include this one; it pulls in every subsystem.
 */
#ifndef COMNLIB_H
#define COMNLIB_H

#include "comnlib/types.h"
#include "comnlib/context.h"
#include "comnlib/convert.h"
#include "comnlib/money.h"
#include "comnlib/numeric.h"
#include "comnlib/datetime.h"
#include "comnlib/intl.h"
#include "comnlib/msg.h"
#include "comnlib/async.h"
#include "comnlib/tds.h"

#endif
