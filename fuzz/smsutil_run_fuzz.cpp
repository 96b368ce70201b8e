// The tool's own handling of arguments, options, modem input and JSON
// documents: any command line and standard input end in a status, never
// in an abort.
#include "fuzz_input.hpp"
#include "smsutil_command_line.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    const int status = fuzzin::run_smsutil(data, size);
    FUZZ_CHECK(status >= -1 && status <= 2);
    return 0;
}
