#include "FuzzTarget.hpp"

#include "reason/Refusal.hpp"
#include "transform/RelationshipTransform.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/model/Errors.hpp>

#include <optional>

using namespace opc;
using namespace opc::fuzz;
using namespace opc::standard_signatures;

namespace {

std::optional<std::string> transform(const Bytes& bytes) {
    std::optional<std::string> text;
    ByteArrayInAdaptor stream(bytes);
    attempt<model::InvalidXMLDocument, Refusal>([&] {
        const RelationshipsDocument document = RelationshipsDocument::read(stream);
        RelationshipSelection selection;
        for (const RelationshipValues& one : document.relationships)
            selection.ids.insert(one.id);
        text = canonicalize(select(document, selection));
    });
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = transform(Bytes(data, data + size));
    if (text)
        require(transform(Bytes(text->begin(), text->end())) == text, "what was transformed stays as it is");
    return 0;
}
