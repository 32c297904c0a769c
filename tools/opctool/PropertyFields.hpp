#pragma once

#include <opc/model/CoreProperties.hpp>

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace opctool {

/// @file
/// The core properties by the names that they have on the command line and in JSON.

/// The fields that are present: texts and times as strings, keywords as an array of objects with "text" and,
/// where there is one, "language".
nlohmann::json describe(const opc::model::CoreProperties& properties);

/// Prints what `describe` gave for people to read, a row for each field and each keyword.
void printProperties(const nlohmann::json& description);

/// @return what is wrong with `name`, the name of a field; empty if nothing is
std::string checkProperty(const std::string& name);

/// @return what is wrong with `assignment`, which is name=value; empty if nothing is
std::string checkAssignment(const std::string& assignment);

/// @param assignment  one that `checkAssignment` has passed. The time "now" is the current one.
void assign(opc::model::CoreProperties& properties, const std::string& assignment);

/// Takes back to absent the field of that name, which `checkProperty` has passed.
void unset(opc::model::CoreProperties& properties, const std::string& name);

/// @param keyword  TEXT or TEXT:LANGUAGE. What is no language tag behind the last colon belongs to the text;
///                 a text that ends with a colon is taken without it.
opc::model::CoreProperties::KeywordList::value_type parseKeyword(const std::string& keyword);

} // namespace opctool
