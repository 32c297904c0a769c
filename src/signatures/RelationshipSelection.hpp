#pragma once

#include <opc/model/RelationshipSource.hpp>

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace opc::model {

/// The relationships that one signature covers, each as often as it is selected. Takes time for as many
/// relationships as there are and are selected, however often and in whatever order the sources are named.
class RelationshipSelection {
public:
    /// @param before  how many the other signatures of the package cover
    explicit RelationshipSelection(std::size_t before = 0) : count(before) {}
    RelationshipSelection(const RelationshipSelection&) = delete;
    RelationshipSelection& operator=(const RelationshipSelection&) = delete;

    /// @throws RelationshipNotFound
    /// @throws opc::Exception  if there are more than the signatures of a package can cover
    void addByID(const RelationshipSource& source, const std::u16string& id);

    /// Adds all of a type, in the order of `RelationshipSource::getRelationshipsByType`.
    /// @param name  the source's: one for each source, in one spelling
    /// @return whether there are any
    /// @throws opc::Exception  if there are more than the signatures of a package can cover
    bool addByType(const RelationshipSource& source, const std::u16string& name, const std::u16string& type);

    /// What was added, in that order; none is left here.
    std::vector<Relationship> take() { return std::move(selected); }

private:
    // Trees, since nobody can choose texts that make them slow.
    using Groups = std::map<std::u16string, std::vector<Relationship>>;

    struct Source {
        int timesAsked = 0;
        std::unique_ptr<Groups> byType; // made once it has been asked a few times
    };

    template <typename Relationships>
    bool add(const Relationships& relationships);

    std::map<std::u16string, Source> sources;
    std::map<std::u16string, Source>::iterator recent = sources.end(); // the next is it or behind it
    std::vector<Relationship> selected;
    std::size_t count; // with those before
};

} // namespace opc::model
