#pragma once

#include <opc/model/XmlEvents.hpp>

#include <functional>
#include <string>
#include <vector>

namespace opc::inspection {

/// Puts the codes of the fields of a Word document together. A code can be split over many runs, with other fields within.
class FieldCodes {
public:
    /// @param tell  gets each code, with the place where it begins
    using Tell = std::function<void(const std::string& code, const model::XmlPlace& place)>;
    explicit FieldCodes(Tell tell) : tell(std::move(tell)) {}

    void begin(const model::XmlPlace& place); ///< `w:fldChar` of type begin
    void separate();                          ///< the code ends, the result follows
    void end();
    void addText(std::u16string_view text); ///< of `w:instrText`
    void endDocument();                     ///< tells what was left open

private:
    struct Field {
        std::u16string code;
        model::XmlPlace place;
        bool isTold = false;
    };

    void beginDeep(const model::XmlPlace& place);
    Field& innermost();
    void tellOf(Field& field);

    const Tell tell;
    std::vector<Field> open;
    Field deep{}; // the innermost of those that are nested too deep: their codes are told one by one
    std::size_t deeper = 0; // how many these are
};

} // namespace opc::inspection
