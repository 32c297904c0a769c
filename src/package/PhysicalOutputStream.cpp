#include <opc/model/PhysicalOutputStream.hpp>

#include <opc/interfaces/IPhysicalOutputStream.hpp>

namespace opc::model {

std::uint64_t PhysicalOutputStream::write(const unsigned char* buffer, std::uint64_t count) {
    return physicalStream->write(buffer, count);
}

bool PhysicalOutputStream::isDone() const {
    return physicalStream->isDone();
}

void PhysicalOutputStream::flush() {
    physicalStream->flush();
}

void PhysicalOutputStream::close() {
    physicalStream->close();
}

PhysicalOutputStream::~PhysicalOutputStream() = default;

} // namespace opc::model
