#include "text_input.hpp"

#include <iostream>
#include <iterator>

#include "usage_error.hpp"

namespace smsutil::cli {

std::string text_from_argument(const std::string &argument, bool given)
{
    std::string text = argument;
    if (!given || argument == "-") {
        text.assign(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
        if (!text.empty() && text.back() == '\n') text.pop_back();
        if (!text.empty() && text.back() == '\r') text.pop_back();
    }
    if (text.find('\0') != std::string::npos) throw UsageError("the text holds a NUL character");
    return text;
}

}  // namespace smsutil::cli
