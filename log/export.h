/// @file
/// How the library's C++ names are exported.
#pragma once

#include "include/qtr_orvex.h"

// Exported variables are references. The library binds its own uses of all exported names to
// itself (-Bsymbolic), so that an application's symbol of the same name cannot take their place;
// and where the linker copies an exported variable into an executable, what it copies is the
// reference: there is still one object.

/// Marks a private member of an exported class that is not exported itself.
#define ORVEX_LOCAL __attribute__((visibility("hidden")))
