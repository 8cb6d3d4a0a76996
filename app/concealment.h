// Keeps passwords out of the parser's complaints, which quote the command line.
#pragma once

#include <string>

namespace app {

// Returns the complaint with "***" in place of each word that was given to set-credentials. These words end at the next
// one that begins with two dashes and a letter: it is the name of an option, even if it is misspelt. set-credentials is
// recognised even if it is abbreviated, ambiguous ("--set"), or has one dash or a slash. A value after "=" is concealed
// in every word that begins with a dash ("--password=***").
std::string ConcealCredentials(std::string complaint, int argc, const char* const* argv);

}  // namespace app
