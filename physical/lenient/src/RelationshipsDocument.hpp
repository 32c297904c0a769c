#pragma once

#include "Document.hpp"

#include <opc/model/RelationshipRules.hpp>

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace opc::physical::lenient {

class MarkupCompatibility;

/// A relationship as reading gives it.
struct ReadRelationship {
    std::size_t element = 0; ///< its place in the markup
    std::u16string id;
    std::u16string type;
    std::u16string target;
    bool isExternal = false;

    bool isOfCoreProperties() const;
    bool isEqual(const ReadRelationship& other) const {
        return id == other.id && type == other.type && target == other.target &&
               isExternal == other.isExternal;
    }
};

/// Something in a relationships part that isn't as it should be.
struct RelationshipsFinding {
    std::string rule;  ///< as of an `interfaces::Oddity`
    std::u16string id; ///< of the relationship; empty if it has none, or the finding is of no single one
    std::size_t line;
    std::string what;
    std::string done;
    bool isIgnored; ///< whether other programs may read what isn't read here
};

/// A relationships part in whatever form, and the relationships in it that the model can read.
class RelationshipsDocument {
public:
    enum class Source { Package, Part };

    /// @throws Exception  there is no such document in the bytes
    RelationshipsDocument(const Bytes& bytes, WellFormedness& wellFormedness, Source source);

    const Document& document() const { return text; }

    /// In the order of the document.
    const std::vector<ReadRelationship>& relationships() const { return taken; }

    const std::vector<RelationshipsFinding>& findings() const { return found; }

    /// Of what isn't among the relationships.
    const std::set<std::u16string>& keptIDs() const { return otherIDs; }

    /// Whether there is anything in the document that isn't among the relationships.
    bool keepsMore() const { return hasMore; }

    /// The first relationship to core properties that is left out because there is another one; null if there is none.
    const Element* secondCoreProperties() const {
        return second == Element::NO_PARENT ? nullptr : &text.markup().elements()[second];
    }

    /// The relationships alone, in the form that the model writes.
    Bytes view() const;

private:
    class Reader;

    const Document text;
    std::vector<ReadRelationship> taken;
    std::vector<RelationshipsFinding> found;
    std::set<std::u16string> otherIDs;
    std::size_t second = Element::NO_PARENT;
    bool hasMore = false;
};

/// The relationship of an element in a document of the model.
ReadRelationship readRelationship(const Markup& markup, std::size_t element);

/// Whether a document in UTF-8 could have more than one relationship to core properties.
bool mayRepeatCoreProperties(std::string_view document);

} // namespace opc::physical::lenient
