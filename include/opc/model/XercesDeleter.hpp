#pragma once

namespace opc::model {

/// Deletes what Xerces wants released, for `std::unique_ptr`: documents, parsers and serialisers.
struct XercesDeleter {
    template <typename Object>
    void operator()(Object* object) const {
        if (object)
            object->release();
    }
};

} // namespace opc::model
