// Keeps passwords out of the parser's complaints, which quote the command line.
#pragma once

#include <string>

#include <boost/program_options.hpp>

namespace app {

// Returns the complaint with "***" in place of each word that was given to set-credentials, up to the next known
// option. set-credentials is recognised even if it is abbreviated, ambiguous ("--set"), or has one dash or a slash. Any
// other word that begins with a dash and is no known option keeps its name but not its value ("--password=***").
std::string ConcealCredentials(std::string complaint, const boost::program_options::options_description& options,
                               int argc, const char* const* argv);

}  // namespace app
