#include "checks/security/FormulaTokens.hpp"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>

namespace opc::inspection {

namespace {

struct Function {
    std::uint32_t number;
    std::string_view name;
};
constexpr Function REACHING_FUNCTIONS[] = {{110, "EXEC"},        {149, "REGISTER"},  {150, "CALL"},
                                           {267, "REGISTER.ID"}, {359, "HYPERLINK"}, {379, "RTD"}};

/// Tokens of a constant size, without their own byte. Those from 0x20 on come in three classes, which differ in two bits.
struct TokenSize {
    unsigned char first, last;
    std::size_t size;
};
constexpr TokenSize SIZES[] = {
    {0x01, 0x01, 4},                   // the formula of other cells
    {0x03, 0x16, 0},                   // operators, brackets, a missing argument
    {0x1C, 0x1D, 1},                   // an error, a truth value
    {0x1E, 0x1E, 2},                   // an integer
    {0x1F, 0x1F, 8},                   // a number
    {0x20, 0x20, 14},                  // an array
    {0x21, 0x21, 2},                   // a function
    {0x22, 0x22, 3},                   // a function with any number of arguments
    {0x23, 0x23, 4},                   // a name
    {0x24, 0x24, 6},                   // a cell
    {0x25, 0x25, 12},                  // an area
    {0x26, 0x28, 6},                   // areas in memory
    {0x29, 0x29, 2},  {0x2A, 0x2A, 6}, // places that are gone, or relative
    {0x2B, 0x2B, 12}, {0x2C, 0x2C, 6},  {0x2D, 0x2D, 12}, {0x39, 0x39, 6}, // a name of another workbook
    {0x3A, 0x3A, 8},                                                       // a cell of another sheet
    {0x3B, 0x3B, 14},                                                      // an area of another sheet
    {0x3C, 0x3C, 8},  {0x3D, 0x3D, 14},
};
constexpr unsigned TEXT = 0x17, EXTENDED = 0x18, ATTRIBUTE = 0x19, FUNCTION = 0x21, VARIADIC_FUNCTION = 0x22;

std::size_t numberAt(std::string_view bytes, std::size_t at) {
    return at + 1 < bytes.size() ? static_cast<unsigned char>(bytes[at]) |
                                       std::size_t{static_cast<unsigned char>(bytes[at + 1])} << 8U
                                 : 0;
}

/// @param rest  what stands behind the token's own byte
std::optional<std::size_t> sizeOfToken(unsigned token, std::string_view rest) {
    constexpr std::size_t LIST = 13;
    constexpr std::size_t PIVOT_NAME = 5;
    constexpr char CHOICE = 4;
    const char kind = rest.empty() ? '\0' : rest[0];
    if (token == TEXT)
        return 2 + 2 * numberAt(rest, 0);
    if (token == EXTENDED && (kind == 0x19 || kind == 0x1D))
        return kind == 0x19 ? LIST : PIVOT_NAME;
    if (token == ATTRIBUTE)
        return kind == CHOICE ? 5 + 2 * numberAt(rest, 1) : 3;
    for (const TokenSize& known : SIZES)
        if (token >= known.first && token <= known.last)
            return known.size;
    return std::nullopt;
}

std::string_view functionName(std::size_t number) {
    const auto* const found = std::find_if(std::begin(REACHING_FUNCTIONS), std::end(REACHING_FUNCTIONS),
                                           [number](const Function& one) { return one.number == number; });
    return found == std::end(REACHING_FUNCTIONS) ? std::string_view() : found->name;
}

} // namespace

std::set<std::string_view> reachingFunctionsOfTokens(std::string_view tokens) {
    std::set<std::string_view> functions;
    while (!tokens.empty()) {
        const unsigned own = static_cast<unsigned char>(tokens[0]);
        const unsigned token = own < 0x20 ? own : (own & 0x1FU) | 0x20U;
        tokens.remove_prefix(1);
        const std::optional<std::size_t> size = sizeOfToken(token, tokens);
        if (!size || *size > tokens.size())
            break;
        const std::string_view name = token == FUNCTION            ? functionName(numberAt(tokens, 0))
                                      : token == VARIADIC_FUNCTION ? functionName(numberAt(tokens, 1))
                                                                   : std::string_view();
        if (!name.empty())
            functions.insert(name);
        tokens.remove_prefix(*size);
    }
    return functions;
}

} // namespace opc::inspection
