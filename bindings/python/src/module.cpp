#include "Bindings.hpp"
#include "Lock.hpp"

#include <pthread.h>

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
    pthread_atfork(nullptr, nullptr, [] { threadsInLibrary = 0; }); // a new process has none of them
    Py_AtExit([] {
        stopScans();
        waitForThreadsInLibrary();
    });
}
