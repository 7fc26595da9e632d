// The whole library in one include.
#ifndef KRK_GENERAL_H
#define KRK_GENERAL_H

#include "kar3dbks.h"
#include "kar3dpoint.h"
#include "karalloc.h"
#include "karcolor.h"
#include "karcomplex.h"
#include "kardpoint.h"
#include "karenum.h"
#include "karexport.h"
#include "karincidence.h"
#include "karintegral.h"
#include "karlist.h"
#include "karlisthead.h"
#include "karmatrix.h"
#include "karmem.h"
#include "karmemgb.h"
#include "karnumeric.h"
#include "karparamblock.h"
#include "karpoint.h"
#include "karrect.h"
#include "karrectx.h"
#include "karsolve.h"
#include "karstring.h"
#include "kartransformationinfo.h"
#include "karvarmem.h"
#include "karvector.h"
#include "tpair.h"
#include "vcolor.h"

#endif
