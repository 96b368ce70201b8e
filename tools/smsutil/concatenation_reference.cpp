#include "concatenation_reference.hpp"

#include <chrono>
#include <random>

namespace smsutil::cli {
namespace {

uint32_t random_start()
{
    try {
        return std::random_device{}();
    } catch (const std::exception &) {
        // No entropy source: the clock still differs from run to run.
        return static_cast<uint32_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    }
}

}  // namespace

uint8_t next_concatenation_reference()
{
    static uint32_t next = random_start();
    return static_cast<uint8_t>(next++);
}

}  // namespace smsutil::cli
