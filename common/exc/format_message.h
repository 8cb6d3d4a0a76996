// The positional formatter behind every message and log text.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace exc {

// Replaces "%1", "%2", ... by the arguments, counted from 1. The number is read as strtoul does in base 10: leading
// blanks and a sign belong to it. A number without an argument is written back in decimal behind its "%"; a "%"
// without a number stands for itself. Never fails on a bad format.
std::string format_message(std::string_view format, const std::string& argument);
std::string format_message(std::string_view format, std::initializer_list<std::string_view> arguments);
std::string format_message(std::string_view format, const std::vector<std::string>& arguments);

}  // namespace exc
