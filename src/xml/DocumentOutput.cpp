#include "xml/DocumentOutput.hpp"

#include <algorithm>

namespace opc::model {

void writeDocument(std::string_view document, OutputStream& stream) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(document.data());
    constexpr std::size_t PIECE = 65536;
    for (std::size_t begin = 0; begin < document.size() && !stream.isDone(); begin += PIECE)
        stream.write(bytes + begin, std::min(PIECE, document.size() - begin));
    stream.flush();
}

} // namespace opc::model
