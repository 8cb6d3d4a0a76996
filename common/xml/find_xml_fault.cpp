#include "common/xml/find_xml_fault.h"

#include <algorithm>

namespace xml {
namespace {

// Moves past the next occurrence of the mark, or to the end.
void skip_past(std::string_view& rest, std::string_view mark) {
    rest.remove_prefix(std::min(rest.find(mark), rest.size()));
    rest.remove_prefix(std::min(mark.size(), rest.size()));
}

// Moves past the tag at the beginning, or to a "<" within it. A ">" in a quoted value does not end it. Returns how it
// changes the depth.
int skip_tag(std::string_view& rest) {
    const bool closes = rest.starts_with("</");
    const bool is_element = !rest.starts_with("<!") && !rest.starts_with("<?");
    char quote = '\0';
    char last = '\0';
    rest.remove_prefix(1);
    for (; !rest.empty() && rest[0] != '<' && (quote != '\0' || rest[0] != '>'); rest.remove_prefix(1)) {
        last = rest[0];
        if (quote == '\0' ? last == '"' || last == '\'' : last == quote) quote = quote == '\0' ? last : '\0';
    }
    if (closes) return -1;
    return is_element && last != '/' ? 1 : 0;
}

std::string fault_at(std::string_view content, std::string_view rest, const std::string& description) {
    const auto lines = std::count(content.begin(), content.end() - static_cast<std::ptrdiff_t>(rest.size()), '\n');
    return description + " (line " + std::to_string(lines + 1) + ").";
}

}  // namespace

std::string find_xml_fault(std::string_view content, int max_depth) {
    int depth = 0;
    for (std::string_view rest = content;;) {
        rest.remove_prefix(std::min(rest.find('<'), rest.size()));
        if (rest.empty()) return {};
        if (rest.starts_with("<!--")) {
            rest.remove_prefix(4);  // "<!-->" does not end it
            skip_past(rest, "-->");
        } else if (rest.starts_with("<![CDATA[")) {
            skip_past(rest, "]]>");
        } else {
            const bool is_declaration = rest.starts_with("<!");
            depth = std::max(depth + skip_tag(rest), 0);
            if (rest.starts_with('<')) {
                return fault_at(
                    content, rest,
                    is_declaration ? "A DOCTYPE with a \"<\" in it is not supported" : "There is a \"<\" within a tag");
            }
            if (depth > max_depth) {
                return fault_at(content, rest, "Elements are nested more than " + std::to_string(max_depth) + " deep");
            }
        }
    }
}

}  // namespace xml
