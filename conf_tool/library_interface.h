// The binary interface of the configuration library: its record and the signatures of its functions.
//
// Texts are UTF-16, null-terminated. Input texts belong to the caller and are valid only during the call. Texts and
// arrays that a function returns belong to the library; the caller returns them through FreeString and
// FreeRepositories.
//
// Every function except the three free functions returns a status, 0 for success. Its last argument is the place for an
// error text. The caller sets it to null before the call; if it is still null after a failure, there is no text.
#pragma once

#include <cstddef>
#include <cstdint>

namespace plug_common {

struct SRepositoryCType {
    const wchar_t* id;
    const wchar_t* name;
    double capacity;
    double free_space;
    std::int32_t encryptionEnabled;  // 1 when the repository encrypts, else 0
};

static_assert(sizeof(wchar_t) == 2);
static_assert(sizeof(SRepositoryCType) == 40);
static_assert(offsetof(SRepositoryCType, name) == 8);
static_assert(offsetof(SRepositoryCType, capacity) == 16);
static_assert(offsetof(SRepositoryCType, free_space) == 24);
static_assert(offsetof(SRepositoryCType, encryptionEnabled) == 32);

}  // namespace plug_common

namespace conf_tool {

using Status = std::int32_t;                             // 0 is success
using LibraryError = wchar_t*;                           // freed with FreeString
using LibraryText = wchar_t*;                            // freed with FreeString
using LibraryRecords = plug_common::SRepositoryCType**;  // array of pointers, freed with FreeRepositories

extern "C" {

// Domain first here, user name first in GetConfig.
using SetCredentialsFn = Status (*)(const wchar_t* domain, const wchar_t* user_name, const wchar_t* password,
                                    LibraryError* error);
using SetHostFn = Status (*)(const wchar_t* host, LibraryError* error);
using SetPortFn = Status (*)(std::int32_t port, LibraryError* error);
// One contiguous array here, an array of pointers in GetTBRRepositories.
using SetRepositoriesFn = Status (*)(const plug_common::SRepositoryCType* records, std::int32_t count,
                                     LibraryError* error);
using SetParallelismFn = Status (*)(std::int32_t parallelism, LibraryError* error);
using GetConfigFn = Status (*)(LibraryText* user_name, LibraryText* domain, LibraryText* password, LibraryText* host,
                               std::int32_t* port, std::int32_t* parallelism, LibraryRecords* records,
                               std::int32_t* count, LibraryError* error);
using GetTBRRepositoriesFn = Status (*)(LibraryRecords* records, std::int32_t* count, LibraryError* error);
using GetTextFn = Status (*)(LibraryText* text, LibraryError* error);  // GetParallelismRangeString, GetSummary
using GetResultFn = Status (*)(LibraryText* text, std::int32_t* code, LibraryError* error);
using MapBackupFn = Status (*)(std::int32_t* result_code, LibraryText* text, LibraryError* error);
using GetScopeEditionFn = Status (*)(std::int32_t* edition, LibraryError* error);  // 1: Oracle Standard Edition
using ExportFn = Status (*)(const wchar_t* path, LibraryError* error);
using PlainFn = Status (*)(LibraryError* error);  // InitializeWizard, Commit, Cancel, UninstallDirect

using FreeStringFn = void (*)(wchar_t* text);
using FreeRepositoriesFn = void (*)(LibraryRecords records, std::int32_t count);
using FreeArrayStringFn = void (*)();  // required, never called: fixed from outside

}  // extern "C"

}  // namespace conf_tool
