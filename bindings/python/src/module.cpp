#include "Bindings.hpp"

PYBIND11_MODULE(_opcmodel, module) {
    using namespace opcpython;
    module.doc() = "The functions of the C++ libraries, for the package opcmodel alone.";
    bindErrors(module);
    bindParts(module);
    bindRelationships(module);
    bindPackage(module);
}
