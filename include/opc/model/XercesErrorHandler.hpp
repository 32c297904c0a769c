#pragma once

#include <opc/model/Export.hpp>

#include <xercesc/dom/DOMErrorHandler.hpp>
#include <xercesc/util/XercesDefs.hpp>

namespace opc::model {

/// Records the last error that a parser or a serialiser reports.
///
/// Attach it to a parser or serialiser as `xercesc::XMLUni::fgDOMErrorHandler` for one operation, and detach it after
/// that. It must exist while it is attached. Use it from one thread at a time.
class OPC_MODEL_EXPORT XercesErrorHandler : public xercesc::DOMErrorHandler {
public:
    XercesErrorHandler() = default;
    XercesErrorHandler(const XercesErrorHandler&) = delete;
    XercesErrorHandler& operator=(const XercesErrorHandler&) = delete;
    ~XercesErrorHandler() override;

    /// Records an error, which replaces an earlier one, and stops Xerces. Ignores warnings. Throws nothing.
    /// @return whether Xerces continues
    bool handleError(const xercesc::DOMError& error) override;

    /// Throws the recorded error. Does nothing if there is none.
    /// @throws InvalidXMLDocument  with the recorded message; its details contain line and column, if they are known
    void throwIfError() const;

private:
    bool recorded = false; ///< the message alone can't say it: it can be absent, or copying it can fail
    char16_t* errorMessage = nullptr;
    XMLFileLoc line = 0; ///< 0 if unknown
    XMLFileLoc column = 0;
};

} // namespace opc::model
