#pragma once

#include <string>

#include "common/crash/failure.h"

namespace crash::win32 {

class dump_gen_base_t {
public:
    dump_gen_base_t() = default;
    virtual ~dump_gen_base_t() = default;
    dump_gen_base_t(const dump_gen_base_t&) = delete;
    dump_gen_base_t& operator=(const dump_gen_base_t&) = delete;

    // Writes one dump of the failure. The path is that of a dump in an existing folder, without what makes its name
    // unique and without its extension: the generator adds both. On failure no file stays behind and the cause is
    // raised as an exc exception.
    virtual void generate(const failure_t& failure, const std::wstring& path) = 0;
};

}  // namespace crash::win32
