#include <bedrock/codesigning_verifier/CodesigningException.hpp>

namespace bedrock::codesigning_verifier {

// Defined here, so that the program has one type information of the class.
CodesigningException::~CodesigningException() = default;

} // namespace bedrock::codesigning_verifier
