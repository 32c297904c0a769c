#pragma once

#include <cstdint>
#include <iosfwd>
#include <string_view>

namespace opc::inspection {

/// Writes a JSON document on one line, piece by piece. Characters that nobody sees are escaped.
class JSONWriter {
public:
    /// @param output  must outlive this object
    explicit JSONWriter(std::ostream& output) : output(output) {}

    void beginObject() { begin('{'); }
    void endObject() { end('}'); }
    void beginArray() { begin('['); }
    void endArray() { end(']'); }

    /// The name of what comes next in an object.
    JSONWriter& name(std::string_view name);

    void text(std::string_view value);
    void textOrNull(std::string_view value);
    void number(std::uint64_t value);
    void numberOrNull(std::uint64_t value);
    void boolean(bool value);
    void null();

private:
    void begin(char bracket);
    void end(char bracket);
    void separate();

    std::ostream& output;
    bool isFirst = true; ///< in the array or object that was begun last
    bool isBehindName = false;
};

} // namespace opc::inspection
