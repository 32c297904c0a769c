#include "xml/DocumentUnits.hpp"

#include <algorithm>

namespace opc::model {

DocumentUnits DocumentUnits::of(const unsigned char* bytes, std::size_t count) {
    if (count < 4)
        return {};
    const bool hasMark = (bytes[0] == 0xFE && bytes[1] == 0xFF) || (bytes[0] == 0xFF && bytes[1] == 0xFE);
    const auto zeros = std::count(bytes, bytes + 4, 0);
    const bool isUTF32 = zeros == 3 || (zeros == 2 && (bytes[0] == bytes[1] || bytes[2] == bytes[3]));
    return {isUTF32 ? 4U : hasMark || zeros > 0 ? 2U : 1U, bytes[0] == 0xFE || bytes[0] == 0};
}

} // namespace opc::model
