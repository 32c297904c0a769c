#pragma once

namespace opc::model {

/// Releases documents, parsers and serialisers of Xerces, for `std::unique_ptr`.
struct XercesDeleter {
    template <typename Object>
    void operator()(Object* object) const {
        if (object)
            object->release();
    }
};

} // namespace opc::model
