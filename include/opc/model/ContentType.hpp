#pragma once

#include <opc/model/Export.hpp>

#include <memory>
#include <string>

namespace opc::model {

/// The media type of a part: a type, a subtype and parameters, such as "text/xml;charset=utf-8".
///
/// The canonical text has its parameters sorted by name, quotes only around values that need them, and no blanks outside
/// quotes. Comparisons use the canonical text and ignore the case of ASCII letters, also in the values of parameters.
/// Parameter names are unique, ignoring case; the first spelling stays.
///
/// A value type. Copies share their data until one of them changes, and different threads can use different copies. Use
/// one object from one thread at a time.
class OPC_MODEL_EXPORT ContentType {
public:
    /// @param contentType  type "/" subtype, and any number of ";" attribute "=" value. Blanks are allowed only around
    ///                     semicolons. If an attribute is repeated, its last value counts
    /// @throws InvalidContentType  `contentType` has another form
    explicit ContentType(const std::u16string& contentType);

    /// @param contentType  a zero-terminated text, as above
    /// @throws InvalidContentType  `contentType` is null or has another form
    explicit ContentType(const char16_t* contentType);

    // There is no move: a moved-from value would have no canonical text.
    ContentType(const ContentType&) = default;
    ContentType& operator=(const ContentType&) = default;
    ~ContentType() = default;

    /// The canonical text.
    std::u16string toString() const;

    /// The type and the subtype in their original letter case.
    std::u16string getType() const;
    std::u16string getSubType() const;

    bool hasParameter(const std::u16string& attribute) const;

    /// @return the value without quotes
    /// @throws ContentTypeParameterNotFound
    std::u16string getParameterValue(const std::u16string& attribute) const;

    /// Adds a parameter, or changes the value of an existing one.
    /// @param attribute  one or more printable ASCII characters except the blank and ()<>@,;:\"/[]?={}
    /// @param value      one or more printable ASCII characters. If there is a double quote among them, the canonical
    ///                   text can't be read again: see `canBeReadAgain`
    /// @throws InvalidContentTypeParameter  an argument has another form; the object doesn't change
    void addParameter(const std::u16string& attribute, const std::u16string& value);

    /// @throws ContentTypeParameterNotFound
    void removeParameter(const std::u16string& attribute);

    /// Whether the constructor makes an equal value from the canonical text: no parameter value has a double quote.
    bool canBeReadAgain() const;

    bool operator==(const ContentType& other) const;
    bool operator!=(const ContentType& other) const;
    bool operator<(const ContentType& other) const;

private:
    struct Body;

    void init(const std::u16string& contentType);

    std::shared_ptr<const Body> body;
};

} // namespace opc::model
