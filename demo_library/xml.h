// XML files. Values are stored in attributes, where spaces are kept.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include <tinyxml.h>

#include "demo_library/files.h"

namespace demo_library {

// Passes the root element of the file to the reader; returns false when there is no such file. Throws error_t with
// the path when the file is not XML or is nested too deeply, when its root has another name, or when the reader throws
// error_t.
bool read_xml_file(const std::wstring& path, const char* root_name,
                   const std::function<void(const TiXmlElement&)>& reader);

// Throws error_t like write_file().
void write_xml_file(const std::wstring& path, const TiXmlDocument& document, readers_t readers);

// Starts a document with a declaration, a comment (none when it is empty) and the root element, which is returned.
TiXmlElement& start_document(TiXmlDocument& document, const char* root_name, const char* comment = "");
TiXmlElement& add_element(TiXmlElement& parent, const char* name);

// Whether XML can hold the text: it allows no control characters except tab and line ends, and no half surrogate pairs.
bool xml_can_hold(std::wstring_view text);

// Throws error_t for a text that XML cannot hold.
void set_attribute(TiXmlElement& element, const char* name, std::wstring_view value);
void set_attribute(TiXmlElement& element, const char* name, double value);
void set_attribute(TiXmlElement& element, const char* name, std::int32_t value);

// Returns nothing when there is no such attribute.
std::optional<std::wstring> text_attribute(const TiXmlElement& element, const char* name);

// Returns the fallback when there is no such attribute. Throws error_t for a value that is not a number.
std::int32_t number_attribute(const TiXmlElement& element, const char* name, std::int32_t fallback);
double real_attribute(const TiXmlElement& element, const char* name, double fallback);

}  // namespace demo_library
