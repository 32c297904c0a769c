#include "RelationshipsOutput.hpp"

#include "RelationshipsEdit.hpp"

#include <opc/core/Exception.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>

namespace opc::physical::lenient {

void RelationshipsOutput::close() {
    if (state == State::Written)
        return;
    const bool isTooMuch = hasTooMuchMarkup(written);
    if (isTooMuch && document.keepsMore())
        throw Exception("There are too many relationships for a document in which others are kept.");
    const std::optional<Bytes> changed = isTooMuch ? written : editRelationships(document, written);
    if (changed) {
        state = State::Writing;
        interfaces::IPhysicalOutputStream* const stream = part.getOutputStream();
        if (stream->write(changed->data(), changed->size()) != changed->size())
            throw Exception("The relationships couldn't be written.");
        stream->close();
    }
    state = State::Written;
}

} // namespace opc::physical::lenient
