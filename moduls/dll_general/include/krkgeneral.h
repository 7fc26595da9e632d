// The whole library in one include.
#ifndef KRK_GENERAL_H
#define KRK_GENERAL_H

#include "karalloc.h"
#include "karcolor.h"
#include "kardpoint.h"
#include "karenum.h"
#include "karexport.h"
#include "karlist.h"
#include "karmemgb.h"
#include "karnumeric.h"
#include "karparamblock.h"
#include "karpoint.h"
#include "karrect.h"
#include "karrectx.h"
#include "tpair.h"
#include "vcolor.h"

#endif
