// The C++ side of the record layout contract (the C side is c_abi_test.c).
#include <cstddef>

#include "abi_layout.h"
#include "smsutil/smsutil.h"

#define CHECK_SIZE(type, expected) static_assert(sizeof(type) == (expected), #type);
#define CHECK_OFFSET(type, field, expected) static_assert(offsetof(type, field) == (expected), #type "." #field);

SMSUTIL_ABI_CHECKS(CHECK_SIZE, CHECK_OFFSET)
