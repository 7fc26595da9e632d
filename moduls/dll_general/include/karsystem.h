/// \file
/// What system the library runs on, and the marker functions that do next to nothing.
#ifndef KAR_SYSTEM_H
#define KAR_SYSTEM_H

#include "karenum.h"
#include "karexport.h"

extern "C" {

/// \name System information
/// The first call of any of them asks the system, once; it isn't asked again even if it couldn't answer. Texts belong
/// to the library and stay valid while it is loaded. On Linux the kernel's release counts as the version, its third
/// number as the build number, and the type is 0.
/// \{

KAR_API int systemType();               ///< 1 "Win32s", 2 "Windows NT", 3 "Windows 95", 0 "UNKNOWN" and all others.
KAR_API const char *systemTypeString(); ///< \overload

/// 1 "3.1", 2 "3.5", 3 "3.51", 4 "4.0", 5 "4.01", 6 "5.4", 0 "UNKNOWN".
/// Note: the table has these versions alone, each with one packed form (major version in the high byte, minor in the
/// low one): 3.10, 3.50, 3.51, 4.0, 4.1, 5.64. A system of any other version, 4.10 or 5.0 say, is unknown.
KAR_API int systemVersion();
KAR_API const char *systemVersionString();    ///< \overload
KAR_API unsigned short systemVersionBinary(); ///< The packed form in the table, 0 for unknown; not that of the system.

KAR_API int systemBuilt();  ///< The build number as the system gave it, 0 if it couldn't answer.
KAR_API char *systemName(); ///< Note: always empty.
/// The name of the computer, up to 15 characters.
/// Note: empty for the types 0 and 1, where nobody asks for it, and for a longer name.
KAR_API char *nodeName();

/// \}

/// \name Markers
/// \{

KAR_API void globalBeep(); ///< Does nothing.
/// Marks a place whose work is not done, with its name, source path and line. Does nothing; the caller goes on.
KAR_API void _notready(const char *text, const char *file, int line);
KAR_API errorCodesKARTORY errornoMethod(int code); ///< `code` itself.

} // extern "C"

KAR_API errorCodesKARTORY errornoMethodExt(errorCodesKARTORY code, const char *file, int line); ///< `code` itself.
KAR_API int errornoMethodExt(int code, const char *file, int line);                             ///< \overload

/// \}

#endif
