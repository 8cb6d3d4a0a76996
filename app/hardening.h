#pragma once

namespace app {

// Call it before anything is loaded or opened. Takes the current folder out of the search for libraries, and asks
// Windows not to follow junctions that somebody other than an administrator has made, where it can do that.
void HardenProcess() noexcept;

}  // namespace app
