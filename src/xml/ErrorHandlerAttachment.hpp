#pragma once

#include <opc/model/XercesErrorHandler.hpp>

#include <xercesc/dom/DOMConfiguration.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace opc::model {

/// Attaches an error handler to a parser or a serialiser while this object lives. The handler must outlive it.
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
    /// Xerces takes the handler as an untyped pointer to exactly this base class. Setting a known parameter never
    /// fails.
    void set(xercesc::DOMErrorHandler* handler) {
        configuration->setParameter(xercesc::XMLUni::fgDOMErrorHandler, static_cast<const void*>(handler));
    }

    xercesc::DOMConfiguration* configuration;
};

} // namespace opc::model
