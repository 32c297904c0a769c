#pragma once

namespace CLI {
class App;
}

namespace opctool {

constexpr int DONE = 0;
constexpr int ANSWER_IS_NO = 1;
constexpr int WRONG_USAGE = 2;
constexpr int FAILURE = 3;

/// A command of the tool. A command stands in a file of its own, or with others of its kind. To add one, define it as a
/// constant there, declare it in Commands.hpp, and put it into the list of Commands.cpp. Help, man page, completion,
/// suggestions and `schema` take it from that list.
struct Command {
    const char* name;
    const char* summary; ///< what it does, in one line without a full stop

    /// Declares arguments and options on an application of CLI11, and sets its callback. It is called only if the
    /// command line names this command, so that starting costs no more than one command.
    void (*declare)(CLI::App& command);

    const char* details = "";  ///< what else help says, in whole sentences; it is wrapped where it is printed
    const char* examples = ""; ///< command lines, one a line
    const char* statuses = ""; ///< its exit statuses, where 0 and 1 mean more than success and nothing

    /// The JSON Schema of `result` in shape 2 of the tool's JSON; null if the command prints none.
    const char* resultSchema = nullptr;
};

/// Raised by a command that ends with another exit status than 0. It has printed what there is to say.
struct EndsWith {
    int status;
};

} // namespace opctool
