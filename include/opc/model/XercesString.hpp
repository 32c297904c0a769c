#pragma once

#include <opc/model/Export.hpp>

#include <xercesc/util/XercesDefs.hpp>

#include <string>
#include <type_traits>

namespace opc::model {

static_assert(std::is_same_v<XMLCh, char16_t>, "Xerces must be built with char16_t as its character");

/// A zero-terminated text in memory of Xerces, which Xerces expects for names.
///
/// It owns its buffer and can't be copied: pass it by reference, and create it once for a name that is used often. A
/// `XercesGuard` must exist while it exists.
class OPC_MODEL_EXPORT XercesString {
public:
    /// Copies `text` up to its first zero.
    explicit XercesString(const std::u16string& text);

    /// @param text  zero-terminated; null counts as empty
    explicit XercesString(const char16_t* text);

    XercesString(const XercesString&) = delete;
    XercesString& operator=(const XercesString&) = delete;
    ~XercesString();

    /// Compares code unit by code unit.
    bool operator==(const XercesString& other) const { return *this == other.xmlString; }
    bool operator==(const char16_t* other) const;
    bool operator!=(const XercesString& other) const { return !(*this == other); }
    bool operator!=(const char16_t* other) const { return !(*this == other); }

    operator std::u16string() const { return toString(); }
    std::u16string toString() const { return xmlString; }

    /// The buffer, which this object owns.
    operator char16_t*() { return xmlString; }
    const char16_t* toXMLCh() const { return xmlString; }

private:
    char16_t* xmlString;
};

} // namespace opc::model
