#include "FuzzTarget.hpp"

#include "support/PackageContent.hpp"

#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/XercesGuard.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/MemoryPackage.hpp>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

using namespace opc;
using namespace opc::fuzz;
using namespace opc::model;
using interfaces::OpenMode;

namespace {

constexpr char16_t RELATIONSHIPS[] = u"/_rels/.rels";
constexpr char16_t NEW_ID[] = u"fuzzed";

/// A package whose relationships part is the input.
struct Opened {
    explicit Opened(const Bytes& document) {
        test::fill(store, {u"/a.xml"});
        store.setPart(RELATIONSHIPS, document);
    }

    bool open() {
        return attempt<InvalidRelationshipContent>([&] { package.open(OpenMode::ReadWrite); });
    }

    /// Closes the package, and opens it again.
    void save() {
        package.close(false);
        require(open(), "what was saved can be opened");
    }

    physical::MemoryPackage store;
    physical::LenientPackage lenient{store};
    Package package{lenient};
};

using Lines = std::vector<std::u16string>;

Lines relationshipsOf(const Package& package) {
    Lines lines;
    for (const Relationship& each : package.getRelationships())
        lines.push_back(each.getID() + u" " + each.getType() + u" " + each.getTarget() +
                        (each.getTargetMode() == TargetMode::External ? u" External" : u""));
    return lines;
}

/// What is odd, without line numbers.
std::vector<std::string> odditiesOf(physical::LenientPackage& package) {
    std::vector<std::string> list;
    for (const interfaces::Oddity& odd : package.getOddities())
        list.push_back(odd.rule + " " + odd.what);
    return list;
}

/// Whether the longer document has one additional piece. The end of an empty tag that was opened may differ too.
bool isInserted(const Bytes& shorter, const Bytes& longer) {
    const auto begin = std::mismatch(shorter.begin(), shorter.end(), longer.begin(), longer.end()).first;
    const auto end =
        std::mismatch(shorter.rbegin(), std::make_reverse_iterator(begin), longer.rbegin(), longer.rend())
            .first;
    return end.base() - begin <= 4;
}

/// Adds a relationship and removes it again. Nothing else changes.
void checkAdding(Opened& opened, const Bytes& document) {
    const Lines before = relationshipsOf(opened.package);
    const auto oddities = odditiesOf(opened.lenient);
    const bool stays = !before.empty() || opened.package.hasUnreadRelationships();
    if (!attempt<InvalidRelationshipContent, RelationshipAlreadyExists>(
            [&] { opened.package.createExternalRelationship(u"urn:fuzz", u"u:\u00E4?\"&'<", NEW_ID); })) {
        opened.save();
        opened.package.close(false);
        require(opened.store.partBytes(RELATIONSHIPS) == document, "what can't be changed stays");
        return;
    }
    Lines expected = relationshipsOf(opened.package);
    require(expected.size() == before.size() + 1, "a relationship has come");
    opened.package.close(false);
    require(isInserted(document, opened.store.partBytes(RELATIONSHIPS)), "all else in the document stays");
    require(opened.open(), "what was saved can be opened");
    require(relationshipsOf(opened.package) == expected, "relationships are read as they were written");
    require(odditiesOf(opened.lenient) == oddities, "what is odd stays");
    opened.package.deleteRelationship(NEW_ID);
    opened.save();
    require(relationshipsOf(opened.package) == before, "the relationship has gone");
    require(!stays || odditiesOf(opened.lenient) == oddities, "what is odd stays");
    opened.package.close(true);
}

/// After the relationships that are read are deleted, the others stay. At most those relationships are read now that
/// an earlier one with the same ID had hidden.
void checkDeleting(Opened& opened) {
    const auto oddities = odditiesOf(opened.lenient);
    const bool hasUnread = opened.package.hasUnreadRelationships();
    for (const Relationship& each : opened.package.getRelationships())
        opened.package.deleteRelationship(each.getID());
    opened.save();
    const Lines after = relationshipsOf(opened.package);
    const bool gaveWay = std::any_of(oddities.begin(), oddities.end(), [](const std::string& odd) {
        return odd.substr(0, 5) == "M4.1 " || odd == "M1.26 Id stands there twice";
    });
    require(gaveWay || after.empty(), "what was deleted has gone");
    require(gaveWay || !hasUnread || odditiesOf(opened.lenient) == oddities, "what is left out stays");
    opened.package.close(true);
    require(!hasUnread || opened.store.hasPart(RELATIONSHIPS), "the part stays with what it keeps");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const XercesGuard guard; // starting Xerces takes longer than reading
    const Bytes document(data, data + size);
    Opened opened(document);
    if (!opened.open())
        return 0;
    checkAdding(opened, document);
    Opened again(document);
    require(again.open(), "what was opened can be opened again");
    if (!relationshipsOf(again.package).empty())
        checkDeleting(again);
    return 0;
}
