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

/// A relationship as it was read.
struct ReadRelationship {
    std::size_t element = 0; ///< its index in the markup
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

/// Something odd in a relationships part.
struct RelationshipsFinding {
    std::string rule;  ///< as in `interfaces::Oddity`
    std::u16string id; ///< empty if the relationship has none, or there is no single one
    std::size_t line;
    std::string what;
    std::string done;
    bool isIgnored; ///< whether other programs may read what is ignored here
};

/// A relationships part in any form, and those of its relationships that the model can read.
class RelationshipsDocument {
public:
    enum class Source { Package, Part };

    /// @throws Exception  the bytes aren't such a document
    RelationshipsDocument(const Bytes& bytes, Source source);

    const Document& document() const { return text; }

    /// In the order of the document.
    const std::vector<ReadRelationship>& relationships() const { return taken; }

    const std::vector<RelationshipsFinding>& findings() const { return found; }

    /// About everything that isn't among the relationships.
    const std::set<std::u16string>& keptIDs() const { return otherIDs; }

    /// Whether the document has anything that isn't among the relationships.
    bool keepsMore() const { return hasMore; }

    /// The first relationship to core properties that was left out because there is another one; null if there is
    /// none.
    const Element* secondCoreProperties() const {
        return second == Element::NO_PARENT ? nullptr : &text.markup().elements()[second];
    }

    /// Only the relationships, in the form that the model writes.
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

/// The relationship of an element in a document that the model has written.
ReadRelationship readRelationship(const Markup& markup, std::size_t element);

/// Whether a document in UTF-8 can have more than one relationship to core properties.
bool mayRepeatCoreProperties(std::string_view document);

} // namespace opc::physical::lenient
