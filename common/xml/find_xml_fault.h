// What must be checked before the XML parser gets a text: it calls itself for each element inside another, so deeply
// nested ones would exhaust the stack.
#pragma once

#include <string>
#include <string_view>

namespace xml {

// Returns what is wrong, as an English sentence with the line, or an empty text: elements that are nested deeper than
// the limit, or a "<" within a tag. XML forbids it there except in a DOCTYPE, and the parser takes it for text, in a
// DOCTYPE, too.
std::string find_xml_fault(std::string_view content, int max_depth);

}  // namespace xml
