#include "content/PackageContents.hpp"

#include "content/ContentForm.hpp"
#include "content/ContentTypes.hpp"
#include "content/ControlSearch.hpp"
#include "content/NameSearch.hpp"
#include "core/CountedStream.hpp"
#include "crypto/Digest.hpp"
#include "crypto/Methods.hpp"
#include "names/PartNames.hpp"
#include "reason/Refusal.hpp"
#include "reason/Shortened.hpp"
#include "transform/RelationshipsNamespace.hpp"
#include "xml/Narrow.hpp"
#include "xml/PackageDocument.hpp"

#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PhysicalInputStream.hpp>

#include <algorithm>
#include <map>
#include <set>
#include <utility>
#include <variant>

namespace opc::standard_signatures {

namespace {

/// A content in which something is looked for while somebody reads it.
template <typename Search>
class SearchedContent final : public InputStream {
public:
    SearchedContent(std::unique_ptr<InputStream> content, Search& search)
        : content(std::move(content)), search(search) {
        search.begin();
    }

    void open() override {
        content->open();
        search.begin();
    }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        const std::uint64_t got = content->read(buffer, count);
        search.look(buffer, static_cast<std::size_t>(got));
        return got;
    }
    bool isDone() const override { return content->isDone(); }
    void close() override { content->close(); }

private:
    const std::unique_ptr<InputStream> content;
    Search& search;
};

/// Does something once, and remembers how it failed.
template <typename Value>
using Outcome = std::variant<Value, Reason>;

template <typename Value>
const Value& valueOf(const Outcome<Value>& outcome) {
    if (const auto* const reason = std::get_if<Reason>(&outcome))
        throw Refusal(*reason);
    return std::get<Value>(outcome);
}

Reason at(const StoredPart& part, Reason reason) {
    reason.place = part.name;
    return reason;
}

std::string failureText(const Exception& failure) {
    const std::string details = failure.details();
    constexpr std::size_t LONGEST = 1000;
    return shortened(details.empty() ? failure.what() : failure.what() + (" (" + details + ")"), LONGEST);
}

} // namespace

struct PackageContents::Known {
    /// @throws Refusal  the package has too many of them
    RelationshipsDocument readRelationships(InputStream& stream) {
        constexpr std::uint64_t FOR_EACH = 200; // bytes that a relationship costs beside its text
        requireRoomForRelationships();
        CountedStream counted(stream);
        RelationshipsDocument document;
        try {
            document =
                RelationshipsDocument::read(counted, std::min(roomForDocuments, PackageDocument::MOST_BYTES));
        } catch (const Exception&) {
            spend(roomForDocuments, counted.count());
            throw;
        }
        spend(roomForDocuments, counted.count());
        for (const RelationshipValues& one : document.relationships)
            spend(roomForRelationships, one.id.size() + one.type.size() + one.target.size() + FOR_EACH);
        requireRoomForRelationships();
        return document;
    }

    static void spend(std::uint64_t& room, std::uint64_t amount) { room -= std::min(room, amount); }

    void requireRoomForRelationships() const {
        if (roomForDocuments == 0 || roomForRelationships == 0)
            throw Refusal(Reason::Code::BeyondLimit, "", "The package has too many relationships");
    }

    std::uint64_t roomForDocuments = 64U << 20;     ///< bytes of all relationships parts
    std::uint64_t roomForRelationships = 96U << 20; ///< bytes of what is read from them
    std::optional<NameSearch> search;
    std::map<const StoredPart*, std::size_t> searched; ///< parts, by their place in the search
    std::optional<ControlSearch> controlSearch;
    std::set<const StoredPart*> withoutControls;
    Digester digester;
    std::map<const StoredPart*, Outcome<RelationshipsDocument>> relationships;
    std::map<std::pair<const StoredPart*, const DigestMethod*>, Outcome<std::vector<unsigned char>>> digests;
    std::map<const StoredPart*, std::optional<Reason>> readings;
};

PackageContents::PackageContents(interfaces::IPhysicalPackage& store)
    : store(store), known(std::make_unique<Known>()) {
    static_cast<void>(misnamedItems()); // which compares what a slow store has put off
    ignored = store.getIgnoredItems();
    const auto& parts = store.getParts();
    all.reserve(parts.size());
    byKey.reserve(parts.size());
    for (interfaces::IPhysicalPart* const physical : parts) {
        StoredPart& part = all.emplace_back();
        part.physical = physical;
        part.name = decodePartName(narrow(physical->getName()));
        part.key = partKeyOf(part.name);
        std::string source;
        if (isRelationshipsName(part.name, source))
            part.source = std::move(source);
        const auto [twin, isNew] = byKey.emplace(part.key, all.size() - 1);
        part.isAmbiguous = !isNew;
        if (!isNew)
            all[twin->second].isAmbiguous = true;
    }
    readContentTypes();
}

PackageContents::~PackageContents() = default;

std::vector<interfaces::MisnamedItem> PackageContents::misnamedItems() const {
    return store.getMisnamedItems();
}

void PackageContents::readContentTypes() {
    if (!store.usesContentTypeStream()) {
        for (StoredPart& part : all)
            part.contentType = narrow(part.physical->getContentType());
        return;
    }
    try {
        model::PhysicalInputStream stream(store.getContentTypeInputStream());
        ContentTypes types = ContentTypes::read(stream);
        for (StoredPart& part : all)
            if (const std::string* const type = types.find(part.name, part.key, part.hasOwnContentType))
                part.contentType = *type;
        unusedTypes = types.unused();
        if (const std::string* const name = types.findOddName())
            typesFailure = {Reason::Code::ContentTypeChanged, "[Content_Types].xml",
                            "\"" + shortened(*name, 200) + "\" isn't the name or extension of a part"};
    } catch (const Refusal& refusal) {
        typesFailure = refusal.reason();
    } catch (const Exception& failure) {
        typesFailure = {Reason::Code::PartUnreadable, "[Content_Types].xml", failureText(failure)};
    }
}

const StoredPart* PackageContents::find(std::string_view name) const {
    const auto found = byKey.find(isPartKey(name) ? name : partKeyOf(name));
    return found == byKey.end() ? nullptr : &all[found->second];
}

std::unique_ptr<InputStream> PackageContents::open(const StoredPart& part) const {
    return std::make_unique<model::PhysicalInputStream>(part.physical->getInputStream());
}

const RelationshipsDocument& PackageContents::relationships(const StoredPart& part) {
    const auto found = known->relationships.find(&part);
    if (found != known->relationships.end())
        return valueOf(found->second);
    Outcome<RelationshipsDocument> outcome;
    try {
        outcome = known->readRelationships(*open(part));
    } catch (const Refusal& refusal) {
        outcome = at(part, refusal.reason());
    } catch (const model::InvalidXMLDocument& failure) {
        outcome = Reason{Reason::Code::RelationshipsRefused, part.name, failureText(failure)};
    } catch (const Exception& failure) {
        outcome = Reason{Reason::Code::PartUnreadable, part.name, failureText(failure)};
    }
    return valueOf(known->relationships.emplace(&part, std::move(outcome)).first->second);
}

const Reason* PackageContents::whyUnfit(const StoredPart& part, const ContentForm& form) {
    const auto [found, isNew] = known->readings.try_emplace(&part);
    std::optional<Reason>& failure = found->second;
    if (isNew) {
        try {
            if (const char* const defect = form.defectIn(*open(part)))
                failure = Reason{Reason::Code::PartUnreadable, part.name,
                                 std::string("its content isn't signed, and ") + defect};
        } catch (const Exception& e) {
            failure = Reason{Reason::Code::PartUnreadable, part.name,
                             "its content can't be read: " + failureText(e)};
        }
    }
    return failure ? &*failure : nullptr;
}

void PackageContents::noteFit(const StoredPart& part) {
    known->readings.try_emplace(&part);
}

std::vector<std::string> PackageContents::whyAmbiguous(const StoredPart& part) const {
    std::vector<std::string> reasons;
    if (part.isAmbiguous)
        reasons.emplace_back("there is more than one part with this name");
    if (!part.contentType)
        reasons.emplace_back("it has no content type for its name as it is written");
    if (marksOtherFormat(part.key))
        reasons.emplace_back("programs take the package for one of another format by it");
    if (const auto outer = findOuterPart(part))
        reasons.push_back("its name begins with that of the part " + *outer);
    if (const char* const reason = part.source ? whyOddRelationships(part) : nullptr)
        reasons.emplace_back(reason);
    return reasons;
}

const char* PackageContents::whyOddRelationships(const StoredPart& part) const {
    const StoredPart* const source = find(*part.source);
    if (*part.source != "/" && (source == nullptr || source->source)) // these have none [M1.25]
        return "it has the name of relationships of what isn't a part";
    return part.contentType && keyOf(*part.contentType) != RELATIONSHIPS_CONTENT_TYPE
               ? "it hasn't the content type of relationships"
               : nullptr;
}

/// The part whose name with a slash begins the name of this one [M1.11]. No folder can hold both, so that an extraction loses
/// one of them.
std::optional<std::string> PackageContents::findOuterPart(const StoredPart& part) const {
    const std::string_view key = part.key;
    for (std::size_t slash = key.find('/', 1); slash != std::string_view::npos;
         slash = key.find('/', slash + 1)) {
        const std::string_view outer = key.substr(0, slash);
        if (const auto found = byKey.find(outer); found != byKey.end())
            return all[found->second].name;
        if (outer == "/[content_types].xml")
            return "/[Content_Types].xml";
    }
    return std::nullopt;
}

void PackageContents::searchFor(const std::vector<const StoredPart*>& parts) {
    std::vector<std::string_view> keys;
    for (const StoredPart* const part : parts) {
        known->searched.emplace(part, keys.size());
        keys.emplace_back(part->key);
    }
    known->search.emplace(keys);
}

void PackageContents::searchForControls() {
    known->controlSearch.emplace();
}

bool PackageContents::isWithoutControls(const StoredPart& part) const {
    return known->withoutControls.count(&part) != 0;
}

bool PackageContents::isNamed(const StoredPart& part) const {
    const auto found = known->searched.find(&part);
    return found != known->searched.end() && known->search->isFound(found->second);
}

Digester& PackageContents::digester() {
    return known->digester;
}

/// By whatever method.
bool PackageContents::isDigested(const StoredPart& part) const {
    const auto first = known->digests.lower_bound({&part, nullptr});
    return first != known->digests.end() && first->first.first == &part;
}

const std::vector<unsigned char>& PackageContents::digest(const StoredPart& part,
                                                          const DigestMethod& method) {
    const std::pair key{&part, &method};
    const auto found = known->digests.find(key);
    if (found != known->digests.end())
        return valueOf(found->second);
    Outcome<std::vector<unsigned char>> outcome;
    try {
        std::unique_ptr<InputStream> content = open(part);
        if (known->search && !part.source && !isDigested(part))
            content = std::make_unique<SearchedContent<NameSearch>>(std::move(content), *known->search);
        if (known->controlSearch && !part.source)
            content =
                std::make_unique<SearchedContent<ControlSearch>>(std::move(content), *known->controlSearch);
        outcome = known->digester.of(*content, method);
        if (known->controlSearch && !part.source && known->controlSearch->isWithout())
            known->withoutControls.insert(&part);
    } catch (const Exception& failure) {
        outcome = Reason{Reason::Code::PartUnreadable, part.name, failureText(failure)};
    }
    return valueOf(known->digests.emplace(key, std::move(outcome)).first->second);
}

} // namespace opc::standard_signatures
