// The whole library in one include.
#ifndef KRK_GENERAL_H
#define KRK_GENERAL_H

#include "karalloc.h"
#include "karenum.h"
#include "karexport.h"
#include "karlist.h"
#include "karlisthead.h"
#include "karmemgb.h"
#include "karnumeric.h"
#include "karstdio.h"
#include "karstring.h"
#include "karstringlist.h"

#endif
