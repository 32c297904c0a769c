#pragma once

#include "RawZip.hpp"
#include "rules/RuleTable.hpp"

#include <string>
#include <vector>

namespace opc::test {

/// What an inspection by the rules of one concern tells: `error SEC-01, info SEC-09`, each once, in the order of the report.
std::string toldBy(inspection::RuleRows rows, const std::vector<RawItem>& items,
                   const std::string& fileName = {});

/// A part with the content type of the document's own kind of XML, `TYPE+xml` of office programs, and its Override.
struct XmlPart {
    std::string name, type, xml;
};

/// The small package with these parts, and with relationships of its document.
std::vector<RawItem> itemsWithParts(const std::vector<XmlPart>& parts, const std::string& relationships = {});

} // namespace opc::test
