#pragma once

#include <cstdint>
#include <string_view>

namespace crash {

// What an exit code of the recorder means; "unexpected exit code" for one that is not the recorder's own.
std::string_view recorder_exit_text(std::uint32_t code) noexcept;

}  // namespace crash
