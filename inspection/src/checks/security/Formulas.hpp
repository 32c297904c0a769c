#pragma once

#include <set>
#include <string>
#include <string_view>

namespace opc::inspection {

/// The functions of a formula that ask a server, start a program or call a library, in upper case: `WEBSERVICE`. What
/// stands in string literals doesn't count.
std::set<std::string_view> reachingFunctions(std::string_view formula);

/// Looks for such functions in the bytes of a sheet, to find out whether it is worth a parse. It never overlooks one.
class FormulaSearch {
public:
    void begin();
    void add(std::string_view piece);
    bool isFound() const { return found; }

private:
    void look(std::string_view text);

    std::string last; // the end of the last piece
    bool found = false;
};

} // namespace opc::inspection
