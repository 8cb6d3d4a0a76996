// The positional formatter behind every message and log text.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace exc {

// Replaces "%1", "%2", ... with the arguments, counted from 1. Reads the number as strtoul does in base 10, with
// leading spaces and a sign. A number without an argument is written back in decimal after its "%"; a "%" without a
// number stays. Never fails on a bad format.
std::string format_message(std::string_view format, const std::string& argument);
std::string format_message(std::string_view format, std::initializer_list<std::string_view> arguments);
std::string format_message(std::string_view format, const std::vector<std::string>& arguments);

}  // namespace exc
