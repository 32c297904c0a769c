#pragma once

#include "coreproperties/CorePropertiesVocabulary.hpp"

#include <opc/core/InputStream.hpp>
#include <opc/core/OutputStream.hpp>
#include <opc/model/CoreProperties.hpp>
#include <opc/model/XercesDeleter.hpp>
#include <opc/model/XercesGuard.hpp>

#include <memory>

XERCES_CPP_NAMESPACE_BEGIN
class DOMElement;
class DOMLSParser;
class DOMLSSerializer;
XERCES_CPP_NAMESPACE_END

namespace opc::model {

/// Reads and writes the XML document in the core properties part. Made for one operation and dropped after
/// it: the first reading compiles five schemas, which takes most of a millisecond.
class CorePropertiesSerializer {
public:
    CorePropertiesSerializer();
    CorePropertiesSerializer(const CorePropertiesSerializer&) = delete;
    CorePropertiesSerializer& operator=(const CorePropertiesSerializer&) = delete;
    ~CorePropertiesSerializer();

    /// Puts what the document says in the place of what `properties` hold. A time that `ptime` can't hold
    /// leaves its field absent.
    /// @throws InvalidXMLSchema    a schema of the library doesn't load
    /// @throws InvalidPartContent  the document isn't valid, and `properties` are as they were; or it breaks
    ///                             one of the rules [M4.2] to [M4.5], and they are empty
    void read(InputStream& stream, CoreProperties& properties);

    /// Doesn't close the stream.
    /// @throws InvalidPartContent  a text that XML can't hold; nothing has been written by then
    void write(const CoreProperties& properties, OutputStream& stream);

private:
    void readKeywords(const xercesc::DOMElement* root, CoreProperties& properties) const;

    XercesGuard guard;
    std::unique_ptr<xercesc::DOMLSParser, XercesDeleter> parser; // made by the first reading
    std::unique_ptr<xercesc::DOMLSSerializer, XercesDeleter> writer;
    CorePropertiesVocabulary names;
};

} // namespace opc::model
