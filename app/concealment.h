// The parser's complaints quote the command line, which may contain a password.
#pragma once

#include <string>

#include <boost/program_options.hpp>

namespace app {

// Returns the complaint with "***" in place of each word that was given to set-credentials, up to the next known
// option. It does not matter how set-credentials is spelled: abbreviated, ambiguous ("--set"), with one dash or a
// slash. Of any other word that begins with a dash the name is shown and the value after "=" is not ("--password=***").
std::string ConcealCredentials(std::string complaint, const boost::program_options::options_description& options,
                               int argc, const char* const* argv);

}  // namespace app
