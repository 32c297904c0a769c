#pragma once

#include <opc/model/Export.hpp>

#include <map>
#include <memory>
#include <string>

namespace opc::model {

/// The media type of a part: a type, a subtype and parameters, as "text/xml;charset=utf-8".
///
/// It always holds the canonical text made from these: parameters sorted by name, values in quotes only where
/// they need them, no blanks outside quotes. Comparisons look at that text without regard to the case of
/// ASCII letters, parameter values included. Names of parameters are unique without regard to case; the first
/// spelling stays.
///
/// A value: copies share one body until one of them changes, and may be used on different threads. One object
/// serves one thread at a time.
class OPC_MODEL_EXPORT ContentType {
public:
    /// @param contentType  type "/" subtype and any number of ";" attribute "=" value. Blanks may stand round a
    ///                     semicolon only. The last value of a repeated attribute counts
    /// @throws InvalidContentType  if it is anything else
    explicit ContentType(const std::u16string& contentType);

    /// @param contentType  ends in a zero; null counts as the empty text, which is no content type
    /// @throws InvalidContentType  as above
    explicit ContentType(const char16_t* contentType);

    // No move: every value holds a canonical text, one that was moved from too.
    ContentType(const ContentType&) = default;
    ContentType& operator=(const ContentType&) = default;
    ~ContentType() = default;

    /// The canonical text.
    std::u16string toString() const;
    /// Type and subtype, in the letter case in which they were given.
    std::u16string getType() const;
    std::u16string getSubType() const;

    bool hasParameter(const std::u16string& attribute) const;
    /// @throws ContentTypeParameterNotFound  without such a parameter
    std::u16string getParameterValue(const std::u16string& attribute) const;

    /// Adds a parameter, or gives the one of that attribute another value.
    /// @param attribute  one or more printable ASCII characters, but no blank and none of ()<>@,;:\"/[]?={}
    /// @param value      one or more printable ASCII characters. With a double quote among them, a constructor
    ///                   refuses the canonical text, or reads it as other parameters
    /// @throws InvalidContentTypeParameter  if either is anything else; nothing has changed then
    void addParameter(const std::u16string& attribute, const std::u16string& value);

    /// @throws ContentTypeParameterNotFound  without such a parameter
    void removeParameter(const std::u16string& attribute);

    /// Whether a constructor makes the same of the canonical text: no value of a parameter has a double quote.
    bool canBeReadAgain() const;

    bool operator==(const ContentType& other) const;
    bool operator!=(const ContentType& other) const;
    bool operator<(const ContentType& other) const;

private:
    struct CaselessLess {
        bool operator()(const std::u16string& left, const std::u16string& right) const;
    };

    struct Body {
        std::u16string text;
        std::u16string type;
        std::u16string subType;
        std::map<std::u16string, std::u16string, CaselessLess> parameters;
    };

    void init(const std::u16string& contentType);
    static void resetStringFromParts(Body& body);

    std::shared_ptr<const Body> body;
};

} // namespace opc::model
