#include <opc/inspection/ContentHash.hpp>

#include "comparison/PackageContents.hpp"
#include "digests/Sha256.hpp"
#include "format/ForeignFormats.hpp"
#include "subject/ItemsStream.hpp"
#include "subject/Names.hpp"
#include "text/CaselessText.hpp"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <unordered_set>

namespace opc::inspection {

namespace {

/// Begins the hashed text. Another definition of the hash has another number.
constexpr std::string_view VERSION = "opc content hash 1";

/// A text, and its length in front: whatever texts follow one another, no others make the same bytes.
void append(std::string& bytes, std::string_view text) {
    const std::uint64_t length = text.size();
    for (int shift = 56; shift >= 0; shift -= 8)
        bytes += static_cast<char>(length >> static_cast<unsigned>(shift) & 0xFFU);
    bytes.append(text);
}

std::string makeRecord(std::initializer_list<std::string_view> texts) {
    std::string record;
    for (const std::string_view text : texts)
        append(record, text);
    return record;
}

bool isTypeOfSignatures(const std::string& contentType) {
    return startsWith(contentType, "application/vnd.openxmlformats-package.digital-signature");
}

/// Those of the standard, and those that `DigitalSignatureManager` writes.
bool leadsToSignatures(const RelationshipView& entry) {
    constexpr std::string_view BASE = "http://schemas.openxmlformats.org/package/2006/relationships/";
    const std::string_view rest =
        std::string_view(entry.type).substr(std::min(BASE.size(), entry.type.size()));
    return startsWith(entry.type, BASE) &&
           (startsWith(rest, "digital-signature/") || startsWith(rest, "digitalsignature/"));
}

class Hasher {
public:
    Hasher(const Archive& archive, const HashOptions& options) : package(archive), options(options) {}

    ContentHash run() {
        for (const KeyedPart& part : package.parts())
            if (part.part->isRelationships())
                views.push_back(package.readRelationships(*part.part));
        for (const RelationshipsView& view : views)
            findIgnored(view);
        for (const RelationshipsView& view : views)
            addRelationships(view);
        for (const KeyedPart& part : package.parts())
            if (!part.part->isRelationships() && !isIgnored(*part.part))
                hash.parts.push_back({part.part->name, addPart(*part.part)});
        std::sort(records.begin(), records.end());
        std::string text = makeRecord({VERSION, namesOfIgnored()});
        for (const std::string& record : records)
            text += record;
        hash.sha256 = digest.of(text);
        return std::move(hash);
    }

private:
    static bool leadsToCoreProperties(const RelationshipsView& view, const RelationshipView& entry) {
        return view.source == "/" && entry.lastSegment() == "core-properties";
    }

    void findIgnored(const RelationshipsView& view) {
        for (const RelationshipView& entry : view.entries)
            if (options.ignoresCoreProperties && entry.part != nullptr && leadsToCoreProperties(view, entry))
                ignored.insert(entry.part);
    }

    bool isIgnored(const PartView& part) const {
        return ignored.count(&part) != 0 ||
               (options.ignoresSignatures && isTypeOfSignatures(part.contentType));
    }

    bool isIgnored(const RelationshipsView& view, const RelationshipView& entry) const {
        return (options.ignoresCoreProperties && leadsToCoreProperties(view, entry)) ||
               (options.ignoresSignatures && leadsToSignatures(entry));
    }

    void addRelationships(const RelationshipsView& view) {
        if (view.sourcePart != nullptr && isIgnored(*view.sourcePart))
            return;
        const std::string source = keyOfName(view.source);
        for (const RelationshipView& entry : view.entries) {
            if (isIgnored(view, entry))
                continue;
            const RelationshipKey key = keyOf(entry);
            const std::string_view id = options.ignoresRelationshipIds ? std::string_view() : entry.id;
            records.push_back(makeRecord({"relationship", source, id, key.type, key.mode, key.target}));
        }
        if (!isNothingElse(view))
            addPart(*view.part);
    }

    std::string addPart(const PartView& part) {
        std::string sha256 = digest.of(*openItems(package.archive(), part.items));
        records.push_back(makeRecord({"part", keyOfName(part.name), keyOfType(part.contentType), sha256}));
        return sha256;
    }

    std::string namesOfIgnored() const {
        std::string names;
        names += options.ignoresCoreProperties ? "core-properties," : "";
        names += options.ignoresRelationshipIds ? "rel-ids," : "";
        names += options.ignoresSignatures ? "signatures," : "";
        return names;
    }

    PackageContents package;
    const HashOptions options;
    Sha256 digest;
    std::vector<RelationshipsView> views;
    std::unordered_set<const PartView*> ignored;
    std::vector<std::string> records;
    ContentHash hash;
};

} // namespace

ContentHash hashContent(const Archive& archive, const HashOptions& options) {
    if (!archive.isZip())
        throwNoArchive(archive);
    return Hasher(archive, options).run();
}

} // namespace opc::inspection
