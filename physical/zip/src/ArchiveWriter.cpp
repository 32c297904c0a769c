#include "ArchiveWriter.hpp"

#include "Failure.hpp"
#include "ZipContent.hpp"

#include <cerrno>
#include <iterator>
#include <utility>

namespace opc::physical::zip {

ArchiveWriter::ArchiveWriter(const ArchiveReader* old, ByteTarget& out, std::string where,
                             const ZipOptions& options)
    : old(old), items(old, out, std::move(where), options), changes(old ? old->itemCount() : 0) {
}

void ArchiveWriter::put(const ZipContent& content) {
    if (!content.written()->isWhole())
        fail(content.itemPlace(), "writing it has failed: it must be written again or deleted", EIO);
    const ItemRange pieces = content.oldItems();
    if (pieces.size() == 1) {
        changes[*pieces.first].content = &content;
        return;
    }
    for (const ItemIndex piece : pieces)
        remove(piece);
    added.push_back(&content);
}

void ArchiveWriter::putSecond(const ZipContent& content) {
    put(content);
    if (added.empty() || added.back() != &content)
        return;
    added.pop_back();
    second = &content;
}

void ArchiveWriter::writeSecond() {
    if (second && items.itemCount() > 0)
        write(*std::exchange(second, nullptr), {});
}

void ArchiveWriter::finish() {
    for (ItemIndex item = 0; item < changes.size(); ++item) {
        if (changes[item].removed)
            continue;
        if (changes[item].content)
            write(*changes[item].content, old->item(item).rawName);
        else
            items.keep(item);
        writeSecond();
    }
    if (second)
        added.insert(added.empty() ? added.end() : std::next(added.begin()), std::exchange(second, nullptr));
    for (const ZipContent* content : added)
        write(*content, {});
    items.finish();
}

void ArchiveWriter::write(const ZipContent& content, std::string_view rawName) {
    items.write({content.itemName(), rawName, *content.written(), content.method(), content.level()});
}

} // namespace opc::physical::zip
