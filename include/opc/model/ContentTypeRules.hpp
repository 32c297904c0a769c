#pragma once

#include <opc/model/Export.hpp>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace opc::model {

class SchemaType;

/// Checks single values of a content types stream. A store can use it to leave out the entries that make a stream
/// unreadable, so that the other entries can be read.
///
/// The checks are the same as when the stream is read: the schema, and the rules beyond the schema. Pass values with
/// entities and character references replaced. Each function returns what is wrong, in English ("Extension is empty"),
/// or an empty text if the value can be read. Use one object from one thread at a time.
class OPC_MODEL_EXPORT ContentTypeRules {
public:
    ContentTypeRules();
    ContentTypeRules(const ContentTypeRules&) = delete;
    ContentTypeRules& operator=(const ContentTypeRules&) = delete;
    ~ContentTypeRules();

    static std::string findDefectOfExtension(std::u16string_view extension);
    static std::string findDefectOfPartName(std::u16string_view partName);
    std::string findDefectOfContentType(std::u16string_view contentType);

    /// What the entries of a document are for, in lower case and sorted.
    struct PlainEntries {
        std::vector<std::string> extensions;
        std::vector<std::string> partNames;
    };

    /// Reads a whole document much faster than parsing does, if it is in the plain form that nearly all have, and if
    /// each entry can be read and no two have the same extension or part name.
    /// @return nothing for all other documents
    static std::optional<PlainEntries> readPlain(std::string_view document);

    /// @return the part name as it is read: each run of white space becomes one blank, and white space at both ends is
    ///         removed
    static std::u16string readPartName(std::u16string_view partName);

private:
    std::unique_ptr<SchemaType> contentTypePattern; ///< null until first used
};

} // namespace opc::model
