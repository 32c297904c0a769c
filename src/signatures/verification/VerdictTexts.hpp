#pragma once

#include "signatures/document/SignatureRecords.hpp"

#include <opc/core/Exception.hpp>
#include <opc/model/PackageCoverage.hpp>

#include <set>
#include <string>
#include <vector>

/// The words of a verdict on signatures, in UTF-8.
namespace opc::model::verdict {

/// The meaning of a verification code in a few words. docs/errors.md has more about each.
std::string inWords(int code);

/// Whether the code is only about the signer: what was signed hasn't changed.
bool isAboutSigner(int code);

std::string describe(const ChangedContentType& changed);
std::string describe(const interfaces::IgnoredItem& item);
std::string describe(const Relationship& relationship);

/// The text of a failure, and its details.
std::string describe(const Exception& failure);

/// A list for people: the first few entries, each once, and the number of the others.
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
