#include "comparison/XmlContent.hpp"

#include "subject/ItemsStream.hpp"

#include <array>
#include <string_view>

namespace opc::inspection {

bool beginsLikeXml(const Archive& archive, const std::vector<const ArchiveItem*>& items) {
    using namespace std::string_view_literals;
    std::array<unsigned char, 256> head{};
    std::size_t size = 0;
    const std::unique_ptr<InputStream> stream = openItems(archive, items);
    while (size < head.size() && !stream->isDone())
        size += static_cast<std::size_t>(stream->read(head.data() + size, head.size() - size));
    const std::string_view text(reinterpret_cast<const char*>(head.data()), size);
    const std::size_t begin = text.find_first_not_of("\xEF\xBB\xBF\xFE\xFF\0 \t\r\n"sv); // in UTF-16, too
    return begin != std::string_view::npos && text[begin] == '<';
}

} // namespace opc::inspection
