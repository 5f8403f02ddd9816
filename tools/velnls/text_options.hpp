// The options and the help of the commands that order, match and change text.
#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace velnls::tool {

// After parsing, "run" is what one of these commands is to do, or empty when another command was given.
void addTextCommands(CLI::App &app, std::function<int()> &run);

} // namespace velnls::tool
