// What must be checked before the XML parser gets a text: it calls itself for each element inside another, so deeply
// nested ones would exhaust the stack.
#pragma once

#include <string>
#include <string_view>

namespace text {

// Returns what is wrong, as an English sentence with the line, or an empty text. Wrong are elements that are nested
// deeper than the limit, and "<" within a tag: XML forbids it, and the parser takes it for text.
std::string find_xml_fault(std::string_view content, int deepest);

}  // namespace text
