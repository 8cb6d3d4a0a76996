// The parser's complaints repeat words of the command line; a password must not be among them.
#pragma once

#include <string>

#include <boost/program_options.hpp>

namespace app {

// The complaint with "***" in place of each word that was given to set-credentials, up to the next known option, and of
// each unknown option elsewhere beside set-credentials: a password that begins with a dash looks like one to the
// parser. Of any other unknown option the value behind "=" is concealed ("--password=***").
std::string ConcealCredentials(std::string complaint, const boost::program_options::options_description& options,
                               int argc, const char* const* argv);

}  // namespace app
