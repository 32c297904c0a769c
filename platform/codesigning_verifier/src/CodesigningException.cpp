#include <bedrock/codesigning_verifier/CodesigningException.hpp>

namespace bedrock::codesigning_verifier {

// Here, so that there is one type information of the class in the program.
CodesigningException::~CodesigningException() = default;

} // namespace bedrock::codesigning_verifier
