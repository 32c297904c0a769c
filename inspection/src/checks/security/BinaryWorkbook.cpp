#include "checks/security/BinaryWorkbook.hpp"

#include "checks/security/BinaryRecords.hpp"
#include "checks/security/FormulaTokens.hpp"
#include "checks/security/Formulas.hpp"
#include "subject/Names.hpp"
#include "text/CaselessText.hpp"
#include "text/MessageText.hpp"

#include <set>

namespace opc::inspection {

namespace {

enum RecordKind : unsigned {
    TextFormula = 8,
    NumberFormula = 9,
    TruthFormula = 10,
    ErrorFormula = 11,
    DefinedName = 39,
    BeginSheet = 129,
    BeginBook = 131,
    Sheet = 156,
    OtherSource = 360,
    ArrayFormula = 426,
    SharedFormula = 427,
};

class BinaryWorkbookObserver final : public ContentObserver {
public:
    explicit BinaryWorkbookObserver(Findings& findings)
        : findings(findings), records({TextFormula, NumberFormula, TruthFormula, ErrorFormula, DefinedName,
                                       Sheet, OtherSource, ArrayFormula, SharedFormula},
                                      [this](unsigned kind, std::string_view content) {
                                          onRecord(kind, RecordFields(content));
                                      }) {}

    bool begin(const PartView& part, std::string_view head) override {
        name = part.name;
        told.clear();
        records.begin();
        const std::string type = part.mediaType();
        return isFirst(BeginBook, head) || isFirst(BeginSheet, head) || isFirst(OtherSource, head) ||
               (startsWith(type, "application/vnd.ms-excel.") && !endsWith(type, "+xml"));
    }

    void bytes(std::string_view piece) override { records.add(piece); }

private:
    /// Whether the content begins with such a record, whose kind takes two bytes.
    static bool isFirst(unsigned kind, std::string_view head) {
        return head.size() > 2 && static_cast<unsigned char>(head[0]) == (0x80U | (kind & 0x7FU)) &&
               static_cast<unsigned char>(head[1]) == kind >> 7U;
    }

    void onRecord(unsigned kind, RecordFields fields) {
        constexpr std::size_t CELL = 8;
        constexpr std::size_t FLAGS = 2;
        constexpr std::size_t AREA = 16;
        switch (kind) {
        case Sheet:
            return onSheet(fields);
        case DefinedName:
            return onName(fields);
        case OtherSource:
            return onSource(fields);
        case TextFormula:
            fields.skip(CELL);
            fields.text();
            fields.skip(FLAGS);
            break;
        case NumberFormula:
            fields.skip(CELL + 8 + FLAGS);
            break;
        case ArrayFormula:
            fields.skip(AREA + 1);
            break;
        case SharedFormula:
            fields.skip(AREA);
            break;
        default:
            fields.skip(CELL + 1 + FLAGS);
            break;
        }
        tellFunctions(reachingFunctionsOfTokens(fields.bytes()));
    }

    void onSheet(RecordFields fields) {
        constexpr std::uint32_t HIDDEN = 1;
        constexpr std::uint32_t VERY_HIDDEN = 2;
        const std::uint32_t state = fields.number(4);
        fields.skip(4);
        fields.text(); // the Id of a relationship
        if (state == HIDDEN || state == VERY_HIDDEN)
            add("SEC-65", state == HIDDEN ? Severity::Info : Severity::Warning,
                "The sheet " + shown(fields.text()) + " is hidden" +
                    (state == HIDDEN ? "" : ", and no menu of Excel shows it"));
    }

    /// Functions that are newer than the format are names with a mark in front.
    void onName(RecordFields fields) {
        constexpr std::size_t FRONT = 9;
        fields.skip(FRONT);
        const std::string defined = fields.text();
        const std::string folded = toLowerASCII(defined);
        if (folded.find("auto_open") < 7 || folded.find("auto_close") < 7) // _xlnm. can stand in front
            add("SEC-29", Severity::Warning, "The name " + shown(defined) + " runs a macro sheet");
        if (startsWith(folded, "_xl"))
            tellFunctions(reachingFunctions(defined + "("));
        tellFunctions(reachingFunctionsOfTokens(fields.bytes()));
    }

    void onSource(RecordFields fields) {
        constexpr std::uint32_t DDE = 1;
        if (fields.number(2) != DDE)
            return;
        const std::string service = fields.text();
        add("SEC-25", Severity::Error,
            "The workbook asks the program " + shown(service) + " for " + shown(fields.text()));
    }

    /// One finding for each function of a part: a column can hold it in each row.
    void tellFunctions(const std::set<std::string_view>& functions) {
        for (const std::string_view function : functions)
            if (told.insert(function).second)
                add("SEC-29", function == "HYPERLINK" ? Severity::Info : Severity::Warning,
                    "A formula calls " + std::string(function));
    }

    void add(const char* rule, Severity severity, std::string message) {
        findings.add(rule, severity, {name}, std::move(message));
    }

    Findings& findings;
    BinaryRecords records;
    std::string name;
    std::set<std::string_view> told;
};

} // namespace

std::unique_ptr<ContentObserver> makeBinaryWorkbookObserver(Findings& findings) {
    return std::make_unique<BinaryWorkbookObserver>(findings);
}

} // namespace opc::inspection
