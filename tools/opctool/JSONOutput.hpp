#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace opctool {

/// Prints a JSON document piece by piece, because lists can be longer than memory should be.
class JSONOutput {
public:
    enum class Layout { Indented, OneLine };

    /// @param stream  must outlive this object
    explicit JSONOutput(std::ostream& stream, Layout layout = Layout::Indented)
        : stream(stream), layout(layout) {}

    /// Begins an array or object. In an object, everything that is begun or added needs a name.
    void beginArray(const std::string& name = {}) { begin(name, "[", ']'); }
    void beginObject(const std::string& name = {}) { begin(name, "{", '}'); }

    void add(const nlohmann::ordered_json& value, const std::string& name = {});

    /// What is begun or added next has this name if it isn't given another one.
    void nameNext(const std::string& name) { nextName = name; }

    /// Whether nothing has got that name yet.
    bool isNamePending() const { return !nextName.empty(); }

    /// Ends the array or object that was begun last.
    void end();

    /// How many arrays and objects have begun and not ended.
    std::size_t depth() const { return levels.size(); }

private:
    struct Level {
        char closing;
        bool isEmpty;
    };

    void begin(const std::string& name, const char* opening, char closing);
    void goToNext(const std::string& name);
    void indent();

    std::ostream& stream;
    const Layout layout;
    std::string nextName;
    std::vector<Level> levels;
};

} // namespace opctool
