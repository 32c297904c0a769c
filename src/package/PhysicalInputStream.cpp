#include <opc/model/PhysicalInputStream.hpp>

#include <opc/interfaces/IPhysicalInputStream.hpp>

namespace opc::model {

void PhysicalInputStream::open() {
    physicalStream->open();
}

std::uint64_t PhysicalInputStream::read(unsigned char* buffer, std::uint64_t count) {
    return physicalStream->read(buffer, count);
}

bool PhysicalInputStream::isDone() const {
    return physicalStream->isDone();
}

void PhysicalInputStream::close() {
    physicalStream->close();
}

PhysicalInputStream::~PhysicalInputStream() = default;

} // namespace opc::model
