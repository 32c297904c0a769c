#include "Bindings.hpp"
#include "Lock.hpp"

PYBIND11_MODULE(_opcmodel, module) {
    using namespace opcpython;
    module.doc() = "The functions of the C++ libraries, for the package opcmodel alone.";
    bindErrors(module);
    bindParts(module);
    bindPackage(module);
    bindRelationships(module);
    bindProperties(module);
    bindArchiveSource(module);
    bindInspection(module);
    bindComparison(module);
    bindEditing(module);
    bindSignatures(module);
    bindStore(module);
    bindScanning(module);
    Py_AtExit([] {
        stopScans();
        waitForThreadsInLibrary();
    });
}
