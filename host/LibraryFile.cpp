#include "host/LibraryFile.hpp"

#include <elf.h>
#include <link.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <system_error>

namespace host {
namespace {

template <typename Record>
bool readRecord(std::ifstream& stream, std::uintmax_t offset, Record& record) {
    stream.seekg(static_cast<std::streamoff>(offset));
    return static_cast<bool>(stream.read(reinterpret_cast<char*>(&record), sizeof record));
}

}  // namespace

bool isWholeLibrary(const std::filesystem::path& file) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    if (error) {
        return false;  // before opening it: a pipe would wait for its writer
    }
    std::ifstream stream(file, std::ios::binary);
    ElfW(Ehdr) header{};
    if (!readRecord(stream, 0, header) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 ||
        header.e_phentsize != sizeof(ElfW(Phdr))) {
        return false;
    }
    for (std::uintmax_t i = 0; i < header.e_phnum; ++i) {
        ElfW(Phdr) part{};
        if (!readRecord(stream, header.e_phoff + i * sizeof part, part)) {
            return false;
        }
        if (part.p_type == PT_LOAD && (part.p_filesz > size || part.p_offset > size - part.p_filesz)) {
            return false;
        }
    }
    return header.e_phnum > 0;
}

}  // namespace host
