#include "demo_library/xml.h"

#include <charconv>

#include "common/xml/find_xml_fault.h"
#include "demo_library/error.h"
#include "demo_library/text.h"

#include <windows.h>

namespace demo_library {
namespace {

[[noreturn]] void throw_file_error(const std::wstring& path, const std::wstring& reason) {
    throw error_t(L"The file " + path + L" cannot be used: " + reason);
}

void parse(TiXmlDocument& document, const std::string& content) {
    to_wide(content);  // throws for broken UTF-8, in which the parser would step over markup and over the end
    constexpr int max_depth = 32;
    const std::string fault = xml::find_xml_fault(content, max_depth);
    if (!fault.empty()) throw error_t(to_wide(fault));
    document.Parse(content.c_str(), nullptr, TIXML_ENCODING_UTF8);
    if (!document.Error()) return;
    throw error_t(to_wide(document.ErrorDesc()) + L" (line " + std::to_wstring(document.ErrorRow()) + L")");
}

bool is_xml_character(wchar_t c) {
    if (c < 0x20) return c == L'\t' || c == L'\n' || c == L'\r';
    return c < 0xFFFE && !IS_HIGH_SURROGATE(c) && !IS_LOW_SURROGATE(c);
}

template <class Number>
Number converted(const TiXmlElement& element, const char* name, Number fallback) {
    const char* value = element.Attribute(name);
    if (!value) return fallback;
    const std::string_view digits = value;
    Number result{};
    const auto [end, code] = std::from_chars(digits.data(), digits.data() + digits.size(), result);
    if (code == std::errc() && end == digits.data() + digits.size()) return result;
    throw error_t(L"the value [" + to_wide(digits) + L"] of " + to_wide(name) + L" is not a number (line " +
                  std::to_wstring(element.Row()) + L")");
}

}  // namespace

bool read_xml_file(const std::wstring& path, const char* root_name,
                   const std::function<void(const TiXmlElement&)>& reader) {
    const std::optional<std::string> content = read_file(path);
    if (!content) return false;
    try {
        TiXmlDocument document;
        parse(document, *content);
        const TiXmlElement* root = document.FirstChildElement(root_name);
        if (!root) throw error_t(L"there is no element " + to_wide(root_name));
        reader(*root);
    } catch (const error_t& failure) {
        throw_file_error(path, failure.text());
    }
    return true;
}

void write_xml_file(const std::wstring& path, const TiXmlDocument& document, readers_t readers) {
    TiXmlPrinter printer;
    printer.SetIndent("  ");
    printer.SetLineBreak("\r\n");
    document.Accept(&printer);
    write_file(path, printer.Str(), readers);
}

TiXmlElement& start_document(TiXmlDocument& document, const char* root_name, const char* comment) {
    document.LinkEndChild(new TiXmlDeclaration("1.0", "UTF-8", ""));
    if (*comment) document.LinkEndChild(new TiXmlComment(comment));
    return *document.LinkEndChild(new TiXmlElement(root_name))->ToElement();
}

TiXmlElement& add_element(TiXmlElement& parent, const char* name) {
    return *parent.LinkEndChild(new TiXmlElement(name))->ToElement();
}

bool xml_can_hold(std::wstring_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool is_pair = i + 1 < text.size() && IS_SURROGATE_PAIR(text[i], text[i + 1]);
        if (is_pair)
            ++i;
        else if (!is_xml_character(text[i]))
            return false;
    }
    return true;
}

void set_attribute(TiXmlElement& element, const char* name, std::wstring_view value) {
    if (!xml_can_hold(value))
        throw error_t(L"The value of " + to_wide(name) + L" contains a character that cannot be stored");
    element.SetAttribute(name, to_utf8(value));
}

void set_attribute(TiXmlElement& element, const char* name, double value) {
    char digits[32];
    char* const end = std::to_chars(std::begin(digits), std::end(digits), value).ptr;
    element.SetAttribute(name, std::string(digits, end));
}

void set_attribute(TiXmlElement& element, const char* name, std::int32_t value) { element.SetAttribute(name, value); }

std::optional<std::wstring> text_attribute(const TiXmlElement& element, const char* name) {
    const char* value = element.Attribute(name);
    if (!value) return std::nullopt;
    return to_wide(value);
}

std::int32_t number_attribute(const TiXmlElement& element, const char* name, std::int32_t fallback) {
    return converted(element, name, fallback);
}

double real_attribute(const TiXmlElement& element, const char* name, double fallback) {
    return converted(element, name, fallback);
}

}  // namespace demo_library
