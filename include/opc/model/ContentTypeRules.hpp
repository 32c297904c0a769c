#pragma once

#include <opc/model/Export.hpp>

#include <memory>
#include <string>
#include <string_view>

namespace opc::model {

class SchemaType;

/// Tells of single values whether a content types stream that has them can be read. For stores that leave out entries
/// that can't, so that the other entries can be read.
///
/// The checks are those of reading itself, by the schema of the stream and beyond it. Values come with their entities
/// and character references replaced; what is returned says what is wrong, in English ("Extension is empty"), and is
/// empty if the value can be read. One object serves one thread at a time.
class OPC_MODEL_EXPORT ContentTypeRules {
public:
    ContentTypeRules();
    ContentTypeRules(const ContentTypeRules&) = delete;
    ContentTypeRules& operator=(const ContentTypeRules&) = delete;
    ~ContentTypeRules();

    static std::string findDefectOfExtension(std::u16string_view extension);
    static std::string findDefectOfPartName(std::u16string_view partName);
    std::string findDefectOfContentType(std::u16string_view contentType);

    /// A part name as reading gives it: runs of white space are one blank each, and none stands at the ends.
    static std::u16string readPartName(std::u16string_view partName);

private:
    std::unique_ptr<SchemaType> contentTypePattern; ///< null until it is needed
};

} // namespace opc::model
