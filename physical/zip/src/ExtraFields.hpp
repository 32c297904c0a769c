#pragma once

#include <opc/physical/ZipExport.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace opc::physical::zip {

struct ExtraField {
    std::uint16_t kind = 0;
    const unsigned char* data = nullptr;
    std::size_t size = 0;
};

/// Iterates over the extra fields of a record.
class OPC_ZIP_EXPORT ExtraFieldWalk {
public:
    ExtraFieldWalk(const unsigned char* extra, std::size_t size) : rest(extra), left(size) {}

    /// @return whether there is one more, which `field` receives
    bool next(ExtraField& field);

    /// The number of bytes that remain; at the end, those that are no field.
    std::size_t restSize() const { return left; }

    /// At the end: whether a field of this kind is there that has less bytes than it says.
    bool isCutOff(std::uint16_t kind) const;

private:
    const unsigned char* rest;
    std::size_t left;
};

/// Kinds of extra fields.
constexpr std::uint16_t STRONG_ENCRYPTION_FIELD = 0x0017;
constexpr std::uint16_t UNICODE_PATH_FIELD = 0x7075;

/// The name in a Unicode Path field, which many programs use as the name of the item. Not all programs check the
/// checksum before it, so it isn't checked here.
OPC_ZIP_EXPORT std::string_view unicodePath(const ExtraField& field);

/// Whether extra fields have anything unknown. Known are numbers of ZIP64, times, owners, a Unicode Path, and room
/// for growth (ECMA-376 Part 2) that is filled with zeros.
OPC_ZIP_EXPORT bool holdsUnknownData(const unsigned char* extra, std::size_t size);

/// Whether extra fields have anything that a program which knows its kind may take for another name, kind or content of the item.
/// Unknown kinds may; times, owners, rights, comments and room for growth can't, whatever they hold.
OPC_ZIP_EXPORT bool holdsOtherMeaning(const unsigned char* extra, std::size_t size);

/// The numbers of a ZIP64 field: sizes and an offset that don't fit into their record. The field has only those, one
/// after the other.
class OPC_ZIP_EXPORT Zip64Field {
public:
    /// @param extra  the extra fields of a record; malformed ones are skipped
    Zip64Field(const unsigned char* extra, std::size_t size);

    /// Replaces `value` with the next number of the field, if `value` says that the number is there.
    /// @return whether there was a number
    bool resolve(std::uint64_t& value);

private:
    ExtraField field;
};

/// Whether a ZIP64 field has a number that isn't one of the item, whichever of them its records leave out.
/// @param flags  of the item: if its sizes stand behind its content, zeros can stand for them
OPC_ZIP_EXPORT bool hasOtherNumbers(const ExtraField& field, std::uint16_t flags, std::uint64_t size,
                                    std::uint64_t compressedSize, std::uint64_t offset);

/// @return `extra` without its ZIP64 field
std::string withoutZip64Field(std::string_view extra);

} // namespace opc::physical::zip
