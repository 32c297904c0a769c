#pragma once

#include <opc/core/InputStream.hpp>
#include <opc/model/Export.hpp>

#include <vector>

namespace opc::model {

/// The rules that this library has for every XML document, whatever it is for. A store can use them to find documents that
/// make a package unreadable.
class OPC_MODEL_EXPORT XmlRules {
public:
    XmlRules() = delete;

    /// Checks that a document is well-formed and that the library reads it, as `XercesHelper` does, without a schema. The
    /// tree of the document is held during the call. Any number of threads may call it at the same time.
    /// @param stream  open, at its first byte. It is read to its end and not closed
    /// @throws InvalidXMLDocument
    /// @throws the exceptions of the stream, unchanged
    static void check(InputStream& stream);

    /// The same for a document in memory. In the usual form, it needs neither a tree nor the XML parser.
    static void check(const std::vector<unsigned char>& document);
};

} // namespace opc::model
