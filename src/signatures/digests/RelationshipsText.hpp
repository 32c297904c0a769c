#pragma once

#include "signatures/digests/SignedRelationships.hpp"

#include <opc/core/InputStream.hpp>
#include <opc/model/Relationship.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace opc::model {

/// The document that is digested for the relationships of a signature (the relationship transform): sorted by ID and
/// target, each as often as it was selected.
///
/// A stream over the document's bytes. A relationship that was selected n times is serialised and stored once and
/// read n times, so that many selections of few relationships cost little: n relationships of one type, each named by
/// its own selector, make n² entries. Relationships with the same ID and target, from different sources, are also
/// sorted by type and mode, so that signing and verifying use the same order.
class RelationshipsText final : public InputStream {
public:
    /// @throws InvalidXMLDocument
    explicit RelationshipsText(const SignedRelationships& relationships);

    /// The greatest length of a relationship's element, in bytes.
    static std::uint64_t measure(const Relationship& relationship);

    void open() override;
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override;
    void close() override;

private:
    /// A relationship, and how often it was selected.
    struct Entry {
        const Relationship::Values* values = nullptr;
        std::uint64_t count = 0;
    };

    /// Bytes of `text` that the document repeats several times.
    struct Run {
        std::size_t begin, end;
        std::uint64_t count;
    };

    static std::vector<Entry> collect(const SignedRelationships& relationships);
    static std::vector<Entry> gather(const SignedRelationships& relationships);
    static std::int32_t compare(const Relationship::Values& left, const Relationship::Values& right);
    static std::string write(const std::vector<Entry>& entries);
    static bool compose(const std::vector<Entry>& entries, std::string& document);
    static std::string serialize(const std::vector<Entry>& entries);
    void findRuns(const std::vector<Entry>& entries);

    std::string text;      // the document with each relationship once
    std::vector<Run> runs; // in the order of the document, none empty
    std::size_t run = 0;
    std::uint64_t repetition = 0;
    std::size_t position = 0; // in the run
};

} // namespace opc::model
