// A way to write a dump of this process.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "common/logging/component.h"
#include "common/win32.h"

namespace crash {

// Of the crash.
struct cause_t {
    std::uint32_t code;  // becomes the exit status of the process
    std::uint32_t thread_id;
    EXCEPTION_POINTERS* pointers;  // valid until the process ends
};

namespace win32 {

class dump_gen_base_t {
public:
    // What the generator does is logged on the component, which must outlive it.
    explicit dump_gen_base_t(const logging::component_t& component) : component_(component) {}
    virtual ~dump_gen_base_t() = default;
    dump_gen_base_t(const dump_gen_base_t&) = delete;
    dump_gen_base_t& operator=(const dump_gen_base_t&) = delete;

    // Writes one dump of the crash into an existing folder. The generator completes the path: it appends what makes
    // the name unique, and the extension. On failure it leaves no file and throws an exc exception.
    virtual void generate(const cause_t& cause, const std::wstring& path) = 0;

    // Whether there is a dump. A generator that has crashed may leave one that ends early.
    bool has_dump() const noexcept { return has_dump_; }

protected:
    void log(std::string_view text) const noexcept { component_.info(text); }
    void set_has_dump(bool has_dump) noexcept { has_dump_ = has_dump; }

private:
    const logging::component_t& component_;
    bool has_dump_ = false;
};

}  // namespace win32
}  // namespace crash
