#pragma once

#include "RelationshipsDocument.hpp"
#include "RelationshipsOutput.hpp"

#include <opc/interfaces/IKeptRelationships.hpp>
#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalOutputStream.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>

#include <cstddef>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace opc::physical::lenient {

/// What the relationships parts of an open package share.
struct RelationshipsReading {
    static constexpr std::size_t MOST_BYTES = std::size_t{32} << 20;

    std::size_t bytesLeft = MOST_BYTES; ///< the limit for documents in a converted form
};

/// A relationships part of another package, as the model sees it: with the content type of its kind, and with the
/// relationships that the model can read, in the form that it reads. What the model writes becomes a change of the
/// part's own document, where everything else stays.
class RelationshipsPart : public interfaces::IPhysicalPart, public interfaces::IKeptRelationships {
public:
    static constexpr char16_t CONTENT_TYPE[] = u"application/vnd.openxmlformats-package.relationships+xml";

    /// Owns neither.
    RelationshipsPart(interfaces::IPhysicalPart& part, RelationshipsReading& shared,
                      RelationshipsDocument::Source source)
        : part(part), shared(shared), source(source) {}

    std::u16string getName() const override { return part.getName(); }
    std::u16string getContentType() const override;

    /// The stream of the other part, if the model reads the document unchanged or refuses it, or if it is too long to
    /// be examined.
    interfaces::IPhysicalInputStream* getInputStream() override;

    /// @throws Exception  the document can no longer be read
    interfaces::IPhysicalOutputStream* getOutputStream() override;

    bool hasKeptID(const std::u16string& id) const override { return keptIDs.count(id) > 0; }
    bool keepsMore() const override { return hasMore; }
    std::string whyFixed() const override { return defect; }

    /// What was odd in the document when it was last read. Reads it if it wasn't read yet.
    const std::vector<RelationshipsFinding>& findings();

private:
    interfaces::IPhysicalInputStream* giveReadable();
    interfaces::IPhysicalInputStream* give(Bytes document);
    bool isForModel(const Bytes& document) const;

    interfaces::IPhysicalPart& part;
    RelationshipsReading& shared;
    const RelationshipsDocument::Source source;
    std::vector<std::unique_ptr<interfaces::IPhysicalInputStream>> given;
    std::unique_ptr<RelationshipsOutput> output; ///< null before the first one
    bool wasRead = false;
    std::vector<RelationshipsFinding> found;
    std::set<std::u16string> keptIDs;
    bool hasMore = false;
    std::string defect; ///< why the document can't be read; empty if it can
};

} // namespace opc::physical::lenient
