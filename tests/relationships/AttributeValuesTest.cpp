#include "xml/AttributeValues.hpp"
#include "relationships/RelationshipID.hpp"
#include "relationships/RelationshipManager.hpp"
#include "relationships/RelationshipSerializer.hpp"
#include "relationships/RelationshipTarget.hpp"
#include "support/Cases.hpp"
#include "support/Outcome.hpp"
#include "support/PackageContent.hpp"
#include "xml/PlainURI.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/RelationshipRules.hpp>
#include <opc/model/URI.hpp>
#include <opc/model/XercesGuard.hpp>

#include <map>

namespace {

using namespace opc::model;
using opc::test::forEachCase;

/// Compares what is said about values with their fate in a relationships part.
class AttributeValues : public testing::Test {
protected:
    bool comeBack(const std::u16string& id, const std::u16string& target) {
        RelationshipManager written(URI(u"/"));
        RelationshipManager read(URI(u"/"));
        written.addExternalRelationship(id, u"t", target);
        try {
            const opc::test::Bytes document = opc::test::toBytes(serializer.serialize(written));
            opc::ByteArrayInAdaptor input(document);
            serializer.parse(input, read);
        } catch (const InvalidPartContent&) {
            return false;
        }
        return read.hasRelationship(id) && read.getRelationship(id).getTarget() == target;
    }

    void compareAsTarget(const std::u16string& value) {
        const bool isAccepted = !value.empty() && isIRITarget(value) && canHoldURI(value);
        EXPECT_EQ(isAccepted, comeBack(u"a", value)) << opc::toUDEString(value);
        const PlainURI kind = recognisePlainURI(opc::toUDEString(value));
        if (kind != PlainURI::No) {
            EXPECT_TRUE(isAccepted) << opc::toUDEString(value);
        }
        if (kind >= PlainURI::OtherScheme) {
            EXPECT_FALSE(kind == PlainURI::Reference && URI(value).isOpaque()) << opc::toUDEString(value);
        }
    }

    void compareAsID(const std::u16string& value) {
        EXPECT_EQ(isRelationshipID(value), comeBack(value, u"x")) << opc::toUDEString(value);
    }

    /// Compares what the rules say about attributes with the result of reading an element that has them.
    void compareWithReading(const RelationshipRules::Attributes& attributes) {
        std::string element = "<Relationship";
        const auto add = [&element](const char* name, const std::optional<std::u16string_view>& value) {
            if (!value)
                return;
            element.append(" ").append(name).append("='");
            for (std::size_t i = 0; i < value->size(); ++i) {
                const char16_t unit = (*value)[i];
                const bool isPair = unit >= 0xD800 && unit <= 0xDBFF;
                const unsigned character =
                    isPair ? 0x10000U + ((unit - 0xD800U) << 10U) + ((*value)[++i] - 0xDC00U) : unit;
                element.append("&#" + std::to_string(character) + ";");
            }
            element += "'";
        };
        add("Id", attributes.id);
        add("Type", attributes.type);
        add("Target", attributes.target);
        add("TargetMode", attributes.targetMode);
        const opc::test::Bytes document = opc::test::relationships(element + "/>");
        std::string id;
        RelationshipManager read(URI(u"/"));
        const std::string refusal = opc::test::outcomeOf([&] {
            opc::ByteArrayInAdaptor input(document);
            read.read(input, serializer);
        });
        const std::string defect = RelationshipRules::findDefect(attributes);
        EXPECT_EQ(defect.empty(), refusal.empty()) << element << "\n" << refusal << "\n" << defect;
        if (refusal.empty()) {
            EXPECT_TRUE(read.hasRelationship(RelationshipRules::read(*attributes.id))) << element;
        }
    }

    const XercesGuard guard;
    RelationshipSerializer serializer;
};

TEST_F(AttributeValues, areRefusedByTheRulesIfReadingRefusesThem) {
    const auto compareAll = [&](const std::optional<std::u16string_view>& value) {
        compareWithReading({value, u"t", u"x", {}});
        compareWithReading({u"a", value, u"x", {}});
        compareWithReading({u"a", u"t", u"x", value});
        for (const auto& mode :
             {std::optional<std::u16string_view>(), std::optional<std::u16string_view>(u"External")})
            compareWithReading({u"a", u"t", value, mode});
    };
    compareAll(std::nullopt);
    forEachCase("relationships/attribute-values.txt",
                [&](const std::u16string& value) { compareAll(value); });
    for (unsigned unit = 0x20; unit < 0xD800; unit += unit < 0x180 ? 1 : 0x199) {
        const char16_t letters[] = {u'a', static_cast<char16_t>(unit)};
        compareAll(std::u16string_view(letters, 2));
        compareAll(std::u16string_view(letters + 1, 1));
    }
    const std::u16string longest(4U << 20, u'a');
    EXPECT_EQ(RelationshipRules::findDefect({u"a", u"t", longest, {}}),
              "XML content can not have tags or comments of more than 4 MiB");
}

TEST_F(AttributeValues, areHeldIfTheyComeBackFromADocument) {
    const std::u16string alphabet = u"a1:/\\?#@%.-| \t\r\"<&\u00E9\uFFFF\xD800\xDC00";
    const auto compare = [this](const std::u16string& value) {
        compareAsTarget(value);
        compareAsID(value);
    };
    for (const char16_t first : alphabet) {
        compare({first});
        for (const char16_t second : alphabet) {
            compare({first, second});
            for (const char16_t third : alphabet)
                compareAsTarget({first, second, third});
        }
    }
    forEachCase("relationships/targets.txt", [this](const std::u16string& value) { compareAsTarget(value); });
}

TEST_F(AttributeValues, plainOnesAreOfTheKindThatTheyAreTakenFor) {
    const std::map<std::string, PlainURI> kinds = {{"Reference", PlainURI::Reference},
                                                   {"OtherScheme", PlainURI::OtherScheme},
                                                   {"IRI", PlainURI::IRI},
                                                   {"No", PlainURI::No}};
    const auto check = [&](const std::string& kind, const std::string& value) {
        EXPECT_EQ(recognisePlainURI(value), kinds.at(kind)) << value;
        compareAsTarget(opc::toString(value, true));
    };
    forEachCase("relationships/plain-uris.txt", check);
    check("Reference", "http://a." + std::string(300, 'b'));
    EXPECT_EQ(recognisePlainURI(""), PlainURI::No);
}

TEST_F(AttributeValues, idsAreHeldLetterByLetter) {
    for (unsigned unit = 1; unit < 0xFFFF; unit += unit < 0x400 ? 1 : 61) {
        const auto letter = static_cast<char16_t>(unit);
        compareAsID({letter});
        compareAsID({u'a', letter, u'b'});
    }
}

} // namespace
