#include "demo_library/xml_depth.h"

#include <algorithm>
#include <string>

#include "demo_library/failure.h"

namespace demo_library::xml {
namespace {

constexpr int most_levels = 32;

[[noreturn]] void throw_at(std::string_view content, std::size_t position, const std::wstring& reason) {
    const auto line = 1 + std::count(content.begin(), content.begin() + static_cast<std::ptrdiff_t>(position), '\n');
    throw failure_t(reason + L" (line " + std::to_wstring(line) + L")");
}

// Up to and including the mark, or everything when there is none.
std::string_view through(std::string_view text, std::string_view mark) {
    const std::size_t found = text.find(mark);
    return found == std::string_view::npos ? text : text.substr(0, found + mark.size());
}

// The tag at the position. Quoted values may contain ">".
std::string_view tag_at(std::string_view content, std::size_t position) {
    char quote = '\0';
    for (std::size_t end = position + 1; end < content.size(); ++end) {
        const char c = content[end];
        if (c == '<') throw_at(content, end, L"there is a [<] within a tag");
        if (c == '>' && !quote) return content.substr(position, end + 1 - position);
        if (c == quote)
            quote = '\0';
        else if (!quote && (c == '"' || c == '\''))
            quote = c;
    }
    return content.substr(position);
}

int change_of_level(std::string_view tag) {
    if (tag.starts_with("</")) return -1;
    return tag.starts_with("<!") || tag.starts_with("<?") || tag.ends_with("/>") ? 0 : 1;
}

}  // namespace

void require_flat(std::string_view content) {
    int level = 0;
    std::size_t position = content.find('<');
    while (position != std::string_view::npos) {
        const std::string_view rest = content.substr(position);
        std::string_view markup;
        if (rest.starts_with("<!--")) {
            markup = through(rest.substr(4), "-->");
        } else if (rest.starts_with("<![CDATA[")) {
            markup = through(rest, "]]>");
        } else {
            markup = tag_at(content, position);
            level = std::max(0, level + change_of_level(markup));
            if (level > most_levels)
                throw_at(content, position,
                         L"its elements are nested more than " + std::to_wstring(most_levels) + L" levels deep");
        }
        position = content.find('<', static_cast<std::size_t>(markup.data() + markup.size() - content.data()));
    }
}

}  // namespace demo_library::xml
