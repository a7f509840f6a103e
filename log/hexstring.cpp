#include "log/hexstring.h"

template std::string to_hexstring<void*>(void*, bool, bool, bool);
