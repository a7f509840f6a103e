/// @file
/// How the library's C++ names are exported.
#pragma once

#include "include/qtr_orvex.h"

/// Marks an exported variable. Inside the library it binds to the library's own object, so that an
/// application's symbol of the same name cannot take its place; outside it is reached through the
/// global offset table, so that the linker never makes a second copy of it in the executable.
#if defined(QTR_ORVEX_BUILD)
#define ORVEX_API_DATA __attribute__((visibility("protected")))
#elif defined(__GNUC__) && !defined(__clang__) && __GNUC__ >= 12 && defined(__x86_64__)
#define ORVEX_API_DATA __attribute__((visibility("default"), nodirect_extern_access))
#else
#define ORVEX_API_DATA __attribute__((visibility("default")))
#endif

/// Marks a private member of an exported class that is not exported itself.
#define ORVEX_LOCAL __attribute__((visibility("hidden")))
