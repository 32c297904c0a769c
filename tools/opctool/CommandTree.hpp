#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace opctool {

struct Command;

/// An option or argument of a command, as help, man pages and completion tell it.
struct OptionText {
    std::vector<std::string> names; ///< "-r", "--recursive"; empty for an argument
    std::string value;              ///< the name of the argument, or of the option's value; empty for a flag
    std::vector<std::string> choices; ///< the values that it takes; empty if they are without number
    std::string initial;              ///< the value without the option; empty if it tells none
    std::string description;
    std::string group;
    bool isRequired = false;
    bool isRepeatable = false;
    bool isFlag = false;     ///< takes no value, or only one behind an equals sign
    bool takesFiles = false; ///< its values are paths

    bool isArgument() const { return names.empty(); }
};

/// What is declared on an application, in groups: first arguments, then options in the order of their groups.
std::vector<OptionText> optionsOf(const CLI::App& app);

/// Those of a command.
std::vector<OptionText> optionsOf(const Command& command);

/// `opctool ls [OPTIONS] [PACKAGE...]`
std::string synopsisOf(const Command& command, const std::vector<OptionText>& options);

} // namespace opctool
