// XML files. Values are stored in attributes, where spaces are kept.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include <tinyxml.h>

#include "demo_library/files.h"

namespace demo_library::xml {

// Passes the root element of the file to the reader; returns false when there is no such file. Throws failure_t with
// the path when the file is not XML or is nested too deeply, when its root has another name, or when the reader throws
// failure_t.
bool read(const std::wstring& path, const char* root_name, const std::function<void(const TiXmlElement&)>& reader);

// Throws failure_t like write_file().
void write(const std::wstring& path, const TiXmlDocument& document, readers_t readers);

// Starts a document with a declaration, a comment (none when it is empty) and the root element, which is returned.
TiXmlElement& start(TiXmlDocument& document, const char* root_name, const char* comment = "");
TiXmlElement& add(TiXmlElement& parent, const char* name);

// Whether XML can hold the text: it allows no control characters except tab and line ends, and no half surrogate pairs.
bool can_hold(std::wstring_view text);

// Throws failure_t for a text that XML cannot hold.
void set(TiXmlElement& element, const char* name, std::wstring_view value);
void set(TiXmlElement& element, const char* name, double value);
void set(TiXmlElement& element, const char* name, std::int32_t value);

// Returns nothing when there is no such attribute.
std::optional<std::wstring> text(const TiXmlElement& element, const char* name);

// Returns the fallback when there is no such attribute. Throws failure_t for a value that is not a number.
std::int32_t number(const TiXmlElement& element, const char* name, std::int32_t fallback);
double real(const TiXmlElement& element, const char* name, double fallback);

}  // namespace demo_library::xml
