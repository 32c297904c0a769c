#pragma once

#include <opc/model/Export.hpp>

#include <xercesc/dom/DOMErrorHandler.hpp>
#include <xercesc/util/XercesDefs.hpp>

namespace opc::model {

/// Records the last error that a parser or a serialiser reports.
///
/// Attached for one operation, under `xercesc::XMLUni::fgDOMErrorHandler`, and detached before that ends; it
/// must outlive the attachment. It serves one thread at a time.
class OPC_MODEL_EXPORT XercesErrorHandler : public xercesc::DOMErrorHandler {
public:
    XercesErrorHandler() = default;
    XercesErrorHandler(const XercesErrorHandler&) = delete;
    XercesErrorHandler& operator=(const XercesErrorHandler&) = delete;
    ~XercesErrorHandler() override;

    /// Records an error, in place of an earlier one, and stops Xerces. A warning is passed over. Never
    /// throws.
    /// @return whether Xerces goes on
    bool handleError(const xercesc::DOMError& error) override;

    /// @throws InvalidXMLDocument  with the recorded message, if there is one; its details tell the line and the
    ///                             column, if they are known
    void throwIfError() const;

private:
    bool recorded = false; ///< apart from the message, which may be absent or fail to be copied
    char16_t* errorMessage = nullptr;
    XMLFileLoc line = 0; ///< 0 if it isn't known
    XMLFileLoc column = 0;
};

} // namespace opc::model
