// Where the library finds ICU when the command line was told nothing about it.
#pragma once

namespace velnls::tool {

// Where the environment does not name a place by BINPATHX, and the libraries that lead to ICU lie in the
// folder of this program: sets BINPATHX to the folder above, for the library to read, unless the system looks
// in the program's folder anyway. Call it before anything else.
void useOwnIcu();

} // namespace velnls::tool
