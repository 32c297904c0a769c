#include "StandardCoverage.hpp"

#include "FileRun.hpp"
#include "PackageFile.hpp"
#include "TerminalText.hpp"

#include <opc/core/Exception.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace opctool {

namespace {

using namespace opc::standard_signatures;
using nlohmann::ordered_json;

using CoverageRow = CoverageTable::Row;
using Standing = CoverageTable::Standing;

constexpr std::size_t MOST_NAMES = 2000000;

ordered_json namesOf(const CoverageTable& table) {
    ordered_json names = ordered_json::array();
    for (const VerifiedSignature& signature : table.verification.signatures)
        names.push_back(signature.name);
    return names;
}

ordered_json namesOf(const CoverageTable& table, const CoverageRow& row) {
    ordered_json names = ordered_json::array();
    for (const std::size_t place : row.signatures)
        names.push_back(table.verification.signatures[place].name);
    return names;
}

/// The signatures of a row, and further remarks.
std::string textOf(const CoverageTable& table, const CoverageRow& row) {
    std::string text;
    for (const auto& name : namesOf(table, row))
        text += (text.empty() ? "" : ", ") + name.get<std::string>();
    if (text.empty())
        text = "none";
    return text + (row.standing == Standing::OfSignatures ? " (belongs to the signatures)"
                   : row.standing == Standing::LeftOutByCustom && row.signatures.empty()
                       ? " (left out by custom)"
                       : "");
}

bool isGap(const CoverageRow& row) {
    return row.signatures.empty() && row.standing == Standing::Content;
}

/// Whether one signature alone protects everything.
bool isFull(const CoverageTable& table) {
    const auto& all = table.verification.signatures;
    return table.verification.problems.empty() &&
           std::any_of(all.begin(), all.end(), [](const VerifiedSignature& one) {
               return one.cryptography.status != CryptographyAnswer::Status::Broken &&
                      one.coverage.isComplete();
           });
}

ordered_json describe(const CoverageTable& table, const CoverageRow& row) {
    ordered_json described{{"signatures", namesOf(table, row)},
                           {"ofSignatures", row.standing == Standing::OfSignatures},
                           {"byCustom", row.standing == Standing::LeftOutByCustom}};
    if (row.id.empty()) {
        described["name"] = row.place;
    } else {
        described["source"] = row.place;
        described["id"] = row.id;
        described["type"] = row.type;
    }
    return described;
}

template <typename Predicate>
void printNames(JSONOutput& output, const std::vector<CoverageRow>& rows, const std::string& name,
                const Predicate& isListed) {
    output.beginArray(name);
    for (const CoverageRow& row : rows)
        if (isListed(row))
            output.add(row.id.empty() ? ordered_json(row.place)
                                      : ordered_json{{"source", row.place}, {"id", row.id}});
    output.end();
}

void printSummary(FileRun& run, const CoverageTable& table) {
    for (const VerifiedSignature& signature : table.verification.signatures) {
        const std::string name = withoutControlCharacters(signature.name);
        if (signature.cryptography.status == CryptographyAnswer::Status::Broken)
            run.out() << name << " is broken: opctool verify says why\n";
        else
            run.out() << name << (signature.coverage.isComplete() ? " is complete\n" : " is partial\n");
        for (std::size_t i = 0; i < std::min<std::size_t>(signature.coverage.gaps.size(), 20); ++i) {
            const Unsigned& gap = signature.coverage.gaps[i];
            if (gap.kind != Unsigned::Kind::Part && gap.kind != Unsigned::Kind::Relationship)
                run.out() << withoutControlCharacters(signature.name + ": " + gap.place + ": " + gap.text)
                          << '\n';
        }
    }
}

} // namespace

CoverageTable tabulate(PackageFile& file) {
    CoverageTable table;
    file.readAsItLies(
        [&table](opc::interfaces::IPhysicalPackage& store) { table = tabulateCoverage(store); });
    std::size_t count = 0;
    for (const auto* rows : {&table.parts, &table.relationships})
        for (const CoverageRow& row : *rows)
            count += row.signatures.size();
    if (count > MOST_NAMES)
        throw opc::Exception("The report would name signatures more than 2000000 times. opctool verify "
                             "lists what no signature covers.");
    return table;
}

void printCoverage(FileRun& run, const CoverageTable& table) {
    run.out() << "Signatures in the standard's profile:\n";
    const Table parts({{"PART"}, {"SIGNATURES"}});
    parts.print(run.out(), run.tableStyle(), [&table](const auto& printRow) {
        for (const CoverageRow& row : table.parts)
            printRow({row.place, textOf(table, row)});
    });
    run.out() << '\n';
    const Table relationships({{"SOURCE"}, {"ID"}, {"SIGNATURES"}, {"TYPE"}});
    relationships.print(run.out(), run.tableStyle(), [&table](const auto& printRow) {
        for (const CoverageRow& row : table.relationships)
            printRow({row.place, row.id, textOf(table, row), row.type});
    });
    run.out() << '\n';
    printSummary(run, table);
}

void printCoverage(JSONOutput& output, const CoverageTable& table) {
    const auto isUncovered = [](const CoverageRow& row) { return row.signatures.empty(); };
    output.add("standard", "profile");
    output.add(namesOf(table), "signatures");
    output.beginArray("parts");
    for (const CoverageRow& row : table.parts)
        output.add(describe(table, row));
    output.end();
    output.beginArray("relationships");
    for (const CoverageRow& row : table.relationships)
        output.add(describe(table, row));
    output.end();
    output.beginObject("uncovered");
    printNames(output, table.parts, "parts", isUncovered);
    printNames(output, table.relationships, "relationships", isUncovered);
    output.add("signed", "contentTypes");
    output.end();
    output.beginObject("content");
    printNames(output, table.parts, "uncoveredParts", isGap);
    printNames(output, table.relationships, "uncoveredRelationships", isGap);
    output.add(ordered_json::array(), "changedContentTypes");
    output.add(ordered_json::array(), "ignored");
    output.add({{"begin", 0}, {"size", 0}}, "keywords");
    output.add(isFull(table), "full");
    output.end();
}

} // namespace opctool
