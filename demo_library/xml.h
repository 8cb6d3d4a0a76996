// XML files. Values are kept in attributes, where blanks stay as they are.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include <tinyxml.h>

#include "demo_library/files.h"

namespace demo_library::xml {

// Hands the root element of the file to the reader; false when there is no such file. Raises failure_t with the path
// when the file is no XML, when its root has another name, or when the reader raises failure_t.
bool read(const std::wstring& path, const char* root_name, const std::function<void(const TiXmlElement&)>& reader);

// Raises failure_t like write_file.
void write(const std::wstring& path, const TiXmlDocument& document, readers_t readers);

// A new document: declaration, comment (left out when empty) and root element.
TiXmlElement& start(TiXmlDocument& document, const char* root_name, const char* comment = "");
TiXmlElement& add(TiXmlElement& parent, const char* name);

// Whether XML can hold the text: no control characters but tab and line ends, no half surrogate pairs.
bool can_hold(std::wstring_view text);

// Raises failure_t for a text that XML cannot hold.
void set(TiXmlElement& element, const char* name, std::wstring_view value);
void set(TiXmlElement& element, const char* name, double value);
void set(TiXmlElement& element, const char* name, std::int32_t value);

// Nothing when there is no such attribute.
std::optional<std::wstring> text(const TiXmlElement& element, const char* name);

// The fallback when there is no such attribute. Raise failure_t for a value that is no number.
std::int32_t number(const TiXmlElement& element, const char* name, std::int32_t fallback);
double real(const TiXmlElement& element, const char* name, double fallback);

}  // namespace demo_library::xml
