#pragma once

#include <opc/model/XercesErrorHandler.hpp>

#include <xercesc/dom/DOMConfiguration.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace opc::model {

/// Attaches an error handler to a parser or a serialiser for the life of this object, which must end before
/// the handler's.
class ErrorHandlerAttachment {
public:
    ErrorHandlerAttachment(xercesc::DOMConfiguration* configuration, XercesErrorHandler& handler)
        : configuration(configuration) {
        set(&handler);
    }
    ErrorHandlerAttachment(const ErrorHandlerAttachment&) = delete;
    ErrorHandlerAttachment& operator=(const ErrorHandlerAttachment&) = delete;
    ~ErrorHandlerAttachment() { set(nullptr); }

private:
    /// Xerces takes the handler as an untyped pointer to this very base class. Setting one that it knows
    /// never fails.
    void set(xercesc::DOMErrorHandler* handler) {
        configuration->setParameter(xercesc::XMLUni::fgDOMErrorHandler, static_cast<const void*>(handler));
    }

    xercesc::DOMConfiguration* configuration;
};

} // namespace opc::model
