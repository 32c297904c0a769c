#include "FuzzTarget.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/URI.hpp>

#include <optional>

using namespace opc;
using namespace opc::fuzz;
using namespace opc::model;

namespace {

std::optional<URI> parse(const std::u16string& text) {
    try {
        return URI(text);
    } catch (const InvalidURI&) {
        return std::nullopt;
    }
}

/// Joins the components again, as RFC 3986 section 5.3 does.
std::u16string recompose(const URI& uri) {
    std::u16string text;
    if (uri.hasScheme())
        text += uri.getScheme() + u":";
    if (uri.isOpaque()) {
        text += uri.getSchemeSpecificPart();
    } else {
        std::u16string specific;
        if (uri.hasAuthority())
            specific += u"//" + uri.getAuthority();
        specific += uri.getPath();
        if (uri.hasQuery())
            specific += u"?" + uri.getQuery();
        requireEqual(specific, uri.getSchemeSpecificPart(),
                     "authority, path and query are the specific part");
        text += specific;
    }
    if (uri.hasFragment())
        text += u"#" + uri.getFragment();
    return text;
}

void checkURI(const URI& uri, const std::u16string& text) {
    requireEqual(uri.toString(), text, "a URI keeps its text");
    requireEqual(recompose(uri), text, "the components of a URI make up its text");
    require(uri == URI(toLowerASCIIString(text)), "a URI equals itself in lower case");
}

void checkRelationshipName(const PartName& name) {
    const std::u16string path = name.getURI().getPath();
    const std::u16string folder = path.substr(0, path.rfind(u'/'));
    const std::u16string source = name.getSourcePartName();
    require(!source.empty(), "a relationships part has a source");
    // More folders can follow "_rels"; then no source leads there.
    if (folder.size() < 6 || folder.compare(folder.size() - 6, 6, u"/_rels") != 0)
        return;
    try {
        requireEqual(PartName(source).getRelationshipPartName(), path,
                     "the source leads back to its relationships part");
    } catch (const InvalidPartName&) {
        // "/_rels/b..rels": no part can have these relationships.
    }
}

void checkPartName(const PartName& name, const std::u16string& text) {
    requireEqual(name.toString(), text, "a part name keeps its text");
    require(name == PartName(name.getURI()), "a part name is the same made from its URI");
    if (name.isRelationshipName()) {
        checkRelationshipName(name);
        return;
    }
    const PartName relationships(name.getRelationshipPartName());
    require(relationships.isRelationshipName(), "the name of a relationships part is known as one");
    const std::u16string source = relationships.getSourcePartName();
    requireEqual(source, name.getURI().getPath(), "a relationships part leads back to its source");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::u16string text = toText(Bytes(data, data + size));
    const std::optional<URI> uri = parse(text);
    if (uri)
        checkURI(*uri, text);
    require(parse(URI::encodeComponent(text, {})).has_value(), "an encoded component is a URI");
    try {
        const PartName name(text);
        require(uri.has_value(), "a part name is a URI");
        checkPartName(name, text);
    } catch (const InvalidURI&) {
        require(!uri, "a URI is no InvalidURI as a part name");
    } catch (const InvalidPartName&) {
        require(uri.has_value(), "what is no URI is InvalidURI as a part name");
    }
    return 0;
}
