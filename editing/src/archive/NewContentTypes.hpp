#pragma once

#include <map>
#include <string>
#include <vector>

namespace opc::editing::archive {

/// The content type of a new part.
struct NewContentType {
    std::string part; ///< with its slash
    std::string contentType;
};

/// The content type of a part, by its name or its extension.
/// @param contentTypes  by names of parts and by extensions, in lower case
/// @return null if there is none
const std::string* findContentType(const std::map<std::string, std::string>& contentTypes,
                                   const std::string& part);

/// A document of content types, with entries for new parts. What it has already stays as it is.
/// @throws opc::Exception  the document can't be read, or a type or name isn't one
std::vector<unsigned char> addContentTypes(const std::vector<unsigned char>& document,
                                           const std::vector<NewContentType>& added);

} // namespace opc::editing::archive
