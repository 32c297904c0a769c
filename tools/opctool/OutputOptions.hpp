#pragma once

namespace CLI {
class App;
} // namespace CLI

namespace opctool {

/// What a command prints, and how.
struct OutputOptions {
    enum class Format { Text, JSON, Envelope, EnvelopeLine };

    int shape = 0; ///< of the JSON; 0 is text
    bool jsonLines = false;
    bool quiet = false;
    bool verbose = false;
    bool colored = false;       ///< standard output
    bool coloredErrors = false; ///< standard error

    bool hasEnvelope() const { return jsonLines || shape == 2; }

    Format format() const {
        if (jsonLines)
            return Format::EnvelopeLine;
        return shape == 2 ? Format::Envelope : shape == 1 ? Format::JSON : Format::Text;
    }
};

/// Declares --color, -q and -v.
void addOutputOptions(CLI::App& command, OutputOptions& options);

/// Declares --json and --jsonl.
void addJSONOptions(CLI::App& command, OutputOptions& options);

} // namespace opctool
