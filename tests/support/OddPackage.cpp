#include "support/OddPackage.hpp"

#include "coreproperties/CorePropertiesLoss.hpp"
#include "support/Outcome.hpp"
#include "support/PackageContent.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/CoreProperties.hpp>
#include <opc/model/CorePropertyField.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/model/StandardPartInfo.hpp>

#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <algorithm>
#include <functional>
#include <optional>
#include <vector>

namespace opc::test {

using namespace model;
using interfaces::OpenMode;

namespace {

using Pieces = std::vector<std::u16string>;

const Pieces NAME_PIECES = {
    u"/",       u"/",   u"a",      u"B",   u"b.xml",  u".XML",   u".x;y",  u";",     u":",
    u"@",       u"%20", u"%C3%A9", u"%7c", u"%41",    u" ",      u"  ",    u"|",     u"\t",
    u"?q",      u"#f",  u"\\",     u"\"",  u"<",      u"_rels/", u"_Rels", u".rels", u".Rels",
    u"[",       u"C:",  u".",      u"'&",  u"$!()*+", u",=~-",   u".%25",  u"%",     u"[Content_Types].xml",
    u"__macosx"};
const Pieces TARGET_PIECES = {u"a",          u"b.xml", u"/",       u"/",  u"//",       u"..",   u"../",
                              u"./",         u":",     u"?q",      u"#f", u" ",        u"  ",   u"|",
                              u"\t",         u"\r",    u"\\",      u"\"", u"<",        u"&",    u"%20",
                              u"%41",        u"%",     u"@",       u"[",  u"h",        u"80",   u"[::1]",
                              u"mailto:",    u"http:", u"http://", u"C:", u"file:///", u"urn:", u"\u00E9",
                              u"\U0001F600", u";",     u"$,+"};
const Pieces TYPE_PIECES = {u"t",  u"urn:", u"http://x/", u"http:", u"//", u":", u"#",   u"a", u" ",
                            u"  ", u"\\",   u"|",         u"\"",    u"<",  u"%", u"%20", u"[", u"\u00E9"};
const Pieces ID_PIECES = {u"rId",    u"1",      u"a",      u"_",      u"-",      u".",
                          u":",      u" ",      u"é",      u"\u00B7", u"\u0300", u"\u203F",
                          u"\u2C00", u"\u0F3E", u"\u4E00", u"\u037F"};
const Pieces MEDIA_PIECES = {u"a", u"B", u"1", u".", u"+", u"-", u"!#$&'*^_`|~", u"%", u"{", u" "};
const Pieces VALUE_PIECES = {u"a", u"B", u" ", u"  ", u"\"", u"\\", u";",
                             u"=", u"/", u"<", u"&",  u"'",  u"\t"};
const Pieces TEXT_PIECES = {u"a",      u" ",          u"  ",     u"\t",     u"\n",     u"\r",       u"\r\n",
                            u"&",      u"<",          u"]]>",    u"\"",     u"\u0001", u"\u007F",   u"\u0085",
                            u"\u00E9", u"\U0001F600", u"\u2028", u"\uFEFF", u"\uFFFE", u"<!--a-->", u"&#10;"};
const Pieces LANGUAGE_PIECES = {u"en", u"-", u"GB", u"x", u"1", u" ", u"abcdefghi", u"_"};

/// The choices that the bytes make; after their end, always the first one.
class Choices {
public:
    Choices(const std::uint8_t* data, std::size_t size) : next(data), end(data + size) {}

    bool atEnd() const { return next == end; }
    unsigned byte() { return atEnd() ? 0 : *next++; }
    unsigned below(std::size_t count) { return static_cast<unsigned>(byte() % count); }

    /// Joins pieces; sometimes adds any code unit.
    std::u16string text(const Pieces& pieces, std::size_t most) {
        std::u16string result;
        for (std::size_t count = below(most + 1); count > 0; --count) {
            const unsigned choice = byte();
            if (choice < 250)
                result += pieces[choice % pieces.size()];
            else {
                const unsigned first = byte(); // before the second one, with each compiler
                result += static_cast<char16_t>(first << (choice % 2 == 0 ? 8 : 0) | byte());
            }
        }
        return result;
    }

private:
    const std::uint8_t* next;
    const std::uint8_t* end;
};

class OddPackage {
public:
    OddPackage(interfaces::IPhysicalPackage& store, const std::uint8_t* data, std::size_t size)
        : package(store), choices(data, size) {}

    std::string findLoss() {
        package.open(OpenMode::CreateOnly);
        for (int count = 0; count < MOST_CHANGES && !choices.atEnd(); ++count)
            attempt([this] { create(choices.below(4)); });
        std::string loss = findLossInSaving(OpenMode::ReadWrite);
        for (int count = 0; loss.empty() && count < MOST_CHANGES && !choices.atEnd(); ++count)
            attempt([this] { change(choices.below(6)); });
        if (loss.empty())
            loss = findLossInSaving(OpenMode::ReadOnly);
        package.close(true);
        return loss;
    }

private:
    static constexpr int MOST_CHANGES = 12;

    /// If the model refuses something, it throws an exception of the family.
    static void attempt(const std::function<void()>& action) {
        try {
            action();
        } catch (const Exception&) {
            // and what it refuses doesn't exist
        }
    }

    void create(unsigned kind) {
        if (kind == 0)
            createPart();
        else if (kind == 1)
            createRelationship(package);
        else if (kind == 2)
            withPart([this](Part& part) { createRelationship(part); });
        else
            setCoreProperties();
    }

    void change(unsigned kind) {
        if (kind < 4)
            return create(kind);
        withPart([&](Part& part) {
            const auto relationships = part.getRelationships();
            if (kind == 4 && !relationships.empty())
                part.deleteRelationship(relationships.begin()->getID());
            else if (part.getName() != PackageHelper::getCorePropertiesURI().toString())
                package.deletePart(part.getName());
        });
    }

    void withPart(const std::function<void(Part&)>& action) {
        const auto parts = package.getParts();
        if (parts.empty())
            return;
        Part part = *(parts.begin() + choices.below(parts.size()));
        action(part);
    }

    void createPart() {
        const PartName name(u"/" + choices.text(NAME_PIECES, 5));
        ContentType type(choices.text(MEDIA_PIECES, 2) + u"a/b" + choices.text(MEDIA_PIECES, 2));
        for (unsigned count = choices.below(3); count > 0; --count)
            type.addParameter(choices.text(MEDIA_PIECES, 2), choices.text(VALUE_PIECES, 4));
        const Part part = package.createPart(name, type, StandardPartInfo());
        writeAll(part, std::string(choices.byte(), 'x'));
    }

    void createRelationship(RelationshipSource& source) {
        const std::u16string type = choices.text(TYPE_PIECES, 3);
        const std::u16string target = choices.text(TARGET_PIECES, 4);
        const std::u16string id = choices.text(ID_PIECES, 3);
        if (choices.below(2) == 0)
            source.createExternalRelationship(type, target, id);
        else
            source.createInternalRelationship(type, URI(target), id);
    }

    boost::posix_time::ptime time() {
        using namespace boost::posix_time;
        if (choices.below(8) == 0)
            return ptime(static_cast<special_values>(choices.below(4)));
        using namespace boost::gregorian;
        const unsigned place = choices.byte();
        const date day = place == 255 ? date(9999, 12, 31) : date(1400, 1, 1) + days(place * 12300L);
        return ptime(day, hours(choices.byte()) - hours(choices.byte()) + microseconds(choices.byte()));
    }

    /// Once for each time that the package is open: more would continue in the same stream.
    void setCoreProperties() {
        if (wereCorePropertiesSet)
            return;
        CoreProperties made;
        using P = CoreProperties;
        for (const auto set : {&P::setCategory, &P::setContentStatus, &P::setCreator, &P::setDescription,
                               &P::setIdentifier, &P::setLanguage, &P::setLastModifiedBy, &P::setRevision,
                               &P::setSubject, &P::setTitle, &P::setVersion})
            if (choices.below(4) == 0)
                (made.*set)(choices.text(TEXT_PIECES, 3));
        for (const auto set : {&P::setCreated, &P::setLastPrinted, &P::setModified})
            if (choices.below(4) == 0)
                (made.*set)(time());
        P::KeywordList keywords(choices.below(4));
        for (auto& [keyword, language] : keywords) {
            keyword = choices.text(TEXT_PIECES, 3);
            language = choices.text(LANGUAGE_PIECES, choices.below(2) * 3);
        }
        made.setKeywords(keywords);
        PackageHelper::createOrUpdateCoreProperties(package, made);
        wereCorePropertiesSet = true;
        coreProperties = made;
    }

    /// Saves the package, opens it again and compares.
    std::string findLossInSaving(OpenMode mode) {
        const Pieces written = content();
        std::string loss = outcomeOf([&] {
            package.close(false);
            package.open(mode);
        });
        if (!loss.empty())
            return loss;
        wereCorePropertiesSet = false;
        const Pieces read = content();
        const auto differing = std::mismatch(written.begin(), written.end(), read.begin(), read.end());
        if (differing.first != written.end())
            loss = "written: " + toUDEString(*differing.first);
        if (differing.second != read.end())
            loss += "\nread: " + toUDEString(*differing.second);
        if (loss.empty() && coreProperties)
            loss = outcomeOf([this] {
                if (const CorePropertyField* const lost =
                        findLostCoreProperty(*coreProperties, PackageHelper::getCoreProperties(package)))
                    throw std::logic_error(std::string(lost->name()));
            });
        return loss;
    }

    /// Everything that the model says except the core properties.
    Pieces content() const {
        Pieces lines;
        addRelationships(package, lines);
        for (const Part& part : package.getParts()) {
            const std::u16string name = part.getName().toString();
            part.getInputStream().close();
            part.getInputStream().open();
            const bool isCore = part.getName() == PackageHelper::getCorePropertiesURI().toString();
            lines.push_back(name + u" " + part.getContentType().toString() +
                            (isCore ? u"" : u" " + opc::toString(readAll(part), true)));
            addRelationships(part, lines);
        }
        return lines;
    }

    static void addRelationships(const RelationshipSource& source, Pieces& lines) {
        for (const Relationship& relationship : source.getRelationships())
            lines.push_back(
                relationship.getID() + u"\n" + relationship.getType() + u"\n" + relationship.getTarget() +
                (relationship.getTargetMode() == TargetMode::External ? u"\nexternal" : u"\ninternal"));
    }

    Package package;
    Choices choices;
    bool wereCorePropertiesSet = false;
    std::optional<CoreProperties> coreProperties;
};

} // namespace

std::string findLossInOddPackage(interfaces::IPhysicalPackage& store, const std::uint8_t* data,
                                 std::size_t size) {
    return OddPackage(store, data, size).findLoss();
}

} // namespace opc::test
