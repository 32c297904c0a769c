#pragma once

#include "signatures/document/SignatureRecords.hpp"

#include <opc/core/Exception.hpp>
#include <opc/model/PackageCoverage.hpp>

#include <set>
#include <string>
#include <vector>

/// The words of a verdict on signatures, in UTF-8.
namespace opc::model::verdict {

/// What a code of a verification means, in a few words; docs/errors.md says more of each.
std::string inWords(int code);

/// Whether the code is about the signer alone: what was signed hasn't changed.
bool isAboutSigner(int code);

std::string describe(const ChangedContentType& changed);
std::string describe(const interfaces::IgnoredItem& item);
std::string describe(const Relationship& relationship);

/// What a failure says, and its details.
std::string describe(const Exception& failure);

/// A list for people to read: the first few, each once, and the number of the others.
class Places {
public:
    void add(const std::string& place);
    void add(const PartName& name);
    void add(const Relationship& relationship);

    bool empty() const { return places.empty(); }
    std::string toText() const;

private:
    std::set<std::string> places;
};

/// Names what has changed since it was signed.
/// @param references  those whose digests differ; not empty
std::string describeDifferences(const std::vector<const Reference*>& references);

} // namespace opc::model::verdict
