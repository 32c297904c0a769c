#include "checks/signatures/SubjectPackage.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/InputStream.hpp>
#include <opc/core/Text.hpp>
#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>

#include <functional>

namespace opc::inspection {

using interfaces::IPhysicalInputStream;
using interfaces::IPhysicalOutputStream;
using interfaces::IPhysicalPart;

namespace {

[[noreturn]] void refuse() {
    throw Exception("The package is only inspected");
}

} // namespace

class SubjectPackage::Stream : public IPhysicalInputStream {
public:
    explicit Stream(std::function<std::unique_ptr<InputStream>()> open) : openContent(std::move(open)) {}

    void open() override { content = openContent(); }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        return opened().read(buffer, count);
    }
    bool isDone() const override { return content != nullptr && content->isDone(); }
    void close() override { content.reset(); }

private:
    InputStream& opened() {
        if (content == nullptr)
            open();
        return *content;
    }

    std::function<std::unique_ptr<InputStream>()> openContent;
    std::unique_ptr<InputStream> content;
};

class SubjectPackage::StoredPart : public IPhysicalPart {
public:
    StoredPart(const Subject& subject, const PartView& part)
        : part(part), stream([&subject, &part] { return subject.open(part); }) {}

    std::u16string getName() const override { return opc::toString(part.name, true); }
    std::u16string getContentType() const override { return opc::toString(part.contentType, true); }
    IPhysicalInputStream* getInputStream() override {
        stream.open();
        return &stream;
    }
    IPhysicalOutputStream* getOutputStream() override { refuse(); }

private:
    const PartView& part;
    Stream stream;
};

SubjectPackage::SubjectPackage(const Subject& subject) : subject(subject) {
    for (const PartView& part : subject.parts())
        parts.push_back(std::make_unique<StoredPart>(subject, part));
}

SubjectPackage::~SubjectPackage() = default;

IPhysicalInputStream* SubjectPackage::getContentTypeInputStream() {
    const ArchiveItem* const item = subject.contentTypesDocument().item;
    if (item == nullptr)
        throw Exception("The package has no content types");
    contentTypes = std::make_unique<Stream>([this, item] { return subject.archive().open(*item); });
    contentTypes->open();
    return contentTypes.get();
}

std::vector<IPhysicalPart*> SubjectPackage::getParts() {
    std::vector<IPhysicalPart*> all;
    for (const auto& part : parts)
        all.push_back(part.get());
    return all;
}

IPhysicalOutputStream* SubjectPackage::getContentTypeOutputStream() {
    refuse();
}

IPhysicalPart* SubjectPackage::createPart(const std::u16string&, const std::u16string&,
                                          const interfaces::IPhysicalPartInfo&) {
    refuse();
}

void SubjectPackage::deletePart(const std::u16string&) {
    refuse();
}

} // namespace opc::inspection
