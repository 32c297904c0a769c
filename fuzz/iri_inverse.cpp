#include "FuzzTarget.hpp"

#include <bedrock/network/IRI.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/URI.hpp>

#include <optional>

using namespace opc::fuzz;
using bedrock::network::IRI;
using opc::model::URI;

namespace {

std::optional<IRI> parse(const std::u16string& text) {
    try {
        return IRI(text);
    } catch (const bedrock::network::IRIException&) {
        return std::nullopt;
    }
}

void checkAscii(const IRI& iri) {
    const std::u16string ascii = iri.toAsciiString(false);
    requireEqual(IRI(ascii).toAsciiString(false), ascii, "what is in ASCII stays as it is");
    require(URI(ascii).isOpaque() == iri.isOpaque(), "encoding leaves the structure alone");
}

void checkIRIs(const IRI& base, const IRI& target) {
    const IRI resolved = target.resolveAgainst(base);
    const std::u16string reached = target.makeRelativeTo(base).resolveAgainst(base).toString();
    // Resolving against a relative base isn't final.
    if ((base.hasScheme() || base.hasAuthority() || base.hasAbsolutePath()) && reached != target.toString())
        requireEqual(reached, resolved.toString(), "what leads from a base to a target resolves to it");
    // An empty path means the base's own path with its dot segments (RFC 3986 section 5.2.2).
    if (base.hasScheme() && !target.getPath(bedrock::network::iri::Encoding::AsWritten).empty())
        requireEqual(resolved.resolveAgainst(base).toString(), resolved.toString(),
                     "what is resolved stays as it is");
}

void checkURIs(const URI& source, const URI& target, const IRI& plainTarget) {
    try {
        const URI relative = relativize(source, target);
        requireEqual(resolve(source, relative).toString(), plainTarget.toAsciiString(false),
                     "a target that was made relative resolves to itself without its dot segments");
    } catch (const opc::model::UnsupportedRelativize&) {
    }
}

} // namespace

/// The lines of the input: a base, and a target.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<Bytes> lines = split(data, size, '\n');
    lines.resize(2);
    const auto base = parse(toText(lines[0]));
    const auto target = parse(toText(lines[1]));
    if (!base || !target)
        return 0;
    checkAscii(*base);
    checkIRIs(*base, *target);
    checkURIs(URI(base->toAsciiString(false)), URI(target->toAsciiString(false)),
              target->resolveAgainst(*base));
    return 0;
}
