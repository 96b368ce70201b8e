// smsutil: decode modem PDUs, compose the PDUs of a text, show how a text
// is split.  Exit status: 0 ok, 1 a PDU or text failed, 2 usage error.
#include <iostream>

#include "run.hpp"

int main(int argc, char **argv) { return smsutil::cli::run(argc, argv, std::cin, std::cout, std::cerr); }
