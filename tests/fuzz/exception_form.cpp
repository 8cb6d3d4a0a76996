#include <sstream>

#include "tests/fuzz/fuzz_units.h"

static std::string form_of(const exc::exc_base_t& failure) {
    std::ostringstream stream;
    failure.write(stream);
    return stream.str();
}

void fuzz::check_exception(const std::string& input) {
    exc::runtime_exc_t failure;
    const std::string empty = form_of(failure);
    std::istringstream stream(input);
    if (refuses([&] { failure.read(stream); })) {
        require(form_of(failure) == empty && *failure.what() == '\0', "a refused form changes nothing");
        return;
    }
    const std::string form = form_of(failure);
    require(form.size() == static_cast<std::size_t>(stream.tellg()), "is written again in the same length");
    for (std::size_t i = 0; i < form.size(); ++i) {
        require(form[i] == input[i] || (form[i] == 1 && input[i] != 0), "is written again, true flags as 1");
    }
}
