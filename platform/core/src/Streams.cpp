#include <opc/core/InputStream.hpp>
#include <opc/core/OutputStream.hpp>

namespace opc {

InputStream::~InputStream() = default;
OutputStream::~OutputStream() = default;

} // namespace opc
