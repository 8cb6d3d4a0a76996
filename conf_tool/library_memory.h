// Owners of memory that the configuration library allocated. Each owner returns its memory to the library exactly once.
// Constructing one never fails, so nothing leaks when several are constructed one after another.
#pragma once

#include <memory>
#include <vector>

#include "conf_tool/configuration.h"
#include "conf_tool/function_table.h"

namespace conf_tool {

// A text that the library returned, or null if it returned none.
class CLibraryText {
public:
    CLibraryText(LibraryText text, FreeStringFn free_string) noexcept : owner_(text, free_string) {}

    // Returns the text, which is valid as long as this object exists. Throws exc::runtime_exc_t for a null text, which
    // breaks the library's contract.
    const wchar_t* Get() const;

    explicit operator bool() const { return owner_ != nullptr; }

private:
    std::unique_ptr<wchar_t, FreeStringFn> owner_;
};

// An array of repository records that the library returned. With an impossible count it is not given back: the library
// would walk through memory that is not there.
class CLibraryRepositories {
public:
    CLibraryRepositories(LibraryRecords records, std::int32_t count, FreeRepositoriesFn free_repositories) noexcept
        : records_(records), count_(count), free_repositories_(free_repositories) {}
    ~CLibraryRepositories();
    CLibraryRepositories(const CLibraryRepositories&) = delete;
    CLibraryRepositories& operator=(const CLibraryRepositories&) = delete;

    // Returns the number of records. Throws exc::runtime_exc_t for a null array with a count above 0, and for an
    // impossible count: a negative one, or one above a million.
    std::int32_t Count() const;

    // Returns a copy of a record; the index is less than Count(). A null record or a null text is returned as empty.
    RepositoryEntry Entry(std::int32_t index) const;

private:
    LibraryRecords records_;
    std::int32_t count_;
    FreeRepositoriesFn free_repositories_;
};

// Returns the entries as the array of records that the library takes. The records point to the texts of the entries,
// which must outlive them.
std::vector<plug_common::SRepositoryCType> ToLibraryRecords(const std::vector<RepositoryEntry>& entries);

}  // namespace conf_tool
