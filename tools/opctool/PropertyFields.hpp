#pragma once

#include "Table.hpp"

#include <opc/model/CoreProperties.hpp>

#include <nlohmann/json_fwd.hpp>

#include <iosfwd>
#include <string>
#include <utility>

namespace opctool {

/// @file
/// The core properties under their names on the command line and in JSON.

/// The present fields: strings for texts and times; an array of objects with "text" and, if there is one, "language"
/// for keywords.
nlohmann::json describeProperties(const opc::model::CoreProperties& properties);

/// Prints the result of `describeProperties` for people, with a row for each field and each keyword.
void printProperties(std::ostream& stream, Table::Style style, const nlohmann::json& description);

/// @return what is wrong with `name` as the name of a field; empty if nothing is
std::string checkProperty(const std::string& name);

/// @return what is wrong with `assignment`, in the form name=value; empty if nothing is
std::string checkAssignment(const std::string& assignment);

/// @param assignment  one that `checkAssignment` accepts
/// @return name and value
std::pair<std::string, std::string> splitAssignment(const std::string& assignment);

/// @param keyword  TEXT or TEXT:LANGUAGE. If no language tag follows the last colon, all of it is the text. A colon
///                 at the end of a text is dropped.
opc::model::CoreProperties::KeywordList::value_type parseKeyword(const std::string& keyword);

} // namespace opctool
