#include "support/PackageContent.hpp"

namespace opc::test {

const std::string USUAL_CONTENT_TYPES =
    R"(<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>)"
    R"(<Default Extension="xml" ContentType="application/xml"/>)";

Bytes toBytes(const std::string& text) {
    return Bytes(text.begin(), text.end());
}

std::string toText(const Bytes& bytes) {
    return std::string(bytes.begin(), bytes.end());
}

Bytes contentTypes(const std::string& entries) {
    return toBytes(R"(<?xml version="1.0" encoding="UTF-8"?>)"
                   R"(<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">)" +
                   entries + "</Types>");
}

Bytes relationships(const std::string& elements) {
    return toBytes(R"(<?xml version="1.0" encoding="UTF-8"?>)"
                   R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)" +
                   elements + "</Relationships>");
}

void fill(physical::MemoryPackage& store, const std::vector<std::u16string>& names) {
    store.setContentTypes(contentTypes(USUAL_CONTENT_TYPES));
    for (const std::u16string& name : names)
        store.setPart(name, {});
}

std::string readAll(const model::Part& part) {
    InputStream& stream = part.getInputStream();
    Bytes content;
    unsigned char block[4096];
    while (!stream.isDone()) {
        const auto got = stream.read(block, sizeof block);
        content.insert(content.end(), block, block + got);
    }
    return toText(content);
}

void writeAll(const model::Part& part, const std::string& content) {
    const Bytes bytes = toBytes(content);
    part.getOutputStream().write(bytes.data(), bytes.size());
}

} // namespace opc::test
