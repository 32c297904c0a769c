#include "ZipContent.hpp"

#include "Failure.hpp"
#include "Records.hpp"
#include "ZipContentReader.hpp"

#include <cerrno>

namespace opc::physical::zip {

using interfaces::CompressionType;

namespace {

class ZipInputStream : public interfaces::IPhysicalInputStream {
public:
    explicit ZipInputStream(const ZipContent& source) : content(source), reader(source.makeReader()) {}

    void open() override { reader = content.makeReader(); }

    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        if (!reader)
            fail(content.itemPlace(), "the input stream has been closed", EBADF);
        return reader->read(buffer, count);
    }

    bool isDone() const override { return !reader || reader->isDone(); }
    void close() override { reader.reset(); }

private:
    const ZipContent& content;
    std::unique_ptr<ZipContentReader> reader;
};

class ZipOutputStream : public interfaces::IPhysicalOutputStream {
public:
    explicit ZipOutputStream(const ZipContent& target) : content(target), spool(target.written()) {}

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

} // namespace

interfaces::IPhysicalInputStream* ZipContent::read() {
    if (!exists())
        fail(itemPlace(), "doesn't exist", ENOENT);
    return inputs.emplace_back(std::make_unique<ZipInputStream>(*this)).get();
}

interfaces::IPhysicalOutputStream* ZipContent::write() {
    if (context.readOnly)
        fail(itemPlace(), "the archive is opened to read", EACCES);
    clear();
    return outputs.emplace_back(std::make_unique<ZipOutputStream>(*this)).get();
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
        deflateLevel = Deflater::USUAL_LEVEL;
        break;
    }
}

std::unique_ptr<ZipContentReader> ZipContent::makeReader() const {
    if (spool)
        return std::make_unique<SpoolReader>(spool, itemPlace());
    return std::make_unique<ItemReader>(*context.archive, items);
}

std::uint16_t ZipContent::method() const {
    if (chosenMethod)
        return *chosenMethod;
    return items.empty() ? DEFLATE : context.archive->item(items.front()).method;
}

std::string ZipContent::itemPlace() const {
    return zip::itemPlace(context.place, itemName());
}

std::string ZipContent::itemName() const {
    return items.size() == 1 ? context.archive->item(items.front()).name : newItemName;
}

} // namespace opc::physical::zip
