#include <opc/model/PhysicalOutputStream.hpp>

#include <opc/interfaces/IPhysicalOutputStream.hpp>
#include <opc/model/Errors.hpp>

#include <string>

namespace opc::model {

PhysicalOutputStream::PhysicalOutputStream(interfaces::IPhysicalOutputStream* physicalStream) {
    connect(physicalStream);
}

void PhysicalOutputStream::connect(interfaces::IPhysicalOutputStream* stream) {
    if (stream == nullptr)
        throw InvalidPartStream("The physical layer gives no stream");
    physicalStream = stream;
}

interfaces::IPhysicalOutputStream& PhysicalOutputStream::connected() const {
    if (physicalStream == nullptr)
        throw InvalidPartStream("The part's content has been deleted");
    return *physicalStream;
}

std::uint64_t PhysicalOutputStream::write(const unsigned char* buffer, std::uint64_t count) {
    const std::uint64_t written = connected().write(buffer, count);
    if (written != count)
        throw Exception("The physical layer has written " + std::to_string(written) + " of " +
                            std::to_string(count) + " bytes",
                        boost::system::errc::make_error_code(boost::system::errc::io_error));
    return written;
}

bool PhysicalOutputStream::isDone() const {
    return connected().isDone();
}

void PhysicalOutputStream::flush() {
    connected().flush();
}

void PhysicalOutputStream::close() {
    connected().close();
}

PhysicalOutputStream::~PhysicalOutputStream() = default;

} // namespace opc::model
