/* Compiled as C99: every public header must be usable from C, and C must
 * see the same record layout as the C++ library. */
#include <stddef.h>
#include <stdio.h>
#include <string.h>

#include "abi_layout.h"
#include "smsutil/smsutil.h"

static int failures = 0;

#define CHECK_SIZE(type, expected)                                                                      \
    if (sizeof(type) != (expected)) {                                                                   \
        printf("sizeof(%s) is %u, expected %u\n", #type, (unsigned)sizeof(type), (unsigned)(expected)); \
        failures++;                                                                                     \
    }
#define CHECK_OFFSET(type, field, expected)                                                             \
    if (offsetof(type, field) != (expected)) {                                                          \
        printf("offsetof(%s, %s) is %u, expected %u\n", #type, #field, (unsigned)offsetof(type, field), \
               (unsigned)(expected));                                                                   \
        failures++;                                                                                     \
    }

int main(int argc, char **argv)
{
    const char *log_path = argc > 1 ? argv[1] : "c_abi_test.log";
    FILE *f;
    char line[64];

    SMSUTIL_ABI_CHECKS(CHECK_SIZE, CHECK_OFFSET)

    if (m_stConfiguration.dwStatusReport != 0 || m_szSCAddress[0] != '\0') {
        printf("compose globals are not zero at load\n");
        failures++;
    }

    remove(log_path);
    _smslog(log_path, 1, "c abi %d", 42);
    f = fopen(log_path, "r");
    if (f == NULL || fgets(line, sizeof line, f) == NULL || strcmp(line, "c abi 42\n") != 0) {
        printf("_smslog from C did not write the expected line\n");
        failures++;
    }
    if (f != NULL) fclose(f);
    remove(log_path);

    if (failures == 0) printf("c abi: all checks passed\n");
    return failures == 0 ? 0 : 1;
}
