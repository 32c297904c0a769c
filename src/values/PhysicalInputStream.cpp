#include <opc/model/PhysicalInputStream.hpp>

#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/model/Errors.hpp>

namespace opc::model {

PhysicalInputStream::PhysicalInputStream(interfaces::IPhysicalInputStream* physicalStream)
    : physicalStream(physicalStream) {
    if (physicalStream == nullptr)
        throw InvalidPartStream("The physical layer gives no stream");
}

interfaces::IPhysicalInputStream& PhysicalInputStream::connected() const {
    if (physicalStream == nullptr)
        throw InvalidPartStream("The part's content has been deleted");
    return *physicalStream;
}

void PhysicalInputStream::open() {
    connected().open();
}

std::uint64_t PhysicalInputStream::read(unsigned char* buffer, std::uint64_t count) {
    return connected().read(buffer, count);
}

bool PhysicalInputStream::isDone() const {
    return connected().isDone();
}

void PhysicalInputStream::close() {
    connected().close();
}

PhysicalInputStream::~PhysicalInputStream() = default;

} // namespace opc::model
