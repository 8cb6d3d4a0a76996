#include "tests/fuzz/fuzz_units.h"

#include <algorithm>

namespace fuzz {

const std::vector<unit_t>& units() {
    constexpr char exceptions[] =
        "\0\0\0\0~\1\0\0\0~\2\0\0\0~\xff\xff\xff\xff~\1\0\0\0\3\0\0\0why\1\x9\0\0\0\0\0\0\0~"
        "\2\0\0\0\0\0\0\0\0\1\0\0\0x\1\x9\0\0\0\2\0\0\0\1\0\0\0\0\0\0\0\3\0\0\0\1\0\0\0x";
    constexpr char settings[] =
        "<Config><PluginParameters ~logsDir='x' ~minPluginManagerPort='7001' ~/></Config>~<logsDir></logsDir>~"
        "<managerLockDir>~</managerLockDir>~<minPluginManagerPort>-1</minPluginManagerPort>~<~>~/>~='~'~&#x~&amp;~;~"
        "<!--~-->~<![CDATA[~]]>~<!~<?xml ~encoding='~UTF-8~?>~\xef\xbb\xbf~\xef\xbb\xbf<a>\xf0";
    static const std::vector<unit_t> all = {
        {"account", check_account, pieces("\\~/~@~CORP~oracle~CORP\\oracle", '~')},
        {"exception", check_exception, pieces({exceptions, sizeof exceptions - 1}, '~')},
        {"format", check_format, pieces("%~%1~%2~%3~% +1~%-~%0~%4294967296~%\t-4294967295~|", '~')},
        {"integer", check_integer, pieces("+~-~0~7~2147483647~2147483648~-2147483649~4294967297~ ", '~')},
        {"lines", check_lines, pieces("\n~\r\n~\r~|~4~3~prefix ~0123456789abcde~sixteen or more ", '~')},
        {"selection", check_selection, pieces(" ~1 ~ 2~3 ~+4 ~05 ~0 ~-1~  ~|~||6 rep.|~|SE|6 rep.|", '~')},
        {"settings", check_settings, pieces(settings, '~')},
    };
    return all;
}

std::vector<std::string> pieces(const std::string& text, char separator, std::size_t least) {
    std::vector<std::string> found(1);
    for (const char c : text) c == separator ? found.emplace_back() : found.back() += c;
    found.resize(std::max(found.size(), least));
    return found;
}

}  // namespace fuzz
