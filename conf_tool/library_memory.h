// Owners of what the configuration library allocated; each gives its memory back to the library exactly once.
#pragma once

#include <vector>

#include <boost/shared_ptr.hpp>

#include "conf_tool/configuration.h"
#include "conf_tool/function_table.h"

namespace conf_tool {

// A text that the library gave out, null for none.
class CLibraryText {
public:
    CLibraryText(LibraryText text, FreeStringFn free_string);

    // The text, valid while this object lives. A null one breaks the library's contract and raises
    // exc::runtime_exc_t "Configuration library returned no text".
    const wchar_t* Get() const;

    explicit operator bool() const { return owner_ != nullptr; }

private:
    boost::shared_ptr<wchar_t> owner_;
};

// An array of repository records that the library gave out.
class CLibraryRepositories {
public:
    CLibraryRepositories(LibraryRecords records, std::int32_t count, FreeRepositoriesFn free_repositories);

    // Raises exc::runtime_exc_t "Configuration library returned no repositories" for a null array with a count above
    // 0, "Configuration library returned an impossible number of repositories: [%1]" for a count above a million;
    // one below 0 counts as 0. A null record or a null text in one counts as empty.
    std::vector<RepositoryEntry> Copy() const;

private:
    boost::shared_ptr<plug_common::SRepositoryCType*> owner_;
    std::int32_t count_;
};

// The contiguous records that the library takes. The texts stay those of the entries, which must outlive them.
std::vector<plug_common::SRepositoryCType> ToLibraryRecords(const std::vector<RepositoryEntry>& entries);

}  // namespace conf_tool
