#include "ZipContent.hpp"

#include "Failure.hpp"
#include "Records.hpp"

#include <algorithm>
#include <cerrno>

namespace opc::physical::zip {

using interfaces::CompressionType;

class ZipContent::Input : public interfaces::IPhysicalInputStream {
public:
    explicit Input(const ZipContent& content) : content(content), reader(content.makeReader()) {}

    void open() override {
        reader = content.makeReader();
        isClosed = false;
    }

    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        if (isClosed)
            fail(content.itemPlace(), "the input stream has been closed", EBADF);
        if (!reader)
            return 0;
        const std::uint64_t got = reader->read(buffer, count);
        if (reader->isAtEnd())
            reader.reset();
        return got;
    }

    bool isDone() const override { return !reader || reader->isDone(); }

    void close() override {
        reader.reset();
        isClosed = true;
    }

private:
    const ZipContent& content;
    std::unique_ptr<ZipContentReader> reader; ///< null if closed, and at the end of a content that can't grow
    bool isClosed = false;
};

class ZipContent::Output : public interfaces::IPhysicalOutputStream {
public:
    explicit Output(const ZipContent& content) : content(content), spool(content.written()) {}

    std::uint64_t write(const unsigned char* buffer, std::uint64_t count) override {
        if (!spool)
            fail(content.itemPlace(), "the output stream has been closed", EBADF);
        if (spool != content.written())
            fail(content.itemPlace(), "the content has been replaced since this output stream was made",
                 EBADF);
        spool->write(buffer, static_cast<std::size_t>(count));
        return count;
    }

    bool isDone() const override { return false; }
    void flush() override {}
    void close() override { spool.reset(); }

private:
    const ZipContent& content;
    std::shared_ptr<Spool> spool;
};

ZipContent::ZipContent(ZipContext& context, ItemIndex item)
    : context(context), item(item), inputs(&context.streams) {
}

ZipContent::ZipContent(ZipContext& context, std::string contentName, std::vector<ItemIndex> pieces)
    : context(context), own(std::make_unique<const Own>(Own{std::move(contentName), std::move(pieces)})),
      inputs(&context.streams) {
}

ZipContent::~ZipContent() = default;

interfaces::IPhysicalInputStream* ZipContent::read() {
    if (!exists())
        fail(itemPlace(), "doesn't exist", ENOENT);
    return &inputs.emplace_front(*this);
}

interfaces::IPhysicalOutputStream* ZipContent::write() {
    if (context.readOnly)
        fail(itemPlace(), "the archive is opened to read", EACCES);
    const bool isFresh = spool && spool.use_count() == 1 && spool->size() == 0 && spool->isWhole();
    if (!isFresh)
        clear();
    return &outputs.emplace_front(*this);
}

void ZipContent::clear() {
    spool = std::make_shared<Spool>(context.spools);
    context.changed = true;
}

void ZipContent::setCompression(CompressionType type) {
    chosenMethod = type == CompressionType::None ? STORE : DEFLATE;
    switch (type) {
    case CompressionType::Maximum:
        deflateLevel = 9;
        break;
    case CompressionType::Fast:
        deflateLevel = 3;
        break;
    case CompressionType::SuperFast:
        deflateLevel = 1;
        break;
    default:
        deflateLevel = USUAL_LEVEL;
        break;
    }
}

std::unique_ptr<ZipContentReader> ZipContent::makeReader() const {
    if (spool)
        return std::make_unique<SpoolReader>(spool, *this);
    return std::make_unique<ItemReader>(*context.archive, oldItems());
}

std::uint64_t ZipContent::size() const {
    if (spool)
        return spool->size();
    std::uint64_t sum = 0; // within the limit for all items together
    for (const ItemIndex piece : oldItems())
        sum += context.archive->item(piece).size;
    return sum;
}

ItemRange ZipContent::oldItems() const {
    if (own)
        return {own->items.data(), own->items.data() + own->items.size()};
    return {&item, &item + 1};
}

std::uint16_t ZipContent::method() const {
    if (chosenMethod)
        return *chosenMethod;
    const ItemRange items = oldItems();
    const bool wasStored = items.size() > 0 && context.archive->item(*items.first).method == STORE;
    return wasStored ? STORE : DEFLATE;
}

std::string_view ZipContent::itemName() const {
    const ItemRange items = oldItems();
    return items.size() == 1 ? context.archive->item(*items.first).name : name();
}

std::string ZipContent::itemPlace() const {
    return zip::itemPlace(context.place, itemName());
}

std::u16string ZipPart::getName() const {
    std::u16string text(name.size() + 1, u'/');
    std::copy(name.begin(), name.end(), text.begin() + 1);
    return text;
}

} // namespace opc::physical::zip
