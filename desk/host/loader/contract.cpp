#include "contract.h"

#include "econtract.h"

#include <elf.h>
#include <link.h>

#include <cstddef>
#include <cstring>
#include <fstream>

namespace desk
{

namespace
{

#define TEXT(...) #__VA_ARGS__
#define TEXT_OF(...) TEXT(__VA_ARGS__)
/// The class names, separated by commas.
const char *const classNames = TEXT_OF(VEXLO_CONTRACT_CLASSES);

/// An eShape of any class. A pointer to a virtual operation is its offset in the table in bytes, plus a constant on
/// some processors.
struct __attribute__((packed)) Shape
{
	uint32_t size;
	intptr_t place;
	intptr_t adjustment;
};
static_assert(sizeof(Shape) == sizeof(eShape<eWidget>), "pointers to members are of another kind here");

/// A plugin's notes have a few hundred bytes; a file with more is no plugin.
constexpr size_t mostNotes = 65536;

/// Up to `size` bytes at `offset`.
std::string readAt(std::ifstream &file, uint64_t offset, size_t size)
{
	std::string bytes(size, '\0');
	file.clear();
	file.seekg(static_cast<std::streamoff>(offset));
	file.read(bytes.data(), static_cast<std::streamsize>(size));
	bytes.resize(static_cast<size_t>(file.gcount()));
	return bytes;
}

template <class T> bool readAt(std::ifstream &file, uint64_t offset, T &value)
{
	const std::string bytes = readAt(file, offset, sizeof value);
	if (bytes.size() == sizeof value)
		std::memcpy(&value, bytes.data(), sizeof value);
	return bytes.size() == sizeof value;
}

/// Removes up to `size` bytes, padded to a multiple of four, from the front of `bytes`.
std::string take(std::string &bytes, size_t size)
{
	std::string taken = bytes.substr(0, size);
	bytes.erase(0, (size + 3) / 4 * 4);
	return taken;
}

/// The contract in these notes, or "".
std::string contractIn(std::string notes)
{
	while (notes.size() >= sizeof(ElfW(Nhdr))) {
		ElfW(Nhdr) header;
		std::memcpy(&header, notes.data(), sizeof header);
		notes.erase(0, sizeof header);
		const std::string name = take(notes, header.n_namesz);
		std::string content = take(notes, header.n_descsz);
		if (name == std::string("Vexlo", sizeof "Vexlo"))
			return content;
	}
	return {};
}

/// False for files that are no plugin for this computer.
bool readHeader(std::ifstream &file, ElfW(Ehdr) & header)
{
	constexpr unsigned char ownClass = sizeof(void *) == 8 ? ELFCLASS64 : ELFCLASS32;
	constexpr unsigned char ownOrder = __BYTE_ORDER == __LITTLE_ENDIAN ? ELFDATA2LSB : ELFDATA2MSB;
	return readAt(file, 0, header) && std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 &&
	       header.e_ident[EI_CLASS] == ownClass && header.e_ident[EI_DATA] == ownOrder;
}

/// The contract in a plugin's file, or "", also for a file that the loader will refuse.
std::string contractOf(const std::string &path)
{
	std::ifstream file(path, std::ios::binary);
	ElfW(Ehdr) header;
	if (!readHeader(file, header))
		return {};
	ElfW(Phdr) part;
	for (uint64_t i = 0; i < header.e_phnum && readAt(file, header.e_phoff + i * sizeof part, part); ++i) {
		if (part.p_type != PT_NOTE || part.p_align > 4 || part.p_filesz > mostNotes)
			continue; // notes with another alignment have a segment of their own
		std::string contract = contractIn(readAt(file, part.p_offset, part.p_filesz));
		if (!contract.empty())
			return contract;
	}
	return {};
}

std::string moreOrLess(intptr_t difference, const std::string &unit)
{
	const intptr_t count = difference < 0 ? -difference : difference;
	return std::to_string(count) + ' ' + unit + (count == 1 ? "" : "s") +
	       (difference < 0 ? " less than here" : " more than here");
}

std::string difference(const std::string &name, const Shape &theirs, const Shape &ours)
{
	if (theirs.place != ours.place || theirs.adjustment != ours.adjustment)
		return name + " has " +
		       moreOrLess((theirs.place - ours.place) / static_cast<intptr_t>(sizeof(void *)),
		                  "virtual operation");
	if (theirs.size != ours.size)
		return name + " has " +
		       moreOrLess(static_cast<intptr_t>(theirs.size) - static_cast<intptr_t>(ours.size), "byte");
	return {};
}

} // namespace

bool isCutOff(const std::string &path)
{
	std::ifstream file(path, std::ios::binary);
	ElfW(Ehdr) header;
	if (!readHeader(file, header))
		return false;
	file.seekg(0, std::ios::end);
	const auto size = static_cast<uint64_t>(file.tellg());
	// Linkers write the section headers last.
	if (header.e_shoff > size || header.e_shoff + uint64_t{header.e_shnum} * header.e_shentsize > size)
		return true;
	ElfW(Phdr) part;
	for (uint64_t i = 0; i < header.e_phnum; ++i)
		if (!readAt(file, header.e_phoff + i * sizeof part, part) ||
		    (part.p_type == PT_LOAD && (part.p_offset > size || part.p_offset + part.p_filesz > size)))
			return true;
	return false;
}

std::string differenceOfContract(const std::string &file)
{
	const std::string note = contractOf(file);
	if (note.empty())
		return {};
	const eContract ours;
	if (note.size() != sizeof ours)
		return "it tells of other classes than this host knows";
	eContract theirs;
	std::memcpy(static_cast<void *>(&theirs), note.data(), sizeof theirs);
	theirs.layer[sizeof theirs.layer - 1] = '\0';
	if (std::strcmp(theirs.layer, ours.layer) != 0)
		return std::string("its signals are those of ") + theirs.layer + ", here those of " + ours.layer;

	const char *name = classNames;
	for (size_t at = offsetof(eContract, shapes); at < sizeof ours; at += sizeof(Shape)) {
		Shape theirShape, ourShape;
		std::memcpy(&theirShape, note.data() + at, sizeof theirShape);
		std::memcpy(&ourShape, reinterpret_cast<const char *>(&ours) + at, sizeof ourShape);
		const size_t length = std::strcspn(name, ",");
		std::string differs = difference(std::string(name, length), theirShape, ourShape);
		if (!differs.empty())
			return differs;
		name += length + std::strspn(name + length, ", ");
	}
	return {};
}

} // namespace desk
