#pragma once

#include <nlohmann/json_fwd.hpp>

#include <ostream>
#include <string>
#include <vector>

namespace opctool {

/// Prints a JSON document piece by piece, because lists can be longer than memory should be.
class JSONOutput {
public:
    /// @param stream  must outlive this object
    explicit JSONOutput(std::ostream& stream) : stream(stream) {}

    /// Begins an array or object. In an object, everything that is begun or added needs a name.
    void beginArray(const std::string& name = {}) { begin(name, "[", ']'); }
    void beginObject(const std::string& name = {}) { begin(name, "{", '}'); }

    void add(const nlohmann::ordered_json& value, const std::string& name = {});

    /// Ends the array or object that was begun last.
    void end();

private:
    struct Level {
        char closing;
        bool isEmpty;
    };

    void begin(const std::string& name, const char* opening, char closing);
    void goToNext(const std::string& name);
    void indent();

    std::ostream& stream;
    std::vector<Level> levels;
};

} // namespace opctool
