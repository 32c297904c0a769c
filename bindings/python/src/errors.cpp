#include "Bindings.hpp"
#include "Calls.hpp"
#include "Values.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/codesigning_verifier/CodesigningException.hpp>
#include <bedrock/crypto/utils/CryptoNotLoaded.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>
#include <opc/model/Errors.hpp>

#include <boost/core/demangle.hpp>

#include <filesystem>
#include <string>
#include <typeinfo>

namespace opcpython {

namespace {

std::string nameOfClass(const std::exception& failure) {
    const std::string name = boost::core::demangle(typeid(failure).name());
    return name.substr(name.rfind(':') + 1);
}

/// `opcmodel._errors` has a class for each of the library, under the same name.
void raise(const std::exception& failure) {
    const auto* const own = dynamic_cast<const opc::Exception*>(&failure);
    const auto* const signature = dynamic_cast<const opc::model::InvalidSignature*>(&failure);
    const int code = signature != nullptr ? signature->getErrorCode().value()
                     : own != nullptr     ? own->code().value()
                                          : 0;
    const auto text = [own](const char* (opc::Exception::*known)() const noexcept) {
        return orNone(own == nullptr ? "" : (own->*known)());
    };
    try {
        const py::object made = py::module_::import("opcmodel._errors")
                                    .attr("make")(nameOfClass(failure), toPython(failure.what()), code,
                                                  text(&opc::Exception::details), text(&opc::Exception::part),
                                                  text(&opc::Exception::relationship));
        PyErr_SetObject(py::type::handle_of(made).ptr(), made.ptr());
    } catch (py::error_already_set& failed) {
        failed.restore();
    }
}

void raise(const std::filesystem::filesystem_error& failure) {
    try {
        const py::object made =
            py::module_::import("builtins").attr("OSError")(failure.code().value(), toPython(failure.what()));
        PyErr_SetObject(py::type::handle_of(made).ptr(), made.ptr());
    } catch (py::error_already_set& failed) {
        failed.restore();
    }
}

void translate(std::exception_ptr thrown) {
    try {
        std::rethrow_exception(std::move(thrown));
    } catch (const opc::Exception& e) {
        raise(e);
    } catch (const opc::model::XmlParserNotLoaded& e) {
        raise(e);
    } catch (const bedrock::crypto::utils::CryptoNotLoaded& e) {
        raise(e);
    } catch (const bedrock::crypto::utils::Exception& e) {
        raise(e);
    } catch (const bedrock::certificates::CertificateException& e) {
        raise(e);
    } catch (const bedrock::codesigning_verifier::CodesigningException& e) {
        raise(e);
    } catch (const std::filesystem::filesystem_error& e) {
        raise(e);
    }
}

} // namespace

RaisedInCall*& RaisedInCall::current() {
    thread_local RaisedInCall* call = nullptr;
    return call;
}

void bindErrors(py::module_& /*module*/) {
    py::register_local_exception_translator(translate);
}

} // namespace opcpython
