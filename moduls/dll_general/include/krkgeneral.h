// The whole library in one include.
#ifndef KRK_GENERAL_H
#define KRK_GENERAL_H

#include "kar3dbks.h"
#include "kar3dpoint.h"
#include "karalloc.h"
#include "karcomplex.h"
#include "kardpoint.h"
#include "karenum.h"
#include "karexport.h"
#include "karincidence.h"
#include "karintegral.h"
#include "karlist.h"
#include "karmem.h"
#include "karlisthead.h"
#include "karmatrix.h"
#include "karmemgb.h"
#include "karnumeric.h"
#include "karvarmem.h"
#include "karpoint.h"
#include "karrect.h"
#include "kartransformationinfo.h"
#include "karsolve.h"
#include "karsystem.h"
#include "karvector.h"
#include "tpair.h"
#include "karstdio.h"
#include "karstring.h"
#include "karstringlist.h"

#endif
