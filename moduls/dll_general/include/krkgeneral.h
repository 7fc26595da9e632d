// The whole library in one include.
#ifndef KRK_GENERAL_H
#define KRK_GENERAL_H

#include "karalloc.h"
#include "karcomplex.h"
#include "kardpoint.h"
#include "karenum.h"
#include "karexport.h"
#include "karincidence.h"
#include "karintegral.h"
#include "karlist.h"
#include "karmemgb.h"
#include "karnumeric.h"
#include "karpoint.h"
#include "karrect.h"
#include "karsolve.h"
#include "tpair.h"

#endif
