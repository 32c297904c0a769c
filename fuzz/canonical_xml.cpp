#include "FuzzTarget.hpp"

#include "canonical/CanonicalXml.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/model/Errors.hpp>

#include <optional>

using namespace opc;
using namespace opc::fuzz;
using namespace opc::standard_signatures;

namespace {

std::optional<XmlTree> read(const Bytes& bytes) {
    std::optional<XmlTree> tree;
    ByteArrayInAdaptor stream(bytes);
    attempt<model::InvalidXMLDocument>([&] { tree = XmlTree::read(stream); });
    return tree;
}

std::optional<std::string> write(const XmlTreeNode& element, const CanonicalForm& form) {
    std::optional<std::string> text;
    attempt<model::InvalidXMLDocument>([&] { text = canonicalize(element, form); }); // a relative namespace
    return text;
}

void check(const XmlTreeNode& element, const CanonicalForm& form) {
    const auto text = write(element, form);
    if (!text)
        return;
    const auto again = read(Bytes(text->begin(), text->end()));
    require(again.has_value(), "a canonical form is a document");
    require(write(again->root(), form) == text, "a canonical form is its own canonical form");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using Version = CanonicalForm::Version;
    const auto tree = read(Bytes(data, data + size));
    if (!tree)
        return 0;
    const XmlTreeNode* const inner = firstChildElement(tree->root());
    for (const Version version : {Version::Inclusive10, Version::Inclusive11, Version::Exclusive})
        for (const XmlTreeNode* const element : {&tree->root(), inner})
            if (element != nullptr)
                check(*element, {version, true, {}});
    return 0;
}
