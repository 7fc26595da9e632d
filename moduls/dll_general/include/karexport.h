/// \file
/// The mark of every exported declaration.

/// \def KAR_API
/// Stands in front of what the library exports: everything else is hidden in it.

#ifndef KAR_EXPORT_H
#define KAR_EXPORT_H

#if defined(_WIN32)
#if defined(KAR_BUILDING)
#define KAR_API __declspec(dllexport)
#else
#define KAR_API __declspec(dllimport)
#endif
#else
#define KAR_API __attribute__((visibility("default")))
#endif

#endif
